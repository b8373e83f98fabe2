"""Everything that the documentation shows is tried as it stands there: commands, programs, documents and lines of the
log. A block of code for which there is no rule is a failure."""

import contextlib
import functools
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import unittest
from fnmatch import fnmatch

import yaml

import blocks
import endtoend
import expectation
from datagrams import DatagramRules
from endtoend import Simulator, TestCase, launcher, library_path, setting
from logs import write_eventful_log
from tree import Tree

PROGRAM_KINDS = {"c": ".c", "cpp": ".cpp", "python": ".py", "csharp": ".cs"}


def is_windows():
    return bool(setting("suffix"))


def documents(source):
    """Every Markdown file and manual page of the tree."""
    for folder, inner, files in os.walk(source):
        inner[:] = sorted(name for name in inner if name != "build" and not name.startswith("."))
        for file in sorted(files):
            if re.search(r"\.(md|[1-9])$", file):
                yield pathlib.Path(folder, file)


@functools.cache
def help_texts():
    """What the programs and scripts say of their options."""
    return "".join([
        help_text([str(setting("bin") / "discovery-console")]),
        output_of([str(setting("bin") / "device-simulator")]),
        help_text([str(setting("bin") / "discovery-fleet")]),
        output_of([str(setting("bin") / "discovery-agent")]),
        output_of([str(setting("source") / "test")]),
    ])  # fmt: skip


def help_text(command):
    """Of a command and those below it."""
    text = output_of(command)
    below = re.findall(r"^  ([\w-]+)", text.partition("Subcommands:\n")[2].partition("\n\n")[0], re.MULTILINE)
    return text + "".join(help_text([*command, each]) for each in below)


def output_of(command):
    return subprocess.run([*command, "--help"], capture_output=True, text=True, check=True).stdout


