// A picture of one bit for each pixel as working memory, and the search for bits in its rows (kernels/bit_rows.h).
#pragma once

#include "core/scratch.h"
#include "regions/kernels/bit_rows.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

namespace zkr {

class BitPictureBuffer {
  public:
    // Test with operator bool: memory may be short. The bits are not cleared.
    BitPictureBuffer(size_t pitchWords, int64_t rows)
        : pitchWords_(pitchWords), words_(CountOf(pitchWords, rows)) {}

    explicit operator bool() const { return static_cast<bool>(words_); }
    uint64_t* Row(int64_t row) { return words_.data() + static_cast<size_t>(row) * pitchWords_; }
    kernels::BitPicture Picture() { return {words_.data(), pitchWords_}; }

  private:
    // What leaves the size of memory is more than there can be.
    static size_t CountOf(size_t pitchWords, int64_t rows) {
        const uint64_t words = uint64_t{pitchWords} * static_cast<uint64_t>(rows); // at most 2^58
        return static_cast<size_t>(std::clamp<uint64_t>(words, 1, std::numeric_limits<size_t>::max()));
    }

    size_t pitchWords_;
    ScratchBuffer<uint64_t> words_;
};

inline bool HasBit(const uint64_t* bits, int32_t column) {
    return (bits[column / 64] >> (column % 64) & 1) != 0;
}

// The first bit of a value from a column on, or end.
inline int32_t FindBit(const uint64_t* bits, int32_t column, int32_t end, bool value) {
    if (column >= end) return end;
    const uint64_t flip = value ? 0 : ~uint64_t{0};
    int32_t word = column / 64;
    uint64_t left = (bits[word] ^ flip) & ~uint64_t{0} << (column % 64);
    while (left == 0) {
        if (++word > (end - 1) / 64) return end;
        left = bits[word] ^ flip;
    }
    return std::min(word * 64 + std::countr_zero(left), end);
}

// The last bit of a value before a column, or -1.
inline int32_t FindBitBefore(const uint64_t* bits, int32_t column, bool value) {
    if (column == 0) return -1;
    const uint64_t flip = value ? 0 : ~uint64_t{0};
    int32_t word = (column - 1) / 64;
    uint64_t left = (bits[word] ^ flip) & ~uint64_t{0} >> (63 - (column - 1) % 64);
    while (left == 0) {
        if (--word < 0) return -1;
        left = bits[word] ^ flip;
    }
    return word * 64 + 63 - std::countl_zero(left);
}

// Clears the bits between two columns in one row and sets them in another.
inline void ChangeBits(uint64_t* cleared, uint64_t* set, int32_t first, int32_t end) {
    for (int32_t word = first / 64; word <= (end - 1) / 64; ++word) {
        uint64_t mask = ~uint64_t{0};
        if (word == first / 64) mask &= ~uint64_t{0} << (first % 64);
        if (word == (end - 1) / 64) mask &= ~uint64_t{0} >> (63 - (end - 1) % 64);
        cleared[word] &= ~mask;
        set[word] |= mask;
    }
}

} // namespace zkr
