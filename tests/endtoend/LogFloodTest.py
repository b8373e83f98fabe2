"""A minute of traffic at the level that logs most."""

import contextlib
import json
import time

from endtoend import Host, Peer, TestCase, main, message
from LogTest import whole_lines

LARGEST_FILE = 1024 * 1024  # at level Debug
KEPT_FILES = 3
LONGEST_LINE = 4096


class LogFloodTest(TestCase):
    """What a flood can do to the disk."""

    def size_of_files(self):
        size = 0
        for file in self.folder.iterdir():
            with contextlib.suppress(FileNotFoundError):  # it has just got another name
                size += file.stat().st_size
        return size

    def test_a_flood_fills_no_more_than_the_kept_files(self):
        log = self.folder / "log.txt"
        largest = 0
        with Host(log) as host, Peer() as peer:
            host.initialize()
            host.must("SetHelloMessageReceivedEventCallBack", "off")
            host.start()
            hello = json.dumps(message("Hello", "flood")).encode()
            end = time.monotonic() + 60
            while time.monotonic() < end:
                for _ in range(500):
                    peer.send(hello)
                time.sleep(0.01)
                largest = max(largest, self.size_of_files())
            host.must("Terminate")
        files = sorted(self.folder.iterdir())
        print(f"{largest} bytes at the most in {len(files)} files")
        self.assertEqual(len(files), 1 + KEPT_FILES)
        self.assertLessEqual(largest, (1 + KEPT_FILES) * (LARGEST_FILE + LONGEST_LINE))
        for file in files:
            lines = whole_lines(file.read_text())
            if file != log:  # which may have begun just now
                self.assertGreater(len(lines), 1000)


if __name__ == "__main__":
    main()
