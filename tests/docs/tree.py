"""A folder that looks like the source tree after a build, in which the commands of the documentation run."""

import os
import pathlib
import signal
import subprocess
import threading

import endtoend
import expectation

STAND_IN = pathlib.Path(__file__).with_name("stand-in")
LONG_SCRIPTS = (
    "run", "test", "package", "soak", "bench", "fuzzers/run",
    "scripts/abi", "scripts/demo", "scripts/install-dependencies", "scripts/lint", "scripts/plant-faults",
)  # fmt: skip
HEADERS = ("extc/includes", "inventory/extc/includes", "bindings/cpp/includes")
PROGRAMS = ("cmake", "ctest", "gcc", "g++", "c++", "discovery-console", "systemctl")
PLACES = ("etc/mosquitto/certs", "etc/mosquitto/conf.d", "etc/discovery-agent")  # that packages make


class Tree:
    def __init__(self, folder, source, build, name):
        self.folder = folder.resolve()
        self.home = self.folder / ".home"
        self.home.mkdir()
        self._link(source, self.folder, [pathlib.PurePath(script) for script in LONG_SCRIPTS])
        (self.folder / "build").mkdir()
        (self.folder / "build" / name).symlink_to(build)
        for place in PLACES:
            (self.folder / place).mkdir(parents=True)
        stand_ins = self.folder / "stand-ins"
        stand_ins.mkdir()
        for program in PROGRAMS:
            (stand_ins / program).symlink_to(STAND_IN)
        self.environment = {
            **os.environ,
            "HOME": str(self.home),
            "PATH": os.pathsep.join((str(stand_ins), str(build / "bin"), os.environ["PATH"])),
            "DOCS_TREE": str(self.folder),
            "DOCS_SOURCE": str(source),
            "DOCS_BUILD": str(build),
            "TERM": "dumb",
            # As where the packages are installed.
            "CPATH": os.pathsep.join(str(source / folder) for folder in HEADERS),
            "LIBRARY_PATH": str(build / "lib"),
            "LD_LIBRARY_PATH": str(build / "lib"),
            "PYTHONPATH": str(source / "bindings/python"),
        }

    def within(self, text):
        """The same with the machine's settings in this folder."""
        return text.replace("/etc/", f"{self.folder}/etc/")

    def _link(self, source, target, scripts):
        """Links every entry; scripts that take long become stand-ins."""
        inner = {script.parts[0] for script in scripts if len(script.parts) > 1}
        own = {script.parts[0] for script in scripts if len(script.parts) == 1}
        for entry in source.iterdir():
            if entry.name in (".git", "build"):
                continue
            if entry.name in inner:
                (target / entry.name).mkdir()
                rest = [pathlib.PurePath(*script.parts[1:]) for script in scripts if script.parts[0] == entry.name]
                self._link(entry, target / entry.name, [script for script in rest if script.parts])
            else:
                (target / entry.name).symlink_to(STAND_IN if entry.name in own else entry)

    def run(self, *arguments, expected=None):
        """Runs a program in the tree; its output and its exit status. One that waits for Enter gets it once it has
        shown what is expected up to the first empty line, which is what Enter leaves on a terminal."""
        process = subprocess.Popen(
            arguments,
            cwd=self.folder,
            env=self.environment,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            start_new_session=True,
        )
        timer = threading.Timer(2 * endtoend.TIMEOUT, end_group, [process])
        timer.start()
        output = b""
        try:
            wanted = expectation.pattern(expectation.before_enter(expected)) if expected else None
            while chunk := process.stdout.read1():
                output += chunk
                if not process.stdin.closed and (wanted is None or wanted.fullmatch(text_of(output))):
                    press_enter(process.stdin)
            if not process.stdin.closed:
                process.stdin.close()
            return text_of(output), process.wait()
        finally:
            timer.cancel()
            end_group(process)
            process.wait()
            process.stdout.close()

    def run_script(self, text, expected=None):
        # Who waits for "ready" in it must not find the word of earlier devices, before the shell empties the file.
        (self.folder / "devices.txt").unlink(missing_ok=True)
        return self.run("bash", "-e", "-c", text, expected=expected)

    def run_session(self, commands):
        """Runs commands in one shell, one after the other; the output of each."""
        mark = "== end of output =="
        script = "set_status() { return $1; }\nlast=0\n"
        for command in commands:
            script += f"set_status $last\n{command}\nlast=$?\necho '{mark}'\n"
        output, _ = self.run_script("set +e\n" + script)
        return output.split(mark + "\n")[:-1]


def end_group(process):
    """Ends a program and what it has started."""
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass


def press_enter(stream):
    try:
        stream.write(b"\n")
        stream.close()
    except BrokenPipeError:
        pass  # the program did not wait for it


def text_of(output):
    return expectation.normalized(output.decode(errors="replace"))
