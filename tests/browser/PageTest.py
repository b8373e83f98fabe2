"""The page as a browser shows it, of an agent with simulated devices."""

import fnmatch
import json
import os
import pathlib
import socket
import sys
import tempfile
from urllib.parse import urlsplit

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

TESTS = pathlib.Path(__file__).parent.parent
sys.path[:0] = [str(TESTS / folder) for folder in ("endtoend", "agent", "fleet-console")]

import endtoend  # noqa: E402
from brokers import Agent, Broker, certificates  # noqa: E402
from endtoend import DEVICE_PORT, SERVER_PORT, Simulator, message, wait_until  # noqa: E402
from FleetTest import Publisher, site  # noqa: E402
from ServeTest import Page  # noqa: E402

PORT = 12080
SETTINGS = f"""
site = "plant-1"
[discovery]
addresses = ["127.0.0.1"]
ask-every = 1
[page]
port = {PORT}
"""

FLAGS = ("--headless=new --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking "
         "--disable-component-update --disable-dev-shm-usage --disable-sync --window-size=1280,760").split()  # fmt: skip

# What is shown of a row, by column.
ROWS = """
return [...document.querySelectorAll("tbody tr:not([hidden])")].map((row) => Object.fromEntries(
    [...row.children].map((cell) => [cell.dataset.column, cell.textContent.trim()])))
"""


class Browser(webdriver.Chrome):
    def __init__(self, folder):
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        # Without its last flag it waits for the names of others' servers before it shows anything.
        resolver = "--host-resolver-rules=MAP * ~NOTFOUND, EXCLUDE 127.0.0.1"
        for flag in (*FLAGS, f"--user-data-dir={folder}", resolver):
            options.add_argument(flag)
        options.accept_insecure_certs = True
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        super().__init__(options=options, service=Service("/usr/bin/chromedriver"))

    def find(self, selector):
        return self.find_element(By.CSS_SELECTOR, selector)

    def rows(self):
        return self.execute_script(ROWS)

    def names(self):
        return [row["name"] for row in self.rows()]

    def row(self, mac):
        return next(row for row in self.rows() if row["mac"][:17] == mac)

    def press(self, *keys):
        """Presses keys one by one, each where the focus is then."""
        for key in keys:
            self.switch_to.active_element.send_keys(key)

    def focused(self):
        return self.switch_to.active_element.text

    def filter(self, text):
        self.find("#filter").send_keys(Keys.CONTROL + "a" + Keys.NULL, Keys.BACKSPACE, text)


def send(datagram, address="127.0.0.1", port=SERVER_PORT):
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
        sender.sendto(json.dumps(datagram).encode(), (address, port))


