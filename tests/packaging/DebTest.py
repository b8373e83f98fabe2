"""The Debian packages, installed into a copy of this machine that the test throws away. Runs in a mount namespace of its
own."""

import pathlib
import re
import shutil
import socket

from endtoend import TIMEOUT, Process, main, setting
from package import TestCase, build_with_pkg_config, run

LIBRARY = "libdiscoveryserver.extc1"
DEV = "libdiscoveryserver.extc-dev"
TOOLS = "discoveryserver.extc-tools"
AGENT = "discovery-agent"
PYTHON = "python3-discovery-server"
NAMES = (LIBRARY, DEV, TOOLS, AGENT, PYTHON)
NICE = "cap_sys_nice=ep"
NOBODY = 65534


class DebTest(TestCase):
    def setUp(self):
        super().setUp()
        made = run(setting("source") / "packaging/debian-packages", setting("bin").parent, self.folder / "packages")
        files = [pathlib.Path(line) for line in made.splitlines() if line.endswith(".deb")]
        self.packages = {file.name.split("_")[0]: file for file in files}

    def make_machine(self):
        """A root folder that shows this machine's files and takes changes for itself."""
        layers = self.folder / "layers"
        layers.mkdir()
        run("mount", "-t", "tmpfs", "-o", "mode=755", "none", layers)
        self.addCleanup(run, "umount", "--recursive", layers)
        root = layers / "root"
        for name in ("root", "upper", "work"):
            (layers / name).mkdir()
        run("mount", "-t", "overlay", "-o", f"lowerdir=/,upperdir={layers}/upper,workdir={layers}/work", "none", root)
        for name in ("proc", "dev"):
            run("mount", "--rbind", f"/{name}", root / name)
        run("mount", "-t", "tmpfs", "none", root / "tmp")
        (root / "tmp").chmod(0o1777)
        for file in self.packages.values():
            shutil.copy(file, root / "tmp")
        for settings in root.glob("etc/dpkg/dpkg.cfg.d/*"):
            settings.unlink()  # small machines leave documents out
        self.root = root

    def prefix(self, user):
        identity = ("setpriv", f"--reuid={user}", f"--regid={user}", "--clear-groups") if user else ()
        return ("chroot", str(self.root), *identity)

    def on_machine(self, *command, user=0):
        environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "HOME": "/tmp", "DEBIAN_FRONTEND": "noninteractive"}
        return run(*self.prefix(user), *command, env=environment)

    def files(self, *names):
        return [f"/tmp/{self.packages[name].name}" for name in names]

    def capabilities(self):
        return self.on_machine("getcap", "/usr/bin/discovery-console").partition(" ")[2].strip()

    def test_they_are_as_debian_wants_them_and_install_work_and_go(self):
        self.assertEqual(set(self.packages), {*NAMES, *(f"{name}-dbgsym" for name in (LIBRARY, TOOLS, AGENT))})
        run("lintian", "--allow-root", "--fail-on", "error,warning", *self.packages.values())
        for file in self.packages.values():
            self.assertIn(f"_{self.version()}_", file.name)

        self.make_machine()
        setcap = self.root / "usr/sbin/setcap"
        setcap.rename(setcap.with_suffix(".away"))
        order = (PYTHON, TOOLS, AGENT, DEV, LIBRARY)  # each before what it needs
        self.on_machine("apt-get", "-y", "--no-install-recommends", "install", *self.files(*order))
        self.assertEqual(self.capabilities(), "")  # refused, and nothing else has failed
        setcap.with_suffix(".away").rename(setcap)
        self.on_machine("dpkg-reconfigure", TOOLS)
        self.assertEqual(self.capabilities(), NICE)

        self.check_programs()
        self.check_places()
        self.check_documentation()
        self.check_operating_notes()
        self.check_what_libraries_get()
        self.check_choice()

        self.on_machine("dpkg", "--purge", *NAMES)
        left = run("find", self.root / "etc", self.root / "usr", "-iname", "*discover*server*", "-type", "f")
        self.assertEqual(left, "")

    def check_programs(self):
        name = self.start_devices(self.root / "usr/bin")
        console = ("discovery-console", "--from", "127.0.0.1", "--log", "/tmp/c.log", "discover", "--expect", "1")
        self.assertIn(name, self.on_machine(*console, user=NOBODY))
        self.on_machine("python3", "-c", "import discovery_server; discovery_server.Session('/tmp/p.log').close()")
        self.check_agent()
        program = self.folder / "consumer"
        library = next(self.root.glob("usr/lib/*/libDiscoveryServer.ExtC.so"))
        build_with_pkg_config(library.parent / "pkgconfig", program)
        self.assert_consumer_works(program, LD_LIBRARY_PATH=library.parent)

    def check_agent(self):
        """It is ready for the service manager with the settings that it brings, and without rights."""
        settings = ("--config", "/etc/discovery-agent/agent.toml")
        self.assertIn("right", self.on_machine("discovery-agent", "--check-config", *settings))
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as manager:
            manager.settimeout(TIMEOUT)
            manager.bind(str(self.root / "tmp/notify"))
            (self.root / "tmp/notify").chmod(0o666)
            service = ("env", "NOTIFY_SOCKET=/tmp/notify", "discovery-agent", *settings)
            with Process(*self.prefix(NOBODY), *service) as agent:
                self.assertEqual(manager.recv(99), b"READY=1")
                agent.process.terminate()
                self.assertEqual(agent.wait(), 0)

    def check_places(self):
        """Other programs find what is theirs."""
        query = ";SELECT DISTINCT log_format FROM all_logs"
        self.assertIn("discovery_log", self.on_machine("lnav", "-n", "-c", query, "/tmp/c.log"))
        self.assertIn("devicediscovery", self.on_machine("tshark", "-G", "protocols"))
        self.assertTrue((self.root / "lib/systemd/system/discovery-agent.service").exists())
        for page in ("discovery-console", "device-simulator", "discovery-agent", "discovery-fleet"):
            self.assertIn("/usr/share/man/", self.on_machine("man", "--where", page))

    def check_documentation(self):
        """Of the developers' package alone."""
        alone = self.folder / "dev"
        run("dpkg-deb", "--extract", self.packages[DEV], alone)
        self.assert_pages_hold(alone / "usr/share/doc/DiscoveryServer.ExtC")

    def check_operating_notes(self):
        """Their links hold where only the programs are installed."""
        for package, note in ((TOOLS, "operating.md"), (AGENT, "fleet.md")):
            folder = self.root / "usr/share/doc" / package
            self.assertTrue((folder / note).exists())
            for page in folder.rglob("*.md"):
                for link in re.findall(r"\]\(([^)#]+)", page.read_text(encoding="utf-8")):
                    self.assertTrue((page.parent / link).exists(), f"{page.name}: {link}")

    def check_choice(self):
        defaults = self.root / "etc/default" / TOOLS
        defaults.write_text("CONSOLE_PRIORITY=no\n")
        self.on_machine("dpkg", "--install", *self.files(LIBRARY, TOOLS))
        self.assertEqual((defaults.read_text(), self.capabilities()), ("CONSOLE_PRIORITY=no\n", ""))
        defaults.write_text("CONSOLE_PRIORITY=yes\n")
        self.on_machine("dpkg-reconfigure", TOOLS)
        self.assertEqual(self.capabilities(), NICE)

    def check_what_libraries_get(self):
        spy = self.root / "tmp/spy.so"
        run("gcc", "-shared", "-fPIC", pathlib.Path(__file__).with_name("spy.c"), "-o", spy)
        console = self.root / "usr/bin/discovery-console"
        installed = next(self.root.glob("usr/lib/*/libDiscoveryServer.ExtC.so.1"))
        path = str(installed).removeprefix(str(self.root))
        granted = f"CapPrm:\t{1 << 23:016x}\n"
        refused = f"CapPrm:\t{0:016x}\n"

        def told(program, *options):
            return self.on_machine(program, *options, "error", "73", user=NOBODY)

        self.assertEqual(told("discovery-console", "--library", "/tmp/spy.so"), refused)
        shutil.copy(spy, installed.resolve() if installed.is_symlink() else installed)
        self.assertEqual(told("discovery-console"), granted)
        self.assertEqual(told("discovery-console", "--library", path), granted)
        self.assertEqual(told("discovery-console", "--library", "/usr/bin/.." + path.removeprefix("/usr")), refused)

        copy = self.root / "usr/users-own"  # a link to the program in a folder of the user's finds the user's library
        (copy / "bin").mkdir(parents=True)
        (copy / "lib").mkdir()
        (copy / "bin/discovery-console").hardlink_to(console)
        shutil.copy(spy, copy / "lib" / installed.name)
        self.assertEqual(told("/usr/users-own/bin/discovery-console"), granted)
        run("chown", "-R", str(NOBODY), copy / "lib")
        self.assertEqual(told("/usr/users-own/bin/discovery-console"), refused)
        shutil.rmtree(copy)


if __name__ == "__main__":
    main()
