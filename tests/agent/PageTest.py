"""An agent's page, as viewers and those who would like to be get it."""

import http.client
import json
import pathlib
import re
import resource
import socket
import ssl
import sys
import unittest
import urllib.parse

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "endtoend"))

import endtoend  # noqa: E402
from brokers import Agent, certificates  # noqa: E402
from endtoend import TIMEOUT, Simulator, wait_until  # noqa: E402

PORT = 12080
SETTINGS = 'site = "plant-1"\n[discovery]\naddresses = ["127.0.0.1"]\nask-every = 1\n[page]\n'
TOKEN = "0123456789abcdef" * 2


def get(path, context=None, method="GET", body=None, **headers):
    """Status, headers and body."""
    if context:
        connection = http.client.HTTPSConnection("127.0.0.1", PORT, context=context, timeout=TIMEOUT)
    else:
        connection = http.client.HTTPConnection("127.0.0.1", PORT, timeout=TIMEOUT)
    try:
        connection.request(method, path, body, {name.replace("_", "-"): value for name, value in headers.items()})
        answer = connection.getresponse()
        return answer.status, answer.headers, answer.read().decode()
    finally:
        connection.close()


def devices(context=None, **headers):
    return json.loads(get("/devices.json", context, **headers)[2])["Devices"]


def figure(name):
    return float(re.search(rf"(?m)^{re.escape(name)} (.+)$", get("/metrics")[2])[1])


class Stream:
    """The events that a viewer gets."""

    def __init__(self, query="", **headers):
        self.connection = http.client.HTTPConnection("127.0.0.1", PORT, timeout=TIMEOUT)
        self.connection.request("GET", "/events" + query, headers=headers)
        self.answer = self.connection.getresponse()

    def next(self, kind):
        """The id and the data of the next event of that kind."""
        event = {}
        while line := self.answer.readline().decode():
            name, _, value = line.rstrip("\n").partition(": ")
            event[name] = value
            if not name and event.get("event") == kind:
                return event["id"], json.loads(event["data"])
            event = event if name else {}
        raise AssertionError("the stream has ended")

    def close(self):
        self.answer.close()
        self.connection.close()


