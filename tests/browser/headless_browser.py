"""Chromium without a screen, by its driver. Reaches no network."""
import base64
import os
import tempfile
import urllib.parse

from selenium import webdriver
from selenium.common.exceptions import TimeoutException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.support.ui import WebDriverWait

PHONE, DESK = 390, 1280


class HeadlessBrowser:
    def __init__(self):
        self._profile = tempfile.TemporaryDirectory(prefix="kivo-browser-")
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for option in ("--headless=new", "--hide-scrollbars", "--force-color-profile=srgb", "--disable-gpu",
                       "--no-first-run", "--disable-background-networking", "--disable-dev-shm-usage",
                       "--host-resolver-rules=MAP * ~NOTFOUND", f"--user-data-dir={self._profile.name}"):
            options.add_argument(option)
        if os.getuid() == 0:
            options.add_argument("--no-sandbox")  # Chromium's own does not work for root
        self._driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._driver.quit()
        self._profile.cleanup()

    def show(self, path, width=DESK, scheme="light", media="", search=""):
        """Opens a file on a screen of `width` pixels, light or dark; `media` may be "print". Goes to the text
        `search`, as the browser's search does."""
        self._command("Emulation.setDeviceMetricsOverride", width=width, height=844, deviceScaleFactor=1,
                      mobile=width < 700)
        self._command("Emulation.setEmulatedMedia", media=media,
                      features=[{"name": "prefers-color-scheme", "value": scheme}])
        self._driver.get(path.as_uri() + (f"#:~:text={urllib.parse.quote(search)}" if search else ""))

    def value(self, script, *arguments):
        """What a script returns that is run in the page from outside, where no policy holds."""
        return self._driver.execute_script(f"return {script}", *arguments)

    def run(self, script):
        self._driver.execute_script(script)

    def becomes_true(self, script):
        """Whether `value` is true, or gets so within seconds: the browser searches after the page is loaded."""
        try:
            return WebDriverWait(self._driver, 20).until(lambda _: self.value(script))
        except TimeoutException:
            return False

    def awaited(self, promise):
        """The value of a promise."""
        return self._driver.execute_async_script(
            f"const done = arguments[arguments.length - 1]; ({promise}).then(done, e => done(String(e)))")

    def complaints(self):
        """What the browser wrote to its console."""
        return [entry["message"] for entry in self._driver.get_log("browser")]

    def photograph(self, path, height):
        """Saves the upper `height` pixels of the page."""
        width = self.value("document.documentElement.clientWidth")
        clip = {"x": 0, "y": 0, "width": width, "height": height, "scale": 1}
        picture = self._command("Page.captureScreenshot", format="png", captureBeyondViewport=True, clip=clip)
        path.write_bytes(base64.b64decode(picture["data"]))

    def printed(self):
        """The page as a PDF, on A4."""
        return base64.b64decode(self._command("Page.printToPDF", paperWidth=8.27, paperHeight=11.69)["data"])

    def _command(self, name, **values):
        return self._driver.execute_cdp_cmd(name, values)
