"""A headless Chromium, spoken to over a pipe in its developer protocol; standard library only."""

import base64
import json
import os
import shutil
import subprocess
import tempfile


class Browser:
    def __init__(self, program="chromium"):
        self.profile = tempfile.mkdtemp()
        # The browser reads commands from descriptor 3 and writes to 4.
        self.command, self.answer = os.pipe(), os.pipe()
        redirect = f"exec 3<&{self.command[0]} 4>&{self.answer[1]}; exec \"$@\""
        self.process = subprocess.Popen(
            ["bash", "-c", redirect, "bash", program, "--headless", "--no-sandbox",
             "--disable-gpu", "--disable-dev-shm-usage", "--remote-debugging-pipe",
             f"--user-data-dir={self.profile}", "about:blank"],
            pass_fds=(self.command[0], self.answer[1]), stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        os.close(self.command[0])
        os.close(self.answer[1])
        self.rest, self.events, self.number, self.session = b"", [], 0, None
        target = self.call("Target.getTargets")["targetInfos"]
        page = next(t["targetId"] for t in target if t["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=page, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")

    def close(self):
        os.close(self.command[1])
        os.close(self.answer[0])
        self.process.terminate()
        self.process.wait()
        shutil.rmtree(self.profile, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.command[1], json.dumps(message).encode() + b"\0")
        while True:
            answer = self.read()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]

    def wait(self, event):
        while not any(e["method"] == event for e in self.events):
            self.read()

    def read(self):
        while b"\0" not in self.rest:
            more = os.read(self.answer[0], 1 << 16)
            if not more:
                raise RuntimeError("the browser has ended")
            self.rest += more
        message, self.rest = self.rest.split(b"\0", 1)
        answer = json.loads(message)
        if "method" in answer:
            self.events.append(answer)
        return answer

    def open(self, path, width, dark=False):
        """Loads a file at a width in a colour scheme."""
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=900,
                  deviceScaleFactor=1, mobile=width < 600)
        self.call("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.events = []
        self.call("Page.navigate", url="file://" + os.path.abspath(path))
        self.wait("Page.loadEventFired")

    def evaluate(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        if "exceptionDetails" in result:
            raise RuntimeError(result["exceptionDetails"])
        return result["result"].get("value")

    def screenshot(self, path):
        """The whole page."""
        size = self.call("Page.getLayoutMetrics")["cssContentSize"]
        shot = self.call("Page.captureScreenshot", captureBeyondViewport=True,
                         clip=dict(x=0, y=0, width=size["width"], height=size["height"], scale=1))
        with open(path, "wb") as file:
            file.write(base64.b64decode(shot["data"]))

    def requests(self):
        """Addresses that the page asked for, itself apart."""
        asked = [e["params"]["request"]["url"] for e in self.events
                 if e["method"] == "Network.requestWillBeSent"]
        return [url for url in asked if not url.startswith(("file:", "data:"))]

    def complaints(self):
        return [e for e in self.events if e["method"] in
                ("Runtime.exceptionThrown", "Runtime.consoleAPICalled", "Log.entryAdded")]
