"""Networks that fail under a running server: cables come out, addresses go, the port is taken, the socket dies."""

import socket
import time

from endtoend import SERVER_PORT, Host, Namespace, Simulator, TestCase, ip, main, wait_until

SOCKET_FAILED = 73
RESTART = "Asynchronous restart triggered"


class FaultTest(TestCase):
    """A device behind a cable of its own."""

    def setUp(self):
        super().setUp()
        self.namespace = self.enterContext(Namespace("10.3.0.1/24", "10.3.0.10/24"))
        self.simulator = self.enterContext(
            Simulator("--count", "1", "--network", "10.3.0.10/24", "--no-hello", namespace=self.namespace)
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
        ip("link", "set", self.namespace.cable, "down")
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
            ip("link", "set", self.namespace.cable, "up")
        self.assertGreaterEqual(restarts, 2)
        self.assertLessEqual(restarts, 11)
        self.assert_served("ReachClient", "10.3.0.10")
        self.assert_served("Discover")  # the provider has outlasted the restarts

    def test_an_address_that_went_and_came_back_is_used_again(self):
        ip("address", "delete", "10.3.0.1/24", "dev", self.namespace.cable)
        for _ in range(10):
            self.host.call("Discover")
        wait_until(lambda: "10.3.0.1 !" in self.host.log_text(), "line about the address")
        ip("address", "add", "10.3.0.1/24", "dev", self.namespace.cable)
        self.assert_served("Discover")

    def test_a_line_tells_of_another_server_on_this_machine(self):
        self.assertNotIn("Another socket on this machine", self.host.log_text())
        self.host.must("StopServer")
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as other:
            other.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
            other.bind(("", SERVER_PORT))
            self.host.must("StartServer")
        self.assertEqual(self.host.log_text().count("Another socket on this machine is bound to port 12001"), 1)

    def test_a_taken_port_is_a_code_and_a_line_and_the_next_start_works(self):
        self.host.must("Terminate")
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as other:
            other.bind(("", SERVER_PORT))
            self.host.initialize()
            self.assertEqual(self.host.call("StartServer"), SOCKET_FAILED)
            self.assertIn("AddressAlreadyInUse", self.host.log_text())
        self.host.must("Terminate")
        self.host.initialize()
        self.host.must("StartServer")
        self.host.must("InitBroadcastProvider", '["10.3.0.1"]')
        self.assert_served("Discover")


if __name__ == "__main__":
    main()
