// Kernels that count white bits in areas.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

struct CoverageKernels {
    // Adds the weight to the sums of those pixels whose bit is 1; the first pixel is the top bit of the first byte.
    // Sums come in whole groups of eight.
    void (*AddBits)(const uint8_t* bits, uint32_t weight, uint32_t* sums, size_t groups);
};

} // namespace zkr::kernels
