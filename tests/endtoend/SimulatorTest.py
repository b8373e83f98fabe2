"""What the simulated devices send, heard by nothing but a socket."""

import json
import socket
import subprocess
import time

from endtoend import DEVICE_PORT, SERVER_PORT, Process, Simulator, TestCase, command, main, setting, wait_until
from networks import cabled

QUESTION = json.dumps(
    {"DiscoveryMessageType": "AllSendYourSignature", "DiscoveryVersion": "1.0.18", "Broadcast": "True"}
).encode()
RENAME = json.dumps(
    {
        "DiscoveryMessageType": "ChangeYourHostName",
        "DiscoveryVersion": "1.0.18",
        "Broadcast": "True",
        "NewHostName": "renamed",
        "TargetedMACAddress": "02:00:00:00:00:00",
    }
).encode()
SO_RCVBUFFORCE = 33
PATIENCE = 3  # seconds to wait for the first answer
QUIET = 0.5  # seconds without an answer, after which no more will come


def names_in(answers):
    return [json.loads(data)["Host"]["HostName"] for data in answers]


class Asker:
    """A host that asks all devices, from a local address, and loses no answer."""

    def __init__(self, address="127.0.0.1"):
        self.receiving = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.receiving.setsockopt(socket.SOL_SOCKET, SO_RCVBUFFORCE, 64 * 2**20)
        self.receiving.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.receiving.bind(("", SERVER_PORT))
        self.sending = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.sending.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
        self.sending.bind((address, 0))

    def ask(self, question=QUESTION):
        """The answers, and how many seconds after the first one the last one came."""
        self.sending.sendto(question, ("255.255.255.255", DEVICE_PORT))
        answers = []
        first = last = time.monotonic()
        self.receiving.settimeout(PATIENCE)
        while True:
            try:
                data = self.receiving.recv(65536)
            except TimeoutError:
                return answers, last - first
            last = time.monotonic()
            first = first if answers else last
            answers.append(data)
            self.receiving.settimeout(QUIET)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.receiving.close()
        self.sending.close()


class SimulatorTest(TestCase):
    def test_a_seed_gives_the_same_devices_however_many(self):
        listings = []
        for options in (["--count", "5", "--seed", "9"], ["--count", "2", "--seed", "9"], ["--seed", "10"]):
            with Simulator("--no-hello", *options) as simulator:
                listings.append([(device.name, device.mac, device.ip) for device in simulator.devices])
        five, two, other = listings
        self.assertEqual(five[:2], two)
        self.assertEqual(len(set(five)), 5)
        self.assertNotEqual(five[0], other[0])

    def test_a_second_one_does_not_take_the_port(self):
        with Simulator():
            self.assert_refused(1, "port 12000 is in use by another program")

    def test_wrong_arguments_are_named(self):
        for option, value in (
            ("--network", "foo"),
            ("--network", "127.0.0.10"),
            ("--network", "127.0.0.10/33"),
            ("--address", "zz"),
            ("--protocol-version", "1"),
            ("--seed", "-1"),
            ("--seed", "18446744073709551616"),
            ("--loss", "5"),
            ("--malformed", "101%"),
            ("--spread", "1e3"),
            ("--die", "-1"),
            ("--size", "65508"),
            ("--speed", "fast"),
        ):
            with self.subTest(option, value=value):
                self.assert_refused(2, f'{option}: "{value}" is not', option, value)

    def assert_refused(self, status, text, *arguments):
        result = subprocess.run(
            command("device-simulator", "--until-eof", *arguments),
            stdin=subprocess.DEVNULL,
            capture_output=True,
            check=False,
        )
        self.assertEqual((result.returncode, result.stdout), (status, b""))
        self.assertIn(f"device-simulator: {text}", result.stderr.decode())


