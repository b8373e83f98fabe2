"""Hosts that end, each way many times: processes come and go while datagrams keep coming in."""

import concurrent.futures
import itertools
import json
import socket
import subprocess
import threading

from endtoend import SERVER_PORT, TIMEOUT, TestCase, command, library_path, main, message, setting


class HostTest(TestCase):
    def run_hosts(self, count, way):
        """Several at a time; each must end with status 0 and without a word."""

        def run(number):
            log = self.folder / f"log-{number}.txt"
            host = subprocess.run(
                command("life-host", library_path(), str(log), way),
                stdout=subprocess.PIPE,
                stderr=subprocess.STDOUT,
                timeout=3 * TIMEOUT,
                check=False,
            )
            result = host.returncode, host.stdout.decode(errors="replace")
            if result == (0, ""):
                log.unlink(missing_ok=True)
            return result

        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            results = list(pool.map(run, range(count)))
        self.assertEqual([result for result in results if result != (0, "")], [])


class FirstUseTest(HostTest):
    def test_threads_may_meet_in_the_first_calls_of_a_process(self):
        self.run_hosts(5 * setting("rounds") // 2, "first")


class FloodTest(HostTest):
    def setUp(self):
        super().setUp()
        is_over = threading.Event()

        def flood():
            hello = json.dumps(message("Hello")).encode()
            datagrams = itertools.cycle([hello] + 9 * [b"{"])  # what is malformed has a thread throw, also at the end
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as vandal:
                vandal.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
                while not is_over.wait(0.0002):
                    vandal.sendto(next(datagrams), ("127.255.255.255", SERVER_PORT))  # reaches all hosts that run

        thread = threading.Thread(target=flood)
        thread.start()
        self.addCleanup(thread.join)
        self.addCleanup(is_over.set)

    def test_a_host_may_call_exit_while_the_server_runs(self):
        self.run_hosts(setting("rounds"), "exit")

    def test_a_host_may_return_from_main_while_the_server_runs(self):
        self.run_hosts(setting("rounds"), "return")

    def test_a_host_may_unload_the_library_once_it_is_terminated(self):
        self.run_hosts(setting("rounds"), "unload")
        if not setting("suffix"):  # Windows unloads it under the server's threads
            self.run_hosts(setting("rounds"), "forget")


if __name__ == "__main__":
    main()
