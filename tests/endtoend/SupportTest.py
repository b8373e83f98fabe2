"""The archive for support, unpacked and searched for what it must not tell."""

import json
import os
import stat
import subprocess
import zipfile

from endtoend import Simulator, TestCase, main, setting

USER = "annelieses"


class SupportTest(TestCase):
    @classmethod
    def setUpClass(cls):
        os.environ["USER"] = USER  # before the first program: Wine takes the user's name from it once

    def setUp(self):
        super().setUp()
        self.bundle = self.folder / "support.zip"
        self.map = self.folder / "support.zip.names.json"

    def pack(self, *arguments, **options):
        return self.console("support-bundle", str(self.bundle), *arguments, "--wait", "1", **options)

    def unpacked(self):
        with zipfile.ZipFile(self.bundle) as archive:
            self.assertIsNone(archive.testzip())
            return {name: archive.read(name).decode() for name in archive.namelist()}

    def test_no_name_or_address_remains_and_the_map_tells_them(self):
        name = 'Müller "A" \\ 7'
        log = self.folder / f"{USER}.log"
        with Simulator("--count", "5", "--no-hello") as simulator:
            devices = simulator.devices
            self.console("rename", name, "--mac", devices[1].mac)
            self.console("discover", "--once", "--wait", "1")
            log.write_text(f"MAC={devices[2].mac.replace(':', '-').lower()};{devices[2].ip}:12000\n{USER} {name}\n")
            self.pack("--add", str(log))
        files = self.unpacked()
        self.assertLessEqual(
            {"versions.txt", "interfaces.json", "logs/console.log", "search.log", "devices.jsonl", "doctor.jsonl"},
            set(files),
        )
        text = "\n".join([*files, *files.values()]).lower()
        originals = [device.mac for device in devices] + [device.ip for device in devices] + [USER, name]
        originals += [json.dumps(name)[1:-1], json.dumps(name, ensure_ascii=False)[1:-1], "müller"]
        originals += [device.name for device in devices if device is not devices[1]]
        for original in originals:
            self.assertNotIn(original.lower(), text)
            self.assertNotIn(original.lower().replace(":", "-"), text)

        pseudonyms = json.loads(self.map.read_text())
        shown = [json.loads(line) for line in files["devices.jsonl"].splitlines()]
        self.assertEqual(
            {pseudonyms["Names"][document["Host"]["HostName"]] for document in shown},
            {device.name for device in devices if device is not devices[1]} | {name},
        )
        self.assertEqual(
            {pseudonyms["IPAddresses"][document["SourceNIC"]["IPAddress"]] for document in shown},
            {device.ip for device in devices},
        )
        for pseudonym, original in pseudonyms["MACAddresses"].items():
            self.assertEqual(pseudonym[:9], original[:9])
            self.assertIn(pseudonym, files["search.log"])
        if not setting("suffix"):
            for file in (self.bundle, self.map):
                self.assertEqual(stat.S_IMODE(file.stat().st_mode), 0o600)

    def test_plain_ones_tell_all_and_have_no_map(self):
        with Simulator("--count", "1") as simulator:
            self.pack("--plain")
            self.assertIn(simulator.devices[0].name, self.unpacked()["devices.jsonl"])
        self.assertFalse(self.map.exists())

    def test_what_is_there_is_replaced_only_by_force(self):
        self.map.write_text("mine")
        _, errors = self.pack(status=2)
        self.assertIn("support.zip.names.json is there already; --force replaces it", errors)
        self.assertFalse(self.bundle.exists())
        self.bundle.write_text("mine, too")
        output, _ = self.pack("--force", "--json")
        self.assertEqual(json.loads(output)["Map"], str(self.map))
        self.assertIn("versions.txt", self.unpacked())

    def test_nothing_remains_of_one_that_cannot_be_written(self):
        _, errors = self.console("support-bundle", str(self.folder / "no" / "s.zip"), "--wait", "0", status=1)
        self.assertIn("cannot write", errors)
        self.bundle.mkdir()
        self.pack("--force", status=2)
        self.assertFalse(self.map.exists())
        self.bundle.rmdir()

    def test_nothing_remains_on_a_full_disk(self):
        disk = self.folder / "disk"
        disk.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=4k", "tmpfs", str(disk)], check=True)
        self.addCleanup(subprocess.run, ["umount", str(disk)], check=True)
        self.bundle = disk / "support.zip"
        with Simulator("--count", "20"):
            _, errors = self.pack(status=1)
        self.assertIn(f"cannot write {self.bundle}: ", errors)
        self.assertEqual(list(disk.iterdir()), [])


if __name__ == "__main__":
    main()
