"""A browser without a window, driven through WebDriver BiDi, for tests of built pages."""
import itertools
import json
import os
import re
import shutil
import socket
import struct
import subprocess
import time


def wait_for(condition):
    """Waits until the browser has done something and returns the true result; only a fault makes it wait to the end."""
    for _ in range(600):
        if result := condition():
            return result
        time.sleep(0.05)
    raise AssertionError("waited in vain")


class WebSocket:
    """A client connection for text messages, as far as WebDriver BiDi needs it."""

    def __init__(self, port, path):
        with socket.create_connection(("127.0.0.1", port), timeout=60) as connection:
            self.stream = connection.makefile("rwb")  # keeps it open
        headers = [f"GET {path} HTTP/1.1", f"Host: 127.0.0.1:{port}", "Upgrade: websocket", "Connection: Upgrade",
                   "Sec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==", "Sec-WebSocket-Version: 13", "", ""]
        self.stream.write("\r\n".join(headers).encode())
        self.stream.flush()
        if b" 101 " not in self.stream.readline():
            raise RuntimeError("the browser refuses a connection")
        while self.stream.readline().strip():
            pass

    def send(self, text):
        data, mask = text.encode(), 0x20  # a client has to mask what it sends; Firefox rejects a mask of 0
        length = len(data)
        sizes = struct.pack(">B", 128 + length) if length < 126 else struct.pack(">BH", 128 + 126, length)
        if length > 0xFFFF:
            sizes = struct.pack(">BQ", 128 + 127, length)
        self.stream.write(b"\x81" + sizes + bytes([mask] * 4) + bytes(byte ^ mask for byte in data))
        self.stream.flush()

    def receive(self):
        text, is_last = b"", False
        while not is_last:
            head = self.stream.read(2)
            if len(head) < 2 or head[0] & 8:
                raise RuntimeError("the browser has closed the connection")
            is_last, length = head[0] & 128, head[1]
            if length >= 126:
                length = int.from_bytes(self.stream.read(2 if length == 126 else 8), "big")
            text += self.stream.read(length)
        return text.decode()


class Browser:
    """One browser without a window, driven through WebDriver BiDi. Its files are in `folder`."""

    def __init__(self, browser, folder, environment, preload, cleanup):
        """Starts `browser`, chromium or firefox, with further variables of the environment. `preload` is a function that
        runs in each page before its own scripts; `cleanup` is called with what ends the browser, last first."""
        self.environment, self.cleanup = environment, cleanup
        port, capabilities = getattr(self, "start_" + browser)(folder)
        self.connection = WebSocket(port, "/session")
        self.cleanup(self.connection.stream.close)
        self.loaded = []
        self.numbers = itertools.count(1)
        self.command("session.new", capabilities={"alwaysMatch": capabilities})
        self.cleanup(self.command, "session.end")
        self.context = self.command("browsingContext.getTree")["contexts"][0]["context"]
        self.command("session.subscribe", events=["browsingContext.load"])
        self.command("script.addPreloadScript", functionDeclaration=preload)

    def start_chromium(self, folder):
        port = self.start(folder, ["chromedriver", "--port=0"], r"successfully on port (\d+)")
        arguments = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-proxy-server",
                     "--remote-debugging-pipe",  # else the driver needs the name localhost, which /etc/hosts may lack
                     f"--user-data-dir={folder / 'profile'}"]
        return port, {"goog:chromeOptions": {"binary": shutil.which("chromium"), "args": arguments,
                                             "prefs": {"download.default_directory": str(folder)}}}

    def start_firefox(self, folder):
        profile = folder / "profile"
        profile.mkdir()
        (profile / "user.js").write_text('user_pref("network.proxy.type", 0);\n'
                                         'user_pref("services.settings.server", "data:,");\n')  # fetches no lists
        return self.start(folder, ["firefox-esr", "--headless", "--no-remote", "--profile", profile,
                                   "--remote-debugging-port", "0"], r"listening on ws://127\.0\.0\.1:(\d+)"), {}

    def start(self, folder, command, announcement):
        """Starts a program and returns the port that it announces."""
        log = folder / "log"
        with log.open("w") as output:
            program = subprocess.Popen(command, stdout=output, stderr=output, env={
                **os.environ, "HOME": str(folder), "TMPDIR": str(folder), **self.environment})
        self.cleanup(program.wait)
        self.cleanup(program.terminate)
        return int(wait_for(lambda: re.search(announcement, log.read_text()))[1])

    def read(self):
        message = json.loads(self.connection.receive())
        if message.get("method") == "browsingContext.load":
            self.loaded.append(message["params"]["url"])
        return message

    def command(self, method, **params):
        number = next(self.numbers)
        self.connection.send(json.dumps({"id": number, "method": method, "params": params}))
        while (answer := self.read()).get("id") != number:
            pass
        if answer["type"] == "error":
            raise RuntimeError(f"{method}: {answer['message']}")
        return answer["result"]

    def open(self, address):
        self.command("browsingContext.navigate", context=self.context, url=address, wait="complete")

    def window(self, width, height, scale=1):
        self.command("browsingContext.setViewport", context=self.context, viewport={"width": width, "height": height},
                     devicePixelRatio=scale)

    def get(self, expression):
        answer = self.command("script.evaluate", expression=f"JSON.stringify({expression})",
                              target={"context": self.context}, awaitPromise=False)
        if answer["type"] == "exception":
            raise RuntimeError(f"{expression}: {answer['exceptionDetails']['text']}")
        return json.loads(answer["result"]["value"])

    def click_through(self, selector):
        """Clicks on the middle of an element, whatever lies above it. Returns the address of the page that opens."""
        left = self.get("location.href")
        element, = self.command("browsingContext.locateNodes", context=self.context,
                                locator={"type": "css", "value": selector})["nodes"]
        origin = {"type": "element", "element": {"sharedId": element["sharedId"]}}
        actions = [{"type": "pointerMove", "x": 0, "y": 0, "origin": origin}, {"type": "pointerDown", "button": 0},
                   {"type": "pointerUp", "button": 0}]
        self.loaded.clear()
        self.command("input.performActions", context=self.context,
                     actions=[{"type": "pointer", "id": "mouse", "actions": actions}])
        while not (others := [address for address in self.loaded if address != left]):
            self.read()
        return others[0]
