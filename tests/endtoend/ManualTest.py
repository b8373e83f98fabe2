"""The manual pages and the completion tell of everything that the programs take."""

import re
import shlex
import subprocess

from endtoend import TestCase, command, main, setting

PAGES = {
    "discovery-console": "console/man/discovery-console.1",
    "device-simulator": "simulator/man/device-simulator.1",
    "discovery-fleet": "fleet-console/man/discovery-fleet.1",
    "discovery-agent": "agent/man/discovery-agent.8",
}
COMPLETION = """
source {script} || exit
COMP_WORDS=({words})
COMP_CWORD={last}
{function}
printf '%s\\n' "${{COMPREPLY[@]}}"
"""


def help_of(program, *commands):
    """The options and the commands that a help text names."""
    text = subprocess.run(command(program, *commands, "--help"), stdout=subprocess.PIPE, check=True).stdout.decode()
    options = re.findall(r"^ +(?:-\w,)?(--[\w-]+)", text, re.MULTILINE)
    listed = text.partition("Subcommands:\n")[2].partition("\n\n")[0]
    return options, re.findall(r"^  ([\w-]+) ", listed, re.MULTILINE)


def all_commands(program, *commands):
    """Every command with its words and its options."""
    options, inner = help_of(program, *commands)
    yield commands, options
    for name in inner:
        yield from all_commands(program, *commands, name)


class ManualTest(TestCase):
    def page(self, program):
        return setting("source") / PAGES[program]

    def completions(self, program, *words):
        script = COMPLETION.format(
            script=shlex.quote(str(self.page(program).parent.parent / "completion" / program)),
            words=shlex.join((program, *words)),
            last=len(words),
            function="_" + program.replace("-", "_"),
        )
        result = subprocess.run(["bash", "-c", script], stdout=subprocess.PIPE, check=True, cwd=self.folder)
        return result.stdout.decode().split()

    def test_pages_and_completions_know_every_option_and_command(self):
        for program in PAGES:
            page = self.page(program).read_text().replace("\\-", "-")
            for words, options in all_commands(program):
                with self.subTest(program, words=words):
                    self.assertTrue(options)
                    self.assertIn(" ".join(words), page)
                    if words:
                        self.assertIn(words[-1], self.completions(program, *words[:-1], words[-1][:2]))
                    offered = self.completions(program, *words, "--")
                    for option in options:
                        self.assertRegex(page, rf"(?m){option}\b(?!-)")
                        self.assertIn(option, offered)

    def test_the_page_and_the_help_have_the_same_exit_statuses(self):
        for program in ("discovery-console", "discovery-fleet"):
            text = subprocess.run(command(program, "--help"), stdout=subprocess.PIPE, check=True).stdout.decode()
            self.assertEqual(
                re.findall(r"^  (\d+) ", text.partition("Exit status:\n")[2], re.MULTILINE),
                re.findall(r"^\.B (\d+)$", self.page(program).read_text(), re.MULTILINE),
            )

    def test_completes_what_stands_behind_options(self):
        (self.folder / "a result.json").touch()
        (self.folder / "other").touch()
        console = "discovery-console"
        self.assertEqual(self.completions(console, "--log-level", "d"), ["debug"])
        self.assertEqual(self.completions(console, "watch", "--sort", "m"), ["mac", "message"])
        self.assertEqual(self.completions(console, "watch", "--sort", "name", ":", "d"), ["desc"])
        self.assertEqual(self.completions(console, "watch", "--filter", "na"), ["name="])
        self.assertEqual(self.completions("discovery-fleet", "sites", "--sort", "m"), ["machine"])
        self.assertEqual(self.completions(console, "--wait", ""), [])
        self.assertEqual(self.completions(console, "--log", "discover", "wa"), ["watch"])
        self.assertEqual(self.completions(console, "inventory", "diff", "ot"), ["other"])
        self.assertEqual(self.completions(console, "inventory", "show", "a"), ["a", "result.json"])

    def test_pages_are_well_formed(self):
        for page in map(self.page, PAGES):
            result = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", str(page)], stdout=subprocess.PIPE)
            self.assertEqual((result.returncode, result.stdout.decode()), (0, ""))


if __name__ == "__main__":
    main()
