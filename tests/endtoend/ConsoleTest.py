"""discovery-console against simulated devices on loopback."""

import csv
import json
import os
import re
import subprocess
import time

from endtoend import (
    INVALID_FORMAT,
    Peer,
    Simulator,
    TestCase,
    command,
    launcher,
    library_path,
    main,
    message,
    rows,
    setting,
    wait_until,
)
from networks import HERE, Cable, End, Machine, Occupant


class DiscoverTest(TestCase):
    def test_shows_every_device_in_a_table(self):
        with Simulator("--count", "4") as simulator:
            table, _ = self.console("discover", "--expect", "4")
        found = rows(table)
        self.assertCountEqual(
            [(row[0], row[4], row[5]) for row in found],
            [(device.name, device.mac, device.ip) for device in simulator.devices],
        )
        self.assertTrue(all(row[-1] == "Signature" for row in found), table)

    def test_prints_documents_for_scripts(self):
        with Simulator("--count", "2") as simulator:
            output, errors = self.console("discover", "--expect", "2", "--json")
        documents = [json.loads(line) for line in output.splitlines()]
        self.assertEqual(errors, "")
        self.assertCountEqual(
            [(document["Message"], document["Host"]["HostName"], document["SourceNIC"]["IPAddress"])
             for document in documents],
            [("Signature", device.name, device.ip) for device in simulator.devices],
        )  # fmt: skip

    def test_falls_back_to_the_first_interface_of_a_host(self):
        with Simulator("--count", "1", "--no-source-nic") as simulator:
            table, _ = self.console("discover", "--expect", "1")
        device = simulator.devices[0]
        self.assertEqual(rows(table)[0][4:6], [device.mac, device.ip])

    def test_sorts_filters_and_counts(self):
        with Simulator("--count", "12") as simulator:
            names = sorted((device.name for device in simulator.devices if device.ip != "127.0.0.11"), reverse=True)
            table, count = self.console(
                "discover", "--once", "--wait", "0.5", "--sort", "name:desc", "--filter", "ip!=127.0.0.11",
            )  # fmt: skip
            _, errors = self.console("discover", "--wait", "0.5", "--filter", "name=nobody", status=3)
            one, _ = self.console("discover", "--expect", "1", "--filter", "ip=127.0.0.20", "--wait", "600")
        self.assertEqual([row[0] for row in rows(table)], names)
        self.assertEqual(count, "12 devices found; 11 shown\n")
        self.assertIn("12 devices found, but none that --filter accepts", errors)
        self.assertEqual([row[5] for row in rows(one)], ["127.0.0.20"])

    def test_a_search_says_whether_it_is_complete(self):
        summary = self.folder / "summary.json"
        others = self.folder / "others.txt"
        others.write_text("# behind the router\n127.0.0.99, 127.0.1.0/30\n")
        with Simulator("--count", "12"):
            table, closing = self.console("discover", "--also", f"127.0.0.10,@{others}", "--summary", str(summary))
            _, errors = self.console("discover", "--wait", "0.9", status=6)  # a first round takes a second
        self.assertEqual(len(rows(table)), 12)
        self.assertRegex(closing, r"^12 devices, \d+ rounds: [\d, ]+ new; .*estimated unseen: 0\n$")
        result = json.loads(summary.read_text())
        self.assertEqual((result["Devices"], result["Complete"]), (12, True))
        self.assertEqual({each["Asked"] for each in result["Rounds"]}, {"all", "list"})
        self.assertIn("the search is incomplete", errors)

    def test_as_many_as_are_expected_are_waited_for(self):
        with Simulator("--count", "2", "--no-hello") as simulator:
            simulator.behave("kill 2")
            with self.start_console("--wait", "20", "discover", "--expect", "2") as console:
                questions = "Sending message of type AllSendYourSignature"
                wait_until(lambda: self.log_text().count(questions) > 3, "a question after the search")
                simulator.behave("revive 2")
                console.line_with("2 devices found")
                self.assertEqual(console.wait(), 0)

    def test_lists_of_addresses_are_refused_with_the_place(self):
        others = self.folder / "others.txt"
        others.write_text("10.0.0.1\n10.0.0.2, 10.0.0.300\n")
        for text, cause in (
            ("10.0.0.1,x", '"x" is no IPv4 address'),
            ("10.0.0.0/33", "has no prefix length"),
            (f"@{others}", f'{others}: line 2, column 11: "10.0.0.300" is no IPv4 address'),
            ("@/nowhere", "cannot read /nowhere"),
            ("10.0.0.0/8", "--also: a list of more than 65536 addresses"),
        ):
            _, errors = self.console("discover", "--also", text, status=2)
            self.assertIn(cause, errors)

    def test_says_when_nothing_is_found(self):
        with Simulator("--silent"):
            output, errors = self.console("discover", "--wait", "0.5", status=3)
        self.assertEqual(output, "")
        self.assertIn("no device found", errors)

    def test_shows_nothing_that_a_terminal_acts_on(self):
        name = b"\x1b[2J\x9b\xff\xc2\x9b\r\nline\xe2\x80\xae"
        signature = json.dumps(message("SignatureBroadcast", name="NAME")).encode()
        with Peer() as peer:
            for options in ([], ["--json"]):
                with self.start_console("discover", "--expect", "1", *options) as console:
                    peer.receive()
                    peer.send(signature.replace(b"NAME", name.replace(b"\r\n", b"\\r\\n").replace(b"\x1b", b"\\u001b")))
                    lines = []
                    while (line := console.line()) is not None:
                        lines.append(line)
                    self.assertEqual(console.wait(), 0)
                text = "\n".join(lines)
                self.assertNotRegex(text, r"[\x00-\x09\x0b-\x1f\x7f-\x9f\u202e]")
                self.assertIn("line", lines[0 if options else 1])
                self.assertEqual(len(lines), 1 if options else 3)  # with titles and count


