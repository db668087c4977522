#include "display/paint/classification.h"

#include "colour/palettes/fixed_palettes.h"
#include "core/flags.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

namespace zkr {

namespace {

struct Situation {
    const BitmapHandle& Bitmap;
    int32_t Class;
    uint32_t Mode;

    bool Has(uint32_t bit) const { return (Mode & bit) != 0; }
    bool Dithers() const { return Has(DISPLAY_DITHERED); }
    bool Prefers8() const { return Has(DISPLAY_DITHER_8); }
    bool HasFixedPalette(int32_t bits) const {
        return Z_CompareBitmapToPalette(&Bitmap, FixedPalette(bits).data(), 1u << bits) != 0;
    }
};

PaintMethod DitheredIf(bool dithered, PaintMethod other) {
    return dithered ? PaintMethod::Dithered : other;
}

PaintMethod ByGrayOrder(const BitmapHandle& bitmap, PaintMethod normal, PaintMethod reversed) {
    switch (Z_IsGrayScaleBitmap(&bitmap)) {
    case GRAY_ORDEREDNORMAL: return normal;
    case GRAY_ORDEREDREVERSE: return reversed;
    default: return PaintMethod::AsStored;
    }
}

PaintMethod ClassifyBits(const Situation& s) {
    const bool tellsGray = s.Has(DISPLAY_SCALE_TO_GRAY) && s.Class > 1;
    PaintMethod method = PaintMethod::AsStored;
    if (tellsGray) {
        method = ByGrayOrder(s.Bitmap, PaintMethod::ScaleToGray, PaintMethod::ScaleToGrayReversed);
    } else if (s.Has(DISPLAY_COARSE_GRAY)) {
        method = ByGrayOrder(s.Bitmap, PaintMethod::CoarseGray, PaintMethod::CoarseGrayReversed);
    }
    if (method != PaintMethod::AsStored) return method;
    const bool fits = tellsGray ? s.Class <= 8 : s.Class == 8;
    return DitheredIf(s.Dithers() && s.Prefers8() && fits, PaintMethod::AsStored);
}

PaintMethod ClassifyNibbles(const Situation& s) {
    if (!s.Dithers()) return PaintMethod::AsStored;
    const bool dithered = s.Class == 4 ? !s.HasFixedPalette(4) : s.Prefers8() ? s.Class <= 8 : s.Class < 4;
    return DitheredIf(dithered, PaintMethod::AsStored);
}

PaintMethod ClassifyBytes(const Situation& s) {
    const bool dithered = s.Class < 8 || (s.Class == 8 && s.Prefers8() && !s.HasFixedPalette(8));
    return DitheredIf(s.Dithers() && dithered, PaintMethod::AsStored);
}

} // namespace

int32_t DeviceClassOf(HDC context) {
    if (platform::GetDeviceCaps(context, TECHNOLOGY) == DT_METAFILE) return 24;
    const int depth = platform::GetDeviceCaps(context, BITSPIXEL) * platform::GetDeviceCaps(context, PLANES);
    return depth < 4 ? 1 : depth < 8 ? 4 : depth < 16 ? 8 : 24;
}

BitmapHandle WithLevelTableActive(const BitmapHandle& bitmap) {
    BitmapHandle active = bitmap;
    if (HasFlag(bitmap, flag::LevelLUTActive)) return active;
    active.LowBit = bitmap.LevelLowBit;
    active.HighBit = bitmap.LevelHighBit;
    active.Flags |= flag::LevelLUTActive;
    return active;
}

bool IsGrayForPainting(const BitmapHandle& bitmap) {
    if (bitmap.LevelLUT == nullptr) return bitmap.Order == Z_ORDER_GRAY;
    const BitmapHandle active = WithLevelTableActive(bitmap);
    return Z_IsGrayScaleBitmap(&active) != GRAY_NO;
}

PaintMethod ClassifyPainting(const BitmapHandle& bitmap, int32_t deviceClass, uint32_t displayMode) {
    const Situation s{bitmap, deviceClass, displayMode};
    const bool below8 = s.Dithers() && s.Class < 8, upTo8 = s.Dithers() && s.Class <= 8;
    const bool preferred = s.Prefers8() ? upTo8 : below8;
    switch (bitmap.BitsPerPixel) {
    case 1: return ClassifyBits(s);
    case 2:
    case 3:
    case 5:
    case 6:
    case 7: return DitheredIf(preferred, PaintMethod::Widened);
    case 4: return ClassifyNibbles(s);
    case 8: return ClassifyBytes(s);
    case 12:
    case 16: return DitheredIf(IsGrayForPainting(bitmap) ? preferred : upTo8, PaintMethod::Widened);
    case 24: return DitheredIf(upTo8, PaintMethod::AsStored);
    case 32:
    case 48:
    case 64: return DitheredIf(upTo8, PaintMethod::Widened);
    default: return PaintMethod::AsStored;
    }
}

std::span<const RGBQUAD> DitheringPalette(int32_t deviceClass, uint32_t displayMode) {
    if (deviceClass == 8 && (displayMode & DISPLAY_CUBE) != 0) return CubePalette216;
    return FixedPalette(deviceClass);
}

} // namespace zkr
