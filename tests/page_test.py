"""Tests of built pages in a real browser without a window, from a local web server. docs/browsers.md describes where
the behaviour of browsers differs from what an author may expect.

    python3 page_test.py STAGE BROWSER [TEST...]

STAGE is the folder that contains qelhost and the component, BROWSER is chromium or firefox. Where the browser is not
installed the exit code is 77.

A page whose address ends in ?now=MOMENT&seed=NUMBER sees a clock that stands still at that moment of its time zone,
random numbers from that seed, and timers that fire only when Step() is called.
"""
import functools
import http.server
import itertools
import json
import os
import re
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import urllib.parse
from pathlib import Path

STAGE = Path(sys.argv.pop(1)).resolve()
BROWSER = sys.argv.pop(1)
PROGRAMS = {"chromium": ["chromium", "chromedriver"], "firefox": ["firefox-esr"]}[BROWSER]
TIME_ZONE = "America/Santiago"  # has no midnight on 9 October 2005
DESIGNS = STAGE / "QelPluginAnimationDesigns"
GLOBO, VALS = "Fiestas/Globo.gif", "Fiestas/Vals.mid"
DOCTYPE = "<!DOCTYPE html>"
FILL = "<style>body{margin:0;min-height:100vh}</style>"
POLICY = '<meta http-equiv="Content-Security-Policy" content="%s">'
FURTHEST = 24  # pixels that a graphic may go past the left and the top

IN_EVERY_PAGE = """() => {
    const asked = new URLSearchParams(location.search);
    window.faults = [];
    window.refused = [];
    addEventListener("error", event => faults.push(event.message || "cannot load " + event.target.src), true);
    addEventListener("securitypolicyviolation", event => refused.push(event.effectiveDirective));
    window.Boxes = () => [...document.querySelectorAll("[id^=qelanimsprite]")].map(sprite => {
        const box = sprite.getBoundingClientRect(), parent = sprite.offsetParent;
        const origin = parent == document.body ? {left: -scrollX, top: -scrollY} : parent.getBoundingClientRect();
        return [box.left - origin.left, box.top - origin.top, box.width, box.height];
    });
    if (!asked.has("now")) return;
    const RealDate = Date, waiting = [];
    window.Date = class extends RealDate {
        constructor(...given) { super(...(given.length ? given : [asked.get("now")])); }
    };
    window.setTimeout = (code, delay) => waiting.push([code, delay]);
    let state = Number(asked.get("seed"));
    Math.random = () => (state = state * 16807 % 2147483647) / 2147483647;
    window.Step = () => waiting.splice(0).map(([code, delay]) => ((0, eval)(code), delay));
}"""


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
    """One browser for all tests, without a window, driven through WebDriver BiDi. Its files are in `folder`."""

    def __init__(self, folder):
        port, capabilities = getattr(self, "start_" + BROWSER)(folder)
        self.connection = WebSocket(port, "/session")
        unittest.addModuleCleanup(self.connection.stream.close)
        self.loaded = []
        self.numbers = itertools.count(1)
        self.command("session.new", capabilities={"alwaysMatch": capabilities})
        unittest.addModuleCleanup(self.command, "session.end")
        self.context = self.command("browsingContext.getTree")["contexts"][0]["context"]
        self.command("session.subscribe", events=["browsingContext.load"])
        self.command("script.addPreloadScript", functionDeclaration=IN_EVERY_PAGE)

    def start_chromium(self, folder):
        port = self.start(folder, ["chromedriver", "--port=0"], r"successfully on port (\d+)")
        arguments = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-proxy-server",
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
                **os.environ, "HOME": str(folder), "TMPDIR": str(folder), "TZ": TIME_ZONE})
        unittest.addModuleCleanup(program.wait)
        unittest.addModuleCleanup(program.terminate)
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


def setUpModule():
    global root, server, browser
    root = Path(tempfile.mkdtemp(prefix="qelpage "))
    unittest.addModuleCleanup(shutil.rmtree, root, ignore_errors=True)
    handler = http.server.SimpleHTTPRequestHandler
    handler.log_message = lambda *arguments: None
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(handler, directory=root))
    threading.Thread(target=server.serve_forever, daemon=True).start()
    unittest.addModuleCleanup(server.server_close)
    unittest.addModuleCleanup(server.shutdown)
    browser = Browser(root)


def script(design=GLOBO, link="", **params):
    params |= dict(zip(("imagefolder", "image", "midifolder", "midi"), design.split("/") + VALS.split("/")), link=link)
    tags = [f'<pg.param name="{name}" value="{value}">' for name, value in params.items()]
    return "\r\n".join(['<pg.plugin uid="QelPluginAnimation" version="1.0">', *tags])


def size_of(design):
    return struct.unpack("<HH", (DESIGNS / design).read_bytes()[6:10])


