"""A browser driven by the WebDriver protocol, with the standard library alone."""

import base64
import contextlib
import json
import pathlib
import shutil
import socket
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"

# Nothing of the browser's own may use the network, and a machine without a graphics card draws as well.
ARGUMENTS = [
    "--headless=new", "--disable-gpu", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
    "--disable-quic", "--no-first-run", "--no-default-browser-check", "--disable-background-networking",
    "--disable-component-update", "--disable-sync", "--disable-extensions", "--hide-scrollbars",
    "--no-sandbox", "--disable-dev-shm-usage", "--force-device-scale-factor=1",
]


def tools():
    """Paths of Chromium and its driver; None when one is missing."""
    browser = shutil.which("chromium") or shutil.which("chromium-browser")
    driver = shutil.which("chromedriver")
    return (browser, driver) if browser and driver else None


class Browser:
    """One window of a headless browser with an empty profile; a context manager."""

    def __init__(self, width=1500, height=900, arguments=()):
        browser, driver = tools()
        self._folder = tempfile.TemporaryDirectory(prefix="page-test-", ignore_cleanup_errors=True)
        self.downloads = pathlib.Path(self._folder.name, "downloads")
        self.downloads.mkdir()
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            port = probe.getsockname()[1]
        self._base = f"http://127.0.0.1:{port}"
        self._opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        self._driver = subprocess.Popen([driver, f"--port={port}", "--silent"], stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        self._session = None
        try:
            self._wait_for_driver()
            self._start(browser, width, height, arguments)
        except BaseException:
            self.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        if self._session:
            with contextlib.suppress(OSError, RuntimeError):
                self._call("DELETE", "")
        self._driver.terminate()
        self._driver.wait()
        self._folder.cleanup()

    def _wait_for_driver(self):
        for _ in range(200):
            with contextlib.suppress(OSError):
                with self._opener.open(f"{self._base}/status", timeout=5) as answer:
                    if json.load(answer)["value"]["ready"]:
                        return
            time.sleep(0.05)
        raise RuntimeError("the browser's driver does not start")

    def _start(self, browser, width, height, arguments):
        options = {
            "binary": browser,
            "args": [*ARGUMENTS, f"--user-data-dir={self._folder.name}/profile", f"--window-size={width},{height}",
                     *arguments],
            "prefs": {"download.default_directory": str(self.downloads), "download.prompt_for_download": False},
        }
        answer = self._request("POST", "/session", {"capabilities": {"alwaysMatch": {
            "goog:chromeOptions": options,
            "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}}})
        self._session = answer["sessionId"]

    def _request(self, method, path, body=None):
        data = json.dumps(body).encode() if body is not None else None
        request = urllib.request.Request(self._base + path, data=data, method=method,
                                         headers={"Content-Type": "application/json"})
        try:
            with self._opener.open(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from None

    def _call(self, method, path, body=None):
        return self._request(method, f"/session/{self._session}{path}", body)

    def open(self, path):
        self._call("POST", "/url", {"url": pathlib.Path(path).resolve().as_uri()})

    def run(self, script, *arguments):
        """The value of a script's return statement."""
        return self._call("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def wait(self, condition, what, seconds=30):
        """Waits until a script's expression is true, and gives its value."""
        end = time.monotonic() + seconds
        while True:
            value = self.run(f"return {condition}")
            if value:
                return value
            if time.monotonic() > end:
                raise AssertionError(f"waited in vain for {what}")
            time.sleep(0.05)

    def click(self, selector):
        element = self._call("POST", "/element", {"using": "css selector", "value": selector})
        self._call("POST", f"/element/{element[ELEMENT]}/click", {})

    def click_at(self, x, y):
        """A click of the mouse at a place of the window."""
        self._call("POST", "/actions", {"actions": [{
            "type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"}, "actions": [
                {"type": "pointerMove", "duration": 0, "x": round(x), "y": round(y)},
                {"type": "pointerDown", "button": 0}, {"type": "pointerUp", "button": 0}]}]})

    def drag(self, start, end, button=0):
        self._call("POST", "/actions", {"actions": [{
            "type": "pointer", "id": "mouse", "parameters": {"pointerType": "mouse"}, "actions": [
                {"type": "pointerMove", "duration": 0, "x": round(start[0]), "y": round(start[1])},
                {"type": "pointerDown", "button": button},
                {"type": "pointerMove", "duration": 100, "x": round(end[0]), "y": round(end[1])},
                {"type": "pointerUp", "button": button}]}]})

    def keys(self, *keys):
        """Keys pressed one after the other wherever the focus is."""
        actions = [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
        self._call("POST", "/actions", {"actions": [{"type": "key", "id": "keyboard", "actions": actions}]})

    def screenshot(self, path):
        pathlib.Path(path).write_bytes(base64.b64decode(self._call("GET", "/screenshot")))

    def print(self, **options):
        """The page as PDF."""
        return base64.b64decode(self._call("POST", "/print", options))

    def log(self, kind):
        return self._call("POST", "/se/log", {"type": kind})
