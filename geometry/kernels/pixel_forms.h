// How pixels lie in a row, for kernels that reach them one by one, and how their channels are read and written as
// doubles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

// Packed from the most significant bit on; a pixel may cross the border of two bytes.
template <unsigned bits> struct PackedBits {
    static constexpr unsigned Mask = (1u << bits) - 1;

    static unsigned Get(const uint8_t* row, size_t x) {
        const size_t at = x * bits, byte = at / 8, end = at % 8 + bits;
        if (end <= 8) return row[byte] >> (8 - end) & Mask;
        return (row[byte] << 8 | row[byte + 1]) >> (16 - end) & Mask;
    }

    static void Put(uint8_t* row, size_t x, unsigned value) {
        const size_t at = x * bits, byte = at / 8, end = at % 8 + bits;
        if (end <= 8) {
            const auto shift = static_cast<unsigned>(8 - end);
            row[byte] = static_cast<uint8_t>((row[byte] & ~(Mask << shift)) | value << shift);
        } else {
            const auto shift = static_cast<unsigned>(16 - end);
            const unsigned word =
                (static_cast<unsigned>(row[byte] << 8 | row[byte + 1]) & ~(Mask << shift)) | value << shift;
            row[byte] = static_cast<uint8_t>(word >> 8);
            row[byte + 1] = static_cast<uint8_t>(word);
        }
    }
};

// Two pixels in three bytes: the first is the low 12 bits of the word at byte 0, the second the high 12 bits of the
// word at byte 1.
struct Pairs12 {
    static unsigned Get(const uint8_t* row, size_t x) {
        const uint8_t* pair = row + x / 2 * 3;
        if (x % 2 == 0) return pair[0] | (pair[1] & 0x0Fu) << 8;
        return pair[1] >> 4 | static_cast<unsigned>(pair[2]) << 4;
    }

    static void Put(uint8_t* row, size_t x, unsigned value) {
        uint8_t* pair = row + x / 2 * 3;
        if (x % 2 == 0) {
            pair[0] = static_cast<uint8_t>(value);
            pair[1] = static_cast<uint8_t>((pair[1] & 0xF0u) | value >> 8);
        } else {
            pair[1] = static_cast<uint8_t>((pair[1] & 0x0Fu) | (value & 0x0Fu) << 4);
            pair[2] = static_cast<uint8_t>(value >> 4);
        }
    }
};

template <size_t bytes> struct Wide {
    static void Copy(const uint8_t* from, size_t fromX, uint8_t* to, size_t toX) {
        std::memcpy(to + toX * bytes, from + fromX * bytes, bytes);
    }

    // Takes a power of two of bytes, which is quicker: where that is more, a part of the next pixel with them.
    static void CopyWider(const uint8_t* from, size_t fromX, uint8_t* to, size_t toX) {
        std::memcpy(to + toX * bytes, from + fromX * bytes, bytes == 3 ? 4 : bytes == 6 ? 8 : bytes);
    }
};

// Channels as doubles. Blends of samples lie between the samples, but for rounding, which truncation takes away
// again or which stays within the sample's type.
template <size_t channels> struct Samples {
    double Channel[channels];

    Samples Times(double weight) const {
        Samples product;
        for (size_t i = 0; i < channels; ++i)
            product.Channel[i] = weight * Channel[i];
        return product;
    }
    Samples Plus(const Samples& other) const {
        Samples sum;
        for (size_t i = 0; i < channels; ++i)
            sum.Channel[i] = Channel[i] + other.Channel[i];
        return sum;
    }
};

struct BitForm {
    using Values = Samples<1>;
    static Values Load(const uint8_t* row, size_t x) {
        return {{static_cast<double>(PackedBits<1>::Get(row, x))}};
    }
    static void Store(uint8_t* row, size_t x, const Values& values) {
        PackedBits<1>::Put(row, x, static_cast<unsigned>(values.Channel[0] + 0.5) & 1);
    }
};

struct Pair12Form {
    using Values = Samples<1>;
    static Values Load(const uint8_t* row, size_t x) { return {{static_cast<double>(Pairs12::Get(row, x))}}; }
    static void Store(uint8_t* row, size_t x, const Values& values) {
        Pairs12::Put(row, x, static_cast<unsigned>(values.Channel[0]) & 0xFFF);
    }
};

