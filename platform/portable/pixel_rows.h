// Rows of pixels of 1, 4, 8, 16, 24 and 32 bits, and how those of one kind become those of another: looked at
// once, then run row by row.
#pragma once

#include "platform/kernels/pixel_words.h"
#include "platform/portable/graphics.h"
#include "platform/portable/nearest.h"

#include <array>
#include <cstddef>

namespace zkr::platform {

// Pixels in memory that somebody else holds.
struct Pixels {
    int width = 0;
    int height = 0;
    int bitsPerPixel = 0;
    uint8_t* topRow = nullptr; // null: nothing is shown
    ptrdiff_t pitch = 0;       // bytes from a row to the one below it
    bool monochrome = false;   // device contexts say what its two values stand for
    const PALETTEENTRY* colours =
        nullptr; // what the indices of up to 8 bits stand for: 2^bitsPerPixel entries

    uint8_t* Row(int64_t y) const { return topRow + static_cast<ptrdiff_t>(y) * pitch; }
};

// A colour as it lies in memory: blue in the low byte.
using ColourWord = uint32_t;

inline ColourWord WordOf(COLORREF colour) {
    return (colour & 255) << 16 | (colour & 0xFF00) | (colour >> 16 & 255);
}
inline ColourWord WordOf(const PALETTEENTRY& entry) {
    return static_cast<ColourWord>(entry.peRed << 16 | entry.peGreen << 8 | entry.peBlue);
}

// The pixel that shows a colour best: of palettes the first one of the nearest.
uint32_t PixelOf(ColourWord colour, const Pixels& target);
ColourWord ColourOf(uint32_t pixel, const Pixels& source);

// What stands for the two values of a monochrome source, and which colour becomes 1 in a monochrome target.
struct MonochromeColours {
    ColourWord zero = 0;
    ColourWord one = 0xFFFFFF;
    bool match = false; // only the colour matched becomes 1, not the brighter half of all
    ColourWord matched = 0xFFFFFF;
};

class RowConverter {
  public:
    static constexpr int Most = 512; // pixels that pass through the working rows at once

    RowConverter(const Pixels& source, const Pixels& target, const MonochromeColours& colours);
    ~RowConverter();
    RowConverter(const RowConverter&) = delete;
    RowConverter& operator=(const RowConverter&) = delete;

    // Whether pixels are copied as they are.
    bool KeepsPixels() const { return same_; }

    // Pixels of a row from column x on. The target's place is a byte and, below 8 bits, a bit in it; there
    // count is at most Most and the rest of the first and last bytes is overwritten.
    void Convert(const uint8_t* row, int64_t x, int64_t count, uint8_t* out, int firstBit);
    // The same with pixels from anywhere in the row.
    void Pick(const uint8_t* row, const int32_t* columns, int64_t count, uint8_t* out, int firstBit);

  private:
    using Whole = void (*)(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map);

    void ChooseMap(const Pixels& source, const MonochromeColours& colours);
    void ChooseWhole();
    void Finish(uint32_t* words, int count, uint8_t* out, int firstBit);

    const kernels::PixelWordKernels& kernels_;
    Pixels target_;
    int sourceBits_;
    bool same_;    // pixels are copied as they are
    bool matches_; // colours become 1 or 0
    uint32_t matched_ = 0;
    Whole whole_ = nullptr;           // where one loop does it
    NearestTable* nearest_ = nullptr; // where colours become indices; lies in the room below
    std::array<uint32_t, 256> map_;
    alignas(NearestTable) std::array<uint8_t, sizeof(NearestTable)> nearestRoom_;
};

} // namespace zkr::platform
