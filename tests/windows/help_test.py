#!/usr/bin/env python3
"""Checks that the compiled help has the pages of the sources, byte for byte, and the page 100.html under the context 100.

  tests/windows/help_test.py HELP_FILE FOLDER_OF_PAGES"""
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest

HELP, PAGES = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])


def content(name):
    """The bytes of a file inside the compiled help."""
    with tempfile.TemporaryDirectory() as folder:
        target = pathlib.Path(folder) / "extracted"
        subprocess.run(["chmls", "extract", HELP, f"/{name}", target], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        return target.read_bytes()


class Help(unittest.TestCase):
    def test_pages_are_those_of_the_sources(self):
        for page in PAGES.iterdir():
            with self.subTest(page.name):
                self.assertEqual(content(page.name), page.read_bytes())

    def test_contexts_lead_to_their_pages(self):
        table, strings = content("#IVB"), content("#STRINGS")
        topics = {}
        for number, offset in struct.iter_unpack("<II", table[4:]):
            topics[number] = strings[offset:strings.index(b"\0", offset)].decode()
        self.assertEqual(topics, {100: "100.html"})


unittest.main(argv=sys.argv[:1])