class InventoryTest(TestCase):
    def save(self, name, *options):
        documents, _ = self.console("discover", "--once", "--json", *options)
        file = self.folder / name
        file.write_text(documents, encoding="utf-8")
        return str(file)

    def test_diff_tells_what_appeared_left_and_changed(self):
        with Simulator("--count", "4") as simulator:
            same, renamed, gone, new = simulator.devices
            before = self.save("a.json", "--wait", "0.5", "--filter", f"ip!={new.ip}")
            self.console("rename", "new-name", "--mac", renamed.mac)
            after = self.save("b.json", "--wait", "0.5", "--filter", f"ip!={gone.ip}")

        table, count = self.console("inventory", "diff", before, after, "--sort", "ip", status=4)
        lines = [line.split() for line in table.splitlines()]
        self.assertEqual(
            [line[:2] for line in lines],
            [["CHANGE", "HOST"], ["changed", "new-name"], ["HostName:", renamed.name], ["appeared", new.name],
             ["left", gone.name]],
        )  # fmt: skip
        self.assertEqual(count, "1 appeared, 1 left, 1 changed, 1 unchanged\n")

        documents = self.console_documents("inventory", "diff", before, after, "--filter", f"mac={renamed.mac}", status=4)
        self.assertEqual(
            [(document["Change"], document["Differences"]) for document in documents],
            [("Changed", [{"Property": "HostName", "Before": renamed.name, "After": "new-name"}])],
        )
        self.assertEqual(self.console("inventory", "diff", after, after), ("", "0 appeared, 0 left, 0 changed, 3 unchanged\n"))

        table, _ = self.console("inventory", "show", after, "--sort", "ip:desc")
        self.assertEqual([row[0] for row in rows(table)], [new.name, "new-name", same.name])

    def test_a_search_marks_what_is_different_since_a_result(self):
        with Simulator("--count", "4") as simulator:
            same, renamed, gone, new = simulator.devices
            before = self.save("a.json", "--wait", "0.5", "--filter", f"ip!={new.ip}")
            self.console("rename", "=1+1", "--mac", renamed.mac)
            simulator.behave("kill 3")
            search = ("discover", "--since", before, "--sort", "ip", "--once", "--wait", "0.5")
            table, closing = self.console(*search)
            cells, _ = self.console(*search, "--csv")
            documents = self.console_documents(*search)
        lines = [line.split() for line in table.splitlines()]
        self.assertEqual(
            [line[0] for line in lines], ["CHANGE", same.name, "changed", "HostName:", "new", "missing"], table
        )
        self.assertIn("1 new, 1 changed, 1 missing, 1 unchanged\n", closing)
        table = list(csv.DictReader(cells.splitlines()))
        self.assertEqual([row["change"] for row in table], ["", "changed", "new", "missing"])
        self.assertEqual([table[1][key] for key in ("name", "property", "before", "after")],
                         ["'=1+1", "HostName", renamed.name, "'=1+1"])  # fmt: skip
        self.assertEqual([document.get("Change") for document in documents], [None, "Changed", "New", "Missing"])
        after = "".join(json.dumps(document) for document in documents)
        _, count = self.console("inventory", "diff", before, "-", status=4, text=after)
        self.assertEqual(count, "1 appeared, 1 left, 1 changed, 1 unchanged\n")

    def test_files_that_are_no_results_are_named(self):
        bad = self.folder / "bad.json"
        bad.write_text('{"Host":{"HostName":"a"}}\n{"Host":', encoding="utf-8")
        _, errors = self.console("inventory", "show", str(bad), status=2)
        self.assertIn(f"{bad}: line 2, column 9: ", errors)
        _, errors = self.console("inventory", "show", "-", status=2, text='{"Host":1}')
        self.assertIn("standard input: line 1, column 1: ", errors)
        _, errors = self.console("discover", "--since", os.devnull, status=2)
        self.assertIn(f"{os.devnull} is empty, which is no inventory", errors)
        missing = str(self.folder / "missing.json")
        _, errors = self.console("inventory", "diff", missing, str(bad), status=1)
        self.assertIn(f"cannot read {missing}: ", errors)


