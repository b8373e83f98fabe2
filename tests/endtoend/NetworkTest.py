"""Machines with several networks: the tests' own network and others behind cables."""

import json

from endtoend import Host, Simulator, TestCase, main, setting
from networks import cabled


class BroadcastProviderTest(TestCase):
    """Two networks of one device each."""

    def setUp(self):
        super().setUp()
        self.simulators = [
            self.enterContext(
                Simulator(
                    "--count", "1", "--seed", str(number), "--network", f"10.{number}.0.10/24",
                    "--no-hello", "--verbose",
                    machine=cabled(self, f"10.{number}.0.1/24", f"10.{number}.0.10/24"),
                )
            )
            for number in (1, 2)
        ]  # fmt: skip
        self.host = self.enterContext(Host(self.folder / "log.txt"))
        self.host.initialize()
        self.host.must("StartServer")

    def install(self, *addresses):
        self.host.must("InitBroadcastProvider", json.dumps(addresses))

    def test_a_broadcast_leaves_from_every_address(self):
        self.install("10.1.0.1", "10.2.0.1")
        self.host.must("Discover")
        answers = [self.host.event("signature")["SourceNIC"]["IPAddress"] for _ in self.simulators]
        self.assertCountEqual(answers, ["10.1.0.10", "10.2.0.10"])

    def test_an_address_that_fails_does_not_hinder_the_others(self):
        self.install("10.9.0.1", "10.2.0.1")
        self.host.must("Discover")
        self.host.event("signature", lambda document: document["SourceNIC"]["IPAddress"] == "10.2.0.10")
        if not setting("suffix"):  # Wine binds to any address
            self.assertIn("Exception caught while creating socket on address 10.9.0.1 !", self.host.log_text())

    def test_only_the_given_addresses_are_used(self):
        self.install("10.1.0.1")
        self.host.must("Discover")
        for simulator in self.simulators:
            self.host.must("ReachClient", simulator.devices[0].ip)
        first, second = self.simulators
        self.assertIn("answers AllSendYourSignature to 10.1.0.1", first.line())
        self.assertIn("answers SendYourSignature to 10.2.0.1", second.line())


if __name__ == "__main__":
    main()
