"""Each thing that keeps devices from being found is brought about on a machine of its own, and the doctor names it."""

import contextlib
import ctypes
import os
import pathlib
import signal
import subprocess

import endtoend
from endtoend import Peer, Simulator, TestCase, main, message, wait_until
from networks import Cable, End, Machine, Occupant

DEVICE = "10.6.0.10"
WITHOUT_RIGHTS = ["setpriv", "--bounding-set=-all", "--inh-caps=-all"]


PTRACE_SEIZE, PTRACE_INTERRUPT, PTRACE_DETACH = 0x4206, 0x4207, 17
WALL = 0x40000000  # waitpid for threads, too
libc = ctypes.CDLL(None, use_errno=True)
libc.ptrace.argtypes = (ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p)


@contextlib.contextmanager
def suspended_thread(process, name):
    """One thread of a process stands still."""
    (thread,) = (int(each.name) for each in pathlib.Path(f"/proc/{process}/task").iterdir()
                 if (each / "comm").read_text().strip() == name)  # fmt: skip

    def trace(request):
        if libc.ptrace(request, thread, None, None) == -1:
            raise OSError(ctypes.get_errno(), "ptrace")

    trace(PTRACE_SEIZE)
    trace(PTRACE_INTERRUPT)
    os.waitpid(thread, WALL)
    try:
        yield
    finally:
        trace(PTRACE_DETACH)


class DoctorTest(TestCase):
    """A laptop with a cable to the devices' network, and a default route."""

    def setUp(self):
        super().setUp()
        self.laptop = self.enterContext(Machine())
        self.field = self.enterContext(Machine())
        self.cable = self.enterContext(Cable(End(self.laptop, "10.6.0.1/24"), End(self.field, f"{DEVICE}/24")))
        self.laptop.ip("route", "add", "default", "via", "10.6.0.254")

    wait = "1"  # seconds
    local_addresses = []

    def console_options(self):
        return [*super().console_options(), "--wait", self.wait]

    def devices(self, *options, addresses=(DEVICE,)):
        for address in addresses:
            options += ("--address", address)
        options += ("--count", str(len(addresses)), "--no-hello", "--no-bye")
        return self.enterContext(Simulator(*options, machine=self.field))

    def findings(self, *options, status):
        """What the doctor finds wrong, by code."""
        documents = self.console_documents("doctor", *options, machine=self.laptop, status=status)
        return {document["Code"]: document for document in documents}

    def assert_finds(self, code, text, *options, status=5):
        """Nothing else is found, either."""
        findings = self.findings(*options, status=status)
        self.assertEqual(list(findings), [code], findings)
        self.assertRegex(findings[code]["Text"], text)
        self.assertTrue(findings[code]["Affects"] and findings[code]["Title"])
        return findings[code]

    def reason(self):
        """What discover says when nobody answers."""
        return self.console("discover", machine=self.laptop, status=3)[1]

    def test_a_healthy_network_is_told_healthy(self):
        self.devices()
        self.assertEqual(self.findings(status=0), {})
        listed = [document["Code"] for document in self.console_documents("doctor", "--list")]
        self.assertEqual(list(self.findings("-v", status=0)), listed)
        output, _ = self.console("doctor", machine=self.laptop)
        self.assertEqual([line.split()[:2] for line in output.splitlines()], [["[ok]", code] for code in listed])
        self.assertEqual(list(self.findings("-v", "--check", "firewall", status=0)), ["firewall"])
        self.console("doctor", "--check", "luck", status=2)

    def test_a_network_that_is_not_there(self):
        self.assert_finds("nobody-answers", "within 1 s", status=7)
        self.assertIn("no device found. Look for devices without power", self.reason())
        self.wait = "4"
        with self.start_console("watch", "--every", "1", machine=self.laptop) as watch:
            watch.line_with("no device has answered. Look for devices without power")
        self.wait = "1"
        self.laptop.ip("route", "delete", "default")
        self.devices()
        self.assert_finds("no-route", "No default route")
        self.cable.near.down()
        self.assert_finds("no-interface", r"left out: lo \(loopback\), eth1 \(", status=7)

    def test_the_address_to_send_from_goes_away(self):
        self.local_addresses = ["10.6.0.1"]
        with self.start_console("discover", machine=self.laptop) as search:
            wait_until(lambda: "---Listening..." in self.log_text(), "the start of the server")
            self.cable.near.readdress(None)
            search.line_with("no device found. No network interface can take part in a search; left out: 10.6.0.1")
            self.assertEqual(search.wait(), 3)

    def test_other_programs_on_the_port(self):
        self.devices()
        with Occupant(self.laptop) as other:
            self.assert_finds("port-shared", rf"with python3 \(process {other.process.pid}\)")
        with Occupant(self.laptop, shares=False) as other:
            finding = self.assert_finds("port-taken", rf"by python3 \(process {other.process.pid}\)", status=7)
            self.assertEqual(finding["Commands"], ["sudo ss -ulpn sport = :12001"])
            for command in "discover", "watch":
                self.assertIn(finding["Text"], self.console(command, machine=self.laptop, status=1)[1])
            hidden = self.findings("--check", "nobody-answers", status=7)
            self.assertEqual(list(hidden), ["port-taken"])

    def test_a_firewall_that_drops_answers(self):
        self.devices()
        rules = "table inet guard { chain input { type filter hook input priority 0; policy drop; iif lo accept; }; }"
        self.laptop.run("nft", "-f", "-", text=rules)
        finding = self.assert_finds("firewall", "is dropped by the rules of chain input of table inet guard")
        self.assertIn(finding["Text"], self.reason())
        (command,) = finding["Commands"]
        self.laptop.run(*command.split()[1:])  # without sudo
        self.assertEqual(self.findings(status=0), {})

    def test_messages_that_the_library_drops(self):
        simulator = self.devices("--protocol-version", "1.0.17")
        self.assert_finds("version-dropped", r"1 message was dropped from 10\.6\.0\.10: version 1\.0\.17", "--min-version", "1.0.18")
        simulator.behave("malformed 100%")
        self.assert_finds("format-dropped", r"1 datagram was dropped from 10\.6\.0\.10")
        simulator.behave("malformed 0%")
        simulator.behave("oversize 100%")
        self.assertIn("1 datagram was too large", self.findings(status=7)["answers-lost"]["Text"])

    def test_answers_that_find_the_receive_buffer_full(self):
        addresses = [f"10.6.0.{number}" for number in range(10, 250)]
        self.field.own(addresses[1:])
        simulator = self.devices("--delay", "1000", "--size", "4000", "--verbose", addresses=addresses)
        self.wait = "5"
        doctor = self.start_console("doctor", "--json", machine=self.laptop)
        self.addCleanup(doctor.process.stdin.close)
        simulator.line_with("answers AllSendYourSignature")
        doctor.process.send_signal(signal.SIGSTOP)
        try:
            wait_until(lambda: self.drops() > 0, "a full receive buffer")
        finally:
            doctor.process.send_signal(signal.SIGCONT)
        self.assertRegex(doctor.line_with("answers-lost"), r"\d+ datagrams? found the receive buffer full")
        self.assertEqual(doctor.wait(), 5)

    def test_a_queue_that_is_full(self):
        simulator = self.devices("--verbose")
        self.wait = "3"
        with self.start_console("doctor", "--json", "--check", "queue-full", machine=self.laptop) as doctor:
            simulator.line_with("answers AllSendYourSignature")
            with suspended_thread(doctor.process.pid, "MessageParser"):
                simulator.behave("flood 5000")
                wait_until(lambda: self.received() > 800, "more messages than fit into the queue")
                simulator.behave("flood 0")
            self.assertRegex(doctor.line_with("queue-full"), r"could not keep up: \d+ entr.* refused by its queues")
            self.assertEqual(doctor.wait(), 5)

    def drops(self):
        return sum(int(line.split()[-1]) for line in self.table("udp") if ":2EE1 " in line)

    def received(self):
        names, values = (line.split() for line in self.table("snmp") if line.startswith("Udp:"))
        return int(dict(zip(names, values))["InDatagrams"])

    def table(self, name):
        """What the laptop's system tells of its network."""
        command = [*self.laptop.prefix(), "cat", f"/proc/net/{name}"]
        return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines()

    def test_addresses_that_do_not_fit(self):
        with self.subTest("foreign"):
            self.field.own(["10.7.0.10"])
            with Simulator("--count", "1", "--address", "10.7.0.10", "--no-hello", machine=self.field):
                self.assert_finds("foreign-subnet", r"\(10\.7\.0\.10\) lies in none")
        with self.subTest("the same twice"):
            self.devices(addresses=(DEVICE, DEVICE))
            self.assert_finds("conflict", r"the IP address 10\.6\.0\.10 belongs to 2 devices")

    def test_what_a_user_without_rights_is_told(self):
        self.devices()
        endtoend.launcher()[:0] = WITHOUT_RIGHTS
        self.addCleanup(endtoend.launcher().__delitem__, slice(len(WITHOUT_RIGHTS)))
        findings = self.findings(status=0)
        self.assertEqual({code: each["Severity"] for code, each in findings.items()},
                         {"firewall": "note", "no-realtime": "note"})  # fmt: skip
        self.assertIn("shows to root alone", findings["firewall"]["Text"])


