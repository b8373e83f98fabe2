"""What the binding for Python has of its own: its iterator, its packaging, and its manners in a Python process."""

import asyncio
import json
import os
import pathlib
import re
import subprocess
import sys
import unittest.mock

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "endtoend"))

import discovery_server  # noqa: E402
from discovery_server.inventory import IncompleteSearchError, Inventory, InventoryError  # noqa: E402
from endtoend import TIMEOUT, Peer, Simulator, TestCase, library_path, main, message, setting, wait_until  # noqa: E402
from networks import cabled  # noqa: E402


class PythonTestCase(TestCase):
    def session(self, **options):
        log = self.folder / "log.txt"
        return discovery_server.Session(log, library=library_path(), local_addresses=["127.0.0.1"], **options)


class EventsTest(PythonTestCase):
    def test_the_iterator_yields_parsed_documents_until_it_is_quiet(self):
        with Simulator("--count", "3", "--no-hello") as simulator, self.session() as session:
            session.discover()
            events = list(session.events(timeout=1))
        self.assertEqual({event.kind for event in events}, {discovery_server.EventKind.SIGNATURE})
        self.assertEqual(
            {(event.host["HostName"], event.source_nic["MACAddress"]) for event in events},
            {(device.name, device.mac) for device in simulator.devices},
        )
        self.assertEqual(list(session), [])  # closed: no endless wait

    def test_the_oldest_events_are_lost_when_nobody_takes_them(self):
        with Peer() as peer, self.session(max_waiting_events=2) as session:
            for name in ("one", "two", "three"):
                peer.send(message("Hello", name))
            wait_until(lambda: session.lost_events > 0, "an event too many")
            self.assertEqual([event.host["HostName"] for event in session.events(timeout=0)], ["two", "three"])

    def test_a_handler_without_on_error_fails_into_the_log(self):
        def handler(event):
            next(session.events())  # would wait for itself

        with Peer() as peer, self.session(on_hello=handler) as session:
            with self.assertLogs("discovery_server", "ERROR") as logs:
                peer.send(message("Hello", "one"))
                self.assertEqual(next(session.events()).host["HostName"], "one")
                session.stop()  # waits for the handler
        self.assertIn("events failed", logs.output[0])


class InventoryTest(PythonTestCase):
    def test_a_failure_of_its_thread_stops_nothing(self):
        failing = [RuntimeError("no luck"), *[unittest.mock.DEFAULT] * 100]
        with Simulator("--count", "1"), self.session() as session, Inventory(session) as inventory:
            with unittest.mock.patch.object(session, "discover", side_effect=failing, wraps=session.discover):
                with self.assertLogs("discovery_server.inventory", "ERROR"):
                    self.assertEqual(len(inventory.discover()), 1)

    def test_a_search_that_may_have_lost_answers_asks_the_addresses_of_this_machine_s_networks(self):
        cabled(self, "10.9.0.1/30", None)
        session = self.session()
        self.addCleanup(session.close)

        def answer():  # the server is not started, so nobody knows what is lost
            for i in range(40):
                document = json.dumps(message("SignatureBroadcast", f"d{i}", mac=f"02:00:00:00:00:{i:02X}"))
                session._receive(discovery_server.EventKind.SIGNATURE, document.encode())

        with unittest.mock.patch.multiple(session, discover=answer, reach_client=unittest.mock.DEFAULT) as mocks:
            with Inventory(session, AskEvery=0) as inventory, self.assertRaises(IncompleteSearchError):
                inventory.discover(wait=3)
        mocks["reach_client"].assert_any_call("10.9.0.2")

    def test_changes_come_to_async_for(self):
        async def watch(inventory):
            asyncio.get_running_loop().call_soon(peer.send, message("Hello", "one"))
            told = []
            async for change in inventory:
                told.append(change)
                if len(told) == 1:
                    peer.send(message("SignatureBroadcast", "two"))
                else:
                    inventory.close()
            return told

        with Peer() as peer, self.session() as session, Inventory(session, AskEvery=0) as inventory:
            told = asyncio.run(asyncio.wait_for(watch(inventory), TIMEOUT))
        self.assertEqual([change.kind.value for change in told], ["appeared", "changed"])
        (difference,) = told[1].differences
        self.assertEqual((difference.property, difference.before, difference.after), ("HostName", "one", "two"))

    def test_the_devices_of_a_search_come_to_async_for(self):
        async def names(inventory):
            return {device.host["HostName"] async for device in inventory.discover_async()}

        with Simulator("--count", "2") as simulator, self.session() as session, Inventory(session) as inventory:
            self.assertEqual(asyncio.run(names(inventory)), {device.name for device in simulator.devices})

    def test_what_is_not_possible_is_refused(self):
        with self.session() as session:
            with self.assertRaisesRegex(discovery_server.LibraryError, "cannot load the library"):
                Inventory(session, library=self.folder / "missing.so")
            with self.assertRaisesRegex(InventoryError, '"Askevery" is none of'):
                Inventory(session, Askevery=1)
            with Inventory(session, AskEvery=0) as inventory:
                with self.assertRaisesRegex(InventoryError, '"10.0.0.300" is no IPv4 address'):
                    inventory.discover(also=["10.0.0.300"])
                with self.assertRaises(IncompleteSearchError) as context:
                    inventory.discover(wait=0.2)  # nobody is there
            self.assertEqual((context.exception.devices, context.exception.report["Devices"]), ([], 0))


