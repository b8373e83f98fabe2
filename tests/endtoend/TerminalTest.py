"""discovery-console on a terminal: its live table, its progress, its colours. tmux plays the terminal."""

import os
import pathlib
import re
import shlex
import subprocess
import unicodedata

from endtoend import Peer, Simulator, TestCase, command, main, message, wait_until


def columns(text):
    """How many columns of a terminal the text takes."""
    return sum(
        0 if unicodedata.combining(each) else 2 if unicodedata.east_asian_width(each) in "WF" else 1 for each in text
    )


class Terminal:
    """A terminal in which one program runs."""

    def __init__(self, folder, *program, width=110, height=20, environment=()):
        self.socket = pathlib.Path(folder) / "tmux"
        settings = pathlib.Path(folder) / "tmux.conf"
        settings.write_text("set -g status off\n")
        self._tmux(
            "-u", "-f", str(settings), "new-session", "-d", "-x", str(width), "-y", str(height), "--",
            "env", "-u", "NO_COLOR", *environment,
            "bash", "-c", '"$@"; echo "status $?"; exec sleep infinity', "bash", *program,
        )  # fmt: skip

    def _tmux(self, *arguments):
        result = subprocess.run(
            ["tmux", "-S", str(self.socket), *arguments],
            stdout=subprocess.PIPE,
            check=True,
            env={**os.environ, "LC_ALL": "C.UTF-8"},
        )
        return result.stdout.decode()

    def lines(self, *options):
        return self._tmux("capture-pane", "-p", *options).rstrip("\n").split("\n")

    def wait_for(self, part):
        """Waits until a line shows the text, and returns that line."""
        wait_until(lambda: any(part in line for line in self.lines()), f"{part!r} in {self.lines()}")
        return next(line for line in self.lines() if part in line)

    def wait_without(self, part):
        wait_until(lambda: all(part not in line for line in self.lines()), f"no {part!r} in {self.lines()}")

    def property(self, name):
        return self._tmux("display-message", "-p", f"#{{{name}}}").strip()

    def has_other_screen(self):
        return self.property("alternate_on") == "1"

    def press(self, key):
        self._tmux("send-keys", key)

    def type(self, text):
        self._tmux("send-keys", "-l", text)
        self.press("Enter")

    def resize(self, width, height):
        self._tmux("resize-window", "-x", str(width), "-y", str(height))

    def status(self):
        """The exit status, once the program has ended."""
        return int(self.wait_for("status ").split()[1])

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._tmux("kill-server")


class TerminalTestCase(TestCase):
    def terminal(self, *arguments, **options):
        return Terminal(self.folder, *command("discovery-console", *self.console_options(), *arguments), **options)


