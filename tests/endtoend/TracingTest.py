"""What makes captures and logs readable: the dissector for Wireshark and the format for lnav."""

import json
import os
import signal
import socket
import subprocess

from endtoend import DEVICE_PORT, SERVER_PORT, Simulator, TestCase, main, message, setting, wait_until

FIELDS = {
    "info": "_ws.col.Info",
    "protocol": "_ws.col.Protocol",
    "expert": "_ws.expert.message",
    **{
        name: f"devicediscovery.{name}"
        for name in (
            "kind", "version", "broadcast", "target_mac", "new_host_name", "host_name", "device_type", "nic.mac", "nic.ip",
            "nic.gateway", "product.name",
        )
    },
}  # fmt: skip


class Capture:
    """Captures the datagrams on loopback into a file."""

    def __init__(self, folder):
        self.file = folder / "capture.pcapng"
        self.process = subprocess.Popen(
            ["dumpcap", "-q", "-i", "lo", "-f", "udp portrange 12000-12001", "-w", str(self.file)],
            stderr=subprocess.DEVNULL,
        )
        self.sender = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        # The capture has begun once it holds a datagram, and holds everything once it holds a later one.
        self._wait_for_mark()

    def send(self, data, port=SERVER_PORT):
        data = json.dumps(data).encode() if isinstance(data, dict) else data
        self.sender.sendto(data, ("127.0.0.1", port))

    def _wait_for_mark(self):
        size = self._size()

        def is_written():
            self.send(b"mark")
            return self._size() > size

        wait_until(is_written, "the capture")

    def _size(self):
        return self.file.stat().st_size if self.file.exists() else 0

    def end(self):
        self._wait_for_mark()
        self.process.send_signal(signal.SIGINT)
        self.process.wait()
        self.sender.close()

    def tshark(self, *arguments):
        result = subprocess.run(
            ["tshark", "-X", f"lua_script:{setting('source')}/tools/wireshark/discovery.lua", "-r", self.file, *arguments],
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            check=True,
        )
        errors = result.stderr.decode()
        if "lua" in errors.lower():
            raise AssertionError(errors)
        return result.stdout.decode(errors="replace")

    def packets(self, display_filter="udp"):
        """The fields of each packet that the filter lets through, without the marks."""
        options = [option for field in FIELDS.values() for option in ("-e", field)]
        text = self.tshark(
            "-Y", f"({display_filter}) && udp.length != 12",
            "-T", "fields", "-E", "separator=/t", "-E", "aggregator=|", *options,
        )  # fmt: skip
        return [dict(zip(FIELDS, line.split("\t"), strict=True)) for line in text.splitlines()]


