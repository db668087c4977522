// Pixels from one colour space to another, always through RGB, and single colours to HSV and back.
#include "zkr13n/color_spaces.h"

#include "colour/kernels/colour_spaces.h"
#include "colour/kernels/space_kernels.h"
#include "core/return_codes.h"
#include "core/scratch.h"
#include "core/sizes.h"
#include "kernels/family.h"

#include <cstring>

namespace zkr {

namespace {

using kernels::SpaceKernel;

// A format taken apart.
struct Format {
    int32_t Class; // 0 for 8 bits, 1 for 16
    bool IsRgb;
    size_t Index; // of the space, unless it is RGB
};

constexpr int32_t RgbFormats[2] = {Z_SPACE_RGB, Z_SPACE_RGB16};
constexpr int32_t SpaceFormats[2][kernels::SpaceCount] = {
    {Z_SPACE_LUMA, Z_SPACE_CMYK, Z_SPACE_HSV, Z_SPACE_HLS, Z_SPACE_YIQ, Z_SPACE_CMY},
    {Z_SPACE_LUMA16, Z_SPACE_CMYK16, Z_SPACE_HSV16, Z_SPACE_HLS16, Z_SPACE_YIQ16, Z_SPACE_CMY16}};

bool Parse(int32_t value, Format& format) {
    for (const int32_t depthClass : {0, 1}) {
        if (value == RgbFormats[depthClass]) {
            format = {depthClass, true, 0};
            return true;
        }
        for (size_t i = 0; i < kernels::SpaceCount; ++i) {
            if (value != SpaceFormats[depthClass][i]) continue;
            format = {depthClass, false, i};
            return true;
        }
    }
    return false;
}

// The pixels of a colour value whose bytes are three channels, first the lowest.
kernels::spaces::SpacePixel PixelOf(uint32_t colour) {
    return {static_cast<int32_t>(colour & 0xFF), static_cast<int32_t>(colour >> 8 & 0xFF),
            static_cast<int32_t>(colour >> 16 & 0xFF), 0};
}

uint32_t ColourOf(int32_t low, int32_t middle, int32_t high) {
    return static_cast<uint32_t>(low) | static_cast<uint32_t>(middle) << 8 |
           static_cast<uint32_t>(high) << 16;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_ConvertColorSpace(const void* source, void* target, int32_t width, int32_t sourceFormat,
                                      int32_t targetFormat) {
    Format from, to;
    if (!Parse(sourceFormat, from) || !Parse(targetFormat, to) || from.Class != to.Class)
        return code::InvalidArgument;
    if (width < 1) return code::Success;
    if (source == nullptr || target == nullptr) return code::InvalidArgument;

    const auto pixels = static_cast<size_t>(width);
    const uint64_t rgbBytes = uint64_t{pixels} * (from.Class == 0 ? 3 : 6);
    if (!FitsSize(rgbBytes)) return code::OutOfMemory;
    const auto bytes = static_cast<size_t>(rgbBytes);
    const kernels::SpaceKernels& kernels = kernels::Chosen<kernels::SpaceKernels>();
    const SpaceKernel toRgb = kernels.ToRgb[from.Class][from.Index];
    const SpaceKernel fromRgb = kernels.FromRgb[to.Class][to.Index];
    const auto* input = static_cast<const uint8_t*>(source);
    auto* output = static_cast<uint8_t*>(target);
    if (from.IsRgb && to.IsRgb) {
        std::memmove(output, input, bytes);
    } else if (from.IsRgb) {
        fromRgb(input, output, pixels);
    } else if (to.IsRgb) {
        toRgb(input, output, pixels);
    } else {
        ScratchBuffer<uint8_t> middle(bytes); // of the whole row, so that source and target may be the same
        if (!middle) return code::OutOfMemory;
        toRgb(input, middle.data(), pixels);
        fromRgb(middle.data(), output, pixels);
    }
    return code::Success;
}

uint32_t Z_CALL Z_RGBtoHSV(uint32_t color) {
    const auto [red, green, blue, none] = PixelOf(color);
    const kernels::spaces::SpacePixel hsv = kernels::spaces::Hsv<255>::From({blue, green, red, none});
    return (color & 0xFF000000) | ColourOf(hsv.A, hsv.B, hsv.C);
}

uint32_t Z_CALL Z_HSVtoRGB(uint32_t color) {
    const kernels::spaces::SpacePixel bgr = kernels::spaces::Hsv<255>::ToRgb(PixelOf(color));
    return ColourOf(bgr.C, bgr.B, bgr.A);
}
