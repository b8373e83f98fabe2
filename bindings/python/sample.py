"""Lists the simulated devices: sample.py [LOCAL_ADDRESS...]"""

import sys

import discovery_server

# Stays on this machine; leave local_addresses out to ask the local network.
addresses = sys.argv[1:] or ["127.0.0.1"]

try:
    with discovery_server.Session("discovery.log", local_addresses=addresses) as session:
        session.discover()
        for event in session.events(timeout=2):
            host = event.host
            address = event.source_nic["IPAddress"] if event.source_nic else "?"
            print(f"{event.kind.value}: {host['HostName']}, a {host['DeviceType']} at {address}")
except (discovery_server.DiscoveryError, discovery_server.LibraryError) as error:
    sys.exit(f"sample: {error}")
