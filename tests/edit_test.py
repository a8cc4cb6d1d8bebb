"""Tests of qelhost module edit: the real program, the component's dialog and the host's window, worked by keys.

    python3 edit_test.py STAGE PLUGINS [TEST...]    PLUGINS is the folder with the toolkit's plug-in that presses the keys
"""
import contextlib
import fcntl
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

PLUGINS = Path(sys.argv.pop(2)).resolve()
sys.dont_write_bytecode = True  # leave the sources' folder as it is

from host_test import GLOBO, STAGE, HostTest, archive_of, script  # takes its own argument away

NEW_MOTIF = ["FormMain type Fiestas", "FormMain key Tab", "FormMain key Tab", "FormMain type Globo"]
CHOOSE_LINK = "FormMain key Alt+V"
CHANGE_LINK = [CHOOSE_LINK, "FormMain key Space"]  # both buttons for links can be pressed now, and share their key
CONFIRM = "FormMain key Alt+A"


class EditTest(HostTest):
    def setUp(self):
        super().setUp()
        self.make_site("index.html")
        self.environment |= {"QT_QPA_PLATFORM": "offscreen", "QT_PLUGIN_PATH": str(PLUGINS),
                             "QT_QPA_GENERIC_PLUGINS": f"dialogkeys:{self.folder / 'steps'}"}

    def edit(self, module, *steps, **options):
        self.file("steps", "\n".join(steps))
        return self.host("module", "edit", self.site, module, **options)

    def new_module(self):
        return int(self.host("module", "add", self.site, "index.html").split()[1])

    def script(self, module):
        return self.host("module", "script", self.site, module)

    def link_of(self, module):
        return re.search('name="link" value="(.*?)"', self.script(module))[1]

    def test_a_new_module_goes_from_the_keyboard_to_the_page(self):
        self.add_record("--kind", "none")
        record = self.add_record("--kind", "picture", "--file", self.file("Foto.jpg", b"picture"))
        module = self.new_module()
        shown = self.edit(module, *NEW_MOTIF, "FormMain key Tab", "FormMain key Tab", "FormMain key Tab",
                          CHOOSE_LINK, "ChooseLink key Down", "ChooseLink key Down", "ChooseLink key Enter", CONFIRM)
        self.assertIn('Se muestra el motivo "Globo"', shown)
        self.assertEqual(shown, self.host("module", "show", self.site, module))
        self.assertEqual(self.link_of(module), record)
        self.host("build", self.site)
        self.assertIn(f'<a href="images/Foto.jpg"><img src="images/qelspr{module}.gif"', self.page("index.html"))
        self.assertEqual((self.site / "build/images/Foto.jpg").read_bytes(), b"picture")

    def test_a_cancelled_dialog_changes_nothing(self):
        module = self.add_module("index.html", script(link="URL:old") + "kept to the byte")
        before = self.script(module)
        shown = self.edit(module, *CHANGE_LINK, "ChooseLink key Alt+A", "ChooseLink type new", "ChooseLink key Enter", "FormMain key Esc")
        self.assertEqual(shown, f"module {module} is unchanged: the dialog was cancelled\n")
        self.assertEqual(self.script(module), before)

    def module_that_is_packed_before_it_is_refused(self, archive):
        """A module with an imported motif and a period that ends before it starts. Its archive, of the given name, is
        packed again by the first OK, and no longer the same: a packed name is in lower case."""
        packed = archive_of("Qelspr.GIF", GLOBO)
        text = script(image="qelspr.gif", folder="(USER)", imagemode="gif", archive=archive, **{"from": 40001, "to": 40000})
        module = self.add_module("index.html", text)
        (self.site / "data" / archive).write_bytes(packed)
        return module, packed

    def files(self):
        found = {}
        for path in (self.site / "data").iterdir():
            with contextlib.suppress(FileNotFoundError):  # an open dialog deletes the old archive before it packs
                found[path.name] = path.read_bytes()
        return found

    def test_edit_cancelled_after_a_refused_commit_keeps_the_archive(self):
        for archive in ("module1.dat", "other.dat"):  # in the second case the module had none of its own name
            with self.subTest(archive):
                module, packed = self.module_that_is_packed_before_it_is_refused(archive)
                before = self.files()
                self.assertEqual(before[archive], packed)
                self.edit(module, CONFIRM, "MsgBox key Enter", "FormMain key Esc")
                self.assertEqual(self.files(), before)

    def test_edit_whose_script_cannot_be_stored_keeps_the_archive(self):
        module, packed = self.module_that_is_packed_before_it_is_refused("module1.dat")
        self.sql("UPDATE module SET script = replace(script, '40001', '39999')")
        self.sql("CREATE TRIGGER no BEFORE UPDATE ON module BEGIN SELECT raise(FAIL, 'no room'); END")
        self.assertIn("no room", self.edit(module, CONFIRM, expect=1))
        self.assertEqual(self.files(), {"module1.dat": packed})

    def test_edit_that_is_cancelled_and_cannot_be_undone_is_a_failure(self):
        module = self.add_module("index.html", script())
        self.sql("CREATE TRIGGER no BEFORE DELETE ON edit BEGIN SELECT raise(FAIL, 'no room'); END")
        self.file("steps", "FormMain key Esc")
        said, errors = self.outputs("module", "edit", self.site, module, expect=1)
        self.assertIn("no room", errors)
        self.assertEqual(said, "")

    @contextlib.contextmanager
    def dialog_that_has_packed(self, module, packed):
        """The process of a dialog that is open after a refused commit. It is killed at the end."""
        self.file("steps", CONFIRM)
        repacked = packed.replace(b"Qelspr.GIF", b"qelspr.gif")
        with self.start("module", "edit", self.site, module) as editor:
            try:
                while self.files().get("module1.dat") != repacked:
                    self.assertIsNone(editor.poll())
                yield
            finally:
                editor.kill()

    def test_commands_that_write_wait_while_a_dialog_is_open(self):
        module, packed = self.module_that_is_packed_before_it_is_refused("module1.dat")
        given = self.file("script", self.script(module))
        with self.dialog_that_has_packed(module, packed):
            before = self.files()
            for command in (["build", self.site], ["module", "script", self.site, module, given]):
                with self.subTest(command[0]), self.start(*command, text=True, stderr=subprocess.PIPE) as waiting:
                    self.assertIn("waiting", waiting.stderr.readline())
                    self.assertEqual(self.files(), before)
                    waiting.kill()
            self.host("module", "show", self.site, module)  # commands that only read do not wait
            self.assertEqual(self.files(), before)
        self.host("module", "script", self.site, module, given)  # after the dialog was killed
        self.assertEqual(self.files(), {"module1.dat": packed})

    def test_edit_confirmed_leaves_no_copy(self):
        module, packed = self.module_that_is_packed_before_it_is_refused("module1.dat")
        self.host("module", "script", self.site, module,
                  self.file("script", script(image="qelspr.gif", folder="(USER)", imagemode="gif", archive="module1.dat")))
        self.edit(module, CONFIRM)
        self.assertEqual(self.files(), {"module1.dat": packed.replace(b"Qelspr.GIF", b"qelspr.gif")})

    def test_a_dialog_that_cannot_open_is_a_failure_with_its_reason(self):
        module = self.new_module()
        for name in ("QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"):
            self.environment.pop(name, None)
        self.assertIn("no hay ninguna pantalla", self.edit(module, expect=1))
        self.assertIn("has no module 9", self.edit(9, expect=1))

    def test_a_missing_window_for_links_leaves_the_dialog_open(self):
        (self.folder / "bin").mkdir()
        for name in ("qelhost", "libqelcom.so.1"):
            shutil.copy(STAGE / name, self.folder / "bin")
        module = self.add_module("index.html", script(link="URL:old"))
        self.file("steps", "\n".join([*CHANGE_LINK, "MsgBox key Enter", CONFIRM]))
        self.host("--plugin", STAGE / "QelPluginAnimation.so", "module", "edit", self.site, module,
                  program=[self.folder / "bin" / "qelhost"])
        self.assertEqual(self.link_of(module), "URL:old")

    def test_the_dialog_waits_for_a_build_and_opens_what_is_stored_by_then(self):
        module = self.add_module("index.html", script())
        self.file("steps", CONFIRM)
        with open(self.folder / "temp" / "qelhost.lock", "w") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            with self.start("module", "edit", self.site, module, text=True, stderr=subprocess.PIPE,
                            stdout=subprocess.PIPE) as waiting:
                self.assertIn("waiting", waiting.stderr.readline())
                self.sql("UPDATE module SET script = ?", [[script(link="URL:changed")]])
                fcntl.flock(lock, fcntl.LOCK_UN)
                waiting.communicate(timeout=60)
        self.assertEqual(waiting.returncode, 0)
        self.assertEqual(self.link_of(module), "URL:changed")


if __name__ == "__main__":
    unittest.main()
