"""A site is the same on both systems. One that qelhost made is built by qelhost.exe, and the other way round: pages, copied
files and what is said of each module are the same to the byte, archives the same set of names and contents (their order is
that of the file system). Each colour of a picture that was made smaller is the same to a difference of 1.

Usage: site_test.py SOURCES NATIVE_BUILD WINDOWS_BUILD, where both are build folders"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SOURCES, NATIVE, WINDOWS = (pathlib.Path(argument) for argument in sys.argv[1:])
RUNNER = [SOURCES / "tools/run-under-wine", "--streams"]
SYSTEMS = {"native": ([], NATIVE, ""), "windows": (RUNNER, WINDOWS, ".exe")}

PERIOD = 'from="38353" to="38717"'
BALLOON = 'image="Globo.gif" imagefolder="Fiestas" playmidi="0"'
IMPORTS = 'image="qelspr.gif" imagefolder="(USER)" midi="qelmid.mid" midifolder="(USER)"'
RECORDS = [["page", "--page", "año.html"], ["section", "--page", "año.html", "--address", "#ñ"], ["address", "--address", "x"],
           ["picture", "--file", "Fotografía.JPG"], ["file", "--file", "PROGRAMA.txt"], ["file", "--file", "no hay.txt"],
           ["mail", "--address", "a@b"], ["none"]]
# Each module has the params in its text, the later ones in force. Twenty: with accents and upper-case names, periods, links
# of all kinds, an archive, and what is missing.
MODULES = ['playmidi="1" midi="Vals.mid" midifolder="Fiestas"', PERIOD, 'from="38383" showimage="0"', 'to="2"',
           'image="Búho.gif" imagefolder="Animales"', 'image="GLOBO.GIF" imagefolder="FIESTAS"',
           'image="PINGÜINO.GIF" imagefolder="animales"', 'playmidi="1" midi="Órbita.mid" midifolder="Cielo y espacio"',
           'link="URL:http://example.org/a&amp;b?c=%33ñ"', *(f'link="UID:{record}"' for record in range(1, 9)),
           IMPORTS + ' playmidi="1"', 'image="falta.gif"', 'playmidi="1" midi="falta.mid" midifolder="Fiestas"']


def run(system, *arguments, given="", program="stage/qelhost", codes=(0,)):
    """Runs a program of a build, and returns what it wrote to both outputs."""
    runner, build, ending = SYSTEMS[system]
    named = [f"Z:{argument}" if runner and isinstance(argument, pathlib.Path) else str(argument) for argument in arguments]
    done = subprocess.run([*runner, f"{build / program}{ending}", *named], input=given, capture_output=True, text=True)
    if done.returncode not in codes:
        sys.exit(f"{system} {arguments} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout + done.stderr


def script(number, params):
    tags = [pair.split("=", 1) for pair in (BALLOON + " " + params + ("" if "link=" in params else ' link=""')).split('" ')]
    lines = [f'<pg.file filename="module{number}.dat">'] if params.startswith(IMPORTS) else []
    lines += [f'<pg.param name="{name}" value="{value.strip(chr(34))}">' for name, value in tags]
    return '<pg.plugin uid="QelPluginAnimation" version="1.0">' + "".join(lines)


def make(system, folder, files):
    site, page, archive = folder / "sitio ñ", files / "año.html", folder / "archivo ñ.dat"
    run(system, "init", site, "--title", "Título")
    run(system, "page", "add", site, page)
    for kind, *options in RECORDS:
        run(system, "record", "add", site, "--kind", kind, *(files / option if "." in option and option != "año.html" else option
                                                             for option in options))
    run(system, "archive", "pack", archive, files / "imports")
    for number, params in enumerate(MODULES, 1):
        run(system, "module", "add", site, "año.html", "--script", "-", *(["--archive", archive] if "qelspr" in params else []),
            given=script(number, params))
    (site / "data/no hay.txt").unlink()
    return site


def prepare(files):
    library = SOURCES / "designs/QelPluginAnimationDesigns"
    (files / "imports/Carpeta Ñ/vacía").mkdir(parents=True)
    (files / "año.html").write_text("<html><body>ñ <!-- qel:title --><!-- qel:menu --></body></html>", encoding="cp1252")
    shutil.copy(library / "Animales/Búho.gif", files / "imports/qelspr.gif")
    shutil.copy(library / "Fiestas/Vals.mid", files / "imports/qelmid.mid")
    (files / "imports/Carpeta Ñ/LÉAME.TXT").write_bytes(bytes(range(256)) * 300)
    (files / "imports/Carpeta Ñ/vacío.txt").touch()
    shutil.copy(SOURCES / "demo-site/foto.jpg", files / "Fotografía.JPG")
    shutil.copy(SOURCES / "demo-site/programa.txt", files / "PROGRAMA.txt")
    (files / "no hay.txt").touch()


def entries(content):
    """The entries of an archive: its names in bytes, each with its content."""
    found, at = {}, len("qelarchive1.0")
    while length := int.from_bytes(content[at:at + 4], "little"):
        size_at = at + 4 + length
        size = int.from_bytes(content[size_at:size_at + 4], "little")
        found[content[at + 4:size_at]] = content[size_at + 4:size_at + 4 + size]
        at = size_at + 4 + size
    return found


def contents(system, site):
    """What a site has after a build on a system, by names: the files of the build and of its data, and what is said."""
    said = {"said of the build": re.sub("They.*", "", run(system, "build", site, "--no-refresh", "--keep-errors", codes=(1,)))}
    said |= {f"said of module {number}": run(system, "module", "show", site, number, codes=(0, 1))
             for number in range(1, len(MODULES) + 1)}
    found = {str(path.relative_to(site)): path.read_bytes() for part in ("build", "data") for path in (site / part).rglob("*")
             if path.is_file()}
    found |= {name: entries(content) for name, content in found.items() if name.endswith(".dat")}
    return found | said


def problems(folder):
    prepare(folder / "files")
    sites = {system: make(system, folder / system, folder / "files") for system in SYSTEMS}
    moved = {system: shutil.copytree(site, folder / f"moved {system}") for system, site in sites.items()}
    first = contents("native", sites["native"])
    for name, other in (("made here, built there", contents("windows", moved["native"])),
                        ("made there, built here", contents("native", moved["windows"]))):
        yield from (f"{name}: {key} differs: {first.get(key)!r:.999} {other.get(key)!r:.999}" for key in sorted(first.keys() | other.keys()) if first.get(key) != other.get(key))
    if not {"build/images/Fotografía.JPG", "build/files/PROGRAMA.txt", "build/images/qelspr18.gif"} <= first.keys():
        yield f"the build lacks files: {sorted(first)}"
    pixels = []
    for system in SYSTEMS:
        run(system, SOURCES / "demo-site/foto.jpg", folder / system, program="tests/shrink")
        pixels.append([(folder / system / name).read_bytes() for name in ("photo.pixels", "drawing.pixels")])
    for name, first, second in zip(("JPEG", "GIF"), *pixels):
        if len(first) != len(second) or max(abs(a - b) for a, b in zip(first, second)) > 1:
            yield f"the smaller {name} differs"


with tempfile.TemporaryDirectory() as made:
    os.environ |= {"TMP": f"Z:{made}/temporary", "TMPDIR": f"{made}/temporary"}
    for made_folder in ("temporary", "native", "windows", "files"):
        os.mkdir(f"{made}/{made_folder}", 0o700)
    sys.exit("\n".join(problems(pathlib.Path(made))) or None)
