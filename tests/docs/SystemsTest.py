"""The symbol versions and the libraries in docs/systems.md are what the files ask for."""

import re
import subprocess
import unittest

import blocks
import endtoend
from endtoend import setting


class SystemsTest(unittest.TestCase):
    def test_files_ask_for_what_the_page_says(self):
        terms = (setting("source") / "LICENSE").read_text(encoding="utf-8")
        folders = (setting("bin"), setting("bin").parent / "lib")
        for name, *versions, besides in blocks.Markdown(setting("source") / "docs/systems.md").table("Linux"):
            (file,) = (path for folder in folders for path in folder.glob(name.strip("`")))
            needed = subprocess.run(["readelf", "-Vd", file], capture_output=True, text=True, check=True).stdout
            for version in versions:
                found = re.findall(rf"Name: {version.partition('_')[0]}_([0-9.]+)", needed)
                newest = max(found, key=lambda text: [int(part) for part in text.split(".")])
                self.assertEqual(version.partition("_")[2], newest, f"{name} {version}")
            loaded = re.findall(r"\(NEEDED\).*\[((?!libc\.|libm\.|libgcc_s|libstdc|ld-)[\w.-]+)\]", needed)
            self.assertEqual(re.findall(r"`([^`]+)`", besides), sorted(loaded), name)
            for library in loaded:
                self.assertIn(library.partition(".")[0], terms)


if __name__ == "__main__":
    endtoend.main()
