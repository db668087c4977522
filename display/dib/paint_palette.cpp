// The palette that a device gets before a bitmap is painted on it.
#include "core/flags.h"
#include "core/predicates.h"
#include "display/dib/contexts.h"
#include "display/paint/classification.h"
#include "zkr13n/dib.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/palettes.h"

#include <algorithm>

namespace zkr::dib {

namespace {

constexpr int32_t MostPaletteBits = 8; // of a device class that has a palette

uint8_t Painted(const BitmapHandle& bitmap, uint32_t level) {
    return bitmap.PaintLUT != nullptr ? bitmap.PaintLUT[level] : static_cast<uint8_t>(level);
}

HPALETTE CreateDithered(int32_t deviceClass, uint32_t displayMode) {
    if (deviceClass > MostPaletteBits) return nullptr;
    const std::span<const RGBQUAD> palette = DitheringPalette(deviceClass, displayMode);
    return Z_CreatePalette(palette.data(), static_cast<uint32_t>(palette.size()));
}

HPALETTE CreateGray(const BitmapHandle& bitmap) {
    RGBQUAD levels[256];
    for (uint32_t i = 0; i < 256; ++i) {
        const uint8_t level = Painted(bitmap, i);
        levels[i] = {level, level, level, 0};
    }
    return Z_CreatePalette(levels, 256);
}

HPALETTE CreateOwn(const BitmapHandle& bitmap) {
    if (bitmap.Palette == nullptr || !HasFlag(bitmap, flag::PaintLUTActive))
        return Z_DupBitmapPalette(&bitmap);
    RGBQUAD colours[256];
    const uint32_t count =
        Z_GetBitmapPaletteEntries(&bitmap, 0, std::min(bitmap.ColorsUsed, MostEntries), colours);
    for (uint32_t i = 0; i < count; ++i) {
        RGBQUAD& colour = colours[i];
        colour = {Painted(bitmap, colour.rgbBlue), Painted(bitmap, colour.rgbGreen),
                  Painted(bitmap, colour.rgbRed), colour.rgbReserved};
    }
    return Z_CreatePalette(colours, count);
}

} // namespace

} // namespace zkr::dib

using namespace zkr;

HPALETTE Z_CALL Z_CreatePaintPalette(HDC deviceContext, BitmapHandle* bitmap) {
    if (!IsAllocated(bitmap)) return nullptr;
    const dib::DeviceOrScreen context(deviceContext);
    if (context.Get() == nullptr) return nullptr;
    const int32_t deviceClass = DeviceClassOf(context.Get());
    const uint32_t mode = Z_GetDisplayMode();
    switch (ClassifyPainting(*bitmap, deviceClass, mode)) {
    case PaintMethod::Dithered: return dib::CreateDithered(deviceClass, mode);
    case PaintMethod::ScaleToGray:
    case PaintMethod::ScaleToGrayReversed: return dib::CreateGray(*bitmap);
    default: break;
    }
    if (bitmap->BitsPerPixel <= MostIndexedBits) return dib::CreateOwn(*bitmap);
    return IsGrayForPainting(*bitmap) ? dib::CreateGray(*bitmap) : nullptr;
}
