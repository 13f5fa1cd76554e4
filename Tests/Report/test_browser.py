"""The report in a real browser, driven as a person would."""

import time
import unittest

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

import page as pages
from program import SANITIZED, ProgramTest, run


class Browser(ProgramTest):
    @classmethod
    def setUpClass(cls):
        options = webdriver.ChromeOptions()
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        cls.browser = webdriver.Chrome(options=options)
        cls.addClassCleanup(cls.browser.quit)

    def show(self, path, scheme="light", width=1280):
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia",
                                     {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                     {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
        self.browser.get(path.as_uri())

    def column(self, table, number):
        """The texts of a column's cells in rows that are shown."""
        return self.browser.execute_script(
            "return Array.from(document.getElementById(arguments[0]).tBodies[0].rows)"
            ".filter((row) => !row.hidden).map((row) => row.cells[arguments[1]].textContent)", table, number)

    def assert_quiet(self):
        """Nothing on the console, and no request but for the page itself."""
        self.assertEqual(self.browser.get_log("browser"), [])
        requests = [entry for entry in self.browser.get_log("performance")
                    if "Network.requestWillBeSent\"" in entry["message"] and "file://" not in entry["message"]
                    and "data:," not in entry["message"]]
        self.assertEqual(requests, [])

    def mixed(self, *how):
        path = self.folder / "page.html"
        run("report", pages.mixed_project(self.folder), "--skip-events", "4", *how, "-o", path)
        return path

    def test_hostile_names_do_nothing(self):
        self.show(self.mixed("--fades"))
        self.assertEqual(self.browser.execute_script("return document.images.length"), 0)
        self.assertIn("<script>alert(1)</script>", self.browser.find_element(By.TAG_NAME, "h1").text)
        self.assert_quiet()

    def test_the_policy_stops_what_is_not_the_pages_own(self):
        self.show(self.mixed())
        self.browser.execute_script(
            "const s = document.createElement('script'); s.textContent = 'window.broken = 1'; document.body.append(s)")
        self.assertIsNone(self.browser.execute_script("return window.broken ?? null"))
        self.assertTrue(self.browser.get_log("browser"))  # the browser says that it stopped it

    def test_sorting(self):
        self.show(self.mixed("--native"))
        head = self.browser.find_element(By.CSS_SELECTOR, "#events th:nth-child(10)")
        button = head.find_element(By.TAG_NAME, "button")
        self.assertEqual(button.text, "Position")
        button.send_keys(Keys.ENTER)
        values = [int(text) for text in self.column("events", 9) if text]
        self.assertEqual((head.get_attribute("aria-sort"), values), ("ascending", sorted(values)))
        self.assertEqual(self.column("events", 9)[-1], "")  # what has no position comes last
        button.send_keys(Keys.ENTER)
        values = [int(text) for text in self.column("events", 9) if text]
        self.assertEqual((head.get_attribute("aria-sort"), values), ("descending", sorted(values, reverse=True)))
        self.assertEqual(self.column("events", 9)[-1], "")
        self.assert_quiet()

    def test_searching(self):
        self.show(self.mixed())
        field = self.browser.find_element(By.CSS_SELECTOR, "input[data-table=events]")
        field.send_keys("GONE missing")
        self.assertEqual(self.column("events", 4), ["gone.wav"])
        self.assertEqual(self.browser.find_element(By.CSS_SELECTOR, "output[data-count=events]").text, "1 of 6 events")
        field.clear()
        field.send_keys(" ")
        self.assertEqual(len(self.column("events", 4)), 6)
        self.assert_quiet()

    def test_the_picture_by_keyboard(self):
        self.show(self.mixed("--native"))
        picture, about = (self.browser.find_element(By.ID, name) for name in ("picture", "about"))
        picture.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("plain", about.text + self.browser.find_element(By.ID, "regions").text)
        self.assertIn("01:00:00:00", about.text)
        picture.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("-6.50 dB", about.text)
        picture.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("missing", about.text)
        before = self.browser.find_element(By.ID, "lanes").size["width"]
        picture.send_keys("+")
        self.assertEqual(self.browser.find_element(By.ID, "lanes").size["width"], 2 * before)
        picture.send_keys(Keys.ENTER)
        self.assertIn("gone.wav", self.browser.switch_to.active_element.text)
        self.assert_quiet()

    def test_the_picture_by_pointer(self):
        self.show(self.mixed("--fades"))
        webdriver.ActionChains(self.browser).move_to_element(
            self.browser.find_element(By.CSS_SELECTOR, ".r.crossfade")).perform()
        self.assertIn("crossfade", self.browser.find_element(By.ID, "about").text)
        colours = {look: self.browser.find_element(By.CSS_SELECTOR, ".e." + look).value_of_css_property("stroke")
                   for look in ("gone", "off")}
        red, green, blue = (int(part) for part in colours["gone"][4:-1].split(","))
        self.assertGreater(red, 2 * max(green, blue))
        red, green, blue = (int(part) for part in colours["off"][4:-1].split(","))
        self.assertLess(max(red, green, blue) - min(red, green, blue), 24)
        self.assert_quiet()

    def test_light_and_dark_at_all_widths(self):
        path = self.mixed("--fades")
        for scheme, is_dark in (("light", False), ("dark", True)):
            for width in (360, 800, 1600):
                with self.subTest(f"{scheme} {width}"):
                    self.show(path, scheme, width)
                    back, ink = (self.browser.execute_script(
                        f"return getComputedStyle(document.body).{name}") for name in ("backgroundColor", "color"))
                    brightness = [sum(int(part) for part in colour[4:-1].split(",")) for colour in (back, ink)]
                    self.assertEqual(brightness[0] < brightness[1], is_dark)
                    # The page itself never scrolls sideways: tables and the picture do.
                    self.assertTrue(self.browser.execute_script(
                        "return document.documentElement.scrollWidth <= document.documentElement.clientWidth"))
        self.assert_quiet()

    def test_5000_events(self):
        path = self.folder / "long.html"
        run("report", pages.long_project(self.folder), "-o", path, seconds=30)
        began = time.monotonic()
        self.show(path)
        field = self.browser.find_element(By.CSS_SELECTOR, "input[data-table=events]")
        field.send_keys("SCENE 07.wav")
        self.assertEqual(len(self.column("events", 0)), 250)
        if not SANITIZED:
            self.assertLess(time.monotonic() - began, 10)  # the rule is 1 s, on a machine that is not busy
        self.browser.find_element(By.CSS_SELECTOR, "#events th:nth-child(1) button").click()
        self.browser.find_element(By.CSS_SELECTOR, "#events th:nth-child(1) button").click()
        self.assertEqual(self.column("events", 0)[0], "4987")
        self.assert_quiet()


if __name__ == "__main__":
    unittest.main()
