"""Tests of qelhost, the real program with the real component, in folders of their own.

    python3 host_test.py STAGE [TEST...]    STAGE is the folder that holds qelhost and the component

A stage for Windows is tested under Wine.
"""
import contextlib
import fcntl
import json
import os
import pty
import re
import shutil
import signal
import sqlite3
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

signal.signal(signal.SIGINT, signal.default_int_handler)  # else a program started in the background ignores it
STAGE = Path(sys.argv.pop(1)).resolve()
DESIGNS = STAGE / "QelPluginAnimationDesigns"
WINDOWS = (STAGE / "qelhost.exe").exists()
RUNNER = Path(__file__).resolve().parent.parent / "tools" / "run-under-wine"
PROGRAM = [RUNNER, "--streams", STAGE / "qelhost.exe"] if WINDOWS else [STAGE / "qelhost"]
INTERRUPTER = STAGE.parent / "tests" / "interrupter.exe"
GLOBO = (DESIGNS / "Fiestas" / "Globo.gif").read_bytes()
ERROR = "[Error de plug-in]"
PAGE = "<html><body><!-- qel:modules --></body></html>"


def script(image="Globo.gif", folder="Fiestas", link="", archive=None, **params):
    params = {"image": image, "imagefolder": folder, "playmidi": "0", "link": link, **params}
    lines = ['<pg.plugin uid="QelPluginAnimation" version="1.0">']
    lines += [f'<pg.file filename="{archive}">'] if archive else []
    lines += [f'<pg.param name="{name}" value="{value}">' for name, value in params.items() if value is not None]
    return "\r\n".join(lines) + "\r\n"


def archive_of(name, data):
    name = b"\\" + name.encode("cp1252")
    return b"qelarchive1.0" + struct.pack("<i", len(name)) + name + struct.pack("<i", len(data)) + data + bytes(4)


def tree(folder):
    return {path.relative_to(folder).as_posix(): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def not_on_windows(reason):
    return unittest.skipIf(WINDOWS, reason)


# What no system decides, and takes long under Wine.
portable = not_on_windows("the code of both systems is the same")


def named(argument):
    """An argument of the program; a path as the system of the program names it."""
    return f"Z:{argument}" if WINDOWS and isinstance(argument, Path) and argument.is_absolute() else str(argument)


def shown(path):
    """A path as the program shows it."""
    return named(path).replace("/", "\\") if WINDOWS else str(path)


class HostTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="qelhost "))
        self.addCleanup(shutil.rmtree, self.folder)
        self.site = self.folder / "mi sitio ñ"
        (self.folder / "temp").mkdir(mode=0o700)
        self.environment = {key: value for key, value in os.environ.items() if key != "NO_COLOR"}
        self.environment |= {"HOME": str(self.folder), "XDG_DATA_HOME": str(self.folder / "share"),
                             "XDG_DATA_DIRS": str(self.folder), "TMPDIR": str(self.folder / "temp"), "TMP": named(self.folder / "temp")}

    def host(self, *arguments, expect=0, stdin="", program=PROGRAM, text=True, **options):
        """Runs the program and gives what it wrote to its standard output; with `expect` 1 or 2 to the error output."""
        said, errors = self.outputs(*arguments, expect=expect, input=stdin, program=program, text=text,
                                    errors="replace" if text else None, **options)
        return errors if expect else said

    def outputs(self, *arguments, expect=0, program=PROGRAM, text=True, timeout=60, **options):
        """Runs the program and gives what it wrote to its standard output and to the error output."""
        run = subprocess.run([*program, *map(named, arguments)], capture_output=True, timeout=timeout, env=self.environment,
                             text=text, **options)
        self.assertEqual(run.returncode, expect, f"{arguments}: {run.stdout}{run.stderr}")
        return run.stdout, run.stderr

    def errors_of(self, *arguments, **options):
        """What a command that succeeds writes to the standard error."""
        return self.outputs(*arguments, **options)[1]

    def start(self, *arguments, **options):
        return subprocess.Popen([*PROGRAM, *map(named, arguments)], env=self.environment, **options)

    def sql(self, statement, rows=((),)):
        """Changes the site's database past the program."""
        with contextlib.closing(sqlite3.connect(self.site / "site.db")) as database, database:
            database.executemany(statement, rows)

    def file(self, name, content=b""):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def make_site(self, *pages):
        self.host("init", self.site)
        for name in pages:
            self.add_page(name)

    def add_page(self, name, content=PAGE):
        self.host("page", "add", self.site, self.file(f"source of {name[:99]}", content), "--name", name)

    def add_module(self, page, text, *options):
        return int(self.host("module", "add", self.site, page, "--script", "-", *options, stdin=text).split()[1])

    def add_record(self, *options, expect=0):
        return self.host("record", "add", self.site, *options, expect=expect).strip()

    def page(self, name):
        return (self.site / "build" / name).read_bytes().decode()

    def rows(self, *command):
        """A list's rows below its heading, its columns joined by one blank."""
        return [" ".join(line.split()) for line in self.host(*command, "list", self.site).splitlines()[1:]]


