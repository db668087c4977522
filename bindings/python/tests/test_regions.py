"""Regions, with arrays of booleans as the reference."""

import numpy
import pytest
from PIL import Image, ImageDraw
from support import DEPTHS, colourful, noise, noisy

from zkr13n import Bitmap, CurveEnds, PolygonFill, Region, Storage, View, index

WIDTH, HEIGHT = 70, 50


def sets():
    """Pairs of a region and its mask."""
    random = numpy.random.default_rng(5)
    masks = [random.random((HEIGHT, WIDTH)) < share for share in (0.02, 0.5, 0.9)]
    masks += [numpy.zeros((HEIGHT, WIDTH), bool), numpy.ones((HEIGHT, WIDTH), bool)]
    return [(Region.from_mask(mask), mask) for mask in masks]


def test_masks_and_runs():
    for region, mask in sets():
        assert numpy.array_equal(region.to_mask(WIDTH, HEIGHT), mask)
        assert len(region) == mask.sum() and bool(region) == mask.any()
        assert Region(region.runs()) == region and Region(reversed(list(region.runs()))) == region
        rows, columns = numpy.nonzero(mask)
        bounds = (columns.min(), rows.min(), columns.max() + 1, rows.max() + 1) if mask.any() else (0, 0, 0, 0)
        assert region.bounds == bounds
        assert all(((x, y) in region) == mask[y, x] for y in range(0, HEIGHT, 7) for x in range(WIDTH))
        assert (-1, 0) not in region and (0, HEIGHT) not in region and region.row(-1) == []
        small = region.to_mask(20, 60)
        assert numpy.array_equal(small[:HEIGHT], mask[:, :20]) and not small[HEIGHT:].any()


def test_set_operations():
    for one, left in sets():
        for two, right in sets():
            for made, mask in ((one | two, left | right), (one & two, left & right), (one - two, left & ~right),
                               (one ^ two, left ^ right)):
                assert numpy.array_equal(made.to_mask(WIDTH, HEIGHT), mask)
                assert made == Region.from_mask(mask) and hash(made) == hash(Region.from_mask(mask))
            assert (one == two) == numpy.array_equal(left, right)
    with pytest.raises(TypeError):
        sets()[0][0] | 5


def test_regions_are_free_of_edges():
    region = Region.rectangle((-100, -50, 5, 5))
    assert region.bounds == (-100, -50, 5, 5) and len(region) == 105 * 55
    assert region.moved(200, 100).bounds == (100, 50, 205, 105)
    assert region.moved(7, -3).moved(-7, 3) == region
    bitmap = Bitmap(20, 20)
    bitmap.region = region
    assert bitmap.region == Region.rectangle((0, 0, 5, 5))
    with pytest.raises(ValueError):
        region.moved(2**31 - 1, 0)


def test_shapes():
    def drawn(name, *arguments):
        image = Image.new("1", (WIDTH, HEIGHT))
        getattr(ImageDraw.Draw(image), name)(*arguments, fill=1)
        return numpy.asarray(image)

    corners = [(5, 5), (60, 12), (40, 44), (11, 30)]
    for region, mask, slack in (
            (Region.rectangle((4, 6, 30, 40)), drawn("rectangle", (4, 6, 29, 39)), 0),
            (Region.ellipse((4, 6, 60, 40)), drawn("ellipse", (4, 6, 59, 39)), 90),
            (Region.polygon(corners), drawn("polygon", corners), 150),
            (Region.rounded((4, 6, 60, 40), (20, 20)), drawn("rounded_rectangle", (4, 6, 59, 39), 10), 60),
            (Region.curve(corners, tension=0.0), drawn("polygon", corners), 150),
            (Region.bezier([(5, 5), (5, 5), (60, 12), (60, 12), (60, 12), (40, 44), (40, 44)]),
             drawn("polygon", [(5, 5), (60, 12), (40, 44)]), 150)):
        assert (region.to_mask(WIDTH, HEIGHT) != mask).sum() <= slack
    swung = Region.curve(corners, tension=1.0, ends=CurveEnds.CLOSED)
    assert len(swung - Region.polygon(corners)) > 50
    star = [(30, 0), (48, 49), (1, 18), (59, 18), (12, 49)]
    assert len(Region.polygon(star, PolygonFill.WINDING)) > len(Region.polygon(star, PolygonFill.ALTERNATE))
    with pytest.raises(ValueError):
        Region.curve(corners, tension=3)