class ArgumentTest(PythonTestCase):
    def test_a_text_or_a_document_is_no_list(self):
        with self.session() as session, Inventory(session, AskEvery=0) as inventory:
            for call, value in (
                (session.init_broadcast_provider, "127.0.0.1"),
                (session.change_clients_ip_configurations, {"FriendlyName": "eth0"}),
                (lambda value: inventory.discover(also=value), "127.0.0.1"),
                (lambda value: Inventory(session, networks=value), "127.0.0.1/8"),
            ):
                with self.assertRaisesRegex(TypeError, "a list is expected, not ['{]"):
                    call(value)


class ProcessTest(PythonTestCase):
    def test_an_exception_leaves_the_session_closed(self):
        with self.assertRaises(KeyError), self.session():
            raise KeyError
        with self.session() as session:
            session.discover()

    def test_a_child_process_leaves_the_library_to_its_parent(self):
        program = (
            "import os, discovery_server as d, sys\n"
            "session = d.Session(sys.argv[1], library=sys.argv[2], local_addresses=['127.0.0.1'])\n"
            "session.start()\n"
            "child = os.fork()\n"
            "if child == 0:\n"
            "    try:\n"
            "        session.discover()\n"
            "    except d.DiscoveryError as error:\n"
            "        sys.exit(error.code)\n"
            "status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])\n"
            "session.discover()\n"
            "sys.exit(status)\n"
        )
        result = subprocess.run(
            [sys.executable, "-c", program, str(self.folder / "log.txt"), library_path()], timeout=TIMEOUT, check=False
        )
        self.assertEqual(result.returncode, discovery_server.ErrorCode.INVALID_OPERATION)


class PackageTest(TestCase):
    def setUp(self):
        super().setUp()
        self.binding = setting("source") / "bindings" / "python"

    def test_types_are_complete_on_both_systems(self):
        for system in ("linux", "win32"):
            result = subprocess.run(
                ["mypy", "--strict", "--python-version", "3.9", "--platform", system,
                 "--cache-dir", str(self.folder / "cache"), "discovery_server", "sample.py"],
                cwd=self.binding, capture_output=True, text=True, check=False,
            )  # fmt: skip
            self.assertEqual(result.returncode, 0, result.stdout + result.stderr)

    def test_the_wheel_brings_the_libraries_and_the_version_of_the_product(self):
        wheels = self.folder / "wheels"
        output = subprocess.run([self.binding / "pack", wheels, "sdist", "linux"], capture_output=True, check=True, text=True)
        source, wheel = output.stdout.splitlines()
        version = re.search(r"project\(DiscoveryServer VERSION ([0-9.]+)",
                            (setting("source") / "CMakeLists.txt").read_text())[1]  # fmt: skip
        self.assertEqual(pathlib.Path(source).name, f"discovery-server-{version}.tar.gz")
        target = self.folder / "target"
        # The system's Python has pip, whichever one runs the tests.
        subprocess.run(["/usr/bin/python3", "-m", "pip", "--disable-pip-version-check", "--no-cache-dir", "install",
                        "--quiet", "--no-index", "--target", target, wheel], check=True)  # fmt: skip
        self.assertTrue((target / "discovery_server" / "py.typed").exists())
        (terms,) = target.glob("*.dist-info/LICENSE")
        self.assertIn("cJSON", terms.read_text())
        environment = {name: value for name, value in os.environ.items() if not name.startswith("DISCOVERY_")}
        environment["PYTHONPATH"] = str(target)
        program = (
            "import discovery_server as d, discovery_server.inventory as i\n"
            "with d.Session('log.txt') as session, i.Inventory(session): print(d.__version__, d.__file__)"
        )
        output = subprocess.run([sys.executable, "-c", program], env=environment, cwd=self.folder,
                                capture_output=True, text=True, check=True).stdout  # fmt: skip
        self.assertEqual(output, f"{version} {target}/discovery_server/__init__.py\n")


if __name__ == "__main__":
    main()
