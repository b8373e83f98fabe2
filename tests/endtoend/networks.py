"""Machines of the tests' own, and the cables between them."""

import os
import subprocess
import sys

from endtoend import SERVER_PORT, Process, wait_until

_OCCUPY = """
import socket, sys
occupant = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
occupant.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, int(sys.argv[1]))
occupant.bind(("", int(sys.argv[2])))
print("bound", flush=True)
sys.stdin.read()
"""


class Machine:
    """A network namespace with nothing but its loopback interface, and without a default route."""

    def __init__(self):
        self.cable_count = 0
        self.process = subprocess.Popen(["unshare", "--net", "sleep", "infinity"])
        self.pid = self.process.pid
        own = os.readlink("/proc/self/ns/net")
        wait_until(lambda: os.readlink(f"/proc/{self.pid}/ns/net") != own, "network namespace")
        self.ip("link", "set", "lo", "up")

    def prefix(self):
        """What goes before a command to run it on this machine."""
        return ["nsenter", f"--net=/proc/{self.pid}/ns/net"]

    def run(self, *arguments, text=None):
        subprocess.run([*self.prefix(), *arguments], input=text, text=True, check=True)

    def ip(self, *arguments):
        self.run("ip", *arguments)

    def own(self, addresses):
        """Makes these addresses, of devices for instance, its own as well."""
        self.run("ip", "-batch", "-", text="".join(f"route replace local {address} dev lo\n" for address in addresses))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()


class _Here(Machine):
    def __init__(self):
        self.cable_count = 0
        self.pid = os.getpid()

    def prefix(self):
        return []


HERE = _Here()  # where the tests themselves run


class End:
    """The network interface that a cable ends in, up and with an address such as 10.3.0.1/24, if any."""

    def __init__(self, machine, address=None):
        machine.cable_count += 1
        self.machine = machine
        self.name = f"eth{machine.cable_count}"
        self.address = address

    def prepare(self):
        if self.address:
            self.machine.ip("address", "add", self.address, "dev", self.name)
        self.up()

    def up(self):
        self.machine.ip("link", "set", self.name, "up")

    def down(self):
        self.machine.ip("link", "set", self.name, "down")

    def has_carrier(self):
        """The system learns of it a while after the other end is up."""
        command = [*self.machine.prefix(), "ip", "link", "show", self.name]
        return "state UP" in subprocess.check_output(command, text=True)

    def readdress(self, address):
        """Gives it another address, or with None no address."""
        if self.address:
            self.machine.ip("address", "delete", self.address, "dev", self.name)
        if address:
            self.machine.ip("address", "add", address, "dev", self.name)
        self.address = address


class Cable:
    """Joins two machines, each given as an End."""

    def __init__(self, near, far):
        self.near, self.far = near, far
        peer = ("peer", "name", far.name, "netns", str(far.machine.pid))
        near.machine.ip("link", "add", near.name, "type", "veth", *peer)
        near.prepare()
        far.prepare()
        wait_until(lambda: near.has_carrier() and far.has_carrier(), "a carrier")

    def unplug(self):
        """The near end stays up and finds no carrier."""
        self.far.down()

    def plug(self):
        self.far.up()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.near.machine.ip("link", "delete", self.near.name)


def cabled(test, near, far):
    """A machine at the other end of a cable that starts here, both until the test ends."""
    machine = test.enterContext(Machine())
    machine.cable = test.enterContext(Cable(End(HERE, near), End(machine, far)))
    return machine


class Occupant(Process):
    """Another program on a UDP port, of hosts for instance, of a machine."""

    def __init__(self, machine=HERE, port=SERVER_PORT, shares=True):
        super().__init__(*machine.prefix(), sys.executable, "-c", _OCCUPY, str(int(shares)), str(port))
        self.line_with("bound")
