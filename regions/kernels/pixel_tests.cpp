// Tests of channels, indices and gray values.
#include "regions/kernels/pixel_tests.h"

#include <algorithm>
#include <cstring>

#ifdef __AVX2__
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

// The bits of 64 pixels, or of those that are left.
template <typename Takes> void BitsOf(size_t pixels, uint64_t* words, Takes takes) {
    for (size_t i = 0; i < pixels; i += 64) {
        uint64_t word = 0;
        for (size_t bit = 0; bit < std::min<size_t>(pixels - i, 64); ++bit)
            word |= uint64_t{takes(i + bit)} << bit;
        words[i / 64] = word;
    }
}

bool TakesPixel(const ChannelTest& test, const uint8_t* pixel) {
    return test.Takes(0, pixel[0]) & test.Takes(1, pixel[1]) & test.Takes(2, pixel[2]);
}

#ifdef __AVX2__

// The bytes of three vectors of a test, as three channels repeat in them.
struct ChannelVectors {
    __m256i Low[3], High[3], Outside[3];

    explicit ChannelVectors(const ChannelTest& test) {
        alignas(32) uint8_t low[96], high[96], outside[96];
        for (size_t i = 0; i < 96; ++i) {
            low[i] = test.Low[i % 3];
            high[i] = test.High[i % 3];
            outside[i] = test.Outside[i % 3] ? 0xFF : 0;
        }
        for (size_t i = 0; i < 3; ++i) {
            Low[i] = _mm256_load_si256(reinterpret_cast<const __m256i*>(low) + i);
            High[i] = _mm256_load_si256(reinterpret_cast<const __m256i*>(high) + i);
            Outside[i] = _mm256_load_si256(reinterpret_cast<const __m256i*>(outside) + i);
        }
    }

    // A bit for each of 32 bytes.
    uint32_t Test(const uint8_t* bytes, size_t vector) const {
        const __m256i values = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
        const __m256i clamped = _mm256_min_epu8(_mm256_max_epu8(values, Low[vector]), High[vector]);
        const __m256i inside = _mm256_cmpeq_epi8(values, clamped);
        return static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_xor_si256(inside, Outside[vector])));
    }
};

// Every third bit of a word from `first` on, side by side.
uint64_t Gather(uint64_t bits, uint32_t first) {
    constexpr uint64_t every3rd = 0x9249249249249249;
#ifdef __x86_64__
    return _pext_u64(bits, every3rd << first);
#else
    const uint64_t shifted = bits >> first & every3rd;
    const uint64_t low = _pext_u32(static_cast<uint32_t>(shifted), static_cast<uint32_t>(every3rd));
    return low |
           uint64_t{_pext_u32(static_cast<uint32_t>(shifted >> 32), static_cast<uint32_t>(every3rd >> 32))}
               << 11;
#endif
}

// 64 pixels are 192 bytes and as many bits, of which each pixel's three become one.
uint64_t Take64(const ChannelVectors& vectors, const uint8_t* pixels) {
    uint64_t bits[3];
    for (size_t i = 0; i < 3; ++i)
        bits[i] = vectors.Test(pixels + i * 64, i * 2 % 3) |
                  uint64_t{vectors.Test(pixels + i * 64 + 32, (i * 2 + 1) % 3)} << 32;
    const uint64_t first = bits[0] & (bits[0] >> 1 | bits[1] << 63) & (bits[0] >> 2 | bits[1] << 62);
    const uint64_t second = bits[1] & (bits[1] >> 1 | bits[2] << 63) & (bits[1] >> 2 | bits[2] << 62);
    const uint64_t third = bits[2] & bits[2] >> 1 & bits[2] >> 2;
    return Gather(first, 0) | Gather(second, 2) << 22 | Gather(third, 1) << 43;
}

__m256i Twice(const uint8_t* table) {
    return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table)));
}

struct ByteSetVectors {
    __m256i Below, Above;
    __m256i BitBelow = Twice(bits + 8), BitAbove = Twice(bits); // of a high half

    explicit ByteSetVectors(const ByteSet& set)
        : Below(Twice(set.Below.data())), Above(Twice(set.Above.data())) {}

    uint32_t Test(const uint8_t* bytes) const {
        const __m256i values = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
        const __m256i half = _mm256_set1_epi8(15);
        const __m256i low = _mm256_and_si256(values, half);
        const __m256i high = _mm256_and_si256(_mm256_srli_epi16(values, 4), half);
        const __m256i below =
            _mm256_and_si256(_mm256_shuffle_epi8(Below, low), _mm256_shuffle_epi8(BitBelow, high));
        const __m256i above =
            _mm256_and_si256(_mm256_shuffle_epi8(Above, low), _mm256_shuffle_epi8(BitAbove, high));
        const __m256i missing = _mm256_cmpeq_epi8(_mm256_or_si256(below, above), _mm256_setzero_si256());
        return ~static_cast<uint32_t>(_mm256_movemask_epi8(missing));
    }

  private:
    static constexpr uint8_t bits[24] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 4, 8, 16, 32, 64, 128};
};

#endif

void ChannelBits(const uint8_t* row, size_t pixels, const ChannelTest& test, uint64_t* words) {
    size_t done = 0;
#ifdef __AVX2__
    const ChannelVectors vectors(test);
    for (; done + 64 <= pixels; done += 64)
        words[done / 64] = Take64(vectors, row + done * 3);
#endif
    BitsOf(pixels - done, words + done / 64,
           [&](size_t i) { return TakesPixel(test, row + (done + i) * 3); });
}

void ByteBits(const uint8_t* row, size_t pixels, const ByteSet& set, uint64_t* words) {
    size_t done = 0;
#ifdef __AVX2__
    const ByteSetVectors vectors(set);
    for (; done + 64 <= pixels; done += 64)
        words[done / 64] = vectors.Test(row + done) | uint64_t{vectors.Test(row + done + 32)} << 32;
#endif
    BitsOf(pixels - done, words + done / 64, [&](size_t i) { return set.Has(row[done + i]); });
}

void WordBits(const uint8_t* row, size_t pixels, const uint64_t* set, uint64_t* words) {
    BitsOf(pixels, words, [&](size_t i) {
        const auto value = static_cast<size_t>(row[i * 2] | row[i * 2 + 1] << 8);
        return (set[value / 64] >> (value % 64) & 1) != 0;
    });
}

} // namespace

template <>
constinit const PixelTestKernels Compiled<PixelTestKernels, ThisSet>::Table = {ChannelBits, ByteBits,
                                                                               WordBits};

} // namespace zkr::kernels
