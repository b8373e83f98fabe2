"""The package for Windows, unpacked into an empty folder."""

import re
import shutil
import zipfile

from endtoend import Process, launcher, main, setting
from package import CONSUMER, TestCase, make_packages, run


class ZipTest(TestCase):
    def test_what_is_in_it_runs_and_builds_hosts(self):
        (package,) = make_packages(self.folder)
        self.assertEqual(package.name, f"DiscoveryServer.ExtC-{self.version()}-{setting('preset')}.zip")
        with zipfile.ZipFile(package) as archive:
            archive.extractall(self.folder)
        root = self.folder / package.stem
        for file in (
            "include/DiscoveryLibrary.h", "include/DiscoverySession.h", "include/DiscoveryInventorySession.h",
            "include/DiscoveryRecords.h", "copyright", "bindings/python/sample.py",
            "tools/wireshark/discovery.lua", "bin/open-firewall.cmd",
        ):  # fmt: skip
            self.assertTrue((root / file).is_file(), file)

        library = root / "bin/DiscoveryServer.ExtC.dll"
        for file in (library, *(root / "bin" / name for name in ("DiscoveryInventory.dll", "discovery-console.exe", "device-simulator.exe"))):
            resource = file.read_bytes().decode("utf-16-le", errors="ignore")
            self.assertRegex(resource, rf"FileVersion\0+{self.version()}\0", file.name)

        self.assert_pages_hold(root)
        self.assert_console_works(root / "bin")
        for name in ("DiscoveryServer.ExtC.dll", "DiscoveryInventory.dll"):
            shutil.copy(root / "bin" / name, self.folder)
        self.try_readme(root)
        self.try_microsofts_linker(root)
        self.try_symbols(root)

        built = self.build_with_cmake(
            f"-DCMAKE_TOOLCHAIN_FILE={setting('toolchain')}",
            f"-DDiscoveryServerExtC_DIR={root}/lib/cmake/DiscoveryServerExtC",
        )
        shutil.copy(library, built.parent)
        self.assert_consumer_works(built)

    def try_readme(self, root):
        """What it says of MinGW and C#; and what pip is given."""
        text = (root / "README.md").read_text(encoding="utf-8").replace("\\", "/")
        _, *options = re.search(r"^gcc .*", text, re.MULTILINE)[0].split()
        run(setting("compiler"), *options, cwd=root)
        sample = self.folder / "discover.exe"
        shutil.move(root / "discover.exe", sample)
        with Process(*launcher(), sample) as program:
            program.line_with('"HostName"')
            self.assertEqual(program.end(), 0)
        _, *options = re.search(r"^csc .*", text, re.MULTILINE)[0].split()
        run("mcs", *options, cwd=root)
        (wheel,) = (root / "python").glob("*.whl")
        with zipfile.ZipFile(wheel) as archive:
            self.assertIn("discovery_server/DiscoveryInventory.dll", archive.namelist())

    def try_microsofts_linker(self, root):
        """A program of 32 bits has a table of its exception handlers, and all that is linked must have one."""
        machine, processor = ("x64", "x86_64") if setting("preset") == "win64" else ("x86", "i686")
        run("clang", f"--target={processor}-pc-windows-msvc", "-O1", "-Wall", "-Wextra", "-Werror", "-I", root / "include",
            "-c", CONSUMER / "bare.c", "-o", self.folder / "bare.obj")  # fmt: skip
        run("lld-link", *(["/safeseh"] if machine == "x86" else []), f"/machine:{machine}", "/entry:Start",
            "/subsystem:console", "/nodefaultlib", f"/out:{self.folder}/bare.exe", self.folder / "bare.obj",
            *sorted((root / "lib").glob("*.lib")))  # fmt: skip
        run(*launcher(), self.folder / "bare.exe", cwd=self.folder)

    def try_symbols(self, root):
        """The offset of a function leads to its line, and the stripped library names the file that says so."""
        library = root / "bin/DiscoveryServer.ExtC.dll"
        symbols = root / "symbols/DiscoveryServer.ExtC.dll.debug"
        self.assertIn(symbols.name.encode(), library.read_bytes())
        self.assertLess(library.stat().st_size, symbols.stat().st_size / 2)
        exports = run("llvm-readobj", "--coff-exports", library)
        offset = re.search(r"Name: _?Discover(?:@0)?\n\s*RVA: (0x\w+)", exports)[1]
        found = run("llvm-symbolizer", "--relative-address", f"--obj={symbols}", offset)
        self.assertRegex(found, r"Discover\S*\n\S*Sources/DiscoveryServerExtC\.cpp:")


if __name__ == "__main__":
    main()
