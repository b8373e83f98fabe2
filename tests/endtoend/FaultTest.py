"""Networks that fail under a running server: cables come out, addresses go."""

import time

from endtoend import Host, Simulator, TestCase, ip, main, wait_until
from networks import cabled

RESTART = "Asynchronous restart triggered"


class FaultTest(TestCase):
    """A device behind a cable of its own."""

    def setUp(self):
        super().setUp()
        machine = cabled(self, "10.3.0.1/24", "10.3.0.10/24")
        self.cable = machine.cable
        self.simulator = self.enterContext(
            Simulator("--count", "1", "--network", "10.3.0.10/24", "--no-hello", machine=machine)
        )
        self.host = self.enterContext(Host(self.folder / "log.txt", level=1))
        self.host.initialize()
        self.host.must("StartServer")
        self.host.must("InitBroadcastProvider", '["10.3.0.1"]')
        self.assert_served("Discover")

    def assert_served(self, *request):
        """Asks again until an answer is there: the server may be restarting."""
        self.host.events.clear()

        def is_answered():
            self.host.call(*request)
            time.sleep(0.1)
            self.host.call("GetErrorMessage", 0)  # reads the callbacks that have come
            return any(kind == "signature" for kind, _ in self.host.events)

        wait_until(is_answered, request[0])

    def restarts(self):
        return self.host.log_text().count(RESTART)

    def test_without_a_route_it_restarts_once_a_second_and_serves_when_the_route_is_back(self):
        self.cable.near.down()
        ip("route", "delete", "default", "dev", "lo")
        try:
            due = time.monotonic()
            for _ in range(1000):
                self.host.call("ReachClient", "10.3.0.10")
                due += 0.01
                time.sleep(max(0, due - time.monotonic()))
            restarts = self.restarts()
        finally:
            ip("route", "add", "default", "dev", "lo")
            self.cable.near.up()
        self.assertGreaterEqual(restarts, 2)
        self.assertLessEqual(restarts, 11)
        self.assert_served("ReachClient", "10.3.0.10")
        self.assert_served("Discover")  # the provider has outlasted the restarts

    def test_an_address_that_went_and_came_back_is_used_again(self):
        self.cable.near.readdress(None)
        for _ in range(10):
            self.host.call("Discover")
        wait_until(lambda: "10.3.0.1 !" in self.host.log_text(), "line about the address")
        self.cable.near.readdress("10.3.0.1/24")
        self.assert_served("Discover")


if __name__ == "__main__":
    main()