class WiresharkTest(TestCase):
    def test_every_kind_of_message_reads_like_a_sentence(self):
        settings = self.folder / "nics.json"
        capture = Capture(self.folder)
        with Simulator("--count", "2") as simulator:
            first, second = simulator.devices
            self.console("discover", "--expect", "2")
            self.console("refresh", first.mac)
            self.console("reach", second.ip)
            self.console("rename", "by-mac", "--mac", first.mac)
            self.console("rename", "by-ip", "--ip", second.ip)
            nic = message("Hello")["SourceNIC"] | {"MACAddress": second.mac, "IPAddress": "10.1.0.77", "SubNetMask": "255.255.0.0"}
            settings.write_text(json.dumps([nic]))
            self.console("configure", str(settings))
        capture.end()

        mac = first.mac.lower()
        sentences = [packet["info"] for packet in capture.packets()]
        for sentence in (
            f"{first.name} (Drive at {first.ip}) says Hello",
            "Asks all devices for their signatures",
            f"{second.name} (Panel at {second.ip}) tells its signature",
            f"Asks the device {mac} for its signature",
            f"Asks the device at {second.ip} for its signature",
            f'Gives the device {mac} the host name "by-mac"',
            f'Gives the device at {second.ip} the host name "by-ip"',
            f"Gives {second.mac.lower()} the address 10.1.0.77",
            "by-ip (Panel at 10.1.0.77) says Bye",
        ):
            self.assertIn(sentence, sentences)
        self.assertEqual({packet["expert"] for packet in capture.packets()}, {""})
        self.assertEqual({packet["protocol"] for packet in capture.packets()}, {"DISCOVERY"})

        (hello,) = capture.packets(f'devicediscovery.kind == "Hello" && devicediscovery.host_name == "{first.name}"')
        self.assertEqual((hello["version"], hello["broadcast"], hello["device_type"]), ("1.0.18", "1", "Drive"))
        self.assertIn(mac, hello["nic.mac"].split("|"))
        for display_filter, what, expected in (
            (f"devicediscovery.nic.mac == {second.mac} && devicediscovery.kind == Bye", "host_name", "by-ip"),
            ("devicediscovery.nic.ip == 10.1.0.77 && devicediscovery.kind == Bye", "host_name", "by-ip"),
            ("devicediscovery.new_nic", "nic.ip", "10.1.0.77"),
            (f"devicediscovery.target_mac == {mac} && devicediscovery.new_host_name", "broadcast", "0"),
        ):
            self.assertEqual([packet[what] for packet in capture.packets(display_filter)], [expected], display_filter)

    def test_malformed_messages_are_marked_with_the_reason(self):
        good = message("Hello", "press", "02:00:00:00:00:01")
        nic = good["SourceNIC"]
        request = {"DiscoveryMessageType": "SendYourSignature", "DiscoveryVersion": "1.0.18", "Broadcast": "False"}

        def without(key):
            return {name: value for name, value in good.items() if name != key}

        def host(**changes):
            return good | {"Host": good["Host"] | changes}

        cases = (
            (b"\x00", "No JSON object: the text ends too early at byte 1"),
            (b'{"a":1', 'No JSON object: "," or "}" is missing at byte 7'),
            (b"[]", "No JSON object: not an object"),
            (b"[" * 2000, "No JSON object: nested too deeply at byte 1001"),
            (b'{"a":"\\ud800"}', "No JSON object: half a surrogate pair at byte 7"),
            (without("DiscoveryMessageType"), "DiscoveryMessageType is missing"),
            (good | {"DiscoveryMessageType": "Hallo\x1b"}, 'DiscoveryMessageType is unknown: "Hallo\\x1B"'),
            (without("DiscoveryVersion"), "DiscoveryVersion is missing"),
            (good | {"DiscoveryVersion": "1"}, 'DiscoveryVersion is no version: "1"'),
            (good | {"Broadcast": "true"}, 'Broadcast is neither True nor False: "true"'),
            (without("Host"), "Host is missing"),
            (host(HostName=1), "HostName is missing"),
            (host(NICs=[nic | {"MACAddress": "0:1"}]), 'MACAddress is no address: "0:1"'),
            (host(NICs=[nic | {"IPAddress": "1.2.3.256"}]), 'IPAddress is no address: "1.2.3.256"'),
            (host(NICs=[1]), "NICs holds something that is no object"),
            (host(Products=[{}]), "ProductName is missing"),
            (request, "TargetedMACAddress is missing"),
        )
        ignored = (
            (good | {"SourceNIC": nic | {"IPAddress": ""}}, 'IPAddress is no address: "", so this part is ignored'),
            (request | {"DiscoveryMessageType": "ChangeYourIPConfig", "NewNICConfigs": [1]},
             "NewNICConfigs holds something that is no object, so this part is ignored"),
            (without("Broadcast"), "Broadcast is missing, which means True"),
        )  # fmt: skip
        fine = (
            {key.upper(): value for key, value in good.items()},
            json.dumps(good).encode() + b"}{",
            json.dumps(host(HostName="\U0001f600")).encode(),
            without("SourceNIC"),
        )
        capture = Capture(self.folder)
        for data in (*(data for data, _ in (*cases, *ignored)), *fine):
            capture.send(data, DEVICE_PORT)
        capture.end()

        packets = capture.packets()
        self.assertEqual(len(packets), len(cases) + len(ignored) + len(fine))
        for (data, reason), packet in zip(cases, packets):
            self.assertEqual(packet["info"], f"Malformed: {reason}", data)
            self.assertEqual(packet["expert"].split("|")[0], packet["info"].removeprefix("Malformed: "))
        for (data, reason), packet in zip(ignored, packets[len(cases) :]):
            self.assertNotIn("Malformed", packet["info"], data)
            self.assertEqual(packet["expert"], reason)
        for packet in packets[len(cases) + len(ignored) :]:
            self.assertEqual((packet["kind"], packet["expert"]), ("Hello", ""))
        self.assertEqual(len(capture.packets("devicediscovery.malformed")), len(cases))
        self.assertEqual(packets[-2]["host_name"], "\U0001f600")


class LnavTest(TestCase):
    def lnav(self, *arguments):
        result = subprocess.run(
            ["lnav", *arguments], stdout=subprocess.PIPE, check=True, env={**os.environ, "HOME": str(self.folder)}
        )
        return result.stdout.decode()

    def test_the_log_opens_with_its_columns_and_levels(self):
        with Simulator("--count", "1"):
            self.console("discover", "--expect", "1")
        self.console("discover", "--min-version", "one", status=1)
        self.lnav("-i", str(setting("source") / "tools" / "lnav" / "discovery.json"))
        rows = json.loads(
            self.lnav(
                "-n",
                "-c", ";SELECT log_time, log_level, channel, reftime, error, log_body FROM discovery_log",
                "-c", ":write-json-to -",
                str(self.folder / "console.log"),
            )
        )  # fmt: skip

        lines = [line for line in self.log_text().splitlines() if line.startswith("|") and line[1:3].isdigit()]
        known = [row for row in rows if row["channel"] is not None]
        self.assertEqual(len(known), len(lines))
        levels = {"C": "notice", "S": "info", "D": "debug", "E": "error"}
        for line, row in zip(lines, known):
            _, date, reftime, channel, letter, error, body = line.split("|", 6)
            self.assertEqual(
                # The header of the next log follows the last line of the one before.
                (row["log_level"], row["channel"], row["log_body"].split("\n")[0], row["error"] or ""),
                (levels[letter], channel.strip(), body, error.strip()),
            )
            self.assertEqual(row["log_time"], f"{date[6:10]}-{date[3:5]}-{date[:2]} {date[11:]}")
            self.assertAlmostEqual(float(row["reftime"]), float(reftime), places=5)
        self.assertEqual({row["log_level"] for row in known}, set(levels.values()))


if __name__ == "__main__":
    main()
