"""What the tests of the packages share: the programs of an installation, and a consumer built with it."""

import os
import pathlib
import re
import subprocess

import blocks
import endtoend
from endtoend import Process, launcher, setting

CONSUMER = pathlib.Path(__file__).with_name("consumer")


def run(*command, **options):
    """The output of a command that must succeed."""
    arguments = [str(part) for part in command]
    result = subprocess.run(
        arguments, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options
    )
    if result.returncode != 0:
        raise AssertionError(f"{command}: {result.returncode}\n{result.stdout}")
    return result.stdout


def build_folder():
    return setting("bin").parent


def make_packages(folder):
    """Makes the build's packages; the files."""
    run("cpack", "--config", build_folder() / "CPackConfig.cmake", "-B", folder / "cpack")
    return sorted(path for path in (folder / "cpack").iterdir() if path.is_file())


def build_with_pkg_config(folder, program):
    """The consumer in C, by the pkg-config file in the folder."""
    run(
        "bash", "-c", 'exec "$@" $(pkg-config --cflags --libs DiscoveryServerExtC)', "bash",
        setting("compiler"), "-Wall", "-Wextra", "-Werror", CONSUMER / "consumer.c", "-o", program,
        env={"PKG_CONFIG_LIBDIR": folder, "PATH": "/usr/bin:/bin"},
    )  # fmt: skip


class TestCase(endtoend.TestCase):
    def version(self):
        cache = (build_folder() / "CMakeCache.txt").read_text(encoding="utf-8")
        return cache.split("CMAKE_PROJECT_VERSION:STATIC=", 1)[1].split("\n", 1)[0]

    def start_devices(self, bin_folder):
        """Simulated devices by the installed program, until the end of the test; the name of the first."""
        simulator = self.enterContext(
            Process(*launcher(), str(bin_folder / ("device-simulator" + setting("suffix"))), "--until-eof")
        )
        first = simulator.line_with("\t").split("\t")[0]
        simulator.line_with("ready")
        return first

    def assert_console_works(self, bin_folder):
        """The installed programs find the library and each other."""
        console = [*launcher(), bin_folder / ("discovery-console" + setting("suffix"))]
        self.assertEqual(run(*console, "--version").strip(), f"discovery-console {self.version()}")
        name = self.start_devices(bin_folder)
        found = run(*console, "--log", self.folder / "console.log", "--from", "127.0.0.1", "discover", "--expect", "1")
        self.assertIn(name, found)

    def assert_consumer_works(self, program, **environment):
        """It shows the devices that have been started."""
        prefix = ["env", *(f"{name}={value}" for name, value in environment.items())]
        with Process(*prefix, *launcher(), str(program), str(self.folder / "consumer.log")) as consumer:
            consumer.line_with('"HostName"')
            self.assertEqual(consumer.end(), 0)

    def assert_pages_hold(self, folder):
        """The pages link to what is there, run what can be run, and speak of nothing that only the source tree has."""
        pages = list(folder.rglob("*.md"))
        self.assertGreater(len(pages), 10)
        for page in pages:
            name = page.relative_to(folder)
            self.assertNotRegex(page.read_text(encoding="utf-8"), r"\./(run|test|package|bench|soak)\b|build/(linux|win)|/pack\b", name)
            document = blocks.Markdown(page)
            for file in re.findall(r"^[\w-]+/\S+", "".join(block.text for block in document.blocks), re.MULTILINE):
                self.assertTrue(not (folder / file).is_file() or os.access(folder / file, os.X_OK), f"{name}: {file}")
            for link in document.links():
                file, _, anchor = link.partition("#")
                target = page.parent / file if file else page
                if not re.match("[a-z]+:", link):
                    self.assertTrue(target.exists(), f"{name}: {link}")
                    self.assertTrue(not anchor or anchor in blocks.Markdown(target).anchors(), f"{name}: {link}")

    def build_with_cmake(self, *options):
        """The consumer in C++, by find_package."""
        folder = self.folder / "with-cmake"
        run("cmake", "-S", CONSUMER, "-B", folder, "-G", "Ninja", *options)
        run("cmake", "--build", folder)
        return folder / ("consumer" + setting("suffix"))