class BuildTest(HostTest):
    def test_links_of_every_kind_lead_where_they_should(self):
        self.make_site("index.html", "otra página.html")
        picture = self.file("Foto 'del' año.jpg", b"picture")
        cases = [
            (["--kind", "1", "--page", "otra página.html"], "otra&#37;20p&#37;C3&#37;A1gina.html"),
            (["--kind", "page", "--address", "https://example.org/?a=1&b='2'"],
             "https://example.org/?a=1&#38;b=&#39;2&#39;"),
            (["--kind", "section", "--page", "index.html", "--address", "#top"], "index.html#top"),
            (["--kind", "3", "--address", 'http://x/%31%3A%5B\\"</script>ñ'],
             "http://x/&#37;31&#37;3A&#37;5B&#92;&#34;&#60;/script&#62;ñ"),
            (["--kind", "picture", "--file", picture], "images/Foto _del_ año.jpg"),
            (["--kind", "5", "--file", self.file("l'été 100%.pdf", b"paper")], "files/l_été 100_.pdf"),
            (["--kind", "mail", "--address", "me@example.org"], "mailto:me@example.org"),
        ]
        links = [(self.add_record(*options), href) for options, href in cases]
        links.append(("URL:http://example.org/", "http://example.org/"))
        expected = {self.add_module("index.html", script(link=link)): href for link, href in links}
        self.host("page", "set", self.site, "index.html", self.file("p", PAGE.replace("<html>", "<html lang='ñ'>")))
        self.host("build", self.site)
        found = re.findall(r'"qelanimsprite(\d+)" style.*?<a href="(.*?)"><img', self.page("index.html"))
        self.assertEqual({int(number): href for number, href in found}, expected)
        staged = {"images/Foto _del_ año.jpg": b"picture", "files/l_été 100_.pdf": b"paper"}
        self.assertEqual(tree(self.site / "build") | staged, tree(self.site / "build"))

    def test_failed_modules_are_left_out_and_do_not_stop_the_build(self):
        self.make_site("a.html", "b.html")
        none, gone, there = (self.add_record("--kind", *options) for options in (["none"], *[["3", "--address", "x"]] * 2))
        odd = "52" if WINDOWS else "53"  # no file has such a name there
        cases = [(script(link=none), "730", "El vínculo no funciona. ", "record 1, which leads nowhere"),
                 (script(link=gone), "730", "El vínculo no funciona. ", "the record UID:2, which the site does not have"),
                 (script(link=there.replace(":", ":0")), "730", "El vínculo no funciona. ", "the record UID:03, which"),
                 (script(image="Nada--><b>.gif"), odd, f'El plug-in "Orvenal" ha provocado el error "{odd}: ', "Fiestas/Nada--><b>.gif"),
                 (script(image="a.gif", folder="(USER)", imagemode="gif", archive="module9.dat"), "53",
                  'El plug-in "Orvenal" ha provocado el error "53: ', "its archive data/module9.dat is missing"),
                 (script(image=None, link=gone), "720", "No se ha seleccionado ningún motivo. ", "(choose a motif"),
                 (script(playmidi="1"), "75",
                  'El plug-in "Orvenal" ha provocado el error "75: ', "(no tune is chosen"),
                 (script(image="globo.GIF", playmidi="1", midi="no.mid", midifolder="Fiestas"), "53",
                  'El plug-in "Orvenal" ha provocado el error "53: ', "(its tune is Fiestas/no.mid)")]
        modules = [self.add_module("a.html", text.replace("--><b>", "--&gt;&lt;b&gt;")) for text, *_ in cases]
        self.host("record", "remove", self.site, gone[4:], "--force")
        good = self.add_module("b.html", script())
        lines = self.host("build", self.site, expect=1).splitlines()
        self.assertEqual(len(lines), len(cases), lines)
        for line, module, (_, _, reason, detail) in zip(lines, modules, cases):
            self.assertTrue(line.startswith(f"a.html, module {module}: {reason}"), line)
            self.assertIn(detail, line)
        comments = [f"<!-- qelhost: module {module} is left out, error {case[1]} -->" for module, case in zip(modules, cases)]
        self.assertEqual(self.page("a.html"), PAGE.replace("<!-- qel:modules -->", "".join(comments)))
        self.assertEqual((self.site / f"build/images/qelspr{good}.gif").read_bytes(), GLOBO)
        self.host("build", self.site, "--keep-errors", expect=1)
        self.assertEqual(self.page("a.html"), PAGE.replace("<!-- qel:modules -->", ERROR * 7))

    def test_missing_file_and_failing_call_are_reported_with_their_module(self):
        self.make_site("a.html")
        self.add_module("a.html", script(link=self.add_record("--kind", "file", "--file", self.file("lost.txt", b"x"))))
        (self.site / "data" / "lost.txt").unlink()
        self.assertIn("a.html, module 1: the file data/lost.txt of record 1 is missing", self.host("build", self.site, expect=1))
        self.sql("UPDATE module SET script = ?", [[script(**{"from": "1e300"})]])
        self.assertIn("a.html, module 1: ", self.host("build", self.site, expect=1))
        self.assertIn("<!-- qelhost: module 1 is left out, error 6 -->", self.page("a.html"))

    @portable
    def test_modules_go_to_their_places(self):
        pages = {
            "<body>x</Body ><p></body></html>": "<body>x</Body ><p>12</body></html>",
            "<p>x": "<p>x12",
            "a<!--qel:modules-->b<!-- qel:modules -->c</body>": "a12bc</body>",
            "<!-- qel:modules b --><!-- qel:modules a --></body>": "43" + "12</body>",
            "<!-- qel:title -->|<!-- note --><!-- qel:modules a b --><!-- qel:x -->":
                "R&#38;D &#60;1&#62;|<!-- note --><!-- qel:modules a b --><!-- qel:x -->12",
            "<!-- qel:menu --><!-- qel:modules": '<ul><li><a href="p.html" aria-current="page">&#34;P&#34;</a></li>'
                                                 '<li><a href="q%20%26%C3%B1.html">q &#38;&#241;</a></li></ul><!-- qel:modules12',
        }
        self.host("init", self.site, "--title", "R&D <1>")
        for name, content in {"p.html": "<!-- qel:modules a --><!-- qel:modules b -->", "q &ñ.html": PAGE}.items():
            self.add_page(name, content)
        self.host("page", "set", self.site, "p.html", "--title", '"P"')
        empty = script(showimage="0")
        for place in ("", "", "a", "b"):
            self.add_module("p.html", empty, "--place", place)
        for content, expected in pages.items():
            self.host("page", "set", self.site, "p.html", self.file("page", content))
            self.host("build", self.site, expect=0 if "modules a -->" in content else 1)
            text = re.sub(r"<script.*?var showme(\d).*?</script>\r\n", r"\1", self.page("p.html"), flags=re.DOTALL)
            self.assertEqual(text, expected)
        self.assertIn('no place "b"', self.host("build", self.site, expect=1))

    @portable
    def test_module_text_is_written_in_the_encoding_of_the_page(self):
        self.make_site()
        link = self.add_record("--kind", "file", "--file", self.file("año € 日 😀.txt", b"x"))
        pages = {"ascii.html": (b"<p>", b"a&#241;o &#8364; &#26085; &#128512;.txt"),
                 "utf.html": ("<p>ü".encode(), "año € 日 😀.txt".encode()),
                 "ansi.html": (b"<p>\xfc", b"a\xf1o \x80 &#26085; &#128512;.txt")}
        for name, (content, _) in pages.items():
            self.add_page(name, content)
            self.add_module(name, script(link=link))
        self.host("build", self.site)
        for name, (content, expected) in pages.items():
            built = (self.site / "build" / name).read_bytes()
            self.assertTrue(built.startswith(content), name)
            self.assertIn(b'<a href="files/' + expected + b'">', built)

    def test_imported_picture_comes_from_the_modules_archive(self):
        self.make_site("index.html")
        imported = {"image": "qelspr.gif", "folder": "(USER)", "imagemode": "gif"}
        other = (DESIGNS / "Animales" / "Pez.gif").read_bytes()
        self.add_module("index.html", script(**imported, archive="module1.dat"), "--archive",
                        self.file("mine.dat", archive_of("qelspr.gif", GLOBO)))
        self.add_module("index.html", script(**imported, archive="module2.dat"))
        self.assertIn("module 2:", self.host("build", self.site, expect=1))
        self.host("module", "archive", self.site, 2, self.file("b", archive_of("qelspr.gif", other)))
        no_archive = self.file("zeros", bytes(100))
        for command in (["archive", self.site, 2], ["add", self.site, "index.html", "--archive"]):
            self.assertIn("another kind of file", self.host("module", *command, no_archive, expect=1))
        self.host("build", self.site)
        self.assertEqual(tree(self.site / "build/images"), {"qelspr1.gif": GLOBO, "qelspr2.gif": other})
        self.host("module", "remove", self.site, 1)
        self.assertEqual([path.name for path in (self.site / "data").iterdir()], ["module2.dat"])

    def test_build_again_gives_the_same_bytes_and_nothing_stale(self):
        self.make_site("a.html", "b.html", "c.html")
        record = self.add_record("--kind", "file", "--file", self.file("n.txt", b"old"))
        self.add_module("a.html", script(link=record, midi="Vals.mid", midifolder="Fiestas", playmidi="1"))
        self.add_module("b.html", script(link=record))
        self.host("build", self.site)
        first = tree(self.site / "build")
        self.assertIn("media/qelmid1.mid", first)
        self.host("build", self.site)
        self.assertEqual(tree(self.site / "build"), first)
        self.host("record", "set", self.site, record[4:], "--file", self.file("n.txt", b"new"))
        self.host("page", "set", self.site, "b.html", self.file("page", PAGE + "changed"))
        self.host("page", "set", self.site, "a.html", self.file("page", PAGE + "changed"))
        self.host("build", self.site, "--only", "B.html")
        second = tree(self.site / "build")
        changed = {name for name in first if second[name] != first[name]}
        self.assertEqual((second.keys(), changed), (first.keys(), {"b.html", "files/n.txt"}))
        self.host("record", "set", self.site, record[4:], "--file", self.file("m.txt", b"new"))
        self.host("page", "remove", self.site, "c.html")
        self.host("build", self.site)
        self.assertEqual(tree(self.site / "build").keys(), first.keys() - {"c.html", "files/n.txt"} | {"files/m.txt"})

    def test_build_touches_nothing_that_is_not_its_own(self):
        self.make_site("index.html")
        build = self.site / "build"
        mine = self.folder / "mine"
        mine.mkdir()
        (mine / "precious").touch()
        build.mkdir()
        self.file(build / "index.html", "mine")
        self.assertIn("did not make", self.host("build", self.site, expect=1))
        (build / "index.html").unlink()
        self.host("build", self.site)
        (build / "notes.html").write_text("mine")
        (build / ".qelhost").write_text("../../mine/precious\nindex.html\n")
        for name in ("images", "media", "files"):
            shutil.rmtree(build / name)
            (build / name).symlink_to(mine)
            self.assertIn("it is a link", self.host("build", self.site, expect=1))
            (build / name).unlink()
            (build / name / "mine").mkdir(parents=True)
            self.assertIn("did not make this folder", self.host("build", self.site, expect=1))
            shutil.rmtree(build / name)
        (build / "index.html").unlink()
        (build / "index.html").symlink_to(mine / "precious")
        self.host("build", self.site)
        self.assertEqual((build / "notes.html").read_bytes() + (mine / "precious").read_bytes(), b"mine")
        self.assertEqual(self.page("index.html"), PAGE.replace("<!-- qel:modules -->", ""))
        self.assertFalse([name for name in os.listdir(build) if name.endswith(".new")])

    @portable
    def test_mistyped_place_comments_are_reported(self):
        self.make_site()
        content = PAGE + "\n<!-- qel:modulos --><!--qel:menu x--><!-- QEL:Title -->\n<!-- a note of qel: --><!--Qel:menu"
        expected = ["line 2: a build does not fill <!-- qel:modulos -->", "line 2: a build does not fill <!--qel:menu x-->",
                    "line 2: a build does not fill <!-- QEL:Title -->", "line 3: a build does not fill <!--Qel:menu"]
        source = self.file("p.html", content)
        for command in (["page", "add", self.site, source], ["page", "set", self.site, "p.html", source], ["build", self.site]):
            said = self.errors_of(*command).splitlines()
            self.assertEqual([re.sub(";.*", "", line[line.index("line"):]) for line in said], expected)

    def test_static_files_come_into_the_build_and_leave_it(self):
        self.make_site("index.html")
        static, build = self.site / "static", self.site / "build"
        content = {"style.css": b"1", "js/a%20b.js": b"2", "js/deep/c.js": b"3"}
        (static / "js" / "deep").mkdir(parents=True)
        for name, data in content.items():
            self.file(static / name, data)
        self.host("build", self.site)
        self.assertEqual({name: data for name, data in tree(build).items() if name in content}, content)
        unchanged = (build / "js/deep/c.js").stat().st_ino
        (static / "style.css").unlink()
        self.file(static / "js/a%20b.js", b"4")
        self.host("build", self.site, "--only", "index.html")
        self.assertEqual(((build / "js/a%20b.js").read_bytes(), (build / "style.css").exists()), (b"4", False))
        self.assertEqual((build / "js/deep/c.js").stat().st_ino, unchanged)
        (build / "js" / "mine.js").write_text("mine")
        shutil.rmtree(static)
        self.host("build", self.site)
        self.assertEqual(tree(build).keys(), {".qelhost", "index.html", "js/mine.js"})
        self.assertFalse((build / "js/deep").exists())

    def test_static_files_that_others_own_are_refused_by_name(self):
        self.make_site("index.html")
        static, build = self.site / "static", self.site / "build"
        self.host("build", self.site)
        (build / "mine.css").write_text("mine")
        (build / "out").symlink_to(self.folder)
        (self.folder / "precious").write_text("precious")
        odd = [] if WINDOWS else ["a\nb"]
        far = "/".join(["n" * 130] * 2 + ["good.css"])
        for name in ("INDEX.html", "Images/a.gif", "media", ".htaccess", "css/.git", "mine.css", "out/precious", "good.css", far, *odd):
            (static / name).parent.mkdir(exist_ok=True, parents=True)
            self.file(static / name, b"x")
        (static / "link").symlink_to(self.folder)
        if not WINDOWS:
            os.mkfifo(static / "pipe")
        lines = self.host("build", self.site, expect=1).splitlines()
        names = {line.split(": ")[0] for line in lines}
        self.assertEqual(names, {f"static/{name}" for name in ("INDEX.html", "Images", "media", ".htaccess", "css/.git", "mine.css", "out/precious", "link",
                                                               *([] if WINDOWS else ["a?b", "pipe"]))})
        self.assertEqual(tree(build).keys(), {".qelhost", "index.html", "mine.css", "good.css", far})
        self.assertEqual((build / "mine.css").read_text() + (self.folder / "precious").read_text(), "mineprecious")
        with open(build / ".qelhost", "a") as written:
            written.write("/../data/x\n/css\\..\\..\\data\\x\n/out/precious\n/images/\n")
        self.file("mi sitio ñ/data/x", b"kept")
        self.host("build", self.site, expect=1)
        self.assertTrue((self.site / "data/x").exists() and (self.folder / "precious").exists())

    def test_pages_follow_the_files_that_they_came_from(self):
        self.make_site()
        (self.site / "src").mkdir()
        sources = {"in.html": self.site / "src" / "in.html", "out.html": self.file("out.html")}
        for source in sources.values():
            source.write_text("first")
            self.host("page", "add", self.site, source)
        self.host("page", "add", self.site, "-", "--name", "piped.html", stdin="piped")
        self.assertEqual(self.errors_of("build", self.site), "")
        for source in sources.values():
            source.write_text("second")
        self.host("build", self.site, "--no-refresh")
        self.assertEqual([self.page(name) for name in sources], ["first"] * 2)
        moved = self.folder / "moved"
        self.site = self.site.rename(moved)
        self.assertEqual(self.errors_of("build", self.site), "in.html: taken from src/in.html again\n"
                         f"out.html: taken from {named(sources['out.html'])} again\n")
        self.assertEqual([self.page(name) for name in sources], ["second"] * 2)
        sources["out.html"].unlink()
        self.assertRegex(self.errors_of("build", self.site), "^out.html: its file .* is gone, .*\n$")
        self.assertEqual((self.errors_of("build", self.site), self.page("out.html")), ("", "second"))
        sources["out.html"].write_text("third")
        self.assertIn("again", self.errors_of("build", self.site))
        self.host("page", "set", self.site, "out.html", "-", stdin="piped")
        self.host("page", "set", self.site, "in.html", self.file("other.html", "other"))
        sources["out.html"].write_text("fourth")
        (self.folder / "other.html").write_text("newer")
        self.assertIn("other.html again", self.errors_of("build", self.site))
        self.assertEqual((self.page("out.html"), self.page("in.html")), ("piped", "newer"))

    @portable
    def test_page_files_that_cannot_be_taken_leave_the_stored_page(self):
        self.make_site()
        source = self.file("a.html", "first")
        self.host("page", "add", self.site, source)
        source.write_bytes("utf-16".encode("utf-16"))
        self.assertRegex(self.host("build", self.site, expect=1), "^a.html: its file .*a.html is not used, .*save it as UTF-8")
        source.unlink()
        os.mkfifo(source)
        self.assertIn("is not used", self.host("build", self.site, expect=1))
        source.unlink()
        with open(source, "wb") as file:
            file.truncate((16 << 20) + 1)
        self.assertIn("larger than 16 MB", self.host("build", self.site, expect=1))
        self.assertIn("larger than 16 MB", self.host("page", "set", self.site, "a.html", source, expect=1))
        self.assertEqual(self.page("a.html"), "first")

    def test_page_names_that_are_too_long_end_neither_building_nor_removing(self):
        self.make_site()
        longest, longer = "n" * 250 + ".html", "n" * 251 + ".html"
        self.add_page(longest)
        self.assertIn("longer than 255 bytes", self.host("page", "add", self.site, "-", "--name", longer, expect=1))
        self.add_page("a.html")
        self.sql("UPDATE page SET name = ? WHERE name = 'a.html'", [[longer]])
        self.host("build", self.site, expect=1)
        with open(self.site / "build/.qelhost", "a") as written:
            written.write(longer + "\n")
        self.assertIn(f"{longer}: the page is not built", self.host("build", self.site, expect=1))
        self.assertEqual(tree(self.site / "build").keys(), {longest, ".qelhost"})
        self.host("page", "remove", self.site, longer)
        self.host("build", self.site)

    def interrupted_build(self, number):
        """Sends the signal to a build that cannot go on, since nobody reads what it says; returns how it ends. On Windows
        it is Ctrl+C."""
        if WINDOWS:
            run = subprocess.run([*PROGRAM[:-1], INTERRUPTER, PROGRAM[-1], "build", named(self.site)], env=self.environment,
                                 capture_output=True, text=True, timeout=60)
            return run.returncode, run.stderr
        reading, writing = os.pipe()
        fcntl.fcntl(writing, fcntl.F_SETPIPE_SZ, 4096)
        with self.start("build", self.site, stderr=writing, stdout=subprocess.DEVNULL) as build, open(reading) as messages:
            os.close(writing)
            messages.readline()
            build.send_signal(number)
            said = messages.read()
            return build.wait(timeout=60), said

    def test_build_of_an_older_script_without_a_link_takes_over_no_other(self):
        self.make_site("index.html")
        self.add_module("index.html", script(link="URL:a"))
        module = self.add_module("index.html", script(link="URL:b"))
        self.sql(f"UPDATE module SET script = replace(script, 'name=\"link\"', 'name=\"x\"') WHERE id = {module}")
        self.host("build", self.site)
        self.assertEqual(self.page("index.html").count("<a href"), 1)

    def make_site_with_many_messages(self):
        self.make_site("a.html", "b.html")
        self.sql("INSERT INTO module (page, place, position, script) VALUES (1, '', ?, ?)",
                 [(position, script(image="x" * 200 + ".gif")) for position in range(1, 201)])

    def test_build_that_is_ended_publishes_nothing_half_made(self):
        self.make_site_with_many_messages()
        for number in (signal.SIGINT,) if WINDOWS else (signal.SIGINT, signal.SIGTERM):
            code, said = self.interrupted_build(number)
            self.assertEqual(code, 0xC000013A & 0xFF if WINDOWS else -number, said[-300:])
            self.assertTrue(said.endswith("qelhost: the build was interrupted; build again to complete it.\n"), said[-300:])
            self.assertEqual(tree(self.site / "build").keys(), {".qelhost"})

    @not_on_windows("it cannot be ended like that under Wine")
    def test_build_removes_what_one_that_was_killed_has_left(self):
        self.make_site_with_many_messages()
        self.interrupted_build(signal.SIGKILL)
        left = [self.site / folder / ".qelhost-999999999.new" for folder in ("data", "build", "build/images", "build/static")]
        left[-1].parent.mkdir()
        busy = self.site / f"data/.qelhost-{os.getpid()}.new"
        with open(self.site / "build/.qelhost", "a") as written:
            written.write("/static/\n")
        for path in (*left, busy, self.site / "build/images/half.gif"):
            path.touch()
        self.assertIn("all pages are built", self.host("build", self.site, "--only", "b.html", expect=1))
        self.assertEqual([path for path in left if path.exists()], [])
        self.assertTrue(busy.exists())
        self.assertEqual(tree(self.site / "build").keys(), {".qelhost", "a.html", "b.html"})
        self.assertEqual(self.errors_of("build", self.site, "--only", "b.html"), "")

    def test_programs_at_the_same_time_wait_for_each_other(self):
        self.make_site("index.html")
        adding = [self.start("module", "add", self.site, "index.html", stdout=subprocess.PIPE) for _ in range(8)]
        modules = sorted(run.communicate(timeout=60)[0].decode() for run in adding)
        self.assertEqual(modules, [f"module {number}\n" for number in range(1, 9)])
        self.assertEqual(sorted(row.split()[-1] for row in self.rows("module")), list("12345678"))


