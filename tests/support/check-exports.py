#!/usr/bin/python3
"""Checks that a library exports the listed functions and nothing else, and needs only what every machine has."""

import re
import subprocess
import sys

# Part of every Windows since 7.
WINDOWS_DLLS = {"advapi32.dll", "iphlpapi.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "ws2_32.dll"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def check(what, found, expected):
    if found == expected:
        return True
    print(f"{what}: unexpected {sorted(found - expected)}, missing {sorted(expected - found)}")
    return False


def read_list(path):
    """The names, and the bytes that their arguments take on 32-bit Windows."""
    with open(path, encoding="ascii") as file:
        return {name: int(size) for name, size in (line.split() for line in file if not line.startswith("#"))}


def check_elf(library, functions):
    symbols = {line.split()[-1].split("@")[0] for line in output("nm", "-D", "--defined-only", library).splitlines()}
    return check("exports", symbols, set(functions))


def check_dll(library, functions, objdump):
    dump = output(objdump, "-p", library)
    table = dump.split("[Ordinal/Name Pointer] Table", 1)[1].split("\n\n", 1)[0]
    names = set(re.findall(r"^\s*\[\s*\d+\](?: \+base\[\s*\d+\]\s+\w+)? (\S+)$", table, re.MULTILINE))
    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", dump)}
    is_64_bit = "file format pei-x86-64" in dump
    expected = set(functions) if is_64_bit else {f"_{name}@{size}" for name, size in functions.items()}
    exact = check("exports", names, expected)
    if imports - WINDOWS_DLLS:
        print(f"imports: unexpected {sorted(imports - WINDOWS_DLLS)}")
        return False
    return exact


def main():
    functions = read_list(sys.argv[1])
    library = sys.argv[2]
    good = check_dll(library, functions, sys.argv[3]) if len(sys.argv) > 3 else check_elf(library, functions)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
