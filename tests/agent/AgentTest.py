"""Agents with a real broker and simulated devices."""

import ctypes
import json
import os
import pathlib
import queue
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "endtoend"))

import endtoend  # noqa: E402
from brokers import (  # noqa: E402
    ANYBODY, PORT, SETTINGS, Agent, Broker, Description, IdleReader, Topics, certificates, identity, secured,
)  # fmt: skip
from endtoend import Simulator, command, wait_until  # noqa: E402

PTRACE_ATTACH = 16
PTRACE_DETACH = 17


class AgentTest(endtoend.TestCase):
    def check_description(self, messages, *kinds):
        """They are as the description says, and all of these kinds are among them."""
        description = Description(endtoend.setting("source") / "docs/fleet/asyncapi.json")
        self.assertEqual(description.check(messages, self.folder), set(kinds))

    def start(self, *settings, before=()):
        return self.enterContext(Agent(self.folder, SETTINGS + "\n".join(settings), before=before))

    def test_a_thousand_devices_are_whole_and_a_new_start_publishes_what_has_changed(self):
        self.enterContext(Broker(self.folder, ANYBODY))
        self.enterContext(IdleReader())  # which holds up nobody
        simulator = self.enterContext(Simulator("--count", "1001"))
        topics = self.enterContext(Topics("plant-1"))
        agent = self.start()
        topics.await_truth(simulator.devices)
        self.assertEqual(len(topics.held["manifest"]["Parts"]), 2)
        agent.told_with("STATUS=site plant-1: 1001 devices, 0 of them gone; broker connected, 0 records waiting")

        topics.forget()
        agent.kill()
        wait_until(lambda: topics.state() == "lost", "will")
        simulator.behave("kill 1")
        agent = self.start()
        topics.await_truth(simulator.devices, away=simulator.devices[:1])
        device = identity(simulator.devices[0])
        records = [name for name, _ in topics.messages if name.startswith("devices/")]
        self.assertEqual(records, ["devices/" + device])
        gone = [event for name, event in topics.messages if name == "events" and event["type"] == "discovery.v1.gone"]
        self.assertEqual([event["subject"] for event in gone], [device])

        self.check_description(topics.messages, "state", "record", "manifest", "manifestPart", "event")

        topics.forget()
        simulator.behave("revive 1")
        topics.await_truth(simulator.devices)
        self.assertEqual(agent.stop(), 0)
        wait_until(lambda: topics.state() == "disconnected", "goodbye")

    def test_commands_need_tls_and_a_name_and_are_checked_and_kept(self):
        folder = self.folder
        rights = (
            "user agent\ntopic readwrite discovery/v1/plant-1/#\n"
            "user ann\ntopic read discovery/v1/#\ntopic write discovery/v1/+/commands\n"
            "user bob\ntopic read discovery/v1/#\n"
        )
        (folder / "broker-password").write_text("secret\r\n", encoding="ascii", newline="")
        tls = (f"tls = true\nauthority = '{folder}/ca.crt'", "user = 'agent'")
        self.enterContext(Broker(folder, *secured(folder, rights, "agent", "ann", "bob")))
        simulator = self.enterContext(Simulator("--count", "2"))
        client = ("--cafile", f"{folder}/ca.crt", "-P", "secret", "-u")
        topics = self.enterContext(Topics("plant-1", *client, "ann"))
        self.start(*tls, "commands = true", before=(f"CREDENTIALS_DIRECTORY={folder}",))
        topics.await_truth(simulator.devices)
        device = identity(simulator.devices[0])
        revision = topics.devices()[device]["Revision"]

        def send(document, *options, expiry=10, topic="replies/ann/1", user="ann"):
            expiries = ("-D", "publish", "message-expiry-interval", str(expiry)) if expiry else ()
            subprocess.run(
                ["mosquitto_pub", "-V", "5", "-h", "127.0.0.1", "-p", str(PORT), *client, user, "-q", "1", "-t",
                 "discovery/v1/plant-1/commands", "-m", json.dumps(document), *expiries,
                 "-D", "publish", "response-topic", "discovery/v1/plant-1/" + topic, *options],
                check=True,
            )  # fmt: skip

        audit = folder / "commands.log"

        def codes():
            return [line.get("Code", line["Verdict"]) for line in map(json.loads, audit.read_text().splitlines())]

        rename = {"Command": "rename", "Device": device, "Revision": "old", "HostName": "press-4"}
        refresh = {"Command": "refresh", "Device": device}
        send({**rename, "Revision": revision}, user="bob")  # who must not
        send({"Command": "discover"}, "--repeat", "2")
        send(refresh)
        send(rename)
        send({**refresh, "Device": "02-00-00-00-00-99"})
        send({**rename, "Revision": revision}, expiry=None)
        send({**rename, "Revision": revision}, expiry=31)
        send(refresh, topic="devices/" + device)
        send({"Command": "reboot"})
        expected = ["done", "too-soon", "done", "stale", "unknown-device", "no-expiry", "expiry-too-long",
                    "foreign-topic", "bad-command"]  # fmt: skip
        wait_until(lambda: len(codes()) == len(expected), "verdicts")
        self.assertEqual(codes(), expected)

        def replies():
            topics.read()
            return [payload.get("Code", payload["Verdict"]) for name, payload in topics.messages if "replies" in name]

        expected.remove("foreign-topic")
        wait_until(lambda: len(replies()) == len(expected), "replies")
        self.assertEqual(replies(), expected)
        self.assertEqual(topics.devices()[device]["Revision"], revision)

        send({**rename, "Revision": revision}, "--repeat", "2")
        wait_until(lambda: topics.devices()[device]["Host"]["HostName"] == "press-4", "new name")
        wait_until(lambda: len(replies()) == len(expected) + 2, "verdicts of two who saw the same")
        again = next(each for each in replies()[-2:] if each != "applied")
        self.assertIn(again, ("busy", "stale"))
        revision = topics.devices()[device]["Revision"]
        send({**rename, "Revision": revision, "HostName": simulator.devices[1].name})
        nic = {**topics.devices()[device]["Host"]["NICs"][0], "IPAddress": "127.0.0.77"}
        send({"Command": "configure", "Device": device, "Revision": revision, "Settings": nic})
        nic |= {"IPAddress": "10.0.0.77", "SubNetMask": "255.255.255.0"}
        other = {**nic, "MACAddress": simulator.devices[1].mac}
        send({"Command": "configure", "Device": device, "Revision": revision, "Settings": other})
        send({"Command": "configure", "Device": device, "Revision": revision, "Settings": nic})
        expected = [*expected, "applied", again, "name-taken", "bad-address", "unknown-device", "applied"]
        wait_until(lambda: len(replies()) == len(expected), "verdicts of changes")
        wait_until(lambda: topics.devices()[device]["Revision"] != revision, "new address")
        second = {**topics.devices()[device]["Host"]["NICs"][1], "IPAddress": "10.1.0.77"}
        for other in ("replies/ann/2", "replies/ann/1"):  # his own change of the first interface is none that he missed
            send({"Command": "configure", "Device": device, "Revision": revision, "Settings": second}, topic=other)
        expected += ["stale", "applied"]
        wait_until(lambda: len(replies()) == len(expected), "verdicts of the second interface")
        self.assertEqual(sorted(replies()), sorted(expected))
        self.assertEqual([line["Verdict"] for line in map(json.loads, audit.read_text().splitlines())].count("started"), 5)
        sent = [(name, payload) for name, payload in topics.messages if payload != {"Command": "reboot"}]
        self.check_description(sent, "state", "record", "manifest", "event", "command", "reply")
        details = [payload["Details"] for name, payload in topics.messages if "replies" in name and "Details" in payload]
        self.assertEqual(details[0]["Before"]["HostName"], simulator.devices[0].name)
        self.assertEqual(details[0]["After"]["HostName"], "press-4")
        sender = json.loads(audit.read_text().splitlines()[0])["Sender"]
        self.assertEqual(sender, "ann")

    def test_the_watchdog_starves_while_the_thread_that_works_hangs(self):
        agent = self.start(before=("WATCHDOG_USEC=300000",))
        agent.told_with("WATCHDOG=1")
        trace, main = ctypes.CDLL(None).ptrace, agent.process.pid
        self.assertEqual(trace(PTRACE_ATTACH, main, None, None), 0)  # stops this thread alone
        os.waitpid(main, 0)
        with self.assertRaises(queue.Empty):
            for _ in range(100):  # what was told before
                agent.told.get(timeout=1)
        self.assertEqual(trace(PTRACE_DETACH, main, None, None), 0)
        agent.told_with("WATCHDOG=1")

    def test_the_unit_gives_the_service_no_more_rights_than_it_needs(self):
        unit = endtoend.setting("source") / "agent/service/discovery-agent.service"
        subprocess.run(
            ["systemd-analyze", "security", "--offline=true", "--threshold=20", str(unit)],
            check=True, stdout=subprocess.DEVNULL,
        )  # fmt: skip
        example = endtoend.setting("source") / "agent/service/agent.toml"
        program = command("discovery-agent", "--check-config", "--config")
        subprocess.run([*program, str(example)], check=True, stdout=subprocess.DEVNULL)
        uncommented = self.folder / "agent.toml"
        text = re.sub(r"(?m)^# ([a-z-]+ =)", r"\1", example.read_text(encoding="utf-8"))
        uncommented.write_text(text, encoding="utf-8")
        subprocess.run([*program, str(uncommented)], check=True, stdout=subprocess.DEVNULL)

    def test_settings_are_checked_with_their_place(self):
        def check(text, *options):
            file = self.folder / "agent.toml"
            file.write_text(text, encoding="utf-8")
            result = subprocess.run(
                command("discovery-agent", "--config", str(file), *(options or ("--check-config",))),
                capture_output=True, text=True, check=False,
            )  # fmt: skip
            return result.returncode, result.stderr.removeprefix(f"discovery-agent: {file}: ")

        self.assertEqual(check(SETTINGS), (0, ""))
        for option in ((), ("--library", endtoend.library_path())):
            status, reason = check(SETTINGS.replace('["127.0.0.1"]', '["192.0.2.7"]'), *option)
            self.assertIn('discovery.addresses: "192.0.2.7" is no address of this machine', reason)
            self.assertEqual(status, 2)
        for text, expected in (
            ('site = "a/b"', "line 1, column 8: site: "),
            ("[broker]\nport = 70000", "line 2, column 8: port is no whole number from 1 to 65535"),
            ("[broker]\nprot = 1883", 'line 2, column 1: unknown setting "broker.prot"'),
            ('[discovery]\ninterfaces = "eth0"', "line 2, column 14: interfaces is no list of texts"),
            ('[discovery]\naccepted-conflicts = ["x"]', 'line 2, column 23: accepted-conflicts: "x" is no conflict'),
            ('log-level = "loud"', 'line 1, column 13: "loud" is none of error, warning, info'),
            ("site = ", "line 1, column "),
        ):
            status, reason = check(text)
            self.assertEqual(status, 2, text)
            self.assertTrue(reason.startswith(expected), reason)
        page = (endtoend.setting("source") / "agent/man/discovery-agent.8").read_text().replace("\\-", "-")
        shown = subprocess.run(command("discovery-agent", "--help"), capture_output=True, text=True, check=True).stdout
        for option in re.findall(r"--[a-z][\w-]+", shown):
            if option != "--help":
                self.assertRegex(page, rf"{option}\b(?!-)")
        self.assertIn("letters, digits", check(SETTINGS, "--check-config", "--site", "a b")[1])
        missing = 'discovery-agent: [broker]: cannot read "/nowhere": No such file or directory\n'
        self.assertEqual(check("[broker]\ntls = true\nauthority = '/nowhere'"), (2, missing))
        agent = self.enterContext(Agent(self.folder, "[page]\nport = 0"))
        agent.told_with("no network interface takes part")
        status, reason = check('[broker]\nhost = "b"\ncommands = true')
        self.assertEqual(status, 2)
        self.assertIn("needs a broker with tls", reason)


if __name__ == "__main__":
    endtoend.main()