class RequestTest(TestCase):
    def test_refresh_shows_the_device_that_owns_the_address(self):
        with Simulator("--count", "3") as simulator:
            device = simulator.devices[1]
            table, _ = self.console("refresh", device.mac.lower().replace(":", "-"))
            self.console("refresh", "02:00:00:00:00:99", "--wait", "0.5", status=3)
        self.assertEqual([row[0] for row in rows(table)], [device.name])

    def test_reach_shows_the_device_at_the_address(self):
        with Simulator("--count", "3") as simulator:
            device = simulator.devices[2]
            table, _ = self.console("reach", device.ip)
            self.console("reach", "127.0.0.99", "--wait", "0.5", status=3)
        self.assertEqual([row[0] for row in rows(table)], [device.name])

    def test_rename_changes_the_name_of_one_device(self):
        with Simulator("--count", "3") as simulator:
            first, second, third = simulator.devices
            table, _ = self.console("rename", "Prüfstand-7", "--mac", first.mac)
            self.assertEqual(rows(table)[0][0], "Prüfstand-7")
            table, _ = self.console("rename", "press-8", "--ip", second.ip)
            self.assertEqual(rows(table)[0][0], "press-8")
            table, _ = self.console("discover", "--expect", "3")
        self.assertCountEqual([row[0] for row in rows(table)], ["Prüfstand-7", "press-8", third.name])

    def test_configure_moves_a_device_to_a_new_address(self):
        with Simulator("--count", "2") as simulator:
            device = simulator.devices[0]
            configuration = {
                "FriendlyName": "eth0",
                "MACAddress": device.mac,
                "IPAddress": "10.1.0.77",
                "SubNetMask": "255.255.0.0",
                "DefaultGateway": "10.1.0.1",
                "MTU": "1400",
            }
            file = self.folder / "nics.json"
            file.write_text(json.dumps([configuration]), encoding="utf-8-sig")
            self.console("configure", str(file))
            documents = self.console_documents("refresh", device.mac)
        self.assertEqual(documents[0]["Host"]["HostName"], device.name)
        self.assertIn(configuration, documents[0]["Host"]["NICs"])

    def test_a_file_that_cannot_be_read_is_named(self):
        for reading in (["configure"], ["site", "diff"]):
            _, errors = self.console(*reading, str(self.folder), status=2)
            self.assertRegex(errors, rf"cannot read {self.folder}: .* \(bad-file\)")
        file = self.folder / "nics.json"
        for content, place in (
            ("text", ": line 1, column 1: no JSON object"),
            ("[\n1]", ": line 2, column 1: no JSON object"),
            ('[{"FriendlyName": "eth0"}]', ': line 1, column 2: the interface has no "MACAddress"'),
            ('[{"FriendlyName": 1}]', ': line 1, column 2: "FriendlyName" is no text'),
            ("[]", ": there are no settings"),
        ):
            file.write_text(content)
            _, errors = self.console("configure", str(file), status=2)
            self.assertIn(f"{file}{place}", errors)


class VersionTest(TestCase):
    def test_devices_of_older_versions_are_left_out_below_the_minimum(self):
        with Simulator("--count", "1", "--protocol-version", "1.0.17"):
            self.console("discover", "--expect", "1", "--min-version", "1.0.17")
            self.console("discover", "--wait", "0.5", "--min-version", "1.0.18", status=3)


