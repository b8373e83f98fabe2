"""Changes of devices with discovery-console: refused, verified, taken back, and kept in a journal."""

import json
import os
import pty
import subprocess

from endtoend import Simulator, TestCase, command, main, wait_until
from networks import cabled


class OnTerminal:
    """A discovery-console on a terminal of its own."""

    def __init__(self, *arguments):
        self.terminal, end = pty.openpty()
        self.output = ""
        self.process = subprocess.Popen(
            command("discovery-console", *arguments), stdin=end, stdout=end, stderr=end, start_new_session=True,
            preexec_fn=lambda: __import__("fcntl").ioctl(0, __import__("termios").TIOCSCTTY, 0),
        )  # fmt: skip
        os.close(end)

    def wait_for(self, text):
        def is_there():
            try:
                self.output += os.read(self.terminal, 4096).decode()
            except OSError:
                raise AssertionError(f"ended without {text!r}: {self.output}") from None
            return text in self.output

        wait_until(is_there, text)

    def type(self, text):
        os.write(self.terminal, text.encode())

    def close(self):
        os.close(self.terminal)
        self.terminal = None

    def wait(self):
        if self.terminal is not None:
            self.wait_for_end()
            self.close()
        return self.process.wait(20)

    def wait_for_end(self):
        try:
            while data := os.read(self.terminal, 4096):
                self.output += data.decode()
        except OSError:
            pass


