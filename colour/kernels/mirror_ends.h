// Kernels that exchange the ends of a row of pixels, each of them mirrored, as far as whole vectors go.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::kernels {

struct MirrorKernels {
    // Of a row of whole bytes; gives how many of them are done at each end. At 1, 2 and 4 bits the pixels inside each
    // byte change places, too.
    using Ends = size_t (*)(uint8_t* row, size_t bytes);
    Ends Ends1, Ends2, Ends4, Ends8, Ends16, Ends24, Ends32, Ends48, Ends64;

    // Moves all bits of a row towards its start by 1 to 7; zeros come in behind the last byte.
    void (*Shift)(uint8_t* row, size_t bytes, uint32_t bits);
};

} // namespace zkr::kernels
