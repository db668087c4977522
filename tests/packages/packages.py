"""Installs each package that ./package has made into an empty place and uses it there, as somebody who has nothing but the
package. Usage: packages.py TOP debian|archive|wheel|windows"""

import os
import re
import subprocess
import sys
import tempfile
import zipfile
from pathlib import Path

top, kind = Path(sys.argv[1]).resolve(), sys.argv[2]
packages = top / "build/packages"
consumer = top / "tests/consumer"
MACHINE = os.uname().machine


def run(*command, **settings):
    """Runs a command, which must end well, and gives what it printed."""
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False, **settings)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} gave {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def expect(true, words):
    if not true:
        sys.exit(words)


def the(pattern):
    found = sorted(packages.glob(pattern))
    expect(len(found) == 1, f"{pattern} names {len(found)} packages")
    return found[0]


def with_settings(**changes):
    return {**os.environ, **{name: str(value) for name, value in changes.items()}}


def on_windows(path):
    return "Z:" + str(path).replace("/", "\\")


def consume(folder, prefix, pkgconfig, sysroot=""):
    """Builds the consumer against a prefix by pkg-config and by CMake; gives both programs."""
    settings = with_settings(PKG_CONFIG_LIBDIR=pkgconfig, PKG_CONFIG_SYSROOT_DIR=sysroot)
    flags = run("pkg-config", "--cflags", "--libs", "zkr13n", env=settings).split()
    run("cc", "-std=c99", consumer / "main.c", "-o", folder / "by-pkg-config", *flags)
    run("cmake", "-S", consumer, "-B", folder / "cmake", f"-DCMAKE_PREFIX_PATH={prefix}")
    run("cmake", "--build", folder / "cmake")
    expect(f"ZKR13N_DIR:PATH={prefix}" in (folder / "cmake/CMakeCache.txt").read_text(), "CMake found another ZKR13N")
    return folder / "by-pkg-config", folder / "cmake/consumer"


def use_program(zkr, folder, environment=None):
    picture = folder / "page.pbm"
    picture.write_bytes(b"P4 64 64\n" + bytes(range(256)) * 2)
    # Strips of 1 bit need the filter module, so that this tells whether it is found.
    run(zkr, "rotate", picture, folder / "turned.png", "--angle", "90", "--storage", "strips", env=environment)
    expect((folder / "turned.png").read_bytes().startswith(b"\x89PNG"), "zkr has written no picture")


def check_archive(folder):
    archive = the(f"zkr13n-*-linux-{MACHINE}.tar.xz")
    run("tar", "-xf", archive, "-C", folder)
    prefix, = (path for path in folder.iterdir() if path.is_dir())
    for program in consume(folder, prefix, prefix / "lib/pkgconfig"):
        run(program, env=with_settings(LD_LIBRARY_PATH=prefix / "lib"))
    use_program(prefix / "bin/zkr", folder)
    expect((prefix / "share/man/man1/zkr.1.gz").exists(), "there is no man page")


def check_wheel(folder):
    if not (top / "bindings/python").exists():
        return
    wheel = the(f"zkr13n-*-py3-none-linux_{MACHINE}.whl")
    names = zipfile.ZipFile(wheel).namelist()
    for name in ("_lib/libZKR13N.so.13", "_lib/libZFCMP13S.so", "_lib/libZFFAX13S.so", "py.typed"):
        expect(f"zkr13n/{name}" in names, f"the wheel has no {name}")
    run("/usr/bin/python3", "-m", "venv", folder / "venv")
    python = folder / "venv/bin/python"
    alone = {"PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8"}
    run(python, "-m", "pip", "install", "--no-index", wheel, env=alone)
    print(run(python, top / "tests/packages/wheel.py", folder / "venv", top / "README.md", cwd=folder, env=alone), end="")


def check_windows(folder):
    archive = the("zkr13n-*-windows.zip")
    zipfile.ZipFile(archive).extractall(folder)
    prefix, = (path for path in folder.iterdir() if path.is_dir())
    for name in ("register.cmd", "README.txt", "copyright.txt"):
        expect(b"\r\n" in (prefix / name).read_bytes(), f"{name} has not the ends of lines of Windows")
    for bits, part, compiler in ((32, "x86", "i686-w64-mingw32-gcc-posix"), (64, "x64", "x86_64-w64-mingw32-gcc-posix")):
        here = prefix / part
        expect((here / "bin/ZKR13N.tlb").exists(), f"{part} has no type library")
        program = here / "bin/consumer.exe"
        run(compiler, "-std=c99", consumer / "main.c", f"-I{here / 'include'}", f"-L{here / 'lib'}", "-lZKR13N", "-o", program)
        toolchain = top / f"cmake/toolchain-{compiler.removesuffix('-gcc-posix')}.cmake"
        run("cmake", "-S", consumer, "-B", folder / part, "--toolchain", toolchain, f"-DZKR13N_ROOT={here}",
            "-DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH")
        run("cmake", "--build", folder / part)
        wine = [str(top / "scripts/wine.sh"), "exec", str(bits)]
        run(*wine, program, cwd=here / "bin")
        run(*wine, "cmd", "/c", on_windows(prefix / "register.cmd"))
        script = [*wine, "cscript", "/nologo", on_windows(top / "tests/packages/raster.vbs")]
        expect("640" in run(*script), f"a script cannot create the object of {part}")
        run(*wine, "cmd", "/c", on_windows(prefix / "register.cmd"), "/u")
        left = subprocess.run(script, capture_output=True, text=True, check=False).stdout
        expect("640" not in left, f"the object of {part} stays registered")


def check_debian(folder):
    names = ["libzkr13n13", "libzkr13n-dev", "zkr"] + ["python3-zkr13n"] * (top / "bindings/python").exists()
    files = [the(f"{name}_*.deb") for name in names]
    print(run(top / "tests/packages/minimal_root.sh", folder, *files), end="")


with tempfile.TemporaryDirectory(prefix="zkr13n-packages-") as place:
    {"debian": check_debian, "archive": check_archive, "wheel": check_wheel, "windows": check_windows}[kind](Path(place))
print(f"{kind}: installed and used")
