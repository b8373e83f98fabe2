#!/usr/bin/env python3
"""Checks that a library exports the sixteen functions and nothing else, and needs only what every machine has."""

import re
import subprocess
import sys

FUNCTIONS = {
    "ChangeClientsHostName": 8,
    "ChangeClientsHostNameWithIP": 8,
    "ChangeClientsIPConfigurations": 4,
    "Discover": 0,
    "GetErrorMessage": 4,
    "InitBroadcastProvider": 4,
    "Initialize": 8,
    "ReachClient": 4,
    "RefreshClient": 4,
    "SetByeMessageReceivedEventCallBack": 4,
    "SetClientSignatureReceivedEventCallBack": 4,
    "SetHelloMessageReceivedEventCallBack": 4,
    "SetMinCompatibleVersion": 4,
    "StartServer": 0,
    "StopServer": 0,
    "Terminate": 0,
}

# Part of every Windows since 7.
WINDOWS_DLLS = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "ws2_32.dll"}


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def check(what, found, expected):
    if found == expected:
        return True
    print(f"{what}: unexpected {sorted(found - expected)}, missing {sorted(expected - found)}")
    return False


def check_elf(library):
    symbols = {line.split()[-1].split("@")[0] for line in output("nm", "-D", "--defined-only", library).splitlines()}
    return check("exports", symbols, set(FUNCTIONS))


def check_dll(library, objdump):
    dump = output(objdump, "-p", library)
    table = dump.split("[Ordinal/Name Pointer] Table", 1)[1].split("\n\n", 1)[0]
    names = set(re.findall(r"^\s*\[\s*\d+\](?: \+base\[\s*\d+\]\s+\w+)? (\S+)$", table, re.MULTILINE))
    imports = {name.lower() for name in re.findall(r"DLL Name: (\S+)", dump)}
    is_64_bit = "file format pei-x86-64" in dump
    expected = set(FUNCTIONS) if is_64_bit else {f"_{name}@{size}" for name, size in FUNCTIONS.items()}
    exact = check("exports", names, expected)
    if imports - WINDOWS_DLLS:
        print(f"imports: unexpected {sorted(imports - WINDOWS_DLLS)}")
        return False
    return exact


def main():
    library = sys.argv[1]
    good = check_dll(library, sys.argv[2]) if len(sys.argv) > 2 else check_elf(library)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
