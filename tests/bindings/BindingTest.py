"""The bindings, each in a host program of its own language, with devices that are other processes."""

import argparse
import json
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "endtoend"))

from endtoend import (  # noqa: E402
    TIMEOUT,
    Peer,
    Process,
    Simulator,
    TestCase,
    ip,
    launcher,
    library_path,
    main,
    message,
    wait_until,
)
from networks import Occupant  # noqa: E402

INVALID_OPERATION = 30
NULL_POINTER = 41
SOCKET = 73
INVALID_FORMAT = 0xC0090114

KINDS = ("signature", "hello", "bye")

parser = argparse.ArgumentParser(add_help=False)
parser.add_argument("--language", choices=("cpp", "csharp", "python"), required=True)
parser.add_argument("--host", nargs="+", required=True, help="the command line of the host program")
options, sys.argv[1:] = parser.parse_known_args()


class Host(Process):
    """A host program that calls a binding as it is told to, and notes its events."""

    def __init__(self, folder, library=None, environment=None):
        arguments = [] if options.language == "cpp" else [library_path() if library is None else library]
        settings = [f"{name}={value}" for name, value in (environment or {}).items()]
        super().__init__(*(["env", *settings] if settings else []), *launcher(), *options.host, *arguments)
        # The first program under Wine starts Wine's services, which keep its output open until all programs have ended.
        self.line_with("ready")
        self.log = folder / "log.txt"
        self.notes = []

    def call(self, command, *arguments):
        """What became of it: "ok", an error's code, or the text of another failure."""
        self.write("\t".join((command, *arguments)))
        while not (line := self.line()).startswith("= "):
            self.notes.append(line)
        return self.outcome(line[2:])

    @staticmethod
    def outcome(text):
        kind, _, rest = text.partition(" ")
        return int(rest.split(" ", 1)[0]) if kind == "error" else rest if kind == "failure" else kind

    def must(self, command, *arguments):
        outcome = self.call(command, *arguments)
        if outcome != "ok":
            raise AssertionError(f"{command}: {outcome}")

    def open(self):
        self.must("open", str(self.log), "127.0.0.1")

    def note(self, *kinds):
        """Waits for a line of one of the kinds; returns the rest of it and forgets what was before."""
        while True:
            line = self.notes.pop(0) if self.notes else self.line()
            if line is None:
                raise AssertionError(f"ended without {kinds}")
            kind, _, rest = line.partition(" ")
            if kind in kinds:
                return json.loads(rest) if kind in KINDS else rest

    def event(self, kind, name):
        """Waits for an event of the device."""
        while (document := self.note(kind))["Host"]["HostName"] != name:
            pass
        return document


