"""Site files against simulated devices behind a cable."""

import json

from endtoend import Simulator, TestCase, main
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

    def changes(self, *arguments, status=0):
        """What has come of each change of a device."""
        documents = self.console_documents("site", "apply", str(self.file), *arguments, status=status)
        return [document["Change"] for document in documents]

    def test_devices_exchange_names_and_addresses(self):
        self.start()
        before = self.export()
        entries = self.export()
        first, second = entries[0], entries[2]
        for key in ("HostName", "IPAddress"):
            first[key], second[key] = second[key], first[key]
        self.file.write_text(json.dumps(entries, indent=2))
        deviations = self.console_documents("site", "diff", str(self.file), status=4)
        self.assertEqual([each["MACAddress"] for each in deviations], [first["MACAddress"], second["MACAddress"]])
        self.assertEqual([each["Property"] for each in deviations[0]["Differences"]], ["HostName", "IPAddress"])

        self.assertEqual({each["Code"] for each in self.changes("--dry-run")}, {"dry-run"})
        self.assertNotIn("Sending message of type ChangeYour", self.log_text())

        changes = self.changes()
        self.assertEqual({each["Verdict"] for each in changes}, {"applied"})
        order = [first["MACAddress"], second["MACAddress"], first["MACAddress"]]
        self.assertEqual([each["MACAddress"] for each in changes], 2 * order)
        self.assertEqual(self.console("site", "apply", str(self.file))[1], "nothing to change\n")
        self.assertEqual(len(self.console_documents("undo", "--list")), len(changes))
        undone = self.console_documents("undo", "--yes", "--mac", second["MACAddress"])
        self.assertEqual([each["Change"]["MACAddress"] for each in undone], order)
        self.console("undo", "--yes")
        self.assertEqual(self.export(), before)

    def test_nothing_is_sent_after_a_failure(self):
        self.start("--refuse")
        entries = self.export()
        for number, entry in enumerate(entries):
            entry["HostName"] = f"press-{number}"
        self.file.write_text(json.dumps(entries))
        changes = self.changes(status=3)
        self.assertEqual([each["Verdict"] for each in changes], ["refused", "not-sent", "not-sent"])
        self.assertEqual({each.get("Code") for each in changes[1:]}, {"left-out"})
        self.assertEqual(self.log_text().count("Sending message of type ChangeYourHostName"), 1)

    def test_what_cannot_be_is_refused_before_anything_is_sent(self):
        self.start()
        entries = self.export()
        entries[0]["IPAddress"] = "10.1.0.13"
        entries[2]["HostName"] = entries[1]["HostName"]
        entries.append({"MACAddress": "02:00:00:00:00:99", "HostName": "press-99"})
        self.file.write_text(json.dumps(entries, indent=2))
        _, errors = self.console("site", "apply", str(self.file), status=2)
        self.assertIn("press-99 (02:00:00:00:00:99) is missing", errors)
        self.assertRegex(errors, rf'{self.file}: line 16, column 3: "{entries[1]["HostName"]}" is what .*\(name-taken\)')
        self.assertEqual(self.changes(status=2)[0]["Code"], "name-taken")
        self.assertNotIn("Sending message of type ChangeYour", self.log_text())
        self.file.write_text('[\n{"MACAddress": 7}]')
        _, errors = self.console("site", "diff", str(self.file), status=2)
        self.assertIn(f"{self.file}: line 2, column 16: 7 is no text (bad-file)", errors)

    def test_watch_tells_what_is_otherwise_and_gives_names_back(self):
        self.start()
        wanted, foreign, moved = self.export()
        name, address = wanted["HostName"], moved["IPAddress"]
        moved["IPAddress"] = "10.1.0.14"
        self.file.write_text(json.dumps([wanted, moved, {"MACAddress": "02:00:00:00:00:99"}]))
        self.console("rename", "wrong", "--mac", wanted["MACAddress"])
        with self.start_console("watch", "--expect", str(self.file), "--repair", "names") as console:
            lines = [console.line_with(" is ") for _ in range(4)]
            console.line_with(f'has taken the name "{name}" (applied)')
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
