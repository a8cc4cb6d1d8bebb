"""Tests of qelhost check: it passes the component, and each of its checks finds a component that lacks what it asks for.

    python3 check_test.py STAGE FOLDER [TEST...]    FOLDER holds the broken components
"""
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import uuid
from pathlib import Path

STAGE = Path(sys.argv.pop(1)).resolve()
BROKEN = Path(sys.argv.pop(1)).resolve()
REAL = STAGE / "QelPluginAnimation.so"

# The checks in their order, and what each has to find: faults of the broken component (see broken_component.cpp), or
# a component that has one.
FAULTS = {name: faults.split() for name, faults in (entry.strip().split(":") for entry in """
entry.opening: dies-in-opening exits-in-opening; entry.exports: one_more_export.so; entry.unknown-class: any-class;
entry.unknown-interface: wild-pointer; entry.null-pointers: no-null-test; entry.aggregation: aggregates;
entry.unload-count: unloads-any-time; entry.registration: stays-registered; entry.unloading: last-word;
identity.unknown: wrong-identity; identity.query: one-way-query; identity.counts: query-keeps-reference;
identity.error-info: no-error-info; members.fixed-texts: other-requirements; members.answers: true-is-one;
members.version: zeros-in-version; members.null-pointers: takes-null; members.bitmaps: bitmap-with-folder;
members.string-sort: sorts-nothing; sort.order: sorts-without-case; sort.many: loses-duplicates; sort.bounds:
value-zero-fails; late.names: exact-names; late.kinds: any-kind; late.values: numbers-for-booleans; late.failures:
no-exception; script.initial: other-initial-script; script.round-trip: half-escaped; script.other-version:
any-version; script.random: crash-on-surrogate; script.huge: short-scripts; reading.entities: reads-apos;
reading.case: no-upper-prefix; reading.like-names: first-param-counts; reading.tags: reads-unclosed-tags;
reading.attributes: reads-unclosed-values; reading.line-ends: line-feed-ends-nothing; reading.truth-values:
false-is-false; reading.image-modes: modes-of-any-case; reading.dates: halves-go-up; reading.versions:
version-begins-so; reading.reset: forgets-link; reading.one-record: record-per-object; texts.summaries:
blank-after-own-tune; texts.short-names: short-names-pass; texts.reasons: other-reason; texts.error-numbers:
no-error-number; output.period: ends-a-day-early; output.staging: width-for-height; output.links: no-empty-link;
output.library: library-fails; output.library-tune: tune-at-picture; output.endings: jpeg-turned; output.records:
cuts-fragments; output.whole: turns-faster; output.link-texts: escapes-address; output.days: months-from-one;
files.addresses: double-slash; files.joins: joins-with-slash; files.copied-once: copies-each-time; files.replaced:
keeps-older-tune; files.needed-alone: stages-everything; archives.sizes: first-block-alone; archives.names:
loses-folders; archives.hostile-names: leaves-its-folder; archives.links: follows-links; archives.magic: any-magic;
archives.truncated: whole-archives-only; archives.emptied: empties-nothing; host.call-order: asks-twice;
host.failing-calls: other-number; host.no-services: no-reason; host.references: keeps-topic; dialog.no-display:
confirms-unseen; threads.records: one-record; leaks.texts: leaks-text; leaks.objects: query-keeps-reference;
leaks.pages: leaks-page""".replace("\n", " ").split(";"))}