class SessionTest(TestCase):
    def setUp(self):
        super().setUp()
        self.host = self.enterContext(Host(self.folder))
        self.host.open()
        self.host.must("start")

    def test_events_bear_all_that_the_device_has_said(self):
        products = [
            {"ProductType": "Runtime", "ProductSerialNumber": "1", "ProductVersion": "2.0", "ProductName": "Line"},
            {"ProductType": "Panel", "ProductSerialNumber": "2", "ProductVersion": "2.1", "ProductName": 'a "b" \\'},
        ]
        sent = message(
            "Hello",
            "Prüfstand 😀",
            IsHostNameReadOnly=True,
            RebootRequiredForIPConfigChange=False,
            RebootRequiredForHostNameChange=True,
            DeviceFamily="P500",
            SerialNumber="4711",
            Products=products,
            FileTransferInfos={"Protocol": "SFTP", "__type": "x"},
        )
        nic = {**sent["SourceNIC"], "MTU": "Unknown"}
        sent["Host"]["NICs"] = [nic, {**nic, "MTU": "1500", "FriendlyName": "eth1"}]
        with Peer() as peer:
            peer.send(sent)
            document = self.host.note("hello")
            self.assertEqual(document, {"Host": sent["Host"], "SourceNIC": nic})
            del sent["SourceNIC"]
            peer.send({**sent, "DiscoveryMessageType": "Bye"})
            self.assertEqual(self.host.note("bye"), {"Host": sent["Host"]})

    def test_requests_reach_the_devices_and_their_answers_the_host(self):
        with Simulator("--count", "2") as simulator:
            first, second = simulator.devices
            self.host.must("discover")
            found = {self.host.note("signature")["Host"]["HostName"] for _ in simulator.devices}
            self.assertEqual(found, {first.name, second.name})
            self.host.must("refresh", second.mac)
            self.host.event("signature", second.name)
            self.host.must("reach", first.ip)
            self.host.event("signature", first.name)
            self.host.must("rename", "Prüfstand", second.mac)
            self.host.event("signature", "Prüfstand")
            self.host.must("rename-ip", "press 2", first.ip)
            settings = self.host.event("signature", "press 2")["SourceNIC"]
            settings.update(FriendlyName='a "b" \\', IPAddress="127.0.0.66")
            self.host.must("configure", *settings.values())
            self.assertEqual(self.host.event("signature", "press 2")["SourceNIC"], settings)
        self.host.event("bye", "press 2")

    def test_what_the_library_refuses_is_an_error_with_its_code(self):
        for code, command, *arguments in (
            (INVALID_FORMAT, "refresh", "00:11:22:33:44"),
            (INVALID_FORMAT, "reach", "1.2.3.256"),
            (INVALID_FORMAT, "rename", "name", ""),
            (INVALID_FORMAT, "rename-ip", "name", "localhost"),
            (INVALID_FORMAT, "configure", 'a "b" \\', "1", "127.0.0.1", "255.0.0.0", "", "1500"),
            (INVALID_FORMAT, "provider", "127.0.0.1", 'a "b" \\'),
            (INVALID_FORMAT, "min-version", "1"),
            (INVALID_OPERATION, "second", str(self.folder / "second.txt")),
        ):
            with self.subTest(command, arguments=arguments):
                self.assertEqual(self.host.call(command, *arguments), code)
        self.assertIn("NUL", self.host.call("rename", "na\\0me", "00:11:22:33:44:55"))
        self.host.must("stop")
        self.assertEqual(self.host.call("discover"), NULL_POINTER)
        self.host.must("close")
        self.assertEqual(self.host.call("discover"), INVALID_OPERATION)
        self.assertEqual(self.host.call("start"), INVALID_OPERATION)

    def test_bytes_that_are_not_text_arrive_as_replacement_characters(self):
        raw = json.dumps(message("Hello", "NAME")).encode()
        with Peer() as peer:
            peer.send(raw.replace(b"NAME", b"a\xff\xfe\xc3(\xed\xa0\x80\\u0001\\u001b[2Jz"))
            name = self.host.note("hello")["Host"]["HostName"]
            self.assertRegex(name, "^a\ufffd{3}\\(\ufffd+\x01\x1b\\[2Jz$")
            peer.send(message("Hello", "next"))
            self.host.event("hello", "next")

    def test_a_handler_that_throws_costs_its_own_event_only(self):
        self.host.must("on", "hello", "throw")
        with Peer() as peer:
            for name in ("one", "two"):
                peer.send(message("Hello", name))
                self.assertIn("thrown by the handler", self.host.note("reported"))
            peer.send(message("Bye", "three"))
            self.host.event("bye", "three")

    def test_what_would_wait_for_the_handler_is_an_error_inside_it(self):
        with Peer() as peer:
            for action in ("start", "stop", "close"):
                self.host.must("on", "hello", action)
                peer.send(message("Hello"))
                self.assertRegex(self.host.note("handler"), rf"^error {INVALID_OPERATION} ")
            self.host.must("on", "hello", "discover")
            peer.send(message("Hello"))
            self.assertEqual(self.host.note("handler"), "ok")
            self.host.must("close")

    def test_closing_waits_for_a_handler_that_makes_a_request_and_stops(self):
        self.host.must("on", "hello", "hold")
        with Peer() as peer:
            peer.send(message("Hello"))
            self.host.note("holding")
        self.host.must("close-in-background")
        self.host.must("release")
        self.assertRegex(self.host.note("handler"), rf"^(ok$|error {INVALID_OPERATION} )")
        self.assertRegex(self.host.note("handler"), rf"^error {INVALID_OPERATION} ")
        self.assertEqual(self.host.note("closed"), "ok")

    def test_the_host_may_end_while_messages_come(self):
        with Simulator("--count", "200", "--no-hello"):
            for _ in range(5):
                self.host.must("discover")
            self.host.note("signature")
            self.host.process.stdin.close()
            self.host.process.wait(TIMEOUT)
        self.assertEqual(self.host.wait(), 0)
        self.assertIn("Close Log", self.host.log.read_text(errors="replace"))