class FaultTest(TestCase):
    def test_a_thousand_answers_come_at_the_pace_of_a_cable_and_a_seed_loses_the_same_again(self):
        count = 100 if setting("suffix") else 1000  # Wine opens a socket for each address
        machine = cabled(self, "10.4.0.1/16", "10.4.4.1/16")
        machine.own(["10.4.4.0/22"])
        options = ["--count", str(count), "--network", "10.4.4.1/16", "--no-hello", "--no-bye"]
        options += ["--speed", "1000", "--size", "1100", "--loss", "20%"]
        rounds = []
        for _ in range(2):
            with Simulator(*options, machine=machine) as simulator, Asker("10.4.0.1") as asker:
                simulator.behave("loss 20%")
                some, seconds = asker.ask()
                simulator.behave("loss 0%")
                everything, _ = asker.ask()
            self.assertTrue(all(len(data) == 1100 for data in some))
            self.assertAlmostEqual(len(some), 0.8 * count, delta=0.1 * count)
            self.assertGreater(seconds, 0.9 * len(some) * 9.3e-6)
            self.assertCountEqual(names_in(everything), [device.name for device in simulator.devices])
            rounds.append(some)
        self.assertEqual(rounds[0], rounds[1])

    def test_faults_are_switched_while_it_runs(self):
        with Simulator("--count", "9", "--no-hello", "--no-bye") as simulator, Asker() as asker:
            names = [device.name for device in simulator.devices]
            simulator.behave("kill 2")
            self.assertCountEqual(names_in(asker.ask()[0]), set(names) - {names[1]})
            simulator.behave("revive 2")
            simulator.behave("duplicate 100%")
            self.assertCountEqual(names_in(asker.ask()[0]), 2 * names)
            simulator.behave("duplicate 0%")
            simulator.behave("malformed 100%")
            for data in asker.ask()[0]:
                self.assertRaises(ValueError, json.loads, data)
            simulator.behave("malformed 0%")
            simulator.behave("oversize 100%")
            for data in asker.ask()[0]:
                self.assertGreater(len(data), 2**15)
                self.assertEqual(json.loads(data)["DiscoveryMessageType"], "SignatureBroadcast")
            simulator.write("oversize 1")
            simulator.line_with('standard input: "1" is not a share from 0% to 100%')
            for _ in range(50):
                simulator.write("oversize 1")
            simulator.write("silent on")
            complaints = list(iter(simulator.line, "silent on"))
            self.assertEqual(len(complaints), 10, complaints)
            self.assertIn("nothing more is said until a line is right", complaints[-1])
            self.assertFalse(asker.ask()[0])

    def test_a_network_reorders_holds_up_and_floods(self):
        with Simulator("--count", "50", "--no-hello", "--no-bye", "--reorder") as simulator, Asker() as asker:
            names = [device.name for device in simulator.devices]
            self.assertNotEqual(names_in(asker.ask()[0]), names)
            simulator.behave("reorder 0%")
            simulator.behave("jitter 300")
            self.assertEqual(names_in(asker.ask()[0]), names)
            simulator.behave("flood 500")
            asker.receiving.settimeout(PATIENCE)
            first = time.monotonic()
            flood = [asker.receiving.recv(65536) for _ in range(250)]
            self.assertGreater(time.monotonic() - first, 0.35)
            self.assertEqual(set(names_in(flood)), set(names))
            simulator.behave("flood 0")

    def test_a_trace_is_the_same_for_the_same_seed_and_requests(self):
        faults = ["--loss", "20%", "--duplicate", "20%", "--spread", "50", "--jitter", "20", "--reorder=20%"]
        traces = []
        for run in range(2):
            trace = self.folder / f"{run}.trace"
            options = [*faults, "--malformed", "20%", "--refuse", "50%", "--trace", str(trace)]
            with Simulator("--count", "20", *options) as simulator, Asker() as asker:
                asker.ask()
                simulator.behave("flood 100")
                asker.sending.sendto(RENAME, ("127.0.0.12", DEVICE_PORT))
                asker.sending.sendto(b"nonsense", ("127.0.0.12", DEVICE_PORT))
                simulator.line_with("unreadable")
            traces.append(trace.read_text())
        self.assertEqual(traces[0], traces[1])
        for line in ("says Hello", "AllSendYourSignature from 127.0.0.1 to 255.255.255.255", "lost", "line flood 100"):
            self.assertIn(line, traces[0])

    def test_what_was_recorded_is_played_in_the_same_words(self):
        recording = self.folder / "plant.jsonl"
        options = ["--record", str(recording), "--from", "127.0.0.1", "--until-eof"]
        with Simulator("--count", "4", "--no-hello", "--no-bye") as simulator:
            simulator.behave("malformed 50%")
            with Process(*command("device-simulator", *options)) as recorder:
                for _ in range(5):
                    recorder.line()
        said = [json.loads(line) for line in recording.read_text().splitlines()]
        with Simulator("--replay", str(recording), "--no-hello", "--no-bye") as replay, Asker() as asker:
            self.assertCountEqual(asker.ask()[0], [datagram["Text"].encode() for datagram in said])
            whole = [device for device in replay.devices if device.name != "(not understood)"]
            self.assertEqual((len(said), len(whole) in range(1, 4)), (4, True))
            names = {device.name for device in simulator.devices}
            self.assertLess({device.name for device in whole}, names)

    def test_changes_are_refused_or_wait_for_a_reboot(self):
        def states(answers):
            return [
                (host["HostName"], host["RebootRequiredForHostNameChange"], host["RebootRequiredForIPConfigChange"])
                for host in (json.loads(data)["Host"] for data in answers)
            ]

        with Simulator("--count", "1", "--no-bye", "--refuse") as simulator, Asker() as asker:
            name = simulator.devices[0].name
            self.assertEqual(states(asker.ask(RENAME)[0]), [(name, False, False)])
            simulator.behave("refuse 0%")
            simulator.behave("reboot 3")
            self.assertEqual(states(asker.ask(RENAME)[0]), [(name, True, True)])
            asker.receiving.settimeout(PATIENCE)
            hello = json.loads(asker.receiving.recv(65536))
            self.assertEqual((hello["DiscoveryMessageType"], hello["Host"]["HostName"]), ("Hello", "renamed"))
            self.assertEqual(states(asker.ask()[0]), [("renamed", True, True)])
            simulator.behave("reboot 0")
            self.assertEqual(states(asker.ask()[0]), [("renamed", False, False)])

    def test_devices_die_after_a_while_without_a_word(self):
        with Simulator("--count", "3", "--no-hello", "--die", "3") as simulator, Asker() as asker:
            self.assertEqual(len(asker.ask()[0]), 3)
            wait_until(lambda: not asker.ask()[0], "silence")
            simulator.end()
            asker.receiving.settimeout(0)
            self.assertRaises(BlockingIOError, asker.receiving.recv, 65536)


if __name__ == "__main__":
    main()
