// What a stored pixel means, plainly: the one model that the tests of single pixels, rows, dithering, gray, counts and
// painting share. The palette is taken from the bitmap as it is when the model is made.
#pragma once

#include "colour/palettes/reference_palettes.h"

#include <algorithm>

namespace zkr::test {

// Colours in pixels of 16 bits (5 a channel), 24 and 32 (8), 48 and 64 (16); the lowest is red in order 0.
inline uint64_t Ones(int bits) {
    return (uint64_t{1} << bits) - 1;
}
inline int ChannelBits(int depth) {
    return depth == 16 ? 5 : depth <= 32 ? 8 : 16;
}
inline bool HasAlpha(int depth) {
    return depth == 16 || depth == 32 || depth == 64;
}
inline uint64_t Pack(int depth, int order, Colour c, uint64_t alpha) {
    const int n = ChannelBits(depth);
    const uint64_t low = order == 0 ? c.red : c.blue, high = order == 0 ? c.blue : c.red;
    const uint64_t colour = low | (uint64_t{c.green} << n) | (high << 2 * n);
    return HasAlpha(depth) ? colour | (alpha << 3 * n) : colour;
}
inline Colour Unpack(int depth, int order, uint64_t pixel) {
    const int n = ChannelBits(depth);
    const auto channel = [&](int i) { return static_cast<unsigned>((pixel >> (i * n)) & Ones(n)); };
    return order == 0 ? Colour{channel(0), channel(1), channel(2)}
                      : Colour{channel(2), channel(1), channel(0)};
}
inline Colour ForEach(Colour c, unsigned (*change)(unsigned)) {
    return {change(c.red), change(c.green), change(c.blue)};
}
inline unsigned WidenFive(unsigned c) {
    return (c << 3) | (c >> 2);
}
inline unsigned HighByte(unsigned c) {
    return c >> 8;
}
inline Colour GrayColour(uint64_t value) {
    const auto v = static_cast<unsigned>(value);
    return {v, v, v};
}

struct PixelModel {
    explicit PixelModel(const BitmapHandle& bitmap) : Record(bitmap) {
        Z_GetBitmapPaletteEntries(&bitmap, 0, 256, Palette);
    }

    int Bits() const { return Record.BitsPerPixel; }
    bool IsGray() const { return Bits() == 12 || (Bits() == 16 && Record.Order == Z_ORDER_GRAY); }
    bool HasLevels() const {
        return (Record.Flags & Z_FLAG_LEVEL_LUT_ACTIVE) != 0 && Record.LevelLUTLength > 0;
    }
    int Low() const { return std::max(Record.LowBit, 0); }
    int High() const { return Record.HighBit < 0 ? Bits() - 1 : Record.HighBit; }

    // The value of a gray pixel, of which no more than so many upper bits count, and the largest there can be.
    struct Gray {
        uint64_t Value, Largest;
    };
    Gray GrayValue(uint64_t pixel, int mostBits = 16) const {
        const int bits = std::min(High() - Low() + 1, mostBits);
        const uint64_t largest = (uint64_t{1} << bits) - 1;
        return {pixel >> (High() - bits + 1) & largest, largest};
    }

    // The channels of a pixel that is no gray value: of 16 bits at 48 and 64 bits, else of 8.
    Colour Channels(uint64_t pixel) const {
        if (Bits() <= 8) return ColourOf(Palette[pixel]);
        if (IsGray()) {
            const uint64_t value = GrayValue(pixel).Value;
            return value < Record.LevelLUTLength ? ColourOf(Record.LevelLUT[value]) : Colour{};
        }
        const Colour c = Unpack(Bits(), Record.Order == Z_ORDER_BGR, pixel);
        return Bits() == 16 ? ForEach(c, WidenFive) : c;
    }
    // With 8 bits a channel at every depth.
    Colour Colour8(uint64_t pixel) const {
        const Colour c = Channels(pixel);
        return Bits() < 48 ? c : ForEach(c, HighByte);
    }
    // As it is shown: gray without a table by its upper 8 bits, stretched where there are fewer.
    Colour Shown(uint64_t pixel) const {
        if (!IsGray() || HasLevels()) return Colour8(pixel);
        const auto [value, largest] = GrayValue(pixel, 8);
        return GrayColour(value * 255 / largest);
    }

    const BitmapHandle& Record;
    RGBQUAD Palette[256]{}; // black where the bitmap's own ends
};

} // namespace zkr::test
