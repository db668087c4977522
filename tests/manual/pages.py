"""Runs what the pages of the manual show: pages.py PAGES WORK ZKR CC LIBRARY INCLUDE PYTHON-SOURCES

A page's blocks in C are one program, with `check` and `picture` as the page "Reading this manual" tells; those with a `main` are
programs of their own. Its blocks in Python are one script. The lines of blocks of the shell run one after the other, and in blocks
of the console those behind a `$`, which must print the lines below them. All of them run in WORK, where the pictures that pages
show come from, and begin with photo.png, page.png and walk.gif."""

import os
import re
import subprocess
import sys
from pathlib import Path

pages, work, zkr, compiler, library, include, python = sys.argv[1], *map(Path, sys.argv[2:4]), sys.argv[4], *map(Path, sys.argv[5:8])
BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.M | re.S)
PRELUDE = """#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <zkr13n.h>
static void check(ReturnCode code) {
    if (code >= 1) return;
    fprintf(stderr, "%s\\n", code == 0 ? "failed" : Z_GetErrorText(code));
    exit(1);
}
int main(void) {
BitmapHandle picture;
check(Z_CreateBitmap(&picture, MemoryConventional, 320, 240, 24, Z_ORDER_BGR, NULL, VIEW_TOP_LEFT, NULL, 0));
for (int y = 0; y < picture.Height; y++)
    for (int x = 0; x < picture.Width; x++)
        check(Z_PutPixelColor(&picture, y, x, (uint32_t)(x * 4 / 5 | y << 8 | 128 << 16)));
"""
ENVIRONMENT = {"PATH": f"{zkr.parent}:/usr/bin:/bin", "LC_ALL": "C.UTF-8", "LD_LIBRARY_PATH": str(library.parent),
               "ZKR13N_LIBRARY": str(library), "PYTHONPATH": str(python), "PYTHONDONTWRITEBYTECODE": "1",
               **{name: os.environ[name] for name in ("TMPDIR", "HOME") if name in os.environ}}
faults, ran = [], 0
can_run_python = subprocess.run(["/usr/bin/python3", "-c", "import numpy, PIL"], capture_output=True, check=False).returncode == 0


def run(where, command, **settings):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False, cwd=work, env=ENVIRONMENT,
                          timeout=120, **settings)
    if done.returncode != 0 or done.stderr:
        faults.append(f"{where}: {' '.join(map(str, command))} gave {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def run_c(where, source, name, by=compiler, standard="-std=c99", suffix="c"):
    file = work / f"{name}.{suffix}"
    file.write_text(source, encoding="utf-8")
    program = work / f"{name}.out"
    run(where, [by, standard, "-Wall", "-Wextra", "-Werror", "-Wno-unused", file, f"-I{include}", f"-L{library.parent}", "-lZKR13N", "-o", program])
    if program.exists():
        run(where, [program])


def run_page(page):
    global ran
    together = {"c": "", "python": ""}
    for number, (language, text) in enumerate(BLOCK.findall(page.read_text(encoding="utf-8"))):
        where = f"{page.name}, block {number + 1}"
        ran += 1
        if language == "c" and "int main(" in text:
            run_c(where, text, f"{page.stem}-{number}")
        elif language == "cpp":
            run_c(where, text, f"{page.stem}-{number}", re.sub(r"gcc|\bcc", lambda found: {"gcc": "g++"}.get(found[0], "c++"), compiler), "-std=c++20", "cpp")
        elif language in together:
            together[language] += text
        elif language == "sh":
            run(where, ["sh", "-euc", text])
        elif language == "console":
            for command, printed in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", text, re.M):
                told = run(where, ["sh", "-euc", command])
                if told.strip() != printed.strip():
                    faults.append(f"{where}: {command} prints\n{told}and not\n{printed}")
        elif language not in ("vb", "cmake"):
            faults.append(f"{where}: nobody runs blocks of {language}")
    if together["c"]:
        run_c(page.name, f'{PRELUDE}#line 1 "{page.name}, its blocks of C"\n{together["c"]}return 0;\n}}\n', page.stem)
    if together["python"] and not can_run_python:
        print(f"{page.name} is left out: Python lacks NumPy or Pillow")
        return
    if together["python"]:
        run(page.name, ["/usr/bin/python3", "-c", together["python"]])
    for shown in re.findall(r"!\[[^\]]*\]\(([^)]+)\)", page.read_text(encoding="utf-8")):
        if not (work / shown).exists():
            faults.append(f"{page.name} shows {shown}, which nothing has made")


work.mkdir(parents=True, exist_ok=True)
for stale in work.iterdir():
    if stale.is_file():
        stale.unlink()
resources = "/usr/lib/python3/dist-packages/imageio/resources/images"
run("the photograph", [zkr, "resize", "/usr/share/palapeli/collection/european-honey-bee.jpg", "photo.png", "--width", "486", "--height", "384"])
run("the page", [zkr, "crop", "/usr/share/jbigkit-testdata/ccitt1.jbg", "page.png", "--left", "150", "--top", "150", "--width", "800", "--height", "500"])
(work / "walk.gif").write_bytes(Path(f"{resources}/newtonscradle.gif").read_bytes())
for page in sorted(Path(pages).glob("*.md")):
    run_page(page)
for file in work.glob("*.out"):
    file.unlink()
print("\n".join(faults) or f"{ran} blocks of the pages run")
sys.exit(bool(faults))
