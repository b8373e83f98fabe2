"""Agents with a real broker and simulated devices."""

import json
import pathlib
import random
import re
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "endtoend"))

import endtoend  # noqa: E402
from brokers import PORT, Agent, Broker, Description, Topics, certificates  # noqa: E402
from endtoend import Simulator, command, wait_until  # noqa: E402
from networks import HERE, Cable, End, Machine, Occupant  # noqa: E402

SETTINGS = """
site = "plant-1"
[discovery]
addresses = ["127.0.0.1"]
ask-every = 1
[broker]
host = "127.0.0.1"
longest-retry = 1
port = %d
""" % PORT

ANYBODY = "allow_anonymous true"


class AgentTest(endtoend.TestCase):
    def check_description(self, messages, *kinds):
        """They are as the description says, and all of these kinds are among them."""
        description = Description(endtoend.setting("source") / "docs/fleet/asyncapi.json")
        self.assertEqual(description.check(messages, self.folder), set(kinds))

    def start(self, *settings, before=()):
        return self.enterContext(Agent(self.folder, SETTINGS + "\n".join(settings), before=before))

    def test_a_thousand_devices_are_whole_and_a_new_start_publishes_what_has_changed(self):
        self.enterContext(Broker(self.folder, ANYBODY))
        simulator = self.enterContext(Simulator("--count", "1001"))
        topics = self.enterContext(Topics("plant-1"))
        agent = self.start()
        wait_until(lambda: topics.is_whole(1001) and topics.state() == "ready", "1001 devices")
        self.assertEqual(len(topics.held["manifest"]["Parts"]), 2)
        device = simulator.devices[0]
        identity = device.mac.lower().replace(":", "-")
        record = topics.devices()[identity]
        self.assertEqual(record["State"], "present")
        self.assertEqual(record["Host"]["HostName"], device.name)
        agent.told_with("STATUS=site plant-1: 1001 devices, 0 of them gone; broker connected, 0 records waiting")

        topics.forget()
        agent.kill()
        wait_until(lambda: topics.state() == "lost", "will")
        simulator.behave("kill 1")
        agent = self.start()
        wait_until(lambda: topics.state() == "ready", "second start")
        wait_until(lambda: topics.is_whole(1001), "manifest")
        records = [name for name, _ in topics.messages if name.startswith("devices/")]
        self.assertEqual(records, ["devices/" + identity])
        self.assertEqual(topics.devices()[identity]["State"], "gone")
        gone = [event for name, event in topics.messages if name == "events" and event["type"] == "discovery.v1.gone"]
        self.assertEqual([event["subject"] for event in gone], [identity])

        self.check_description(topics.messages, "state", "record", "manifest", "manifestPart", "event")

        topics.forget()
        simulator.behave("revive 1")
        wait_until(lambda: topics.devices()[identity]["State"] == "present", "device that came back")
        self.assertEqual(agent.stop(), 0)
        wait_until(lambda: topics.state() == "disconnected", "goodbye")

    @unittest.skipIf("--sanitized" in sys.argv, "a faked clock and a sanitizer want to be loaded first")
    def test_the_record_of_a_device_goes_30_days_after_it_and_a_clock_that_is_set_back_does_no_harm(self):
        self.enterContext(Broker(self.folder, ANYBODY))
        simulator = self.enterContext(Simulator("--count", "2"))
        topics = self.enterContext(Topics("plant-1"))
        agent = self.start()
        wait_until(lambda: topics.is_whole(2) and topics.state() == "ready", "2 devices")
        identity = simulator.devices[0].mac.lower().replace(":", "-")
        simulator.behave("kill 1")
        wait_until(lambda: topics.devices()[identity]["State"] == "gone", "silent device")
        for days, count in ((29, 2), (31, 1), (-400, 1)):
            agent.stop()
            wait_until(lambda: topics.state() == "disconnected", "goodbye")
            clock = ("LD_PRELOAD=/usr/$LIB/faketime/libfaketime.so.1", f"FAKETIME={days:+}d", "DONT_FAKE_MONOTONIC=1")
            agent = self.start(before=clock)
            wait_until(lambda: topics.state() == "ready", "next start")
            self.assertEqual(len(topics.devices()), count)
            self.assertTrue(topics.is_whole(count))

    def test_an_agent_that_is_killed_at_any_moment_leaves_nothing_wrong_behind(self):
        self.enterContext(Broker(self.folder, ANYBODY))
        simulator = self.enterContext(Simulator("--count", "30"))
        topics = self.enterContext(Topics("plant-1"))
        chance = random.Random(1)
        for _ in range(endtoend.setting("rounds")):
            agent = self.start()
            time.sleep(chance.uniform(0, 5))  # any moment of the start and of the first rounds
            agent.kill()
            simulator.behave(f"{chance.choice(('kill', 'revive'))} {chance.randint(1, 30)}")
        for number in range(1, 31):
            simulator.behave(f"revive {number}")
        self.start()
        wait_until(
            lambda: topics.is_whole(30)
            and topics.state() == "ready"
            and {each["State"] for each in topics.devices().values()} == {"present"},
            "all devices",
        )
        names = {record["Host"]["HostName"] for record in topics.devices().values()}
        self.assertEqual(names, {device.name for device in simulator.devices})

    def test_a_broker_that_has_lost_everything_has_it_again_from_agents_with_a_certificate(self):
        certificates(self.folder)
        authority, certificate, key = (self.folder / name for name in ("ca.crt", "own.crt", "own.key"))
        broker = (f"cafile {authority}", f"certfile {certificate}", f"keyfile {key}", "require_certificate true",
                  "use_identity_as_username true")  # fmt: skip
        client = ("--cafile", str(authority), "--cert", str(certificate), "--key", str(key))
        with Broker(self.folder, *broker):
            self.enterContext(Simulator("--count", "20"))
            agent = self.start(f"tls = true\nauthority = '{authority}'", f"certificate = '{certificate}'", f"key = '{key}'")
            with Topics("plant-1", *client) as topics:
                wait_until(lambda: topics.is_whole(20) and topics.state() == "ready", "20 devices")
        agent.told_with("no broker")
        self.enterContext(Broker(self.folder, *broker))
        topics = self.enterContext(Topics("plant-1", *client))
        wait_until(lambda: topics.is_whole(20) and topics.state() == "ready", "20 devices again")

    def test_of_two_agents_for_one_site_the_second_publishes_nothing_until_the_first_is_gone(self):
        machine = self.enterContext(Machine())
        self.enterContext(Cable(End(HERE, "10.9.0.1/24"), End(machine, "10.9.0.2/24")))
        self.enterContext(Broker(self.folder, ANYBODY, f"listener {PORT} 10.9.0.1"))
        self.enterContext(Simulator("--count", "3"))
        topics = self.enterContext(Topics("plant-1"))
        first = self.start()
        wait_until(lambda: topics.is_whole(3) and topics.state() == "ready", "first agent")
        topics.forget()
        other = self.folder / "other"
        other.mkdir()
        settings = SETTINGS.replace('host = "127.0.0.1"', 'host = "10.9.0.1"').replace("127.0.0.1", "10.9.0.2")
        second = self.enterContext(Agent(other, settings, machine=machine))
        first.line_with("another agent for site plant-1")
        self.assertIn("publishes nothing until it is gone", second.line_with("another agent for site plant-1"))
        second.told_with("nothing is published here")
        topics.read()
        self.assertEqual([name for name, _ in topics.messages if name != "state"], [])
        first.stop()
        second.line_with("the other agent for site plant-1 is gone")
        wait_until(lambda: all(each["State"] == "gone" for each in topics.devices().values()), "second agent's view")
        wait_until(lambda: topics.is_whole(3) and topics.state() == "ready", "second agent")

    def test_nobody_is_gone_while_another_program_takes_the_answers(self):
        self.enterContext(Broker(self.folder, ANYBODY))
        simulator = self.enterContext(Simulator("--count", "3"))
        topics = self.enterContext(Topics("plant-1"))
        agent = self.start()
        wait_until(lambda: topics.is_whole(3) and topics.state() == "ready", "3 devices")
        with Occupant():
            agent.told_with("port shared with ")
            simulator.behave("silent on")
            agent.stop()
            topics.forget()
            agent = self.start()
            wait_until(lambda: topics.state() == "ready", "start beside another program")
            self.assertEqual({each["State"] for each in topics.devices().values()}, {"present"})
        agent.line_with("alone again")
        wait_until(lambda: {each["State"] for each in topics.devices().values()} == {"gone"}, "silent devices")

    def test_commands_need_tls_and_a_name_and_are_checked_and_kept(self):
        certificates(self.folder)
        (self.folder / "passwords").write_text("agent:secret\nann:secret\n", encoding="ascii")
        subprocess.run(["mosquitto_passwd", "-U", str(self.folder / "passwords")], check=True)
        (self.folder / "acl").write_text(
            "user agent\ntopic readwrite discovery/v1/plant-1/#\n"
            "user ann\ntopic read discovery/v1/#\ntopic write discovery/v1/+/commands\n",
            encoding="ascii",
        )
        (self.folder / "password").write_text("secret\n", encoding="ascii")
        folder = self.folder
        tls = (f"tls = true\nauthority = '{folder}/ca.crt'", f"user = 'agent'\npassword-file = '{folder}/password'")
        self.enterContext(
            Broker(folder, f"cafile {folder}/ca.crt", f"certfile {folder}/own.crt", f"keyfile {folder}/own.key",
                   f"password_file {folder}/passwords", f"acl_file {folder}/acl")
        )  # fmt: skip
        simulator = self.enterContext(Simulator("--count", "2"))
        client = ("--cafile", f"{folder}/ca.crt", "-u", "ann", "-P", "secret")
        topics = self.enterContext(Topics("plant-1", *client))
        self.start(*tls, "commands = true")
        wait_until(lambda: topics.is_whole(2) and topics.state() == "ready", "2 devices")
        identity = simulator.devices[0].mac.lower().replace(":", "-")
        revision = topics.devices()[identity]["Revision"]

        def send(document, *options, expiry=10, topic="replies/ann/1"):
            expiries = ("-D", "publish", "message-expiry-interval", str(expiry)) if expiry else ()
            subprocess.run(
                ["mosquitto_pub", "-V", "5", "-h", "127.0.0.1", "-p", str(PORT), *client, "-q", "1", "-t",
                 "discovery/v1/plant-1/commands", "-m", json.dumps(document), *expiries,
                 "-D", "publish", "response-topic", "discovery/v1/plant-1/" + topic, *options],
                check=True,
            )  # fmt: skip

        audit = folder / "commands.log"

        def codes():
            return [line.get("Code", line["Verdict"]) for line in map(json.loads, audit.read_text().splitlines())]

        rename = {"Command": "rename", "Device": identity, "Revision": "old", "HostName": "press-4"}
        refresh = {"Command": "refresh", "Device": identity}
        send({"Command": "discover"})
        send(refresh)
        send(rename)
        send({**refresh, "Device": "02-00-00-00-00-99"})
        send({**rename, "Revision": revision}, expiry=None)
        send({**rename, "Revision": revision}, expiry=31)
        send(refresh, topic="devices/" + identity)
        send({"Command": "reboot"})
        expected = ["done", "done", "stale", "unknown-device", "no-expiry", "expiry-too-long", "foreign-topic",
                    "bad-command"]  # fmt: skip
        wait_until(lambda: len(codes()) == len(expected), "verdicts")
        self.assertEqual(codes(), expected)

        def replies():
            topics.read()
            return [payload.get("Code", payload["Verdict"]) for name, payload in topics.messages if "replies" in name]

        expected.remove("foreign-topic")
        wait_until(lambda: len(replies()) == len(expected), "replies")
        self.assertEqual(replies(), expected)
        self.assertEqual(topics.devices()[identity]["Revision"], revision)

        send({**rename, "Revision": revision})
        wait_until(lambda: topics.devices()[identity]["Host"]["HostName"] == "press-4", "new name")
        revision = topics.devices()[identity]["Revision"]
        send({**rename, "Revision": revision, "HostName": simulator.devices[1].name})
        nic = {**topics.devices()[identity]["Host"]["NICs"][0], "IPAddress": "127.0.0.77"}
        send({"Command": "configure", "Device": identity, "Revision": revision, "Settings": nic})
        nic |= {"IPAddress": "10.0.0.77", "SubNetMask": "255.255.255.0"}
        other = {**nic, "MACAddress": simulator.devices[1].mac}
        send({"Command": "configure", "Device": identity, "Revision": revision, "Settings": other})
        send({"Command": "configure", "Device": identity, "Revision": revision, "Settings": nic})
        expected = [*expected, "applied", "name-taken", "bad-address", "unknown-device", "applied"]
        wait_until(lambda: len(replies()) == len(expected), "verdicts of changes")
        self.assertEqual(sorted(replies()), sorted(expected))
        self.assertEqual([line["Verdict"] for line in map(json.loads, audit.read_text().splitlines())].count("started"), 4)
        sent = [(name, payload) for name, payload in topics.messages if payload != {"Command": "reboot"}]
        self.check_description(sent, "state", "record", "manifest", "event", "command", "reply")
        details = [payload["Details"] for name, payload in topics.messages if "replies" in name and "Details" in payload]
        self.assertEqual(details[0]["Before"]["HostName"], simulator.devices[0].name)
        self.assertEqual(details[0]["After"]["HostName"], "press-4")
        sender = json.loads(audit.read_text().splitlines()[0])["Sender"]
        self.assertEqual(sender, "ann")

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
        uncommented.write_text(text.replace('key = ""', ""), encoding="utf-8")
        subprocess.run([*program, str(uncommented)], check=True, stdout=subprocess.DEVNULL)

    def test_settings_are_checked_with_their_place(self):
        def check(text):
            file = self.folder / "agent.toml"
            file.write_text(text, encoding="utf-8")
            result = subprocess.run(
                command("discovery-agent", "--config", str(file), "--check-config"),
                capture_output=True, text=True, check=False,
            )  # fmt: skip
            return result.returncode, result.stderr.removeprefix(f"discovery-agent: {file}: ")

        self.assertEqual(check(SETTINGS), (0, ""))
        for text, expected in (
            ('site = "a/b"', "line 1, column 8: site: "),
            ("[broker]\nport = 70000", "line 2, column 8: port is no whole number from 1 to 65535"),
            ("[broker]\nprot = 1883", 'line 2, column 1: unknown setting "broker.prot"'),
            ('[discovery]\ninterfaces = "eth0"', "line 2, column 14: interfaces is no list of texts"),
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
        status, reason = check('[broker]\nhost = "b"\ncommands = true')
        self.assertEqual(status, 2)
        self.assertIn("needs a broker with tls", reason)


if __name__ == "__main__":
    endtoend.main()
