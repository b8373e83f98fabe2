"""Finds the simulated devices, renames one of them and takes that back."""

import sys

import discovery_server
from discovery_server.inventory import ChangeFailedError, IncompleteSearchError, Inventory

try:
    # Stays on this machine; leave local_addresses out to ask the local network.
    with discovery_server.Session("discovery.log", local_addresses=["127.0.0.1"]) as session:
        with Inventory(session) as inventory:
            devices = inventory.discover()
            print(len(devices), "devices, all that there are")
            change = inventory.rename("press-4", mac_address=devices[0].host["NICs"][0]["MACAddress"])
            print(change.before, "became", change.after)
            inventory.undo(change)
except (discovery_server.DiscoveryError, discovery_server.LibraryError) as error:
    sys.exit(f"inventory: {error}")
except (ChangeFailedError, IncompleteSearchError) as error:
    sys.exit(f"inventory: {error}")
