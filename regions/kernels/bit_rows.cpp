// Rows of bits from runs, bytes and pictures, and back to runs.
#include "regions/kernels/bit_rows.h"

#include <bit>
#include <cstring>

namespace zkr::kernels {
namespace {

constexpr uint64_t AllBits = ~uint64_t{0};

// What of the last word belongs to the row.
uint64_t LastMask(size_t pixels) {
    return pixels % 64 == 0 ? AllBits : (uint64_t{1} << (pixels % 64)) - 1;
}

// Edges are written eight at a time, as many as most words have: a jump for each edge would be guessed wrong at the
// end of every word.
size_t RunsOfBits(const uint64_t* words, size_t pixels, int32_t origin, int32_t* ends) {
    int32_t* out = ends;
    uint64_t before = 0;
    const size_t count = BitRowWords(pixels);
    for (size_t i = 0; i < count; ++i) {
        const uint64_t word = i + 1 == count ? words[i] & LastMask(pixels) : words[i];
        uint64_t edges = word ^ (word << 1 | before);
        before = word >> 63;
        if (edges == 0) continue;
        const int32_t base = origin + static_cast<int32_t>(i * 64);
        int32_t* const next = out + std::popcount(edges);
        do {
            for (int k = 0; k < 4; ++k) {
                out[k] = base + std::countr_zero(edges);
                edges &= edges - 1;
            }
            out += 4;
        } while (edges != 0);
        out = next;
    }
    if (before != 0 && pixels % 64 == 0) *out++ = origin + static_cast<int32_t>(pixels);
    return static_cast<size_t>(out - ends);
}

void BitsOfRuns(const int32_t* ends, size_t count, int32_t origin, uint64_t* words, size_t pixels) {
    std::memset(words, 0, BitRowWords(pixels) * sizeof(uint64_t));
    for (size_t i = 0; i < count; i += 2) {
        const int64_t start = std::max<int64_t>(int64_t{ends[i]} - origin, 0);
        const int64_t end = std::min<int64_t>(int64_t{ends[i + 1]} - origin, static_cast<int64_t>(pixels));
        if (start >= end) continue;
        const auto first = static_cast<size_t>(start / 64), last = static_cast<size_t>((end - 1) / 64);
        const uint64_t head = AllBits << (start % 64), tail = AllBits >> (63 - (end - 1) % 64);
        if (first == last) {
            words[first] |= head & tail;
            continue;
        }
        words[first] |= head;
        for (size_t word = first + 1; word < last; ++word)
            words[word] = AllBits;
        words[last] |= tail;
    }
}

uint64_t ReverseBytes(uint64_t word) {
    word = (word >> 4 & 0x0F0F0F0F0F0F0F0F) | (word & 0x0F0F0F0F0F0F0F0F) << 4;
    word = (word >> 2 & 0x3333333333333333) | (word & 0x3333333333333333) << 2;
    return (word >> 1 & 0x5555555555555555) | (word & 0x5555555555555555) << 1;
}

void BitsOfBytes(const uint8_t* row, size_t pixels, bool inverted, uint64_t* words) {
    const uint64_t flip = inverted ? AllBits : 0;
    const size_t whole = pixels / 64;
    for (size_t i = 0; i < whole; ++i) {
        uint64_t word;
        std::memcpy(&word, row + i * 8, 8);
        words[i] = ReverseBytes(word) ^ flip;
    }
    if (pixels % 64 == 0) return;
    uint64_t word = 0;
    std::memcpy(&word, row + whole * 8, (pixels % 64 + 7) / 8);
    words[whole] = (ReverseBytes(word) ^ flip) & LastMask(pixels);
}

void TurnedBits(const BitPicture& picture, const TurnedCoordinate& x, const TurnedCoordinate& y,
                size_t pixels, uint64_t* words) {
    for (size_t i = 0; i < pixels; i += 64) {
        uint64_t word = 0;
        for (size_t bit = 0; bit < std::min<size_t>(pixels - i, 64); ++bit) {
            const auto step = static_cast<int64_t>(i + bit);
            const auto column = static_cast<size_t>(x.At(step)), row = static_cast<size_t>(y.At(step));
            word |= (picture.Words[row * picture.PitchWords + column / 64] >> (column % 64) & 1) << bit;
        }
        words[i / 64] = word;
    }
}

} // namespace

template <>
constinit const BitRowKernels Compiled<BitRowKernels, ThisSet>::Table = {RunsOfBits, BitsOfRuns, BitsOfBytes,
                                                                         TurnedBits};

} // namespace zkr::kernels