class SiteTest(HostTest):
    @portable
    def test_positions_stay_dense(self):
        self.make_site("a.html", "b.html", "c.html")
        self.add_page("d.html", PAGE + "<!-- qel:modules x -->")
        self.host("page", "move", self.site, "d.html", 1)
        self.host("page", "move", self.site, "a.html", 4)
        self.host("page", "remove", self.site, "b.html")
        self.assertEqual(self.rows("page"), ["1 d.html 0 d", "2 c.html 0 c", "3 a.html 0 a"])
        for page in ("a.html", "a.html", "a.html", "d.html"):
            self.host("module", "add", self.site, page)
        self.host("module", "move", self.site, 3, 1)
        self.host("module", "move", self.site, 1, 3)
        self.host("module", "move", self.site, 2, 1, "--page", "d.html", "--place", "x")
        self.host("module", "move", self.site, 4, 2, "--place", "x")
        self.assertEqual(self.rows("module"), ["2 d.html x 1", "4 d.html x 2", "3 a.html - 1", "1 a.html - 2"])
        for wrong in (["module", "move", self.site, 3, 0], ["module", "move", self.site, 3, 3],
                      ["module", "move", self.site, 3, 1, "--page", "d.html", "--place", "y"],
                      ["page", "move", self.site, "a.html", 4]):
            self.assertRegex(self.host(*wrong, expect=1), "give one from 1 to|has no place")
        self.host("module", "remove", self.site, 2)
        self.host("module", "add", self.site, "d.html", "--place", "x")
        self.assertEqual(self.rows("module"), ["4 d.html x 1", "5 d.html x 2", "3 a.html - 1", "1 a.html - 2"])

    @portable
    def test_pages_in_use_are_not_removed_unasked(self):
        self.make_site("a.html", "b.html")
        self.add_module("a.html", script(), "--archive", self.file("x", archive_of("a", b"")))
        record = self.add_record("--kind", "page", "--page", "a.html")
        self.assertIn("record 1 leads to", self.host("page", "remove", self.site, "a.html", expect=1))
        self.host("record", "set", self.site, record[4:], "--page", "b.html")
        self.assertIn("--with-modules", self.host("page", "remove", self.site, "a.html", expect=1))
        self.assertEqual(self.rows("module"), ["1 a.html - 1"])
        self.host("page", "remove", self.site, "a.html", "--with-modules")
        self.assertEqual((self.rows("module"), list((self.site / "data").iterdir())), ([], []))

    def test_pages_and_sites_are_shown_and_renamed(self):
        self.make_site("a.html", "b.html")
        content = "<p>ñ\r\n<!-- qel:title -->"
        self.host("page", "set", self.site, "a.html", self.file("p", content))
        self.assertEqual(self.host("page", "show", self.site, "a.html", text=False), content.encode())
        record = self.add_record("--kind", "page", "--page", "a.html")
        self.add_module("b.html", script(link=record))
        self.assertIn("has a page", self.host("page", "set", self.site, "a.html", "--name", "B.html", expect=1))
        self.host("page", "set", self.site, "a.html", "--name", "A.html", "--title", "T")
        self.host("site", "set", self.site, "--title", "Título")
        self.host("build", self.site)
        self.assertEqual(self.rows("page"), ["1 A.html 0 T", "2 b.html 1 b"])
        self.assertEqual(self.page("A.html"), content.replace("<!-- qel:title -->", "Título"))
        self.assertFalse((self.site / "build" / "a.html").exists())
        self.assertIn('href="A.html"', self.page("b.html"))
        for wrong in (["page", "set", self.site, "A.html"], ["site", "set", self.site]):
            self.assertIn("nothing to change", self.host(*wrong, expect=2))

    @portable
    def test_references_that_lead_to_nothing_are_told(self):
        self.make_site("otra.html")
        (self.site / "static" / "img").mkdir(parents=True)
        (self.site / "static" / "img" / "a b.png").write_bytes(b"")
        there = ('<a href="otra.html#x">', '<img SRC = img/a%20b.png?v=1>', "<a href='https://x/y.css'>", '<a href="#top">',
                 '<a href="mailto:a@b">', '<img src="/abs.png">', '<img src="images/qelspr1.gif">', '<a name="href=no.png">',
                 '<!-- <img src="no.png"> -->', '<script>"<img src=no.png></b><i>"</SCRIPT>', '<a href="">', '<p>href="no.png"',
                 '<img srcset="https://x/a.png 1x,data:x,y 2x">', "<style>/* url(no.png) */ p { content: 'url(no.png)' }</style>")
        missing = {'<link rel=x href="./estilo.css">': "./estilo.css", '<img src="../x.png">': "../x.png",
                   '<img alt=">" src="&amp;&#39;.gif"': "&'.gif", "<script src=a.js></script>": "a.js",
                   '<img srcset="img/a%20b.png, 1.png 1x,2.png, 3.png 100w">': "1.png 2.png 3.png",
                   '<p style="background: URL( &quot;4.png&quot; )">': "4.png",
                   "<style>@import '5.css'; @import url(6.css); p { background: url( 7.png ) }</style>": "5.css 6.css 7.png"}
        def reported(content):
            said = self.errors_of("page", "set", self.site, "otra.html", "-", input=content)
            return re.findall(r'otra\.html refers to "(.*?)", which', said)
        self.assertEqual(reported("".join([*there, *missing])), " ".join(missing.values()).split())
        for base, expected in (("img/x.html", ["img/c.png"]), ("?x", ["c.png", "a b.png"]), ("https://x/", []), ("/", [])):
            self.assertEqual(reported(f'<img src=c.png><base href="{base}"><base href=no/><img src="a b.png">'), expected)

    @portable
    def test_records_that_modules_link_to_are_not_removed_unasked(self):
        self.make_site("a.html")
        for _ in range(11):
            self.add_record("--kind", "none")
        self.add_module("a.html", script(link="UID:11"))
        self.host("record", "remove", self.site, 1)
        self.assertRegex(self.host("record", "remove", self.site, 11, expect=1), "module 1 links to record 11; .*--force")
        self.add_module("a.html", '<PG.plugin version=1.0><PG.param value=UID:11 name=link>')
        self.assertIn("modules 1, 2 link to record 11", self.host("record", "remove", self.site, 11, expect=1))
        self.host("record", "remove", self.site, 11, "--force")
        self.assertEqual(len(self.rows("record")), 9)

    def on_disk(self, options, body):
        """Runs shell commands where a disk that only they see stands in the place of the site, a copy of which is on it.
        $QEL is the program, $SITE the site."""
        environment = self.environment | {"QEL": str(STAGE / "qelhost"), "SITE": str(self.site), "OPTIONS": options,
                                          "ORIGINAL": str(self.folder / "original")}
        if WINDOWS:
            environment |= self.windows_that_sees_the_disk()
        self.site.rename(self.folder / "original")
        self.site.mkdir()
        run = subprocess.run(
            ["unshare", *([] if os.geteuid() == 0 else ["--user", "--map-root-user"]), "--mount", "sh", "-ec",
             'mount -t tmpfs -o "$OPTIONS" none "$SITE" && cp -a "$ORIGINAL/." "$SITE" || { echo refused; exit 0; }\n' + body],
            env=environment, capture_output=True, text=True, timeout=60)
        if WINDOWS:
            subprocess.run(["/usr/lib/wine/wineserver", "-k"], env=environment, capture_output=True)
        if run.stdout.startswith("refused") or "unshare:" in run.stderr:
            self.skipTest("no disk may be mounted here")
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        return run.stdout, run.stderr

    def windows_that_sees_the_disk(self):
        """The variables for $QEL under Wine. Files are opened by Wine's server, so this has to be one that starts where the
        disk is, in a folder of its own, with the registry and the files of the common one."""
        if "QEL_WINE_PROGRAM" in os.environ:
            self.skipTest("a Wine of another system does not see the disk")
        common, own = RUNNER.parent.parent / "build" / "wine", self.folder / "wine"
        if not own.exists():
            shutil.copytree(common, own, symlinks=True, ignore=lambda folder, names: [name for name in names if name == "drive_c"])
            (own / "drive_c").symlink_to(common / "drive_c")
            program = self.file("qelhost", f'#!/bin/sh\nexec "{RUNNER}" --streams "{STAGE}/qelhost.exe" "$@"\n')
            program.chmod(0o700)
        return {"QEL": str(self.folder / "qelhost"), "QEL_WINE": str(own), "WINEPREFIX": str(own)}

    def test_site_that_cannot_be_written_is_listed_and_shown(self):
        self.file("new.html", b"x" * 100000)
        older = ["DROP TABLE edit", "ALTER TABLE page DROP COLUMN source", "ALTER TABLE page DROP COLUMN source_hash",
                 "PRAGMA user_version = 1"]
        read_only = 'mount -o remount,ro "$SITE"\n'
        for spoil, statements, reason in ((read_only, [], "is read-only"), (read_only, older, "is read-only"),
                                          ('cat /dev/zero > "$SITE/fill" 2> "$ORIGINAL/ignored" || true\n', [], "the disk is full")):
            self.make_site("a.html")
            self.add_module("a.html", script())
            for statement in statements:
                self.sql(statement)
            shown, refused = self.on_disk("size=4m", spoil + f"""
                for what in page module record; do "$QEL" $what list "$SITE"; done
                "$QEL" module script "$SITE" 1; "$QEL" module show "$SITE" 1
                "$QEL" page add "$SITE" "{self.folder}/new.html" && exit 1; "$QEL" build "$SITE" && exit 1; exit 0""")
            self.assertRegex(shown, r"(?s)a\.html.*1 +a\.html.*UID.*pg\.plugin.*Globo")
            for line in refused.splitlines():
                self.assertIn(reason, line)
            shutil.rmtree(self.folder / "original")
            self.site.rmdir()

    def test_packing_on_a_full_disk_leaves_what_was_there(self):
        self.make_site()
        self.file("in/a", bytes(5 << 20))
        left, errors = self.on_disk("size=4m", """cd "$SITE"; echo old > data/old.dat
            for name in old new; do ! "$QEL" archive pack --force data/$name.dat "$ORIGINAL/../in"; done
            cat data/old.dat; ls -A data""")
        self.assertEqual((left, errors.count("the disk is full")), ("old\nold.dat\n", 2))

    def test_names_that_would_do_harm_are_refused(self):
        self.make_site("index.html", "Año.html")
        for name in ("../x.html", "a/b.html", "..html", ".x.html", "a\\b.html", "a%3.html", "a#.html", "x.txt", "a\n.html",
                     *([] if WINDOWS else [b"\xff.html"]), "INDEX.html", "aÑO.html", "x'.html"):
            self.assertRegex(self.host("page", "add", self.site, "-", "--name", os.fsdecode(name), expect=1),
                             "cannot be the name|has a page")
        self.assertIn("save it as UTF-8", self.host("page", "add", self.site, "-", "--name", "w.html", expect=1, text=False,
                                                    stdin="\ufeff<p>".encode("utf-16")).decode())
        (self.site / "data" / "Lista.txt").write_bytes(b"of a command that was killed")
        self.add_record("--kind", "file", "--file", self.file("Lista.txt", b"1"))
        for name in ("LISTA.TXT", "qelspr7.gif", "QELMID.mid", "module1.dat"):
            self.assertRegex(self.add_record("--kind", "picture", "--file", self.file(name), expect=1), "another name")
        self.assertEqual(tree(self.site / "data"), {"Lista.txt": b"1"})

    def test_names_that_only_linux_holds_are_warned_of_or_refused(self):
        self.make_site()
        def said(*command):
            return self.host(*command, expect=1) if WINDOWS else self.errors_of(*command)
        word = "cannot be" if WINDOWS else "Windows cannot hold the name"
        for name, reason in (("con.html", "a device"), ("LPT\u00b9 .x.html", "a device"), ("a|b.html", "it contains |")):
            self.assertRegex(said("page", "add", self.site, self.file("p"), "--name", name), f"{word}.*{re.escape(reason)}")
        self.assertRegex(said("record", "add", self.site, "--kind", "5", "--file", self.file("a.pdf.")), f"{word}.*in a full stop")
        if not WINDOWS:
            for name in ("a.css", "A.css", "aux.js"):
                self.file(self.site / "static" / name)
            self.assertRegex(self.errors_of("build", self.site), "a.css: its name and that of A.css .*\nstatic/aux.js: .*\n$")

    @portable
    def test_records_take_what_suits_their_kind(self):
        self.make_site("index.html")
        for options in (["--kind", "7"], ["--kind", "mail"], ["--kind", "none", "--address", "x"], ["--kind", "picture"],
                        ["--kind", "file", "--address", "x"], ["--kind", "3", "--page", "index.html"], ["--title", "x"]):
            self.add_record(*options, expect=2)
        self.add_record("--kind", "page", "--page", "none.html", expect=1)
        said, _ = self.outputs("record", "add", self.site, "--kind", "file", "--file", self.folder / "missing", expect=1)
        self.assertEqual(said, "", "no UID is printed before the record is stored")
        self.assertIn("is a folder", self.add_record("--kind", "file", "--file", self.folder, expect=1))
        self.assertEqual(self.add_record("--kind", "2", "--address", "#x", "--title", "Sección"), "UID:1")
        self.host("record", "set", self.site, 1, "--page", "index.html")
        self.host("record", "set", self.site, 1, "--file", self.file("x"), expect=2)
        self.add_record("--kind", "file", "--file", self.file("x", b"x"))
        self.host("record", "set", self.site, 2, "--file", self.file("y", b"y"), "--title", "T")
        self.assertEqual(self.rows("record"), ["1 section index.html#x Sección", "2 file y T"])
        self.assertEqual(tree(self.site / "data"), {"y": b"y"})
        self.host("record", "remove", self.site, "UID:2")
        self.assertEqual((self.add_record("--kind", "none"), tree(self.site / "data")), ("UID:3", {}))

    def test_scripts_are_kept_to_the_byte_once_the_component_took_them(self):
        self.make_site("index.html")
        self.host("module", "add", self.site, "index.html")
        odd = (script(link="URL:ñ😀") + "free text\n\t<unknown>").encode()
        self.host("module", "script", self.site, 1, "-", stdin=odd, text=False)
        for wrong in (script(**{"from": "1e300"}).encode(), b"\xff", b"", PAGE.encode()):
            self.host("module", "script", self.site, 1, "-", stdin=wrong, text=False, expect=1)
            self.assertEqual(self.host("module", "script", self.site, 1, text=False), odd)
        self.assertIn("has no module 2", self.host("module", "script", self.site, 2, expect=1))
        self.assertIn("the script on the standard input has no tag", self.host("module", "add", self.site, "index.html", "--script", "-", expect=1))

    @portable
    def test_scripts_without_a_link_get_an_empty_one(self):
        self.make_site("index.html")
        tag, no_link = '<pg.plugin uid="QelPluginAnimation" version="1.0">', '<pg.param name="link">'
        for given, stored in ((tag, f"{tag}\n{no_link}\n"), (tag + "<pg.open", f"{no_link}\n{tag}<pg.open"),
                              (tag + '<pg.param name="LINK">', f'{tag}<pg.param name="LINK">\n{no_link}\n'),
                              (tag + "<PG.param link=1 name=link>", tag + "<PG.param link=1 name=link>")):
            module = self.add_module("index.html", given)
            self.assertEqual(self.host("module", "script", self.site, module), stored)
            self.host("module", "script", self.site, module, "-", stdin=given)
            self.assertEqual(self.host("module", "script", self.site, module), stored)

    @not_on_windows("Wine's console draws its own way")
    def test_summaries_are_rendered_for_a_terminal_only(self):
        self.make_site("index.html")
        new = self.host("module", "add", self.site, "index.html").split()[1]
        sun = self.add_module("index.html", script("S\x1b[2Jl.gif"))
        old = self.add_module("index.html", script().replace('version="1.0"', 'version="9"'))
        plain = "⚠ Aún no ha seleccionado ningún motivo que representar. Haga clic aquí para seleccionar un motivo y una música.\n"
        self.assertEqual(self.host("module", "show", self.site, new), plain)
        self.assertEqual(self.host("module", "show", self.site, old), plain + "⚠ No se ha seleccionado ningún motivo.\n")
        self.assertIn("Haga clic \x1b[4maquí\x1b[24m para", self.terminal("module", "show", self.site, new))
        self.assertIn('\x1b[1m"S?[2Jl"\x1b[22m.', self.terminal("module", "show", self.site, sun))
        self.assertIn("\r\x1b[K[1/1] index.html", self.terminal("build", self.site))
        self.environment["NO_COLOR"] = "1"
        self.assertIn("Haga clic aquí para", self.terminal("module", "show", self.site, new))
        untuned = self.add_module("index.html", script(playmidi="1"))
        self.assertIn("no tune is chosen", self.host("module", "show", self.site, untuned, expect=1))

    def terminal(self, *arguments):
        """What the program shows on a terminal."""
        controller, terminal = pty.openpty()
        with self.start(*arguments, stdout=terminal, stderr=terminal):
            os.close(terminal)
            shown = b""
            with contextlib.suppress(OSError):  # the terminal is gone
                while part := os.read(controller, 4096):
                    shown += part
        os.close(controller)
        return shown.decode()

    def test_databases_that_are_none_of_its_own_are_refused(self):
        self.assertIn("run qelhost init", self.host("page", "list", self.folder, expect=1))
        self.assertIn('folder, such as "." for this one.\n', self.host("page", "list", "", expect=2))
        self.make_site()
        self.assertIn("is a site already", self.host("init", self.site, expect=1))
        database = self.site / "site.db"
        for statement, reason in (("PRAGMA user_version = 99", "newer"), ("CREATE TABLE page (name)", "was not made by qelhost")):
            self.sql(statement)
            self.assertIn(reason, self.host("build", self.site, expect=1))
            database.unlink()
        database.write_bytes(b"no database at all" * 100)
        self.assertIn("damaged", self.host("build", self.site, expect=1))
        (self.folder / "other" / "data" / "a").mkdir(parents=True)
        self.assertIn("there already", self.host("init", self.folder / "other", expect=1))


