// The class of a colour, by which a tie between equally near palette entries is decided: where green stands
// against red and blue, and whether red is below blue.
#pragma once

#include "zkr13n/platform_types.h"

namespace zkr::kernels {

static inline int32_t ColourClass(int32_t red, int32_t green, int32_t blue) {
    const int32_t above = green > red && green > blue ? 1 : 0;
    const int32_t below = green < red && green < blue ? 2 : 0;
    return above + below + (red < blue ? 4 : 0);
}

} // namespace zkr::kernels