class PageTest(endtoend.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = cls.enterClassContext(tempfile.TemporaryDirectory(prefix="browser-"))
        cls.browser = cls.enterClassContext(Browser(folder))

    def setUp(self):
        super().setUp()
        self.browser.get("about:blank")
        for log in ("browser", "performance"):
            self.browser.get_log(log)

    def start(self, settings=""):
        return self.enterContext(Agent(self.folder, SETTINGS + settings))

    def open(self, count, url=f"http://127.0.0.1:{PORT}/"):
        self.browser.get(url)
        self.addCleanup(self.browser.get, "about:blank")
        self.wait_for_rows(count)

    def wait_for_rows(self, count):
        wait_until(lambda: len(self.browser.rows()) == count, f"{count} rows")

    def check_log(self, *, may_lose_server=False):
        """The browser has nothing to complain of, and has asked nobody but the server."""
        complaints = [
            each["message"]
            for each in self.browser.get_log("browser")
            if not (may_lose_server and each["source"] == "network")
        ]
        self.assertEqual(complaints, [])
        events = [json.loads(each["message"])["message"] for each in self.browser.get_log("performance")]
        requests = [each["params"]["request"] for each in events if each["method"] == "Network.requestWillBeSent"]
        hosts = {urlsplit(each["url"]).netloc for each in requests if each["url"].startswith(("http", "ws"))}
        self.assertEqual(hosts, {f"127.0.0.1:{PORT}"})

    def test_a_thousand_devices_are_there_and_what_becomes_of_them_is_seen(self):
        simulator = self.enterContext(Simulator("--count", "1000"))
        self.start()
        self.open(1000)
        browser = self.browser
        first, second, third = simulator.devices[:3]
        self.assertEqual(set(browser.names()), {device.name for device in simulator.devices})
        shown = browser.row(first.mac)
        self.assertEqual(shown, shown | {"state": "present", "name": first.name, "conflict": "", "changed": ""})
        self.assertTrue(shown["ip"].startswith(first.ip))

        addresses = sorted(device.mac for device in simulator.devices)
        head = browser.find("thead [data-column=mac] button")
        for expected in (addresses, addresses[::-1]):
            head.click()
            self.assertEqual([row["mac"][:17] for row in browser.rows()], expected)
        self.assertEqual(browser.find("thead [aria-sort]").get_attribute("aria-sort"), "descending")

        for text, matches in (
            ("MIXER", lambda device: "mixer" in device.name),
            ("ip=127.0.0.1? name!=mixer*", lambda device: fnmatch.fnmatch(device.ip, "127.0.0.1?")
             and not device.name.startswith("mixer")),
            (third.mac, lambda device: device is third),
        ):  # fmt: skip
            browser.filter(text)
            macs = {device.mac for device in simulator.devices if matches(device)}
            self.assertEqual({row["mac"][:17] for row in browser.rows()}, macs, text)
        browser.filter("color=red")
        self.assertIn('"color" is not a column', browser.find("#filter-error").text)
        browser.filter("")

        rename = {"DiscoveryMessageType": "ChangeYourHostName", "DiscoveryVersion": "1.0.18", "Broadcast": "False",
                  "NewHostName": second.name, "TargetedMACAddress": first.mac}  # fmt: skip
        send(rename, first.ip, DEVICE_PORT)
        wait_until(lambda: browser.row(first.mac)["name"] == second.name, "new name")
        wait_until(lambda: browser.row(first.mac)["conflict"] == f"name {second.name}", "conflict")
        self.assertEqual(browser.row(first.mac)["changed"], f"HostName: {first.name} \u2192 {second.name}")
        simulator.behave("kill 3")
        send(message("Bye", third.name, third.mac))
        wait_until(lambda: browser.row(third.mac)["state"] == "left", "Bye")
        browser.find("input[value=left]").click()
        self.assertEqual([row["mac"][:17] for row in browser.rows()], [third.mac])
        browser.find("input[value=all]").click()
        self.check_log()
        if picture := os.environ.get("PAGE_PICTURE"):
            browser.find("thead [data-column=changed] button").click()
            browser.save_screenshot(picture)

    def test_the_keyboard_is_enough(self):
        simulator = self.enterContext(Simulator("--count", "5"))
        self.start()
        self.open(5)
        browser = self.browser
        names = browser.names()
        browser.press(Keys.TAB, Keys.ENTER, Keys.DOWN)
        self.assertEqual(browser.focused(), names[1])
        browser.press(Keys.ENTER)
        self.assertEqual(browser.find("dialog[open] h2").text, names[1])
        device = next(device for device in simulator.devices if device.name == names[1])
        self.assertIn(device.mac, browser.find("dialog").text)
        browser.press(Keys.ESCAPE)
        self.assertEqual(browser.focused(), names[1])
        browser.press(Keys.END)
        self.assertEqual(browser.focused(), names[-1])

        browser.execute_script("document.activeElement.blur(); document.querySelector('#filter').focus()")
        browser.press(Keys.TAB, Keys.TAB, Keys.ENTER)
        self.assertEqual(browser.names(), names[::-1])
        browser.press(*[Keys.SHIFT + Keys.TAB] * 2, *names[2])
        self.assertEqual(browser.names(), [names[2]])
        self.check_log()

    def test_names_that_mean_harm_do_none(self):
        names = {
            "<img src=x onerror=alert(1)>": "<img src=x onerror=alert(1)>",
            "</bdi><script>alert(1)</script>": "</bdi><script>alert(1)</script>",
            "invoice\u202egnp.exe": "invoice[U+202E]gnp.exe",
            "line\nbreak\u0007": "line[U+000A]break[U+0007]",
            "": "(no name)",
        }
        self.start()
        for number, name in enumerate(names):
            send(message("Hello", name, f"02:00:00:00:00:{number:02x}", SerialNumber="<b>"))
        self.open(len(names))
        self.assertEqual(set(self.browser.names()), set(names.values()))
        for number in range(len(names)):
            self.browser.find(f"tbody tr:nth-child({number + 1}) button").click()
            self.assertIn("<b>", self.browser.find("dialog[open]").text)
            self.browser.press(Keys.ESCAPE)
        self.assertEqual(self.browser.find_elements(By.CSS_SELECTOR, "main img, dialog img, main script"), [])
        self.check_log()

    def test_sites_have_a_column_and_names_of_any_length_are_cut(self):
        self.enterContext(Broker(self.folder, "allow_anonymous true"))
        texts = site("east", 2) | site("west", 1, "lost")
        with Publisher() as publisher:
            publisher.retain({topic: text.replace("press-0", "x" * 60000) for topic, text in texts.items()})
        page = self.enterContext(Page())
        browser = self.browser
        self.open(3, page.url)
        wait_until(lambda: {(row["site"], row["state"]) for row in browser.rows()}
                   == {("east", "present"), ("west", "unknown")}, "states")  # fmt: skip
        self.assertTrue(browser.find("tbody [data-column=site]").is_displayed())
        self.assertEqual(browser.find("#sites").text, "Site west: lost")
        self.assertEqual(set(browser.names()), {"x" * 256, "press-1"})
        self.assertLess(browser.execute_script("return document.querySelector('main').scrollWidth"), 1300)
        browser.filter("site=west name=xxx*")
        self.assertEqual([row["site"] for row in browser.rows()], ["west"])
        browser.find("tbody tr:not([hidden]) button").click()
        self.assertIn("x" * 60000, browser.find("dialog[open]").text)

        with Publisher() as publisher:
            publisher.retain(dict.fromkeys(site("west", 1), ""))
        wait_until(lambda: "not in the inventory any more" in browser.find("dialog[open]").text, "removal")
        browser.press(Keys.ESCAPE)
        browser.filter("")
        self.wait_for_rows(2)
        wait_until(lambda: browser.find("h1").text == "Devices of east", "removal of the site")
        self.assertFalse(browser.find("tbody [data-column=site]").is_displayed())

    def test_what_was_known_stays_while_the_server_is_away(self):
        simulator = self.enterContext(Simulator("--count", "3"))
        agent = self.start()
        self.open(3)
        agent.kill()
        wait_until(self.browser.find("#lost").is_displayed, "loss of the server")
        self.assertEqual(len(self.browser.rows()), 3)
        simulator.behave("kill 1")
        self.start()
        wait_until(lambda: not self.browser.find("#lost").is_displayed(), "return of the server")
        self.wait_for_rows(2)
        self.check_log(may_lose_server=True)

    def test_the_token_is_entered_once(self):
        certificates(self.folder)
        token = "3a94a1e6bd9c4d50c3a1e0d0f3b7c8e2"
        (self.folder / "token").write_text(token + "\n", encoding="ascii")
        (self.folder / "token").chmod(0o600)
        self.enterContext(Simulator("--count", "3"))
        settings = (f"certificate = '{self.folder}/own.crt'\nkey = '{self.folder}/own.key'\n"
                    f"token-file = '{self.folder}/token'\n")  # fmt: skip
        agent = self.start(settings)
        browser = self.browser
        url = f"https://127.0.0.1:{PORT}/"
        browser.get(url)
        self.assertFalse(browser.find("#wrong").is_displayed())
        browser.press("wrong", Keys.ENTER)
        wait_until(browser.find("#wrong").is_displayed, "refusal")
        browser.find("#token").send_keys(token, Keys.ENTER)
        self.wait_for_rows(3)
        self.assertEqual(browser.current_url, url)
        self.assertEqual(browser.execute_script("return document.cookie"), "")
        self.open(3, url)

        agent.stop()
        (self.folder / "token").write_text(token[::-1] + "\n", encoding="ascii")
        self.start(settings)
        wait_until(lambda: browser.find_elements(By.CSS_SELECTOR, "#token"), "question for the new token")


if __name__ == "__main__":
    endtoend.main()
