"""Five hundred devices that answer one request at once, faster than any network carries it. What the receive buffer
cannot hold is lost for good, so the receiver has to be there after a tenth of a millisecond and go before all else. No
answer may do harm, and none may be lost behind the receive buffer."""

import statistics
import time

from endtoend import Host, Simulator, TestCase, main, setting
from networks import cabled

DEVICES = 500
ROUNDS = 5
ENOUGH = 495  # reports, in most rounds
QUIET = 1  # seconds without an answer, after which no more will come


class StormTest(TestCase):
    def setUp(self):
        super().setUp()
        machine = cabled(self, "10.4.0.1/16", "10.4.4.10/16")
        machine.own(["10.4.4.0/22"])  # an address for each device
        self.enterContext(
            Simulator("--count", str(DEVICES), "--network", "10.4.4.10/16", "--no-hello", machine=machine)
        )
        self.host = self.enterContext(Host(self.folder / "log.txt", level=2))
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

    def test_what_is_received_of_a_storm_is_reported(self):
        counts = [self.answers() for _ in range(ROUNDS)]
        median = statistics.median(counts)
        print(f"\nreported of {DEVICES}: median {median}, {counts}")
        log = self.host.log_text()
        is_slowed_down = setting("sanitized") or setting("suffix")  # by a sanitizer or by Wine
        self.assertGreaterEqual(median, 1 if is_slowed_down else ENOUGH)
        self.assertEqual(log.count("Message type : SignatureBroadcast"), sum(counts))
        self.assertNotIn("Semaphore is full", log)
        self.assertNotIn("Asynchronous restart", log)


if __name__ == "__main__":
    main()
