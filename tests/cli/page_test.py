#!/usr/bin/env python3
"""Looks at the page that `quillstead log --html` writes, in headless Chromium, at the width of a phone
and of a desk, bright and dark. QUILLSTEAD names the program.

    page_test.py [--pictures DIRECTORY]     keeps what it saw as pictures
"""

import argparse
import base64
import collections
import datetime
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import log_test

PICTURES = None
CHROMIUM = shutil.which("chromium") or shutil.which("google-chrome")
FLAGS = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--disable-dev-shm-usage", "--remote-debugging-pipe"]


class Browser:
    """Chromium, spoken to over two pipes in its debugging protocol."""

    def __init__(self, profile):
        to_browser, ours = os.pipe()
        theirs, from_browser = os.pipe()

        def put_in_place():  # descriptors 3 and 4 are what it looks for
            a, b = os.dup(to_browser), os.dup(from_browser)
            os.dup2(a, 3)
            os.dup2(b, 4)

        self.process = subprocess.Popen(
            [CHROMIUM, *FLAGS, f"--user-data-dir={profile}", "about:blank"], preexec_fn=put_in_place,
            close_fds=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, "HOME": profile, "TZ": "UTC"})
        os.close(to_browser)
        os.close(from_browser)
        self.writing = os.fdopen(ours, "wb")
        self.reading = os.fdopen(theirs, "rb")
        self.number = 0
        self.session = None
        self.events = collections.defaultdict(list)
        self.buffer = b""
        target = next(t for t in self.call("Target.getTargets")["targetInfos"] if t["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=target["targetId"], flatten=True)["sessionId"]

    def receive(self):
        while b"\0" not in self.buffer:
            piece = os.read(self.reading.fileno(), 65536)
            if not piece:
                raise RuntimeError("the browser is gone")
            self.buffer += piece
        message, _, self.buffer = self.buffer.partition(b"\0")
        return json.loads(message)

    def call(self, method, **parameters):
        self.number += 1
        request = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            request["sessionId"] = self.session
        self.writing.write(json.dumps(request).encode() + b"\0")
        self.writing.flush()
        while True:
            message = self.receive()
            if message.get("id") == self.number:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']}")
                return message["result"]
            if "method" in message:
                self.events[message["method"]].append(message["params"])

    def show(self, url):
        self.call("Page.navigate", url=url)
        while not self.events.pop("Page.loadEventFired", None):
            message = self.receive()
            self.events[message.get("method")].append(message.get("params"))

    def evaluate(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        return result["result"].get("value")

    def close(self):
        self.process.kill()
        self.process.wait()
        self.writing.close()
        self.reading.close()


@unittest.skipUnless(CHROMIUM, "there is no Chromium")
class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.stage = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        cls.browser = Browser(cls.stage.name + "/profile")
        for domain in ("Page", "Runtime", "Log", "Network"):
            cls.browser.call(domain + ".enable")

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.stage.cleanup()

    def page_of(self, lines, days, name="log <b>&amp;\"quoted\" ü"):
        log = f"{self.stage.name}/{name}"
        log_test.make_log(log, lines, seed=lines, days=days)
        page = f"{self.stage.name}/page-{lines}-{days}.html"
        subprocess.run([log_test.PROGRAM, "log", "--html", page], check=True, stdout=subprocess.DEVNULL,
                       env={"HOME": self.stage.name, "QUILLSTEAD_HOOK_LOG": log})
        return page, log

    def look(self, page, width, scheme):
        browser = self.browser
        browser.events.clear()
        browser.call("Emulation.setDeviceMetricsOverride", width=width, height=844, deviceScaleFactor=1,
                     mobile=width < 600)
        browser.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        browser.show("file://" + page)
        if PICTURES:
            image = browser.call("Page.captureScreenshot", captureBeyondViewport=True)
            pathlib.Path(PICTURES, f"{pathlib.Path(page).stem}-{width}-{scheme}.png").write_bytes(
                base64.b64decode(image["data"]))

    def assert_sound(self, page):
        """No complaint of the browser, and nothing asked for but the page and its empty icon."""
        self.browser.evaluate("0")  # everything before this was told by now
        events = self.browser.events
        self.assertEqual(events["Log.entryAdded"] + events["Runtime.consoleAPICalled"]
                         + events["Runtime.exceptionThrown"], [])
        asked = {event["request"]["url"] for event in events["Network.requestWillBeSent"]}
        self.assertEqual(asked - {"data:,"}, {pathlib.Path(page).as_uri()})

    def count(self, selector):
        return self.browser.evaluate(f"document.querySelectorAll({json.dumps(selector)}).length")

    def test_has_a_mark_for_each_figure(self):
        for lines, days in [(3000, 40), (1, 1), (2000, 300), (2000, 1500)]:
            with self.subTest(lines=lines, days=days):
                page, log = self.page_of(lines, days)
                self.look(page, 390, "light")
                self.assert_sound(page)
                figures = log_test.expected(log)
                with open(log, encoding="latin-1") as file:
                    dates = {match[1] for match in map(log_test.PATTERN.fullmatch, file.read().split("\n")[:-1])
                             if match and "-13-" not in match[1] and match[1] != "2026-11-16"}
                self.assertLessEqual(abs(self.count("circle.median") - min(len(dates), 1000)), 1)
                self.assertEqual(self.count("circle.median"), self.count("circle.p95"))
                self.assertEqual(self.count("rect.runs"), 12)
                kinds = {kind for slot in figures["slots"].values() for kind in slot["misses"]}
                self.assertEqual(self.count("rect.miss"), len(kinds))
                self.assertEqual(self.count("table"), len(figures["slots"]))
                self.assertEqual(self.count("tr"), sum(2 + len(slot["stages"]) for slot in figures["slots"].values()))
                self.assertEqual(self.browser.evaluate("document.querySelector('p').textContent"), log)
                self.assertEqual(self.count("script, link[href^=http], [src], b"), 0)

    def test_points_lie_where_their_figures_are(self):
        page, log = self.page_of(3000, 40)
        self.look(page, 390, "light")
        runs = collections.defaultdict(list)
        with open(log, encoding="latin-1") as file:
            for text in file.read().split("\n")[:-1]:
                match = log_test.PATTERN.fullmatch(text)
                stages = [int(v) for v in re.findall(r"[a-z]+ (-?\d+)", match[6])] if match else []
                if match and "-13-" not in match[1] and sum(stages) + int(match[7]) == int(match[3]):
                    runs[match[1]].append(int(match[3]))
        grid = self.browser.evaluate("[...document.querySelector('svg').querySelectorAll('line.grid')].map(l =>"
                                     " [l.y1.baseVal.value, Number(l.nextElementSibling.textContent.replaceAll(',', ''))])")
        zero, (top, most) = min(grid, key=lambda line: line[1])[0], max(grid, key=lambda line: line[1])
        dates = sorted(runs)
        first, last = (datetime.date.fromisoformat(dates[i]) for i in (0, -1))
        for name, percent in (("median", 50), ("p95", 95)):
            points = self.browser.evaluate(f"[...document.querySelectorAll('circle.{name}')].map(c =>"
                                           " [c.textContent, c.cx.baseVal.value, c.cy.baseVal.value])")
            self.assertEqual([point[0][:10] for point in points], dates)
            begin, end = points[0][1], points[-1][1]
            for told, x, y in points:
                value = log_test.nearest_rank(runs[told[:10]], percent)
                self.assertIn(f", {len(runs[told[:10]]):,} prompts: ", told)
                self.assertTrue(told.endswith(f" {value:,} ms"), told)
                self.assertAlmostEqual(y, zero - (zero - top) * value / most, delta=0.11)
                part = (datetime.date.fromisoformat(told[:10]) - first) / (last - first)
                self.assertAlmostEqual(x, begin + (end - begin) * part, delta=0.11)

    def test_a_run_without_end_is_drawn_as_well(self):
        log = f"{self.stage.name}/endless"
        most = 10 ** 17
        pathlib.Path(log).write_text(f"2026-11-16T03:38:33.123+00:00 {most}ms rules=1 | parse {most} residual 0\n" * 3)
        subprocess.run([log_test.PROGRAM, "log", "--html", log + ".html"], check=True, stdout=subprocess.DEVNULL,
                       env={"HOME": self.stage.name, "QUILLSTEAD_HOOK_LOG": log})
        self.look(log + ".html", 390, "light")
        self.assert_sound(log + ".html")
        self.assertEqual(self.count("circle.median"), 1)
        places = self.browser.evaluate("[...document.querySelectorAll('circle')].map(c => c.cy.baseVal.value)")
        self.assertTrue(all(0 <= y <= 190 for y in places), places)
        self.assertLess(self.count("line.grid"), 30)

    def test_bars_are_as_long_as_what_they_count(self):
        page, log = self.page_of(3000, 40)
        self.look(page, 390, "light")
        bars = self.browser.evaluate("[...document.querySelectorAll('rect.runs')].map("
                                     "r => [r.textContent, r.height.baseVal.value])")
        counts = [int(title.rpartition(": ")[2].replace(",", "")) for title, _ in bars]
        with open(log, encoding="latin-1") as file:
            own = [match for match in map(log_test.PATTERN.fullmatch, file.read().split("\n")[:-1]) if match]
        self.assertLess(abs(sum(counts) - len(own)), 100)  # lines whose stages do not make up the whole
        self.assertEqual(sum(counts), sum(slot["prompts"] for slot in log_test.expected(log)["slots"].values()))
        for count, (_, height) in zip(counts, bars):
            self.assertAlmostEqual(height, bars[counts.index(max(counts))][1] * count / max(counts), delta=0.2)

    def test_is_readable_on_a_phone_and_on_a_desk(self):
        page, _ = self.page_of(3000, 40)
        for width in (390, 1200):
            for scheme in ("light", "dark"):
                with self.subTest(width=width, scheme=scheme):
                    self.look(page, width, scheme)
                    self.assert_sound(page)
                    self.assertEqual(self.browser.evaluate("document.documentElement.scrollWidth"),
                                     self.browser.evaluate("document.documentElement.clientWidth"))
                    smallest = self.browser.evaluate(
                        "Math.min(...[...document.querySelectorAll('svg text')].map(t =>"
                        " parseFloat(getComputedStyle(t).fontSize) * t.getScreenCTM().a))")
                    self.assertGreaterEqual(smallest, 9)
                    outside = self.browser.evaluate(
                        "[...document.querySelectorAll('svg text')].filter(t => {"
                        " const r = t.getBoundingClientRect(), s = t.ownerSVGElement.getBoundingClientRect();"
                        " return r.left < s.left - 1 || r.right > s.right + 1 }).map(t => t.textContent)")
                    self.assertEqual(outside, [])
                    overlapping = self.browser.evaluate(
                        "[...document.querySelectorAll('svg')].flatMap(s => { const all = [...s.querySelectorAll('text')]"
                        ".map(t => [t.textContent, t.getBoundingClientRect()]); return all.flatMap(([n, a], i) =>"
                        " all.slice(i + 1).filter(([m, b]) => a.left < b.right && b.left < a.right && a.top + 3 < b.bottom"
                        " && b.top + 3 < a.bottom).map(([m]) => n + ' / ' + m)) })")
                    self.assertEqual(overlapping, [])
                    self.assert_contrast(scheme)

    def assert_contrast(self, scheme):
        def brightness(selector, which):
            colour = self.browser.evaluate(f"getComputedStyle(document.querySelector('{selector}')).{which}")
            channels = [int(part) / 255 for part in colour[4:-1].split(", ")]
            linear = [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in channels]
            return sum(weight * c for weight, c in zip((0.2126, 0.7152, 0.0722), linear))

        paper = brightness("section", "backgroundColor")
        self.assertEqual(paper > 0.5, scheme == "light")
        for selector, which, least in [("h2", "color", 7), ("svg text", "fill", 4.5), ("circle.median", "fill", 3),
                                       ("circle.p95", "fill", 3), ("rect.runs", "fill", 3), ("rect.miss", "fill", 3)]:
            ink = brightness(selector, which)
            self.assertGreaterEqual((max(ink, paper) + 0.05) / (min(ink, paper) + 0.05), least, selector)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--pictures")
    options, rest = parser.parse_known_args()
    PICTURES = options.pictures
    unittest.main(argv=[sys.argv[0], *rest])
