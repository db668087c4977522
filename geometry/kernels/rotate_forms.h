// How the formats of pixels that rotation knows are read as channels and written. Every name here is internal to the
// kernel file that includes it.
#pragma once

#include "geometry/kernels/rotate_kernels.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

// Channels of one pixel, and of two.
typedef int32_t Four __attribute__((vector_size(16)));
typedef int32_t Eight __attribute__((vector_size(32)));

inline Eight Both(Four a, Four b) {
    return __builtin_shufflevector(a, b, 0, 1, 2, 3, 4, 5, 6, 7);
}

// Samples of two pixels to lanes and back. The compiler takes vectors of samples apart one by one, so that it is told
// how. What is narrowed fits.
#if defined(__SSE2__)
inline Eight Widened(__m128i samples, uint8_t) {
#if defined(__AVX2__)
    return reinterpret_cast<Eight>(_mm256_cvtepu8_epi32(samples));
#else
    const __m128i words = _mm_unpacklo_epi8(samples, _mm_setzero_si128());
    return Both(reinterpret_cast<Four>(_mm_unpacklo_epi16(words, _mm_setzero_si128())),
                reinterpret_cast<Four>(_mm_unpackhi_epi16(words, _mm_setzero_si128())));
#endif
}
inline Eight Widened(__m128i samples, uint16_t) {
#if defined(__AVX2__)
    return reinterpret_cast<Eight>(_mm256_cvtepu16_epi32(samples));
#else
    return Both(reinterpret_cast<Four>(_mm_unpacklo_epi16(samples, _mm_setzero_si128())),
                reinterpret_cast<Four>(_mm_unpackhi_epi16(samples, _mm_setzero_si128())));
#endif
}
// The low words of the lanes, as they are.
inline __m128i LowWords(Eight values) {
    const auto a = reinterpret_cast<__m128i>(__builtin_shufflevector(values, values, 0, 1, 2, 3));
    const auto b = reinterpret_cast<__m128i>(__builtin_shufflevector(values, values, 4, 5, 6, 7));
    const auto extended = [](__m128i v) { return _mm_srai_epi32(_mm_slli_epi32(v, 16), 16); };
    return _mm_packs_epi32(extended(a), extended(b));
}
inline __m128i Narrowed(Eight values, uint8_t) {
    const __m128i words = LowWords(values);
    return _mm_packus_epi16(words, words);
}
inline __m128i Narrowed(Eight values, uint16_t) {
    return LowWords(values);
}
#endif

// A form reads the channels of a pixel of a row into lanes, where those that it has not may hold anything, and writes
// lanes as a pixel of the result. Overrun is how many bytes behind a pixel are read with it; what is written behind
// one, in WriteWide and CopyWide, is as much. Scale is what samples are shifted by while a spline works on them, Most
// the largest value there.

template <typename Sample, int32_t channels> struct WholeForm {
    static constexpr int32_t Scale = 0, Most = static_cast<Sample>(-1);
    static constexpr size_t Bytes = sizeof(Sample) * static_cast<size_t>(channels), TargetBytes = Bytes;
    static constexpr size_t Wide = channels == 3 ? sizeof(Sample) * 4 : Bytes, Overrun = Wide - Bytes;

    typedef Sample Samples __attribute__((vector_size(sizeof(Sample) * 4)));
    typedef Sample ManySamples __attribute__((vector_size(sizeof(Sample) * 8)));
    // A pixel's samples in one number, and two of them: so that they go from memory to lanes without a detour.
    using Word = std::conditional_t<sizeof(Sample) == 1, uint32_t, uint64_t>;
    typedef Word PixelWords __attribute__((vector_size(sizeof(Word) * 2)));

    static Word PixelWord(const uint8_t* pixel) {
        Word word = 0;
        std::memcpy(&word, pixel, Wide);
        return word;
    }

    static const uint8_t* At(const uint8_t* row, ptrdiff_t x) {
        return row + x * static_cast<ptrdiff_t>(Bytes);
    }

    static Four Read(const uint8_t* row, ptrdiff_t x, size_t bytes = Bytes) {
        Samples samples = {};
        std::memcpy(&samples, At(row, x), bytes);
        return __builtin_convertvector(samples, Four);
    }
    static Eight ReadWide(const uint8_t* rowA, ptrdiff_t xA, const uint8_t* rowB, ptrdiff_t xB) {
        const Word a = PixelWord(At(rowA, xA)), b = PixelWord(At(rowB, xB));
#if defined(__SSE2__)
        if constexpr (sizeof(Sample) == 1)
            return Widened(_mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int32_t>(a)),
                                              _mm_cvtsi32_si128(static_cast<int32_t>(b))),
                           Sample{});
        else
            return Widened(_mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(&a)),
                                              _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&b))),
                           Sample{});
#else
        return __builtin_convertvector(reinterpret_cast<ManySamples>(PixelWords{a, b}), Eight);
