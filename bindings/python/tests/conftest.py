"""Lets pytest alone do, in the tree: it takes the package as it stands, and the library of the native build unless another
is named."""

import os
import sys
from pathlib import Path

TOP = Path(__file__).resolve().parents[3]
SOURCE = str(TOP / "bindings/python/src")
sys.path.insert(0, SOURCE)
os.environ["PYTHONPATH"] = SOURCE  # of programs that tests start
os.environ.setdefault("ZKR13N_LIBRARY", str(TOP / "build/native"))
