"""Pickles of bitmaps, palettes and regions: between protocols, storage classes and processes."""

import copy
import pickle

import numpy
import pytest
from support import DEPTHS, colourful, noise, noisy

from zkr13n import Bitmap, BitmapList, Disposal, Dither, Error, Order, Palette, Region, Storage, View
from zkr13n._strips import compress, expand

PLACES = [(bits, storage) for bits in DEPTHS for storage in (Storage.MEMORY, Storage.DISK)] + [
    (1, Storage.RUNS), (1, Storage.STRIPS), (24, Storage.STRIPS)]


@pytest.mark.parametrize("bits, storage", PLACES)
@pytest.mark.parametrize("protocol", [2, 4, 5])
def test_bitmaps(bits, storage, protocol):
    bitmap = noisy(bits, storage=storage)
    bitmap.region = Region.ellipse((2, 2, 30, 20))
    again = pickle.loads(pickle.dumps(bitmap, protocol))
    assert repr(again) == repr(bitmap) and again.palette == bitmap.palette and again.region == bitmap.region
    assert numpy.array_equal(again.to_array(), noise(bits))


def test_all_that_belongs_to_a_bitmap():
    bitmap = noisy(12).window(100, 2000, black=(9, 0, 0))
    bitmap.view, bitmap.resolution, bitmap.position, bitmap.delay = View.RIGHT_TOP, (300, 150), (4, 5), 70
    bitmap.disposal, bitmap.transparent, bitmap.background = Disposal.PREVIOUS, (1, 2, 3), (4, 5, 6)
    bitmap.intensity, bitmap.contrast, bitmap.gamma, bitmap.signed = 100, -100, 2.2, True
    again = pickle.loads(pickle.dumps(bitmap))
    for name in ("view", "resolution", "position", "delay", "disposal", "transparent", "background", "intensity", "contrast",
                 "gamma", "signed", "value_bits", "order"):
        assert getattr(again, name) == getattr(bitmap, name), name
    assert again.converted(24).tobytes() == bitmap.converted(24).tobytes()
    assert bitmap.converted(24).tobytes() != noisy(12).converted(24).tobytes()


def test_buffers_out_of_band_are_not_copied_and_are_given_back():
    bitmap, buffers = noisy(32, width=40), []
    data = pickle.dumps(bitmap, 5, buffer_callback=buffers.append)
    assert len(data) < 1500 and len(buffers) == 1 and buffers[0].raw().nbytes == bitmap.nbytes
    with pytest.raises(BufferError):
        bitmap.resize(5, 5)
    again = pickle.loads(data, buffers=[bytes(buffers[0])])
    assert again.tobytes() == bitmap.tobytes()
    buffers[0].release()
    del buffers
    bitmap.resize(5, 5)


def test_strips_are_taken_where_they_are_smaller():
    page = Bitmap(1700, 2200, 1)
    page[100:120, 50:900] = 1
    assert len(pickle.dumps(page)) < 20_000 < page.nbytes
    picture = Bitmap(500, 500).fill((200, 100, 50))
    assert len(pickle.dumps(picture)) < picture.nbytes / 20
    wild = noisy(24, 100, 100)
    assert wild.nbytes <= len(pickle.dumps(wild)) < wild.nbytes + 1500


@pytest.mark.parametrize("bits", [1, 24])
def test_damaged_strips_are_told(bits):
    bitmap = Bitmap(300, 40, bits)
    bitmap[3, 3] = bitmap[0, 0] if bits == 24 else 1
    strips = compress(bitmap.data.cast("B"), 300, bits)
    assert len(strips) == 3 and expand(strips, 300, 40, bits) == bitmap.tobytes(padded=True)
    for strip in (b"", strips[0][:-3], bytes([strips[0][0] ^ 255]) + strips[0][1:]):
        with pytest.raises(OSError, match="strip 0"):
            expand([strip, *strips[1:]], 300, 40, bits)


def test_copies_and_small_things():
    bitmap = colourful()
    assert copy.copy(bitmap).tobytes() == copy.deepcopy(bitmap).tobytes() == bitmap.tobytes()
    for thing in (Palette.fixed(6), Region(), Region.ellipse((-5, -5, 900, 700)), Order.BGR, Dither.ORDERED,
                  Region.from_mask(noise(1, 200, 200))):
        assert pickle.loads(pickle.dumps(thing)) == thing
    pages = pickle.loads(pickle.dumps(BitmapList([bitmap, noisy(8)])))
    assert len(pages) == 2 and pages[0].tobytes() == bitmap.tobytes()
    plain = Bitmap(9, 9).quantize(16)
    assert len(plain.palette) == 1 and pickle.loads(pickle.dumps(plain)).palette == plain.palette
    bitmap.close()
    with pytest.raises(ValueError, match="closed"):
        pickle.dumps(bitmap)


def test_damaged_states_raise_or_give_a_sound_bitmap():
    def state_of(bitmap):
        restored, (kind, state) = bitmap.__reduce_ex__(2)
        return lambda: restored(kind, state), state

    restore, state = state_of(Bitmap(20, 10, 8))
    state["flags"] = 0xFFFFFFFF  # also those that tell where pixels lie
    assert restore().storage == Storage.MEMORY
    state["fields"]["LowBit"] = 1 << 40
    with pytest.raises(OverflowError):
        restore()
    restore, state = state_of(Bitmap(64, 64, 24))
    state["strips"] = state["strips"][:-1]
    with pytest.raises(Error):
        restore()