class PageTest(endtoend.TestCase):
    def start(self, settings="", count=2):
        simulator = self.enterContext(Simulator("--count", str(count)))
        self.agent = self.enterContext(Agent(self.folder, SETTINGS + settings))
        return simulator

    def view(self, *query, **headers):
        stream = Stream(*query, **headers)
        self.addCleanup(stream.close)
        return stream

    def secure(self, *settings):
        certificates(self.folder)
        lines = [f"certificate = '{self.folder}/own.crt'", f"key = '{self.folder}/own.key'", *settings]
        self.start("address = '0.0.0.0'\n" + "\n".join(lines))
        self.agent.line_with("the page is served on https://localhost:12080/")
        return ssl.create_default_context(cafile=f"{self.folder}/ca.crt")

    def test_what_happens_reaches_viewers_and_those_who_come_back(self):
        with socket.create_server(("127.0.0.1", PORT)):
            simulator = self.start()
            self.agent.told_with("cannot serve the page on 127.0.0.1, port 12080: Address already in use")
        self.agent.line_with("the page is served on http://127.0.0.1:12080/")
        wait_until(lambda: len(devices()) == 2, "devices")
        self.assertEqual(get("/devices.json", Host="evil.example")[0], 421)
        self.assertEqual(get("/devices.json", method="DELETE")[0], 405)
        self.assertEqual(get("/healthz")[0], 200)
        with socket.create_connection(("127.0.0.1", PORT), TIMEOUT) as viewer:
            viewer.sendall(b"HEAD /devices.json HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n")
            self.assertEqual(viewer.makefile("rb").read().count(b"\r\n\r\n"), 1)  # nothing behind the headers
        for name in ("Content-Security-Policy", "X-Content-Type-Options", "Referrer-Policy", "Cache-Control"):
            self.assertIn(name, get("/")[1])
        start = json.loads(get("/devices.json")[2])["Event"]
        received = figure('discovery_datagrams_received_total{kind="signature"}')
        simulator.behave("kill 1")
        identity, device = self.view(f"?after={start}").next("device")
        self.assertEqual((device["State"], device["Host"]["HostName"]), ("gone", simulator.devices[0].name))
        simulator.behave("revive 1")
        wait_until(lambda: {each["State"] for each in devices()} == {"present"}, "device that came back")
        later, device = self.view(**{"Last-Event-ID": identity}).next("device")
        self.assertEqual(device["State"], "present")
        self.assertNotEqual(later, identity)
        self.assertEqual(self.view("?after=old-1").next("reset")[1], {})
        self.assertEqual(figure('discovery_events_total{kind="gone"}'), 1)
        self.assertGreater(figure('discovery_datagrams_received_total{kind="signature"}'), received)
        self.assertLess(figure("discovery_last_round_seconds"), TIMEOUT)
        with socket.socket(type=socket.SOCK_DGRAM) as stranger:
            stranger.sendto(b"no message", ("127.0.0.1", 12001))
        wait_until(lambda: figure('discovery_datagrams_dropped_total{reason="format"}') == 1, "figure")
        self.assertEqual(self.agent.stop(), 0)

    def test_a_hundred_viewers_of_whom_one_reads_nothing_all_learn_of_it(self):
        simulator = self.start(count=300)
        wait_until(lambda: len(devices()) == 300, "devices")
        start = json.loads(get("/devices.json")[2])["Event"]
        idle = self.enterContext(socket.socket())
        idle.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        idle.connect(("127.0.0.1", PORT))
        idle.sendall(f"GET /events?after={start.partition('-')[0]}-0 HTTP/1.1\r\nHost: localhost\r\n\r\n".encode())
        viewers = [self.view(f"?after={start}") for _ in range(99)]
        for round_ in ("gone", "present"):
            simulator.behave("kill 7" if round_ == "gone" else "revive 7")
            for viewer in viewers:
                while viewer.next("device")[1]["State"] != round_:
                    pass

    def test_an_agent_without_descriptors_serves_again_when_it_has_some(self):
        self.start()
        wait_until(lambda: len(devices()) == 2, "devices")
        process = self.agent.process.pid
        used = len(list(pathlib.Path(f"/proc/{process}/fd").iterdir()))
        resource.prlimit(process, resource.RLIMIT_NOFILE, (used + 3, used + 100))
        streams = [self.view("?after=x") for _ in range(2)]
        waiting = [socket.create_connection(("127.0.0.1", PORT)) for _ in range(5)]
        for each in waiting:
            each.sendall(b"GET /healthz HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n")
        streams[0].next("reset")
        resource.prlimit(process, resource.RLIMIT_NOFILE, (used + 100, used + 100))
        for each in waiting:
            each.settimeout(TIMEOUT)
            self.assertIn(b"200 OK", each.recv(100))
            each.close()

    def test_viewers_from_elsewhere_enter_the_token_once(self):
        token = self.folder / "token"
        token.write_text(TOKEN + "\n", encoding="ascii")
        token.chmod(0o600)
        context = self.secure(f"token-file = '{token}'")
        self.assertEqual(get("/devices.json", context)[0], 401)
        self.assertIn('name="token"', get("/", context)[2])
        self.assertEqual(get("/?token=" + TOKEN, context)[2], get("/", context)[2])
        form = {"Content_Type": "application/x-www-form-urlencoded"}
        self.assertEqual(get("/token", context, "POST", "token=wrong", **form)[0], 403)
        status, headers, _ = get("/token", context, "POST", urllib.parse.urlencode({"token": TOKEN}), **form)
        self.assertEqual((status, headers["Location"]), (303, "/"))
        cookie = headers["Set-Cookie"].partition(";")[0]
        self.assertNotIn(TOKEN, cookie)
        wait_until(lambda: len(devices(context, Cookie=cookie)) == 2, "devices")
        self.assertEqual(len(devices(context, Authorization="Bearer " + TOKEN)), 2)
        self.assertRaises(OSError, get, "/token", context, "POST", "token=" + "x" * 100000)
        with self.assertRaises(OSError):
            get("/", None)

    def test_viewers_from_elsewhere_show_a_certificate(self):
        context = self.secure(f"authority = '{self.folder}/ca.crt'")
        self.assertEqual(get("/devices.json", context)[0], 403)
        foreign = self.folder / "foreign"
        foreign.mkdir()
        certificates(foreign)
        context.load_cert_chain(foreign / "own.crt", foreign / "own.key")
        self.assertEqual(get("/devices.json", context)[0], 403)
        context = ssl.create_default_context(cafile=f"{self.folder}/ca.crt")
        context.load_cert_chain(self.folder / "own.crt", self.folder / "own.key")
        wait_until(lambda: len(devices(context)) == 2, "devices")


if __name__ == "__main__":
    endtoend.main()
