"""Runs one file of tests by pytest, or says which Debian packages are missing for that and ends with the status 77.

Usage: run.py FILE MODULE..."""

import importlib.util
import sys
from pathlib import Path

PACKAGES = {"pytest": "python3-pytest", "numpy": "python3-numpy", "PIL": "python3-pil", "mypy": "mypy",
            "distributed": "python3-distributed"}
SKIPPED = 77

missing = [PACKAGES[name] for name in ["pytest", *sys.argv[2:]] if importlib.util.find_spec(name) is None]
if missing:
    print(f"SKIPPED, for want of {', '.join(missing)}")
    sys.exit(SKIPPED)

import pytest  # noqa: E402

here = Path(__file__).resolve().parent
sys.exit(pytest.main(["-q", "--rootdir", str(here.parent), "-c", str(here.parent / "pyproject.toml"),
                      str(here / sys.argv[1])]))
