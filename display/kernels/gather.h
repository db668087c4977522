// Kernels that pick pixels of a row.
#pragma once

#include "core/depth.h"

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

// Target pixel i is source pixel columns[i]; columns never go back. The bits of the last byte behind the last pixel
// become 0.
using GatherKernel = void (*)(const uint8_t* source, const uint32_t* columns, uint8_t* target, size_t pixels);

struct GatherKernels {
    GatherKernel Of[MostBits + 1]; // by bits; null where there is no such depth
};

} // namespace zkr::kernels
