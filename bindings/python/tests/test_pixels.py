"""Pixels as arrays, bytes, rows, slices and views, at all depths and in all storage; arrays are the reference."""

import gc
import subprocess
import sys

import numpy
import pytest
from support import DEPTHS, bitmap_of, noise, noisy

from zkr13n import Bitmap, Colour, Order, Palette, Region, Storage, View, gray, index

PLACES = [(bits, Storage.MEMORY) for bits in DEPTHS] + [(bits, Storage.DISK) for bits in DEPTHS] + [
    (1, Storage.RUNS), (1, Storage.STRIPS), (24, Storage.STRIPS)]


@pytest.mark.parametrize("bits, storage", PLACES)
def test_arrays_go_in_and_come_out(bits, storage):
    array = noise(bits)
    bitmap = bitmap_of(array, bits, storage=storage)
    assert bitmap.storage == storage and bitmap.bits == bits
    assert numpy.array_equal(bitmap.to_array(), array)
    for padded in (False, True):
        again = Bitmap.frombytes(*bitmap.size, bits, bitmap.tobytes(padded), storage=storage)
        assert again.tobytes() == bitmap.tobytes()
    assert b"".join(bitmap.rows()) == bitmap.tobytes()
    assert numpy.array_equal(bitmap.copy(Storage.MEMORY).to_array(), array)


@pytest.mark.parametrize("bits, storage", PLACES)
def test_pixels_and_slices_are_those_of_arrays(bits, storage):
    array, other = noise(bits), noise(bits, 5, 13, seed=1)
    bitmap = bitmap_of(array, bits, storage=storage)
    for y, x in ((0, 0), (22, 36), (7, 19), (-1, -3), (11, 12)):
        value = bitmap[y, x]
        assert value == (tuple(array[y, x]) if isinstance(value, tuple) else array[y, x])
    bitmap[-2, 5] = bitmap[3, 4]
    array[-2, 5] = array[3, 4]
    bitmap[2:7, 9:22] = bitmap_of(other, bits)
    array[2:7, 9:22] = other
    bitmap[20:, :3] = bitmap[0, 0]
    array[20:, :3] = array[0, 0]
    assert numpy.array_equal(bitmap.to_array(), array)
    assert numpy.array_equal(bitmap[4:, 5:-6].to_array(), array[4:, 5:-6])
    assert numpy.array_equal(bitmap[:9].to_array(), array[:9])


@pytest.mark.parametrize("error, what", [
    (IndexError, lambda b: b[23, 0]),
    (IndexError, lambda b: b[0, -38]),
    (ValueError, lambda b: b[::2, 1:4]),
    (ValueError, lambda b: b[3:3, 1:4]),
    (TypeError, lambda b: b[3]),
    (TypeError, lambda b: b[3, 1:4]),
    (IndexError, lambda b: b.row(23)),
    (ValueError, lambda b: b.set_row(0, b"x")),
    (ValueError, lambda b: b.__setitem__((0, 0), 256)),
    (ValueError, lambda b: b.__setitem__((0, 0), -1)),
    (ValueError, lambda b: b.__setitem__((0, 0), (1, 2))),
    (ValueError, lambda b: b.__setitem__((slice(5), slice(5)), noisy(8))),
    (ValueError, lambda b: b.__setitem__((slice(23), slice(37)), noisy(24))),
    (ValueError, lambda b: Bitmap.frombytes(4, 4, 8, bytes(15))),
    (ValueError, lambda b: Bitmap.from_array(noise(8), bits=3)),
    (ValueError, lambda b: Bitmap.from_array(noise(16), bits=12)),
    (ValueError, lambda b: Bitmap.from_array(noise(24)[..., :2])),
    (TypeError, lambda b: Bitmap.from_array(noise(8) * 0.5)),
    (ValueError, lambda b: Bitmap.from_array(noise(8)[0])),
    (ValueError, lambda b: Bitmap.from_array(noise(1), copy=False, bits=1)),
    (ValueError, lambda b: Bitmap.from_array(noise(8)[:, :9], copy=False)),
    (ValueError, lambda b: Bitmap(0, 5)),
    (ValueError, lambda b: Bitmap(5, 5, 9)),
    (ValueError, lambda b: Bitmap(5, 5, 0)),
    (ValueError, lambda b: Bitmap(5, 5, storage=Storage.USER)),
    (ValueError, lambda b: Bitmap(5, 5, 24, palette=Palette.gray(8))),
    (ValueError, lambda b: Bitmap(5, 5, 2, palette=Palette.gray(8))),
    (ValueError, lambda b: Bitmap(5, 5, 8, storage=Storage.RUNS)),
])
def test_what_does_not_fit_is_refused_and_changes_nothing(error, what):
    bitmap = noisy(8)
    with pytest.raises(error):
        what(bitmap)
    assert numpy.array_equal(bitmap.to_array(), noise(8))


