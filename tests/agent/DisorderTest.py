"""Agents while brokers, cables, clocks and other programs fail them: afterwards the broker has what there is."""

import pathlib
import random
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "endtoend"))

import endtoend  # noqa: E402
from brokers import ANYBODY, PORT, SETTINGS, Agent, Broker, Topics, certificates, identity, settings_of  # noqa: E402
from endtoend import Simulator, wait_until  # noqa: E402
from networks import HERE, Cable, End, Machine, Occupant, cabled  # noqa: E402

DEVICES = 30


class Site:
    """A machine with simulated devices and an agent, and what a reader of its topics sees."""

    def __init__(self, test, number):
        self.machine = cabled(test, f"10.9.{number}.1/24", f"10.9.{number}.2/24")
        self.simulator = test.enterContext(
            Simulator("--count", str(DEVICES), "--seed", str(number), machine=self.machine)
        )
        self.topics = test.enterContext(Topics(f"plant-{number}"))
        self.folder = test.folder / f"plant-{number}"
        self.folder.mkdir()
        self.settings = settings_of(site=f"plant-{number}", host=f"10.9.{number}.1")
        self.away = set()

    def start(self):
        self.agent = Agent(self.folder, self.settings, machine=self.machine)
        return self.agent

    def behave(self, kind, number):
        self.simulator.behave(f"{kind} {number + 1}")
        device = self.simulator.devices[number]
        (self.away.add if kind == "kill" else self.away.discard)(device)

    def await_truth(self):
        self.topics.await_truth(self.simulator.devices, away=self.away)


class TestCase(endtoend.TestCase):
    def start(self, *settings, before=()):
        return self.enterContext(Agent(self.folder, SETTINGS + "\n".join(settings), before=before))


class DisorderTest(TestCase):
    def test_a_broker_that_starts_anew_gets_what_it_lacks_from_agents_with_a_certificate(self):
        certificates(self.folder)
        authority, certificate, key = (self.folder / name for name in ("ca.crt", "own.crt", "own.key"))
        broker = (f"cafile {authority}", f"certfile {certificate}", f"keyfile {key}", "require_certificate true",
                  "use_identity_as_username true", "persistence true", f"persistence_location {self.folder}/")  # fmt: skip
        client = ("--cafile", str(authority), "--cert", str(certificate), "--key", str(key))
        simulator = self.enterContext(Simulator("--count", "20"))
        silent = simulator.devices[:1]
        with Broker(self.folder, *broker) as kept:
            agent = self.start(f"tls = true\nauthority = '{authority}'", f"certificate = '{certificate}'", f"key = '{key}'")
            with Topics("plant-1", *client) as topics:
                topics.await_truth(simulator.devices)
            kept.process.terminate()
            kept.wait()
        agent.told_with("no broker")
        simulator.behave("kill 1")
        agent.told_with("1 of them gone")
        with Broker(self.folder, *broker), Topics("plant-1", *client) as topics:
            topics.await_truth(simulator.devices, away=silent)
            records = [name for name in topics.live if name.startswith("devices/")]
            self.assertEqual(records, ["devices/" + identity(silent[0])])
            agent.told_with("broker connected")  # else nothing would be new when it is not
        agent.told_with("no broker")
        (self.folder / "mosquitto.db").unlink()
        with Broker(self.folder, *broker), Topics("plant-1", *client) as topics:
            topics.await_truth(simulator.devices, away=silent)

    def test_of_two_agents_for_one_site_the_second_publishes_nothing_until_the_first_is_gone(self):
        machine = cabled(self, "10.9.0.1/24", "10.9.0.2/24")
        self.enterContext(Broker(self.folder, ANYBODY, f"listener {PORT} 10.9.0.1"))
        simulator = self.enterContext(Simulator("--count", "3"))
        topics = self.enterContext(Topics("plant-1"))
        first = self.start()
        topics.await_truth(simulator.devices)
        topics.forget()
        other = self.folder / "other"
        other.mkdir()
        settings = settings_of(host="10.9.0.1", address="10.9.0.2")
        second = self.enterContext(Agent(other, settings, machine=machine, before=("JOURNAL_STREAM=8:1",)))
        first.line_with("error: another agent for site plant-1")
        told = second.line_with("another agent for site plant-1")
        self.assertTrue(told.startswith("<3>"), told)
        self.assertIn("publishes nothing until it is gone", told)
        second.told_with("nothing is published here")
        topics.read()
        self.assertEqual([name for name, _ in topics.messages if name != "state"], [])
        first.stop()
        second.line_with("<6>the other agent for site plant-1 is gone")
        topics.await_truth(simulator.devices, away=simulator.devices)  # which the second one does not reach

    def test_nobody_is_gone_while_another_program_takes_the_answers(self):
        self.enterContext(Broker(self.folder, ANYBODY))
        simulator = self.enterContext(Simulator("--count", "3"))
        topics = self.enterContext(Topics("plant-1"))
        agent = self.start()
        topics.await_truth(simulator.devices)
        with Occupant():
            agent.told_with("port shared with ")
            simulator.behave("silent on")
            agent.stop()
            wait_until(lambda: topics.state() == "disconnected", "goodbye")
            agent = self.start()
            topics.await_truth(simulator.devices)
        agent.line_with("alone again")
        topics.await_truth(simulator.devices, away=simulator.devices)