def wait_for(condition):
    """Waits until the browser has done something and returns the true result; only a fault makes it wait to the end."""
    for _ in range(600):
        if result := condition():
            return result
        time.sleep(0.05)
    raise AssertionError("waited in vain")


class PageTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="sitio ñ ", dir=root))
        self.site = self.folder / "s"
        self.host("init", self.site)
        browser.window(800, 600)

    def host(self, *arguments, stdin=""):
        environment = {**os.environ, "HOME": str(root), "TMPDIR": str(self.folder), "XDG_DATA_HOME": str(root)}
        run = subprocess.run([STAGE / "qelhost", *arguments], input=stdin.encode(), capture_output=True, timeout=60,
                             env=environment)
        self.assertEqual(run.returncode, 0, f"{arguments}: {run.stdout}{run.stderr}")
        return run.stdout.decode().strip()

    def add(self, name, content, *scripts):
        source = self.folder / name  # a file of its own: a build reads it again
        source.write_text(content, "cp1252" if "windows-1252" in content else "utf-8")
        self.host("page", "add", self.site, source, "--name", name)
        for text in scripts:
            self.host("module", "add", self.site, name, "--script", "-", stdin=text)

    def build(self, pages):
        """Builds the site with further pages: the name of each, its text, the scripts of its modules."""
        for page in pages:
            self.add(*page)
        self.host("build", self.site)

    def address(self, name):
        path = (self.site / "build" / name).relative_to(root).as_posix()
        return f"http://127.0.0.1:{server.server_port}/{urllib.parse.quote(path)}"

    def open(self, name, query="?now=2005-01-15T12:00&seed=1"):
        browser.open(self.address(name) + query)
        self.assertEqual(browser.get("faults"), [])

    def walk(self, steps=2000):
        """Steps the open page and gives the boxes of each graphic, one for each step and one from before them."""
        delays, boxes = browser.get(f"""(() => {{
            const boxes = [Boxes()], delays = new Set();
            for (let step = 0; step < {steps}; ++step) {{ Step().map(delay => delays.add(delay)); boxes.push(Boxes()); }}
            return [[...delays], boxes];
        }})()""")
        self.assertEqual((browser.get("faults"), delays), ([], [50]))
        return list(zip(*boxes))

    def check_drift(self, boxes, picture, page):
        """Moves at its speed at every step, turns back soon and stays on the page. Gives the edges that it came to."""
        for (left, top, *size), (next_left, next_top, *_) in itertools.pairwise(boxes):
            self.assertAlmostEqual(((next_left - left) / 6) ** 2 + ((next_top - top) / 4) ** 2, 1, delta=0.03)
            self.assertEqual(tuple(size), picture)
        right, bottom = page[0] - picture[0], page[1] - picture[1]
        beyond = {"left": lambda x, y: x <= 5, "top": lambda x, y: y <= 5, "right": lambda x, y: x >= right - 45,
                  "bottom": lambda x, y: y >= bottom - 25}
        stays = {edge: [len(list(run)) for there, run in itertools.groupby(test(*box[:2]) for box in boxes) if there]
                 for edge, test in beyond.items()}
        self.assertLess(max(itertools.chain(*stays.values())), 20, stays)
        for places, last in ([box[0] for box in boxes], right), ([box[1] for box in boxes], bottom):
            self.assertGreaterEqual(min(places), -FURTHEST)
            self.assertLessEqual(max(places), last)
        return {edge for edge in stays if stays[edge]}

    def test_graphic_drifts_and_turns_back_from_each_edge_of_the_page(self):
        tall, box = '<p style="height:1000px;margin:0">', '<div style="position:relative;width:420px;height:400px">'
        layouts = [  # page, window, scale of the screen, page as the graphic sees it
            (FILL, (1024, 768), 1, (1024, 768)),
            (FILL, (400, 400), 1, (400, 400)),
            (tall, (640, 480), 1.5, (624, 1000)),
            (DOCTYPE + tall, (640, 480), 1, (624, 1000)),
            (DOCTYPE + FILL, (1600, 900), 2, (1600, 900)),
            (DOCTYPE + '<body style="margin:0;height:352px">', (300, 300), 1, (300, 352)),
            (box, (800, 600), 1, (420, 400)),
            (DOCTYPE + box, (300, 300), 1.25, (420, 400)),
        ]
        self.build((f"{number}.html", content, script(playmidi=0)) for number, (content, *_) in enumerate(layouts))
        for number, (content, window, scale, page) in enumerate(layouts):
            with self.subTest(content=content, window=window):
                browser.window(*window, scale)
                reached = set()
                for seed in (13, 29, 47):
                    self.open(f"{number}.html", f"?now=2005-01-15&seed={seed}")
                    reached |= self.check_drift(self.walk()[0], size_of(GLOBO), page)
                self.assertEqual(reached, {"left", "top", "right", "bottom"})

    def test_page_that_does_not_fill_its_window_confines_the_graphic(self):
        short = '<p style="height:100px;margin:0">'
        self.build([("plain.html", short, script()), ("doctype.html", DOCTYPE + short, script())])
        for name, is_confined in (("plain.html", BROWSER == "firefox"), ("doctype.html", True)):
            with self.subTest(page=name):
                self.open(name)
                self.assertEqual(max(box[1] for box in self.walk()[0]) <= 5 + FURTHEST, is_confined)

    def test_period_is_counted_by_the_clock_of_the_visitor(self):
        self.build([("page.html", DOCTYPE, script(**{"from": 38634, "to": 38656}))])
        self.assertEqual(browser.get("Intl.DateTimeFormat().resolvedOptions().timeZone"), TIME_ZONE)
        for moment, shown in (("10-08T23:59:59.999", 0), ("10-09T01:00", 1), ("10-31T23:59:59.999", 1), ("11-01T00:00:00.001", 0)):
            self.open("page.html", f"?now=2005-{moment}&seed=1")
            self.assertEqual(browser.get("[Boxes().length, document.embeds.length]"), [shown, shown])

    def test_graphic_loads_its_picture_and_leads_where_its_link_says(self):
        paper = self.folder / "año € 1.txt"
        paper.write_bytes(b"x")
        self.add("otra ñ.html", DOCTYPE)
        page, file, web = (self.host("record", "add", self.site, "--kind", *options) for options in (
            ["page", "--page", "otra ñ.html"], ["file", "--file", paper], ["3", "--address", "http://127.0.0.1:1/?a&b='2'"]))
        cover = '<a href="#" style="position:absolute;left:0;top:0;width:100%;height:100%;z-index:49"></a>'
        cases = {"page.html": (DOCTYPE + cover, page, self.address("otra ñ.html")),
                 "file.html": ('<meta charset="windows-1252">ü' + cover, file, self.address("files/año € 1.txt")),
                 "web.html": (DOCTYPE, web, "http://127.0.0.1:1/?a&b=%272%27"), "none.html": (DOCTYPE, "", None)}
        self.build((name, content, script(link=link)) for name, (content, link, _) in cases.items())
        for name, (content, _, href) in cases.items():
            with self.subTest(page=name):
                self.open(name)
                self.assertEqual(self.walk(50)[0][-1][2:], list(size_of(GLOBO)))
                found = browser.get("(({naturalWidth, naturalHeight, parentNode}) => [naturalWidth, naturalHeight, "
                                    "parentNode.href])(document.querySelector('[id^=qelanimsprite] img'))")
                self.assertEqual(found, [*size_of(GLOBO), href])
                if cover in content:
                    self.assertEqual(browser.click_through("[id^=qelanimsprite] img"), href)

    def test_modules_of_a_page_drift_beside_each_other(self):
        designs = [path.relative_to(DESIGNS).as_posix() for path in sorted(DESIGNS.glob("[AEV]*/*.gif"))[:10]]
        ten, off, gone = list(map(script, designs)), script(showimage=0), script(to=38352)
        self.build([("ten.html", FILL, *ten[:4], off, *ten[4:], gone), ("two.html", DOCTYPE + FILL, *ten[:2])])
        for name, numbers in (("ten.html", [1, 2, 3, 4, 6, 7, 8, 9, 10, 11]), ("two.html", [13, 14])):
            self.open(name)
            self.assertEqual(browser.get("[...document.querySelectorAll('[id^=qelanim]')].map(sprite => sprite.id)"),
                             [f"qelanimsprite{number}" for number in numbers])
            walks = self.walk()
            self.assertEqual(len({str(boxes) for boxes in walks}), len(numbers))
            reached = [self.check_drift(boxes, size_of(design), (800, 600)) for design, boxes in zip(designs, walks)]
            self.assertEqual(set.union(*reached), {"left", "top", "right", "bottom"})

    def test_page_runs_by_the_browsers_own_clock_unless_its_policy_refuses(self):
        pages = {"plain.html": ("", 1, []), "doctype.html": (DOCTYPE, 1, []),
                 "still.html": (DOCTYPE + POLICY % "script-src 'unsafe-inline'", 1, ["script-src"]),
                 "none.html": (DOCTYPE + POLICY % "script-src 'self'", 0, ["script-src-elem"])}
        self.build((name, content, script()) for name, (content, *_) in pages.items())
        for name, (_, graphics, refused) in pages.items():
            with self.subTest(page=name):
                self.open(name, "")
                first = browser.get("Boxes()")
                self.assertEqual(len(first), graphics)
                wait_for(lambda: browser.get("refused") == refused if refused else browser.get("Boxes()") != first)
                self.assertEqual(browser.get("Boxes()") == first, bool(refused))


if __name__ == "__main__":
    missing = [program for program in PROGRAMS if not shutil.which(program)]
    if missing:
        print("Skipped, not installed:", *missing)
        sys.exit(77)
    unittest.main()
