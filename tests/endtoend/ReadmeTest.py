"""The first program of README.md: compiles as it says there, and works."""

import re
import shutil
import subprocess

from endtoend import Process, Simulator, TestCase, launcher, library_path, main, setting


class ReadmeTest(TestCase):
    def test_the_first_program_compiles_and_shows_devices(self):
        source = setting("source")
        readme = (source / "README.md").read_text(encoding="utf-8")
        (self.folder / "example.c").write_text(re.search(r"```c\n(.*?)```", readme, re.DOTALL)[1])
        (self.folder / "extc").symlink_to(source / "extc")
        (self.folder / "build").mkdir()
        (self.folder / "build" / "linux").symlink_to(setting("bin").resolve().parent)
        compile_command = re.search(r"```sh\n(gcc .*)\n", readme)[1].split()
        program = self.folder / "example"
        if setting("suffix"):
            compile_command = self.windows_command()
            program = self.folder / "example.exe"
        subprocess.run([*compile_command, "-Wall", "-Wextra", "-Werror"], cwd=self.folder, check=True)

        with Simulator("--count", "1") as simulator:
            with Process(*launcher(), str(program), folder=self.folder) as example:
                example.line_with(f'"HostName":"{simulator.devices[0].name}"')
                example.write("")
                self.assertEqual(example.end(), 0)

    def windows_command(self):
        shutil.copy(library_path(), self.folder)
        return [
            setting("compiler"), "example.c", "-Iextc/includes", setting("import_library"), "-o", "example.exe",
        ]  # fmt: skip


if __name__ == "__main__":
    main()
