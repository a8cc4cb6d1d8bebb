"""Tests of qelhost after a power cut. A command is killed at a system call that changes a file, and what the next command
finds is the state before it or the state after it.

    python3 powercut_test.py STAGE POWERCUT PLUGINS [TEST...]    POWERCUT kills a program, PLUGINS has edit_test's keys

With QEL_EVERY_CUT in the environment each such call is tried, else a few of each command.
"""
import contextlib
import os
import shutil
import sqlite3
import subprocess
import sys
import unittest

POWERCUT, PLUGINS = sys.argv.pop(2), sys.argv.pop(2)
sys.dont_write_bytecode = True  # leave the sources' folder as it is

from host_test import DESIGNS, GLOBO, PAGE, STAGE, HostTest, archive_of, script, tree  # takes its own argument away

CUT = 99
OLD, NEW = archive_of("Qelspr.GIF", GLOBO), archive_of("qelspr.gif", (DESIGNS / "Amor" / "Rosa.gif").read_bytes())


class PowerCutTest(HostTest):
    def cut(self, number, command):
        environment = self.environment | {"ASAN_OPTIONS": "detect_leaks=0"}  # not of a program that is traced
        run = subprocess.run([POWERCUT, str(number), STAGE / "qelhost", *map(str, command)], env=environment,
                             capture_output=True, text=True, timeout=60)
        return run.returncode, run.stderr

    def after_each_cut(self, command, check, sample=4):
        """Starts with the site as it is. Runs the check after the whole command, and then after each cut."""
        kept = self.folder / "kept"
        self.site.mkdir(exist_ok=True)
        shutil.copytree(self.site, kept)
        code, said = self.cut(0, command)
        self.assertEqual(code, 0, said)
        check()
        count = int(said.split()[-1])
        self.assertGreaterEqual(count, sample)
        for number in range(1, count + 1) if "QEL_EVERY_CUT" in os.environ else range(count, 0, -(count // sample)):
            shutil.rmtree(self.site)
            shutil.copytree(kept, self.site)
            with self.subTest(" ".join(map(str, command)), call=number):
                self.assertEqual(self.cut(number, command)[0], CUT)
                check()
        shutil.rmtree(self.site)
        kept.rename(self.site)

    def expect_old_or_new(self, state, *command, **options):
        """The first state that is seen is the old one, the next one that of the whole command."""
        states = [state()]

        def check():
            found = state()
            states.extend([found] if len(states) == 1 else [])
            self.assertIn(found, states)
        self.after_each_cut(command, check, **options)
        self.assertNotEqual(*states)

    def content(self):
        """What the site contains, once a command has written to it: its database and the files that this names."""
        self.host("build", self.site)
        self.assertEqual(list((self.site / "data").glob(".*")), [])
        with contextlib.closing(sqlite3.connect(self.site / "site.db")) as database:
            named = {f"module{number}.dat" for number, in database.execute("SELECT id FROM module")}
            named |= {name for name, in database.execute("SELECT filename FROM record")}
            return list(database.iterdump()), {n: data for n, data in tree(self.site / "data").items() if n in named}

    def make_full_site(self):
        self.make_site("index.html", "other.html")
        self.add_module("index.html", script("qelspr.gif", "(USER)", imagemode="gif", archive="module1.dat"),
                        "--archive", self.file("old.dat", OLD))
        self.add_record("--kind", "file", "--file", self.file("Lista.txt", "old"))
        self.new_page, self.new_archive = self.file("p", PAGE + "new"), self.file("new.dat", NEW)

    def test_database(self):
        self.make_full_site()
        text = self.file("s", script(link="URL:a"))
        for command in (["page", "set", self.site, "index.html", self.new_page, "--title", "new"],
                        ["page", "remove", self.site, "index.html", "--with-modules"],
                        ["module", "add", self.site, "other.html", "--script", text, "--archive", self.new_archive],
                        ["module", "archive", self.site, 1, self.new_archive],
                        ["module", "remove", self.site, 1],
                        ["record", "set", self.site, 1, "--file", self.file("Otra.txt", "new"), "--title", "new"],
                        ["record", "remove", self.site, 1]):
            self.expect_old_or_new(self.content, *command)

    def test_new_site(self):
        def check():
            if not (self.site / "site.db").exists():
                self.host("init", self.site)
            self.assertEqual(self.host("page", "list", self.site).count("\n"), 1)
            self.assertEqual([path.name for path in self.site.glob(".*")], [])
        self.after_each_cut(["init", self.site], check)

    def test_build(self):
        self.make_full_site()
        (self.site / "static" / "a.css").write_text("a")
        self.host("build", self.site)
        self.host("page", "set", self.site, "index.html", self.new_page)
        self.host("module", "archive", self.site, 1, self.new_archive)
        whole = set()

        def files():
            found = {page.read_bytes() for page in (self.site / "build").glob("*.html")}
            whole.update(found if len(whole) < 3 else ())  # one page, and the other one as it was and as it becomes
            self.assertLessEqual(found, whole)
            self.host("build", self.site, "--only", "other.html")
            return tree(self.site / "build")
        self.expect_old_or_new(files, "build", self.site, sample=6)

    def test_pack(self):
        target = self.file("mi sitio ñ/a.dat", OLD)
        source = self.file("in/b.gif", GLOBO).parent
        self.expect_old_or_new(target.read_bytes, "archive", "pack", target, source, "--force")

    def test_registry(self):
        self.environment["XDG_DATA_HOME"] = str(self.site)
        command = "register", STAGE / "QelPluginAnimation.so"
        states = []

        def check():
            states.append({name: data for name, data in tree(self.site).items() if name.endswith(".class")})
            self.assertLessEqual(states[-1].items(), states[0].items())
            self.host(*command)
            self.assertLessEqual(states[0].items(), tree(self.site).items())
        self.after_each_cut(command, check)

    def test_edit(self):
        self.make_full_site()
        self.environment |= {"QT_QPA_PLATFORM": "offscreen", "QT_PLUGIN_PATH": PLUGINS,
                             "QT_QPA_GENERIC_PLUGINS": f"dialogkeys:{self.file('steps', 'FormMain key Alt+A')}"}
        self.expect_old_or_new(self.content, "module", "edit", self.site, 1, sample=6)


unittest.main()
