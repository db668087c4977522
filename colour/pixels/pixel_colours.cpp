// One pixel as a colour value, in and out. A pixel is fetched with the few bytes that hold it; which bytes
// and bits these are, and what they mean, is told by depth and order.
#include "colour/gray/gray_shift.h"
#include "colour/gray/level_table.h"
#include "colour/pixels/channels.h"
#include "core/bitmap_lock.h"
#include "core/dispatch.h"
#include "core/predicates.h"
#include "core/rectangle.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/pixels.h"
#include "zkr13n/rows.h"

#include <algorithm>
#include <array>

namespace zkr {

namespace {

bool IsInside(const BitmapHandle& bitmap, int32_t row, int32_t column) {
    return PixelRect::Whole(bitmap).Holds(column, row);
}

// The first bytes of a pixel that mean its colour, low byte first from 12 bits on.
using PixelBytes = std::array<uint8_t, 6>;

uint32_t ColourBytes(int32_t bitsPerPixel) {
    if (bitsPerPixel <= 16) return 2;
    return bitsPerPixel <= 32 ? 3 : 6;
}

uint32_t WordOf(const PixelBytes& bytes) {
    return bytes[0] | static_cast<uint32_t>(bytes[1]) << 8;
}

// ---- Indices

// Where an index lies: in one byte, or across two whose first is the upper.
struct IndexPlace {
    IndexPlace(int32_t bitsPerPixel, int32_t column) {
        const auto bits = static_cast<uint32_t>(bitsPerPixel);
        const auto phase = static_cast<uint32_t>(uint64_t{bits} * static_cast<uint32_t>(column) % 8);
        // Only the low 16 bits of a column say in which byte it lies at these two depths.
        Column = bits == 1 ? column & 0xFFF8 : bits == 4 ? column & 0xFFFE : column;
        Bytes = phase + bits > 8 ? 2 : 1;
        Shift = 16 - phase - bits;
        Mask = (1u << bits) - 1;
    }
    int32_t Column;
    uint32_t Bytes;
    uint32_t Shift; // in the word of both bytes
    uint32_t Mask;
};

uint32_t ReadIndexWord(BitmapHandle& bitmap, int32_t row, const IndexPlace& place) {
    uint8_t bytes[2] = {};
    Z_GetBitmapRowCol(&bitmap, bytes, row, place.Column, place.Bytes);
    return static_cast<uint32_t>(bytes[0] << 8 | bytes[1]);
}

// The palette with black for all entries that it lacks.
struct WholePalette {
    explicit WholePalette(const BitmapHandle& bitmap) : Used(std::min(bitmap.ColorsUsed, MostEntries)) {
        Z_GetBitmapPaletteEntries(&bitmap, 0, Used, Entries.data());
    }
    std::array<RGBQUAD, MostEntries> Entries{};
    uint32_t Used;
};

uint32_t IndexedColour(BitmapHandle& bitmap, int32_t row, int32_t column) {
    const WholePalette palette(bitmap);
    const IndexPlace place(bitmap.BitsPerPixel, column);
    const uint32_t index = ReadIndexWord(bitmap, row, place) >> place.Shift & place.Mask;
    return ColourValue::OfEntry(palette.Entries[index]).Value();
}

uint32_t IndexOf(const BitmapHandle& bitmap, ColourValue colour) {
    const WholePalette palette(bitmap);
    const uint32_t searched = bitmap.BitsPerPixel == 1   ? 2
                              : bitmap.BitsPerPixel == 4 ? 16
                              : bitmap.BitsPerPixel == 8 ? MostEntries
                                                         : palette.Used;
    return static_cast<uint32_t>(Z_FindPaletteIndex(palette.Entries.data(), static_cast<int32_t>(searched),
                                                    colour.Red(), colour.Green(), colour.Blue()));
}

void PutIndex(BitmapHandle& bitmap, int32_t row, int32_t column, uint32_t index) {
    const IndexPlace place(bitmap.BitsPerPixel, column);
    uint32_t word = bitmap.BitsPerPixel == 8 ? 0 : ReadIndexWord(bitmap, row, place);
    word = (word & ~(place.Mask << place.Shift)) | (index & place.Mask) << place.Shift;
    const uint8_t bytes[2] = {static_cast<uint8_t>(word >> 8), static_cast<uint8_t>(word)};
    Z_PutBitmapRowCol(&bitmap, bytes, row, place.Column, place.Bytes);
}

// ---- Gray of 12 and 16 bits

constexpr uint32_t ExtendedGray = 0x04000000;

uint32_t GrayColour(const BitmapHandle& bitmap, uint32_t sample) {
    uint32_t mask;
    int32_t shift;
    Z_GetGrayParams(bitmap.BitsPerPixel, bitmap.BitsPerPixel, bitmap.LowBit, bitmap.HighBit, nullptr, &mask,
                    &shift);
    const uint32_t value = ShiftRight(sample, shift) & mask;
    if (HasActiveLevelTable(bitmap))
        return value < bitmap.LevelLUTLength ? ColourValue::OfEntry(bitmap.LevelLUT[value]).Value() : 0;
    return (mask == 0 ? 0 : ((value << 16) - value) / mask) | ExtendedGray;
}

// Unlike the window that is read, this one is not cut to the pixel.
uint32_t GraySample(const BitmapHandle& bitmap, ColourValue colour) {
    const int32_t low = std::max(bitmap.LowBit, 0);
    const int32_t high = bitmap.HighBit < 0 ? bitmap.BitsPerPixel - 1 : bitmap.HighBit;
    const int64_t bits = int64_t{high} - low + 1;
    if (HasActiveLevelTable(bitmap)) {
        const uint32_t most = bitmap.BitsPerPixel == 16 ? 0xFFFF : 0x7FFFFFFF;
        return ShiftLeft(NearestLevel(bitmap, colour, most), low);
    }
    if (bits <= 0) return 0;
    const uint32_t gray = colour.IsExtendedGray() ? colour.Value() & 0xFFFF : colour.Gray() * 257u;
    const auto scale = static_cast<int32_t>(std::min<int64_t>(bits, 32));
    const uint32_t scaled = (ShiftLeft(gray, scale) - gray + 0xFFFE) / 0xFFFF & 0xFFFF;
    return ShiftLeft(scaled, low);
}

// ---- Colour channels

uint32_t Widened(uint32_t fiveBits) {
    fiveBits &= 31;
    return fiveBits << 3 | fiveBits >> 2;
}

ChannelTriple ChannelsIn(int32_t bitsPerPixel, const PixelBytes& bytes) {
    const uint32_t word = WordOf(bytes);
    if (bitsPerPixel == 16) return {Widened(word), Widened(word >> 5), Widened(word >> 10)};
    if (bitsPerPixel <= 32) return {bytes[0], bytes[1], bytes[2]};
    return {bytes[1], bytes[3], bytes[5]};
}

// ---- Pixels above 8 bits

uint32_t DirectColour(BitmapHandle& bitmap, int32_t row, int32_t column) {
    PixelBytes bytes{};
    const int32_t bits = bitmap.BitsPerPixel;
    Z_GetBitmapRowCol(&bitmap, bytes.data(), row, column, ColourBytes(bits));
    const uint32_t word = WordOf(bytes);
    if (bits == 12) return GrayColour(bitmap, column % 2 != 0 ? word >> 4 : word & 0xFFF);
    if (bits == 16 && IsGray(bitmap)) return GrayColour(bitmap, word);
    return ChannelsIn(bits, bytes).AsColour(IsRedFirstUnlessBgr(bitmap.Order));
}

// Of a pixel of 12 bits one byte is shared with its neighbour, whose bits stay.
uint32_t MergedGray12(BitmapHandle& bitmap, int32_t row, int32_t column, uint32_t sample) {
    PixelBytes bytes{};
    Z_GetBitmapRowCol(&bitmap, bytes.data(), row, column, ColourBytes(12));
    const uint32_t word = WordOf(bytes);
    sample &= 0xFFF;
    return column % 2 != 0 ? (word & 0x000F) | sample << 4 : (word & 0xF000) | sample;
}

void PutDirect(BitmapHandle& bitmap, int32_t row, int32_t column, ColourValue colour) {
    const int32_t bits = bitmap.BitsPerPixel;
    const ChannelTriple channels = ChannelTriple::Of(colour, IsRedFirstUnlessBgr(bitmap.Order));
    PixelBytes bytes;
    if (bits <= 16) {
        const uint32_t word = bits == 12       ? MergedGray12(bitmap, row, column, GraySample(bitmap, colour))
                              : IsGray(bitmap) ? GraySample(bitmap, colour)
                                               : channels.AsWord();
        bytes = {static_cast<uint8_t>(word), static_cast<uint8_t>(word >> 8)};
    } else {
        const auto first = static_cast<uint8_t>(channels.First),
                   second = static_cast<uint8_t>(channels.Second),
                   third = static_cast<uint8_t>(channels.Third);
        bytes = bits <= 32 ? PixelBytes{first, second, third}
                           : PixelBytes{first, first, second, second, third, third};
    }
    Z_PutBitmapRowCol(&bitmap, bytes.data(), row, column, ColourBytes(bits));
}

} // namespace

} // namespace zkr

