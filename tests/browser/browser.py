"""A headless Chromium, driven through its debugging pipe."""

import base64
import json
import os
import select
import shutil
import subprocess
import tempfile
import time

SKIPPED = 77

FLAGS = [
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync",
    "--hide-scrollbars", "--remote-debugging-pipe",
]


def find():
    """The browser's command, or None."""
    return shutil.which("chromium") or shutil.which("chromium-browser")


class Browser:
    """One browser with one page. Messages are JSON ended by NUL, commands on descriptor 3, answers
    and events on 4."""

    def __init__(self, patience=60):
        self.patience = patience  # seconds that one answer may take
        self.profile = tempfile.TemporaryDirectory(prefix="quell-browser-")
        command_read, self.commands = os.pipe()
        self.answers, answer_write = os.pipe()
        flags = FLAGS + ["--user-data-dir=" + self.profile.name, "about:blank"]
        self.process = subprocess.Popen(
            ["sh", "-c", f'exec "$0" "$@" 3<&{command_read} 4>&{answer_write}', find()] + flags,
            pass_fds=(command_read, answer_write), start_new_session=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(command_read)
        os.close(answer_write)
        self.received = b""
        self.number = 0
        self.events = []
        self.session = None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target,
                                 flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        try:
            self.session = None
            self.call("Browser.close")
            self.process.wait(10)
        except Exception:  # it may have gone already
            self.process.kill()
            self.process.wait()
        os.close(self.commands)
        os.close(self.answers)
        self.profile.cleanup()

    def call(self, method, **parameters):
        """Sends a command and returns its result."""
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        data = json.dumps(message).encode() + b"\0"
        while data:
            data = data[os.write(self.commands, data):]
        while True:
            answer = self.read()
            if answer.get("id") != self.number:
                continue
            if "error" in answer:
                raise RuntimeError(f"{method}: {answer['error']['message']}")
            return answer["result"]

    def read(self):
        """The next message; events are kept."""
        deadline = time.monotonic() + self.patience
        while b"\0" not in self.received:
            left = deadline - time.monotonic()
            if left <= 0 or not select.select([self.answers], [], [], left)[0]:
                raise TimeoutError("the browser does not answer")
            block = os.read(self.answers, 1 << 20)
            if not block:
                raise RuntimeError("the browser has ended")
            self.received += block
        line, self.received = self.received.split(b"\0", 1)
        message = json.loads(line)
        if "method" in message:
            self.events.append(message)
        return message

    def open(self, path, scripts=True, dark=False, width=1200, height=900):
        """Opens a file and waits until it has loaded. Forgets earlier events."""
        self.call("Emulation.setScriptExecutionDisabled", value=not scripts)
        self.call("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=False)
        self.events.clear()
        self.call("Page.navigate", url="file://" + os.path.abspath(path))
        while not any(e["method"] == "Page.loadEventFired" for e in self.events):
            self.read()

    def evaluate(self, script):
        """The value of an expression in the page, through JSON."""
        result = self.call("Runtime.evaluate", expression=f"JSON.stringify({script})",
                           returnByValue=True)
        if "exceptionDetails" in result:
            details = result["exceptionDetails"]
            raise RuntimeError(details.get("exception", details).get("description", str(details)))
        value = result["result"].get("value")
        return None if value is None else json.loads(value)

    def box(self, selector):
        """Left, top, width and height of an element in the page."""
        return self.evaluate(
            "(r => [r.left + scrollX, r.top + scrollY, r.width, r.height])"
            f"(document.querySelector({json.dumps(selector)}).getBoundingClientRect())")

    def screenshot(self, box=None):
        """A PNG of a box of the page, or of the whole page."""
        options = {"format": "png", "captureBeyondViewport": True}
        if box:
            left, top, width, height = box
            options["clip"] = {"x": left, "y": top, "width": width, "height": height, "scale": 1}
        else:
            size = self.call("Page.getLayoutMetrics")["cssContentSize"]
            options["clip"] = {"x": 0, "y": 0, "width": size["width"], "height": size["height"],
                               "scale": 1}
        return base64.b64decode(self.call("Page.captureScreenshot", **options)["data"])

    def drag(self, start, end):
        """Drags the mouse between two points of the window."""
        mouse = lambda kind, at, buttons: self.call(
            "Input.dispatchMouseEvent", type=kind, x=at[0], y=at[1], button="left",
            buttons=buttons, clickCount=1)
        mouse("mouseMoved", start, 0)
        mouse("mousePressed", start, 1)
        for step in range(1, 6):
            at = [a + (b - a) * step / 5 for a, b in zip(start, end)]
            mouse("mouseMoved", at, 1)
        mouse("mouseReleased", end, 0)

    def complaints(self):
        """Everything that the page wrote to the console, and exceptions."""
        found = []
        for event in self.events:
            values = event["params"]
            if event["method"] == "Runtime.exceptionThrown":
                details = values["exceptionDetails"]
                found.append(details.get("exception", details).get("description", str(details)))
            elif event["method"] == "Log.entryAdded":
                found.append(values["entry"]["text"])
            elif event["method"] == "Runtime.consoleAPICalled":
                found.append(str(values["args"]))
        return found

    def requests(self):
        """Addresses that the page asked for, itself and data: left out."""
        addresses = [e["params"]["request"]["url"] for e in self.events
                     if e["method"] == "Network.requestWillBeSent"]
        return [a for a in addresses[1:] if not a.startswith("data:")]