class LongDisorderTest(TestCase):
    def test_agents_that_are_killed_at_any_moment_leave_nothing_wrong_behind(self):
        self.enterContext(Broker(self.folder, ANYBODY, address="0.0.0.0"))
        sites = [Site(self, number) for number in range(1, 7)]
        chance = random.Random(1)
        for site in sites:
            site.start()
        for site in sites:
            site.await_truth()
        for _ in range(5):
            chance.shuffle(sites)
            for site in sites:
                time.sleep(chance.uniform(0, 1))  # any moment of the start and of the first rounds
                site.agent.kill()
                site.behave(chance.choice(("kill", "revive")), chance.randrange(DEVICES))
            for site in sites:
                site.start()
        for site in sites:
            self.enterContext(site.agent)
            site.await_truth()

    def test_cables_come_out_and_in(self):
        machine, devices = (self.enterContext(Machine()) for _ in range(2))
        uplink = self.enterContext(Cable(End(machine, "10.9.0.2/24"), End(HERE, "10.9.0.1/24")))
        lan = self.enterContext(Cable(End(machine, "10.8.0.1/24"), End(devices, "10.8.0.10/24")))
        devices.own(["10.8.0.11", "10.8.0.12"])
        self.enterContext(Broker(self.folder, ANYBODY, address="0.0.0.0"))
        simulator = self.enterContext(Simulator("--count", "3", "--network", "10.8.0.10/24", machine=devices))
        topics = self.enterContext(Topics("plant-1"))
        settings = settings_of(host="10.9.0.1", address="10.8.0.1") + "keep-alive = 5"
        agent = self.enterContext(Agent(self.folder, settings, machine=machine))
        topics.await_truth(simulator.devices)

        uplink.unplug()
        lan.unplug()
        agent.line_with("no network interface takes part; left out: 10.8.0.1 (down); no device is called gone")
        lan.plug()
        agent.line_with("a network interface takes part again")
        simulator.behave("kill 1")
        wait_until(lambda: topics.state() == "lost", "will")
        uplink.plug()
        topics.await_truth(simulator.devices, away=simulator.devices[:1])

    @unittest.skipIf("--sanitized" in sys.argv, "a faked clock and a sanitizer want to be loaded first")
    def test_the_record_of_a_device_goes_30_days_after_it_and_a_clock_that_is_set_back_does_no_harm(self):
        self.enterContext(Broker(self.folder, ANYBODY))
        simulator = self.enterContext(Simulator("--count", "2"))
        topics = self.enterContext(Topics("plant-1"))
        agent = self.start()
        topics.await_truth(simulator.devices)
        silent, other = simulator.devices
        simulator.behave("kill 1")
        topics.await_truth([silent, other], away=[silent])
        for days, there in ((29, [silent, other]), (31, [other]), (-400, [other])):
            agent.stop()
            wait_until(lambda: topics.state() == "disconnected", "goodbye")
            clock = ("LD_PRELOAD=/usr/$LIB/faketime/libfaketime.so.1", f"FAKETIME={days:+}d", "DONT_FAKE_MONOTONIC=1")
            agent = self.start(before=clock)
            topics.await_truth(there, away=[silent])


if __name__ == "__main__":
    endtoend.main()
