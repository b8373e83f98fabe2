"""Logs that cannot be written, or no further: a full disk, a limit on the size of files, a device that takes nothing."""

import pathlib
import re

from endtoend import Host, Peer, TestCase, main, message, wait_until

IO = 58
LINE = re.compile(
    r"\|\d\d/\d\d/\d{4} \d\d:\d\d:\d\d\.\d{3}\|[ \d]{11}\.\d{6}\|.{40,}\|[CSDE]\|(           |\$0x[0-9A-F]{8})\|.+"
)


def whole_lines(text):
    """The lines of a log but for headers; fails when one is torn."""
    lines = [line for line in text.splitlines() if line and not re.match(r"\| ?[A-Z]\w+ *[:|]|\|-", line)]
    for line in lines:
        assert LINE.fullmatch(line), line
    return lines


class LogTest(TestCase):
    """The server goes on, whatever becomes of its log."""

    def setUp(self):
        super().setUp()
        self.peer = self.enterContext(Peer())
        self.number = 0

    def run_host(self, prefix):
        """A host behind a shell command that ends with exec "$@"."""
        self.host = self.enterContext(Host(self.folder / "logs" / "log.txt", prefix=["sh", "-c", prefix, "sh"]))

    def start(self, prefix):
        """The same, and it serves."""
        self.run_host(prefix)
        self.host.initialize()
        self.host.start()

    def assert_served(self, times=1):
        for _ in range(times):
            self.number += 1
            name = f"probe-{self.number}"
            self.peer.send(message("Hello", name))
            self.host.event("hello", lambda document, name=name: document["Host"]["HostName"] == name)

    def end(self):
        self.host.must("StopServer")
        self.host.must("Terminate")

    def test_a_full_disk_costs_lines_and_their_number_is_told_when_there_is_room_again(self):
        folder = self.folder / "logs"
        folder.mkdir()
        mount = f"mount -t tmpfs -o size=64k tmpfs {folder} && head -c 32k /dev/zero > {folder}/other && exec"
        self.start(f'exec unshare --mount sh -c \'{mount} "$@"\' sh "$@"')
        inside = pathlib.Path(f"/proc/{self.host.process.pid}/root{folder}")
        self.host.log = inside / "log.txt"
        self.assert_served(200)
        self.assertLessEqual(self.host.log.stat().st_size, 32 * 1024)
        self.assertNotIn("lost", self.host.log_text())
        (inside / "other").unlink()
        self.assert_served(5)
        lines = whole_lines(self.host.log_text())
        reports = [line for line in lines if re.search(r"\|[1-9]\d* lines lost: No space left on device$", line)]
        self.assertEqual(len(reports), 1, lines[-40:])
        self.assertTrue(any(f"probe-{self.number}" in line for line in lines))
        self.end()

    def test_a_limit_on_the_size_of_files_splits_the_log(self):
        self.start('ulimit -f 16 && exec "$@"')  # blocks of 512 bytes
        for _ in range(200):
            self.host.must("ReachClient", "127.0.0.1")  # writes a line on the host's own thread, which a signal would end
        self.assert_served(100)
        files = list((self.folder / "logs").iterdir())
        self.assertEqual(len(files), 4)
        for file in files:
            self.assertLessEqual(file.stat().st_size, 8 * 1024)
        self.end()

    def test_a_device_that_takes_nothing_harms_the_log_alone(self):
        (self.folder / "logs").mkdir()
        (self.folder / "logs" / "log.txt").symlink_to("/dev/full")
        self.start('exec "$@"')
        self.assert_served(20)
        self.host.must("Discover")
        wait_until(lambda: self.peer.receive()[0]["DiscoveryMessageType"] == "AllSendYourSignature", "request")
        self.end()

    def test_after_a_folder_that_cannot_be_written_a_host_may_choose_another(self):
        folder = self.folder / "read-only"
        folder.mkdir()
        self.run_host(f'exec unshare --mount sh -c \'mount -t tmpfs -o ro tmpfs {folder} && exec "$@"\' sh "$@"')
        for path in (folder / "log.txt", folder / "logs" / "log.txt"):
            self.assertEqual(self.host.call("Initialize", path, 3), IO)
        self.host.initialize()
        self.host.start()
        self.assert_served()
        whole_lines(self.host.log_text())
        self.end()


if __name__ == "__main__":
    main()
