#!/usr/bin/env python3
"""Makes one page of the measured rows, with bars drawn as SVG, for people who would rather look than read.

report.py ROWS.tsv --page report.html       the whole page; it needs no other file
report.py ROWS.tsv --figure speed.svg       the works of FIGURE alone, as the README shows them
"""
import argparse
import csv
import math
import platform
from dataclasses import dataclass, field
from datetime import date
from pathlib import Path

import jinja2

# The works that stand for the whole, the slow ones too, and how a stranger would call them.
FIGURE = {
    "24 to 32": "24 to 32 bits",
    "24 to gray": "colour to gray",
    "RGB to HSV": "RGB to HSV",
    "24 to 256 fixed, ordered": "to 256 colours, ordered",
    "24 to 256, Floyd-Steinberg": "to 256 colours, Floyd-Steinberg",
    "page to runs": "a page compressed to runs",
    "turn by 90: 24": "quarter turn, 24 bits",
    "mirror: page": "mirror a page of 1 bit",
    "rotate by 30: 24, nearest": "rotation by 30 degrees",
    "warp 24, bilinear": "warp into a quadrilateral",
    "area to 0.37, 24": "reduced by means",
    "linear doubled, 24": "doubled linearly",
    "or: pages, 3 pixels apart": "pages united, 3 pixels apart",
    "underlay: 24": "a texture laid under",
    "paint page in gray at 1/4 on 8": "a page shown in gray at a quarter",
    "wand around text, 24 bits": "magic wand",
    "copy under a text region: 24": "copy through a region of text",
}

BESIDE_OURSELVES = {"Threads", "Odd depths"}  # the sections whose peers are works of our own

LEFT, RIGHT = 1 / 2, 32  # the ratios at the ends of a bar's axis


@dataclass
class Peer:
    name: str
    ms: float
    reach: float
    ratio: float

    @property
    def below(self):
        return self.ratio < self.reach


@dataclass
class Work:
    section: str
    name: str
    ms: float
    speed: float
    copies: float
    peers: list = field(default_factory=list)


def read(path):
    works = {}
    with open(path, newline="", encoding="utf-8") as file:
        for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            ms = float(row["ms"])
            work = works.setdefault(
                (row["section"], row["work"]),
                Work(row["section"], row["work"], ms, float(row["Mpixel/s"]), float(row["memcpy"])),
            )
            peer = float(row["peer ms"])
            if peer > 0:
                work.peers.append(Peer(row["peer"], peer, float(row["reach"]), peer / ms))
    return list(works.values())


def place(ratio, width):
    """Where a ratio lies on an axis of this width, in pixels: the axis is logarithmic."""
    share = math.log(min(max(ratio, LEFT), RIGHT) / LEFT) / math.log(RIGHT / LEFT)
    return round(share * width, 1)


def short(number):
    return f"{number:.0f}" if number >= 100 else f"{number:.3g}"


def processor():
    try:
        for line in Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
            if line.startswith("model name"):
                return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor() or platform.machine()


def best(work):
    return min(work.peers, key=lambda peer: peer.ms)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("rows", help="what the benchmarks wrote for --rows=FILE")
    parser.add_argument("--page", help="the page to write")
    parser.add_argument("--figure", help="the figure to write")
    options = parser.parse_args()

    works = read(options.rows)
    sections = {}
    for work in works:
        sections.setdefault(work.section, []).append(work)
    compared = [best(work) for work in works if work.peers and work.section not in BESIDE_OURSELVES]
    chosen = [(FIGURE[work.name], work, best(work)) for work in works if work.name in FIGURE and work.peers]

    environment = jinja2.Environment(
        loader=jinja2.FileSystemLoader(Path(__file__).parent / "report"),
        autoescape=True, trim_blocks=True, lstrip_blocks=True, undefined=jinja2.StrictUndefined,
    )
    environment.globals.update(place=place, short=short)
    told = {
        "sections": sections, "chosen": chosen, "ticks": [0.5, 1, 2, 4, 8, 16, 32],
        "processor": processor(), "date": date.today().isoformat(), "compared": len(compared),
        "faster": sum(peer.ratio >= 1 for peer in compared), "below": sum(p.below for w in works for p in w.peers),
        "pairs": sum(len(work.peers) for work in works),
    }
    for path, template in (options.page, "page.html"), (options.figure, "figure.svg"):
        if path:
            Path(path).write_text(environment.get_template(template).render(told) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