def flooded(array, x, y, tolerance):
    """The pixels near a seed's colour that hang together around it."""
    near = (abs(array.astype(int) - array[y, x]) <= tolerance).all(-1)
    found, edge = numpy.zeros_like(near), [(y, x)]
    while edge:
        row, column = edge.pop()
        if 0 <= row < near.shape[0] and 0 <= column < near.shape[1] and near[row, column] and not found[row, column]:
            found[row, column] = True
            edge += [(row - 1, column), (row + 1, column), (row, column - 1), (row, column + 1)]
    return found


def test_regions_of_colours():
    bitmap = colourful()
    array = bitmap.to_array()
    for x, y, tolerance in ((3, 3, 30), (30, 20, 60), (59, 39, 255)):
        assert numpy.array_equal(bitmap.wand(x, y, tolerance).to_mask(60, 40), flooded(array, x, y, tolerance))
    between = ((array >= (50, 60, 0)) & (array <= (150, 200, 0))).all(-1)
    assert numpy.array_equal(Region.of_colours(bitmap, (50, 60, 0), (150, 200, 0)).to_mask(60, 40), between)
    one = Region.of_colour(bitmap, tuple(array[7, 9])).to_mask(60, 40)
    assert numpy.array_equal(one, (array == array[7, 9]).all(-1))
    assert len(Region.of_hues(bitmap, (0, 0, 0), (255, 255, 255))) == 2400
    few = noisy(4)
    few.region = Region.rectangle((1, 1, 4, 4))
    before = few.region
    assert numpy.array_equal(Region.of_colour(few, index(3)).to_mask(37, 23), noise(4) == 3) and few.region == before


@pytest.mark.parametrize("bits", DEPTHS)
@pytest.mark.parametrize("storage", [Storage.MEMORY, Storage.DISK])
def test_operations_keep_to_the_region(bits, storage):
    bitmap, mask = noisy(bits, storage=storage), noise(1).astype(bool)
    bitmap.region = Region.from_mask(mask)
    bitmap.clear()
    expected = noise(bits)
    expected[mask] = 0
    assert numpy.array_equal(bitmap.to_array(), expected)
    assert bitmap.region == Region.from_mask(mask) == bitmap.copy().region
    assert bitmap[3:20, 4:30].region == Region.from_mask(mask[3:20, 4:30])
    assert bitmap.copy().set_height(9).region == Region.from_mask(mask[:9])
    assert bitmap.flip().region == Region.from_mask(mask[::-1])
    bitmap.region = None
    assert bitmap.region is None and not bitmap.clear().to_array().any()
    del bitmap.region


def test_masks_from_bitmaps():
    picture = colourful()
    gray = picture.copy().gray()
    assert numpy.array_equal(Region.from_mask(gray).to_mask(60, 40), gray.to_array() >= 128)
    turned = Bitmap.from_array(gray.to_array()).with_view(View.BOTTOM_LEFT)
    assert numpy.array_equal(Region.from_mask(turned).to_mask(60, 40), gray.to_array()[::-1] >= 128)
    assert Region.ellipse((0, 0, 9, 9)).to_bitmap(9, 9).view == View.TOP_LEFT


def test_values():
    region = Region.ellipse((0, 0, 40, 30))
    assert repr(region) == f"<zkr13n.Region of {len(region)} pixels in (0, 0, 40, 30)>"
    assert repr(Region()) == "<zkr13n.Region, empty>" and Region() == Region.rectangle((5, 5, 5, 9))
    assert region != 5 and len({region, Region.ellipse((0, 0, 40, 30)), Region()}) == 2
    with pytest.raises(TypeError):
        Region.from_mask(3)
    with pytest.raises(ValueError):
        Bitmap(4, 4).wand(9, 9)
