// One colour into a run of pixels: the colour is turned into the shortest pattern of whole bytes that its
// pixels make, and the pattern is repeated.
#include "colour/pixels/fill_row.h"

#include "colour/gray/gray_shift.h"
#include "colour/gray/level_table.h"
#include "colour/pixels/channels.h"
#include "colour/pixels/colour_value.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <cstring>

namespace zkr {

namespace {

// The fewest pixels that fill whole bytes.
struct Pattern {
    uint8_t Bytes[8];
    uint32_t Length;
};

// The low bytes of a value, the lowest first.
Pattern LowFirst(uint64_t value, uint32_t length) {
    Pattern pattern = {{}, length};
    for (uint32_t i = 0; i < length; ++i)
        pattern.Bytes[i] = static_cast<uint8_t>(value >> (8 * i));
    return pattern;
}

// The window that values are put into, which unlike the one that is read may lie anywhere.
struct TargetWindow {
    explicit TargetWindow(const BitmapHandle& bitmap) {
        Z_GetGrayParams(bitmap.BitsPerPixel, bitmap.BitsPerPixel, bitmap.LowBit, bitmap.HighBit, &ValueBits,
                        &Mask, &Shift);
    }
    // A value of so many bits cut to those of the window, in its place. A window of no bits holds nothing, however far its
    // ends lie apart.
    uint32_t Place(uint32_t value, int32_t bits) const {
        return ValueBits <= 0 ? 0 : ShiftLeft(ShiftRight(value, bits - ValueBits), Shift);
    }
    int32_t ValueBits;
    uint32_t Mask;
    int32_t Shift;
};

uint32_t Gray12Pixel(const BitmapHandle& bitmap, ColourValue colour) {
    const TargetWindow window(bitmap);
    if (colour.TopByte() == ColourValue::IndexForm) return window.Place(colour.Value() & 0xFFF, 12);
    if (colour.TopByte() == ColourValue::WideGrayForm) return window.Place(colour.Value() & 0xFFFF, 16);
    if (HasActiveLevelTable(bitmap)) return ShiftLeft(NearestLevel(bitmap, colour), window.Shift);
    return window.Place(colour.Gray() * 257u, 16);
}

uint32_t Gray16Pixel(const BitmapHandle& bitmap, ColourValue colour) {
    const TargetWindow window(bitmap);
    constexpr uint32_t grayForms = 0x05000000; // any top byte with one of these bits
    if ((colour.Value() & grayForms) != 0) return window.Place(colour.Value() & 0xFFFF, 16);
    if (HasActiveLevelTable(bitmap)) return ShiftLeft(NearestLevel(bitmap, colour), window.Shift);
    const uint32_t gray = colour.Gray() * 257u;
    return window.Shift != 0 ? window.Place(gray, 16) : gray; // a narrow window at bit 0 does not cut
}

// Three channels of so many bits, multiplied.
uint64_t Packed(const ChannelTriple& channels, uint64_t multiplier, uint32_t bits) {
    return (channels.First | uint64_t{channels.Second} << bits | uint64_t{channels.Third} << 2 * bits) *
           multiplier;
}

Pattern IndexedPattern(const BitmapHandle& bitmap, ColourValue colour) {
    const uint32_t bits = static_cast<uint32_t>(bitmap.BitsPerPixel);
    uint32_t index = colour.TopByte() == ColourValue::IndexForm
                         ? colour.Index() & ((1u << bits) - 1)
                         : Z_GetNearestPaletteIndex(&bitmap, colour.Plain());
    if (bits == 1) index = index > 0 ? 1 : 0;
    uint64_t eight = 0;
    for (uint32_t i = 0; i < 8; ++i)
        eight = eight << bits | (index & ((1u << bits) - 1));
    Pattern pattern = {{}, bits};
    for (uint32_t i = 0; i < bits; ++i)
        pattern.Bytes[i] = static_cast<uint8_t>(eight >> (8 * (bits - 1 - i)));
    return pattern;
}

Pattern PatternOf(const BitmapHandle& bitmap, ColourValue colour) {
    const ChannelTriple channels = ChannelTriple::Of(colour, IsRedFirst(bitmap.Order));
    switch (bitmap.BitsPerPixel) {
    case 12: {
        const uint32_t pixel = Gray12Pixel(bitmap, colour) & 0xFFF;
        return LowFirst(pixel | pixel << 12, 3);
    }
    case 16: return LowFirst(IsGray(bitmap) ? Gray16Pixel(bitmap, colour) : channels.AsWord(), 2);
    case 24: return LowFirst(Packed(channels, 1, 8), 3);
    case 32: return LowFirst(Packed(channels, 1, 8), 4);
    case 48: return LowFirst(Packed(channels, 257, 16), 6);
    case 64: return LowFirst(Packed(channels, 257, 16), 8);
    default: return IndexedPattern(bitmap, colour);
    }
}

void Repeat(const Pattern& pattern, uint8_t* row, size_t bytes) {
    size_t done = std::min<size_t>(pattern.Length, bytes);
    std::memcpy(row, pattern.Bytes, done);
    // Each copy doubles what is there, and so keeps in step with the pattern.
    while (done < bytes) {
        const size_t more = std::min(done, bytes - done);
        std::memcpy(row + done, row, more);
        done += more;
    }
}

// Writes a byte but for the bits that are kept.
void Merge(uint8_t& target, uint8_t value, uint32_t kept) {
    target = static_cast<uint8_t>((target & kept) | (value & ~kept));
}

} // namespace

void FillRowWithColor(const BitmapHandle& bitmap, uint32_t colour, uint8_t* row, int32_t count) {
    const int32_t bits = bitmap.BitsPerPixel;
    if (!IsSupportedDepth(bits) || count <= 0) return;

    ColourValue value(colour);
    const bool keepsExtendedGray = IsGray(bitmap) && !HasActiveLevelTable(bitmap);
    if (value.IsExtendedGray() && !keepsExtendedGray) value = value.PlainOfExtendedGray();

    const Pattern pattern = PatternOf(bitmap, value);
    const uint64_t rowBits = static_cast<uint64_t>(count) * static_cast<uint64_t>(bits);
    const size_t wholeBytes = static_cast<size_t>(rowBits / 8);
    Repeat(pattern, row, wholeBytes);
    if (rowBits % 8 != 0) {
        const bool fillsByte = bits == 1 || bits == 2 || bits == 4;
        const uint8_t kept = fillsByte ? 0 : UnusedInLastByte(bits, static_cast<size_t>(count));
        Merge(row[wholeBytes], pattern.Bytes[wholeBytes % pattern.Length], kept);
    }
}

} // namespace zkr
