#!/usr/bin/env python3
"""Uses the page as a user does, in headless Chromium: types, clicks, stops, reloads, on a desk and a
phone; and the npm package in a page of its own.

    check_page.py SITE PACKAGE [PICTURES]

Nothing leaves the machine, nothing is said on the console. With a third argument pictures of the
page are left there to be looked at. tools/web.sh page runs this.
"""

import functools
import http.server
import os
import pathlib
import sys
import threading
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "report"))
from browser import Browser  # noqa: E402

SITE = PACKAGE = PICTURES = None
WIDTHS = (1280, 390)
KEYS = {"Enter": 13, "Tab": 9, "Escape": 27, "ArrowUp": 38, "ArrowDown": 40, "c": 67}
SMALL = """[...document.querySelectorAll('header button, form button, #examples button')].filter(
  e => e.getBoundingClientRect().height < 44).map(e => e.textContent)"""
NAMELESS = """[...document.querySelectorAll('button, textarea, iframe, img')].filter(
  e => !(e.textContent || e.title || e.alt || e.labels?.length)).map(e => e.outerHTML)"""


class Server(http.server.ThreadingHTTPServer):
    """Serves a folder on a port of its own."""

    class Handler(http.server.SimpleHTTPRequestHandler):
        def log_message(self, *_):
            pass

    def __init__(self, folder):
        super().__init__(("127.0.0.1", 0), functools.partial(self.Handler, directory=folder))
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def end(self):
        self.shutdown()
        self.server_close()

    def address(self, rest=""):
        return f"http://127.0.0.1:{self.server_port}/{rest}"


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server, cls.browser = Server(SITE), Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.server.end()

    def open(self, rest="", width=1280, dark=False):
        self.browser.call("Emulation.setDeviceMetricsOverride", width=width, height=844,
                          deviceScaleFactor=1, mobile=width < 600)
        self.browser.call("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.browser.call("Page.navigate", url="about:blank")
        self.browser.events = []
        self.browser.call("Page.navigate", url=self.server.address(rest))
        self.ready()

    def wait_for(self, expression, seconds=60):
        end = time.monotonic() + seconds
        while not self.browser.evaluate(expression):
            if time.monotonic() > end:
                self.fail(f"in vain: {expression}; the page says {self.log()}")
            time.sleep(0.05)

    def ready(self, seconds=60):
        self.wait_for("document.body?.dataset.state === 'ready'", seconds)

    def log(self):
        return self.browser.evaluate("document.getElementById('log')?.innerText")

    def input(self):
        return self.browser.evaluate("document.getElementById('input').value")

    def key(self, key, modifiers=0):
        for kind in ("rawKeyDown", "keyUp"):
            self.browser.call("Input.dispatchKeyEvent", type=kind, key=key, modifiers=modifiers,
                              windowsVirtualKeyCode=KEYS[key])

    def type(self, text):
        self.browser.call("Input.insertText", text=text)

    def enter(self, text, seconds=60):
        self.type(text)
        self.key("Enter")
        time.sleep(0.1)
        self.ready(seconds)

    def click(self, text):
        box = self.browser.evaluate(
            "(() => { const e = [...document.querySelectorAll('button')].find(b => b.textContent ==="
            f" {text!r}); e.scrollIntoView(); const r = e.getBoundingClientRect();"
            "return [r.x + r.width / 2, r.y + r.height / 2]; })()")
        for kind in ("mousePressed", "mouseReleased"):
            self.browser.call("Input.dispatchMouseEvent", type=kind, x=box[0], y=box[1],
                              button="left", clickCount=1)

    def end_quietly(self):
        self.assertEqual([u for u in self.browser.requests()
                          if not u.startswith((self.server.address(), "blob:"))], [])
        self.assertEqual(self.browser.complaints(), [])

    def picture(self, name):
        if PICTURES:
            os.makedirs(PICTURES, exist_ok=True)
            self.browser.screenshot(os.path.join(PICTURES, name + ".png"))

    def test_statements_carets_history_completion(self):
        self.open()
        self.enter("rand(1,3)")
        self.assertIn("0.814724  0.905792  0.126987", self.log())  # published
        self.enter("rand(1,3,'dubble')")
        self.assertIn("~", self.browser.evaluate("document.querySelector('.caret').textContent"))
        self.type("for i = 1:2")
        self.key("Enter")
        self.wait_for("document.getElementById('input').value.endsWith('\\n')")
        self.enter("print(i*10)\nend")
        self.assertIn("10\n20", self.log())
        self.key("ArrowUp")
        self.assertEqual(self.input(), "for i = 1:2\nprint(i*10)\nend")
        self.key("c", modifiers=2)
        self.assertEqual(self.input(), "")
        self.type("x = randp")
        self.key("Tab")
        self.wait_for("document.getElementById('input').value === 'x = randperm'")
        self.type("(3); rand")
        self.key("Tab")
        self.wait_for("!document.getElementById('words').hidden")
        self.click("randi")
        self.assertEqual(self.input(), "x = randperm(3); randi")
        # The way out for a keyboard.
        self.key("Escape")
        self.key("Tab")
        self.assertNotEqual(self.browser.evaluate("document.activeElement.id"), "input")
        self.end_quietly()

    def test_stop_keeps_what_was_before(self):
        self.open()
        self.enter("s = RandStream('philox','Seed',7); x = rand(s,1,2);")
        self.type("while true, end")
        self.key("Enter")
        self.wait_for("document.body.dataset.state === 'running'")
        self.click("Stop")
        self.ready()
        self.enter("x, rand(s)")
        told = self.log()
        self.open()
        self.enter("s = RandStream('philox','Seed',7); x = rand(s,1,2)")
        self.enter("rand(s)")
        self.assertEqual(told.split("x, rand(s)")[1].split(), self.log().split("rand(s,1,2)")[1]
                         .replace("> rand(s)", "").split())
        self.end_quietly()

    def test_link_and_reload_give_the_same(self):
        self.open()
        self.enter("a = randn(1,4) % \u00e9")
        self.enter("nonsense(")
        self.key("c", modifiers=2)
        self.enter("a*2")
        before = self.log()
        self.click("Copy link")
        self.wait_for("location.hash.startsWith('#s=')")
        fragment = self.browser.evaluate("location.hash")
        self.open(fragment)
        self.wait_for("document.querySelectorAll('#log section').length === 2")
        self.ready()
        self.assertEqual(self.log().split("The link")[0].strip(), before.strip())
        self.key("ArrowUp")  # kept from before the reload
        self.assertEqual(self.input(), "a*2")
        self.open("#s=broken")
        self.assertEqual(self.log().strip(), "")
        self.end_quietly()

    def test_pictures_at_both_widths(self):
        for width in WIDTHS:
            for dark in (False, True):
                self.open(width=width, dark=dark)
                for example in ("First numbers", "A histogram", "A random walk"):
                    self.click(example)
                    time.sleep(0.2)
                    self.ready()
                self.wait_for("document.querySelectorAll('figure img').length === 2")
                self.enter("rand(2,3,'dubble')")
                self.assertEqual(self.browser.evaluate(NAMELESS), [])
                self.assertLessEqual(self.browser.evaluate("document.documentElement.scrollWidth"), width)
                if width < 600:
                    self.assertEqual(self.browser.evaluate(SMALL), [])
                self.picture(f"page-{width}-{'dark' if dark else 'light'}")
        self.end_quietly()

    def test_doctor_and_report(self):
        self.open()
        begun = time.monotonic()
        self.click("The same as everywhere?")
        self.wait_for("document.getElementById('log').innerText.includes('hashes in')", 120)
        self.assertIn("The same numbers as everywhere:", self.log())
        print(f"doctor: {time.monotonic() - begun:.1f} s", file=sys.stderr)
        self.ready()
        self.click("A generator on a page")
        self.wait_for("!!document.querySelector('figure.page iframe')", 120)
        self.ready()
        self.picture("report")
        self.end_quietly()


class PackageTest(unittest.TestCase):
    def test_a_page_draws_what_the_others_draw(self):
        self.assertTrue(os.path.isdir(PACKAGE), "tools/web.sh package comes first")
        server, browser = Server(PACKAGE), Browser()
        try:
            browser.call("Page.navigate", url=server.address("README.md"))
            browser.wait("Page.loadEventFired")
            result = browser.call(
                "Runtime.evaluate", awaitPromise=True, returnByValue=True, expression=f"""(async () => {{
                  const {{stream}} = await import('{server.address("index.js")}');
                  const s = await stream('mt19937ar');
                  return [s.uniform(), ...s.uniform(2)]; }})()""")["result"]
            self.assertEqual(result["value"], [0.81472368639317894, 0.90579193707561922,
                                               0.12698681629350606])
        finally:
            browser.close()
            server.end()


if __name__ == "__main__":
    SITE, PACKAGE, *rest = sys.argv[1:]
    PICTURES = rest[0] if rest else None
    unittest.main(argv=sys.argv[:1], verbosity=2)