class ChangeTest(TestCase):
    def settings(self, *devices, name="settings.json", **changes):
        """A file for devices that get the address of the same number in 127.1.0.0/16."""
        interfaces = [
            {
                "FriendlyName": "eth0",
                "MACAddress": device.mac,
                "IPAddress": device.ip.replace("127.0.", "10.1."),
                "SubNetMask": "255.255.0.0",
                "DefaultGateway": "",
                **changes,
            }
            for device in devices
        ]
        file = self.folder / name
        file.write_text(json.dumps(interfaces))
        return str(file)

    def shown(self, mac):
        """What a device shows at this moment: its name and the first interface's addresses."""
        host = self.console_documents("refresh", mac)[0]["Host"]
        nic = host["NICs"][0]
        return host["HostName"], nic["IPAddress"], nic["SubNetMask"], nic["DefaultGateway"], nic["MTU"]

    def change(self, *arguments, status):
        """The one change that the command tells of."""
        (document,) = self.console_documents(*arguments, status=status)
        return document["Change"]

    def journal(self):
        return self.console_documents("undo", "--list")

    def test_what_is_wrong_is_refused_with_its_code_and_not_sent(self):
        with Simulator("--count", "2") as simulator:
            first, second = simulator.devices
            self.console("configure", self.settings(second))
            before = self.shown(first.mac)
            windows = first.mac.replace(":", "-").lower()
            for name, code in (("", "bad-name"), ("  ", "bad-name"), ("a\tb", "bad-name"), ("x" * 256, "bad-name"),
                               (second.name, "name-taken")):  # fmt: skip
                change = self.change("rename", name, "--mac", windows, status=2)
                self.assertEqual((change["Verdict"], change["Code"]), ("not-sent", code))
                self.assertIn(f"({code})", self.console("rename", name, "--mac", windows, status=2)[1])
            for changes, code in (
                ({"SubNetMask": "0.255.0.0"}, "bad-mask"),
                ({"DefaultGateway": "10.2.0.1"}, "gateway-outside"),
                ({"IPAddress": "10.1.255.255"}, "bad-address"),
                ({"IPAddress": "10.1.0.11"}, "address-taken"),
            ):
                change = self.change("configure", self.settings(first, **changes), status=2)
                self.assertEqual((change["Verdict"], change["Code"]), ("not-sent", code))
            # One that is wrong keeps the right ones from being sent.
            both = self.console_documents("configure", self.settings(first, second, IPAddress="10.1.0.1"), status=2)
            self.assertEqual([each["Change"]["Code"] for each in both], ["left-out", "address-taken"])
            number = self.settings(first, MTU=1400)
            self.assertIn(f'{number}: line 1, column 2: "MTU" is no text (bad-file)',
                          self.console("configure", number, status=2)[1])  # fmt: skip
            unknown = self.change("rename", "x", "--mac", "02:00:00:00:00:99", "--timeout", "0.3", status=2)
            self.assertEqual(unknown["Code"], "unknown-device")
            self.assertRegex(self.console("rename", "x", "--mac", "02:00", status=2)[1], '--mac: "02:00" is no MAC')
            self.console("rename", "x", "--mac", first.mac, "--dry-run")
            self.assertEqual(self.shown(first.mac), before)
            self.assertEqual(len(self.journal()), 1)
            self.console("rename", second.name, "--mac", first.mac, "--force")
            self.console("rename", second.name, "--mac", first.mac, "--no-look")
        with Simulator("--count", "1", "--read-only-names") as simulator:
            change = self.change("rename", "x", "--mac", simulator.devices[0].mac, "--force", status=2)
            self.assertEqual(change["Code"], "name-read-only")

    def test_the_verdict_tells_what_has_come_of_it(self):
        with Simulator("--count", "1") as simulator:
            (device,) = simulator.devices
            rename = ("rename", "press-7", "--mac", device.mac, "--timeout", "1")
            line, _ = self.console(*rename, "--json")
            self.assertRegex(line, r'^{"Change":{"MACAddress":"[^ ]+","Verdict":"applied","Seconds":\d\.\d,"Before":{"HostName":'
                                   r'"[^ ]+"},"After":{"HostName":"press-7"}}}\n$')  # fmt: skip
            simulator.behave("refuse 100%")
            self.assertEqual(self.change("rename", "press-8", *rename[2:], status=3)["Verdict"], "refused")
            simulator.behave("refuse 0%")
            simulator.behave("reboot 3")
            change = self.change("rename", "press-9", *rename[2:], status=3)
            self.assertEqual((change["Verdict"], change["After"]), ("reboot-needed", {"HostName": "press-7"}))
            change = self.change("rename", "press-10", *rename[2:], "--reboot-timeout", "20", status=0)
            self.assertEqual(change["Verdict"], "applied")
            simulator.behave("reboot 0")
        self.assertEqual([each["Verdict"] for each in self.journal()],
                         ["applied", "refused", "reboot-needed", "applied"])  # fmt: skip

    def test_undo_takes_back_one_change_after_the_other(self):
        with Simulator("--count", "2") as simulator:
            first, second = simulator.devices
            before = [self.shown(device.mac) for device in simulator.devices]
            self.console("rename", "press-7", "--ip", first.ip)
            self.console("configure", self.settings(first, second), "--yes")
            self.assertEqual(self.shown(second.mac)[1], second.ip.replace("127.0.", "10.1."))
            self.assertIn("--yes", self.console("undo", status=2)[1])
            self.console("undo", "--dry-run", "--mac", second.mac)
            for answer, status in (("n\n", 2), (None, 130), ("y\n", 0)):
                terminal = OnTerminal(*self.console_options(), "undo")
                terminal.wait_for("[y/N]")
                if answer is None:
                    terminal.close()
                else:
                    terminal.type(answer)
                self.assertEqual(terminal.wait(), status, terminal.output)
            self.assertEqual(self.shown(second.mac), before[1])
            self.console("undo", "--yes", "--mac", first.mac)
            self.console("undo", "--yes")
            self.assertEqual(self.shown(first.mac), before[0])
            self.assertIn("no change to undo", self.console("undo", "--yes", status=2)[1])
        self.assertEqual([each["State"] for each in self.journal()], ["undone"] * 3 + ["done"] * 3)
        self.assertEqual((self.folder / "journal").stat().st_mode & 0o777, 0o600)

    def test_what_is_not_confirmed_is_taken_back(self):
        with Simulator("--count", "2") as simulator:
            device = simulator.devices[0]
            before = self.shown(device.mac)
            configure = ("configure", self.settings(*simulator.devices), "--confirm")
            change = self.console_documents(*configure, "1", status=3)[0]["Change"]
            self.assertEqual((change["Verdict"], change["TakenBack"]), ("applied", "applied"))
            self.assertEqual(self.shown(device.mac), before)

            for end in ("Ctrl-C", "closed", "refused"):
                with self.subTest(end):
                    terminal = OnTerminal(*self.console_options(), *configure, "60")
                    terminal.wait_for("[y/N]")
                    if end == "refused":
                        simulator.behave("refuse 50%")
                    terminal.type("y\n")
                    if end != "refused":
                        terminal.wait_for("Enter keeps them")
                        self.assertNotEqual(self.shown(device.mac), before)
                    if end == "closed":
                        terminal.close()
                    elif end == "Ctrl-C":
                        terminal.type("\x03")
                    self.assertEqual(terminal.wait(), 3 if end == "refused" else 130)
                    simulator.behave("refuse 0%")
                    self.assertEqual(self.shown(device.mac), before)

            terminal = OnTerminal(*self.console_options(), *configure, "60", "--force")
            terminal.wait_for("Enter keeps them")
            terminal.type("\n")
            self.assertEqual(terminal.wait(), 0, terminal.output)
            self.assertNotEqual(self.shown(device.mac), before)
            self.console("undo", "--yes", "--mac", device.mac)
            self.console(*configure, "60", "--yes")
            self.assertNotEqual(self.shown(device.mac), before)
        self.assertNotIn("open", [each["State"] for each in self.journal()])

    def test_a_device_in_a_foreign_subnet_is_changed_and_taken_back(self):
        machine = cabled(self, "10.7.0.1/24", "10.8.0.10/24")
        link = machine.cable.far.name
        machine.ip("address", "add", "10.7.0.10/32", "dev", link)  # on the link, since what it broadcasts leaves there
        machine.ip("route", "add", "default", "dev", link)
        self.local_addresses = ["10.7.0.1"]
        network = ("--count", "1", "--address", "10.8.0.10", "--by-broadcast", "--no-hello")
        with Simulator(*network, machine=machine) as simulator:
            (device,) = simulator.devices
            before = self.shown(device.mac)
            settings = self.settings(device, IPAddress="10.7.0.10", SubNetMask="255.255.255.0")
            change = self.change("configure", settings, "--no-look", status=0)
            self.assertEqual(change["Verdict"], "applied")
            self.assertEqual(self.shown(device.mac)[1], "10.7.0.10")
            self.console("undo", "--yes")
            self.assertEqual(self.shown(device.mac), before)

    def test_two_consoles_keep_one_journal(self):
        with Simulator("--count", "1", "--by-broadcast") as simulator:
            rename = ("rename", "--mac", simulator.devices[0].mac, "--no-look")
            for i in range(3):
                consoles = [self.start_console(*rename, f"press-{i}") for _ in range(2)]
                self.assertEqual([console.end() for console in consoles], [0, 0])
        self.assertEqual([each["State"] for each in self.journal()], ["done"] * 6)


if __name__ == "__main__":
    main()