class LifeCycleTest(TestCase):
    def setUp(self):
        super().setUp()
        self.host = self.enterContext(Host(self.folder))

    def test_a_host_starts_stops_and_opens_again(self):
        with Simulator("--count", "1", "--no-hello") as simulator:
            for _ in range(2):
                self.host.open()
                for _ in range(2):
                    self.host.must("start")
                    self.host.must("start")
                    self.host.must("discover")
                    self.host.event("signature", simulator.devices[0].name)
                    self.host.must("stop")
                    self.host.must("stop")
                    self.assertEqual(self.host.notes, [])  # a second start has not set the callbacks twice
                self.host.must("close")
                self.host.must("close")
        self.assertEqual(self.host.log.read_text().count("Discovery Server stopped"), 4)

    def test_a_log_that_cannot_be_opened_leaves_nothing_behind(self):
        self.host.log.mkdir()
        self.assertIsInstance(self.host.call("open", str(self.host.log)), int)
        self.host.log.rmdir()
        self.host.open()

    def test_a_start_that_failed_may_be_tried_again(self):
        self.host.open()
        with Occupant(shares=False):
            self.assertEqual(self.host.call("start"), SOCKET)
            self.assertEqual(self.host.call("start"), SOCKET)
        self.host.must("start")
        with Peer() as peer:
            peer.send(message("Hello", "first"))
            self.host.event("hello", "first")


class InventoryTest(TestCase):
    def setUp(self):
        super().setUp()
        self.host = self.enterContext(Host(self.folder))
        self.host.open()
        self.host.must("start")

    def search(self, *arguments):
        """The outcome, and the names of the devices."""
        self.host.must("search", *arguments)
        outcome, *devices = self.host.note("found").split()
        return outcome, {device.removesuffix(":present") for device in devices}

    def is_held(self):
        self.host.must("held")
        return self.host.note("held") == "yes"

    def test_a_search_finds_all_devices_and_those_that_leave_are_told(self):
        self.host.must("inventory", "10000")
        with Simulator("--count", "3", "--no-hello") as simulator:
            names = {device.name for device in simulator.devices}
            self.assertEqual(self.search("10000"), ("complete", names))
        self.assertEqual({self.host.note("left") for _ in names}, names)
        self.host.must("devices")
        self.assertEqual(set(self.host.note("devices").split()), {name + ":left" for name in names})
        self.assertEqual(self.search("200"), ("incomplete", set()))

    def test_addresses_are_asked_one_by_one_where_a_route_leads(self):
        self.host.must("inventory", "0")
        route = ("unreachable", "198.51.100.0/24")
        ip("route", "add", *route)
        self.addCleanup(ip, "route", "del", *route)
        self.host.must("provider")  # so that nobody hears a question to all
        with Simulator("--count", "2", "--no-hello") as simulator:
            device = simulator.devices[1]
            self.assertEqual(self.search("3000", device.ip, "198.51.100.7")[1], {device.name})
        self.assertNotIn("Asynchronous restart", self.host.log.read_text(errors="replace"))

    def change(self, *arguments):
        self.host.must(*arguments)
        return self.host.note("outcome").split()

    def test_a_device_is_renamed_and_given_its_name_back(self):
        self.host.must("inventory", "10000")
        with Simulator("--count", "2", "--no-hello") as simulator:
            one, two = simulator.devices
            self.assertEqual(self.change("give-name", "press-4", one.mac), ["applied", one.name])
            self.assertEqual(self.change("give-name", "press-4", two.mac), ["notsent", "name-taken"])
            self.assertIn("it is not known what the device had", self.host.call("give-back"))
            self.assertEqual(self.change("give-name", "press-5", one.mac), ["applied", "press-4"])
            self.assertEqual(self.change("give-back"), ["applied", "press-5"])
            self.assertEqual(self.search("10000"), ("complete", {"press-4", two.name}))
        self.assertIn("is no MAC address", self.host.call("give-name", "press-4", "02:00"))

    def test_the_next_host_takes_back_what_the_journal_has(self):
        journal = self.folder / "changes"
        self.host.must("inventory", "10000", str(journal))
        with Simulator("--count", "2", "--no-hello") as simulator:
            one, two = simulator.devices
            for name, device in (("press-4", one), ("press-5", two), ("press-6", one)):
                self.assertEqual(self.change("give-name", name, device.mac)[0], "applied")
            self.assertEqual(self.change("give-back"), ["applied", "press-6"])
            self.host.must("close")
            journal.write_text(journal.read_text() + '{"Time":"2026')  # as a power cut leaves it
            with Host(self.folder) as self.host:
                self.host.open()
                self.host.must("start")
                self.host.must("inventory", "10000", str(journal))
                self.assertEqual(self.change("give-back-newest", one.mac), ["applied", "press-4"])
                self.assertIn("no change to undo", self.host.call("give-back-newest", one.mac))
                self.host.must("journal")
                states = [f"{one.mac}:undone", f"{two.mac}:done", f"{one.mac}:undone"]
                self.assertEqual(self.host.note("journal").split(), states + [f"{one.mac}:done"] * 2)
                self.assertIn("cannot read the journal", self.host.call("inventory", "0", str(self.folder)))
                self.host.must("inventory", "0", "")
                self.host.must("inventory", "0", str(journal / "none"))
                self.assertEqual(self.change("give-name", "press-7", two.mac), ["notsent", "press-5", "send-failed"])

    def test_a_search_does_not_end_with_that_of_a_change_which_makes_way(self):
        self.host.must("inventory", "0")
        with Simulator("--count", "1", "--no-hello") as simulator:
            self.host.must("give-name-in-background", "press-4", "02:00:00:00:99:99")
            (device,) = simulator.devices
            self.assertEqual(self.host.note("appeared"), device.name)
            self.assertEqual(self.search("10000"), ("complete", {device.name}))
            self.host.note("outcome")

    def test_what_devices_change_and_contradict_is_told(self):
        self.host.must("inventory", "0")
        with Peer() as peer:
            peer.send(message("Hello", 'a "b"\t\\ü', SerialNumber="1"))
            self.assertEqual(self.host.note("appeared"), 'a "b"\t\\ü')
            peer.send(message("Hello", "two", SerialNumber="1"))
            self.assertEqual(self.host.note("changed"), 'HostName a "b"\t\\ü two')
            peer.send(message("Hello", "two", mac="02:00:00:00:00:02", SerialNumber="2"))
            self.assertEqual(self.host.note("conflict"), "name two 1 2")

    def test_another_program_on_the_port_is_seen(self):
        with Occupant():
            self.host.must("inventory", "0")
            wait_until(self.is_held, "the port is held")
        wait_until(lambda: not self.is_held(), "the port is free")

    def test_what_is_not_possible_is_refused(self):
        self.assertIn("AskEvery", self.host.call("inventory", "-1"))
        self.host.must("inventory", "0")
        self.assertIn('"10.0.0.300" is no IPv4 address', self.host.call("search", "1000", "10.0.0.300"))

    if options.language != "python":  # where changes come from an iterator

        def test_what_handlers_throw_is_reported(self):
            self.host.must("inventory", "0")
            self.host.must("on", "appeared", "throw")
            with Peer() as peer:
                peer.send(message("Hello", "one"))
                self.assertIn("thrown by the handler", self.host.note("reported"))
                if options.language == "cpp":
                    self.host.must("on", "appeared", "search")
                    peer.send(message("Hello", "two", mac="02:00:00:00:00:02"))
                    self.assertIn("would wait for the handler", self.host.note("handler"))


