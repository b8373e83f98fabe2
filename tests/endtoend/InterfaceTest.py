"""The library through its C interface, in a host program of its own, with devices that are other processes."""

import json

from endtoend import INVALID_FORMAT, NOT_FOUND, Host, Peer, Simulator, TestCase, main, message, setting

ARGUMENT_NULL = 9
INVALID_OPERATION = 30
NULL_POINTER = 41


def is_called(name):
    return lambda document: document["Host"]["HostName"] == name


class LifeCycleTest(TestCase):
    def test_calls_in_the_wrong_order_are_refused_and_harm_nothing(self):
        with Host(self.folder / "log.txt") as host:
            self.assertEqual(host.call("SetHelloMessageReceivedEventCallBack", "on"), INVALID_OPERATION)
            self.assertEqual(host.call("StopServer"), 0)
            self.assertEqual(host.call("Discover"), NULL_POINTER)
            self.assertEqual(host.call("InitBroadcastProvider", "[]"), 0)
            host.initialize()
            self.assertEqual(host.call("Initialize", self.folder / "other.txt", 3), INVALID_OPERATION)
            self.assertFalse((self.folder / "other.txt").exists())
            self.assertEqual(host.call("Discover"), NULL_POINTER)
            host.start()
            with Simulator("--count", "1") as simulator:
                host.event("hello", is_called(simulator.devices[0].name))
            host.must("Terminate")
            host.must("Terminate")
            self.assertEqual(host.call("SetHelloMessageReceivedEventCallBack", "on"), INVALID_OPERATION)

    def test_a_failed_initialize_leaves_nothing_behind(self):
        with Host(self.folder / "log.txt") as host:
            self.assertNotEqual(host.call("Initialize", host.log, 7), 0)
            self.assertNotEqual(host.call("Initialize", self.folder, 3), 0)
            self.assertNotEqual(host.call("Initialize", "NULL", 3), 0)
            host.initialize()
            host.must("Terminate")

    def test_every_start_serves_with_the_same_callbacks(self):
        with Simulator("--count", "1") as simulator, Host(self.folder / "log.txt") as host:
            host.initialize()
            for _ in range(3):
                host.start()
                host.must("Discover")
                host.event("signature", is_called(simulator.devices[0].name))
                host.must("StopServer")
                self.assertEqual(host.call("Discover"), NULL_POINTER)
            host.must("Terminate")
            host.initialize()
            host.start()
            host.must("Discover")
            host.event("signature")
            host.must("Terminate")
            self.assertEqual(host.log_text().count("Discovery Server stopped"), 4)
            self.assertEqual(host.log_text().count("Close Log"), 2)

    def test_a_thread_priority_that_the_system_refuses_costs_a_line(self):
        right_to_raise = 1 << 23
        with open("/proc/self/status", encoding="ascii") as status:
            rights = next(int(line.split()[1], 16) for line in status if line.startswith("CapEff:"))
        with Host(self.folder / "log.txt") as host:
            host.initialize()
            host.start()
            host.must("Terminate")
            refusals = host.log_text().count("Thread priority Highest refused by the system.")
        is_granted = rights & right_to_raise or setting("suffix")  # Wine grants it in any case
        self.assertEqual(refusals, 0 if is_granted else 1)

    def test_the_host_may_end_without_stopping_the_server(self):
        with Host(self.folder / "log.txt") as host:
            host.initialize()
            host.start()
            self.assertEqual(host.end(), 0)


