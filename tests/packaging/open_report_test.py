#!/usr/bin/env python3
"""Clicks on a notification of the installed Kivo and reads the page that Chromium shows. With KIVO_PICTURES, keeps
pictures of the desktop in that folder, to be looked at."""
import os
import unittest

from kivo_on_a_desktop import MESSAGE, KivoWithALedger
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from virtual_desktop import wait_for

BROWSER = """#!/bin/sh
echo $$ >>'{home}/browsers'
[ "$(id -u)" -ne 0 ] || set -- --no-sandbox --test-type "$@"  # its own does not work for root
exec /usr/bin/chromium --no-first-run --disable-background-networking --disable-gpu --disable-dev-shm-usage \\
    '--host-resolver-rules=MAP * ~NOTFOUND' --user-data-dir='{home}/profile' --remote-debugging-port=0 \\
    --window-position=0,0 --window-size=560,560 "$@"
"""


class AReportInChromium(KivoWithALedger):
    def setUp(self):
        super().setUp()
        self.desktop.install_browser(BROWSER)

    def attached(self):
        """A driver of the browser that was opened."""
        port = self.desktop.home / "profile/DevToolsActivePort"
        wait_for(lambda: port.exists() and port.read_text().count("\n"), "the browser can be asked")
        options = webdriver.ChromeOptions()
        options.debugger_address = f"127.0.0.1:{port.read_text().split()[0]}"
        driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.stack.callback(driver.quit)
        return driver

    def photograph(self, name):
        if folder := os.environ.get("KIVO_PICTURES"):
            self.kivo.run("import", "-window", "root", f"{folder}/{name}.png")

    def test_a_click_on_a_notification_shows_the_months_expenses(self):
        self.kivo.run("kivo-phone", "notifications", "authorized")
        self.kivo.run("kivo-intents", "perform", "ProcessSMSIntent", "--smsText", "-", input=MESSAGE)
        [notification] = wait_for(lambda: self.desktop.windows("Dunst"), "the notification is shown")
        self.photograph("notification")
        self.desktop.click(notification)
        wait_for(lambda: self.desktop.windows("Chromium"), "the browser has a window")
        driver = self.attached()
        wait_for(lambda: driver.title.startswith("Kivo: "), "the page is loaded")
        self.photograph("report")
        self.assertEqual(driver.current_url, (self.desktop.home / "kivo/report.html").as_uri())
        shown = driver.find_element("tag name", "body").text
        self.assertIn("Cafe", shown)
        self.assertIn("150.00", shown)
        self.assertEqual(self.desktop.terminals(), [])


if __name__ == "__main__":
    unittest.main()
