"""The demonstration of many sites, on a folder that looks like the build's."""

import json
import pathlib
import re
import subprocess
import sys
import urllib.request

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "endtoend"))

import endtoend  # noqa: E402
from endtoend import Process, wait_until  # noqa: E402


class DemonstrationTest(endtoend.TestCase):
    def setUp(self):
        super().setUp()
        for name in ("bin", "lib"):
            (self.folder / name).symlink_to(endtoend.setting("bin").parent / name)
        self.demonstration = (endtoend.setting("source") / "scripts/fleet-demo", self.folder)

    def test_it_shows_three_sites_stays_if_wanted_and_leaves_nothing_behind(self):
        kept = subprocess.run([*self.demonstration, "--keep"], capture_output=True, text=True, timeout=200, check=False)
        self.addCleanup(subprocess.run, [*self.demonstration, "--end"], check=True)
        self.assertEqual(kept.returncode, 0, kept.stdout + kept.stderr)
        self.assertRegex(kept.stdout, r"(?s)plant-south +ready.*plant-south +lost.* present +line-2-mixer")
        page = re.search(r"http://\S+/", kept.stdout)[0]

        def is_whole():
            with urllib.request.urlopen(page + "devices.json", timeout=20) as answer:
                shown = json.load(answer)
            return [each["State"] for each in shown["Sites"]] == ["ready", "lost", "ready"] and len(shown["Devices"]) == 12

        wait_until(is_whole, "three sites on the page")

        with Process(*map(str, self.demonstration)) as again:
            again.line_with("Ending the demonstration that still runs")
            again.line_with("plant-south: ")
            again.process.terminate()
            self.assertEqual(again.wait(), 130)
        self.assertFalse((self.folder / "fleet-demo").exists())
        subprocess.run(["flock", "--nonblock", self.folder / "fleet-demo.lock", "true"], check=True)


if __name__ == "__main__":
    endtoend.main()
