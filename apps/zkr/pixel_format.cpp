// Palettes of formats, and their names.
#include "pixel_format.h"

#include "zkr13n/palettes.h"

#include <algorithm>

namespace zkr::app {

namespace {

bool SameColour(const RGBQUAD& one, const RGBQUAD& other) {
    return one.rgbRed == other.rgbRed && one.rgbGreen == other.rgbGreen && one.rgbBlue == other.rgbBlue;
}

} // namespace

Palette FixedPalette(int bits) {
    Palette palette(size_t{1} << bits);
    Z_GetFixedPalette(palette.data(), bits);
    return palette;
}

Palette GrayPalette(int bits) {
    const int entries = 1 << bits;
    Palette palette;
    for (int index = 0; index < entries; ++index) {
        const auto level = static_cast<uint8_t>(index * 255 / (entries - 1));
        palette.push_back({level, level, level, 0});
    }
    return palette;
}

bool SamePalette(const Palette& one, const Palette& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), SameColour);
}

bool IsGrayRamp(const Palette& palette) {
    for (int bits = 1; bits <= 8; ++bits) {
        if (palette.size() == size_t{1} << bits) return SamePalette(palette, GrayPalette(bits));
    }
    return false;
}

std::string ShortName(const PixelFormat& format) {
    const std::string bits = std::to_string(format.StoredBits());
    if (!format.IsIndexed()) {
        constexpr const char* orders[] = {" rgb", " bgr", " gray"};
        return bits + (format.IsGray() ? " gray" : orders[format.order]);
    }
    if (IsGrayRamp(format.palette)) return bits + " gray palette";
    if (SamePalette(format.palette, FixedPalette(format.bits))) return bits + " fixed palette";
    return bits + " own palette";
}

} // namespace zkr::app
