// The end of a packed row.
#pragma once

#include <cstdint>
#include <cstring>

namespace zkr {

// Clears what lies behind the last pixel: bits of its last byte, and bytes up to the row's end.
inline void ClearBehind(int32_t bitsPerPixel, uint8_t* row, uint64_t pixels, uint64_t rowBytes) {
    const uint64_t bits = pixels * static_cast<uint32_t>(bitsPerPixel);
    if (bits % 8 != 0) {
        const uint32_t ours = bitsPerPixel == 12 ? 0x0Fu : 0xFF00u >> bits % 8;
        row[bits / 8] = static_cast<uint8_t>(row[bits / 8] & ours);
    }
    const uint64_t whole = (bits + 7) / 8;
    if (whole < rowBytes) std::memset(row + whole, 0, static_cast<size_t>(rowBytes - whole));
}

// Alpha of 32 and 64 bits and of 16-bit colour, where a conversion does not write it.
inline void ClearAlpha(int32_t bitsPerPixel, uint8_t* row, size_t pixels) {
    if (bitsPerPixel == 16)
        for (size_t i = 0; i < pixels; ++i)
            row[i * 2 + 1] &= 0x7F;
    else if (bitsPerPixel == 32)
        for (size_t i = 0; i < pixels; ++i)
            row[i * 4 + 3] = 0;
    else if (bitsPerPixel == 64)
        for (size_t i = 0; i < pixels; ++i)
            row[i * 8 + 6] = row[i * 8 + 7] = 0;
}

} // namespace zkr
