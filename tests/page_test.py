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
import shutil
import struct
import sys
import tempfile
import threading
import unittest
import urllib.parse
from pathlib import Path

BROWSER = sys.argv.pop(2)
sys.dont_write_bytecode = True  # leave the sources' folder as it is
sys.path.append(str(Path(__file__).parents[1] / "tools"))

from browser import Browser, wait_for
from host_test import DESIGNS, HostTest, script  # takes its own argument away

PROGRAMS = {"chromium": ["chromium", "chromedriver"], "firefox": ["firefox-esr"]}[BROWSER]
TIME_ZONE = "America/Santiago"  # has no midnight on 9 October 2005
GLOBO = "Fiestas/Globo.gif"
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


def setUpModule():
    global root, server, browser
    root = Path(tempfile.mkdtemp(prefix="qelpage "))
    tempfile.tempdir = str(root)  # so the site of each test is on the server
    unittest.addModuleCleanup(shutil.rmtree, root, ignore_errors=True)
    handler = http.server.SimpleHTTPRequestHandler
    handler.log_message = lambda *arguments: None
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(handler, directory=root))
    threading.Thread(target=server.serve_forever, daemon=True).start()
    unittest.addModuleCleanup(server.server_close)
    unittest.addModuleCleanup(server.shutdown)
    browser = Browser(BROWSER, root, {"TZ": TIME_ZONE}, IN_EVERY_PAGE, unittest.addModuleCleanup)


def module(design=GLOBO, **params):
    """The script of a module with a motif and a tune."""
    folder, image = design.split("/")
    return script(image, folder, **{"playmidi": 1, "midi": "Vals.mid", "midifolder": "Fiestas", **params})


def size_of(design):
    return struct.unpack("<HH", (DESIGNS / design).read_bytes()[6:10])


class PageTest(HostTest):
    def setUp(self):
        super().setUp()
        self.make_site()
        browser.window(800, 600)

    def build(self, pages):
        """Builds the site with further pages: the name of each, its text, the scripts of its modules."""
        for name, content, *scripts in pages:
            self.add_page(name, content.encode("cp1252" if "windows-1252" in content else "utf-8"))
            for text in scripts:
                self.add_module(name, text)
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
        self.build((f"{number}.html", content, module(playmidi=0)) for number, (content, *_) in enumerate(layouts))
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
        self.build([("plain.html", short, module()), ("doctype.html", DOCTYPE + short, module())])
        for name, is_confined in (("plain.html", BROWSER == "firefox"), ("doctype.html", True)):
            with self.subTest(page=name):
                self.open(name)
                self.assertEqual(max(box[1] for box in self.walk()[0]) <= 5 + FURTHEST, is_confined)

    def test_period_is_counted_by_the_clock_of_the_visitor(self):
        self.build([("page.html", DOCTYPE, module(**{"from": 38634, "to": 38656}))])
        self.assertEqual(browser.get("Intl.DateTimeFormat().resolvedOptions().timeZone"), TIME_ZONE)
        for moment, shown in (("10-08T23:59:59.999", 0), ("10-09T01:00", 1), ("10-31T23:59:59.999", 1), ("11-01T00:00:00.001", 0)):
            self.open("page.html", f"?now=2005-{moment}&seed=1")
            self.assertEqual(browser.get("[Boxes().length, document.embeds.length]"), [shown, shown])

    def test_graphic_loads_its_picture_and_leads_where_its_link_says(self):
        self.add_page("otra ñ.html", DOCTYPE)
        page, file, web = (self.add_record("--kind", *options) for options in (
            ["page", "--page", "otra ñ.html"], ["file", "--file", self.file("año € 1.txt", b"x")],
            ["3", "--address", "http://127.0.0.1:1/?a&b='2'"]))
        cover = '<a href="#" style="position:absolute;left:0;top:0;width:100%;height:100%;z-index:49"></a>'
        cases = {"page.html": (DOCTYPE + cover, page, self.address("otra ñ.html")),
                 "file.html": ('<meta charset="windows-1252">ü' + cover, file, self.address("files/año € 1.txt")),
                 "web.html": (DOCTYPE, web, "http://127.0.0.1:1/?a&b=%272%27"), "none.html": (DOCTYPE, "", None)}
        self.build((name, content, module(link=link)) for name, (content, link, _) in cases.items())
        for name, (content, _, href) in cases.items():
            with self.subTest(page=name):
                self.open(name)
                self.assertEqual(self.walk(50)[0][-1][2:], list(size_of(GLOBO)))
                found = browser.get("(({naturalWidth, naturalHeight, parentNode}) => [naturalWidth, naturalHeight, "
                                    "parentNode.href])(document.querySelector('[id^=qelanimsprite] img'))")
                self.assertEqual(found, [*size_of(GLOBO), href])
                if cover in content:
                    self.assertEqual(browser.click_through("[id^=qelanimsprite] img"), href)

    def test_imported_photograph_stands_upright(self):
        photo = (Path(__file__).parents[1] / "demo-site" / "foto.jpg").read_bytes()  # 200 by 140
        turned = b"Exif\0\0MM" + struct.pack(">HIHHHIHHI", 42, 8, 1, 0x0112, 3, 1, 6, 0, 0)
        (self.folder / "in").mkdir()
        (self.folder / "in/qelspr.jpg").write_bytes(
            photo[:2] + b"\xff\xe1" + struct.pack(">H", len(turned) + 2) + turned + photo[2:])
        archive = self.folder / "photo.dat"
        self.host("archive", "pack", archive, self.folder / "in")
        self.add_page("page.html", DOCTYPE)
        text = module("(USER)/qelspr.jpg", imagemode="jpg", archive="module1.dat")
        self.add_module("page.html", text, "--archive", archive)
        self.build([])
        self.open("page.html")
        self.assertEqual(self.walk(2)[0][-1][2:], [140, 200])
        self.assertEqual(browser.get("(({naturalWidth, naturalHeight}) => [naturalWidth, naturalHeight])"
                                     "(document.querySelector('[id^=qelanimsprite] img'))"), [140, 200])

    def test_modules_of_a_page_drift_beside_each_other(self):
        designs = [path.relative_to(DESIGNS).as_posix() for path in sorted(DESIGNS.glob("[AEV]*/*.gif"))[:10]]
        ten, off, gone = list(map(module, designs)), module(showimage=0), module(to=38352)
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
        self.build((name, content, module()) for name, (content, *_) in pages.items())
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