#endif
    }
    // The four pixels from x on of two rows. Up to four bytes behind them may be read.
    static void ReadFour(const uint8_t* rowA, const uint8_t* rowB, ptrdiff_t x, Eight (&pixels)[4]) {
#if defined(__AVX2__)
        if constexpr (sizeof(Sample) == 1 && channels > 1) {
            const auto load = [](const uint8_t* bytes) {
                return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
            };
            const __m256i rows = _mm256_set_m128i(load(At(rowB, x)), load(At(rowA, x)));
            constexpr char none = -128, step = channels;
            for (char i = 0; i < 4; ++i) {
                const auto at = [i](char channel) { return static_cast<char>(i * step + channel); };
                const __m128i places =
                    _mm_setr_epi8(at(0), none, none, none, at(1), none, none, none, at(2), none, none, none,
                                  channels > 3 ? at(3) : none, none, none, none);
                pixels[static_cast<size_t>(i)] =
                    reinterpret_cast<Eight>(_mm256_shuffle_epi8(rows, _mm256_broadcastsi128_si256(places)));
            }
            return;
        }
#endif
        for (ptrdiff_t i = 0; i < 4; ++i)
            pixels[i] = ReadWide(rowA, x + i, rowB, x + i);
    }
    static void Write(uint8_t* target, Four values) {
        const Samples samples = __builtin_convertvector(values, Samples);
        std::memcpy(target, &samples, Bytes);
    }
    static void WriteWide(uint8_t* target, Eight values) {
#if defined(__SSE2__)
        const __m128i samples = Narrowed(values, Sample{});
        uint8_t bytes[16];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), samples);
        std::memcpy(target, bytes, Wide);
        std::memcpy(target + Bytes, bytes + sizeof(Samples), Wide);
#else
        const auto words = reinterpret_cast<PixelWords>(__builtin_convertvector(values, ManySamples));
        const Word a = words[0], b = words[1];
        std::memcpy(target, &a, Wide);
        std::memcpy(target + Bytes, &b, Wide);
#endif
    }
    static void Copy(uint8_t* target, const uint8_t* row, ptrdiff_t x) {
        std::memcpy(target, At(row, x), Bytes);
    }
    static void CopyWide(uint8_t* target, const uint8_t* row, ptrdiff_t x) {
        std::memcpy(target, At(row, x), Wide);
    }
};

// What forms have in common whose pixels are taken one by one.
template <class Form> struct SingleForm {
    static constexpr size_t Overrun = 0, Wide = 2, TargetBytes = 2;

    static Eight ReadWide(const uint8_t* rowA, ptrdiff_t xA, const uint8_t* rowB, ptrdiff_t xB) {
        return Both(Form::Read(rowA, xA), Form::Read(rowB, xB));
    }
    static void ReadFour(const uint8_t* rowA, const uint8_t* rowB, ptrdiff_t x, Eight (&pixels)[4]) {
        for (ptrdiff_t i = 0; i < 4; ++i)
            pixels[i] = ReadWide(rowA, x + i, rowB, x + i);
    }
    static void WriteWide(uint8_t* target, Eight values) {
        Form::Write(target, __builtin_shufflevector(values, values, 0, 1, 2, 3));
        Form::Write(target + TargetBytes, __builtin_shufflevector(values, values, 4, 5, 6, 7));
    }
    static void CopyWide(uint8_t* target, const uint8_t* row, ptrdiff_t x) { Form::Copy(target, row, x); }
};

// Three channels of 5 bits, widened to 8. The top bit does not come along.
struct Colour16Form : SingleForm<Colour16Form> {
    static constexpr int32_t Scale = 0, Most = 255;

    static uint32_t Word(const uint8_t* row, ptrdiff_t x) {
        uint16_t word;
        std::memcpy(&word, row + x * 2, 2);
        return word;
    }
    static Four Read(const uint8_t* row, ptrdiff_t x) {
        const auto word = static_cast<int32_t>(Word(row, x));
        const Four fives = {word & 31, word >> 5 & 31, word >> 10 & 31, 0};
        return fives << 3 | fives >> 2;
    }
    static void Write(uint8_t* target, Four v) {
        const auto word = static_cast<uint16_t>((v[2] & 248) << 7 | (v[1] & 248) << 2 | v[0] >> 3);
        std::memcpy(target, &word, 2);
    }
    static void Copy(uint8_t* target, const uint8_t* row, ptrdiff_t x) {
        std::memcpy(target, row + x * 2, 2);
    }
};

// Two pixels in three bytes; a word in the result.
struct Gray12Form : SingleForm<Gray12Form> {
    static constexpr int32_t Scale = 4, Most = 65535;

    static uint32_t Value(const uint8_t* row, ptrdiff_t x) {
        const uint8_t* const pair = row + (x >> 1) * 3 + (x & 1);
        return (pair[0] | static_cast<uint32_t>(pair[1]) << 8) >> (x & 1) * 4 & 0xFFF;
    }
    static Four Read(const uint8_t* row, ptrdiff_t x) {
        return Four{static_cast<int32_t>(Value(row, x)), 0, 0, 0};
    }
    static void Write(uint8_t* target, Four values) {
        const auto word = static_cast<uint16_t>(values[0]);
        std::memcpy(target, &word, 2);
    }
    static void Copy(uint8_t* target, const uint8_t* row, ptrdiff_t x) {
        const auto word = static_cast<uint16_t>(Value(row, x));
        std::memcpy(target, &word, 2);
    }
};

// Fields of 1 to 7 bits from the top of each byte; a byte in the result. They are only copied.
struct BitsForm {
    static constexpr size_t Overrun = 3, TargetBytes = 1;

    static uint8_t Value(const uint8_t* row, ptrdiff_t x, int32_t bits) {
        const ptrdiff_t first = x * bits;
        const auto bit = static_cast<int32_t>(first & 7);
        const uint8_t* const byte = row + (first >> 3);
        const uint32_t pair = static_cast<uint32_t>(byte[0]) << 8 | (bit + bits > 8 ? byte[1] : 0u);
        return static_cast<uint8_t>(pair >> (16 - bit - bits) & ((1u << bits) - 1));
    }
};

} // namespace
} // namespace zkr::kernels