class DocumentTest(TestCase):
    """One test for each document; see load_tests."""

    def __init__(self, path):
        super().__init__("try_blocks")
        self.path = path

    def id(self):
        return str(self.path.relative_to(setting("source")))

    def __str__(self):
        return self.id()

    def try_blocks(self):
        source = setting("source")
        self.tree = Tree(self.folder, source, setting("bin").resolve().parent, setting("preset"))
        is_manual = self.path.suffix != ".md"
        document = blocks.ManualPage(self.path) if is_manual else blocks.Markdown(self.path)
        remaining = list(document.blocks)
        while remaining:
            block = remaining.pop(0)
            with self.subTest(str(block)):
                rule = getattr(self, f"rule_{block.kind}", None)
                if rule is None:
                    self.fail(f"no rule for this block:\n{block.text}")
                if not is_windows() or block.kind in ("c", "sh", "text"):
                    rule(block, remaining)
        if not is_manual and not is_windows():
            self.check_text(document)

    # Programs

    def rule_c(self, block, remaining):
        self.try_program(block, remaining)

    def rule_cpp(self, block, remaining):
        self.try_program(block, remaining)

    def rule_python(self, block, remaining):
        self.try_program(block, remaining)

    def rule_csharp(self, block, remaining):
        self.try_program(block, remaining)

    def try_program(self, block, remaining):
        """The next block says how to start it; without one it is a C program that is built as the first one is."""
        suffix = PROGRAM_KINDS[block.kind]
        commands = remaining.pop(0) if remaining and remaining[0].kind == "sh" else None
        expected = self.take_output(remaining)
        named = re.search(rf"[\w./-]+\{suffix}\b", commands.text) if commands else None
        if commands and not named:
            self.fail(f"the commands after it do not name a file {suffix}")
        file = named[0] if named else "sample" + suffix
        self.save(block.text, self.tree.folder / file)
        if is_windows():
            self.run_with_devices(self.build_for_windows(file), expected)
        elif commands:
            self.run_commands(commands.text, expected)
        else:
            self.assertEqual(block.kind, "c", "no command says how to start this")
            self.run_with_devices(self.build(file), expected)

    def save(self, text, path):
        """A program that the source tree has as well is the same there."""
        if path.exists() and path.resolve().is_relative_to(setting("source")):
            self.assertEqual(path.read_text(encoding="utf-8"), text, path.name)
        else:
            path.write_text(text, encoding="utf-8")

    def build(self, file):
        program = f"./{pathlib.Path(file).stem}"
        library = "-Lbuild/linux/lib -lDiscoveryServer.ExtC -Wl,-rpath,build/linux/lib"
        self.run_commands(f"gcc {file} -pthread -Iextc/includes {library} -o {program}", None)
        return [program]

    def build_for_windows(self, file):
        program = pathlib.Path(file).with_suffix(".exe").name
        shutil.copy(library_path(), self.tree.folder)
        self.run_commands(
            shlex.join([
                setting("compiler"), file, "-Wall", "-Wextra", "-Werror", "-Iextc/includes",
                setting("import_library"), "-lole32", "-pthread", "-static", "-o", program,
            ]),
            None,
        )  # fmt: skip
        return [*launcher(), str(self.tree.folder / program)]

    def run_with_devices(self, command, expected):
        with Simulator():
            self.compare_run(self.tree.run(*command, expected=expected), expected)

    def take_output(self, remaining):
        return remaining.pop(0).text if remaining and remaining[0].kind == "text" else None

    # Commands

    def rule_sh(self, block, remaining):
        expected = self.take_output(remaining)
        if not is_windows():
            self.run_commands(self.tree.within(block.text), expected)

    def run_commands(self, text, expected):
        if ".whl" in text:
            pack = setting("source") / "bindings/python/pack"
            subprocess.run([pack, self.tree.folder, "linux"], check=True, stdout=subprocess.DEVNULL)
        self.compare_run(self.tree.run_script(text, expected), expected)

    def compare_run(self, run, expected):
        output, status = run
        self.compare(output, expected)
        self.assertEqual(status, 0, output)

    def compare(self, output, expected):
        if expected is not None and not expectation.pattern(expected).fullmatch(output):
            self.fail(f"expected:\n{expected}\nbut got:\n{output}")

    def rule_cmake(self, block, _):
        """Part of a host's project."""
        self.run_commands("cmake --install build/linux --prefix installed", None)
        (pkgconfig,) = self.tree.folder.glob("installed/lib/**/pkgconfig")
        self.tree.environment["PKG_CONFIG_PATH"] = str(pkgconfig)
        host = self.tree.folder / "host"
        host.mkdir()
        (host / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(Host LANGUAGES C)\n"
            f"add_executable(host {self.tree.folder}/samples/c/discover.c)\n{block.text}",
            encoding="utf-8",
        )
        self.run_commands('cmake -S host -B host/build -DCMAKE_PREFIX_PATH="$PWD/installed"', None)
        self.run_commands("cmake --build host/build", None)

    def rule_toml(self, block, _):
        """Settings of an agent, whose files the page has put in place."""
        self.save(self.tree.within(block.text), self.tree.folder / "agent.toml")
        self.run_commands("discovery-agent --check-config --config agent.toml", None)

    def rule_yaml(self, block, _):
        """How to watch over an agent, at the port that its settings name."""
        (job,) = yaml.safe_load(block.text)["scrape_configs"]
        usual = re.search(r"(?m)^# port = (\d+) +# 0:", (setting("source") / "agent/service/agent.toml").read_text())[1]
        (target,) = job["static_configs"][0]["targets"]
        self.assertEqual(target.rpartition(":")[2], usual)

    def rule_ini(self, block, _):
        """A unit of the service manager, with no more rights than it needs."""
        unit = self.tree.folder / "shown.service"
        self.save(block.text, unit)
        self.run_commands(f"systemd-analyze security --offline=true --threshold=20 {unit}", None)

    def rule_console(self, block, _):
        """Commands after "$ " with their output."""
        self.try_session(block)

    def rule_example(self, block, _):
        """Of a manual page: commands that succeed."""
        with self.devices_for(block):
            self.run_commands(block.text, None)

    def try_session(self, block):
        parts = re.split(r"^\$ ", block.text, flags=re.MULTILINE)
        self.assertEqual(parts[0].strip(), "", "output without a command")
        commands = []
        for part in parts[1:]:
            command, _, output = part.partition("\n")
            while command.endswith("\\"):
                line, _, output = output.partition("\n")
                command = command + "\n" + line.removeprefix("> ")
            commands.append((command, output))
        outputs = self.run_session(block, [command for command, _ in commands])
        for (command, expected), output in zip(commands, outputs, strict=True):
            with self.subTest(command):
                self.compare(output, expected)

    def devices_for(self, block):
        """Three devices, unless the block starts some itself."""
        return contextlib.nullcontext() if "device-simulator" in block.text else Simulator()

    def run_session(self, block, commands):
        with self.devices_for(block):
            return self.tree.run_session(commands)

    # Documents and lines

    def rule_json(self, block, _):
        with DatagramRules(self, self.folder / "json.log") as rules:
            rules.check(json.loads(block.text))

    def rule_log(self, block, _):
        """Each line is one that the library writes."""
        written = [line + "\n" for line in write_eventful_log(self.folder / "discovery.log")]
        for line in block.text.splitlines():
            pattern = expectation.pattern(line)
            self.assertTrue(any(map(pattern.fullmatch, written)), line)

    # What stands in the text

    def check_text(self, document):
        for link in document.links():
            with self.subTest("link", target=link):
                self.check_link(document, link)
        for number, code in document.inline_code():
            with self.subTest(f"{self.path.name}:{number}", code=code):
                self.check_inline(code)

    def check_link(self, document, link):
        if re.match("[a-z]+:", link):
            return
        file, _, anchor = link.partition("#")
        target = (self.path.parent / file) if file else self.path
        self.assertTrue(target.exists(), "no such file")
        if anchor:
            self.assertIn(anchor, blocks.Markdown(target).anchors())

    def check_inline(self, code):
        if re.match(r"cmake |ctest |\./(run|test|soak)\b|(scripts|fuzzers)/[\w-]+( |$)", code):
            self.run_commands(re.sub(r"\b(N|SECONDS|MINUTES)\b", "1", code), None)
        elif option := re.match(r"--[a-z][\w-]*", code):
            self.assertRegex(help_texts(), rf"{option[0]}(?![\w-])")
        elif re.match(r"build/linux/[\w./-]+$", code):
            self.assertTrue((self.tree.folder / code).exists(), "not in the build")
        elif re.match(r"[\w.-]+/[\w./-]+\.(md|h|c|cpp|py|cmake|json)$", code):
            self.assertTrue((setting("source") / code).exists(), "no such file")


def load_tests(loader, tests, pattern):
    """All documents, or those that the option -k chooses by their paths."""
    chosen = loader.testNamePatterns or ["*"]
    pages = map(DocumentTest, documents(setting("source")))
    return unittest.TestSuite([tests, *(page for page in pages if any(fnmatch(page.id(), each) for each in chosen))])


if __name__ == "__main__":
    endtoend.main()
