"""The symbol versions in docs/systems.md are the newest that the files ask for."""

import re
import subprocess
import unittest

import blocks
import endtoend
from endtoend import setting


class SystemsTest(unittest.TestCase):
    def test_files_ask_for_no_newer_symbols(self):
        folders = (setting("bin"), setting("bin").parent / "lib")
        for name, *versions in blocks.Markdown(setting("source") / "docs/systems.md").table("Linux"):
            (file,) = (path for folder in folders for path in folder.glob(name.strip("`")))
            needed = subprocess.run(["readelf", "-V", file], capture_output=True, text=True, check=True).stdout
            for version in versions:
                found = re.findall(rf"Name: {version.partition('_')[0]}_([0-9.]+)", needed)
                newest = max(found, key=lambda text: [int(part) for part in text.split(".")])
                self.assertEqual(version.partition("_")[2], newest, f"{name} {version}")


if __name__ == "__main__":
    endtoend.main()