using namespace zkr;

uint32_t Z_CALL Z_GetPixelColor(BitmapHandle* bitmap, int32_t row, int32_t column) {
    if (!IsAllocated(bitmap) || !IsInside(*bitmap, row, column)) return Z_NO_COLOR;
    const BitmapLock lock(bitmap);
    return bitmap->BitsPerPixel <= MostIndexedBits ? IndexedColour(*bitmap, row, column)
                                                   : DirectColour(*bitmap, row, column);
}

ReturnCode Z_CALL Z_PutPixelColor(BitmapHandle* bitmap, int32_t row, int32_t column, uint32_t colour) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (Dispatch().IsPtInBitmapRgn(bitmap, row, column) == 0) return code::InvalidDimensions;
    if (!IsInside(*bitmap, row, column)) return code::InvalidDimensions;

    ColourValue value(colour);
    const bool keepsExtendedGray = bitmap->Order == Z_ORDER_GRAY && !HasActiveLevelTable(*bitmap);
    if (value.IsExtendedGray() && !keepsExtendedGray) value = value.PlainOfExtendedGray();

    const BitmapLock lock(bitmap);
    if (bitmap->BitsPerPixel <= MostIndexedBits) {
        const bool isIndex = (colour >> 24) == ColourValue::IndexForm;
        PutIndex(*bitmap, row, column, isIndex ? colour : IndexOf(*bitmap, value));
    } else {
        PutDirect(*bitmap, row, column, value);
    }
    return code::Success;
}
