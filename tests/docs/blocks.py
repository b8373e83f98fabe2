"""What a document shows: the code blocks, the code within the text, the tables and the links of a Markdown file, and
the examples of a manual page."""

import dataclasses
import pathlib
import re


@dataclasses.dataclass
class Block:
    """A code block. The kind is the first word after the fence, "example" in a manual page."""

    document: pathlib.Path
    line: int
    kind: str
    text: str
    section: str

    def __str__(self):
        return f"{self.document.name}:{self.line}: {self.kind or 'unnamed'} block"


class Markdown:
    def __init__(self, path):
        self.path = path
        self.blocks = []
        self.headings = []
        self.prose = []  # number, line, section, of what stands outside of blocks
        self._read(path.read_text(encoding="utf-8").splitlines())

    def _read(self, lines):
        section = ""
        number = 0
        while number < len(lines):
            line = lines[number]
            number += 1
            if fence := re.match(r"( *)(`{3,})(.*)", line):
                start = number
                while lines[number].strip() != fence[2]:
                    number += 1
                indent = len(fence[1])
                text = "".join(inner[indent:] + "\n" for inner in lines[start:number])
                words = fence[3].split()
                self.blocks.append(Block(self.path, start, words[0] if words else "", text, section))
                number += 1
                continue
            if heading := re.match(r"#+ (.*)", line):
                section = heading[1]
                self.headings.append(section)
            elif line.startswith("    ") and (number < 2 or not lines[number - 2].strip()):
                # Indented code cannot say what it is; text of a list is indented less.
                self.blocks.append(Block(self.path, number, "", line + "\n", section))
            self.prose.append((number, line, section))

    def anchors(self):
        return {re.sub(r"[^\w -]", "", heading).strip().lower().replace(" ", "-") for heading in self.headings}

    def inline_code(self):
        """Number of the line and text of what stands in single backticks."""
        return [(number, code) for number, line, _ in self.prose for code in re.findall(r"`([^`]+)`", line)]

    def links(self):
        text = re.sub(r"`[^`]*`", "", "\n".join(line for _, line, _ in self.prose))
        return re.findall(r"\]\(([^)\s]+)\)", text)

    def table(self, section):
        """The rows of the section's only table, as lists of cells, without its titles."""
        rows = [line for _, line, of in self.prose if of == section and line.startswith("|")]
        if len(rows) < 3:
            raise AssertionError(f"{self.path.name}: no table in section {section!r}")
        return [[cell.strip() for cell in re.split(r"(?<!\\)\|", row)[1:-1]] for row in rows[2:]]


class ManualPage:
    """The examples of a manual page, which stand between .EX and .EE."""

    def __init__(self, path):
        self.path = path
        self.blocks = []
        example = None
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            if line == ".EX":
                example = Block(path, number, "example", "", "")
            elif line == ".EE":
                self.blocks.append(example)
                example = None
            elif example is not None and not line.startswith("."):
                example.text += re.sub(r"\\f.", "", line).replace("\\-", "-").replace("\\(aq", "'").replace(
                    "\\e", "\\"
                ).replace("\\&", "") + "\n"