class LiveTableTest(TerminalTestCase):
    def test_devices_appear_change_and_leave(self):
        with Peer() as peer, self.terminal("watch", "--sort", "name") as terminal:
            terminal.wait_for("No device has answered yet")
            self.assertTrue(terminal.has_other_screen())

            first, second = "02:00:00:00:00:01", "02:00:00:00:00:02"
            peer.send(message("Hello", "press-10", first))
            peer.send(message("SignatureBroadcast", "press-9", second))
            terminal.wait_for("press-9 (127.0.0.1) appeared")
            self.assertRegex(terminal.wait_for(first), r"^present +press-10 .* 127\.0\.0\.1 .* Hello +\d+ s$")
            self.assertEqual([line.split()[1] for line in terminal.lines()[2:5]], ["HOST", "press-9", "press-10"])

            peer.send(message("SignatureBroadcast", "new-name", first))
            terminal.wait_for("new-name (127.0.0.1) HostName: press-10 -> new-name")
            self.assertRegex(terminal.wait_for(first), r"^present +new-name .* Signature ")

            peer.send(message("Bye", "press-9", second))
            terminal.wait_for("press-9 (127.0.0.1) left")
            self.assertRegex(terminal.lines()[0], r"^\d\d:\d\d:\d\d  2 devices, 1 left  ")
            self.assertRegex(terminal.wait_for(second), r"^left .* Bye ")
            peer.send(message("Hello", "press-9", second))
            terminal.wait_for("press-9 (127.0.0.1) came back")

            peer.send(message("Hello", "press-9", "02:00:00:00:00:03", SerialNumber="2"))
            terminal.wait_for("2 devices have the name press-9")

            terminal.press("q")
            self.assertEqual(terminal.status(), 0)
            self.assertFalse(terminal.has_other_screen())
            self.assertEqual(terminal.property("cursor_flag"), "1")
            self.assertRegex(terminal.wait_for(first), r"^present +new-name .* Signature ")  # the last state stays
            terminal.wait_without("q ends")

    def test_silent_devices_are_asked_and_gone_in_the_end(self):
        with Peer() as peer, self.terminal("watch", "--every", "1") as terminal:
            terminal.wait_for("No device has answered yet")
            peer.send(message("Hello", "press-9"))
            terminal.wait_for("press-9 (127.0.0.1) is gone")
            self.assertRegex(terminal.wait_for("02:00:00:00:00:01"), r"^gone ")
            peer.send(message("SignatureBroadcast", "press-9"))
            terminal.wait_for("press-9 (127.0.0.1) came back")

    def test_goes_on_while_a_slow_system_is_asked_why_nobody_answers(self):
        begun, ended = self.folder / "begun", self.folder / "ended"
        firewall = self.folder / "firewall-cmd"
        firewall.write_text(f"#!/bin/sh\ntrap 'touch {ended}' TERM\ntouch {begun}\nsleep infinity &\nwait\nkill $!\n")
        firewall.chmod(0o755)
        path = f"PATH={self.folder}:{os.environ['PATH']}"
        with Peer() as peer, self.terminal("watch", environment=[path]) as terminal:
            wait_until(begun.exists, "the question why")
            peer.send(message("Hello", "press-9"))
            terminal.wait_for("press-9 (127.0.0.1) appeared")
            self.assertFalse(ended.exists())
            terminal.wait_for("no device has answered. ")

    def test_scrolls(self):
        with Simulator("--count", "30", "--no-hello"), self.terminal("watch", "--sort", "ip") as terminal:
            terminal.wait_for("... and ")
            terminal.press("End")
            terminal.wait_for("127.0.0.39")
            terminal.wait_for(" above")
            terminal.wait_without(" more")
            terminal.press("Up")
            terminal.wait_for("above and 1 more")
            terminal.press("Home")
            terminal.wait_for("127.0.0.10 ")
            terminal.press("PageDown")
            terminal.wait_without("127.0.0.10 ")

    def test_asks_again_and_again(self):
        with Simulator("--count", "1", "--no-hello") as simulator, self.terminal("watch", "--every", "1") as terminal:
            self.assertRegex(terminal.wait_for(simulator.devices[0].mac), r"^present .* Signature +\d s$")
            self.console("rename", "new-name", "--ip", simulator.devices[0].ip)
            terminal.wait_for("new-name")

    def test_fits_the_terminal_whatever_its_size(self):
        with Simulator("--count", "30", "--no-hello"), self.terminal("watch", "--every", "1") as terminal:
            terminal.wait_for("... and ")
            for width, height in ((60, 10), (200, 50), (20, 6), (110, 12)):
                terminal.resize(width, height)
                wait_until(lambda: self.fits(terminal.lines(), width, height), f"a table of {width} by {height}")
                if height < 30:
                    terminal.wait_for("... and ")
                else:
                    terminal.wait_without("... and ")

    @staticmethod
    def fits(lines, width, height):
        """Whether each line is whole, and the titles and the last news are there."""
        return (
            all(columns(line) < width for line in lines)
            and lines[2].startswith("STATE")
            and len(lines) <= height
            and re.match(r"\d\d:\d\d:\d\d  ", lines[-1])
        )

    def test_columns_hold_whatever_the_names_are(self):
        names = ["plain", "日本語のプレス", "e\u0301tuve", "\u0301mark first", "한국어", "😀-1", "line\nbreak\x1b[2J"]
        with Peer() as peer, self.terminal("watch", "--listen") as terminal:
            terminal.wait_for("No message yet")
            for number, name in enumerate(names):
                peer.send(message("Hello", name, f"02:00:00:00:00:0{number}"))
            terminal.wait_for(f"02:00:00:00:00:0{len(names) - 1}")
            starts = {
                columns(line[: line.index(sign)]) for line in terminal.lines() for sign in ("MAC", "02:00:") if sign in line
            }
            self.assertEqual(len(starts), 1, terminal.lines())

    def test_leaves_the_screen_while_it_is_suspended(self):
        with Terminal(self.folder, "env", "PS1=prompt ", "bash", "--norc") as terminal:
            terminal.wait_for("prompt")
            terminal.type(shlex.join(command("discovery-console", *self.console_options(), "watch", "--listen")))
            terminal.wait_for("No message yet")
            terminal.press("C-z")
            terminal.wait_for("Stopped")
            self.assertFalse(terminal.has_other_screen())
            self.assertEqual(terminal.property("cursor_flag"), "1")
            terminal.type("fg")
            terminal.wait_for("No message yet")
            self.assertTrue(terminal.has_other_screen())
            terminal.press("q")
            wait_until(lambda: not terminal.has_other_screen(), "the user's own screen")


class ProgressTest(TerminalTestCase):
    def test_discover_shows_how_far_it_is_and_what_it_has_found(self):
        with Simulator("--count", "3"), self.terminal("discover", "--once") as terminal:
            self.assertRegex(terminal.wait_for("3 devices"), r"^Waiting for answers: [01]\.\d of 2 s, round 1, 3 devices$")
            terminal.wait_for("3 devices found")
            terminal.wait_without("Waiting")
            self.assertEqual(terminal.status(), 0)
            self.assertTrue(terminal.lines()[0].startswith("HOST NAME"), terminal.lines())

    def test_tables_fit_the_terminal(self):
        with Simulator("--count", "3"), self.terminal("discover", "--expect", "3", width=70) as terminal:
            self.assertEqual(terminal.status(), 0)
            self.assertRegex(terminal.lines()[1], r"^\S+ .* Signature$")


class InputTest(TerminalTestCase):
    def test_an_interruption_ends_the_console_while_it_waits_for_a_file_from_the_terminal(self):
        def is_reading():
            shell = terminal.property("pane_pid")
            child = pathlib.Path(f"/proc/{shell}/task/{shell}/children").read_text().strip()
            call = pathlib.Path(f"/proc/{child}/syscall").read_text().split() if child else []
            return call[:2] == ["0", "0x0"]  # read, from standard input

        with self.terminal("configure", "-") as terminal:
            wait_until(is_reading, "the console to read")
            terminal.press("C-c")
            self.assertEqual(terminal.status(), 130)


class ColourTest(TerminalTestCase):
    def coloured(self, *environment):
        with Simulator("--count", "1"):
            with self.terminal("discover", "--expect", "1", environment=environment) as terminal:
                self.assertEqual(terminal.status(), 0)
                return any("\x1b[1m" in line for line in terminal.lines("-e"))

    def test_colours_are_the_users_choice(self):
        self.assertTrue(self.coloured())
        self.assertTrue(self.coloured("NO_COLOR="))
        self.assertFalse(self.coloured("NO_COLOR=1"))
        self.assertFalse(self.coloured("TERM=dumb"))


if __name__ == "__main__":
    main()
