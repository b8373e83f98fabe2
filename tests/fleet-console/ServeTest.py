"""The page for all sites with a real broker, an agent, and a viewer."""

import json
import os
import pathlib
import queue
import ssl
import subprocess
import sys
import threading
import urllib.error
import urllib.parse
import urllib.request

sys.path[:0] = [str(pathlib.Path(__file__).parent.parent / folder) for folder in ("endtoend", "agent")]

import endtoend  # noqa: E402
from brokers import ANYBODY, PORT, SETTINGS, Agent, Broker, Publisher, certificates  # noqa: E402
from endtoend import TIMEOUT, Process, Simulator, command, wait_until  # noqa: E402
from FleetTest import site  # noqa: E402


class Page(Process):
    """A page that is served, and what its viewers see."""

    def __init__(self, *options):
        super().__init__(*command("discovery-fleet", "--json", "--broker", f"127.0.0.1:{PORT}", "serve",
                                  "--page-port", "0", *options))  # fmt: skip
        self.url = json.loads(self.line_with('{"Page":'))["Page"]

    def get(self, path):
        with urllib.request.urlopen(self.url + path, timeout=TIMEOUT) as answer:
            return answer.read().decode()

    def sites(self):
        """State and text by name."""
        return {each["Site"]: (each["State"], each["Text"]) for each in json.loads(self.get("devices.json"))["Sites"]}

    def states(self, name):
        """Of the devices of a site, by id."""
        devices = json.loads(self.get("devices.json"))["Devices"]
        return {each["Device"]: each["State"] for each in devices if each["Site"] == name}

    def has(self, name, count, state):
        states = self.states(name)
        return len(states) == count and set(states.values()) == {state}

    def __exit__(self, *arguments):
        self.process.terminate()
        super().__exit__(*arguments)


class Viewer:
    """Takes the events from now on: kinds with their data."""

    def __init__(self, page):
        after = json.loads(page.get("devices.json"))["Event"]
        self.answer = urllib.request.urlopen(page.url + "events?after=" + after, timeout=TIMEOUT)
        self.events = queue.Queue()
        threading.Thread(target=self._read, daemon=True).start()  # until the page is served no more

    def _read(self):
        kind = None
        with self.answer:
            for line in self.answer:
                name, _, value = line.decode().strip().partition(": ")
                kind = value if name == "event" else kind
                if name == "data":
                    self.events.put((kind, json.loads(value)))

    def await_event(self, kind, **members):
        """Skips events up to one of that kind with these members."""
        while True:
            found, data = self.events.get(timeout=TIMEOUT)
            if found == kind and members.items() <= data.items():
                return


class ServeTest(endtoend.TestCase):
    def agent(self):
        return self.enterContext(Agent(self.folder, SETTINGS))

    def test_the_page_shows_all_sites_and_stays_right_whatever_happens(self):
        with Broker(self.folder, ANYBODY, limit=None):
            with Publisher() as publisher:
                publisher.retain({**site("big", 3000), **site("cut", 20, published=12), **site("away", 2, "lost")})
            simulator = self.enterContext(Simulator("--count", "5"))
            agent = self.agent()
            page = self.enterContext(Page())
            wait_until(lambda: page.has("plant-1", 5, "present") and page.has("big", 3000, "present"), "whole sites")
            page.line_with("site cut: 12 of 20 received")
            self.assertTrue(page.has("cut", 12, "present") and page.has("away", 2, "unknown"))
            self.assertEqual(page.sites(), {"big": ("ready", ""), "cut": ("ready", "12 of 20 received"),
                                            "away": ("lost", ""), "plant-1": ("ready", "")})  # fmt: skip
            self.assertIn("discovery_sites_incomplete 1\n", page.get("metrics"))
            self.assertIn("discovery_broker_connected 1\n", page.get("metrics"))

            viewer = Viewer(page)
            device = {"Site": "plant-1", "Device": simulator.devices[0].mac.lower().replace(":", "-")}
            simulator.behave("kill 1")
            viewer.await_event("device", **device, State="gone")
            simulator.behave("revive 1")
            viewer.await_event("device", **device, State="present")
            agent.kill()
            viewer.await_event("site", Site="plant-1", State="lost", Text="")
            viewer.await_event("device", **device, State="unknown")
            self.agent()
            viewer.await_event("site", Site="plant-1", State="ready", Text="")
            with Publisher() as publisher:
                publisher.retain(dict.fromkeys(site("cut", 20), ""))
            viewer.await_event("removed-site", Site="cut")

        page.line_with("no connection to the broker: ")
        viewer.await_event("site", Site="plant-1", State="unknown", Text="no connection to the broker")
        with self.assertRaises(urllib.error.HTTPError):
            page.get("healthz")
        self.enterContext(Broker(self.folder, ANYBODY, limit=None))  # with nothing of what it had
        viewer.await_event("site", Site="plant-1", State="ready", Text="")
        page.line_with("site big: no manifest")
        self.assertTrue(page.has("plant-1", 5, "present") and page.has("big", 3000, "unknown"))
        page.get("healthz")
        page.interrupt()
        self.assertEqual(page.wait(), 0)

    def test_other_machines_are_served_by_tls_alone_and_with_a_token_or_a_certificate(self):
        certificates(self.folder)
        authority, certificate, key, token = (str(self.folder / name) for name in ("ca.crt", "own.crt", "own.key", "token"))
        secret = "0123456789abcdef" * 4
        with open(token, "w", opener=lambda path, flags: os.open(path, flags, 0o600), encoding="ascii") as file:
            file.write(secret + "\n")
        everywhere = ("--page-address", "0.0.0.0")
        tls = ("--page-certificate", certificate, "--page-key", key)
        for options, reason in (((), "certificate and key, and either an authority"), (tls, "needs an authority")):
            refused = subprocess.run(command("discovery-fleet", "serve", *everywhere, *options), capture_output=True,
                                     text=True, timeout=TIMEOUT, check=False)  # fmt: skip
            self.assertEqual((refused.returncode, refused.stdout), (2, ""))
            self.assertRegex(refused.stderr, f"^discovery-fleet: the page's address 0.0.0.0 .*{reason}.*\n$")

        page = self.enterContext(Page(*everywhere, *tls, "--page-token-file", token, "--page-authority", authority,
                                      "--page-name", "fleet.example"))  # fmt: skip
        self.assertRegex(page.url, r"^https://[^/?]+:\d+/$")
        port = urllib.parse.urlsplit(page.url).port

        def status(path="devices.json", data=None, certified=False, **headers):
            context = ssl.create_default_context(cafile=authority)
            if certified:
                context.load_cert_chain(certificate, key)
            request = urllib.request.Request(f"https://localhost:{port}/{path}", data, headers)
            try:
                with urllib.request.urlopen(request, timeout=TIMEOUT, context=context) as answer:
                    return answer.status
            except urllib.error.HTTPError as error:
                return error.code

        bearer = {"Authorization": "Bearer " + secret}
        self.assertEqual((status(), status("devices.json?token=" + secret)), (401, 401))
        self.assertEqual((status(**bearer), status(certified=True)), (200, 200))
        self.assertEqual((status("token", b"token=" + secret[1:].encode()), status(Authorization="Bearer x")), (403, 401))
        self.assertEqual(status(Host="fleet.example", **bearer), 200)
        self.assertEqual(status(Host="elsewhere.example", **bearer), 421)
        with self.assertRaises(OSError):
            urllib.request.urlopen(f"http://localhost:{port}/devices.json", timeout=TIMEOUT)


if __name__ == "__main__":
    endtoend.main()
