// What a stored pixel means, plainly: the one model that the tests of single pixels, of gray, of counts and of
// histograms share. The palette is taken from the bitmap as it is when the model is made.
#pragma once

#include "colour/palettes/reference_palettes.h"
#include "core/flags.h"
#include "core/predicates.h"

#include <algorithm>

namespace zkr::test {

struct PixelModel {
    explicit PixelModel(const BitmapHandle& bitmap) : Record(bitmap) {
        Z_GetBitmapPaletteEntries(&bitmap, 0, 256, Palette);
    }

    int Bits() const { return Record.BitsPerPixel; }
    bool IsGray() const { return Bits() == 12 || (Bits() == 16 && Record.Order == Z_ORDER_GRAY); }
    bool HasLevels() const { return HasFlag(Record, flag::LevelLUTActive) && Record.LevelLUTLength > 0; }
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
        const int step = Bits() == 16 ? 5 : Bits() <= 32 ? 8 : 16;
        unsigned c[3]; // from the low end
        for (int i = 0; i < 3; ++i) {
            c[i] = static_cast<unsigned>(pixel >> (i * step) & ((1u << step) - 1));
            if (step == 5) c[i] = c[i] << 3 | c[i] >> 2;
        }
        return Record.Order == Z_ORDER_BGR ? Colour{c[2], c[1], c[0]} : Colour{c[0], c[1], c[2]};
    }
    // With 8 bits a channel at every depth.
    Colour Colour8(uint64_t pixel) const {
        const Colour c = Channels(pixel);
        return Bits() < 48 ? c : Colour{c.red >> 8, c.green >> 8, c.blue >> 8};
    }

    const BitmapHandle& Record;
    RGBQUAD Palette[256]{}; // black where the bitmap's own ends
};

} // namespace zkr::test
