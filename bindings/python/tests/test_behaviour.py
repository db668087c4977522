"""What goes wrong, and what threads and progress callables do to each other: exceptions, stops, guards, leaks."""

import contextlib
import ctypes
import gc
import pickle
import threading
import time

import numpy
import pytest
from support import colourful, noise, noisy

import zkr13n
from zkr13n import (ArgumentError, Bitmap, BitmapList, BusyError, Combine, Error, LockedError, OutOfMemoryError, Palette,
                    Playback, Region, Resize, Stopped, Storage, StorageError, lib, settings)


def test_errors_are_exceptions_of_several_kinds(tmp_path):
    with pytest.raises(ArgumentError) as caught:
        noisy(24).shear(95)
    error = caught.value
    assert isinstance(error, ValueError) and error.code == -13 and error.function == "Z_ShearBitmap"
    assert error.text == lib.Z_GetErrorText(-13).decode() and error.text in str(error)
    again = pickle.loads(pickle.dumps(error))
    assert type(again) is ArgumentError and (again.code, str(again)) == (error.code, str(error))
    with pytest.raises(MemoryError) as caught:
        Bitmap(2**31 - 1, 2**28, 8, storage=Storage.MEMORY)
    assert caught.type is OutOfMemoryError
    with pytest.raises(ValueError):
        Bitmap(2**31 - 1, 2**31 - 1, 64)
    before = settings.temporary_folder()
    with pytest.raises(ValueError):
        settings.set_temporary_folder(tmp_path / "none")
    settings.set_temporary_folder(tmp_path)
    assert settings.temporary_folder() == str(tmp_path)
    tmp_path.chmod(0o500)
    settings.set_temporary_folder(before)


def test_locked_capabilities():
    bitmap = noisy(1, storage=Storage.RUNS)
    lib.Z_SetSupportLocks(1)
    try:
        with pytest.raises(LockedError) as caught:
            bitmap.copy()
        assert isinstance(caught.value, PermissionError)
    finally:
        lib.Z_SetSupportLocks(0)


def test_a_missing_strip_module_is_an_error_of_the_system():
    assert issubclass(StorageError, OSError) and issubclass(Error, Exception)
    error = StorageError(-356, "text", "function")
    assert (error.code, str(error)) == (-356, "function: text (code -356)")


def test_thresholds_decide_where_new_bitmaps_lie():
    before = settings.set_thresholds(conventional_size=1000, tile_size=4096, conventional_tiles=0)
    try:
        assert settings.thresholds().tile_size == 4096
        tiled = Bitmap(100, 100)
        assert tiled.storage == Storage.TILED
        tiled[50, 50] = (1, 2, 3)
        assert tiled[50, 50] == (1, 2, 3)
    finally:
        settings.set_thresholds(*before)
    assert settings.thresholds() == before
    with pytest.raises(ValueError):
        settings.set_thresholds(tile_size=-1)


# ---- Progress

WORK = [lambda b, p: b.resize(90, 70, progress=p), lambda b, p: b.rotate(33, progress=p), lambda b, p: b.copy(progress=p),
        lambda b, p: b.convert(8, palette=Palette.fixed(8), progress=p), lambda b, p: b.quantize(9, progress=p),
        lambda b, p: b.gray(progress=p), lambda b, p: b.shear(20, progress=p), lambda b, p: b.flip(progress=p),
        lambda b, p: b.combine(colourful(), Combine.XOR, progress=p), lambda b, p: b.store(Storage.DISK, progress=p),
        lambda b, p: b.crop((0, 0, 20, 20), progress=p), lambda b, p: b.count_colours(progress=p),
        lambda b, p: b.warp([(0, 0), (9, 0), (9, 9), (0, 9)], colourful(), progress=p)]


