"""Operations on whole bitmaps, with NumPy and Pillow as references where these do the same work."""

import numpy
import pytest
from PIL import Image
from support import DEPTHS, bitmap_of, colourful, noise, noisy

from zkr13n import (BLACK, WHITE, Bitmap, Colour, Combine, Dither, Gray, Operand, Order, Palette, Region, Resize,
                    Rotate, Storage, View, index)

MANY = pytest.mark.parametrize("bits", DEPTHS)


@MANY
@pytest.mark.parametrize("name, reference", [
    ("flip", lambda a: a[::-1]), ("mirror", lambda a: a[:, ::-1]),
    ("quarter", lambda a: numpy.rot90(a, -1)), ("half", lambda a: a[::-1, ::-1]), ("back", lambda a: numpy.rot90(a))])
def test_turns(bits, name, reference):
    turns = {"quarter": 90, "half": 180, "back": -90}
    bitmap = noisy(bits)
    same = bitmap.rotate(turns[name], expand=True) if name in turns else getattr(bitmap, name)()
    assert same is bitmap and numpy.array_equal(bitmap.to_array(), reference(noise(bits)))


@MANY
def test_nearest_pixels(bits):
    """Column x of the result is column x * old / new of the picture, and rows likewise."""
    array = noise(bits)
    for width, height in ((20, 11), (74, 46), (37, 7), (11, 60)):
        columns, rows = numpy.arange(width) * 37 // width, numpy.arange(height) * 23 // height
        assert numpy.array_equal(noisy(bits).resize(width, height).to_array(), array[rows][:, columns])
    assert noisy(bits).resize(0, 46).size == (74, 46)


@MANY
def test_cuts(bits):
    array, bitmap = noise(bits), noisy(bits)
    assert numpy.array_equal(bitmap.crop((5, 3, 22, 19)).to_array(), array[3:19, 5:22])
    reaching = bitmap.crop((-2, -3, 10, 40)).to_array()
    assert reaching.shape[:2] == (43, 12) and numpy.array_equal(reaching[3:26, 2:], array[:, :10]) and not reaching[:3].any()
    assert bitmap.trim((30, 20, 99, 99)) is bitmap and numpy.array_equal(bitmap.to_array(), array[20:, 30:])
    taller = noisy(bits).set_height(30).to_array()
    assert numpy.array_equal(taller[:23], array) and not taller[23:].any()


@pytest.mark.parametrize("view", View)
def test_views_show_the_same_picture(view):
    picture = colourful()
    there = picture.with_view(view)
    assert there.view == view and (there.size != picture.size) == (view >= View.RIGHT_TOP)
    assert there.to_pil().tobytes() == picture.tobytes()
    assert there.arrange() is there and there.tobytes() == picture.tobytes()


def test_shear_moves_whole_rows():
    array = noise(24, 20, 20)
    sheared = noisy(24, 20, 20).shear(45, fill=(9, 9, 9)).to_array()
    assert sheared.shape[1] in (39, 40)
    for row, before in zip(sheared, array):
        kept = row[(row != 9).any(-1)]
        assert numpy.array_equal(kept, before[(before != 9).any(-1)])


