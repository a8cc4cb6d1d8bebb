"""Tests of what qelhost links: of the component's sources the texts, the plumbing, the archives and the files alone.

    python3 linked_test.py QELHOST LIBRARY... -- OTHER...    it may link the first libraries, and nothing of the others
"""
import re
import subprocess
import sys
import unittest

HOST = sys.argv[1]
LINKED = sys.argv[2:sys.argv.index("--")]
OTHERS = sys.argv[sys.argv.index("--") + 1:]
# Those of the language and of sanitizers, the database, and the runtime that hosts and components share.
SHARED = re.compile(r"(libc|libm|libstdc\+\+|libgcc_s|ld-linux-x86-64|lib[alt]san|libubsan|libsqlite3|libqelcom)\.so.*")


def symbols(file, kinds):
    """The names that a program or a static library defines, of the kinds that nm names so."""
    lines = subprocess.run(["nm", "--defined-only", file], capture_output=True, text=True, check=True).stdout.splitlines()
    return {fields[2] for fields in map(str.split, lines) if len(fields) == 3 and fields[1] in kinds}


class LinkedTest(unittest.TestCase):
    def test_shared_libraries(self):
        lines = subprocess.run(["readelf", "--dynamic", HOST], capture_output=True, text=True, check=True).stdout
        needed = re.findall(r"\(NEEDED\).*\[(.*)\]", lines)
        self.assertIn("libqelcom.so", " ".join(needed))
        self.assertEqual([name for name in needed if not SHARED.fullmatch(name)], [])

    def test_static_libraries(self):
        strong = "TDBR"  # what another file can link; templates and inline functions are anyone's
        allowed = set().union(*(symbols(file, strong) for file in LINKED))
        own = symbols(HOST, strong + strong.lower())
        self.assertTrue(own & allowed)
        for file in OTHERS:
            others = symbols(file, strong)
            self.assertTrue(others)
            self.assertEqual(own & (others - allowed), set(), file)


if __name__ == "__main__":
    sys.argv[1:] = []
    unittest.main()