class RequestTest(TestCase):
    def setUp(self):
        super().setUp()
        self.host = self.enterContext(Host(self.folder / "log.txt"))
        self.host.initialize()
        self.host.start()

    def test_requests_reach_the_devices_they_are_meant_for(self):
        """Each request, its datagram and its answer."""
        with Peer() as peer, Simulator("--count", "2", "--no-hello", "--share-port") as simulator:
            first, second = simulator.devices
            self.host.must("Discover")
            request, sender = peer.receive()
            self.assertEqual(sender, "127.0.0.1")
            self.assertEqual(
                list(request.items()),
                [
                    ("DiscoveryMessageType", "AllSendYourSignature"),
                    ("DiscoveryVersion", "1.0.18"),
                    ("Broadcast", "True"),
                ],
            )
            for device in (first, second):
                self.host.event("signature", is_called(device.name))

            self.host.must("RefreshClient", second.mac)
            request, _ = peer.receive()
            self.assertEqual((request["Broadcast"], request["TargetedMACAddress"]), ("False", second.mac))
            self.assertTrue(is_called(second.name)(self.host.event("signature")))

            self.host.must("ChangeClientsHostName", "Prüfstand", second.mac)
            request, _ = peer.receive()
            self.assertEqual((request["Broadcast"], request["NewHostName"]), ("False", "Prüfstand"))
            self.assertTrue(is_called("Prüfstand")(self.host.event("signature")))

            self.host.must("ReachClient", first.ip)
            self.assertTrue(is_called(first.name)(self.host.event("signature")))

            self.host.must("ChangeClientsHostNameWithIP", "press 2", first.ip)
            self.assertTrue(is_called("press 2")(self.host.event("signature")))

            # The peer saw no datagram of the two that went to one address.
            settings = {
                "FriendlyName": "eth0",
                "MACAddress": first.mac,
                "IPAddress": "127.0.0.66",
                "SubNetMask": "255.0.0.0",
                "DefaultGateway": "",
            }
            self.host.must("ChangeClientsIPConfigurations", json.dumps([settings]))
            request, _ = peer.receive()
            self.assertEqual(request["NewNICConfigs"], [{**settings, "MTU": "Unknown"}])
            self.assertEqual(self.host.event("signature")["SourceNIC"]["IPAddress"], "127.0.0.66")

    def test_bad_arguments_are_refused_and_send_nothing(self):
        with Peer() as peer:
            for code, function, *arguments in (
                (INVALID_FORMAT, "RefreshClient", "00:11:22:33:44"),
                (INVALID_FORMAT, "ReachClient", "1.2.3.256"),
                (INVALID_FORMAT, "ChangeClientsHostName", "name", "00:11:22:33:44:GG"),
                (INVALID_FORMAT, "ChangeClientsHostNameWithIP", "name", "localhost"),
                (ARGUMENT_NULL, "ChangeClientsHostName", "NULL", "00:11:22:33:44:55"),
                (INVALID_FORMAT, "ChangeClientsIPConfigurations", "{}"),
                (INVALID_FORMAT, "ChangeClientsIPConfigurations", "[1"),
                (NOT_FOUND, "ChangeClientsIPConfigurations", "[1]"),
                (NOT_FOUND, "ChangeClientsIPConfigurations", "[{}]"),
                (INVALID_FORMAT, "InitBroadcastProvider", '["127.0.0.1","nowhere"]'),
                (NOT_FOUND, "InitBroadcastProvider", '["127.0.0.1",1]'),
                (INVALID_FORMAT, "SetMinCompatibleVersion", "1"),
            ):
                with self.subTest(function, arguments=arguments):
                    self.assertEqual(self.host.call(function, *arguments), code)
            self.host.must("Discover")
            self.assertEqual(peer.receive()[0]["DiscoveryMessageType"], "AllSendYourSignature")