def test_averages_are_those_of_blocks():
    """The last pixel of a row or column has no weight where blocks end with it, so that the last blocks differ."""
    array = noise(24, 24, 36)
    means = array.astype(int).reshape(12, 2, 18, 2, 3)
    means = (means.sum(3) // 2).sum(1) // 2
    halved = noisy(24, 24, 36).resize(18, 12, method=Resize.LINEAR).to_array()
    assert abs(halved - means)[:-1, :-1].max() <= 1


@pytest.mark.parametrize("method", [Rotate.LINEAR, Rotate.SPLINE])
def test_rotation_is_near_that_of_pillow(method):
    y, x = numpy.mgrid[0:60, 0:80]
    smooth = (128 + 100 * numpy.sin(x / 9) * numpy.cos(y / 7)).astype(numpy.uint8)
    mine = Bitmap.from_array(smooth).rotate(30, method=method).to_array().astype(int)
    other = numpy.asarray(Image.fromarray(smooth).rotate(-30, Image.BICUBIC)).astype(int)
    inside = (slice(20, 40), slice(25, 55))
    assert abs(mine[inside] - other[inside]).mean() < 8


@pytest.mark.parametrize("order", [Order.RGB, Order.BGR])
def test_gray_of_colours(order):
    array = noise(24)
    red, green, blue = numpy.moveaxis(array.astype(int), -1, 0)[::1 if order == Order.RGB else -1]
    level = (2 * red + 5 * green + blue + 4) >> 3
    gray = bitmap_of(array, 24, order=order).gray()
    assert gray.grayness == Gray.NORMAL and numpy.array_equal(gray.to_array(), level)
    assert numpy.array_equal(bitmap_of(array, 24, order=order).gray(16).to_array(), level * 257)


def test_conversions():
    array, bitmap = noise(24), noisy(24)
    assert numpy.array_equal(bitmap.converted(24, Order.BGR).to_array(), array[..., ::-1])
    assert numpy.array_equal(bitmap.converted(48).to_array(), array.astype(int) * 257)
    assert numpy.array_equal(bitmap.converted(32).to_array()[..., :3], array)
    palette = Palette([(0, 0, 0), (255, 0, 0), (0, 200, 90), (250, 250, 250)])
    few = bitmap.converted(2, palette=palette)
    distances = ((array[:, :, None].astype(int) - palette.to_array().astype(int)) ** 2).sum(-1)
    assert few.palette == palette
    # Dithering without a method looks at the five upper bits of a channel.
    nearest = numpy.take_along_axis(distances, few.to_array()[..., None].astype(int), -1)[..., 0]
    assert (nearest - distances.min(-1) < 9000).all() and (nearest == distances.min(-1)).mean() > 0.9
    assert bitmap.convert(8, Order.GRAY) is bitmap and bitmap.palette == Palette.gray(8)
    assert noisy(24).convert(12).order == Order.GRAY
    for wrong in (lambda: bitmap.convert(9), lambda: bitmap.convert(24, palette=palette), lambda: bitmap.quantize(300),
                  lambda: bitmap.convert(1, palette=palette), lambda: bitmap.quantize(2, keep=palette)):
        with pytest.raises(ValueError):
            wrong()


def test_quantising():
    picture = colourful()
    few = picture.quantized(16)
    assert few.bits == 4 and few.count_colours() <= 16 and picture.bits == 24
    error = abs(few.converted(24).to_array().astype(int) - picture.to_array()).mean()
    other = picture.to_pil().quantize(16, Image.MEDIANCUT, dither=Image.NONE).convert("RGB")
    assert error < 1.5 * abs(numpy.asarray(other).astype(int) - picture.to_array()).mean()
    kept = picture.quantized(8, keep=Palette([(1, 2, 3), (4, 5, 6)]), dither=Dither.FLOYD_STEINBERG)
    assert kept.bits == 3 and list(kept.palette[:2]) == [(1, 2, 3), (4, 5, 6)]
    assert numpy.array_equal(Bitmap(4, 4).fill((7, 8, 9)).quantize(5).converted(24).to_array()[0, 0], (7, 8, 9))


@pytest.mark.parametrize("operation, reference", [
    (Combine.AND, lambda d, s: d & s), (Combine.OR, lambda d, s: d | s), (Combine.XOR, lambda d, s: d ^ s),
    (Combine.ADD, lambda d, s: numpy.minimum(d + s, 255)), (Combine.SUBTRACT, lambda d, s: numpy.maximum(d - s, 0)),
    (Combine.SUBTRACT_FROM, lambda d, s: numpy.maximum(s - d, 0)), (Combine.MULTIPLY, lambda d, s: d * s // 255),
    (Combine.AVERAGE, lambda d, s: (d + s) // 2), (Combine.MIN, numpy.minimum), (Combine.MAX, numpy.maximum),
    (Combine.DIVIDE, lambda d, s: numpy.where(s == 0, 255, numpy.minimum(d * 255 // numpy.maximum(s, 1), 255))),
    (Combine.DIVIDE_INTO, lambda d, s: numpy.where(d == 0, 255, numpy.minimum(s * 255 // numpy.maximum(d, 1), 255)))])
def test_combinations(operation, reference):
    one, two = noise(24).astype(int), noise(24, seed=1).astype(int)
    bitmap = noisy(24)
    assert bitmap.combine(noisy(24, seed=1), operation, at=(4, 5), box=(1, 2, 21, 14)) is bitmap
    expected = one.copy()
    expected[5:17, 4:24] = reference(one[5:17, 4:24], two[2:14, 1:21])
    assert numpy.array_equal(bitmap.to_array(), expected)
    inverted = noisy(24).combine(noisy(24, seed=1), operation, result=Operand.NOT).to_array()
    assert numpy.array_equal(inverted, 255 - reference(one, two))


def test_combination_with_itself_and_in_a_region():
    bitmap = noisy(8)
    bitmap.region = Region.rectangle((3, 3, 9, 9))
    bitmap.combine(bitmap, Combine.XOR)
    expected = noise(8)
    expected[3:9, 3:9] = 0
    assert numpy.array_equal(bitmap.to_array(), expected)


def test_warp_and_underlay():
    scene, picture = Bitmap(50, 50), colourful(20, 30)
    assert scene.warp([(10, 10), (39, 10), (39, 29), (10, 29)], picture, smooth=False) is scene
    array = scene.to_array().astype(int)
    assert not array[:10].any() and abs(array[10:30, 10:40] - picture.to_array()).mean() < 30
    with pytest.raises(ValueError):
        scene.warp([(10, 10), (39, 10), (39, 29), (10, 60)], picture)
    level = Bitmap(8, 8, 8, order=Order.GRAY).fill((148, 148, 148))
    base = noise(24)
    assert numpy.array_equal(noisy(24).underlay(level).to_array(), numpy.minimum(base.astype(int) + 20, 255))


def test_alpha():
    picture = colourful()
    alpha = bitmap_of(noise(8, 40, 60), 8)
    assert picture.set_alpha(alpha) is picture and picture.bits == 32
    assert numpy.array_equal(picture.to_array()[..., 3], noise(8, 40, 60))
    assert numpy.array_equal(picture.alpha().to_array(), noise(8, 40, 60))
    assert picture.to_pil().mode == "RGBA"


def test_windows_on_gray_values():
    array = noise(12)
    bitmap = noisy(12)
    assert bitmap.window(1000, 3000) is bitmap and numpy.array_equal(bitmap.to_array(), array)
    shown = bitmap.converted(24).to_array()[..., 0].astype(int)
    expected = (array.astype(int) - 1000).clip(0, 2000) * 255 // 2000
    assert abs(shown - expected).max() <= 1
    low = noisy(16).window(0, 255, bits=(0, 7)).value_bits
    assert low == (0, 7) and noisy(16).no_window().value_bits == (0, 15)
    signed = Bitmap.from_array(array.astype(numpy.uint16) | 0x8000)
    signed.signed = True
    assert not signed.clear_negative().to_array().any() and not signed.signed


def test_palettes_of_bitmaps():
    bitmap = noisy(4)
    assert bitmap.palette == Palette.gray(4) and Bitmap(4, 4, 4).palette == Palette.fixed(4) and Bitmap(4, 4).palette is None
    colours = Palette([(i, 2 * i, 255 - i) for i in range(16)])
    bitmap.palette = colours
    assert bitmap.palette == colours and bitmap.copy().palette == colours
    assert numpy.array_equal(bitmap.converted(24).to_array(), colours.to_array()[noise(4)])
    assert bitmap.count_colours() == 16 and len(bitmap.colours()) == 16 and bitmap.colours(3) is None
    assert colours.nearest((3, 7, 252)) == 3 and colours[-1] == Colour(15, 30, 240) and len(colours[2:5]) == 3
    assert Palette.gray(2).grayness == Gray.NORMAL and not colours.grayness
    assert Palette.from_array(colours.to_array()) == colours and len({colours, Palette(colours)}) == 1
    short = Bitmap(4, 4, 8, palette=Palette([BLACK, WHITE, (9, 9, 9)]))
    assert list(short.palette) == [BLACK, WHITE, (9, 9, 9)] and short[0:2].palette == short.palette
    assert short.fill(index(200)).colour(0, 0) == BLACK and short.fill(colours.to_array()[4])[0, 0] in range(3)
    for wrong in (lambda: Palette([]), lambda: Palette([BLACK] * 257), lambda: Palette.fixed(9), lambda: Palette.gray(0)):
        with pytest.raises(ValueError):
            wrong()


@pytest.mark.parametrize("mode", ["1", "L", "P", "RGB", "RGBA", "I;16", "CMYK"])
def test_images_of_pillow(mode):
    image = colourful().to_pil()
    if mode == "I;16":
        image = Image.fromarray(noise(16))
    else:
        image = image.quantize(9) if mode == "P" else image.convert(mode)
    image.info["dpi"] = (300, 150)
    bitmap = Bitmap.from_pil(image)
    again = bitmap.to_pil()
    assert bitmap.resolution == (300, 150) and again.info["dpi"] == (300, 150)
    if mode == "CMYK":
        image = image.convert("RGB")
    assert again.mode == image.mode
    assert again.convert("RGB").tobytes() == image.convert("RGB").tobytes()


@MANY
def test_images_to_pillow(bits):
    for order in (Order.RGB, Order.BGR) if bits > 16 else (Order.GRAY,):
        bitmap = bitmap_of(noise(bits), bits, order=order)
        image = numpy.asarray(bitmap.to_pil())
        expected = noise(bits).astype(int) if bits > 8 else bitmap.palette.to_array()[noise(bits)][..., 0]
        if order == Order.BGR:
            expected = expected[..., [2, 1, 0, 3][: expected.shape[-1]]]
        if bits >= 48:
            expected = expected // 256
        if bits < 8:
            image = numpy.asarray(bitmap.to_pil().convert("L"))
        assert numpy.array_equal(image, expected)


@MANY
def test_device_independent_bitmaps(bits):
    for storage in (Storage.MEMORY, Storage.DISK):
        bitmap = noisy(bits, storage=storage)
        again = Bitmap.from_dib(bitmap.to_dib())
        assert again.storage == Storage.MEMORY and again.view == View.TOP_LEFT
        one, two = (b.converted(24).to_array() for b in (bitmap, again))
        assert bits == 16 or numpy.array_equal(one, two)


def test_paint():
    picture, canvas = colourful(), Bitmap(100, 90)
    picture.paint(canvas, to=(20, 30, 80, 70))
    array = numpy.asarray(canvas.to_pil())
    assert numpy.array_equal(array[30:70, 20:80], picture.to_array()) and not array[:30].any() and not array[70:].any()
    picture.region = Region.rectangle((0, 0, 10, 10))
    other = Bitmap(60, 40)
    picture.paint(other, inside_region=True)
    array = numpy.asarray(other.to_pil())
    assert numpy.array_equal(array[:10, :10], picture.to_array()[:10, :10]) and not array[10:].any()
    few = Bitmap(60, 40, 4)
    picture.paint(few)
    assert few.bits == 4 and few.count_colours() > 4
    picture.intensity, picture.contrast, picture.gamma = 500, -20, 1.5
    assert (picture.intensity, picture.contrast, picture.gamma) == (500, -20, 1.5)
    with pytest.raises(ValueError):
        picture.contrast = 1001
    with pytest.raises(ValueError):
        picture.paint(picture)


def test_colour_spaces():
    for colour in ((0, 0, 0), (255, 0, 0), (10, 200, 90), (77, 77, 77)):
        hue, saturation, value = Colour(*colour).to_hsv()
        assert value == max(colour) and (saturation == 0) == (len(set(colour)) == 1)
        assert max(abs(a - b) for a, b in zip(Colour.from_hsv(hue, saturation, value), colour)) <= 6


def test_index_colours():
    bitmap = Bitmap(4, 4, 8).fill(index(77))
    assert bitmap[0, 0] == 77 and bitmap.clear()[0, 0] == 0
    with pytest.raises(ValueError):
        index(256)
