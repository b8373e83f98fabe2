"""The Debian packages, unpacked into an empty root."""

import re

from endtoend import main, setting
from package import TestCase, build_with_pkg_config, make_packages, run


class DebTest(TestCase):
    def setUp(self):
        super().setUp()
        self.packages = {path.name.split("_")[0]: path for path in make_packages(self.folder)}
        self.root = self.folder / "root"

    def unpack(self, *names):
        for name in names:
            run("dpkg", "-x", self.packages[name], self.root)

    def field(self, package, name):
        return run("dpkg-deb", "--field", self.packages[package], name).strip()

    def test_what_is_in_them_runs_and_builds_hosts(self):
        self.assertEqual(
            sorted(self.packages),
            ["discoveryserver.extc-tools", "libdiscoveryserver.extc-dev", "libdiscoveryserver.extc1"],
        )
        for name, path in self.packages.items():
            with self.subTest(name):
                self.check_control(name)
                self.assertEqual(path.name, f"{name}_{self.version()}_{self.field(name, 'Architecture')}.deb")

        self.unpack("libdiscoveryserver.extc1", "discoveryserver.extc-tools")
        self.assert_console_works(self.root / "usr/bin")
        (runtime,) = self.root.glob("usr/lib/*/libDiscoveryServer.ExtC.so.1")
        run(
            "python3", "-c", "import discovery_server, sys; discovery_server.Session(sys.argv[1]).close()",
            self.folder / "python.log",
            env={"PYTHONPATH": setting("source") / "bindings/python", "LD_LIBRARY_PATH": runtime.parent},
        )  # fmt: skip

        for name in ("etc/ufw/applications.d/discoveryserver", "usr/lib/firewalld/services/discoveryserver.xml"):
            self.assertIn("12001", (self.root / name).read_text())

        self.unpack("libdiscoveryserver.extc-dev")
        (library,) = self.root.glob("usr/lib/*/libDiscoveryServer.ExtC.so")
        program = self.folder / "consumer"
        build_with_pkg_config(library.parent / "pkgconfig", program)
        self.assert_consumer_works(program, LD_LIBRARY_PATH=library.parent)

    def check_control(self, name):
        """Complete, and its dependencies say what its programs need."""
        self.assertEqual(run("dpkg-deb", "--info", self.packages[name]).count("\n Description: "), 1)
        depends = self.field(name, "Depends")
        if name != "libdiscoveryserver.extc1":
            self.assertIn(f"libdiscoveryserver.extc1 (= {self.version()})", depends)
        if name != "libdiscoveryserver.extc-dev":
            self.assertRegex(depends, r"libc6 \(>= .*libstdc\+\+6 \(>= ")
        files = run("dpkg-deb", "--contents", self.packages[name])
        self.assertRegex(files, rf"/usr/share/doc/{re.escape(name)}/copyright\n")
        self.assertNotRegex(files, r"(?m)^[^l](.{4}|.{7})w", "others may write")
        self.assertNotRegex(files, r" \./(?!usr/|etc/(ufw/(applications\.d/)?)?)\w", "out of place")


if __name__ == "__main__":
    main()
