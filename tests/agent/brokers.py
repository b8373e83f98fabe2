"""A broker of the tests' own, what its topics hold, and agents of sites."""

import json
import pathlib
import queue
import re
import socket
import struct
import subprocess
import threading
import time

from endtoend import TIMEOUT, Process, command, library_path, wait_until

PORT = 18830


def settings_of(site="plant-1", host="127.0.0.1", address="127.0.0.1"):
    """Those of the agent of a site, who reaches the broker at the host, and its devices from the address."""
    return f"""
site = "{site}"
[discovery]
addresses = ["{address}"]
ask-every = 1
[broker]
host = "{host}"
longest-retry = 1
port = {PORT}
"""


SETTINGS = settings_of()

ANYBODY = "allow_anonymous true"


def identity(device):
    """What a simulated device is called on the broker."""
    return device.mac.lower().replace(":", "-")


def certificates(folder):
    """An authority, and a key with a certificate that serves a broker on 127.0.0.1 and its clients alike."""

    def openssl(*arguments):
        subprocess.run(["openssl", *arguments], cwd=folder, check=True, capture_output=True)

    key = ("-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes")
    openssl("req", "-x509", *key, "-keyout", "ca.key", "-out", "ca.crt", "-subj", "/CN=tests", "-days", "2")
    openssl("req", *key, "-keyout", "own.key", "-out", "own.csr", "-subj", "/CN=localhost")
    (folder / "names").write_text("subjectAltName=IP:127.0.0.1,DNS:localhost\n", encoding="ascii")
    openssl("x509", "-req", "-in", "own.csr", "-CA", "ca.crt", "-CAkey", "ca.key", "-CAcreateserial", "-out", "own.crt",
            "-extfile", "names", "-days", "2")  # fmt: skip


def secured(folder, rights, *users):
    """What a broker needs to be encrypted, and to know users, all with the password secret, by their rights."""
    certificates(folder)
    (folder / "users").write_text("".join(f"{user}:secret\n" for user in users), encoding="ascii")
    subprocess.run(["mosquitto_passwd", "-U", str(folder / "users")], check=True)
    (folder / "rights").write_text(rights, encoding="ascii")
    (folder / "password").write_text("secret\n", encoding="ascii")
    return (f"cafile {folder}/ca.crt", f"certfile {folder}/own.crt", f"keyfile {folder}/own.key",
            f"password_file {folder}/users", f"acl_file {folder}/rights")  # fmt: skip


class Broker(Process):
    """A mosquitto that keeps nothing when it ends. The limit is that of messages for a slow reader; None for its own."""

    def __init__(self, folder, *lines, address="127.0.0.1", limit=0):
        self.address = address
        configuration = pathlib.Path(folder) / "broker.conf"
        limits = [] if limit is None else [f"max_queued_messages {limit}"]
        listener = ["user root", f"listener {PORT} {address}", *limits, *lines]
        configuration.write_text("\n".join(listener) + "\n", encoding="ascii")
        super().__init__("mosquitto", "-c", str(configuration))
        wait_until(self._answers, "broker")

    def _answers(self):
        with socket.socket() as probe:
            return probe.connect_ex((self.address, PORT)) == 0

    def __exit__(self, *_):
        self.process.kill()
        self.end()


class RawClient:
    """A connection to the broker that is nothing but a socket."""

    def __init__(self, **options):
        self.socket = socket.socket()
        for name, value in options.items():
            self.socket.setsockopt(socket.SOL_SOCKET, getattr(socket, name), value)
        self.socket.connect(("127.0.0.1", PORT))
        self.send(0x10, b"\0\4MQTT\4\2\0\0\0\0")
        self.await_answer(4)

    def send(self, kind, body):
        size, length = len(body), b""
        while True:
            size, digit = divmod(size, 128)
            length += bytes([digit | 128 if size else digit])
            if not size:
                break
        self.socket.sendall(bytes([kind]) + length + body)

    def await_answer(self, size):
        if len(self.socket.recv(size, socket.MSG_WAITALL)) < size:
            raise AssertionError("the broker has closed the connection")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.socket.close()


class Publisher(RawClient):
    """Retains texts by topic, thousands in a moment."""

    def retain(self, texts):
        """As agents do, acknowledged; what is not is delivered in other ways. Returns once the broker has them."""
        for number, (topic, text) in enumerate(texts.items(), 1):
            self.send(0x33, struct.pack(">H", len(topic)) + topic.encode() + struct.pack(">H", number) + text.encode())
        self.await_answer(4 * len(texts))


class IdleReader(RawClient):
    """Subscribes to everything, and takes nothing of it."""

    def __init__(self):
        super().__init__(SO_RCVBUF=1)
        self.send(0x82, b"\0\1\0\1#\1")


