// Single pixels of a packed row, read and written one at a time as plain numbers. Depths below 8 are packed
// from the top bit down; two 12-bit pixels share three bytes, the first in the low 12 bits of the
// little-endian word at byte 0, the second in the high 12 bits of the word at byte 1; whole-byte depths are
// little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr::test {

// Depth 0 is 8-bit gray.
inline int StoredBits(int bits) {
    return bits == 0 ? 8 : bits;
}

inline size_t RowBytes(int width, int bits) {
    return (static_cast<size_t>(width) * static_cast<size_t>(StoredBits(bits)) + 7) / 8;
}

// Where bit `bit` of pixel `index` lies: byte, and place in the byte. Bit 0 is the lowest of the pixel.
struct BitPlace {
    size_t byte;
    int bit;
};
inline BitPlace PlaceOf(int bits, int index, int bit) {
    const size_t start = static_cast<size_t>(index) * static_cast<size_t>(bits);
    if (bits < 8) {
        const size_t fromTop = start + static_cast<size_t>(bits - 1 - bit);
        return {fromTop / 8, 7 - static_cast<int>(fromTop % 8)};
    }
    const size_t fromBottom = start + static_cast<size_t>(bit);
    return {fromBottom / 8, static_cast<int>(fromBottom % 8)};
}

inline uint64_t ReadPixel(const uint8_t* row, int depth, int index) {
    const int bits = StoredBits(depth);
    uint64_t value = 0;
    if (bits % 8 == 0) {
        std::memcpy(&value, row + RowBytes(index, bits), RowBytes(1, bits));
        return value;
    }
    for (int bit = 0; bit < bits; ++bit) {
        const BitPlace place = PlaceOf(bits, index, bit);
        value |= static_cast<uint64_t>((row[place.byte] >> place.bit) & 1) << bit;
    }
    return value;
}

inline void WritePixel(uint8_t* row, int depth, int index, uint64_t value) {
    const int bits = StoredBits(depth);
    if (bits % 8 == 0) {
        std::memcpy(row + RowBytes(index, bits), &value, RowBytes(1, bits));
        return;
    }
    for (int bit = 0; bit < bits; ++bit) {
        const BitPlace place = PlaceOf(bits, index, bit);
        const int one = 1 << place.bit;
        row[place.byte] =
            static_cast<uint8_t>((value >> bit) & 1 ? row[place.byte] | one : row[place.byte] & ~one);
    }
}

} // namespace zkr::test
