"""Site files against simulated devices behind a cable."""

import json

from endtoend import Simulator, TestCase, main, rows
from networks import HERE, Cable, End, Machine


class SiteTest(TestCase):
    local_addresses = []

    def setUp(self):
        super().setUp()
        self.field = self.enterContext(Machine())
        self.enterContext(Cable(End(HERE, "10.1.0.1/24"), End(self.field, "10.1.0.10/24")))
        self.field.own(["10.1.0.8/29", "10.1.0.252/30"])
        self.file = self.folder / "site.json"

    def start(self, *options):
        network = ("--count", "3", "--network", "10.1.0.10/24", "--no-hello")
        return self.enterContext(Simulator(*network, *options, machine=self.field))

    def export(self):
        """The entries of the interfaces that the devices answer on."""
        self.console("site", "export", str(self.file))
        return [entry for entry in json.loads(self.file.read_text()) if "HostName" in entry]

    def test_diff_tells_what_is_otherwise(self):
        self.start()
        entries = self.export()
        entries[0]["HostName"] = "press-0"
        self.file.write_text(json.dumps(entries[:2]))
        table, closing = self.console("site", "diff", str(self.file), status=4)
        self.assertEqual([row[0] for row in rows(table)], ["deviating", "", "foreign"], table)
        self.assertEqual(closing, "0 missing, 1 foreign, 1 deviating\n")
        self.file.write_text('[\n{"MACAddress": 7}]')
        _, errors = self.console("site", "diff", str(self.file), status=2)
        self.assertIn(f"{self.file}: line 2, column 16: 7 is no text", errors)

    def test_watch_tells_what_is_otherwise(self):
        self.start()
        wanted, foreign, moved = self.export()
        name, address = wanted["HostName"], moved["IPAddress"]
        moved["IPAddress"] = "10.1.0.14"
        self.file.write_text(json.dumps([wanted, moved, {"MACAddress": "02:00:00:00:00:99"}]))
        self.console("rename", "wrong", "--mac", wanted["MACAddress"])
        with self.start_console("watch", "--every", "1", "--expect", str(self.file)) as console:
            lines = [console.line_with(" is ") for _ in range(4)]
            self.console("rename", name, "--mac", wanted["MACAddress"])
            console.line_with(f"{name} ({wanted['MACAddress']}) is as the site wants it")
            console.interrupt()
            self.assertEqual(console.wait(), 0)
        lines = "\n".join(lines)
        self.assertIn(f"is deviating: HostName wrong, not {name}", lines)
        self.assertIn(f"is deviating: IPAddress {address}, not 10.1.0.14", lines)
        self.assertIn(f"{foreign['HostName']} ({foreign['MACAddress']}, {foreign['IPAddress']}) is foreign", lines)
        self.assertIn("(02:00:00:00:00:99) is missing", lines)
        self.assertNotIn("ChangeYourIPConfig", self.log_text())


if __name__ == "__main__":
    main()
