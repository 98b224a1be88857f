#!/usr/bin/env python3
"""Pages of quell view in a real browser: view_test.py QUELL SOURCE_FOLDER [FOLDER for screenshots]"""

import os
import subprocess
import sys
import tempfile
import unittest

import browser

QUELL = SHOTS = None

MODEL = """[Model] {name}
Model_type I/O
Vinl = 1
Vinh = 2
Vmeas = 1.5
Rref = 50
Vref = 0
C_comp 1p 1p 1p
[Voltage Range] 3.3 3.0 3.6
[Pulldown]
-3.3 -66m -60m -72m
0 0 0 0
1 40m NA 44m
2 20m 18m 22m
6.6 132m 120m 144m
[Pullup]
-3.3 132m 120m 144m
0 0 0 0
6.6 -264m -240m -288m
[Ramp]
dV/dt_r 1.32/1n 1.2/1n 1.44/1n
dV/dt_f 0.99/1n 0.9/1n 1.08/1n
[Rising Waveform]
R_fixture = 50
V_fixture = 0
0 0 0 0
1n 1.1 1.0 1.2
2n 2.2 2.0 2.4
3n 2.2 2.0 2.4
"""

NAMES = ["a<script>alert(1)</script>", "b\"'&", "c", "d"]


class View(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.browser = browser.Browser()
        cls.file = os.path.join(cls.folder.name, "t.ibs")
        with open(cls.file, "w") as file:
            file.write("[IBIS Ver] 4.2\n[File Name] t.ibs\n[File Rev] 1\n[Component] p<i>\n"
                       "[Manufacturer] m\n[Package]\nR_pkg 0 NA NA\nL_pkg 1n NA NA\n"
                       "C_pkg 1p NA NA\n[Pin] signal_name model_name R_pin L_pin C_pin\n")
            file.writelines(f"{k + 1} s {name}\n" for k, name in enumerate(NAMES))
            file.writelines(MODEL.format(name=name) for name in NAMES)
            file.write("[End]\n")

    @classmethod
    def tearDownClass(cls):
        cls.browser.__exit__()
        cls.folder.cleanup()

    def page(self, *arguments):
        path = os.path.join(self.folder.name, "t.html")
        subprocess.run([QUELL, "view", self.file, "-o", path, *arguments], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return path

    def assert_quiet(self):
        self.assertEqual([], self.browser.complaints())
        self.assertEqual([], self.browser.requests())

    def keep_screenshot(self, name):
        if SHOTS:
            with open(os.path.join(SHOTS, name + ".png"), "wb") as file:
                file.write(self.browser.screenshot())

    def test_all_looks_are_quiet_and_fit_the_window(self):
        path = self.page("--model", NAMES[0])
        for look, options in (("light", {}), ("dark", {"dark": True}),
                              ("phone", {"width": 390, "height": 844}), ("still", {"scripts": False})):
            with self.subTest(look=look):
                self.browser.open(path, **options)
                self.keep_screenshot("view_" + look)
                self.assert_quiet()
                wide, window = self.browser.evaluate(
                    "[document.scrollingElement.scrollWidth, innerWidth]")
                self.assertLessEqual(wide, window)
        # Three states, two tables and a waveform; the pulldown shows where it falls.
        empty = self.browser.evaluate(
            "[...document.querySelectorAll('figure.plot')]"
            ".filter(f => !f.querySelector('.still .line[d*=L]')).map(f => f.id)")
        self.assertEqual([], empty)
        self.assertEqual(6 - 1, self.browser.evaluate(
            "document.querySelectorAll('figure.plot').length"))
        self.assertTrue(self.browser.evaluate(
            "!!document.querySelector('#m1-pulldown .still .band.warning')"))

    def test_folds_open_with_live_plots_that_zoom(self):
        self.browser.open(self.page())
        live = "[...document.querySelectorAll('figure.plot')].filter(f => f.dygraph).length"
        self.assertEqual(0, self.browser.evaluate(live))
        self.browser.evaluate("document.querySelector('a[href=\"#m2\"]').click()")
        self.wait_for("document.querySelector('#m2-low').dygraph")
        self.assertEqual(5, self.browser.evaluate(live))
        graph = "document.getElementById('m2-low').dygraph"
        self.browser.evaluate("document.getElementById('m2-low').scrollIntoView()")
        left, top, width, height = self.browser.evaluate(
            f"(r => [r.left, r.top, r.width, r.height])({graph}.canvas_.getBoundingClientRect())")
        before = self.browser.evaluate(f"{graph}.xAxisRange()")
        self.browser.drag((left + 0.4 * width, top + 0.5 * height),
                          (left + 0.7 * width, top + 0.5 * height))
        after = self.browser.evaluate(f"{graph}.xAxisRange()")
        self.assertLess(after[1] - after[0], 0.5 * (before[1] - before[0]))
        self.assert_quiet()

    def wait_for(self, condition):
        """Lets the page's own events happen first."""
        self.browser.call("Runtime.evaluate", awaitPromise=True, expression=f"""
            new Promise(done => {{
                const look = () => {condition} ? done() : requestAnimationFrame(look);
                look();
            }})""")


if __name__ == "__main__":
    if not browser.find():
        print("skipped: chromium is not installed")
        sys.exit(browser.SKIPPED)
    QUELL = sys.argv[1]
    SHOTS = sys.argv[3] if len(sys.argv) > 3 else None
    unittest.main(argv=sys.argv[:1])
