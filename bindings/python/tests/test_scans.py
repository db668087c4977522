"""A folder of scans, worked through by processes and by a local cluster: the example as users start it."""

import subprocess
import sys
from pathlib import Path

import pytest
from PIL import Image
from support import colourful

from zkr13n import Resize

EXAMPLE = Path(__file__).resolve().parents[1] / "examples/scans.py"


@pytest.mark.parametrize("options", [[], ["--cluster", "local"]])
def test_pages_are_worked_through_and_failures_told(tmp_path, options):
    if options:
        pytest.importorskip("distributed", reason="python3-distributed is not installed")
    scans = tmp_path / "scans"
    scans.mkdir()
    pages = {f"page{i}.png": colourful(60 + 4 * i, 90) for i in range(8)}
    for name, page in pages.items():
        page.to_pil().save(scans / name)
    (scans / "broken.png").write_bytes(b"no picture")
    Image.new("L", (1, 1)).save(scans / "tiny.png")  # its half has no pixels, which is the library's own refusal
    done = subprocess.run([sys.executable, EXAMPLE, scans, tmp_path / "results", "--workers", "2", *options],
                          capture_output=True, text=True, timeout=120)
    assert done.returncode == 1, done.stderr
    assert "10 of 10 pages, 2 failed" in done.stderr
    assert "broken.png: UnidentifiedImageError" in done.stderr and "tiny.png: ArgumentError: Z_SizeBitmap" in done.stderr
    assert sorted(path.name for path in (tmp_path / "results").iterdir()) == sorted(pages)
    for name, page in pages.items():
        expected = page.gray().resize(page.width // 2, page.height // 2, method=Resize.LINEAR).convert(1).to_pil()
        with Image.open(tmp_path / "results" / name) as image:
            assert image.mode == "1" and image.tobytes() == expected.tobytes()
