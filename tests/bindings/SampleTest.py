"""The samples: each stands in its README as it is in its file, and works with the commands that the README gives."""

import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "endtoend"))

from endtoend import TIMEOUT, TestCase, main, setting  # noqa: E402


class SampleTest(TestCase):
    def test_the_c_sample(self):
        self.check("samples/c", "c", "discover.c", '"HostName":"{name}"')

    def test_the_python_sample(self):
        self.check("bindings/python", "python", "sample.py", "(?m)^signature: {name}, a \\w+ at {address}$")

    def test_the_cpp_sample(self):
        self.check("bindings/cpp", "cpp", "sample.cpp", '"HostName":"{name}"')

    def test_the_csharp_sample(self):
        self.check("bindings/csharp", "csharp", "Sample.cs", "(?m)^signature: {name}, a \\w+ at {address}$")

    def check(self, folder, language, file, shown):
        source = setting("source")
        readme = (source / folder / "README.md").read_text(encoding="utf-8")
        sample = (source / folder / file).read_text(encoding="utf-8")
        self.assertEqual(re.search(rf"```{language}\n(.*?)```", readme, re.DOTALL)[1], sample)

        # The commands run as they stand, in a tree that looks like the source tree after ./run.
        for name in ("bindings", "extc", "samples"):
            (self.folder / name).symlink_to(source / name)
        (self.folder / "build").mkdir()
        (self.folder / "build" / "linux").symlink_to(setting("bin").resolve().parent)
        commands = re.search(r"```sh\n(.*?)```", readme, re.DOTALL)[1]
        result = subprocess.run(
            ["bash", "-e", "-c", commands], cwd=self.folder, capture_output=True, text=True, timeout=3 * TIMEOUT
        )
        devices = [line.split("\t") for line in (self.folder / "devices.txt").read_text().splitlines() if "\t" in line]
        self.assertEqual(len(devices), 3)
        for name, _, address in devices:
            self.assertRegex(result.stdout, shown.format(name=name, address=address), result.stderr)
        self.assertEqual(result.returncode, 0, result.stderr)


if __name__ == "__main__":
    main()