class ArchiveTest(HostTest):
    def test_a_folder_goes_into_an_archive_and_out_again(self):
        content = {"a.txt": b"abc", "Img/ñ.gif": bytes(2000)}
        source, archive, out, way, empty, none = (self.folder / name for name in ("in", "a.dat", "out", "way", "2", "none"))
        for folder in (source / "Img", way / "a.txt", empty):
            folder.mkdir(parents=True)
        for name, data in content.items():
            self.file(f"in/{name}", data)
        self.host("archive", "pack", archive, source)
        self.assertRegex(self.host("archive", "list", archive),
                         r"1 KB +\\ +a.txt\n2 KB +\\Img\\ +ñ.gif\n2 files, 2003 bytes")
        self.host("archive", "unpack", archive, out)
        before = archive.read_bytes()
        twins = archive_of("a", b"1")[:-4] + archive_of("A", b"2")[13:]
        unnameable = self.file("2/日.txt")
        pipe = self.folder / "pipe"
        if not WINDOWS:
            os.mkfifo(pipe)
        link = self.folder / "link.dat"
        link.symlink_to(archive)
        loop = self.folder / "loop"
        loop.symlink_to(loop)
        only_here = [] if WINDOWS else [(["pack", pipe, source, "--force"], "no plain file"), (["list", "x" * 300], "is too long"),
                                        (["pack", link, source, "--force"], "is a link"),
                                        (["list", loop], "leads through too many")]
        for arguments, reason in ((["unpack", archive, out], "--force"), (["pack", archive, source], "--force"),
                                  (["pack", archive, none], "no folder"),
                                  (["pack", none / "a.dat", source], "archive itself: its folder"),
                                  (["pack", self.folder / "c.dat", unnameable.parent], "日.txt: its name"),
                                  (["list", self.file("b.dat", before[:-1])], "it is damaged"),
                                  (["list", self.file("h.dat", b"qelarchive1.1")], "another kind of file"),
                                  (["list", source], "not a file"),
                                  (["unpack", archive, self.file("file", b"x")], "file is a file"),
                                  (["unpack", self.file("d.dat", twins), none], "more than once"),
                                  (["unpack", self.file("e.dat", archive_of("..\\evil", b"x")), none], "leads out"),
                                  (["unpack", archive, way], "as a folder"),
                                  (["unpack", archive, way, "--force"], "as a folder"),
                                  (["unpack", self.file("f.dat", archive_of("x" * 300, b"x")), source],
                                   "name is too long"),
                                  (["unpack", self.file("g.dat", archive_of("g.dat", b"x")), self.folder, "--force"],
                                   "archive itself"),
                                  (["unpack", none, source], "no file"), *only_here):
            self.assertIn(reason, self.host("archive", *arguments, expect=1))
        if not WINDOWS:
            with archive.open() as locked:
                fcntl.flock(locked, fcntl.LOCK_EX)
                self.assertIn("in use", self.host("archive", "list", archive, expect=1))
            with (source / "a.txt").open() as locked:
                fcntl.flock(locked, fcntl.LOCK_EX)
                self.assertIn("no permission", self.host("archive", "pack", self.folder / "i.dat", source, expect=1))
        for arguments in (["pack", source / "a.dat", "."], ["pack", "bare.dat", "."], ["pack", "", "."], ["list", ""]):
            self.host("archive", *arguments, expect=2, cwd=source)
        self.assertEqual((archive.read_bytes(), tree(out)), (before, content))
        self.host("archive", "unpack", archive, out, "--force")
        self.assertIn("\n1 file, 1 byte\n", self.host("archive", "list", self.folder / "g.dat"))