@pytest.mark.parametrize("bits", [8, 16, 24, 32, 48, 64])
def test_arrays_without_a_copy_share_the_pixels(bits):
    bitmap = noisy(bits)
    array = numpy.asarray(bitmap)
    assert numpy.array_equal(array, noise(bits)) and array.flags.writeable and not array.flags.owndata
    array[3, 4] = array[7, 8]
    assert bitmap[3, 4] == bitmap[7, 8]
    bitmap[5, 5] = bitmap[0, 0]
    assert numpy.array_equal(array[5, 5], array[0, 0])
    assert bytes(bitmap.data) == bitmap.tobytes(padded=True)
    assert numpy.array_equal(numpy.array(bitmap), array)


@pytest.mark.parametrize("bitmap, word", [
    (noisy(1), "to_array"), (noisy(7), "to_array"), (noisy(12), "to_array"), (noisy(24, storage=Storage.DISK), "one block"),
    (noisy(24, storage=Storage.STRIPS), "one block")])
def test_arrays_that_would_need_a_copy_are_refused_in_clear_words(bitmap, word):
    with pytest.raises(BufferError, match=word):
        numpy.asarray(bitmap)
    assert not hasattr(bitmap, "__array_interface__")


def test_nothing_takes_pixels_away_that_are_looked_at():
    bitmap = noisy(24)
    array, data = numpy.asarray(bitmap), bitmap.data
    part = array[3:9]
    for change in (lambda: bitmap.resize(5, 5), lambda: bitmap.convert(8), lambda: bitmap.store(Storage.DISK),
                   lambda: bitmap.trim((0, 0, 5, 5)), lambda: bitmap.rotate(90), lambda: bitmap.set_height(99),
                   lambda: noisy(8).paint(bitmap), lambda: bitmap.gray()):
        with pytest.raises(BufferError, match="looks at the pixels"):
            change()
    bitmap.flip().fill((1, 2, 3))
    assert (array == (1, 2, 3)).all()
    del array, data
    with pytest.raises(BufferError):
        bitmap.resize(5, 5)
    bitmap.close()
    gc.collect()
    assert (part == (1, 2, 3)).all()
    with pytest.raises(ValueError, match="closed"):
        bitmap.tobytes()
    del part


def test_a_bitmap_on_the_memory_of_an_array():
    for array, bits in ((noise(8, width=40), 8), (noise(24, width=40), 24), (noise(64), 64),
                        (noise(8, width=64)[:, 4:35][:, ::1], None)):
        if bits is None:
            with pytest.raises(ValueError, match="strides"):
                Bitmap.from_array(array, copy=False)
            continue
        bitmap = Bitmap.from_array(array, copy=False)
        assert bitmap.storage == Storage.USER and bitmap.bits == bits
        bitmap.flip()
        assert numpy.array_equal(array, noise(bits, width=array.shape[1])[::-1])
        before = array.copy()
        bitmap.resize(11, 7)
        assert numpy.array_equal(array, before) and bitmap.storage == Storage.MEMORY
    padded = noise(8, width=40)
    bitmap = Bitmap.from_array(padded[:, :38], copy=False)
    bitmap.mirror()
    assert numpy.array_equal(padded[:, :38], noise(8, width=40)[:, 37::-1])
    still = noise(8, width=40)
    still.flags.writeable = False
    with pytest.raises(ValueError, match="writable"):
        Bitmap.from_array(still, copy=False)


