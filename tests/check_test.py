"""Tests of qelhost check: it passes the component, and finds the faults that are planted in another one.

    python3 check_test.py STAGE FOLDER [TEST...]    FOLDER holds the broken components
"""
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest
import uuid
from pathlib import Path

BROKEN = Path(sys.argv.pop(2)).resolve()
sys.dont_write_bytecode = True  # leave the sources' folder as it is

from host_test import STAGE, WINDOWS, HostTest, named  # takes its own argument away

SOURCES = Path(__file__).resolve().parent
ENDING = ".dll" if WINDOWS else ".so"
REAL = STAGE / f"QelPluginAnimation{ENDING}"

# The planted faults, each with the check that has to find it or, for those that none finds, the empty text.
FAULTS = re.findall(r'^    {"([^"-][^"]*|)", "(.*?)"', (SOURCES / "broken_component/broken_component.cpp").read_text(), re.M)
NO_LINKS = {"archives.links": "follows-links"} if WINDOWS else {}  # Wine makes none, so that the check is skipped
CRASH = "exception 0xC000001D" if WINDOWS else "signal 4"
SHORT, LONG = ("3", "100") if WINDOWS else ("0.5", "10")  # seconds: to wait for a hang in vain, and enough for any check


class CheckTest(HostTest):
    def setUp(self):
        super().setUp()
        self.temporary = self.folder / "temp"
        if WINDOWS:  # Wine takes its own from no variable
            wine = Path(os.environ.get("QEL_WINE", SOURCES.parent / "build/wine"))
            self.temporary = wine / "drive_c/users" / os.environ.get("USER", "root") / "Temp"
        self.mark = f"QEL_MARK={uuid.uuid4()}"
        self.environment |= {"QEL_REAL": named(REAL), **dict([self.mark.split("=")])}
        for name in ("QelPluginAnimationDesigns", "QelPluginAnimationLogo.bmp", "QelPluginAnimationPreview.bmp"):
            (self.folder / name).symlink_to(STAGE / name)

    def run_host(self, *arguments, fault="", expect=0):
        """What the program writes with the faults of these names in the component, to both outputs."""
        self.environment["QEL_FAULT"] = fault if fault == "each" else f";{fault};"
        said, errors = self.outputs(*arguments, expect=expect, timeout=120)
        return said if "--json" in arguments else said + errors

    def check(self, *arguments, **options):
        """The results by the names of the checks. Nothing may be left behind, neither a file nor a process."""
        document = json.loads(self.run_host("check", "--json", *arguments, **options))
        self.assert_nothing_left()
        results = [check["result"] for check in document["checks"]]
        self.assertEqual({result: document[result] for result in ("passed", "failed", "warned", "skipped")},
                         {result: results.count(result) for result in ("passed", "failed", "warned", "skipped")})
        return {check["name"]: check for check in document["checks"]}

    def results(self, *arguments, **options):
        return {name: check["result"] for name, check in self.check(*arguments, **options).items()}

    def assert_nothing_left(self):
        self.assertEqual(list(self.temporary.glob("qelhost-check*")), [])
        end = time.monotonic() + 10 * WINDOWS  # Wine takes a moment to end what the program has ended
        while self.marked_processes() and time.monotonic() < end:
            time.sleep(0.01)
        self.assertEqual(self.marked_processes(), [])

    def marked_processes(self):
        return subprocess.run(["grep", "-ls", self.mark, *Path("/proc").glob("[0-9]*/environ")],
                              capture_output=True, text=True).stdout.split()

    def host_process(self, run):
        """The process that checks: under Wine the last one that was started with these words."""
        words = ["pgrep", "-nf", f"check Z:{self.folder}"]
        return int(subprocess.run(words, capture_output=True, check=True).stdout) if WINDOWS else run.pid

    def broken(self, name="broken_component"):
        """The broken component, with the library and the bitmaps beside it."""
        return Path(shutil.copy(BROKEN / f"{name}{ENDING}", self.folder))

    def test_the_component_passes_every_check(self):
        names = [check["name"] for check in json.loads(self.run_host("check", "--list", "--json"))["checks"]]
        self.assertEqual(names, [line.split()[0] for line in self.run_host("check", "--list").splitlines()[1:]])
        self.assertEqual(set(names), {check for check, fault in FAULTS if check})  # each is proved below
        self.assertEqual(self.results("--timeout", LONG), dict.fromkeys(names, "passed") | dict.fromkeys(NO_LINKS, "skipped"))

    def test_nine_of_ten_planted_faults_are_found_and_the_others_are_known(self):
        found = self.check(self.broken(), "--timeout", LONG, fault="each", expect=1)
        found |= self.check(self.broken("one_more_export"), "--only", "entry.exports", expect=1)
        found |= self.check(self.broken(), "--only", "entry.opening", fault="dies-in-opening", expect=1)
        missed = {fault for check, fault in FAULTS if check and found[check]["result"] != "failed"}
        self.assertEqual(missed, set(NO_LINKS.values()))
        missed |= {fault for check, fault in FAULTS if not check}
        self.assertLessEqual(len(missed), len(set(FAULTS)) / 10, missed)
        failures = [check for check in found.values() if check["result"] == "failed"]
        self.assertEqual([check for check in failures if not check["expected"] or not check["got"]], [])

    def test_a_fault_fails_no_check_that_it_does_not_concern(self):
        faults = ["other-requirements", *(fault for check, fault in FAULTS if not check)]
        groups = ("members.", "late.", "reading.", "output.")  # that look at what these faults change
        only = [word for check, fault in FAULTS if check.startswith(groups) for word in ("--only", check)]
        found = self.results(self.broken(), *only, "--timeout", LONG, fault=";".join(faults), expect=1)
        self.assertEqual([name for name, result in found.items() if result == "failed"], ["members.fixed-texts"])

    def test_a_crash_is_one_failed_check_and_a_hang_is_ended(self):
        two = ["--only", "entry.unknown-class", "--only", "entry.exports"]
        found = self.results(self.broken(), *two, fault="crash", expect=1)
        self.assertEqual(found, {"entry.exports": "passed", "entry.unknown-class": "failed"})
        found = self.check(self.broken(), "--only", "script.initial", "--timeout", SHORT, fault="hangs", expect=1)
        self.assertIn(f"no end within {SHORT} seconds", found["script.initial"]["got"])

    def test_a_component_that_cannot_be_opened_is_one_failure(self):
        for fault, got, options in (("dies-in-opening", CRASH, []),
                                    ("exits-in-opening", "the process ended by itself with 0", []),
                                    ("hangs-in-opening", f"no end within {SHORT} seconds", ["--timeout", SHORT])):
            with self.subTest(fault=fault):
                found = self.check(self.broken(), "--only", "late.names", *options, fault=fault, expect=1)
                self.assertEqual({name: check["result"] for name, check in found.items()},
                                 {"entry.opening": "failed", "late.names": "skipped"})
                self.assertIn(got, found["entry.opening"]["got"])
        self.assertEqual(self.results(self.broken(), fault="dies-in-opening", expect=1),
                         {check: "skipped" for check, fault in FAULTS if check} | {"entry.opening": "failed"})

    def test_an_interrupted_run_ends_by_the_signal_and_leaves_nothing(self):
        for number in (signal.SIGINT,) if WINDOWS else (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            self.environment["QEL_FAULT"] = ";hangs;"
            run = self.start("check", self.broken(), "--only", "script.initial", stdout=subprocess.DEVNULL)
            while not list(self.temporary.glob("qelhost-check*")) and run.poll() is None:
                time.sleep(0.01)
            os.kill(self.host_process(run), number)
            self.assertEqual(run.wait(60), 0x3A if WINDOWS else -number)
            self.assert_nothing_left()

    def test_what_is_not_beside_the_component_is_told(self):
        bare = self.folder / "bare"
        bare.mkdir()
        component = Path(shutil.copy(self.broken(), bare))
        found = self.results(component, "--only", "members.bitmaps", "--only", "output.library")
        self.assertEqual(found, {"members.bitmaps": "warned", "output.library": "skipped"})
        (bare / "QelPluginAnimationDesigns" / "Uno").mkdir(parents=True)
        (bare / "QelPluginAnimationDesigns" / "readme.txt").touch()
        shutil.copy(next(STAGE.glob("*Designs/*/*.gif")), bare / "QelPluginAnimationDesigns" / "Uno" / "A.GIF")
        self.environment["QEL_REAL"] = named(shutil.copy(REAL, bare / f"real{ENDING}"))
        self.check(component, "--only", "output.library")

    def test_the_component_can_be_named_before_the_command(self):
        only = ["check", "--only", "entry.unknown-class"]
        self.run_host("--plugin", self.broken(), *only, fault="any-class", expect=1)
        self.assertIn("passed   entry.unknown-class\nChecks: 1, passed: 1,", self.run_host(*only, fault="any-class"))

    def test_wrong_use_is_told(self):
        self.assertNotIn("run-check", self.run_host("--help"))
        self.assertIn("qelhost check --list", self.run_host("check", "--only", "entry.nothing", expect=2))
        for seconds in ("0", "86401", "1s", "nan"):
            self.assertIn(f'"{seconds}" is not a number of seconds from 0.01', self.run_host("check", "--timeout", seconds, expect=2))
        self.assertIn("--timeout SECONDS ", self.run_host("check", "--help"))

    @unittest.skipIf(WINDOWS, "it is the system that names the folder for temporary files, and it has no such links")
    def test_folders_of_any_name_and_behind_links(self):
        (self.folder / "a\\b").mkdir()
        for place in ("none", "a\\b"):
            self.environment["TMPDIR"] = str(self.folder / place)
            self.assertIn("set TMPDIR", self.run_host("check", REAL, expect=1))
        self.environment["TMPDIR"] = str(self.temporary)
        (self.folder / "far" / "near").mkdir(parents=True)
        (self.folder / "link").symlink_to("far/near")
        shutil.copy(self.broken(), self.folder / "far")
        self.check(f"{self.folder}/link/../broken_component.so", "--only", "entry.unknown-class")


if __name__ == "__main__":
    unittest.main()
