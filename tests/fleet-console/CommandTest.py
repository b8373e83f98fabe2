"""Commands to the agent of a site, and what is done to a broker, with a real broker that knows users and their rights."""

import json
import pathlib
import re
import signal
import subprocess
import sys
import time

sys.path[:0] = [str(pathlib.Path(__file__).parent.parent / folder) for folder in ("endtoend", "agent")]

import endtoend  # noqa: E402
from brokers import PORT, Agent, Broker, Topics, secured  # noqa: E402
from endtoend import Process, Simulator, command, wait_until  # noqa: E402


def rights():
    """Those that the page shows, and a user who may do nothing but read."""
    page = (endtoend.setting("source") / "docs/fleet.md").read_text(encoding="utf-8")
    shown = re.search(r"cat >rights <<'END'\n(.*?)END\n", page, re.DOTALL)[1]
    return shown.replace("pattern ", "user eve\ntopic read discovery/v1/#\n\npattern ", 1)


def client(user, folder):
    return ("--cafile", f"{folder}/ca.crt", "-u", user, "-P", "secret")


class CommandTest(endtoend.TestCase):
    def setUp(self):
        super().setUp()
        self.lines = secured(self.folder, rights(), "agent-plant-1", "ann", "eve", "keeper")

    def program(self, user, *arguments):
        options = ("--tls", "--authority", f"{self.folder}/ca.crt", "--user", user, "--password-file",
                   f"{self.folder}/password")  # fmt: skip
        return command("discovery-fleet", "--broker", f"127.0.0.1:{PORT}", *options, *arguments)

    def fleet(self, user, *arguments, status=0, text=None):
        """What the program prints, and what it says beside."""
        ran = subprocess.run(self.program(user, *arguments), capture_output=True, text=True, timeout=60, check=False,
                             input=text, start_new_session=True)  # fmt: skip
        self.assertEqual(ran.returncode, status, ran.stdout + ran.stderr)
        return ran.stdout, ran.stderr

    def change(self, *arguments, status=0, user="ann", text=None):
        """What is told of the one change."""
        output, _ = self.fleet(user, "--json", "--site", "plant-1", *arguments, status=status, text=text)
        return json.loads(output)["Change"]

    def test_devices_of_a_site_are_changed_and_the_site_is_forgotten(self):
        folder = self.folder
        self.enterContext(Broker(folder, *self.lines))
        simulator = self.enterContext(Simulator("--count", "2"))
        settings = f"""
            site = "plant-1"
            [discovery]
            addresses = ["127.0.0.1"]
            [broker]
            host = "127.0.0.1"
            port = {PORT}
            tls = true
            authority = "{folder}/ca.crt"
            user = "agent-plant-1"
            password-file = "{folder}/password"
            commands = true
            """
        identity = simulator.devices[0].mac.lower().replace(":", "-")
        with Topics("plant-1", *client("keeper", folder)) as topics:  # who would take commands, too, as far as brokers know
            agent = self.enterContext(Agent(folder, settings))
            wait_until(lambda: topics.is_whole(2) and topics.state() == "ready", "2 devices")
            self.check_changes(topics, *simulator.devices)
            self.assertIn("would publish again", self.fleet("keeper", "forget", "plant-1", "--yes", status=2)[1])
            agent.process.send_signal(signal.SIGSTOP)
            told = self.change("rename", "x", "--device", identity, "--timeout", "1", status=3)
            self.assertEqual(told["Verdict"], "no-reply")
            time.sleep(3)  # until it has expired for sure
            known = len(self.audit())
            agent.process.send_signal(signal.SIGCONT)
            wait_until(lambda: len(self.audit()) > known, "verdict")
            self.assertEqual(self.audit()[known].get("Code"), "expired")
            agent.kill()
            wait_until(lambda: topics.state() == "lost", "will")
        self.assertEqual(self.change("rename", "x", "--device", identity, status=2)["Code"], "no-agent")
        told = self.change("rename", "x", "--device", identity, "--force", status=2)
        self.assertEqual((told["Code"], "nobody takes commands" in told["Text"]), ("no-agent", True))

        self.assertIn("no terminal to ask on", self.fleet("keeper", "forget", "plant-1", status=2)[1])
        self.assertIn("Not authorized", self.fleet("ann", "forget", "plant-1", "--yes", status=6)[1])
        removed, _ = self.fleet("keeper", "--json", "forget", "plant-1", "--yes")
        self.assertEqual(json.loads(removed), {"Forgotten": {"Site": "plant-1", "Removed": 4, "Left": 0}})
        self.fleet("keeper", "forget", "plant-1", "--yes", status=3)
        self.fleet("ann", "sites", status=3)

    def check_changes(self, topics, first, second):
        identity = first.mac.lower().replace(":", "-")

        planned, _ = self.fleet("ann", "--site", "plant-1", "rename", "press-4", "--name", first.name, "--dry-run")
        self.assertEqual(planned, f'{first.mac} ({first.name}): the name "press-4" instead of the name "{first.name}"\n')
        change = self.change("rename", "press-4", "--name", first.name)
        self.assertEqual((change["MACAddress"], change["Verdict"]), (first.mac, "applied"))
        self.assertEqual((change["Before"], change["After"]), ({"HostName": first.name}, {"HostName": "press-4"}))
        wait_until(lambda: topics.devices()[identity]["Host"]["HostName"] == "press-4" and topics.is_whole(2), "name")
        nic = {"MACAddress": first.mac, "IPAddress": "10.0.0.77", "SubNetMask": "255.0.0.0", "DefaultGateway": "",
               "FriendlyName": ""}  # fmt: skip
        self.assertEqual(self.change("configure", "-", text=json.dumps([nic]))["Verdict"], "applied")
        wait_until(lambda: topics.devices()[identity]["Host"]["NICs"][0]["IPAddress"] == "10.0.0.77", "address")
        self.fleet("ann", "--site", "plant-1", "discover")
        for device in (identity, second.mac):
            self.fleet("ann", "--site", "plant-1", "refresh", device)

        self.assertEqual(self.change("rename", second.name, "--device", identity, status=2)["Code"], "name-taken")
        self.assertEqual(self.change("rename", "x", "--mac", "02:00:00:00:00:99", status=2)["Code"], "unknown-device")
        self.fleet("ann", "--site", "plant-1", "rename", "x", "--name", "nobody", status=2)
        self.fleet("ann", "rename", "x", "--device", identity, status=2)
        self.assertEqual(
            self.change("rename", "x", "--device", identity, user="eve", status=2)["Code"], "not-authorized"
        )
        record = {**topics.devices()[identity], "Revision": "of another state of the device"}
        subprocess.run(
            ["mosquitto_pub", "-h", "127.0.0.1", "-p", str(PORT), *client("keeper", self.folder), "-q", "1", "-r",
             "-t", f"discovery/v1/plant-1/devices/{identity}", "-m", json.dumps(record)],
            check=True,
        )  # fmt: skip
        self.assertEqual(self.change("rename", "x", "--device", identity, status=2)["Code"], "stale")
        self.assertEqual({line["Sender"] for line in self.audit()}, {"ann"})

    def audit(self):
        return [json.loads(line) for line in (self.folder / "commands.log").read_text().splitlines()]

    def test_a_broker_is_checked_and_left_as_it_was(self):
        def watch(*options):
            return subprocess.run(
                ["mosquitto_sub", "-h", "127.0.0.1", "-p", str(PORT), *client("keeper", self.folder), "-F", "%t",
                 "-t", "discovery/check/#", *options],
                capture_output=True, text=True, check=False,
            ).stdout  # fmt: skip

        with Broker(self.folder, *self.lines, limit=None):
            for end in (signal.SIGKILL, signal.SIGINT):
                with Process(*self.program("keeper", "check-broker")) as check:
                    self.assertIn("discovery/check/keeper/", watch("-R", "-C", "1", "-W", "60"))
                    check.process.send_signal(end)
                    self.assertEqual(check.end(), -end if end == signal.SIGKILL else 130)
            found, _ = self.fleet("keeper", "check-broker", status=6)
            self.assertRegex(found, "^max_queued_messages: .* 1020 of 2000 messages")
            self.assertIn("acl_file", self.fleet("eve", "check-broker", status=7)[0])
            self.assertEqual(watch("--retained-only", "-W", "1"), "")
        with Broker(self.folder, *self.lines):
            found = json.loads(self.fleet("keeper", "--json", "check-broker")[0])["Check"]
            self.assertEqual(found, {"Probes": 2000, "Small": 2000, "Records": 2000, "Findings": []})


if __name__ == "__main__":
    endtoend.main()