def test_strided_and_plain_buffers():
    array = noise(24)
    assert numpy.array_equal(Bitmap.from_array(array[::-1, ::2]).to_array(), array[::-1, ::2])
    assert numpy.array_equal(Bitmap.from_array(memoryview(bytes(range(12))).cast("B", (3, 4))).to_array(),
                             numpy.arange(12, dtype=numpy.uint8).reshape(3, 4))


def test_form():
    bitmap = Bitmap(30, 20, 16, order=Order.BGR, view=View.LEFT_TOP)
    bitmap.resolution = 300, 200
    bitmap.region = Region.rectangle((1, 1, 5, 5))
    assert repr(bitmap) == "<zkr13n.Bitmap 30x20, 16 bits BGR, MEMORY, view LEFT_TOP, with a region>"
    assert sys.getsizeof(bitmap) > 1200
    assert (bitmap.row_bytes, bitmap.nbytes, bitmap.resolution) == (60, 1200, (300, 200))
    bitmap.resolution = 96
    assert bitmap.resolution == (96, 96)
    with bitmap:
        pass
    assert bitmap.closed and repr(bitmap) == "<zkr13n.Bitmap, closed>"
    bitmap.close()
    with pytest.raises(ValueError):
        bitmap.width


def test_colours_of_single_pixels():
    bitmap = Bitmap(8, 8, 4)
    bitmap.set_colour(3, 5, (255, 0, 0)).set_colour(4, 5, index(7))
    assert bitmap.colour(3, 5) == Colour(255, 0, 0) and bitmap[5, 4] == 7
    deep = Bitmap(8, 8, 16, order=Order.GRAY).set_colour(0, 0, gray(0xABCD))
    assert deep[0, 0] == 0xABCD and deep.colour(0, 0) == (0xAB, 0xAB, 0xAB)
    for wrong in ((256, 0, 0), (0, -1, 0), -1, 1 << 32):
        with pytest.raises(ValueError):
            bitmap.fill(wrong)
    with pytest.raises(IndexError):
        bitmap.colour(8, 0)


def test_storage_moves():
    for bits in (1, 24):
        bitmap = noisy(bits)
        for storage in [Storage.RUNS] * (bits == 1) + [Storage.DISK, Storage.STRIPS, Storage.MEMORY]:
            assert bitmap.store(storage).storage == storage
            assert numpy.array_equal(bitmap.to_array(), noise(bits))


def test_without_numpy_and_pillow():
    """All but arrays works where neither can be imported."""
    code = ("import sys; sys.modules['numpy'] = sys.modules['PIL'] = None\n"
            "from zkr13n import Bitmap, Region\nbitmap = Bitmap(9, 9, 8)\n"
            "bitmap.region = Region.ellipse((0, 0, 9, 9))\nbitmap.fill((255, 255, 255)).resize(5)\n"
            "assert bitmap[2, 2] == 255 and len(bitmap.tobytes()) == 25 and len(bitmap.data) == 5\n"
            "bitmap = Bitmap.from_array(memoryview(bytes(12)).cast('B', (3, 4)), bits=2)\n"
            "assert bitmap.row(0) == bytes(1)\n")
    subprocess.run([sys.executable, "-c", code], check=True)


def test_a_part_of_a_view_is_not_taken_for_the_whole():
    wide = numpy.arange(120, dtype=numpy.uint8).reshape(10, 12)[:, :11]
    assert Bitmap.from_array(wide, copy=False).row(3) == bytes(wide[3])
    with pytest.raises(ValueError):
        Bitmap.from_array(memoryview(wide)[3:], copy=False)