if options.language != "cpp":  # there the linker finds the library, and memory is not collected

    class LibraryTest(TestCase):
        def test_a_wrong_library_is_refused_with_advice(self):
            text_file = self.folder / "text.so"
            text_file.write_text("not a library")
            for path in (self.folder / "missing.so", text_file):
                with Host(self.folder, str(path)) as host:
                    failure = host.call("open", str(host.log))
                self.assertIn(f"cannot load the library {path}", failure)
                self.assertIn("DISCOVERY_LIBRARY", failure)
                self.assertFalse(host.log.exists())

        def test_a_library_that_lacks_a_function_is_refused(self):
            with Host(self.folder, "/lib/x86_64-linux-gnu/libm.so.6") as host:
                failure = host.call("open", str(host.log))
            self.assertIn("libm.so.6 lacks the function Initialize", failure)

        def test_without_a_path_the_system_finds_the_installed_library(self):
            (self.folder / "libDiscoveryServer.ExtC.so.1").symlink_to(pathlib.Path(library_path()).resolve())
            with Host(self.folder, "", {"LD_LIBRARY_PATH": str(self.folder)}) as host:
                host.open()

    class MemoryTest(TestCase):
        def test_collections_take_nothing_that_the_library_still_calls(self):
            with Simulator("--count", "50", "--no-hello"), Host(self.folder) as host:
                host.open()
                host.must("start")
                for _ in range(20):
                    host.must("discover")
                    host.must("collect")
                    for _ in range(50):
                        host.note("signature")
                        if len(host.notes) % 10 == 0:
                            host.must("collect")


if __name__ == "__main__":
    main()
