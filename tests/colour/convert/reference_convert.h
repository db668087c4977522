// A slow, plain model of the row functions: every pixel is read from the packed row by itself, converted by
// rules that stand here in the order in which they are told, and written by itself. It shares nothing with
// the library and is the yardstick of its kernels.
//
// A pixel is handled as the number that its bits make (support/pixel_bits.h). What no rule writes (alpha of
// some pairs, bits behind the last pixel, bytes behind the row) keeps what the buffer held before.
#pragma once

#include "zkr13n/convert.h"

#include <cstdint>
#include <string>

namespace zkr::test {

struct Conversion {
    int sourceBits = 0;
    int targetBits = 0;
    int sourceOrder = 0;
    int targetOrder = 0;
    const RGBQUAD* sourcePalette = nullptr;
    const RGBQUAD* targetPalette = nullptr;
    uint32_t flags = 0;
    int lowBit = -1;
    int highBit = -1;
};

std::string Describe(const Conversion& conversion);

// Z_ConvertBufferExt itself, and the model of it.
ReturnCode Convert(void* row, int width, const Conversion& conversion);
ReturnCode ReferenceConvert(uint8_t* row, int width, const Conversion& conversion);

// The model of Z_MirrorLine. Bits behind the last pixel become zero at 1, 2 and 4 bits, where the row is
// shifted into its place, and are left as they are at other depths.
void ReferenceMirrorLine(uint8_t* row, int width, int bits);

} // namespace zkr::test
