"""Runs the examples, and what the README begins with, on small pictures and looks at what they leave.
Usage: run_examples.py FOLDER_OF_THE_PROGRAMS README.md "C_COMPILER FLAGS" INCLUDE"""

import os
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

programs, readme, include = (Path(name).resolve() for name in (sys.argv[1], sys.argv[2], sys.argv[4]))
animation = Path("/usr/lib/python3/dist-packages/imageio/resources/images/newtonscradle.gif")


def run(name, *arguments):
    """What the program prints; None where it is not built here."""
    program = programs / f"example_{name}"
    if not program.exists() and name in ("gif_frames", "toolkit_window"):
        print(f"example_{name} is not built here")
        return None
    environment = os.environ | {"SDL_VIDEODRIVER": "dummy"}
    done = subprocess.run([program, *map(str, arguments)], capture_output=True, text=True, env=environment, check=False)
    assert done.returncode == 0, f"{name}: {done.stdout}{done.stderr}"
    return done.stdout


def write(kind, width, height, data, maximum=255):
    path = Path(f"{kind}{len(list(Path('.').iterdir()))}.pnm")
    header = f"P{kind} # made by a test\n{width} {height}\n" + ("" if kind == 4 else f"{maximum}\n")
    path.write_bytes(header.encode() + bytes(data))
    return path


def pixels(path):
    """Rows of tuples of a PPM that an example wrote."""
    header, data = Path(path).read_bytes().split(b"\n", 1)
    width, height = map(int, header.split()[1:3])
    assert header.startswith(b"P6") and len(data) == width * height * 3, header
    return [[tuple(data[(y * width + x) * 3 :][:3]) for x in range(width)] for y in range(height)]


def fax_page():
    # A thin line across every sixteenth row of a white page: all four survive.
    page = write(4, 64, 64, b"".join((b"\xff" if y % 16 == 5 else b"\0") * 8 for y in range(64)))
    assert "16 x 16 pixels, still runs" in run("fax_page", page, "quarter.pbm")
    header, rows = Path("quarter.pbm").read_bytes().split(b"\n", 1)
    assert header == b"P4 16 16", header
    assert [y for y in range(16) if rows[y * 2 : y * 2 + 2] == b"\xff\xff"] == [1, 5, 9, 13], rows


def xray():
    values = [0, 999, 1000, 1500, 2000, 2001, 4095]
    picture = write(5, len(values), 1, b"".join(v.to_bytes(2, "big") for v in values), 4095)
    run("xray", picture, 1000, 2000, "shown.ppm")
    shown = [p[0] for p in pixels("shown.ppm")[0]]
    assert shown[:3] == [0, 0, 0] and 120 <= shown[3] <= 135 and shown[4:] == [255, 255, 255], shown


def shared_palette():
    pictures = [write(6, 16, 16, bytes((i * i * (c + 3) + 91 * c * i + 7 * k) % 256 for i in range(256) for c in range(3))) for k in range(2)]
    run("shared_palette", *pictures)
    shown = {p for path in pictures for row in pixels(f"{path}.64.ppm") for p in row}
    assert 32 < len(shown) <= 64, len(shown)


def wand_fill():
    # A dark frame around a light square with a dark spot in it.
    dark, light = (10, 20, 30), (200, 210, 220)
    picture = [[light if 2 <= x < 8 and 2 <= y < 8 else dark for x in range(10)] for y in range(10)]
    picture[4][4] = dark
    source = write(6, 10, 10, bytes(c for row in picture for p in row for c in p))
    assert "35 of 100" in run("wand_fill", source, 5, 5, 8, "ff8000", "filled.ppm")
    assert pixels("filled.ppm") == [[(255, 128, 0) if p == light else p for p in row] for row in picture]


def warp_scene():
    picture = write(6, 8, 8, bytes((250, 0, 0)) * 64)
    scene = write(6, 40, 30, bytes((0, 0, 90)) * 1200)
    run("warp_scene", picture, scene, 5, 4, 34, 8, 30, 25, 8, 22, "hung.ppm")
    hung = pixels("hung.ppm")
    assert hung[15][20] == (250, 0, 0) and hung[0][0] == hung[29][39] == hung[4][34] == (0, 0, 90)


def gif_frames():
    if not animation.exists():
        print("no animation: python3-imageio is not installed")
        return
    if run("gif_frames", animation, ".") is None:
        return
    frames = [Path(f"{i:03d}.ppm").read_bytes() for i in range(36)]
    assert not Path("036.ppm").exists() and len({len(f) for f in frames}) == 1 and len(set(frames)) > 12


def toolkit_window():
    shown = run("toolkit_window", write(6, 33, 9, bytes(range(9)) * 99), 1)
    assert shown in (None, "33 x 9 pixels shown\n"), shown


def gray():
    run("gray")
    header, data = Path("gray.pgm").read_bytes().split(b"\n", 1)
    assert header == b"P5 320 200 255" and len(data) == 64000 and data[0] < data[-1]


def first_lines():
    """The README's first lines of C make the picture of its lines of Python, but for the bar; those of the shell run as they stand."""
    text = readme.read_text(encoding="utf-8")
    lines = re.search(r"^```c\n(.*?)^```", text, re.M | re.S)[1]
    assert len(lines.splitlines()) < 10
    ending = 'WritePicture("disc.ppm", &picture);\nZ_FreeBitmap(&picture);'
    Path("disc.c").write_text(f'#include "portable_picture.h"\nint main(void) {{\n{lines}{ending}\nreturn 0;\n}}\n', encoding="utf-8")
    examples = readme.parent / "examples"
    library = shlex.split(f"-L{programs} -Wl,-rpath,{programs} -lZKR13N")
    subprocess.run([*shlex.split(sys.argv[3]), "-Wall", "-Werror", f"-I{include}", f"-I{examples}", "disc.c", examples / "portable_picture.c", "-o", "disc",
                    *library], check=True)
    subprocess.run(["./disc"], check=True)
    disc = pixels("disc.ppm")
    assert (len(disc[0]), len(disc), disc[0][0], disc[120][160]) == (320, 240, (30, 60, 90), (255, 160, 0)), disc[120]

    if not (programs / "zkr").exists():
        print("zkr is not built here")
        return
    write(6, 1000, 500, bytes(y * x // 9 % 256 for y in range(500) for x in range(3000))).rename("photo.jpg")
    for line in re.search(r"^```sh\n(.*?)^```", text, re.M | re.S)[1].splitlines():
        done = subprocess.run([programs / "zkr", *shlex.split(line)[1:]], capture_output=True, text=True, check=False)
        assert done.returncode == 0, f"{line}: {done.stderr}"
    assert "64" in done.stdout, done.stdout


for example in (first_lines, fax_page, xray, shared_palette, wand_fill, warp_scene, gif_frames, toolkit_window, gray):
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        example()
        os.chdir("/")
print("the examples do what they say")
