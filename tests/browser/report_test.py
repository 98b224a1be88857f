#!/usr/bin/env python3
"""Reports in a real browser: report_test.py QUELL SOURCE_FOLDER [FOLDER for screenshots]"""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

import browser

QUELL = SOURCES = SHOTS = None

PREFIXES = {"f": 1e-15, "p": 1e-12, "n": 1e-9, "u": 1e-6, "m": 1e-3, "": 1, "k": 1e3, "M": 1e6,
            "G": 1e9, "T": 1e12}
UNITS = ["bit/s", "V/s", "V", "s", "dB", "UI", "Hz", "ohm", ""]


def number(text):
    """The number that a text such as "12.5 ps from the start" begins with."""
    match = re.match(r"(-?[0-9.]+(?:e[-+]?[0-9]+)?)(?: (\S*))?", text)
    value, unit = float(match[1]), match[2] or ""
    for known in UNITS:
        if unit.endswith(known) and unit[:len(unit) - len(known)] in PREFIXES:
            return value * PREFIXES[unit[:len(unit) - len(known)]]
    return value


def at_pointer(value, pointer):
    for key in pointer.split("/")[1:]:
        value = value[int(key)] if isinstance(value, list) else value[key]
    return value


class Report(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.browser = browser.Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.__exit__()
        cls.folder.cleanup()

    def report(self, *arguments):
        """Path of a new report and what the command printed."""
        path = os.path.join(self.folder.name, "report.html")
        done = subprocess.run([QUELL, *arguments, "--html", path], check=True, text=True,
                              stdout=subprocess.PIPE)
        return path, done.stdout

    def run_report(self):
        return self.report("run", os.path.join(SOURCES, "examples/stripline_200mm.s4p"),
                           "--aggressor", "loss:30dB@2.5GHz", "--set", "de_emphasis=3.5",
                           "--noise", "2mV", "--json")

    def sweep_report(self):
        return self.report("sweep", "loss:8dB@2.5GHz", "loss:3dB@2.5GHz", "--set",
                           "de_emphasis=0:6:1", "--json")

    def keep_screenshot(self, name):
        if SHOTS:
            with open(os.path.join(SHOTS, name + ".png"), "wb") as file:
                file.write(self.browser.screenshot())

    def assert_quiet(self):
        self.assertEqual([], self.browser.complaints())
        self.assertEqual([], self.browser.requests())

    def test_all_looks_are_quiet_and_fit_the_window(self):
        for kind, make in (("run", self.run_report), ("sweep", self.sweep_report)):
            path, _ = make()
            self.assertLess(os.path.getsize(path), 1 << 20)
            for look, options in (("light", {}), ("dark", {"dark": True}),
                                  ("phone", {"width": 390, "height": 844}),
                                  ("still", {"scripts": False})):
                with self.subTest(kind=kind, look=look):
                    self.browser.open(path, **options)
                    self.keep_screenshot(f"{kind}_{look}")
                    self.assert_quiet()
                    wide, window = self.browser.evaluate(
                        "[document.scrollingElement.scrollWidth, innerWidth]")
                    self.assertLessEqual(wide, window)
        paper = "getComputedStyle(document.body).backgroundColor"
        self.browser.open(path)
        light = self.browser.evaluate(paper)
        self.browser.open(path, dark=True)
        self.assertNotEqual(light, self.browser.evaluate(paper))

    def test_static_pictures_are_drawn_without_scripts(self):
        path, _ = self.run_report()
        self.browser.open(path, scripts=False)
        ids = self.browser.evaluate("[...document.querySelectorAll('figure')].map(f => f.id)")
        self.assertLessEqual({"eye", "bathtub", "impulse-response", "step-response",
                              "pulse-response", "frequency-response"}, set(ids))
        for figure in ids:
            picture = f"#{figure} svg"
            box = self.browser.box(picture)
            shown = self.browser.screenshot(box)
            self.browser.evaluate(
                f"document.querySelectorAll('{picture} .line, {picture} image')"
                ".forEach(e => e.style.visibility = 'hidden')")
            without_curves = self.browser.screenshot(box)
            self.browser.evaluate(f"document.querySelector('{picture}').style.visibility = "
                                  "'hidden'")
            empty = self.browser.screenshot(box)
            self.assertEqual(3, len({shown, without_curves, empty}), figure)

    def test_live_plots_are_drawn_and_zoom(self):
        for make in (self.run_report, self.sweep_report):
            path, _ = make()
            self.browser.open(path)
            ids = self.browser.evaluate(
                "[...document.querySelectorAll('figure.plot')].map(f => f.id)")
            self.assertTrue(ids)
            for figure in ids:
                with self.subTest(figure=figure):
                    self.check_live_plot(figure)
            self.assert_quiet()

    def check_live_plot(self, figure):
        graph = f"document.getElementById('{figure}').dygraph"
        # The curves have a canvas of their own behind the one that shows the cursor; the grid is
        # fainter than any of them.
        drawn = self.browser.evaluate(f"""(canvas => {{
            const pixels = canvas.getContext('2d')
                .getImageData(0, 0, canvas.width, canvas.height).data;
            let count = 0;
            for (let i = 0; i < pixels.length; i += 4) {{
                const least = Math.min(pixels[i], pixels[i + 1], pixels[i + 2]);
                const most = Math.max(pixels[i], pixels[i + 1], pixels[i + 2]);
                if (pixels[i + 3] > 128 && most - least > 60) count++;
            }}
            return count;
        }})({graph}.hidden_)""")
        self.assertGreater(drawn, 100)
        names = self.browser.evaluate(
            f"document.querySelector('#{figure} .curves').textContent")
        self.assertTrue(names)

        self.browser.evaluate(f"document.getElementById('{figure}').scrollIntoView()")
        left, top, width, height = self.browser.evaluate(
            f"(r => [r.left, r.top, r.width, r.height])({graph}.canvas_.getBoundingClientRect())")
        ticks = (f"[...document.querySelectorAll('#{figure} .dygraph-axis-label-x')]"
                 ".map(l => l.textContent)")
        before, labels = self.browser.evaluate(f"[{graph}.xAxisRange(), {ticks}]")
        middle = top + 0.4 * height
        self.browser.drag([left + 0.4 * width, middle], [left + 0.7 * width, middle])
        after, new_labels = self.browser.evaluate(f"[{graph}.xAxisRange(), {ticks}]")
        self.assertLess(after[1] - after[0], 0.7 * (before[1] - before[0]))
        self.assertTrue(new_labels)
        self.assertNotEqual(labels, new_labels)

    def test_numbers_of_the_page_are_those_of_the_json(self):
        path, printed = self.run_report()
        self.browser.open(path)
        result = self.browser.evaluate("JSON.parse(document.getElementById('result').textContent)")
        self.assertEqual(json.loads(printed), result)
        path, printed = self.sweep_report()
        self.browser.open(path)
        points = self.browser.evaluate("JSON.parse(document.getElementById('result').textContent)")
        self.assertEqual([json.loads(line) for line in printed.splitlines()], points)

        for make, least in ((self.run_report, 20), (self.sweep_report, 28)):
            path, _ = make()
            self.browser.open(path)
            result = self.browser.evaluate(
                "JSON.parse(document.getElementById('result').textContent)")
            cells = self.browser.evaluate("[...document.querySelectorAll('[data-json]')]"
                                          ".map(c => [c.dataset.json, c.textContent])")
            self.assertGreaterEqual(len(cells), least)
            for pointer, text in cells:
                value = at_pointer(result, pointer)
                if isinstance(value, str):
                    self.assertEqual(value, text)
                else:
                    # Four digits or more are shown.
                    self.assertAlmostEqual(value, number(text), delta=5.1e-4 * abs(value),
                                           msg=pointer)

    def test_hostile_names_stay_text(self):
        name = os.path.join(self.folder.name, "<img src=x onerror=alert(1)>&\"'.csv")
        with open(name, "w") as file:
            file.write("time,<b>h</b></script><script>alert(2)</script>\n")
            for n in range(64):
                file.write(f"{n * 12.5e-12},{8e9 if n == 8 else 0}\n")
        path, _ = self.report("run", name, "--set", "de_emphasis=3.5")
        self.browser.open(path)
        self.assert_quiet()
        self.assertEqual([0, 0], self.browser.evaluate(
            "[document.images.length, document.getElementsByTagName('b').length]"))
        self.assertIn("<img src=x", self.browser.evaluate("document.body.textContent"))


if __name__ == "__main__":
    if not browser.find():
        print("skipped: chromium is not installed")
        sys.exit(browser.SKIPPED)
    QUELL, SOURCES = sys.argv[1:3]
    SHOTS = sys.argv[3] if len(sys.argv) > 3 else None
    unittest.main(argv=sys.argv[:1])