class ConflictTest(TestCase):
    def test_names_and_mac_addresses_that_devices_share(self):
        with (
            Peer() as peer,
            self.start_console("--wait", "1", "doctor", "--json", "--check", "conflict") as doctor,
        ):
            peer.receive()
            for name, number, serial in (("twin", 1, "1"), ("twin", 2, "2"), ("other", 2, "3")):
                answer = message("SignatureBroadcast", name, mac=f"02:00:00:00:00:0{number}", SerialNumber=serial)
                answer["SourceNIC"]["IPAddress"] = f"127.0.0.{serial}"
                loopback = {**answer["SourceNIC"], "MACAddress": "00:00:00:00:00:00", "IPAddress": "127.0.0.1"}
                answer["Host"]["NICs"] = [answer["SourceNIC"], loopback]
                peer.send(answer)
            finding = doctor.line_with('"conflict"')
            self.assertIn("the MAC address 02:00:00:00:00:02 belongs to 2 serial numbers", finding)
            self.assertIn("the name twin belongs to 2 devices", finding)
            self.assertNotIn("address 00:00", finding)
            self.assertNotIn("IP address", finding)
            self.assertEqual(doctor.wait(), 5)

    def test_a_device_that_answers_on_two_interfaces_is_one(self):
        answers = [message("SignatureBroadcast", mac=f"02:00:00:00:00:0{number}") for number in (1, 2)]
        nics = [answer["SourceNIC"] for answer in answers]
        with Peer() as peer, self.start_console("--wait", "1", "doctor", "--json", "-v", "--check", "conflict") as doctor:
            peer.receive()
            for answer in answers:
                answer["Host"]["NICs"] = nics
                peer.send(answer)
            self.assertIn('"Severity":"ok"', doctor.line_with('"conflict"'))
            self.assertEqual(doctor.wait(), 0)


if __name__ == "__main__":
    main()
