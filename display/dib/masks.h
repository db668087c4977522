// Masks of channels as the rule of a row kernel.
#pragma once

#include "display/kernels/dib_kernels.h"

#include <array>
#include <cstdint>

namespace zkr::dib {

// masks are those of red, green and blue. A mask counts from its lowest to its highest set bit; without any the channel
// is 0.
kernels::MaskedPixels RuleOf(const std::array<uint32_t, 3>& masks, int32_t bitsPerPixel);

// The kernel of 16 or 32 bits.
auto MaskedKernelOf(int32_t bitsPerPixel) -> decltype(kernels::DibKernels::Masked16);

} // namespace zkr::dib
