"""Draws a report of three rows and measures its bars. Usage: report.py TOP"""

import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml
from pathlib import Path

top = Path(sys.argv[1]).resolve()
rows = """section\twork\tms\tMpixel/s\tmemcpy\tpeer\tpeer ms\treach
Conversion\t24 to 32\t2.0\t100.0\t0.500\tslow\t8.0\t1.500
Conversion\t24 to 32\t2.0\t100.0\t0.500\tquick\t1.0\t0.800
Conversion\twork <of> its own\t3.0\t50.0\t0.100\t\t0.0\t0.000
"""
with tempfile.TemporaryDirectory() as folder:
    source, page, figure = (Path(folder) / name for name in ("rows.tsv", "page.html", "figure.svg"))
    source.write_text(rows, encoding="utf-8")
    subprocess.run([sys.executable, top / "benchmarks" / "report.py", source, "--page", page, "--figure", figure], check=True)
    text = page.read_text(encoding="utf-8")
    assert "Of 1 works" in text and "0 are faster" in text and "1 of 2 bars" in text, text[:2000]
    assert "work &lt;of&gt; its own" in text and "http" not in text.replace("http://www.w3.org", ""), "not self-contained"
    bars = [bar for bar in xml.parse(figure).iter("{http://www.w3.org/2000/svg}rect") if bar.get("rx")]
    assert len(bars) == 1, "the figure shows the fastest peer alone"
    # From half to equal is one of six octaves of the axis.
    assert abs(float(bars[0].get("width")) - 420 / 6) < 0.2, bars[0].attrib
print("bars are as long as their ratios")