struct Colour16Form {
    using Values = Samples<3>;
    static Values Load(const uint8_t* row, size_t x) {
        uint16_t pixel;
        std::memcpy(&pixel, row + x * 2, 2);
        return {{static_cast<double>(pixel & 31), static_cast<double>(pixel >> 5 & 31),
                 static_cast<double>(pixel >> 10 & 31)}};
    }
    static void Store(uint8_t* row, size_t x, const Values& values) {
        unsigned pixel = 0;
        for (unsigned i = 0; i < 3; ++i)
            pixel |= (static_cast<unsigned>(values.Channel[i]) & 31) << 5 * i;
        const auto word = static_cast<uint16_t>(pixel);
        std::memcpy(row + x * 2, &word, 2);
    }
};

template <typename Channel, size_t channels> struct ChannelsForm {
    using Values = Samples<channels>;
    static Values Load(const uint8_t* row, size_t x) {
        Channel pixel[channels];
        std::memcpy(pixel, row + x * sizeof pixel, sizeof pixel);
        Values values;
        for (size_t i = 0; i < channels; ++i)
            values.Channel[i] = pixel[i];
        return values;
    }
    static void Store(uint8_t* row, size_t x, const Values& values) {
        Channel pixel[channels];
        for (size_t i = 0; i < channels; ++i)
            pixel[i] = static_cast<Channel>(static_cast<unsigned>(values.Channel[i]));
        std::memcpy(row + x * sizeof pixel, pixel, sizeof pixel);
    }
};

#if defined(__AVX2__)

struct LaneSamples {
    __m256d Channels;

    LaneSamples Times(double weight) const { return {_mm256_mul_pd(_mm256_set1_pd(weight), Channels)}; }
    LaneSamples Plus(const LaneSamples& other) const { return {_mm256_add_pd(Channels, other.Channels)}; }
};

// A pixel's channels side by side in the lanes; the fourth of three is anything.
template <typename Channel, size_t channels> struct LanesForm {
    using Values = LaneSamples;
    static constexpr size_t PixelBytes = channels * sizeof(Channel);

    static Values Load(const uint8_t* row, size_t x) {
        const uint64_t pixel = Read(row + x * PixelBytes);
        const __m128i packed = _mm_set_epi64x(0, static_cast<long long>(pixel));
        const __m128i wide = sizeof(Channel) == 1 ? _mm_cvtepu8_epi32(packed) : _mm_cvtepu16_epi32(packed);
        return {_mm256_cvtepi32_pd(wide)};
    }
    static void Store(uint8_t* row, size_t x, const Values& values) {
        const __m128i wide = _mm256_cvttpd_epi32(values.Channels);
        const __m128i words = _mm_packus_epi32(wide, wide);
        const __m128i packed = sizeof(Channel) == 1 ? _mm_packus_epi16(words, words) : words;
        const auto pixel = static_cast<uint64_t>(packed[0]);
        std::memcpy(row + x * PixelBytes, &pixel, First);
        if constexpr (PixelBytes > First) {
            const uint64_t rest = pixel >> First * 8;
            std::memcpy(row + x * PixelBytes + First, &rest, PixelBytes - First);
        }
    }

    // A pixel and the one to its right, of which one load takes in both where two more bytes are in the row.
    static void LoadPair(const uint8_t* row, size_t x, bool hasRoom, Values& first, Values& second) {
        if constexpr (PixelBytes == 3) {
            if (hasRoom) {
                const uint64_t both = ReadWhole<8>(row + x * 3);
                const __m128i packed = _mm_set_epi64x(0, static_cast<long long>(both));
                first = {_mm256_cvtepi32_pd(_mm_cvtepu8_epi32(packed))};
                second = {_mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_srli_epi64(packed, 24)))};
                return;
            }
        }
        first = Load(row, x);
        second = Load(row, x + 1);
    }

  private:
    // Whole loads of a power of two: a value that is put together in memory waits for its parts.
    static constexpr size_t First = PixelBytes == 3 ? 2 : PixelBytes == 6 ? 4 : PixelBytes;

    template <size_t bytes> static uint64_t ReadWhole(const uint8_t* from) {
        if constexpr (bytes == 1) return *from;
        std::conditional_t<bytes == 2, uint16_t, std::conditional_t<bytes == 4, uint32_t, uint64_t>> value =
            0;
        std::memcpy(&value, from, bytes);
        return value;
    }
    static uint64_t Read(const uint8_t* from) {
        if constexpr (PixelBytes == First)
            return ReadWhole<First>(from);
        else
            return ReadWhole<First>(from) | ReadWhole<PixelBytes - First>(from + First) << First * 8;
    }
};

#endif

} // namespace
} // namespace zkr::kernels
