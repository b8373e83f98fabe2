"""A log in which most of what the library writes occurs."""

import json
import socket

from datagrams import PEER_ADDRESS, compact
from endtoend import SERVER_PORT, Host, Simulator, ip, message, wait_until


def write_eventful_log(path):
    """A host application calls everything, receives all kinds of datagrams and loses the network; the log's lines."""
    with Host(path) as host, Simulator("--count", "1") as simulator:
        host.initialize()
        host.must("InitBroadcastProvider", '["127.0.0.1"]')
        host.call("Discover")  # both are too early
        host.must("StartServer")
        host.must("InitBroadcastProvider", '["10.9.9.9","127.0.0.1"]')
        request_everything(host, simulator.devices[0])
        receive_everything(host)
        lose_the_route(host)
        host.must("StartServer")  # once too often
        host.must("Terminate")
        return host.log_text().splitlines()


def request_everything(host, device):
    settings = message("Hello", mac=device.mac)["Host"]["NICs"]
    for request in (
        ("Discover",),
        ("RefreshClient", device.mac),
        ("ReachClient", device.ip),
        ("ChangeClientsHostName", "line-1", device.mac),
        ("ChangeClientsHostNameWithIP", "line-2", device.ip),
        ("ChangeClientsIPConfigurations", json.dumps([{**settings[0], "IPAddress": device.ip}])),
    ):
        host.must(*request)
        host.event("signature")


def receive_everything(host):
    host.must("SetMinCompatibleVersion", "1.0.17")
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
        for datagram in (
            b"no message",
            {**message("Hello"), "Host": None},
            {**message("Hello"), "Host": {"HostName": "no interfaces"}},
            message("Hello", version="1.0.16"),
            {"DiscoveryMessageType": "AllSendYourSignature", "DiscoveryVersion": "1.0.18"},
            message("Hello", SerialNumber="9" * 3000),
            message("Hello"),
            message("Bye"),
        ):
            data = datagram if isinstance(datagram, bytes) else compact(datagram)
            sender.sendto(data, (PEER_ADDRESS, SERVER_PORT))
    host.event("bye")


def lose_the_route(host):
    """A request to another network fails, and the server restarts."""
    ip("route", "delete", "default", "dev", "lo")
    try:
        host.must("ReachClient", "192.168.77.1")
        wait_until(lambda: host.log_text().count("---Listening...") == 2, "restart")
    finally:
        ip("route", "add", "default", "dev", "lo")
