"""A host program in Python for BindingTest.py: PythonHost.py LIBRARY, which is empty for the system to find it"""

import gc
import json
import sys
import threading

import discovery_server
from discovery_server.inventory import ChangeFailedError, IncompleteSearchError, Inventory

NIC_MEMBERS = ("FriendlyName", "MACAddress", "IPAddress", "SubNetMask", "DefaultGateway", "MTU")

library = sys.argv[1] or None
session = None
inventory = None
last = None
actions = {}
release = threading.Event()
output = threading.Lock()


def say(*words):
    with output:
        print(*words, flush=True)


def outcome(action, *arguments):
    try:
        action(*arguments)
        return "ok"
    except discovery_server.DiscoveryError as error:
        return f"error {error.code} {error}"
    except Exception as error:
        return f"failure {error}"


def handle(event):
    kind = event.kind.value
    say(kind, json.dumps(event.document))
    action = actions.get(kind, "none")
    if action == "throw":
        raise RuntimeError("thrown by the handler")
    if action == "hold":
        say("holding")
        release.wait()
        say("handler", outcome(session.discover))
        action = "stop"
    if action != "none":
        say("handler", outcome(getattr(session, action)))


def report(error):
    say("reported", error)


def open_session(log, *addresses):
    global session
    session = discovery_server.Session(
        log,
        discovery_server.LogLevel.DEBUG,
        library=library,
        local_addresses=addresses,
        on_signature=handle,
        on_hello=handle,
        on_bye=handle,
        on_error=report,
    )


def open_inventory(ask_every, journal=None):
    global inventory
    inventory = Inventory(session, journal=journal, AskEvery=int(ask_every))
    threading.Thread(target=tell, args=(inventory.changes(),), daemon=True).start()


def tell(changes):
    for change in changes:
        words = [change.host["HostName"]]
        if change.differences:
            words = [text for each in change.differences for text in (each.property, each.before, each.after)]
        if change.conflict:
            both = change.conflict.first, change.conflict.second
            words = [change.conflict.kind, change.conflict.value, *(each["Host"]["SerialNumber"] for each in both)]
        say(change.kind.value, *words)


def search(wait, *addresses):
    try:
        say("found complete", *listed(inventory.discover(int(wait) / 1000, also=addresses)))
    except IncompleteSearchError as error:
        say("found incomplete", *listed(error.devices))


def listed(devices):
    return [f"{device.host['HostName']}:{device.state.value}" for device in devices]


def change(start):
    """start() is given the outcome of the last change."""
    global last
    try:
        last = start(last)
    except ChangeFailedError as error:
        last = error.outcome
    say("outcome", last.verdict.value.replace("-", ""), *((last.before or {}).values()), last.code)


def show_journal():
    states = ("open" if each.is_open else "undone" if each.is_undone else "done" for each in inventory.journal)
    say("journal", *(f"{each.mac_address}:{state}" for each, state in zip(inventory.journal, states)))


def close_in_background():
    threading.Thread(target=lambda: say("closed", outcome(session.close)), daemon=True).start()


COMMANDS = {
    "open": open_session,
    "second": lambda log: discovery_server.Session(log, library=library),
    "start": lambda: session.start(),
    "stop": lambda: session.stop(),
    "close": lambda: session.close(),
    "close-in-background": close_in_background,
    "discover": lambda: session.discover(),
    "refresh": lambda mac: session.refresh_client(mac),
    "reach": lambda ip: session.reach_client(ip),
    "rename": lambda name, mac: session.change_clients_host_name(name.replace("\\0", "\0"), mac),
    "rename-ip": lambda name, ip: session.change_clients_host_name_with_ip(name, ip),
    "configure": lambda *values: session.change_clients_ip_configurations([dict(zip(NIC_MEMBERS, values))]),
    "provider": lambda *addresses: session.init_broadcast_provider(addresses),
    "min-version": lambda version: session.set_min_compatible_version(version),
    "inventory": open_inventory,
    "search": search,
    "devices": lambda: say("devices", *listed(inventory.devices)),
    "give-name": lambda name, mac: change(lambda _: inventory.rename(name, mac_address=mac)),
    "give-name-in-background": lambda *names: threading.Thread(
        target=outcome, args=(COMMANDS["give-name"], *names), daemon=True
    ).start(),
    "give-back": lambda: change(lambda outcome: inventory.undo(outcome)),
    "give-back-newest": lambda mac: change(lambda _: inventory.undo(mac_address=mac)),
    "journal": show_journal,
    "held": lambda: say("held", "yes" if inventory.is_port_held else "no"),
    "on": actions.__setitem__,
    "release": release.set,
    "collect": gc.collect,
}

say("ready")
for line in sys.stdin:
    command, *arguments = line.rstrip("\n").split("\t")
    say("=", outcome(COMMANDS[command], *arguments))