class WatchTest(TestCase):
    def test_prints_a_line_per_message_into_a_pipe(self):
        with Simulator("--count", "2", "--no-hello") as simulator:
            output, _ = self.console("watch", "--wait", "1.5", "--every", "1", "--filter", "name=" + simulator.devices[0].name)
        titles, *lines = output.splitlines()
        self.assertRegex(titles, r"^TIME +HOST NAME +TYPE ")
        self.assertEqual(len(lines), 2, output)
        for line in lines:
            self.assertRegex(line, rf"^\d\d:\d\d:\d\d  {simulator.devices[0].name} .*  Signature$")

    def test_shows_messages_until_it_is_interrupted(self):
        with self.start_console("watch", "--listen", "--json") as console:
            wait_until(lambda: "---Listening..." in self.log_text(), "the start of the server")
            with Simulator("--count", "1", "--seed", "7") as simulator:
                hello = json.loads(console.line())
            bye = json.loads(console.line())
            self.assertEqual((hello["Message"], bye["Message"]), ("Hello", "Bye"))
            self.assertLessEqual(hello["Time"], bye["Time"])
            self.assertEqual(hello["Host"]["HostName"], simulator.devices[0].name)
            console.interrupt()
            self.assertEqual(console.wait(), 0)
        self.assertIn("Close Log", self.log_text().splitlines()[-1])


class InterfaceTest(TestCase):
    local_addresses = []

    def setUp(self):
        super().setUp()
        self.other = self.enterContext(Machine())

    def cable(self):
        return Cable(End(HERE, "10.1.0.1/24"), End(self.other, "10.1.0.10/24"))

    def simulator(self):
        return Simulator("--count", "1", "--network", "10.1.0.10/24", "--no-hello", machine=self.other)

    def test_broadcasts_leave_from_all_interfaces_but_loopback(self):
        with self.cable(), self.simulator():
            documents = self.console_documents("discover", "--expect", "1")
        self.assertEqual(documents[0]["SourceNIC"]["IPAddress"], "10.1.0.10")
        for command in (["discover"], ["refresh", "02:00:00:00:00:01"], ["rename", "x", "--mac", "02:00:00:00:00:01"]):
            _, errors = self.console(*command, status=3)
            self.assertIn("no-interface: no network interface takes part; left out: lo", errors)

    def test_a_cable_plugged_in_while_watching_is_searched(self):
        with self.cable() as cable, self.simulator():
            if setting("suffix"):  # Wine does not tell whether there is a carrier
                unplug, plug = cable.near.down, cable.near.up
            else:
                unplug, plug = cable.unplug, cable.plug
            unplug()
            wait_until(lambda: not cable.near.has_carrier(), "the loss of the carrier")
            with self.start_console("watch", "--json") as console:
                wait_until(lambda: "---Listening..." in self.log_text(), "the start of the server")
                plug()
                start = time.monotonic()
                document = json.loads(console.line_with('"Message"'))
                self.assertEqual(document["SourceNIC"]["IPAddress"], "10.1.0.10")
                self.assertLess(time.monotonic() - start, 2)
                console.interrupt()
                self.assertEqual(console.wait(), 0)

    def test_watch_tells_a_device_that_died_from_a_network_that_changed(self):
        devices = ("--count", "2", "--network", "10.1.0.10/24", "--no-hello", "--verbose")
        self.other.own(["10.1.0.11"])
        with (
            self.cable() as cable,
            Simulator(*devices, machine=self.other) as simulator,
            self.start_console("watch", "--every", "1") as console,
        ):
            simulator.line_with("answers AllSendYourSignature to 10.1.0.1")
            cable.near.readdress("10.1.0.2/24")
            simulator.line_with("answers AllSendYourSignature to 10.1.0.2")
            with Occupant():
                console.line_with("another program receives the answers")
                for _ in range(2 * 10):  # more than make a silent device gone
                    simulator.line_with("answers SendYourSignature")
            simulator.behave("kill 2")
            self.assertIn(simulator.devices[1].name, console.line_with("is gone"))  # and nobody before
            cable.near.down()
            self.assertIn("not called gone", console.line_with("no-interface: no network interface takes part"))
            cable.near.up()
            console.line_with("a network interface takes part again")
            console.interrupt()
            self.assertEqual(console.wait(), 0)

    def test_conflicts_are_told_unless_accepted(self):
        accepted = self.folder / "accepted.txt"
        accepted.write_text("# the spare one\nip:10.1.0.10\n")
        twins = ("--count", "2", "--address", "10.1.0.10", "--address", "10.1.0.10")
        with self.cable(), Simulator(*twins, machine=self.other):
            _, told = self.console("watch", "--wait", "1")
            _, silent = self.console("watch", "--wait", "1", "--accept-conflict", f"@{accepted}")
        self.assertIn("conflict: 2 devices have the address 10.1.0.10", told)
        self.assertNotIn("conflict", silent)
        accepted.write_text("\npress-4\n")
        _, errors = self.console("watch", "--accept-conflict", f"@{accepted}", status=2)
        self.assertIn(f'{accepted}: line 2: "press-4" is no conflict, such as', errors)

    def test_addresses_without_a_route_are_not_asked(self):
        HERE.ip("route", "add", "unreachable", "10.77.0.0/16")
        self.addCleanup(HERE.ip, "route", "delete", "unreachable", "10.77.0.0/16")
        for command in (["reach", "10.77.0.1"], ["rename", "x", "--ip", "10.77.0.1"]):
            _, errors = self.console(*command, status=3)
            self.assertIn("there is no route to 10.77.0.1", errors)
        self.assertNotIn("estart", self.log_text())

    def test_what_the_machine_does_not_have_is_refused(self):
        for option, value in (("--from", "10.9.9.9"), ("--from", "x"), ("--interface", "eth77")):
            _, errors = self.console("discover", option, value, status=2)
            self.assertRegex(errors, rf'{option}: "{value}" is no .* of this machine; it has (127\.0\.0\.1|lo)')

    def test_what_is_no_address_is_named(self):
        self.assertIn('"not a MAC" is no MAC address', self.console("refresh", "not a MAC", status=2)[1])
        self.assertIn('"10.0.0.300" is no IPv4 address', self.console("reach", "10.0.0.300", status=2)[1])


