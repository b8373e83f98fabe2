"""Output as a document shows it: a pattern that real output has to match."""

import re

# What differs from run to run, and what it may be instead.
VARIABLE_PARTS = (
    (r"\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\.\d{3}", r"\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\.\d{3}"),  # date and time
    (r"\d\d/\d\d/\d{4} \d\d:\d\d:\d\d", r"\d\d/\d\d/\d{4} \d\d:\d\d:\d\d"),
    (r"\b\d\d:\d\d:\d\d\b", r"\d\d:\d\d:\d\d"),
    (r" +\d+\.\d{6}", r" *\d+\.\d{6}"),  # seconds since a log was opened
    (r"\(\d+\)$", r"\(\d+\)"),  # a line of a source file
    (r"\.\.\.", r".*?"),  # left out
)


def line_pattern(line):
    pattern = ""
    while line:
        found = [(match.start(), -match.end(), match, allowed)
                 for part, allowed in VARIABLE_PARTS
                 if (match := re.search(part, line))]  # fmt: skip
        if not found:
            break
        _, _, match, allowed = min(found, key=lambda entry: entry[:2])
        pattern += re.escape(line[: match.start()]) + allowed
        line = line[match.end() :]
    return pattern + re.escape(line)


def before_enter(text):
    """The part up to the first empty line, or all of it."""
    return re.split(r"^\n", text, maxsplit=1, flags=re.MULTILINE)[0]


def pattern(text):
    """A compiled pattern for the whole output. A line of three dots stands for any number of lines, an empty line for
    Enter."""
    lines = [
        r"(?:.*\n)*?" if line.strip() == "..." else line_pattern(line.rstrip()) + r"[ \t]*\n"
        for line in text.splitlines()
        if line
    ]
    return re.compile("".join(lines))


def normalized(output):
    """The output without empty lines."""
    return re.sub(r"\n\n+", "\n", re.sub(r"\r\n?", "\n", output)).lstrip("\n")
