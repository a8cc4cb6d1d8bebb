#!/usr/bin/env python3
"""Makes the compiled help from a folder of pages. 100.html is its start and its topic of context number 100.

  src/plugin/windows/makeHelp.py FOLDER_OF_PAGES HELP_FILE

The compiler of the help finds pages only beside its project, so they are copied to a folder of their own. It would also
write the whole path of this folder into the table of contexts, under which no viewer finds a page. So the table is written
here, and refers to the name of the page among the strings that the compiler writes for the window."""
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile

TITLE = "Tesselwind"
START = "100.html"
CONTEXT = 100
PROJECT = """[OPTIONS]
Compatibility=1.1 or later
Compiled file=made.chm
Default topic={start}
Language=0xc0a
Title={title}

[WINDOWS]
main="{title}",,,"{start}","{start}",,,,,0x0,,0x0,,,,,,,,0

[FILES]
{pages}
#IVB
"""


def make(pages, help_file):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for page in pages.iterdir():
            shutil.copy(page, folder)
        names = sorted(page.name for page in pages.iterdir())
        # In front of the page's name are the window's name, its title and no table of contents, each with a 0.
        offset = len(f"\0main\0{TITLE}\0\0")
        (folder / "#IVB").write_bytes(struct.pack("<III", 8, CONTEXT, offset))
        project = folder / "made.hhp"
        project.write_text(PROJECT.format(title=TITLE, start=START, pages="\n".join(names)), encoding="ascii")
        compiler = ["chmcmd", "--no-html-scan", "--verbosity", "0", project]
        subprocess.run(compiler, cwd=folder, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        shutil.copyfile(folder / "made.chm", help_file)


make(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
