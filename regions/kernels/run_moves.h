// Moves of all end points of a region at once.
#pragma once

#include "kernels/family.h"

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

struct RunMoveKernels {
    // Every result fits.
    void (*Offset)(int32_t* ends, size_t count, int32_t by);
};

} // namespace zkr::kernels
