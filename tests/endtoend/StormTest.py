"""Five hundred devices that answer one request at once. What the receive buffer cannot hold is lost for good, so the
share that arrives measures how fast the server takes datagrams in. The processors of a machine that runs tests are not
always free at that moment, so that one good round of several has to do; all are shown."""

import statistics
import time

from endtoend import Host, Namespace, Simulator, TestCase, ip, main, setting

DEVICES = 500
ROUNDS = 5
REQUIRED_SHARE = 0.99
PATIENCE = 120  # seconds
QUIET = 1  # seconds without an answer, after which no more will come


def is_good(counts):
    return max(counts) >= REQUIRED_SHARE * DEVICES


class StormTest(TestCase):
    def setUp(self):
        super().setUp()
        namespace = self.enterContext(Namespace("10.4.0.1/16", "10.4.4.10/16"))
        ip("route", "add", "local", "10.4.4.0/22", "dev", "far", namespace=namespace)  # an address for each device
        self.enterContext(
            Simulator("--count", str(DEVICES), "--network", "10.4.4.10/16", "--no-hello", namespace=namespace)
        )
        self.host = self.enterContext(Host(self.folder / "log.txt", level=1))
        self.host.initialize()
        self.host.start("10.4.0.1")

    def answers(self):
        """How many devices are reported after one Discover."""
        self.host.events.clear()
        self.host.must("Discover")
        count = 0
        last = time.monotonic()
        while count < DEVICES and time.monotonic() - last < QUIET:
            time.sleep(0.05)
            self.host.call("GetErrorMessage", 0)  # reads the callbacks that have come
            if self.host.events:
                last = time.monotonic()
            count += sum(kind == "signature" for kind, _ in self.host.events)
            self.host.events.clear()
        return count

    def test_nearly_all_answers_of_a_storm_are_reported(self):
        deadline = time.monotonic() + PATIENCE
        counts = [self.answers() for _ in range(ROUNDS)]
        if setting("sanitized"):
            self.assertGreater(min(counts), 0)
        else:
            while not is_good(counts) and time.monotonic() < deadline:
                counts.append(self.answers())
            self.assertTrue(is_good(counts), counts)
        print(f"\nreported of {DEVICES}: median {statistics.median(counts)}, {counts}")
        self.assertNotIn("Semaphore is full", self.host.log_text())
        self.assertNotIn("Asynchronous restart", self.host.log_text())


if __name__ == "__main__":
    main()
