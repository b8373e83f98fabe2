"""The tables of docs/protocol.md: what is required, what stands in for what is missing, which texts and versions are
accepted."""

import copy
import json
import re

import blocks
from datagrams import DatagramRules
from endtoend import INVALID_FORMAT, TestCase, main, setting

FULL_MESSAGE_SECTION = "Hello"
DEVICE_MAC = "02:6F:68:00:00:06"


def codes(cell):
    return re.findall(r"`([^`]+)`", cell)


class ProtocolTest(TestCase):
    def setUp(self):
        super().setUp()
        self.document = blocks.Markdown(setting("source") / "docs" / "protocol.md")
        self.rules = self.enterContext(DatagramRules(self, self.folder / "log.txt"))
        [block] = [block for block in self.document.blocks if block.section == FULL_MESSAGE_SECTION]
        self.message = json.loads(block.text)

    def test_every_member_is_required_or_has_the_default_shown(self):
        for section, place in (
            ("The first members", lambda message: message),
            ("Host", lambda message: message["Host"]),
            ("Network interface", lambda message: message["Host"]["NICs"][0]),
            ("Product", lambda message: message["Host"]["Products"][0]),
        ):
            rows = self.document.table(section)
            members = [key for key in place(self.message) if key not in ("Host", "SourceNIC")]
            self.assertEqual([codes(row[0])[0] for row in rows], members)
            for row in rows:
                with self.subTest(section, member=row[0]):
                    self.check_member(place, codes(row[0])[0], row[2])

    def check_member(self, place, key, default):
        message = copy.deepcopy(self.message)
        del place(message)[key]
        wrong = copy.deepcopy(self.message)
        place(wrong)[key] = 1500  # no member is a number
        for defective in (message, wrong):
            if default == "required":
                self.assertTrue(self.rules.is_dropped(defective))
                continue
            received = self.rules.receive(defective)
            if key in place(self.message) and key != "Broadcast":
                self.assertEqual(place(received)[key], json.loads(codes(default)[0]))

    def test_documents_are_read_as_described(self):
        text = json.dumps(self.message)
        name = '"HostName": "oven-07"'
        self.assertIn(name, text)
        for written, expected in (
            ('"HOSTNAME": "first", "hostname": "second"', "first"),
            (r'"HostName": "a\u0000b\uD800c"', "abc"),
            (r'"HostName": "a\u00e9", "unknown": [1, null]', "aé"),
        ):
            with self.subTest(written):
                self.rules.send(text.replace(name, written).encode() + b" and more")
                self.assertEqual(self.rules.host.event("hello")["Host"]["HostName"], expected)

    def test_file_transfer_infos_keep_their_order_and_end_where_one_is_no_text(self):
        message = copy.deepcopy(self.message)
        message["Host"]["FileTransferInfos"] = {"z": "1", "a": "2", "number": 3, "b": "4"}
        infos = self.rules.receive(message)["Host"]["FileTransferInfos"]
        self.assertEqual(list(infos.items()), [("z", "1"), ("a", "2")])

    def test_texts_are_accepted_and_refused_as_shown(self):
        functions = {"MAC address": "RefreshClient", "IP address": "ReachClient", "version": "SetMinCompatibleVersion"}
        for kind, _, accepted, refused in self.document.table("Texts"):
            for cell, code in ((accepted, 0), (refused, INVALID_FORMAT)):
                for text in codes(cell):
                    with self.subTest(kind, text=text):
                        self.assertEqual(self.rules.host.call(functions[kind], text), code)

    def test_versions_are_accepted_and_dropped_as_shown(self):
        for minimum, version, result in self.document.table("Versions"):
            with self.subTest(minimum=minimum, version=version):
                self.rules.host.must("SetMinCompatibleVersion", codes(minimum)[0])
                message = {**self.message, "DiscoveryVersion": codes(version)[0]}
                self.assertEqual(self.rules.is_dropped(message), result == "dropped")


if __name__ == "__main__":
    main()
