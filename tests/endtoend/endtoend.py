"""The programs under test as processes, and the network they meet in. Tests run in a network namespace of their own."""

import argparse
import json
import os
import pathlib
import queue
import re
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

DEVICE_PORT = 12000
SERVER_PORT = 12001
TIMEOUT = 20  # seconds for anything that must happen; generous, because sanitizers and Wine are slow

INVALID_FORMAT = 0xC0090114 - 2**32

_settings = None


def main():
    """Runs the tests of the calling file on the programs that its arguments name."""
    parser = argparse.ArgumentParser()
    parser.add_argument("--bin", type=pathlib.Path, required=True, help="the folder of the programs")
    parser.add_argument("--suffix", default="", help="what the programs' names end with")
    parser.add_argument("--library", type=pathlib.Path, required=True)
    parser.add_argument("--launcher", nargs="*", default=[], help="what goes before a program")
    parser.add_argument("--preset", help="the name of the build")
    parser.add_argument("--source", type=pathlib.Path, help="the root of the source tree")
    parser.add_argument("--compiler", help="the C compiler")
    parser.add_argument("--toolchain", help="CMake's file of the cross compiler")
    parser.add_argument("--import-library", help="what programs for Windows link to")
    parser.add_argument("--rounds", type=int, default=1, help="how often to repeat what goes wrong rarely")
    parser.add_argument("--sanitized", action="store_true", help="the build is one whose speed means nothing")
    global _settings
    _settings, rest = parser.parse_known_args()
    unittest.main(module="__main__", argv=sys.argv[:1] + rest, verbosity=2)


def setting(name):
    return getattr(_settings, name)


def library_path():
    return str(_settings.library)


def launcher():
    return _settings.launcher


def command(name, *arguments, machine=None):
    """The command line of one of the programs, on one of the machines of networks.py or in the tests' own network."""
    prefix = machine.prefix() if machine else []
    program = str(_settings.bin / (name + _settings.suffix))
    return [*prefix, *_settings.launcher, program, *arguments]


def wait_until(condition, what):
    deadline = time.monotonic() + TIMEOUT
    while not condition():
        if time.monotonic() > deadline:
            raise AssertionError(f"{what}: not within {TIMEOUT} s")
        time.sleep(0.02)


class Process:
    """A running program whose lines of output are read as they come. Ends with the with-block."""

    def __init__(self, *arguments, folder=None):
        self.process = subprocess.Popen(
            arguments,
            cwd=folder,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
        )
        self.lines = queue.Queue()
        self.reader = threading.Thread(target=self._read)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            # Wine's own services write here when they fault; a fault of the program shows in its exit status.
            if line.startswith(b"wine: "):
                continue
            self.lines.put(line.decode(errors="replace").rstrip("\r\n"))
        self.lines.put(None)

    def line(self, timeout=TIMEOUT):
        """The next line; None at the end of the output."""
        try:
            return self.lines.get(timeout=timeout)
        except queue.Empty:
            raise AssertionError(f"{self.process.args}: no output within {timeout} s") from None

    def line_with(self, part):
        """Skips lines up to one that contains the text."""
        while (line := self.line()) is not None:
            if part in line:
                return line
        raise AssertionError(f"{self.process.args}: ended without {part!r}")

    def write(self, line):
        self.process.stdin.write(line.encode() + b"\n")
        self.process.stdin.flush()

    def interrupt(self):
        self.process.send_signal(signal.SIGINT)

    def end(self):
        """Ends the program by closing its input, and returns its exit status."""
        if not self.process.stdin.closed:
            self.process.stdin.close()
        return self.wait()

    def wait(self):
        try:
            return self.process.wait(TIMEOUT)
        finally:
            if self.process.returncode is None:
                self.process.kill()
                self.process.wait()
            self.reader.join()
            self.process.stdout.close()

    def __enter__(self):
        return self

    def __exit__(self, exception, *_):
        if self.process.returncode is None:
            status = self.end()
            if exception is None and status != 0:  # a sanitizer's finding, for instance
                remaining = iter(self.lines.get, None)
                raise AssertionError(f"{self.process.args}: ended with {status}\n" + "\n".join(remaining))


class Simulator(Process):
    """Simulated devices that listen already; their names, MAC and IP addresses are in devices."""

    class Device:
        def __init__(self, line):
            self.name, self.mac, self.ip = line.split("\t")

    def __init__(self, *arguments, machine=None):
        super().__init__(*command("device-simulator", "--until-eof", *arguments, machine=machine))
        self.devices = []
        while (line := self.line()) != "ready":
            if line is None or "\t" not in line:
                self.end()
                raise AssertionError(f"device-simulator: {line}")
            self.devices.append(self.Device(line))

    def behave(self, line):
        """Changes how the devices behave by a line such as "loss 5%", and waits until it holds."""
        self.write(line)
        self.line_with(line)


