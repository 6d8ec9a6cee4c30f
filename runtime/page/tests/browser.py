"""A small WebDriver client: a headless browser that is driven by real keys and pointer moves."""

import base64
import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import urllib.error
import urllib.request

ANSWER_LIMIT = 90  # seconds; for what hangs
KEYS = {
    "Backspace": "\ue003", "Tab": "\ue004", "Enter": "\ue007", "Shift": "\ue008", "Control": "\ue009",
    "Alt": "\ue00a", "Escape": "\ue00c", "Space": " ", "End": "\ue010", "Home": "\ue011", "Left": "\ue012",
    "Up": "\ue013", "Right": "\ue014", "Down": "\ue015", "F2": "\ue032", "F3": "\ue033", "PageDown": "\ue00f",
}

# Looked at in the page itself, so that a condition is seen as soon as it holds.
WAIT = """
const done = arguments[arguments.length - 1];
const given = [...arguments].slice(0, -1);
const look = () => {
  const value = (function () { return %s; }).apply(null, given);
  if (value) done(value); else setTimeout(look, 15);
};
look();
"""


class BrowserError(Exception):
    pass


class Browser:
    def __init__(self, size=(900, 720), scale=1, arguments=()):
        self.profile = tempfile.mkdtemp(prefix="page-test-")
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE,
                                       stderr=subprocess.DEVNULL, text=True, start_new_session=True)
        self.session = None
        try:
            self.base = f"http://127.0.0.1:{self._port()}"
            self.session = self._start(size, scale, arguments)
            self.call("timeouts", {"script": 60000})
        except BaseException:
            self.close()
            raise

    def _port(self):
        for line in self.driver.stdout:
            if found := re.search(r"started successfully on port (\d+)", line):
                return int(found.group(1))
        raise BrowserError("chromedriver did not start")

    def _start(self, size, scale, arguments):
        options = ["--headless", "--disable-gpu", "--no-first-run", "--disable-background-networking",
                   "--disable-component-update", "--disable-sync", "--lang=en-GB",
                   "--autoplay-policy=no-user-gesture-required", f"--user-data-dir={self.profile}",
                   f"--window-size={size[0]},{size[1]}", f"--force-device-scale-factor={scale}", *arguments]
        if os.geteuid() == 0:
            options.append("--no-sandbox")
        capabilities = {"browserName": "chrome", "goog:chromeOptions": {"args": options},
                        "goog:loggingPrefs": {"browser": "ALL"}}
        reply = self._send("POST", "/session", {"capabilities": {"alwaysMatch": capabilities}})
        return reply["sessionId"]

    def close(self):
        try:
            if self.session:
                self._send("DELETE", f"/session/{self.session}")
        except BrowserError:
            pass  # it ends all the same
        finally:
            os.killpg(self.driver.pid, signal.SIGKILL)
            self.driver.wait()
            self.driver.stdout.close()
            shutil.rmtree(self.profile, ignore_errors=True)

    def _send(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode("utf-8")
        request = urllib.request.Request(self.base + path, data, {"Content-Type": "application/json"}, method=method)
        try:
            with urllib.request.urlopen(request, timeout=ANSWER_LIMIT) as reply:
                return json.load(reply)["value"]
        except urllib.error.HTTPError as error:
            value = json.load(error)["value"]
            raise BrowserError(f"{value['error']}: {value['message']}") from None
        except OSError as error:
            raise BrowserError(f"no answer: {error}") from None

    def call(self, path, body=None, method="POST"):
        return self._send(method, f"/session/{self.session}/{path}", body)

    def cdp(self, command, **parameters):
        return self.call("goog/cdp/execute", {"cmd": command, "params": parameters})

    def log(self):
        return self.call("se/log", {"type": "browser"})

    # ---- Pages ----

    def before_scripts(self, source):
        """Runs a script in every page before its own scripts; gives what to forget it by."""
        return self.cdp("Page.addScriptToEvaluateOnNewDocument", source=source)["identifier"]

    def forget(self, script):
        self.cdp("Page.removeScriptToEvaluateOnNewDocument", identifier=script)

    def open(self, file):
        self.call("url", {"url": file.as_uri() if hasattr(file, "as_uri") else file})

    def run(self, script, *arguments):
        return self.call("execute/sync", {"script": script, "args": list(arguments)})

    def get(self, expression, *arguments):
        return self.run(f"return ({expression});", *arguments)

    def wait(self, expression, *arguments):
        try:
            return self.call("execute/async", {"script": WAIT % f"({expression})", "args": list(arguments)})
        except BrowserError as error:
            raise AssertionError(f"never came: {expression} {arguments}: {error}") from None

    def size(self, width, height, scale=1):
        self.cdp("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=scale,
                 mobile=False)

    def picture(self):
        return base64.b64decode(self.call("screenshot", method="GET"))

    def printed(self):
        return base64.b64decode(self.call("print", {"background": False}))

    # ---- Keys and pointer ----

    def find(self, selector):
        return self.call("element", {"using": "css selector", "value": selector})

    def keys(self, *chords):
        """Presses one chord after another: "Control+z", "Enter", "a"."""
        actions = []
        for chord in chords:
            parts = chord.split("+") if len(chord) > 1 else [chord]
            pressed = [KEYS.get(part, part) for part in parts]
            actions += [{"type": "keyDown", "value": key} for key in pressed]
            actions += [{"type": "keyUp", "value": key} for key in reversed(pressed)]
        self.call("actions", {"actions": [{"type": "key", "id": "keyboard", "actions": actions}]})

    def type(self, text):
        """Into the field that has the focus."""
        self.cdp("Input.insertText", text=text)

    def click(self, selector, times=1, at=None):
        origin = self.find(selector)
        x, y = at or (0, 0)
        actions = [{"type": "pointerMove", "duration": 0, "origin": origin, "x": x, "y": y}]
        for _ in range(times):
            actions += [{"type": "pointerDown", "button": 0}, {"type": "pointerUp", "button": 0}]
        self._point(actions)

    def click_at(self, x, y, times=1):
        actions = [{"type": "pointerMove", "duration": 0, "x": int(x), "y": int(y)}]
        for _ in range(times):
            actions += [{"type": "pointerDown", "button": 0}, {"type": "pointerUp", "button": 0}]
        self._point(actions)

    def hover(self, selector):
        self._point([{"type": "pointerMove", "duration": 0, "origin": self.find(selector), "x": 0, "y": 0}])

    def _point(self, actions):
        pointer = {"type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"}, "actions": actions}
        self.call("actions", {"actions": [pointer]})

    def scroll(self, y):
        wheel = {"type": "wheel", "id": "wheel",
                 "actions": [{"type": "scroll", "x": 300, "y": 300, "deltaX": 0, "deltaY": y, "duration": 0}]}
        self.call("actions", {"actions": [wheel]})
