// Kernels that count white bits in areas.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

struct CoverageKernels {
    // Adds the weight to the sums of those pixels whose bit is 1; the first pixel is the top bit of the first byte.
    // Sums come in whole groups of eight.
    void (*AddBits)(const uint8_t* bits, uint32_t weight, uint32_t* sums, size_t groups);

    // Squares of 4 or 8 bits a side as levels of gray: 255 * ones / bits, rounded, halves up. The rows begin with a square.
    void (*Squares4)(const uint8_t* const (&rows)[4], bool zeroesAreWhite, uint8_t* levels, size_t squares);
    void (*Squares8)(const uint8_t* const (&rows)[8], bool zeroesAreWhite, uint8_t* levels, size_t squares);
};

} // namespace zkr::kernels
