"""What documents and docstrings show runs as it stands, every public name is documented, and the annotations hold."""

import doctest
import inspect
import re
import subprocess
import sys
from pathlib import Path

import pytest
from support import colourful

import zkr13n

PACKAGE = Path(__file__).resolve().parents[1]
TOP = PACKAGE.parents[1]


@pytest.mark.parametrize("document, needs", [(TOP / "README.md", []), (PACKAGE / "README.md", ["numpy"])])
def test_documents_run_as_they_stand(document, needs, tmp_path):
    """The lines that begin the README want nothing but the package."""
    blocks = re.findall(r"^```python\n(.*?)^```", document.read_text(encoding="utf-8"), re.M | re.S)
    assert blocks and all(len(block.strip().splitlines()) < 10 for block in blocks)
    hidden = f"import sys; sys.modules.update({dict.fromkeys({'numpy', 'PIL'} - set(needs))})\n"
    for block in blocks:
        subprocess.run([sys.executable, "-c", hidden + block], cwd=tmp_path, check=True)


def test_readme_says_of_every_method_what_it_gives():
    text = (PACKAGE / "README.md").read_text(encoding="utf-8").partition("## In place")[2]
    named = [name for row in re.findall(r"^\| (`.*?) \|", text, re.M) for name in re.findall(r"`(\w+)`", row)]
    methods = [name for name in dir(zkr13n.Bitmap) if not name.startswith("_") and callable(getattr(zkr13n.Bitmap, name))]
    assert sorted(named) == methods


def test_docstrings_tell_the_truth():
    known = {name: getattr(zkr13n, name) for name in zkr13n.__all__}
    known["frames"] = [colourful()]
    finder, runner = doctest.DocTestFinder(), doctest.DocTestRunner()
    for name in ("Bitmap", "Palette", "Playback"):
        for test in finder.find(known[name], name, globs=known):
            runner.run(test)
    assert runner.summarize().attempted >= 3 and not runner.failures


def test_all_that_is_public_is_documented():
    for name in zkr13n.__all__:
        thing = getattr(zkr13n, name)
        if inspect.isclass(thing) or inspect.isfunction(thing):
            assert inspect.getdoc(thing), name
        for member, value in vars(thing).items() if inspect.isclass(thing) else ():
            if not member.startswith("_") and (inspect.isroutine(value) or isinstance(value, property)):
                assert inspect.getdoc(getattr(thing, member)), f"{name}.{member}"
    for member in dir(zkr13n.Bitmap):
        if not member.startswith("_"):
            assert inspect.getdoc(getattr(zkr13n.Bitmap, member)), member


@pytest.mark.parametrize("platform", ["linux", "win32"])
def test_annotations_hold(platform):
    done = subprocess.run([sys.executable, "-m", "mypy", "--config-file", "pyproject.toml", "--platform", platform,
                           "--cache-dir", TOP / "build/mypy" / platform], cwd=PACKAGE, capture_output=True, text=True)
    assert done.returncode == 0, done.stdout + done.stderr
