// Whether a palette or a bitmap is gray, and in which order its levels stand.
#include "colour/gray/gray_window.h"
#include "colour/pixels/colour_value.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <span>

using namespace zkr;

namespace {

bool IsGrayEntry(const RGBQUAD& entry) {
    return entry.rgbRed == entry.rgbGreen && entry.rgbGreen == entry.rgbBlue;
}

bool AllGray(std::span<const RGBQUAD> entries) {
    return std::all_of(entries.begin(), entries.end(), IsGrayEntry);
}

// Even steps, cut to whole numbers, from black upwards or from white downwards.
bool IsRamp(std::span<const RGBQUAD> entries, bool fromBlack) {
    const auto step = static_cast<uint8_t>(255 / (entries.size() - 1));
    uint8_t level = fromBlack ? 0 : 255;
    for (const RGBQUAD& entry : entries) {
        if (entry.rgbRed != level) return false;
        level = static_cast<uint8_t>(fromBlack ? level + step : level - step);
    }
    return true;
}

int32_t TypeOfLevels(const BitmapHandle& bitmap) {
    if (!HasActiveLevelTable(bitmap)) return GRAY_ORDEREDNORMAL;
    const GrayWindow window =
        MakeGrayWindow(bitmap.BitsPerPixel, bitmap.BitsPerPixel, bitmap.LowBit, bitmap.HighBit);
    const size_t reached = std::min<size_t>(bitmap.LevelLUTLength, size_t{window.Mask} + 1);
    return AllGray({bitmap.LevelLUT, reached}) ? GRAY_ORDEREDNORMAL : GRAY_NO;
}

} // namespace

int32_t Z_CALL Z_IsGrayScalePalette(const RGBQUAD* palette, uint32_t entries) {
    if (palette == nullptr || !AllGray({palette, entries})) return GRAY_NO;
    const uint8_t first = palette[0].rgbRed;
    if (entries <= 1)
        return first == 0 ? GRAY_ORDEREDNORMAL : first == 255 ? GRAY_ORDEREDREVERSE : GRAY_NOTORDERED;
    if (!IsRamp({palette, entries}, first == 0)) return GRAY_NOTORDERED;
    return first == 0 ? GRAY_ORDEREDNORMAL : GRAY_ORDEREDREVERSE;
}

int32_t Z_CALL Z_IsGrayScaleBitmap(const BitmapHandle* bitmap) {
    if (bitmap == nullptr) return GRAY_NO;
    if (bitmap->Order == Z_ORDER_GRAY) return TypeOfLevels(*bitmap);
    if (bitmap->BitsPerPixel > 8) return GRAY_NO;
    RGBQUAD palette[256];
    const uint32_t entries = std::min(bitmap->ColorsUsed, 256u);
    const bool read = entries > 0 && Z_GetBitmapPaletteEntries(bitmap, 0, entries, palette) == entries;
    return read ? Z_IsGrayScalePalette(palette, entries) : GRAY_NO;
}
