"""Uses the Python package as it is installed: wheel.py FOLDER [README]. Package and library lie in the folder; the lines of
Python that the README shows run as they stand."""

import os
import re
import sys
import tempfile
from pathlib import Path

import zkr13n
from zkr13n import Bitmap, Resize, Storage

folder = Path(sys.argv[1]).resolve()
library = zkr13n.lib.path()
for place in (Path(zkr13n.__file__), library):
    if place is not None and folder not in place.resolve().parents:
        sys.exit(f"{place} is not in {folder}")
with Bitmap(64, 48, 24, storage=Storage.STRIPS) as bitmap:  # which needs a filter module
    bitmap.fill((255, 128, 0)).resize(32, 24, method=Resize.LINEAR)
    if tuple(bitmap.colour(3, 5)) != (255, 128, 0):
        sys.exit(f"{bitmap} has lost its colour: {bitmap.colour(3, 5)}")
blocks = []
if len(sys.argv) > 2:
    blocks = re.findall(r"^```python\n(.*?)^```", Path(sys.argv[2]).read_text(encoding="utf-8"), re.M | re.S)
    with tempfile.TemporaryDirectory() as place:
        os.chdir(place)
        for block in blocks:
            exec(compile(block, sys.argv[2], "exec"), {"__name__": "__main__"})
        os.chdir("/")
print(f"zkr13n {zkr13n.__version__} with {library}; {len(blocks)} pieces of the README ran")