class Host(Process):
    """A host program that calls the library's functions one by one and notes the callbacks."""

    def __init__(self, log, level=3):
        super().__init__(*command("extc-host"))
        self.log = pathlib.Path(log)
        self.level = level
        self.events = []

    def call(self, function, *arguments):
        """The result code; for GetErrorMessage the text."""
        self.write("\t".join((function, *map(str, arguments))))
        while not (line := self.line()).startswith("= "):
            self._note(line)
        result = line[2:]
        return result if function == "GetErrorMessage" else int(result)

    def must(self, function, *arguments):
        code = self.call(function, *arguments)
        if code != 0:
            raise AssertionError(f"{function}: {code}, {self.call('GetErrorMessage', code)}")

    def initialize(self):
        """Begins with the callbacks set."""
        self.must("Initialize", self.log, self.level)

    def start(self, *addresses):
        """Starts the server; broadcasts leave from the addresses, 127.0.0.1 without any."""
        self.must("StartServer")
        self.must("InitBroadcastProvider", json.dumps(addresses or ["127.0.0.1"]))

    def _note(self, line):
        kind, _, text = (line or "").partition(" ")
        if kind not in ("signature", "hello", "bye"):
            raise AssertionError(f"extc-host: {line}")
        self.events.append((kind, json.loads(text)))

    def next_event(self):
        """Waits for a callback; its kind and its document."""
        while not self.events:
            self._note(self.line())
        return self.events.pop(0)

    def event(self, kind, matches=lambda document: True):
        """Waits for a callback of the kind whose document matches, and forgets it and all before."""
        while True:
            found, document = self.next_event()
            if found == kind and matches(document):
                return document

    def log_text(self):
        return self.log.read_text(errors="replace")


def ip(*arguments):
    """Changes the network that the tests run in."""
    subprocess.run(["ip", *arguments], check=True)


class Peer:
    """A device made of nothing but a socket: it sends what it is told to, and sees what goes to devices."""

    def __init__(self):
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.socket.bind(("", DEVICE_PORT))
        self.socket.settimeout(TIMEOUT)

    def send(self, data):
        if isinstance(data, dict):
            data = json.dumps(data)
        self.socket.sendto(data.encode() if isinstance(data, str) else data, ("127.0.0.1", SERVER_PORT))

    def receive(self):
        """The next message to devices, with the address of its sender."""
        data, (address, _) = self.socket.recvfrom(65536)
        return json.loads(data), address

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()


def message(kind, name="probe", mac="02:00:00:00:00:01", version="1.0.18", **host):
    """What a device called name sends."""
    nic = {
        "FriendlyName": "eth0",
        "MACAddress": mac,
        "IPAddress": "127.0.0.1",
        "SubNetMask": "255.0.0.0",
        "DefaultGateway": "",
    }
    return {
        "DiscoveryMessageType": kind,
        "DiscoveryVersion": version,
        "Broadcast": "True",
        "Host": {"HostName": name, "DeviceType": "Probe", "NICs": [nic], "Products": [], **host},
        "SourceNIC": nic,
    }


class TestCase(unittest.TestCase):
    """Gives each test a folder for its logs and other files."""

    local_addresses = ["127.0.0.1"]  # that discovery-console sends from; its own choice without any

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="endtoend-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def console(self, *arguments, status=0, machine=None, text=None):
        """Runs discovery-console on loopback to its end, with a text as its input, and checks its exit status."""
        result = subprocess.run(
            command("discovery-console", *self.console_options(), *arguments, machine=machine),
            capture_output=True,
            input=None if text is None else text.encode(),
            timeout=3 * TIMEOUT,
            check=False,
        )
        output = result.stdout.decode().replace("\r\n", "\n")
        errors = result.stderr.decode().replace("\r\n", "\n")
        self.assertEqual(result.returncode, status, f"{arguments}: {output}{errors}")
        return output, errors

    def start_console(self, *arguments, machine=None):
        """A discovery-console that goes on."""
        return Process(*command("discovery-console", *self.console_options(), *arguments, machine=machine))

    def console_options(self):
        return [
            "--library", library_path(),
            "--log", str(self.folder / "console.log"), "--log-level", "debug",
            "--journal", str(self.folder / "journal"),
            *(argument for address in self.local_addresses for argument in ("--from", address)),
        ]  # fmt: skip

    def log_text(self):
        log = self.folder / "console.log"
        return log.read_text(errors="replace") if log.exists() else ""

    def console_documents(self, *arguments, **options):
        """The documents that discovery-console prints."""
        output, _ = self.console(*arguments, "--json", **options)
        return [json.loads(line) for line in output.splitlines()]


def rows(table):
    """The rows of a printed table as lists of cells, without the titles."""
    return [re.split(r"  +", line) for line in table.splitlines()[1:]]
