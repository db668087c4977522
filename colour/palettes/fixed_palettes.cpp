// The fixed palettes and gray ramps as palette objects and arrays, by bits per pixel.
#include "colour/palettes/fixed_palettes.h"

#include "colour/gray/gray_of.h"
#include "core/return_codes.h"
#include "zkr13n/palettes.h"

#include <algorithm>

using namespace zkr;

namespace {

bool IsIndexedDepth(int32_t bitsPerPixel) {
    return bitsPerPixel >= 1 && bitsPerPixel <= 8;
}

} // namespace

const RGBQUAD* Z_CALL Z_IntGetFixedPalette(int32_t bitsPerPixel) {
    return IsIndexedDepth(bitsPerPixel) ? FixedPalette(bitsPerPixel).data() : nullptr;
}

ReturnCode Z_CALL Z_GetFixedPalette(RGBQUAD* destination, int32_t bitsPerPixel) {
    if (destination == nullptr) return code::InvalidArgument;
    if (bitsPerPixel == 0) {
        WriteGrayRamp(destination, 256);
        return code::Success;
    }
    if (!IsIndexedDepth(bitsPerPixel)) return code::InvalidArgument;
    std::ranges::copy(FixedPalette(bitsPerPixel), destination);
    return code::Success;
}

HPALETTE Z_CALL Z_CreateFixedPalette(int32_t bitsPerPixel) {
    const int32_t bits = bitsPerPixel == 0 ? 1 : bitsPerPixel;
    if (!IsIndexedDepth(bits)) return nullptr;
    const std::span<const RGBQUAD> palette = FixedPalette(bits);
    return Z_CreatePalette(palette.data(), static_cast<uint32_t>(palette.size()));
}

HPALETTE Z_CALL Z_CreateGrayPalette(int32_t bitsPerPixel) {
    const int32_t bits = bitsPerPixel == 0 ? 8 : bitsPerPixel;
    if (!IsIndexedDepth(bits)) return nullptr;
    RGBQUAD ramp[256];
    WriteGrayRamp(ramp, 1u << bits);
    return Z_CreatePalette(ramp, 1u << bits);
}
