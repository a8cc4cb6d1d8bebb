"""The same site, built by tests/siteHost.cpp on this system and under Wine, is the same: page texts and copied files to the
byte, the archive as a set of names and contents (their order is that of the file system), and each colour of a picture
that was made smaller to a difference of 1.

Usage: site_test.py SOURCES NATIVE_BUILD WINDOWS_BUILD, where both are build folders"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

MAGIC_LENGTH = len("qelarchive1.0")
MODULES = 20


def archive_entries(content):
    """The entries of an archive: its names in bytes, each with its content."""
    entries, at = {}, MAGIC_LENGTH
    while length := int.from_bytes(content[at:at + 4], "little"):
        name = content[at + 4:at + 4 + length]
        at += 4 + length
        size = int.from_bytes(content[at:at + 4], "little")
        entries[name] = content[at + 4:at + 4 + size]
        at += 4 + size
    return entries


def prepare(sources, folder):
    """Makes the folders of a build, and what it is made from. Returns the folder of the imports and that of the output."""
    library = sources / "designs/QelPluginAnimationDesigns"
    imports, output = folder / "imports", folder / "output"
    for made in [imports / "Carpeta Ñ" / "vacía", *(output / name for name in "data images media files pages shrunk".split())]:
        made.mkdir(parents=True)
    shutil.copy(library / "Animales/Búho.gif", imports / "qelspr.gif")
    shutil.copy(library / "Fiestas/Vals.mid", imports / "qelmid.mid")
    (imports / "Carpeta Ñ" / "vacío.txt").write_bytes(b"")
    (imports / "Carpeta Ñ" / "LÉAME.TXT").write_bytes(bytes(range(256)) * 300)
    shutil.copy(sources / "demo-site/foto.jpg", output / "data/Fotografía.JPG")
    shutil.copy(sources / "demo-site/programa.txt", output / "data/PROGRAMA.txt")
    return imports, output


def build(sources, program, component, runner=(), prefix=""):
    """Runs the host, and returns what it made as bytes, by its path below the folder of the output."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        imports, output = prepare(sources, folder)
        (folder / "temporary").mkdir()
        arguments = [component, imports, sources / "demo-site/foto.jpg", output]
        temporary = dict.fromkeys(["TMPDIR", "TMP", "TEMP"], f"{prefix}{folder}/temporary")
        run = subprocess.run([*runner, program, *(f"{prefix}{argument}" for argument in arguments)], env=os.environ | temporary,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if run.returncode != 0:
            sys.exit(f"{program} ended with {run.returncode}:\n{run.stdout}")
        return {path.relative_to(output).as_posix(): path.read_bytes() for path in output.rglob("*") if path.is_file()}


def is_same(name, first, second):
    if name.endswith(".dat"):
        return archive_entries(first) == archive_entries(second)
    if name.endswith(".pixels"):
        return len(first) == len(second) and max(abs(a - b) for a, b in zip(first, second)) <= 1
    return name.startswith("shrunk/") or first == second  # the pixels of a picture decide, not its file


def main(sources, native, windows):
    program = native / "tests/site_host"
    if not program.exists():
        sys.exit(f"{program} is missing: build the preset of this system first")
    first = build(sources, program, native / "stage/QelPluginAnimation.so")
    second = build(sources, windows / "tests/site_host.exe", windows / "stage/QelPluginAnimation.dll",
                   [sources / "tools/run-under-wine"], "Z:")
    problems = [f"only on one system: {name}" for name in sorted(first.keys() ^ second.keys())]
    problems += [f"not the same: {name}" for name in sorted(first.keys() & second.keys())
                 if not is_same(name, first[name], second[name])]
    pages = [content for name, content in first.items() if name.startswith("pages/")]
    if len(pages) != MODULES or not any(content.startswith(b"[Error") for content in pages):
        problems.append(f"{len(pages)} pages, or none of them failed")
    sys.exit("\n".join(problems) or None)


main(*(pathlib.Path(argument) for argument in sys.argv[1:]))