class MessageTest(TestCase):
    def setUp(self):
        super().setUp()
        self.host = self.enterContext(Host(self.folder / "log.txt"))
        self.host.initialize()
        self.host.start()
        self.peer = self.enterContext(Peer())

    def test_hello_and_bye_are_reported_with_host_and_interface(self):
        with Simulator("--count", "1", "--share-port") as simulator:
            hello = self.host.event("hello")
        bye = self.host.event("bye")
        self.assertEqual(hello, bye)
        self.assertEqual(list(hello), ["Host", "SourceNIC"])
        self.assertEqual(hello["Host"]["HostName"], simulator.devices[0].name)
        self.assertEqual(hello["Host"]["NICs"][0], hello["SourceNIC"])

        with Simulator("--count", "1", "--no-source-nic", "--share-port"):
            self.assertEqual(list(self.host.event("hello")), ["Host"])

    def test_a_callback_taken_away_is_not_called(self):
        self.host.must("SetHelloMessageReceivedEventCallBack", "off")
        self.peer.send(message("Hello", "unheard"))
        self.peer.send(message("Bye", "heard"))
        self.host.event("bye", is_called("heard"))
        self.host.must("SetHelloMessageReceivedEventCallBack", "on")
        self.peer.send(message("Hello", "heard"))
        self.assertTrue(is_called("heard")(self.host.event("hello")))

    def test_messages_of_other_versions_follow_the_minimum(self):
        for minimum, versions in (
            ("0.0", {"0.9": True, "1.0.18.1": True}),
            ("1.0.17", {"1.0.16": False, "1.0.17": True, "01.00.18": True, "2.0": True}),
            ("1.0.0", {"1.0": False, "1.0.0": True}),
            ("9.0", {"1.0.19": False, "1.0.18": True}),  # the library's own version always passes
        ):
            self.host.must("SetMinCompatibleVersion", minimum)
            for version, passes in versions.items():
                with self.subTest(minimum=minimum, version=version):
                    self.peer.send(message("Hello", version, version=version))
                    self.peer.send(message("Hello", "next"))
                    name = self.host.event("hello")["Host"]["HostName"]
                    self.assertEqual(name, version if passes else "next")
                    if passes:
                        self.host.event("hello")
        log = self.host.log_text()
        self.assertIn("Version mismatch with received message ! [1.0.18] <> [1.0.16].", log)
        self.assertEqual(log.count("The protocol version of the message is not supported ! Message dropped."), 3)

    def test_malformed_datagrams_are_dropped_and_the_next_is_served(self):
        good = json.dumps(message("Hello"))
        datagrams = [
            b"",
            b"\0\0\0",
            b"not JSON",
            b"[1,2]",
            b"\xff\xfe\xfd" * 100,
            good[:-10],
            "{" * 1500,
            '{"a":' * 300,
            message("Unknown"),
            {**message("Hello"), "DiscoveryVersion": 1},
            {**message("Hello"), "DiscoveryVersion": "1.x"},
            {**message("Hello"), "Broadcast": "maybe"},
            {**message("Hello"), "Host": "text"},
            {**message("Hello"), "Host": {"HostName": "no interfaces"}},
            {"DiscoveryMessageType": "AllSendYourSignature", "DiscoveryVersion": "1.0.18"},
            message("Hello", mac="00:11:22:33:44:55:66"),
        ]
        for number, datagram in enumerate(datagrams):
            with self.subTest(number):
                name = f"after {number}"
                self.peer.send(datagram)
                self.peer.send(message("Hello", name))
                self.assertTrue(is_called(name)(self.host.event("hello")))
        self.assertIn("Message dropped : bad format !", self.host.log_text())

    def test_an_oversize_datagram_is_lost_and_the_next_of_its_size_fits(self):
        huge = message("Hello", "huge", SerialNumber="9" * 65000)
        for size in (2048, 4096, 8192, 16384, 32768):
            self.peer.send(huge)
            self.peer.send(message("Hello", f"after {size}"))
            self.assertTrue(is_called(f"after {size}")(self.host.event("hello")))
            self.assertIn(f"MessageSize is too low : {size}! Doubling it...", self.host.log_text())
        self.peer.send(huge)
        self.assertTrue(is_called("huge")(self.host.event("hello")))

    def test_texts_are_passed_on_as_they_are(self):
        name = 'quote " backslash \\ tab \t é € 😀'
        self.peer.send(message("Hello", name, FileTransferInfos={"b": "1", "a": "2"}))
        host = self.host.event("hello")["Host"]
        self.assertEqual(host["HostName"], name)
        self.assertEqual(list(host["FileTransferInfos"].items()), [("b", "1"), ("a", "2")])


if __name__ == "__main__":
    main()