class CheckTest(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="check test "))
        self.addCleanup(shutil.rmtree, self.folder)
        self.temporary = self.folder / "temp"
        self.temporary.mkdir(mode=0o700)
        self.mark = f"QEL_MARK={uuid.uuid4()}"
        self.environment = {**os.environ, "TMPDIR": str(self.temporary), "QEL_REAL": str(REAL),
                            "XDG_DATA_HOME": str(self.folder), "XDG_DATA_DIRS": str(self.folder),
                            "HOME": str(self.folder), **dict([self.mark.split("=")])}
        for name in ("QelPluginAnimationDesigns", "QelPluginAnimationLogo.bmp", "QelPluginAnimationPreview.bmp"):
            (self.folder / name).symlink_to(STAGE / name)

    def run_host(self, *arguments, fault="", expect=0):
        run = subprocess.run([STAGE / "qelhost", *map(str, arguments)], capture_output=True, text=True, timeout=120,
                             env={**self.environment, "QEL_FAULT": fault})
        self.assertEqual(run.returncode, expect, f"{arguments}: {run.stdout}{run.stderr}")
        return run.stdout if "--json" in arguments else run.stdout + run.stderr

    def check(self, *arguments, **options):
        """The results by the names of the checks. Nothing may be left behind, neither a file nor a process."""
        document = json.loads(self.run_host("check", "--json", *arguments, **options))
        self.assertEqual(list(self.temporary.iterdir()), [])
        self.assertEqual(self.marked_processes(), [])
        results = [check["result"] for check in document["checks"]]
        self.assertEqual({result: document[result] for result in ("passed", "failed", "warned", "skipped")},
                         {result: results.count(result) for result in ("passed", "failed", "warned", "skipped")})
        return {check["name"]: check for check in document["checks"]}

    def marked_processes(self):
        return subprocess.run(["grep", "-ls", self.mark, *Path("/proc").glob("[0-9]*/environ")],
                              capture_output=True, text=True).stdout.split()

    def broken(self, name="broken_component.so"):
        """The broken component, with the library and the bitmaps beside it."""
        return shutil.copy(BROKEN / name, self.folder)

    def results(self, checks):
        return {name: check["result"] for name, check in checks.items()}

    def test_the_component_passes_every_check(self):
        names = [check["name"] for check in json.loads(self.run_host("check", "--list", "--json"))["checks"]]
        self.assertEqual(names, [line.split()[0] for line in self.run_host("check", "--list").splitlines()[1:]])
        self.assertEqual(names, list(FAULTS))  # each is proved below
        passed = dict.fromkeys(names, "passed")
        self.assertEqual(self.results(self.check()), passed)
        self.assertEqual(self.results(self.check(self.broken())), passed)  # it has no fault but the one chosen

    def test_each_check_finds_its_fault(self):
        component = self.broken()
        for name, fault in ((name, fault) for name, faults in FAULTS.items() for fault in faults):
            with self.subTest(check=name, fault=fault):
                file = self.broken(fault) if fault.endswith(".so") else component
                found = self.check(file, "--only", name, fault=fault, expect=1)
                self.assertEqual(self.results(found), {name: "failed"})
                self.assertTrue(found[name]["expected"] and found[name]["got"], found)

    def test_a_fault_fails_no_check_that_it_does_not_concern(self):
        found = self.results(self.check(self.broken(), fault="other-requirements", expect=1))
        self.assertEqual({name for name, result in found.items() if result == "failed"}, {"members.fixed-texts"})

    def test_a_crash_is_one_failed_check_and_a_hang_is_ended(self):
        two = ["--only", "entry.unknown-class", "--only", "entry.exports"]
        found = self.check(self.broken(), *two, fault="crash", expect=1)
        self.assertEqual(self.results(found), {"entry.exports": "passed", "entry.unknown-class": "failed"})
        found = self.check(self.broken(), "--only", "script.initial", "--timeout", "0.5", fault="hangs", expect=1)
        self.assertIn("no end within 0.5 seconds", found["script.initial"]["got"])

    def test_a_component_that_cannot_be_opened_is_one_failure(self):
        for fault, got, options in (("dies-in-opening", "signal 11", []),
                                    ("exits-in-opening", "the process ended by itself with 0", []),
                                    ("hangs-in-opening", "no end within 0.5 seconds", ["--timeout", "0.5"])):
            with self.subTest(fault=fault):
                found = self.check(self.broken(), *options, fault=fault, expect=1)
                self.assertIn(got, found["entry.opening"]["got"])
                self.assertEqual(self.results(found), {name: "skipped" for name in FAULTS} | {"entry.opening": "failed"})
                found = self.check(self.broken(), "--only", "late.names", *options, fault=fault, expect=1)
                self.assertEqual(self.results(found), {"entry.opening": "failed", "late.names": "skipped"})

    def test_no_help_names_the_command_that_runs_one_check(self):
        self.assertNotIn("run-check", self.run_host("--help"))

    def test_an_interrupted_run_ends_by_the_signal_and_leaves_nothing(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            run = subprocess.Popen([STAGE / "qelhost", "check", self.broken(), "--only", "script.initial"],
                                   env={**self.environment, "QEL_FAULT": "hangs"}, stdout=subprocess.DEVNULL)
            while not list(self.temporary.iterdir()) and run.poll() is None:
                time.sleep(0.01)
            run.send_signal(number)
            self.assertEqual(run.wait(5), -number)
            self.assertEqual((list(self.temporary.iterdir()), self.marked_processes()), ([], []))

    def test_what_is_not_beside_the_component_is_told(self):
        bare = self.folder / "bare"
        bare.mkdir()
        component = shutil.copy(self.broken(), bare)
        found = self.check(component, "--only", "members.bitmaps", "--only", "output.library")
        self.assertEqual(self.results(found), {"members.bitmaps": "warned", "output.library": "skipped"})
        (bare / "QelPluginAnimationDesigns" / "Uno").mkdir(parents=True)
        (bare / "QelPluginAnimationDesigns" / "readme.txt").touch()
        shutil.copy(next(STAGE.glob("*Designs/*/*.gif")), bare / "QelPluginAnimationDesigns" / "Uno" / "A.GIF")
        self.environment["QEL_REAL"] = shutil.copy(REAL, bare / "real.so")
        self.check(component, "--only", "output.library")

    def test_the_component_is_found_as_by_the_other_commands(self):
        only = ["check", "--only", "entry.unknown-class"]
        component = self.broken()
        self.run_host(*only, component, fault="any-class", expect=1)
        self.run_host("--plugin", component, *only, fault="any-class", expect=1)
        self.run_host(*only, fault="any-class")  # the one beside the program
        copy = shutil.copy(REAL, self.folder)
        self.run_host("register", copy)
        document = json.loads(self.run_host(*only, "--json"))
        self.assertEqual(document["component"], str(copy))
        self.assertIn("passed   entry.unknown-class\nChecks: 1, passed: 1,", self.run_host(*only))

    def test_wrong_use_is_told(self):
        self.assertIn("qelhost check --list", self.run_host("check", "--only", "entry.nothing", expect=2))
        for seconds in ("0", "86401", "1s", "nan"):
            self.assertIn(f'"{seconds}" is not a number of seconds from 0.01', self.run_host("check", "--timeout", seconds, expect=2))
        self.assertIn("--timeout SECONDS ", self.run_host("check", "--help"))
        text = self.folder / "text.so"
        text.write_text("text")
        (self.folder / "a\\b").mkdir()
        for file, place, reason in (("", "", 'no file ""'), ("none.so", "", "no file"), (text, "", "text.so is not a shared library;"),
                                    (REAL, "none", "set TMPDIR"), (REAL, "a\\b", "set TMPDIR")):
            self.environment["TMPDIR"] = str(self.folder / place)
            self.assertIn(reason, self.run_host("check", file, expect=1))
        self.environment["TMPDIR"] = str(self.temporary)
        (self.folder / "far" / "near").mkdir(parents=True)
        (self.folder / "link").symlink_to("far/near")
        shutil.copy(self.broken(), self.folder / "far")
        self.check(f"{self.folder}/link/../broken_component.so", "--only", "entry.unknown-class")


if __name__ == "__main__":
    unittest.main()
