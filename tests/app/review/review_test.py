"""The review page in a real browser: review_test.py VORLANE [unittest options].

Exits with 77, which says so, where there is no browser to be had.
"""

import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
import unittest

try:
    from PIL import Image, ImageChops, ImageDraw, ImageStat
    from selenium import webdriver
    from selenium.common.exceptions import WebDriverException
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.action_chains import ActionChains
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.wait import WebDriverWait
except ImportError as error:
    print(f"skipped: {error} (scripts/setup browser)")
    sys.exit(77)

VORLANE = os.path.abspath(sys.argv[1])
EVIL = "<img src=x onerror=window.acted=1>.pgm"
MISSING = 3000


def scan(degrees):
    """A light page with lines of words, turned by `degrees` on a dark ground."""
    page = Image.new("L", (900, 1080), 30)
    draw = ImageDraw.Draw(page)
    draw.rectangle((180, 180, 719, 899), 230)
    for line in range(20):
        for word in range(9 - line // 4):
            left = 220 + 50 * word + 7 * (line * word % 3)
            draw.rectangle((left, 220 + 24 * line, left + 34, 228 + 24 * line), 60)
    return page.rotate(-degrees, Image.Resampling.BICUBIC, fillcolor=30)


def start_browser(downloads):
    options = webdriver.ChromeOptions()
    for word in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                 "--window-size=1300,900"):
        options.add_argument(word)
    options.add_experimental_option("prefs", {"download.default_directory": downloads})
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)


class ReviewTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="vorlane-review-")
        os.chdir(self.folder)
        self.addCleanup(shutil.rmtree, self.folder)
        self.addCleanup(os.chdir, "/")
        self.browser = start_browser(self.folder)
        self.addCleanup(self.browser.quit)

    def vorlane(self, *words, exit=0):
        done = subprocess.run([VORLANE, *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=120, check=False)
        self.assertEqual(done.returncode, exit, done.stderr.decode())
        return done

    def open(self, journal, exit=0):
        self.vorlane("review", journal, "-o", "review/", "--overwrite", exit=exit)
        self.browser.get(f"file://{self.folder}/review/index.html")
        self.assert_calm()

    def assert_calm(self):
        """The page has met no error, nothing was refused, and no name has acted."""
        self.assertEqual(self.browser.get_log("browser"), [])
        self.assertIsNone(self.browser.execute_script("return window.acted"))

    def find(self, selector):
        return self.browser.find_element(By.CSS_SELECTOR, selector)

    def titles(self):
        """Of the tiles in sight, in their order."""
        tiles = self.browser.find_elements(By.CSS_SELECTOR, ".tile:not([hidden])")
        tiles.sort(key=lambda tile: int(tile.get_attribute("aria-posinset")))
        return [tile.find_element(By.TAG_NAME, "h3").text for tile in tiles]

    def press(self, *keys):
        ActionChains(self.browser).send_keys(*keys).perform()

    def wait(self, until):
        return WebDriverWait(self.browser, 20).until(lambda browser: until())

    def save(self):
        """Saves the decisions and returns them by file and page."""
        name = "found.decisions.jsonl"
        if os.path.exists(name):
            os.remove(name)
        self.press("s")
        self.wait(lambda: os.path.exists(name) and os.path.getsize(name) > 0)
        self.press(Keys.ENTER)
        with open(name, encoding="utf-8") as file:
            lines = [json.loads(line) for line in file]
        return {(line["file"], line["page"]): line for line in lines}

    def draw(self):
        scan(3).save("a.pgm")
        scan(-2).save(EVIL)
        Image.new("L", (900, 1080), 30).save("dark.pgm")
        scan(1).save("two.tiff", save_all=True, append_images=[scan(0)])
        names = ["a.pgm", EVIL, "dark.pgm", "two.tiff"]
        found = self.vorlane("detect", *names, "--json", exit=1).stdout.decode()
        evil = '{"code":"evil","words":"</script><script>window.acted=1</script>"}'
        with open("found.jsonl", "w", encoding="utf-8") as file:
            file.write(found.replace('"reasons":[', f'"reasons":[{evil},', 1))

    def test_decides_what_apply_makes(self):
        self.draw()
        self.open("found.jsonl")
        self.assertEqual(self.titles(), ["dark.pgm", "a.pgm", EVIL, "two.tiff [1]", "two.tiff [2]"])
        self.assertIn("</script>", self.find(".tile[aria-posinset='2'] .why").text)

        # The folder can hold the doubtful alone, and is not replaced unasked.
        few = ("review", "found.jsonl", "-o", "few/", "--at-most", "doubtful")
        self.vorlane(*few)
        self.assertEqual(os.listdir("few/pictures"), ["000001.jpg"])
        self.assertIn(b"--overwrite", self.vorlane(*few, exit=2).stderr)

        # Filters let through what they say, and count it.
        self.find("[data-word=refused]").click()
        self.assertEqual(self.titles(), ["dark.pgm"])
        self.find("#clear").click()
        self.press("two")
        self.assertEqual(self.titles(), ["two.tiff [1]", "two.tiff [2]"])
        self.assertEqual(self.find("#shown").text, "2 of 5 pages")
        self.find("#clear").click()

        # By keys alone: leave the second page, leave the third and take that back.
        self.press(Keys.ESCAPE)
        self.find(".tile[aria-posinset='1']").click()
        self.press("a", Keys.ARROW_RIGHT, Keys.ARROW_RIGHT, "l", "l", "u", Keys.ARROW_LEFT,
                   Keys.ARROW_LEFT, Keys.ENTER)
        self.assertEqual(self.find("#page-title").text, "a.pgm")

        # A corner is dragged and the angle set; what is shown is what is made.
        self.wait(lambda: self.find("#result").is_displayed())
        handle = self.find("[aria-label^='Lower right corner']")
        ActionChains(self.browser).drag_and_drop_by_offset(handle, -90, -60).perform()
        self.press(Keys.TAB, Keys.ARROW_LEFT)
        self.find("#angle").send_keys(Keys.CONTROL + "a", Keys.NULL, "-2.4", Keys.ENTER)
        self.find("#turn-back").click()
        self.assertEqual(self.find("#angle").get_property("value"), "-2.45")
        frame = self.find("#result-frame")
        size = [int(frame.get_attribute(f"data-{side}")) for side in ("width", "height")]
        self.browser.execute_script("document.getElementById('status').hidden = true")
        self.find("#result").screenshot("preview.png")

        saved = self.save()
        self.assertEqual(sorted(saved), [(EVIL, 1), ("a.pgm", 1)])
        self.assertEqual(saved[EVIL, 1]["decision"], "leave")
        report = self.vorlane("apply", "found.jsonl", "--decisions", "found.decisions.jsonl", "-o",
                              "out/", "--json").stdout.decode()
        made = {(line["file"], line["page"]): line for line in map(json.loads, report.splitlines())}
        self.assertEqual([made["a.pgm", 1]["newWidth"], made["a.pgm", 1]["newHeight"]], size)
        self.assertAlmostEqual(made["a.pgm", 1]["angle"], -2.45, delta=0.01)
        self.assertEqual(made[EVIL, 1]["result"], "left")
        self.assertEqual(made["two.tiff", 2]["result"], "straightened")
        self.assert_looks_like("preview.png", "out/a.pgm")

        # The browser keeps it all, and an input that changes is refused by its name.
        self.browser.refresh()
        self.wait(lambda: self.find("#angle").get_property("value") == "-2.45")
        scan(4).save("a.pgm")
        refused = self.vorlane("apply", "found.jsonl", "--decisions", "found.decisions.jsonl", "-o",
                               "again/", exit=3)
        self.assertIn(b"a.pgm: was changed", refused.stderr)
        self.open("found.jsonl", exit=3)
        self.assertIn("changed since", self.find(".tile[aria-posinset='2'] .absence").text)
        self.assert_calm()

    def assert_looks_like(self, preview, made):
        """The preview is a smaller picture of the page: on average within four levels of it, and not
        when it is turned by as little as half a degree."""
        with Image.open(preview) as picture:
            shown = picture.convert("L")
        with Image.open(made) as picture:
            page_made = picture.copy()

        def difference(degrees):
            turned = page_made.rotate(degrees, Image.Resampling.BICUBIC, fillcolor=255)
            small = turned.resize(shown.size, Image.Resampling.BILINEAR)
            return ImageStat.Stat(ImageChops.difference(small, shown)).mean[0]

        self.assertLess(difference(0), 4)
        self.assertGreater(min(difference(-0.5), difference(0.5)), 1.5 * difference(0))

    def test_previews_have_the_sizes_that_apply_makes(self):
        """Also at the least turn, at quarter turns, where a cut reaches beyond the picture, and of
        pages that were turned by quarters first."""
        rng = random.Random(5)
        turns = [0, 0.0499, 0.05, -0.05, 90, -90, 180, 44.9]
        turns += [rng.uniform(-12, 12) for _ in range(24)]
        sizes = [(300 + number % 3, 360 + number % 2) for number in range(len(turns))]
        pages = [Image.new("L", size, 200) for size in sizes]
        pages[0].save("box.tiff", save_all=True, append_images=pages[1:])
        found = self.vorlane("detect", "box.tiff", "--rotate", "90", "--json", exit=1).stdout
        with open("found.jsonl", "wb") as file:
            file.write(found)
        with open("kept.jsonl", "w", encoding="utf-8") as file:
            for number, turn in enumerate(turns, 1):
                left, top = rng.uniform(-60, 120), rng.uniform(-60, 120)
                right, bottom = rng.uniform(180, 360), rng.uniform(200, 420)
                corners = [[left, top], [right, top], [right, bottom], [left, bottom]]
                line = {"file": "box.tiff", "page": number, "angle": turn,
                        "corners": corners if number % 4 else None}
                file.write(json.dumps(line) + "\n")
        self.open("found.jsonl")
        self.find("#load-file").send_keys(os.path.abspath("kept.jsonl"))
        self.wait(lambda: self.find("#save-count").text == str(len(turns)))
        shown = []
        for number in range(1, len(turns) + 1):
            self.browser.execute_script(f"location.hash = 'page={number}'")
            self.wait(lambda: self.find("#page-title").text == f"box.tiff [{number}]")
            shown.append([int(self.find("#result-frame").get_attribute(f"data-{side}"))
                          for side in ("width", "height")])
        self.assertEqual(len(self.save()), len(turns))
        report = self.vorlane("apply", "found.jsonl", "--decisions", "found.decisions.jsonl", "-o",
                              "out/", "--json").stdout.decode().splitlines()
        made = [[line["newWidth"], line["newHeight"]] for line in map(json.loads, report)]
        self.assertEqual(shown, made)

    def test_keeps_few_tiles_of_many_pages(self):
        with open("found.jsonl", "w", encoding="utf-8") as file:
            for number in range(MISSING):
                line = {"file": f"gone-{number}.pgm", "page": 1, "pages": 1, "width": 90,
                        "height": 90, "result": "measured", "confidence": "sure", "angle": 0,
                        "corners": None, "evidence": {}, "reasons": []}
                file.write(json.dumps(line) + "\n")
        self.open("found.jsonl", exit=3)
        self.press(Keys.END)
        self.wait(lambda: f"gone-{MISSING - 1}.pgm" in self.titles())
        self.assertLess(len(self.browser.find_elements(By.CSS_SELECTOR, ".tile")), 100)
        self.press("a")  # there is nothing to see, so nothing is decided
        self.assertFalse(self.find("#save").is_enabled())


def has_browser():
    try:
        if shutil.which("chromedriver") is None:
            raise WebDriverException("no chromedriver")
        with tempfile.TemporaryDirectory() as folder:
            start_browser(folder).quit()
    except WebDriverException as error:
        print(f"skipped: no browser starts here (scripts/setup browser): {error.msg}")
        return False
    return True


if __name__ == "__main__":
    if not has_browser():
        sys.exit(77)
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
