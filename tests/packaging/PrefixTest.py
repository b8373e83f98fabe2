"""cmake --install into an empty prefix, and host programs built with what is there."""

import shutil
import subprocess

from endtoend import main, setting
from package import CONSUMER, TestCase, build_folder, build_with_pkg_config, run


class PrefixTest(TestCase):
    def setUp(self):
        super().setUp()
        self.prefix = self.folder / "prefix"
        run("cmake", "--install", build_folder(), "--prefix", self.prefix)
        (self.library,) = self.prefix.glob("lib/**/libDiscoveryServer.ExtC.so")

    def test_programs_find_the_library_beside_them(self):
        self.assert_console_works(self.prefix / "bin")

    def test_a_library_that_cannot_be_used_is_named_with_what_to_do(self):
        (self.folder / "empty.c").write_text("int nothing;\n")
        run("gcc", "-shared", "-o", self.folder / "empty.so", self.folder / "empty.c")
        for path, fault in (
            (self.prefix / "missing.so", "cannot load the library"),
            (self.prefix / "include/DiscoveryServer.ExtC.h", "cannot load the library"),
            (self.folder / "empty.so", "lacks the function Initialize"),
        ):
            with self.subTest(path):
                result = subprocess.run(
                    [self.prefix / "bin/discovery-console", "--library", path, "discover"],
                    capture_output=True,
                    text=True,
                    check=False,
                )
                self.assertEqual((result.returncode, result.stdout), (1, ""))
                for text in (fault, str(path), "--library"):
                    self.assertIn(text, result.stderr)

    def test_hosts_build_with_it_in_c_and_cpp(self):
        self.start_devices(self.prefix / "bin")
        with self.subTest("C, by the compiler's options alone"):
            program = self.folder / "plain"
            run(
                setting("compiler"), CONSUMER / "consumer.c", "-I", self.prefix / "include", "-L", self.library.parent,
                "-lDiscoveryServer.ExtC", "-o", program,
            )  # fmt: skip
            self.assert_consumer_works(program, LD_LIBRARY_PATH=self.library.parent)
        with self.subTest("C, by pkg-config"):
            program = self.folder / "with-pkg-config"
            build_with_pkg_config(self.library.parent / "pkgconfig", program)
            self.assert_consumer_works(program, LD_LIBRARY_PATH=self.library.parent)
        with self.subTest("C++, by CMake"):
            built = self.build_with_cmake(f"-DCMAKE_PREFIX_PATH={self.prefix}")
            self.assert_consumer_works(built)
            self.assertRegex(run(built.with_name("session")), rf"{self.version()} \w+")
        with self.subTest("the sample's preset"):
            sample = self.folder / "sample"
            shutil.copytree(self.prefix / "share/doc/DiscoveryServer.ExtC/samples/c", sample)
            run("cmake", "--preset", "linux", f"-DCMAKE_PREFIX_PATH={self.prefix}", cwd=sample)
            run("cmake", "--build", "--preset", "linux", cwd=sample)
            self.assert_consumer_works(sample / "build/linux/discover")

    def test_a_version_that_it_is_not_is_refused(self):
        for wanted in ("0.9", "1.99", "2"):
            with self.subTest(wanted), self.assertRaisesRegex(AssertionError, rf"version: {self.version()}"):
                self.build_with_cmake(f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DWANTED_VERSION={wanted}")


if __name__ == "__main__":
    main()