class CommandLineTest(HostTest):
    def test_lists_and_results_can_be_json(self):
        self.host("init", self.site)
        self.add_page('Año.html', PAGE)
        self.host("page", "set", self.site, "Año.html", "--title", 'a "b"\\\t\n')
        self.add_module("Año.html", script())
        self.add_record("--kind", "mail", "--address", "a@b.c")
        expected = {"page": [{"position": 1, "page": "Año.html", "modules": 1, "title": 'a "b"\\\t\n'}],
                    "module": [{"module": 1, "page": "Año.html", "place": "", "position": 1}],
                    "record": [{"uid": 1, "kind": "mail", "leadsTo": "mailto:a@b.c", "title": ""}]}
        self.assertEqual({group: json.loads(self.host(group, "list", self.site, "--json")) for group in expected}, expected)
        self.assertEqual(json.loads(self.host("build", self.site, "--json")),
                         {"pages": 1, "modules": 1, "failed": 0, "problems": 0, "failures": [],
                          "folder": shown(self.site.resolve() / "build")})
        self.add_module("Año.html", script(image="no.gif"))
        failures = json.loads(self.outputs("build", self.site, "--json", expect=1)[0])["failures"]
        self.assertEqual(failures, [{"page": "Año.html", "module": 2, "error": "53"}])

    @not_on_windows("the user chooses the program that opens pages")
    def test_preview_builds_and_opens_a_page(self):
        self.make_site("a.html", "b.html")
        opened = self.folder / "opened"
        opener = self.file("bin/xdg-open", f'#!/bin/sh\nprintf %s "$1" >"{opened}.new"; mv "{opened}.new" "{opened}"\n')
        opener.chmod(0o755)
        self.environment["PATH"] = f"{opener.parent}:{self.environment['PATH']}"
        for options, page in ([], "a.html"), (["b.html"], "b.html"):
            shown = self.host("preview", self.site, *options).strip()
            while not opened.exists():
                pass
            self.assertEqual((opened.read_text(), Path(shown)), (shown, self.site.resolve() / "build" / page))
            opened.unlink()
        opener.write_text("#!/bin/sh\nexit 3\n")
        self.assertIn("open " + shown + " yourself", self.host("preview", self.site, "b.html", expect=1))
        self.environment["PATH"] = "/nowhere"
        self.assertIn("open " + shown + " yourself", self.host("preview", self.site, "b.html", expect=1))

    @portable
    def test_misuse_ends_with_2_and_points_to_the_help(self):
        for arguments, reason in (([], "no command is given;"),
                                  (["biuld", "x"], 'there is no command "biuld"; did you mean "build"? qelhost --help'),
                                  (["--plugin", "x", "page", "lsit"], '"page lsit"; did you mean "page list"? qelhost page --help'),
                                  (["edit", "x"], '"edit"; did you mean "module edit"? qelhost --help'),
                                  (["set"], '"set"; did you mean "site set", "page set" or "record set"? qelhost --help'),
                                  (["inxx"], '"inxx"; qelhost --help'),  # at most a third of the letters is changed
                                  (["page"], "no command is given; qelhost page --help"),
                                  (["page", "add", "s"], "FILE is required;"), (["info", "--nonsense"], "no option --nonsense here;"),
                                  (["page", "list", "s", "s2"], '"s2" is one argument too many;'),
                                  (["build", "s", "--only"], "--only needs a value after it;"),
                                  (["init", "s", "--title", "a", "--title", "b"], "--title is given more than once;"),
                                  (["build", "s", "--json=x"], "--json takes no value;"),
                                  (["--plugin"], "--plugin needs a value after it;"),
                                  (["record", "remove", "s", "xx"], 'UID: "xx" is not a whole number, such as 1;'),
                                  (["module", "show", "s", "9" * 20], f'ID: "{"9" * 20}" is too large a number;'),
                                  (["module", "move", "s", "1", "1x"], 'POSITION: "1x" is not a whole number')):
            with self.subTest(arguments):
                said = self.host(*arguments, expect=2)
                self.assertIn(reason, said)
                self.assertRegex(said, r"\Aqelhost: .*qelhost .*--help.*\.\n\Z")

    def test_the_component_is_the_one_registered_or_named(self):
        component, other = (
            ("QelPluginAnimation.dll", "qelhostWindow.dll") if WINDOWS else ("QelPluginAnimation.so", "libqelcom.so.1"))
        for name in (PROGRAM[-1].name, other):
            shutil.copy(STAGE / name, self.folder)
        copy = [*PROGRAM[:-1], self.folder / PROGRAM[-1].name]
        for options, reason in (([], "--plugin"), (["--plugin", other], "not a component"),
                                (["--plugin", self.folder], f"opened: {named(self.folder)} is a folder"),
                                (["--plugin", "none"], "opened: there is no file none;"),
                                (["--plugin", self.file("text", b"text" * 99)], "text is not a shared library")):
            self.assertIn(reason, self.host("info", *options, program=copy, expect=1, cwd=self.folder))
        self.host("register", STAGE / component)
        self.assertIn("Mueve objetos gráficos", self.host("info", program=copy))
        self.host("unregister", STAGE / component)
        self.host("info", program=copy, expect=1)


if __name__ == "__main__":
    unittest.main()
