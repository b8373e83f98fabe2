"""The tables of docs/log-format.md: the lines they explain are lines that the library writes."""

import re

import blocks
from endtoend import TestCase, main, setting
from logs import write_eventful_log

PLACEHOLDER = r"\b(?:ADDRESS|COUNT|ERROR|IP|MAC|NAME|SECONDS|SIZE|STATE|TEXT|TYPE|VERSION)\b"
SECTIONS = ("Life cycle", "Requests", "Messages", "Network failures", "The log itself")
LEAST_SEEN = 30  # rows; the others take a full disk, a full queue and the like


class LogTest(TestCase):
    def test_the_lines_shown_are_written_as_shown(self):
        document = blocks.Markdown(setting("source") / "docs" / "log-format.md")
        written = write_eventful_log(self.folder / "discovery.log")
        lines = [line.split("|", 6) for line in written if line.count("|") > 5]
        sources = self.read_sources()
        seen = 0
        for section in SECTIONS:
            for row in document.table(section):
                line, channel, kind = row[0].strip("`"), row[1].strip("`"), row[2]
                with self.subTest(line):
                    pattern = re.compile(".*".join(map(re.escape, re.split(PLACEHOLDER, line))))
                    found = {(entry[3].strip(), entry[4]) for entry in lines if pattern.fullmatch(entry[6])}
                    if found:
                        seen += 1
                        self.assertEqual(found, {(channel, kind)})
                        continue
                    parts = re.split(PLACEHOLDER + r"|\d+", line)
                    for text in (f'"{channel}"', *(part.strip().replace('"', '\\"') for part in parts)):
                        self.assertTrue(text in sources, text)
        self.assertGreaterEqual(seen, LEAST_SEEN)

    def read_sources(self):
        source = setting("source")
        return "".join(
            path.read_text()
            for folder in ("Corelib", "discovery", "server", "extc")
            for path in source.glob(f"{folder}/**/*.cpp")
        )


if __name__ == "__main__":
    main()
