"""Drives Chromium without a window through its DevTools protocol, over a pair of pipes."""
import json
import os
import select
import shutil
import subprocess
import tempfile
import time

PROGRAM = shutil.which("chromium")
# A start takes a second; on a loaded machine it can be many.
DEADLINE = 120


class Browser:
    """A running Chromium; use it in a with statement."""

    def __enter__(self):
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        # The browser reads commands from descriptor 3 and writes answers to descriptor 4.
        commands, self.to_browser = os.pipe()
        self.from_browser, answers = os.pipe()
        arguments = [PROGRAM, "--headless", "--remote-debugging-pipe", "--no-sandbox", "--no-first-run",
                     "--disable-gpu", "--disable-dev-shm-usage", "--hide-scrollbars",
                     f"--user-data-dir={self.profile.name}", "about:blank"]
        shell = ["bash", "-c", f'exec "$@" 3<&{commands} 4>&{answers}', "chromium", *arguments]
        self.process = subprocess.Popen(shell, pass_fds=(commands, answers), stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(commands)
        os.close(answers)
        self.received = b""
        self.last_id = 0
        self.events = []
        return self

    def __exit__(self, *_):
        try:
            self.call("Browser.close")
        except (OSError, EOFError):
            pass
        os.close(self.to_browser)
        os.close(self.from_browser)
        try:
            self.process.wait(20)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.profile.cleanup()

    def read(self, seconds):
        """Returns the next message, or None if none comes in time."""
        deadline = time.monotonic() + seconds
        while b"\0" not in self.received:
            left = deadline - time.monotonic()
            if left <= 0 or not select.select([self.from_browser], [], [], left)[0]:
                return None
            piece = os.read(self.from_browser, 1 << 20)
            if not piece:
                raise EOFError("Chromium has ended")
            self.received += piece
        message, self.received = self.received.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, session=None, **parameters):
        """Calls a method of the protocol and returns its result."""
        self.last_id += 1
        message = {"id": self.last_id, "method": method, "params": parameters}
        if session:
            message["sessionId"] = session
        os.write(self.to_browser, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.read(DEADLINE)
            if answer is None:
                raise TimeoutError(method)
            if answer.get("id") == self.last_id:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']['message']}")
                return answer["result"]
            self.events.append(answer)

    def open(self, address, **options):
        """Opens a page in a new tab and returns the tab when it has loaded."""
        return Tab(self, address, **options)


class Tab:
    """A page that was opened."""

    def __init__(self, browser, address, width=1280, height=800, dark=False, script=True, watched=True):
        self.browser = browser
        self.target = browser.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = browser.call("Target.attachToTarget", targetId=self.target, flatten=True)["sessionId"]
        # The browser is slower when it is watched.
        for domain in ("Page", "Runtime", "Log", "Network", "Accessibility") if watched else ("Page",):
            self.call(f"{domain}.enable")
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                  mobile=False)
        self.call("Emulation.setEmulatedMedia",
                  features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        if not script:
            self.call("Emulation.setScriptExecutionDisabled", value=True)
        browser.events.clear()
        self.begin = time.monotonic()
        self.call("Page.navigate", url=address)
        self.wait("Page.loadEventFired")

    def call(self, method, **parameters):
        return self.browser.call(method, self.session, **parameters)

    def wait(self, name):
        """Waits for an event and returns it; it may have come already."""
        deadline = time.monotonic() + DEADLINE
        while time.monotonic() < deadline:
            for event in self.browser.events:
                if event.get("method") == name and event.get("sessionId") == self.session:
                    return event["params"]
            message = self.browser.read(1)
            if message:
                self.browser.events.append(message)
        raise TimeoutError(name)

    def evaluate(self, expression):
        """Returns the value of a JavaScript expression, run by the debugger and not by the page."""
        answer = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(answer["exceptionDetails"]["exception"].get("description", "exception"))
        return answer["result"].get("value")

    def press(self, key, code=None, modifiers=0):
        """Presses and releases a key, for example Tab or Enter."""
        codes = {"Tab": 9, "Enter": 13, " ": 32}
        text = {"Enter": "\r", " ": " "}.get(key, "")
        common = dict(key=key, code=code or key, windowsVirtualKeyCode=codes.get(key, 0), modifiers=modifiers)
        self.call("Input.dispatchKeyEvent", type="keyDown" if text else "rawKeyDown", text=text, **common)
        self.call("Input.dispatchKeyEvent", type="keyUp", **common)

    def tree(self):
        """Returns the accessibility tree: the nodes that are not ignored, in document order."""
        return [node for node in self.call("Accessibility.getFullAXTree")["nodes"] if not node["ignored"]]

    def complaints(self):
        """Returns what the browser has reported about the page: console messages, violations, requests."""
        found = []
        for event in self.browser.events:
            if event.get("sessionId") != self.session:
                continue
            method, parameters = event["method"], event.get("params", {})
            if method == "Log.entryAdded":
                found.append(parameters["entry"]["text"])
            elif method in ("Runtime.consoleAPICalled", "Runtime.exceptionThrown", "Page.javascriptDialogOpening",
                            "Page.frameRequestedNavigation", "Page.windowOpen"):
                found.append(f"{method}: {parameters}")
            elif method == "Network.requestWillBeSent" and parameters["type"] != "Document":
                found.append("request: " + parameters["request"]["url"])
        return found

    def screenshot(self):
        """Returns the visible part of the page as the base64 of a PNG."""
        return self.call("Page.captureScreenshot", format="png")["data"]

    def close(self):
        self.browser.call("Target.closeTarget", targetId=self.target)
