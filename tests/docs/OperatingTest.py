"""What docs/operating.md tells those who install a host program."""

import endtoend
from endtoend import Host, Simulator, TestCase, ip, main, wait_until


def is_called(name):
    return lambda document: document["Host"]["HostName"] == name


class OperatingTest(TestCase):
    def start_host(self, name="log.txt"):
        host = self.enterContext(Host(self.folder / name))
        host.initialize()
        host.must("StartServer")
        return host

    def test_of_two_hosts_the_one_started_last_gets_the_answers(self):
        first, last = (self.start_host(name) for name in ("first.txt", "last.txt"))
        with Simulator("--count", "1") as simulator:
            device = simulator.devices[0]
            for host in (first, last):
                host.event("hello", is_called(device.name))
            first.must("ReachClient", device.ip)
            last.event("signature", is_called(device.name))
        first.event("bye", is_called(device.name))
        self.assertNotIn("SignatureBroadcast", first.log_text())
        for host, warnings in ((first, 0), (last, 1)):
            self.assertEqual(host.log_text().count("Another socket on this machine is bound to port 12001"), warnings)

    def test_no_rights_are_needed(self):
        rights = ["setpriv", "--bounding-set=-all", "--inh-caps=-all"]
        endtoend.launcher()[:0] = rights
        self.addCleanup(endtoend.launcher().__delitem__, slice(len(rights)))
        host = self.start_host()
        with Simulator("--count", "1") as simulator:
            host.must("ReachClient", simulator.devices[0].ip)
            host.event("signature")
        self.assertIn("Thread priority Highest refused by the system.", host.log_text())

    def test_without_a_default_route_broadcasts_need_a_local_address(self):
        ip("route", "delete", "default", "dev", "lo")
        self.addCleanup(ip, "route", "add", "default", "dev", "lo")
        host = self.start_host()
        with Simulator("--count", "1", "--no-hello", "--no-bye"):
            host.must("Discover")
            wait_until(lambda: host.log_text().count("---Listening...") == 2, "restart")
            self.assertIn("Unexpected socket error  : NetworkUnreachable !", host.log_text())
            host.must("InitBroadcastProvider", '["127.0.0.1"]')
            host.must("Discover")
            host.event("signature")

    def test_a_request_that_fits_no_datagram_is_lost_and_the_next_is_sent(self):
        host = self.start_host()
        with Simulator("--count", "1", "--no-hello") as simulator:
            host.must("ChangeClientsHostName", "x" * 65600, simulator.devices[0].mac)
            wait_until(lambda: host.log_text().count("---Listening...") == 2, "restart")
            host.must("ReachClient", simulator.devices[0].ip)
            host.event("signature", is_called(simulator.devices[0].name))


if __name__ == "__main__":
    main()
