"""Works through a folder of scanned pages: each becomes a page of half the size in black and white, as a PNG file.

    scans.py PAGES RESULTS                         with as many processes as the machine has processors
    scans.py PAGES RESULTS --workers 4             with four of them
    scans.py PAGES RESULTS --cluster HOST:PORT     on the machines of a Dask cluster that see the folder PAGES too
    scans.py PAGES RESULTS --cluster local         on a cluster of this machine's own

A page that fails is told at the end, with the reason; the others are finished. The exit status is 1 then.
"""

from __future__ import annotations

import argparse
import multiprocessing
import os
import sys
from concurrent.futures import Executor, ProcessPoolExecutor, as_completed
from contextlib import contextmanager
from pathlib import Path
from typing import Dict, Iterator, List, Optional

from PIL import Image

from zkr13n import Bitmap, Resize


def reduced(path: str) -> Bitmap:
    """The page of a file, in black and white at half the size. The bitmap goes to whoever waits for it as a pickle, which
    at 1 bit is compressed."""
    with Image.open(path) as image:
        page = Bitmap.from_pil(image)
    return page.gray().resize(page.width // 2, page.height // 2, method=Resize.LINEAR).convert(1)


@contextmanager
def workers(cluster: Optional[str], count: int) -> Iterator[Executor]:
    """What runs the pages: processes of this machine, or a cluster. Both give futures of one kind."""
    if cluster is None:
        # Fresh processes, as Windows has them: a fork would take over what threads of this one are in the middle of.
        with ProcessPoolExecutor(count, multiprocessing.get_context("spawn")) as executor:
            yield executor
        return
    from distributed import Client, LocalCluster

    if cluster == "local":
        with LocalCluster(n_workers=count, threads_per_worker=1, dashboard_address=None) as own, Client(own) as client:
            yield client.get_executor()
    else:
        with Client(cluster) as client:
            yield client.get_executor()


def show(done: int, pages: int, failed: int) -> None:
    """The progress bar, on a line of its own that is written over."""
    width = 40
    bar = "#" * (width * done // pages)
    print(f"\r[{bar:.<{width}}] {done} of {pages} pages" + (f", {failed} failed" if failed else ""), end="",
          file=sys.stderr, flush=True)


def work_through(pages: List[Path], results: Path, executor: Executor) -> Dict[str, BaseException]:
    """Brings all pages to the results; gives those that failed, with the reason."""
    failed: Dict[str, BaseException] = {}
    show(0, len(pages), 0)
    waiting = {executor.submit(reduced, str(page)): page for page in pages}
    for done, future in enumerate(as_completed(waiting), 1):
        page = waiting.pop(future)
        error = future.exception()
        if error is not None:
            failed[page.name] = error
        else:
            with future.result() as bitmap:
                bitmap.to_pil().save(results / page.with_suffix(".png").name)
        show(done, len(pages), len(failed))
    print(file=sys.stderr)
    return failed


def main(arguments: Optional[List[str]] = None) -> int:
    parser = argparse.ArgumentParser(description="Brings scanned pages to black and white at half their size.")
    parser.add_argument("pages", type=Path, help="the folder of scans")
    parser.add_argument("results", type=Path, help="the folder that the results go to")
    parser.add_argument("--workers", type=int, default=os.cpu_count() or 1, help="how many processes")
    parser.add_argument("--cluster", help="the scheduler of a Dask cluster, or 'local'")
    given = parser.parse_args(arguments)
    pages = sorted(page for page in given.pages.iterdir() if page.is_file())
    if not pages:
        parser.error(f"there are no pages in {given.pages}")
    given.results.mkdir(parents=True, exist_ok=True)
    with workers(given.cluster, given.workers) as executor:
        failed = work_through(pages, given.results, executor)
    for name, error in sorted(failed.items()):
        print(f"{name}: {type(error).__name__}: {error}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