class Topics(Process):
    """What a subscriber to all topics of a site sees: messages in their order, and what each topic holds."""

    def __init__(self, site, *options):
        self.root = f"discovery/v1/{site}/"
        self.messages = []
        self.live = []  # the topics of those that were published meanwhile
        self.held = {}
        super().__init__("mosquitto_sub", "-p", str(PORT), "-h", "127.0.0.1", "-q", "1", "-F", "%j", "-t",
                         self.root + "#", *options)  # fmt: skip

    def read(self):
        """Takes what has come by now."""
        while True:
            try:
                line = self.lines.get_nowait()
            except queue.Empty:
                return
            message = json.loads(line)
            name = message["topic"].removeprefix(self.root)
            payload = json.loads(message["payload"]) if message["payloadlen"] else None
            self.messages.append((name, payload))
            if not message["retain"]:
                self.live.append(name)
            self.held[name] = payload

    def devices(self):
        """The records by the devices' ids."""
        self.read()
        return {
            name.removeprefix("devices/"): payload
            for name, payload in self.held.items()
            if name.startswith("devices/") and payload
        }

    def state(self):
        self.read()
        return (self.held.get("state") or {}).get("State")

    def manifest(self):
        """The revisions by the devices' ids, of the parts that are there as the manifest tells."""
        self.read()
        head = self.held.get("manifest") or {"Parts": [], "Records": {}}
        records = dict(head["Records"])
        for number, revision in enumerate(head["Parts"], 1):
            part = self.held.get(f"manifest/{number}")
            if part and part["Revision"] == revision:
                records.update(part["Records"])
        return records

    def is_whole(self, count):
        """Whether the manifest tells of so many devices, and each of them is there in that revision."""
        revisions = {name: record["Revision"] for name, record in self.devices().items()}
        return len(revisions) == count and self.manifest() == revisions

    def await_truth(self, devices, away=()):
        """Waits until the site is ready and whole, and has the records of just these devices, as they are. Those that are
        away are gone."""
        truth = {identity(each): (each.name, each.ip, "gone" if each in away else "present") for each in devices}

        def shown(record):
            return record["Host"]["HostName"], record["Host"]["NICs"][0]["IPAddress"], record["State"]

        wait_until(
            lambda: self.is_whole(len(truth))
            and self.state() == "ready"
            and {name: shown(record) for name, record in self.devices().items()} == truth,
            "the devices that there are",
        )

    def forget(self):
        """Forgets the messages so far, not what the topics hold."""
        self.read()
        self.messages.clear()

    def __exit__(self, *_):
        self.process.kill()
        self.end()


class Description:
    """The description of the topics, which says what each one holds."""

    def __init__(self, file):
        self.document = json.loads(file.read_text(encoding="utf-8"))
        self.channels = []
        for channel in self.document["channels"].values():
            address = re.escape(channel["address"].partition("/{site}/")[2]).replace(r"\{", "{").replace(r"\}", "}")
            pattern = re.sub(r"\{\w+\}", "[^/]+", address)
            (message,) = channel["messages"]
            self.channels.append((re.compile(pattern), message))

    def check(self, messages, folder):
        """Fails unless each of these messages of a site is as its topic's are said to be."""
        found = {}
        for name, payload in messages:
            (message,) = (message for pattern, message in self.channels if pattern.fullmatch(name))
            if payload is not None:
                found.setdefault(message, []).append(payload)
        for message, payloads in found.items():
            payload = self.document["components"]["messages"][message]["payload"]
            schema = {"components": self.document["components"], "type": "array", "items": payload}
            (folder / "schema").write_text(json.dumps(schema), encoding="utf-8")
            (folder / "payloads").write_text(json.dumps(payloads), encoding="utf-8")
            subprocess.run(["/usr/bin/jsonschema", "-i", "payloads", "schema"], cwd=folder, check=True)
        return set(found)


class Agent(Process):
    """An agent that is ready, and what it tells the service manager."""

    def __init__(self, folder, settings, machine=None, before=()):
        folder = pathlib.Path(folder)
        self.manager = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        address = folder / "notify"
        address.unlink(missing_ok=True)
        self.manager.bind(str(address))
        self.told = queue.Queue()
        threading.Thread(target=self._hear, daemon=True).start()  # an agent waits for a manager that does not
        file = folder / "agent.toml"
        file.write_text(settings, encoding="utf-8")
        program = command("discovery-agent", "--config", str(file), "--library", library_path())
        super().__init__(*(machine.prefix() if machine else []), "env", f"NOTIFY_SOCKET={address}",
                         f"STATE_DIRECTORY={folder}", *before, *program)  # fmt: skip
        self.told_with("READY=1")

    def _hear(self):
        with self.manager:
            while text := self.manager.recv(65536):
                self.told.put(text.decode())

    def told_with(self, part):
        """Waits until the service manager is told something with that part. It is told what is new, once a second."""
        deadline = time.monotonic() + 3 * TIMEOUT  # the watchdog's signs go on without end
        while part not in (text := self.told.get(timeout=TIMEOUT)):
            if time.monotonic() > deadline:
                raise AssertionError(f"{part!r} was not told")
        return text

    def stop(self):
        self.process.terminate()
        return self.end()

    def kill(self):
        self.process.kill()
        self.end()

    def __exit__(self, *arguments):
        if self.process.returncode is None:
            self.process.terminate()
        super().__exit__(*arguments)
        self.manager.shutdown(socket.SHUT_RD)
