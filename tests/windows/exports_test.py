"""The built component exports its four entry points by their plain names, and nothing else, and needs only libraries
that every Windows has.

Usage: exports_test.py OBJDUMP COMPONENT"""
import re
import subprocess
import sys

ENTRY_POINTS = ["DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"]
SYSTEM_LIBRARIES = {"advapi32.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
                    "ole32.dll", "oleaut32.dll", "shell32.dll", "user32.dll"}


def main(objdump, component):
    dump = subprocess.run([objdump, "-p", component], check=True, capture_output=True, text=True).stdout
    imported = {name.lower() for name in re.findall(r"DLL Name: (\S+)", dump)}
    exported = re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+)?(?:[0-9a-f]{4,} )?(\S+)$", dump.split("[Ordinal/Name Pointer] Table")[1],
                          re.MULTILINE)
    problems = []
    if exported != ENTRY_POINTS:
        problems.append(f"exported: {exported}")
    if not imported or imported - SYSTEM_LIBRARIES:
        problems.append(f"imported, but not from the system: {sorted(imported - SYSTEM_LIBRARIES)}")
    if problems:
        sys.exit("\n".join(problems))


main(*sys.argv[1:])
