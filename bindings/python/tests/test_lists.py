"""Lists of bitmaps, and the playback of animations with Pillow as the reference."""

import io

import numpy
import pytest
from PIL import Image
from support import colourful, noise, noisy

from zkr13n import Bitmap, BitmapList, BusyError, Disposal, Palette, Playback, Stopped


def test_a_list_is_a_sequence():
    one, two, three = noisy(24), noisy(8), noisy(1)
    pages = BitmapList([one, two])
    pages.append(three)
    assert list(pages) == [one, two, three] and pages[-1] is three and len(pages) == 3 and two in pages
    assert list(pages[::2]) == [one, three] and pages.index(two) == 1
    for wrong in (lambda: pages.append(one), lambda: pages.__setitem__(0, two),
                  lambda: pages.__setitem__(slice(0, 1), [two])):
        with pytest.raises(ValueError, match="already"):
            wrong()
    with pytest.raises(TypeError):
        pages.append("page")
    pages[0:2] = [two]
    del pages[1]
    pages.insert(0, one)
    assert list(pages) == [one, two] and pages.pop() is two and repr(pages) == "<zkr13n.BitmapList of 1 bitmaps>"
    with pages.copy() as copies:
        assert copies[0] is not one and copies[0].tobytes() == one.tobytes()
    assert copies[0].closed and not one.closed


def test_one_palette_for_all():
    pages = BitmapList([colourful(), colourful(20, 90), noisy(4)])
    before = [page.converted(24).to_array().astype(int) for page in pages]
    palette = pages.palette_for(60)
    assert len(palette) == 60 and [page.bits for page in pages] == [24, 24, 4]
    assert pages.quantize(64) is pages
    assert len({page.palette for page in pages}) == 1 and all(page.bits == 6 for page in pages)
    assert all(abs(page.converted(24).to_array() - array).mean() < 12 for page, array in zip(pages, before))
    assert all(page.bits == 8 and page.palette == Palette.gray(8) for page in pages.convert(8, palette=Palette.gray(8)))
    with pytest.raises(ValueError):
        BitmapList().quantize()


def test_failures_leave_the_bitmaps_theirs():
    pages = BitmapList([colourful(), colourful()])
    with pytest.raises(Stopped):
        pages.quantize(16, progress=lambda percent: False)
    array = numpy.asarray(pages[1])
    with pytest.raises(BufferError):
        pages.convert(8)
    assert numpy.array_equal(array, colourful().to_array())
    del array
    with pytest.raises(BusyError):
        pages[0].resize(9, 9, progress=lambda percent: pages.convert(8))
    pages[1].close()
    with pytest.raises(ValueError, match="closed"):
        pages.convert(8)
    assert pages[0].tobytes() == colourful().tobytes()


def animation():
    """Frames of which each disposal occurs, and the same as a file that Pillow reads."""
    random = numpy.random.default_rng(3)
    frames = []
    places = [(1, (0, 0, 40, 30)), (2, (5, 6, 20, 20)), (1, (10, 3, 30, 22)), (3, (0, 10, 25, 30)), (1, (20, 20, 40, 30)),
              (2, (2, 2, 12, 9)), (1, (1, 1, 9, 9))]
    for number, (disposal, box) in enumerate(places):
        left, top, right, bottom = box
        array = random.integers(1 if number == 0 else 0, 8, (bottom - top, right - left), dtype=numpy.uint8)
        frame = Bitmap.from_array(array, palette=Palette([(30 * i, 255 - 20 * i, i) for i in range(256 // 32)]))
        frame.position, frame.disposal, frame.delay = (left, top), Disposal(disposal), 40 + 10 * number
        frame.transparent = None if number == 0 else 0x01000000
        frames.append(frame)
    return frames


def gif_of(frames):
    """A GIF file, with codes of nine bits that never grow."""
    colours = b"".join(bytes(colour) for colour in list(frames[0].palette)[:8])
    data = b"GIF89a" + (40).to_bytes(2, "little") + (30).to_bytes(2, "little") + bytes([0x82, 0, 0]) + colours
    for frame in frames:
        clear = frame.transparent is not None
        data += bytes([0x21, 0xF9, 4, frame.disposal << 2 | clear]) + (frame.delay // 10).to_bytes(2, "little") + b"\0\0"
        data += b"\x2C" + b"".join(n.to_bytes(2, "little") for n in (*frame.position, *frame.size)) + b"\0\x08"
        codes = [code for at in range(0, frame.width * frame.height, 200) for code in (256, *frame.tobytes()[at:at + 200])]
        bits = sum(code << 9 * place for place, code in enumerate([*codes, 257]))
        packed = bits.to_bytes((9 * (len(codes) + 1) + 7) // 8, "little")
        blocks = [packed[at:at + 255] for at in range(0, len(packed), 255)]
        data += b"".join(bytes([len(block)]) + block for block in blocks) + b"\0"
    return data + b"\x3B"


def test_playback_composes_what_pillow_composes():
    frames = animation()
    before = [frame.tobytes() for frame in frames]
    file = Image.open(io.BytesIO(gif_of(frames)))
    assert file.n_frames == len(frames)
    with Playback(frames, background=(0, 255, 0)) as playback:
        assert playback.index == -1 and iter(playback) is playback and playback.canvas.size == (40, 30)
        for turn in range(2):
            for number, picture in enumerate(playback):
                file.seek(number)
                assert playback.index == number and picture.delay == frames[number].delay
                mine, other = picture.to_array(), numpy.asarray(file.convert("RGBA"))
                shown = other[..., 3] > 0
                assert numpy.array_equal(mine[shown], other[shown][:, :3]), number
            assert next(playback, None) is None
            assert playback.rewind() is playback
    assert [frame.tobytes() for frame in frames] == before
    with pytest.raises(ValueError, match="closed"):
        playback.index
    assert repr(playback) == "<zkr13n.Playback of 7 frames, closed>"


def test_playback_sees_what_becomes_of_its_frames():
    frames = animation()
    playback = Playback(frames, size=(60, 60), background=(9, 9, 9))
    first = next(playback)
    assert first.size == (60, 60) and first[59, 59] == (9, 9, 9) and playback.changed() == (0, 0, 60, 60)
    frames[1].convert(24).fill((1, 2, 3)).transparent = None
    second = next(playback)
    assert second[10, 10] == (1, 2, 3)
    frames[2].close()
    with pytest.raises(ValueError, match="closed"):
        next(playback)
    assert next(Playback([]), None) is None and noise(8).any()
