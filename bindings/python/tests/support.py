"""What several tests share: pictures of all depths."""

import numpy

from zkr13n import Bitmap, Order

DEPTHS = (1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64)


def noise(bits, height=23, width=37, seed=0):
    """An array of stored values of a depth."""
    channels = {24: 3, 32: 4, 48: 3, 64: 4}.get(bits)
    kind = numpy.uint8 if bits <= 8 or bits in (24, 32) else numpy.uint16
    largest = (1 << min(bits, 16)) - 1 if not channels else numpy.iinfo(kind).max
    shape = (height, width, channels) if channels else (height, width)
    return numpy.random.default_rng(seed + bits).integers(0, largest, shape, dtype=kind, endpoint=True)


def bitmap_of(array, bits, **options):
    """The bitmap of an array of stored values."""
    return Bitmap.from_array(array.astype(bool) if bits == 1 else array, bits=None if bits == 1 else bits, **options)


def noisy(bits, height=23, width=37, seed=0, **options):
    return bitmap_of(noise(bits, height, width, seed), bits, **options)


def colourful(height=40, width=60, order=Order.RGB):
    """A picture of 24 bits with slopes and edges."""
    y, x = numpy.mgrid[0:height, 0:width]
    array = numpy.stack([x * 255 // (width - 1), y * 255 // (height - 1), (x // 8 + y // 8) % 2 * 200], -1)
    return Bitmap.from_array(array.astype(numpy.uint8), order=order)
