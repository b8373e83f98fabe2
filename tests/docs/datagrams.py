"""The JSON documents of the documentation: what the library sends has to look as shown, and what it receives and hands
to the host application has to be taken as shown."""

import json
import socket

from endtoend import DEVICE_PORT, Host, Peer, Simulator

DEVICE_MESSAGES = {"SignatureBroadcast": "signature", "Hello": "hello", "Bye": "bye"}
PEER_ADDRESS = "127.0.0.1"


def compact(document):
    return json.dumps(document, separators=(",", ":"), ensure_ascii=False).encode()


def request_for(message):
    """The function that sends a message of this kind, with its arguments."""
    is_targeted = message["Broadcast"] == "False"
    match message["DiscoveryMessageType"]:
        case "AllSendYourSignature":
            return ("Discover",)
        case "SendYourSignature":
            return ("RefreshClient", message["TargetedMACAddress"]) if is_targeted else ("ReachClient", PEER_ADDRESS)
        case "ChangeYourHostName" if is_targeted:
            return ("ChangeClientsHostName", message["NewHostName"], message["TargetedMACAddress"])
        case "ChangeYourHostName":
            return ("ChangeClientsHostNameWithIP", message["NewHostName"], PEER_ADDRESS)
        case "ChangeYourIPConfig":
            return ("ChangeClientsIPConfigurations", json.dumps(message["NewNICConfigs"]))
    raise AssertionError(f"no function sends this: {message}")


class DatagramRules:
    """A host application on loopback, and somebody who sends to it and receives from it."""

    def __init__(self, test, log):
        self.test = test
        self.host = Host(log)

    def __enter__(self):
        self.host.initialize()
        self.host.start()
        return self

    def __exit__(self, *exception):
        self.host.__exit__(*exception)

    def check(self, document):
        """Finds the rule for a document of the documentation and applies it."""
        if isinstance(document, list):
            self.check_argument(document)
        elif document.get("DiscoveryMessageType") in DEVICE_MESSAGES:
            self.check_device_message(document)
        elif "DiscoveryMessageType" in document:
            self.check_sent(document)
            self.check_answered(document)
        elif "Host" in document:
            self.check_callback_document(document)
        else:
            self.test.fail(f"no rule for this document: {document}")

    def check_argument(self, document):
        """An argument of one of the two functions that take arrays."""
        if all(isinstance(element, str) for element in document):
            self.host.must("InitBroadcastProvider", json.dumps(document))
        else:
            self.host.must("ChangeClientsIPConfigurations", json.dumps(document))

    def check_sent(self, message):
        """The library sends exactly this."""
        with Peer() as peer:
            self.host.must(*request_for(message))
            data, _ = peer.socket.recvfrom(65536)
        self.test.assertEqual(data.decode(), compact(message).decode())

    def check_answered(self, message):
        """A device understands it, and answers."""
        with Simulator("--count", "8", "--no-hello") as devices:
            self.host.events.clear()
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
                sender.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
                sender.bind((PEER_ADDRESS, 0))
                sender.sendto(compact(message), ("255.255.255.255", DEVICE_PORT))
            answer = self.host.event("signature")
            addresses = [nic["MACAddress"] for nic in answer["Host"]["NICs"]]
            self.test.assertTrue({device.mac for device in devices.devices} & set(addresses))
            target = message.get("TargetedMACAddress")
            if message["Broadcast"] == "False":
                self.test.assertIn(target, addresses)
            if "NewHostName" in message:
                self.test.assertEqual(answer["Host"]["HostName"], message["NewHostName"])
            for settings in message.get("NewNICConfigs", []):
                self.test.assertIn(settings, answer["Host"]["NICs"])

    def check_device_message(self, message):
        """Arrives at the callback of its kind, with all that it says."""
        document = self.receive(message)
        for key, value in message["Host"].items():
            if key == "NICs":
                value = [{"MTU": "Unknown", **nic} for nic in value]
            self.test.assertEqual(document["Host"][key], value)

    def check_callback_document(self, document):
        """The callback receives exactly this for a message that says it."""
        message = {
            "DiscoveryMessageType": "Hello",
            "DiscoveryVersion": "1.0.18",
            "Broadcast": "True",
            **document,
        }
        self.test.assertEqual(compact(self.receive(message)), compact(document))

    def receive(self, message):
        """What the callback receives for a device's message."""
        self.send(message)
        return self.host.event(DEVICE_MESSAGES[message["DiscoveryMessageType"]])

    def is_dropped(self, message):
        """Whether no callback sees a device's message, while a good one after it arrives."""
        marker = {**message, "DiscoveryMessageType": "Bye", "DiscoveryVersion": "1.0.18", "Broadcast": "True"}
        marker["Host"] = {"HostName": "marker", "DeviceType": "", "NICs": [], "Products": []}
        self.send(message)
        self.send(marker)
        kind, _ = self.host.next_event()
        if kind != "bye":
            self.host.event("bye")
        return kind == "bye"

    def send(self, message):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
            sender.sendto(message if isinstance(message, bytes) else compact(message), (PEER_ADDRESS, 12001))
