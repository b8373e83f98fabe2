"""The package for Windows, unpacked into an empty folder."""

import shutil
import zipfile

from endtoend import main, setting
from package import CONSUMER, TestCase, make_packages, run


class ZipTest(TestCase):
    def test_what_is_in_it_runs_and_builds_hosts(self):
        (package,) = make_packages(self.folder)
        self.assertEqual(package.name, f"DiscoveryServer.ExtC-{self.version()}-{setting('preset')}.zip")
        with zipfile.ZipFile(package) as archive:
            archive.extractall(self.folder)
        root = self.folder / package.stem
        for file in (
            "include/DiscoveryServer.ExtC.h", "include/DiscoveryLibrary.h", "include/DiscoverySession.h",
            "include/DiscoveryInventory.h", "include/DiscoveryInventorySession.h", "include/DiscoveryRecords.h", "lib/libDiscoveryInventory.dll.a", "lib/libDiscoveryServer.ExtC.dll.a", "README.md", "copyright", "docs/getting-started.md", "samples/example.c", "bindings/python/sample.py",
            "tools/wireshark/discovery.lua", "bin/open-firewall.cmd",
        ):  # fmt: skip
            self.assertTrue((root / file).is_file(), file)

        library = root / "bin/DiscoveryServer.ExtC.dll"
        for file in (library, *(root / "bin" / name for name in ("DiscoveryInventory.dll", "discovery-console.exe", "device-simulator.exe"))):
            resource = file.read_bytes().decode("utf-16-le", errors="ignore")
            self.assertRegex(resource, rf"FileVersion\0+{self.version()}\0", file.name)

        self.assert_console_works(root / "bin")
        program = self.folder / "consumer.exe"
        shutil.copy(library, self.folder)
        run(
            setting("compiler"), CONSUMER / "consumer.c", "-I", root / "include", "-L", root / "lib",
            "-lDiscoveryServer.ExtC", "-o", program,
        )  # fmt: skip
        self.assert_consumer_works(program)

        built = self.build_with_cmake(
            f"-DCMAKE_TOOLCHAIN_FILE={setting('toolchain')}",
            f"-DDiscoveryServerExtC_DIR={root}/lib/cmake/DiscoveryServerExtC",
        )
        shutil.copy(library, built.parent)
        self.assert_consumer_works(built)


if __name__ == "__main__":
    main()
