"""Changes of devices whose discovery-console is killed."""

import json
import random
import subprocess
import time

from endtoend import Simulator, TestCase, command, main


class KillTest(TestCase):
    def address(self, device):
        return self.console_documents("refresh", device.mac)[0]["Host"]["NICs"][0]["IPAddress"]

    def test_what_a_kill_leaves_behind_can_be_taken_back(self):
        with Simulator("--count", "1") as simulator:
            (device,) = simulator.devices
            settings = {"MACAddress": device.mac, "FriendlyName": "eth0", "IPAddress": "10.1.0.10",
                        "SubNetMask": "255.255.0.0", "DefaultGateway": ""}  # fmt: skip
            file = self.folder / "settings.json"
            file.write_text(json.dumps([settings]))
            configure = command("discovery-console", *self.console_options(),
                                "configure", str(file), "--no-look", "--confirm", "1")  # fmt: skip
            broken_off = 0
            for _ in range(30):
                moment = random.uniform(0.02, 1.6)
                with subprocess.Popen(configure, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as console:
                    time.sleep(moment)
                    console.kill()
                if "open" in [change["State"] for change in self.console_documents("undo", "--list")]:
                    broken_off += 1
                    self.assertRegex(self.console("refresh", device.mac)[1],
                                     f"the change of {device.mac} at [^ ]+ to the address 10.1.0.10/16 without a gateway was "
                                     f"broken off: [^,]+ undo --mac {device.mac} gives back the address {device.ip}/8")  # fmt: skip
                    self.console("undo", "--yes")
                self.assertEqual(self.address(device), device.ip, f"killed after {moment:.3f} s")
            self.assertGreater(broken_off, 0)


if __name__ == "__main__":
    main()
