"""Registers the component in Wine's registry, uses it as its clients do, and removes it again. Registering adds what is
expected and changes nothing else, and removing it leaves the registry as it was.

Usage: registered_test.py RUN_UNDER_WINE COMPONENT CLIENT_TEST"""
import os
import pathlib
import subprocess
import sys
import tempfile

CLASSES = {"{4FCC59CA-C869-4963-A843-14D7C29AFA23}": "QelPluginAnimation.Main",
           "{AC34163F-A9F3-4932-A75F-284E50AD181B}": "QelPluginAnimation.classStringSort"}
LIBRARY = "{764DCF71-DA3B-4767-BEE9-D2215307BFF6}"
HOST_LIBRARY = "{A6107D97-C7EB-493F-9E38-0BE856D49647}"
HOST_INTERFACE = "{DFBAC939-BD20-4D66-9B6C-E804128A345F}"  # one that a host has registered before
SCRIPTS_SUCCEED_WITH = 100
ROOTS = ["HKEY_LOCAL_MACHINE\\Software", "HKEY_CURRENT_USER\\Software"]

here = pathlib.Path(__file__).resolve().parent
problems = []


def check(what, condition):
    if not condition:
        problems.append(what)


def wine(*arguments, code=0):
    run = subprocess.run([runner, *arguments], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    check(f"{' '.join(map(str, arguments))} ended with {run.returncode}:\n{run.stdout}", run.returncode == code)


def registry():
    """The keys of the registry, and its values as "key, name=value"."""
    values = set()
    for root in ROOTS:
        with tempfile.NamedTemporaryFile(suffix=".reg") as file:
            wine("reg", "export", root, f"Z:{file.name}", "/y")
            key = ""
            for line in file.read().decode("utf-16").replace("\\\r\n  ", "").splitlines():
                if line.startswith("["):
                    key = line[1:-1]
                if "\\Software\\Wine" in key:
                    continue  # its own, which each start may change
                if line.startswith("["):
                    values.add(key)
                elif line:
                    values.add(f"{key}, {line}")
    check("the registry cannot be read", values)
    return values


def check_other_word_length(windows_path):
    """The program name remains as long as the class is registered for programs of the other word length."""
    identifier, name = next(iter(CLASSES.items()))
    classes = "HKEY_LOCAL_MACHINE\\Software\\Classes"
    key = f"{classes}\\CLSID\\{identifier}"
    other = "/reg:32"  # the component of this test has 64 bits
    wine("reg", "add", f"{key}\\InprocServer32", "/ve", "/d", "C:\\other.dll", "/f", other)
    wine("regsvr32", "/s", windows_path)
    wine("regsvr32", "/s", "/u", windows_path)
    wine("reg", "query", key, "/ve", code=1)
    wine("reg", "query", f"{classes}\\{name}\\CLSID", "/ve")
    wine("reg", "delete", key, "/f", other)
    wine("reg", "delete", f"{classes}\\{name}", "/f")


def main(component, client):
    windows_path = "Z:" + component.replace("/", "\\")
    host_key = f"HKEY_LOCAL_MACHINE\\Software\\Classes\\Interface\\{HOST_INTERFACE}\\TypeLib"
    wine("regsvr32", "/s", "/u", windows_path)  # in case a run was interrupted
    with tempfile.NamedTemporaryFile(suffix=".js") as script:
        wine("cscript", "//nologo", f"Z:{script.name}")  # registers itself when it is used for the first time
    wine("reg", "add", host_key, "/ve", "/d", HOST_LIBRARY, "/f")
    before = registry()
    try:
        wine("regsvr32", "/s", windows_path)
        during = registry()
        check(f"removed or changed: {sorted(before - during)}", before <= during)
        added = during - before
        for identifier, name in CLASSES.items():
            key = f"HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID\\{identifier}\\InprocServer32, "
            path = windows_path.replace("\\", "\\\\")
            for value in (f'{key}@="{path}"', f'{key}"ThreadingModel"="Apartment"',
                          f'HKEY_LOCAL_MACHINE\\Software\\Classes\\{name}\\CLSID, @="{identifier}"'):
                check(f"not registered: {value}", value in added)
        check("the library is not registered", any(f"\\typelib\\{LIBRARY}\\1.0".lower() in value.lower() for value in added))
        check("the host's library is registered", not any(HOST_LIBRARY in value for value in added))
        for script in ("client.vbs", "client.js"):
            wine("cscript", "//nologo", f"Z:{here}/{script}", code=SCRIPTS_SUCCEED_WITH)
        wine(client)
    finally:
        wine("regsvr32", "/s", "/u", windows_path)
        after = registry()
        wine("reg", "delete", host_key, "/f")
    check(f"left or changed: {sorted(after ^ before)}", after == before)
    if os.environ.get("WINEARCH") != "win32":  # a Windows of 32 bits has no other word length
        check_other_word_length(windows_path)
    sys.exit("\n".join(problems) or None)


runner = sys.argv[1]
main(*sys.argv[2:])
