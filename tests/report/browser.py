"""Headless Chromium for the tests of reports."""
import base64
import pathlib
import time

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

SWITCHES = (
    "--headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking "
    "--disable-component-update --disable-sync --hide-scrollbars"
).split()


class Browser:
    """One browser, with what the tests ask of a page."""

    def __init__(self, profile_folder, pictures):
        options = Options()
        options.binary_location = "/usr/bin/chromium"
        for switch in SWITCHES:
            options.add_argument(switch)
        options.add_argument(f"--user-data-dir={profile_folder}")
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        self.driver.set_script_timeout(30)
        self.pictures = pathlib.Path(pictures)
        self.size(1280, 900)

    def close(self):
        self.driver.quit()

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def command(self, name, **arguments):
        return self.driver.execute_cdp_cmd(name, arguments)

    def size(self, width, height=900):
        self.command(
            "Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False
        )

    def scheme(self, name):
        self.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": name}])

    def languages(self, languages):
        agent = self.run("return navigator.userAgent")
        self.command("Network.setUserAgentOverride", userAgent=agent, acceptLanguage=languages)

    def open(self, path, address=""):
        self.driver.get("about:blank")
        self.driver.get(pathlib.Path(path).resolve().as_uri() + address)

    def complaints(self):
        """What the console said since the last call."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def until(self, script, *arguments, seconds=10):
        """Waits for a script to give something true, and returns that."""
        end = time.monotonic() + seconds
        while True:
            value = self.run(script, *arguments)
            if value or time.monotonic() > end:
                return value
            time.sleep(0.03)

    def draw_all(self):
        """Plots are drawn when they come into view; a page goes to paper with all of them."""
        self.run("dispatchEvent(new Event('beforeprint'))")

    def picture(self, name, width=1280, height=None):
        """A picture of the whole page, or of its upper part."""
        self.size(width)
        self.draw_all()
        whole = self.run("return document.documentElement.scrollHeight")
        self.size(width, height or min(whole, 16000))
        time.sleep(0.25)
        self.driver.save_screenshot(str(self.pictures / f"{name}.png"))
        self.size(1280)

    def pdf(self, name):
        result = self.command("Page.printToPDF", paperWidth=8.27, paperHeight=11.69, preferCSSPageSize=True)
        path = self.pictures / f"{name}.pdf"
        path.write_bytes(base64.b64decode(result["data"]))
        return path
