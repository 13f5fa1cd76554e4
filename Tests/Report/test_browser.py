"""The report in a real browser, driven as a person would."""

import functools
import http.server
import threading
import time
import unittest

from selenium import webdriver
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.ui import WebDriverWait

import page as pages
from program import ProgramTest, run


# For each element with a text of its own that is shown: the contrast and the text.
CONTRASTS = """
function channels(colour) { return colour.match(/[\\d.]+/g).map(Number); }
function brightness(colour) {
  const [r, g, b] = channels(colour).map((c) => c / 255)
      .map((c) => c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4);
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}
function backOf(element) {
  for (let at = element; at; at = at.parentElement) {
    const colour = getComputedStyle(at).backgroundColor;
    if ((channels(colour)[3] ?? 1) > 0) return colour;
  }
}
const isShown = (element) => element.getClientRects().length > 0 && !element.disabled;
const hasText = (element) => Array.from(element.childNodes).some((node) => node.nodeType === 3 && node.data.trim());
return Array.from(document.body.querySelectorAll('*')).filter((element) => hasText(element) && isShown(element))
    .map((element) => {
      const style = getComputedStyle(element);
      const [one, two] = [brightness(element instanceof SVGElement ? style.fill : style.color),
                          brightness(backOf(element))];
      return [(Math.max(one, two) + 0.05) / (Math.min(one, two) + 0.05), element.outerHTML.slice(0, 80)];
    });
"""


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

    def at(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

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
        picture, about = self.at("#picture"), self.at("#about")
        picture.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("01:00:00:00", about.text)
        chosen = self.browser.switch_to.active_element
        self.assertEqual((chosen.tag_name, chosen.get_attribute("role")), ("rect", "option"))
        self.assertIn("01:00:00:00", chosen.accessible_name)
        chosen.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("-6.50 dB", about.text)
        self.browser.switch_to.active_element.send_keys(Keys.ARROW_RIGHT)
        self.assertIn("missing", about.text)
        before = self.at("#lanes").size["width"]
        self.browser.switch_to.active_element.send_keys("+")
        self.assertEqual(self.at("#lanes").size["width"], 2 * before)
        self.browser.switch_to.active_element.send_keys("0")
        self.assertEqual(self.at("#lanes").size["width"], before)
        self.browser.switch_to.active_element.send_keys(Keys.ARROW_DOWN)
        self.assertEqual(self.browser.switch_to.active_element.get_attribute("id"), "r2")
        self.browser.switch_to.active_element.send_keys(Keys.ARROW_UP, Keys.END, Keys.ENTER)
        self.assertIn("gone.wav", self.browser.switch_to.active_element.text)
        self.assert_quiet()

    def test_the_picture_by_pointer(self):
        self.show(self.mixed("--fades"))
        webdriver.ActionChains(self.browser).move_to_element(self.at("rect.crossfade")).perform()
        self.assertIn("crossfade", self.at("#about").text)
        colours = {look: self.at("rect." + look).value_of_css_property("stroke") for look in ("gone", "off")}
        red, green, blue = (int(part) for part in colours["gone"][4:-1].split(","))
        self.assertGreater(red, 2 * max(green, blue))
        red, green, blue = (int(part) for part in colours["off"][4:-1].split(","))
        self.assertLess(max(red, green, blue) - min(red, green, blue), 24)
        self.assert_quiet()

    def test_zoom_and_pan_by_mouse(self):
        self.show(self.mixed())
        picture, width = self.at("#picture"), self.at("#lanes").size["width"]
        wheel = "arguments[0].dispatchEvent(new WheelEvent('wheel', {deltaY: -1, ctrlKey: arguments[1], clientX: 700," \
                " bubbles: true, cancelable: true}))"
        self.browser.execute_script(wheel, picture, False)  # that one scrolls the page
        self.assertEqual(self.at("#lanes").size["width"], width)
        self.browser.execute_script(wheel, picture, True)
        self.assertEqual(self.at("#lanes").size["width"], 2 * width)
        self.at("#zoom-in").click()
        self.assertEqual((self.at("#lanes").size["width"], self.at("#zoom").text), (4 * width, "4×"))
        before = picture.get_property("scrollLeft")
        webdriver.ActionChains(self.browser).move_to_element(picture).click_and_hold().move_by_offset(
            -200, 0).release().perform()
        self.assertAlmostEqual(picture.get_property("scrollLeft"), before + 200, delta=2)
        self.at("#zoom-all").click()
        self.assertEqual(self.at("#lanes").size["width"], width)
        self.assert_quiet()

    def test_every_text_stands_out_from_its_background(self):
        """A contrast of 4.5, the least that WCAG 2 asks of texts (1.4.3)."""
        path = self.mixed("--fades")
        for scheme in ("light", "dark"):
            with self.subTest(scheme):
                self.show(path, scheme)
                self.at("#picture").send_keys(Keys.ARROW_RIGHT, Keys.END, Keys.ENTER)
                texts = self.browser.execute_script(CONTRASTS)
                self.assertGreater(len(texts), 100)
                self.assertEqual([text for text in texts if text[0] < 4.5], [])

    def test_what_is_read_by_ear(self):
        self.show(self.mixed("--fades"))
        for selector in ("header", "nav", "main", "footer"):
            self.assertEqual(len(self.browser.find_elements(By.CSS_SELECTOR, "body > " + selector)), 1)
        for element in self.browser.find_elements(By.CSS_SELECTOR, "button, input, [tabindex='0'], nav a"):
            if element.is_displayed():
                self.assertTrue(element.accessible_name, element.get_attribute("outerHTML"))
        for link in self.browser.find_elements(By.CSS_SELECTOR, "a"):
            self.assertTrue(self.browser.find_elements(By.CSS_SELECTOR, link.get_dom_attribute("href")))
        webdriver.ActionChains(self.browser).send_keys(Keys.TAB).perform()
        skip = self.browser.switch_to.active_element
        self.assertEqual(skip.text, "Skip to the content")
        self.assertGreaterEqual(skip.location["y"], 0)
        self.assert_quiet()

    def test_a_name_cannot_turn_the_direction(self):
        adl = pages.Adl('<SEQUENCE>\n(SEQ_TITLE) "t"\n</SEQUENCE>\n')
        name = "\u202egnp.\u2066scene\u2029.wav"
        (self.folder / name).write_bytes(pages.wave(300 * 1600))
        adl.source(1, b"URL:file://localhost/a/" + name.encode())
        adl.cut(1)
        run("report", adl.write(self.folder / "p.adl"), "-o", self.folder / "page.html")
        self.show(self.folder / "page.html")
        text = self.browser.execute_script("return document.body.innerText + document.title")
        self.assertNotRegex(text, "[\u202a-\u202e\u2066-\u2069]")
        self.assertEqual(self.browser.execute_script("return getComputedStyle(document.body).direction"), "ltr")
        self.assert_quiet()

    def test_a_server_is_asked_for_nothing_but_the_page(self):
        path, asked = self.mixed(), []

        class Handler(http.server.SimpleHTTPRequestHandler):
            def log_message(self, form, *arguments):
                asked.append(self.path)

        handler = functools.partial(Handler, directory=self.folder)
        with http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler) as server:
            threading.Thread(target=server.serve_forever, daemon=True).start()
            self.browser.get(f"http://127.0.0.1:{server.server_port}/{path.name}")
            self.at("#zoom-in").click()
            time.sleep(0.5)
            server.shutdown()
        self.assertEqual(asked, ["/page.html"])
        self.assertEqual(self.browser.get_log("browser"), [])
        self.browser.get_log("performance")  # is for pages that are files

    def test_light_and_dark_at_all_widths(self):
        path = self.mixed("--fades")
        for scheme, is_dark in (("light", False), ("dark", True)):
            for width in (360, 400, 1400):
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

    def test_rows_made_of_the_facts_say_what_the_page_says(self):
        """Rows that the page has no room for are made by its script: here are those that it has room for, too."""
        compare = """
          let count = 0;
          const different = [];
          for (const table of ['events', 'regions', 'files', 'messages']) {
            for (const entry of tables[table].entries) {
              const made = tables[table].makeRow(entry.number), written = entry.row;
              made.classList.remove('later');
              written.classList.remove('later');
              if (!made.className) made.removeAttribute('class');
              if (!written.className) written.removeAttribute('class');
              if (made.outerHTML !== written.outerHTML) different.push([made.outerHTML, written.outerHTML]);
              ++count;
            }
          }
          return [count, different];"""
        for how in (["--fades", "--gain"], ["--native"], ["--position", "offset", "--offset", "-00:00:00:10"]):
            for rate in ([], ["--session-frame-rate", "29.97df"]):
                with self.subTest(f"{how} {rate}"):
                    path = self.mixed(*how, *rate)
                    self.show(path)
                    count, different = self.browser.execute_script(compare)
                    self.assertGreater(count, 10)
                    self.assertEqual(different, [])
                    path.unlink()
        path = self.folder / "spot.html"
        run("spot", pages.mixed_project(self.folder), "--quiet", "--copy-to", self.folder / "made", "--fades",
            "--bounce", self.folder / "b.wav", "--report", path)
        self.show(path)
        self.assertEqual(self.browser.execute_script(compare)[1], [])
        self.assert_quiet()

    def test_a_page_whose_script_makes_rows(self):
        path = self.folder / "large.html"
        run("report", pages.long_project(self.folder, shaped=1), "--fades", "--gain", "-o", path, seconds=60)
        self.show(path)
        facts = pages.Page(path)
        self.assertEqual(len(facts.rows["regions"]), 200)
        field = self.at("input[data-table=regions]")
        field.send_keys("scene 07_fadeout")
        self.assertEqual(self.at("output[data-count=regions]").text, "250 of 15000 regions")
        wanted = [row["position"] for row in facts.facts_of("regions") if row["name"] == "Scene 07_FadeOut"]
        self.assertEqual(self.column("regions", 6), [str(position) for position in wanted])
        field.clear()
        field.send_keys(" ")
        self.at("#regions th:nth-child(7) button").click()
        self.at("#regions th:nth-child(7) button").click()
        last = max(row["position"] for row in facts.facts_of("regions"))
        self.assertEqual(self.column("regions", 6)[0], str(last))
        # Nobody has to scroll for them: they are all there soon.
        rows = "return document.querySelectorAll('#regions tbody tr').length"
        WebDriverWait(self.browser, 60).until(lambda browser: browser.execute_script(rows) == 15000)
        self.show(path)
        self.browser.execute_script("window.dispatchEvent(new Event('beforeprint'))")
        self.assertEqual(self.column("regions", 6), [str(row["position"]) for row in facts.facts_of("regions")])
        self.assert_quiet()

    def test_5000_events(self):
        path = self.folder / "long.html"
        run("report", pages.long_project(self.folder), "-o", path, seconds=30)
        # In the page's own time of the processor, so that a busy machine does not change it.
        self.browser.execute_cdp_cmd("Performance.enable", {"timeDomain": "threadTicks"})
        self.show(path)
        field = self.at("input[data-table=events]")
        field.send_keys("SCENE 07.wav")
        self.assertEqual(len(self.column("events", 0)), 250)
        worked = {row["name"]: row["value"] for row in self.browser.execute_cdp_cmd("Performance.getMetrics", {})["metrics"]}
        self.assertLess(worked["TaskDuration"], 4)  # the rule is 1 s until it can be used; this types twelve letters, too
        field.clear()
        field.send_keys(" ")
        self.at("#events th:nth-child(1) button").click()
        self.at("#events th:nth-child(1) button").click()
        self.assertEqual(self.column("events", 0)[0], "4999")
        shown = "return Array.from(document.querySelectorAll('#events tbody tr'))" \
                ".filter((row) => getComputedStyle(row).display !== 'none').length"
        first = self.browser.execute_script(shown)
        self.assertLess(first, 1000)
        self.browser.execute_script("document.querySelector('#events').parentElement.scrollTop = 1e6")
        WebDriverWait(self.browser, 10).until(lambda browser: browser.execute_script(shown) > first)
        self.at("button[data-all=events]").click()
        self.assertEqual(self.browser.execute_script(shown), 5000)
        self.show(path)
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": "print"})
        self.assertEqual(self.browser.execute_script(shown), 5000)
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": ""})
        self.assert_quiet()


if __name__ == "__main__":
    unittest.main()
