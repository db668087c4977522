#include "display/dib/masks.h"

#include "kernels/family.h"

#include <bit>

namespace zkr::dib {

namespace {

constexpr uint32_t WidestOf32Bits = 24; // t of 32 bits cannot be folded beyond

kernels::MaskedChannel ChannelOf(uint32_t mask, uint32_t full) {
    if (mask == 0) return {0, 0, full, 31, 0, 0};
    const auto shift = static_cast<uint32_t>(std::countr_zero(mask));
    const auto width = static_cast<uint32_t>(std::bit_width(mask)) - shift;
    const auto maximum = static_cast<uint32_t>((uint64_t{1} << width) - 1);
    if (maximum < full) return {shift, maximum, full, 31, 0, 0};
    return {shift, maximum, full, width, 1, width};
}

} // namespace

kernels::MaskedPixels RuleOf(const std::array<uint32_t, 3>& masks, int32_t bitsPerPixel) {
    const uint32_t full = bitsPerPixel == 16 ? 31 : 255;
    kernels::MaskedPixels rule = {ChannelOf(masks[0], full), ChannelOf(masks[1], full),
                                  ChannelOf(masks[2], full), false};
    for (const kernels::MaskedChannel* channel : {&rule.Red, &rule.Green, &rule.Blue})
        rule.IsWide = rule.IsWide || channel->Down > WidestOf32Bits;
    return rule;
}

auto MaskedKernelOf(int32_t bitsPerPixel) -> decltype(kernels::DibKernels::Masked16) {
    const auto& chosen = kernels::Chosen<kernels::DibKernels>();
    return bitsPerPixel == 16 ? chosen.Masked16 : chosen.Masked32;
}

} // namespace zkr::dib
