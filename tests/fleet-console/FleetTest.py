"""The program for all sites with a real broker that drops what is too much for it."""

import csv
import io
import json
import pathlib
import subprocess
import sys

sys.path[:0] = [str(pathlib.Path(__file__).parent.parent / folder) for folder in ("endtoend", "agent")]

import endtoend  # noqa: E402
from brokers import PORT, Broker, Publisher, certificates  # noqa: E402
from endtoend import command, rows  # noqa: E402

TIME = "2026-03-01T12:30:00.250Z"


def site(name, count, state="ready", published=None):
    """What an agent keeps on the broker for a site of so many devices: texts by topic."""
    root = f"discovery/v1/{name}/"
    identities = [f"02-00-00-00-{number // 256:02x}-{number % 256:02x}" for number in range(count)]
    documents = {"state": {"Agent": "a", "Machine": "box", "Started": TIME, "State": state}}
    records = dict.fromkeys(identities, "r")
    parts = [dict(list(records.items())[at : at + 1000]) for at in range(0, count, 1000)] if count > 1000 else []
    documents["manifest"] = {"Devices": count, "Parts": ["p"] * len(parts), "Records": {} if parts else records,
                             "Revision": "m"}  # fmt: skip
    documents |= {f"manifest/{at}": {"Records": part, "Revision": "p"} for at, part in enumerate(parts, 1)}
    for number, identity in enumerate(identities[:published]):
        mac = identity.replace("-", ":").upper()
        nic = {"MACAddress": mac, "IPAddress": "10.0.0.1", "SubNetMask": "", "DefaultGateway": "", "FriendlyName": ""}
        host = {"HostName": f"press-{number}", "DeviceType": "T", "NICs": [nic], "Products": []}
        documents["devices/" + identity] = {"Revision": "r", "Since": TIME, "State": "present", "Host": host}
    return {root + topic: json.dumps(document) for topic, document in documents.items()}


class FleetTest(endtoend.TestCase):
    def retain(self, *sites):
        with Publisher() as publisher:
            for each in sites:
                publisher.retain(each)

    def fleet(self, *arguments, status=0):
        """What the program prints, and what it complains about."""
        ran = subprocess.run(command("discovery-fleet", "--broker", f"127.0.0.1:{PORT}", *arguments),
                             capture_output=True, text=True, timeout=60, check=False)  # fmt: skip
        self.assertEqual(ran.returncode, status, ran.stdout + ran.stderr)
        return ran.stdout, ran.stderr

    def test_a_large_site_is_read_whole_and_forgotten_whole_with_a_broker_of_usual_settings(self):
        self.enterContext(Broker(self.folder, "allow_anonymous true", limit=None))
        self.retain(site("a", 3000), site("b", 2, "lost"))
        documents = [json.loads(line) for line in self.fleet("devices", "--json")[0].splitlines()]
        self.assertEqual(len({each["Device"] for each in documents if each["Site"] == "a"}), 3000)
        self.assertEqual({each["State"] for each in documents if each["Site"] == "b"}, {"unknown"})
        self.assertEqual({each["State"] for each in documents if each["Site"] == "a"}, {"present"})

        table, _ = self.fleet("devices", "--sort", "site", "--sort", "name:desc", "--filter", "name=press-1?", "--filter",
                              "state=present", "--filter", "site=A")  # fmt: skip
        self.assertEqual([row[:3] for row in rows(table)], [["a", "present", f"press-{n}"] for n in range(19, 9, -1)])
        sites, _ = self.fleet("sites", "--sort", "devices:desc", "--filter", "machine=BOX", "--csv")
        self.assertEqual([row["devices"] for row in csv.DictReader(io.StringIO(sites))], ["3000", "2"])
        removed, _ = self.fleet("--json", "forget", "a", "--yes", "--force")
        self.assertEqual(json.loads(removed), {"Forgotten": {"Site": "a", "Removed": 3005, "Left": 0}})
        self.assertEqual([row[:3] for row in rows(self.fleet("sites")[0])], [["b", "lost", "2"]])
        self.assertEqual(rows(self.fleet("sites", "--filter", "state!=lost")[0]), [])
        self.retain({topic: text for number in range(1100) for topic, text in site(f"n{number}", 0).items()})
        self.assertEqual(len(rows(self.fleet("sites")[0])), 1101)

    def test_what_is_missing_is_said(self):
        broker = Broker(self.folder, "allow_anonymous true")
        with broker:
            self.fleet("sites", status=3)
            self.retain(site("b", 20, published=12), site("c", 1))
            listed, complaint = self.fleet("devices", "--csv", status=6)
            self.assertEqual(complaint, "discovery-fleet: site b: 12 of 20 received\n")
            self.assertEqual(len(list(csv.DictReader(io.StringIO(listed)))), 13)
            self.assertIn("no manifest", self.fleet("sites", "--site", "nowhere", status=6)[1])
            self.assertIn("discovery-fleet: unknown command nonsense\n", self.fleet("nonsense", status=2)[1])
            self.assertIn("no name of a site", self.fleet("sites", "--site", "a/b", status=2)[1])
        self.assertIn("no connection to the broker", self.fleet("sites", status=1)[1])

    def test_brokers_with_certificates_and_passwords_are_read(self):
        certificates(self.folder)
        authority, certificate, key = (str(self.folder / name) for name in ("ca.crt", "own.crt", "own.key"))
        self.enterContext(Broker(self.folder, f"cafile {authority}", f"certfile {certificate}", f"keyfile {key}",
                                 "require_certificate true", "use_identity_as_username true"))  # fmt: skip
        tls = ("--tls", "--authority", authority)
        self.fleet("sites", *tls, "--certificate", certificate, "--key", key, status=3)
        self.fleet("sites", *tls, status=1)
        self.fleet("sites", "--authority", authority, status=2)
        self.assertIn("certificate verify failed (", self.fleet("sites", "--tls", "--authority", certificate, status=1)[1])
        missing = self.fleet("sites", "--tls", "--authority", "nowhere.crt", status=2)[1]
        self.assertEqual(missing, 'discovery-fleet: cannot read "nowhere.crt": No such file or directory\n')
        self.assertIn("--csv: ", self.fleet("serve", "--csv", status=2)[1])
        unread = self.fleet("sites", "--user", "u", "--password-file", "nofile", status=2)[1]
        self.assertIn('password from "nofile": No such file or directory\n', unread)


if __name__ == "__main__":
    endtoend.main()