class FailureTest(TestCase):
    def test_failures_show_code_and_text(self):
        code = INVALID_FORMAT % 2**32
        for arguments in (["discover", "--min-version", "one"], ["discover", "--min-version", ""]):
            with self.subTest(arguments):
                output, errors = self.console(*arguments, status=1)
                self.assertEqual(output, "")
                self.assertIn(f"Invalid Format (code 0x{code:08X})", errors)

    def test_error_prints_the_text_of_a_code(self):
        for code in (str(INVALID_FORMAT), f"0x{INVALID_FORMAT % 2**32:X}"):
            self.assertEqual(self.console("error", code)[0], "Invalid Format\n")
            document = {"Code": str(INVALID_FORMAT), "Text": "Invalid Format"}
            self.assertEqual(self.console_documents("error", code), [document])
        self.assertIn("Socket: the network has refused, ", self.console("error", "73")[0])
        self.console("error", "12345", status=1)

    def test_a_full_disk_is_told(self):
        if launcher():
            self.skipTest("a file of Linux")
        for arguments in (["--help"], ["doctor", "--list"]):
            with open("/dev/full", "w") as full:
                result = subprocess.run(
                    command("discovery-console", *arguments), stdout=full, stderr=subprocess.PIPE, check=False
                )
            self.assertEqual(result.returncode, 1)
            self.assertIn(b"cannot write to standard output: ", result.stderr)

    def test_misuse_is_told_apart_from_failure(self):
        self.assertNotEqual(self.console("rename", "name", status=2)[1], "")

    def test_a_log_that_cannot_be_written_costs_a_warning(self):
        log = str(self.folder / "log")
        os.mkdir(log)
        result = subprocess.run(
            command("discovery-console", "--library", library_path(), "--log", log, "reach", "127.0.0.99", "--wait", "0"),
            capture_output=True,
            check=False,
        )
        self.assertEqual(result.returncode, 3)
        self.assertRegex(result.stderr.decode(), f"{re.escape(log)} failed: .*; going on without a log\\s")

    def test_works_without_any_folder_of_the_users(self):
        if launcher():
            self.skipTest("Wine has folders of its own")
        for arguments in (["--version"], ["--library", library_path(), "reach", "127.0.0.99", "--wait", "0"]):
            result = subprocess.run(
                ["env", "-i", "TMPDIR=/nonexistent", *command("discovery-console", *arguments)], check=False
            )
            self.assertIn(result.returncode, (0, 3), arguments)
        self.assertFalse(os.path.exists("/tmp/discovery-console"))

    def test_missing_library_is_named(self):
        result = subprocess.run(
            command("discovery-console", "--library", "/nowhere/library", "discover"),
            capture_output=True,
            check=False,
        )
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"cannot load the library", result.stderr)

    def test_termination_leaves_cleanly(self):
        with self.start_console("discover", "--wait", "600") as console:
            wait_until(lambda: "Message sent" in self.log_text(), "the request")
            console.interrupt()
            self.assertEqual(console.wait(), 130)
        self.assertIn("Close Log", self.log_text().splitlines()[-1])


if __name__ == "__main__":
    main()