@pytest.mark.parametrize("work", WORK)
def test_progress_rises_and_can_stop(work):
    told = []
    work(colourful(), told.append)
    assert told == sorted(told) and 0 <= told[0] <= told[-1] <= 100
    bitmap = colourful()
    before = bitmap.to_array()
    with pytest.raises(Stopped):
        work(bitmap, lambda percent: False)
    with pytest.raises(ZeroDivisionError):
        work(bitmap, lambda percent: 1 // 0)
    with pytest.raises(KeyboardInterrupt):
        def interrupt(_percent):
            raise KeyboardInterrupt
        work(bitmap, interrupt)
    bitmap.fill((1, 2, 3))  # the bitmap is free again, and no callback is left
    assert before.shape[:2] == (bitmap.height, bitmap.width)
    assert not lib.Z_GetStatusCallBack(None) and not lib.Z_GetCopyStatusCallBack(None)


def test_a_stop_leaves_what_is_replaced_as_it_was():
    bitmap = colourful()
    before = bitmap.tobytes()
    with pytest.raises(Stopped):
        bitmap.resize(1000, 1000, method=Resize.SPLINE, progress=lambda percent: percent < 50)
    assert bitmap.size == (60, 40) and bitmap.tobytes() == before


def test_progress_callables_may_work_on_other_bitmaps_alone():
    bitmap, other, errors = colourful(), colourful(), []

    def work(_percent):
        other.flip().resize(*other.size)
        inner = []
        other.mirror(progress=inner.append)
        assert inner
        for touch in (lambda: bitmap.resize(4, 4), lambda: bitmap[0, 0], bitmap.close, lambda: other.combine(bitmap, 0)):
            with pytest.raises(BusyError):
                touch()
            errors.append(1)

    bitmap.resize(50, 50, progress=work)
    assert errors and bitmap.size == (50, 50)


# ---- Threads

def test_a_second_thread_is_refused_and_the_first_goes_on():
    bitmap, entered, go = Bitmap(300, 300), threading.Event(), threading.Event()
    results = []

    def wait(_percent):
        entered.set()
        assert go.wait(10)

    worker = threading.Thread(target=lambda: results.append(bitmap.rotate(10, progress=wait)))
    worker.start()
    assert entered.wait(10)
    for touch in (lambda: bitmap.flip(), lambda: bitmap.row(0), bitmap.tobytes, bitmap.close, lambda: numpy.asarray(bitmap),
                  lambda: bitmap.region, lambda: setattr(bitmap, "view", 1), lambda: setattr(bitmap, "delay", 1),
                  lambda: Bitmap(3, 3).underlay(bitmap), lambda: pickle.dumps(bitmap)):
        with pytest.raises(BusyError):
            touch()
    go.set()
    worker.join()
    assert results == [bitmap] and not bitmap.closed


def test_threads_that_fight_for_a_bitmap():
    bitmap, done, refused = colourful(), [], []

    def fight(seed):
        for turn in range(60):
            try:
                [lambda: bitmap.resize(20 + (seed + turn) % 50, 30), lambda: bitmap.rotate(90), bitmap.tobytes,
                 lambda: bitmap.convert(8 if turn % 2 else 24)][(seed + turn) % 4]()
                done.append(1)
            except BusyError:
                refused.append(1)

    threads = [threading.Thread(target=fight, args=(seed,)) for seed in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(done) + len(refused) == 240 and len(bitmap.tobytes()) > 0


def test_threads_share_a_region():
    region, other = Region.ellipse((0, 0, 900, 900)), Region.rectangle((400, 400, 2000, 2000))
    expected, results = region ^ other, []

    def join():
        results.extend(region ^ other == expected for _ in range(20))

    threads = [threading.Thread(target=join) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == [True] * 80


def test_calls_leave_the_interpreter_to_other_threads():
    """While one thread is in the library, another one counts."""
    bitmap, counted, stop = Bitmap(1500, 1500), [0], threading.Event()

    def count():
        while not stop.is_set():
            counted[0] += 1
            time.sleep(0)

    counter = threading.Thread(target=count)
    counter.start()
    before = counted[0]
    bitmap.resize(3000, 3000, method=Resize.SPLINE)
    during = counted[0] - before
    stop.set()
    counter.join()
    assert during > 5


# ---- Memory

def resident():
    with open("/proc/self/statm", encoding="ascii") as numbers:
        return int(numbers.read().split()[1]) * 4096


def round_of_work():
    with Bitmap(64, 64) as bitmap:
        bitmap.fill((1, 2, 3)).resize(50, 50).rotate(45, expand=True).shear(10)
        bitmap.region = Region.ellipse((5, 5, 40, 40)) | Region.rectangle((1, 1, 9, 9))
        other = bitmap.copy().quantize(7)
        other.palette = Palette.gray(3)
        other.region = bitmap.region
        numpy.asarray(bitmap)[3, 3] = 7
        Bitmap.from_dib(bitmap.to_dib())
        pickle.loads(pickle.dumps(bitmap))
        bitmap.wand(3, 3, 9).to_mask(9, 9)
        list(Playback([other, bitmap]))
        BitmapList([other, bitmap]).quantize(5)
        with pytest.raises(ValueError):
            bitmap.shear(95)
        with pytest.raises(Stopped):
            bitmap.rotate(5, progress=lambda percent: False)


def test_ten_thousand_operations_hold_no_memory():
    """A round is some thirty calls of the library; what the first rounds have warmed does not grow."""
    for _ in range(60):
        round_of_work()
    gc.collect()
    before = resident()
    for _ in range(300):
        round_of_work()
    gc.collect()
    assert resident() - before < 500_000


def test_bitmaps_go_without_being_closed():
    gc.collect()
    before = resident()
    for _ in range(50):
        array = numpy.asarray(Bitmap(2000, 1000).fill((1, 1, 1)))
        assert array[0, 0, 0] == 1
    del array
    assert resident() - before < 30_000_000


def test_version():
    assert zkr13n.version() == (13, 0) and zkr13n.__version__.startswith("13.")
    assert noise(8).any()


def test_numbers_that_do_not_fit_are_refused():
    far = (1 << 32) + 3
    bitmap, region = Bitmap(5, 4), Region.rectangle((0, 0, 3, 3))
    for work in (lambda: Bitmap(far, 1), lambda: bitmap.resize(far), lambda: bitmap.crop((far, 0, far + 2, 2)),
                 lambda: bitmap.rotate(far / 100), lambda: region.moved(far, 0), lambda: region.to_bitmap(far, 3),
                 lambda: Region([(far, 0, 5)]), lambda: Region.ellipse((far, 0, far + 2, 9)),
                 lambda: Region.polygon([(0, 0), (far, 0), (5, 5)]), lambda: setattr(bitmap, "position", (1, far)),
                 lambda: setattr(bitmap, "resolution", far), lambda: bitmap.paint(Bitmap(5, 4), to=(0, 0, far, 4))):
        with pytest.raises((OverflowError, ctypes.ArgumentError)):
            work()
    assert bitmap.size == (5, 4) and bitmap.position == (0, 0)


def test_a_playback_ends_though_its_canvas_is_closed():
    playback = Playback([Bitmap(8, 8)])
    playback.canvas.close()
    with pytest.raises(ValueError):
        next(playback)
    playback.close()


def test_arrays_and_slices_bear_a_thread_that_changes_the_form():
    bitmap, until = Bitmap(200, 200, 1), time.monotonic() + 0.5

    def change():
        while time.monotonic() < until:
            for width, bits in ((20, 1), (200, 64), (200, 1)):
                with contextlib.suppress(BusyError, BufferError):
                    bitmap.resize(width, 200).convert(bits)

    thread = threading.Thread(target=change)
    thread.start()
    while time.monotonic() < until:
        with contextlib.suppress(BusyError, ValueError):
            bitmap.to_array()
            bitmap[0:200, 0:20] = 1
    thread.join()
