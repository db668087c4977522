#include "display/dib/depth_for_dib.h"

#include "core/depth.h"
#include "core/predicates.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>

namespace zkr::dib {

HeldForm HeldFormOf(const BitmapHandle& bitmap) {
    const int32_t bits = bitmap.BitsPerPixel;
    const bool isBgr = bitmap.Order == Z_ORDER_BGR;
    switch (bits) {
    case 2:
    case 3: return {4, COLORRES_OPTIMIZED_PALETTE, true};
    case 5:
    case 6:
    case 7: return {8, COLORRES_OPTIMIZED_PALETTE, true};
    case 48: return {24, COLORRES_ORDER_BGR, true};
    case 64: return {32, COLORRES_ORDER_BGR, true};
    default: break;
    }
    if (HasGrayWords(bitmap)) return {24, COLORRES_ORDER_BGR, true};
    return {bits, COLORRES_ORDER_BGR, bits > MostIndexedBits && !isBgr};
}

ReturnCode BringToForm(BitmapHandle& source, BitmapHandle& target, const HeldForm& form) {
    return Z_ColorResBitmap(&source, &target, form.Bits, form.Flags, nullptr, nullptr, 0, nullptr, 0);
}

uint32_t ColoursOf(const BitmapHandle& bitmap, RGBQUAD (&colours)[256]) {
    const uint32_t most = 1u << bitmap.BitsPerPixel;
    std::memset(colours, 0, sizeof colours);
    if (bitmap.Palette != nullptr) {
        Z_GetBitmapPaletteEntries(&bitmap, 0, std::min(bitmap.ColorsUsed, most), colours);
    } else {
        for (uint32_t i = 0; i < most; ++i) {
            const auto level = static_cast<uint8_t>(i * 255 / (most - 1));
            colours[i] = {level, level, level, 0};
        }
    }
    for (RGBQUAD& colour : colours)
        colour.rgbReserved = 0;
    return bitmap.ColorsUsed == 0 ? most : std::min(bitmap.ColorsUsed, most);
}

} // namespace zkr::dib
