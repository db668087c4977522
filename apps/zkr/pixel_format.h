// PixelFormat: what the pixels of a bitmap are, namely depth, colour order, palette and whether a fourth
// channel is alpha. Formats come from picture files, from the command line and from the tour.
#pragma once

#include "zkr13n/bitmap.h"

#include <string>
#include <vector>

namespace zkr::app {

using Palette = std::vector<RGBQUAD>;

struct PixelFormat {
    int bits = 24; // 0 names 8-bit gray without a palette
    int order = Z_ORDER_RGB;
    Palette palette = {}; // 2^bits entries for 1 to 8 bits, else empty
    bool alpha = false;   // the fourth channel of 32 and 64 bits is alpha and not just room

    int StoredBits() const { return bits == 0 ? 8 : bits; }
    bool IsIndexed() const { return bits >= 1 && bits <= 8; }
    bool IsGray() const { return bits == 0 || (order == Z_ORDER_GRAY && !IsIndexed()); }
    const RGBQUAD* PaletteOrNull() const { return palette.empty() ? nullptr : palette.data(); }
};

Palette FixedPalette(int bits);
Palette GrayPalette(int bits);
bool IsGrayRamp(const Palette& palette);
bool SamePalette(const Palette& one, const Palette& other);

// "24 rgb", "8 fixed", "16 gray": how a format is called in tables and labels.
std::string ShortName(const PixelFormat& format);

} // namespace zkr::app
