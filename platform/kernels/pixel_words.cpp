#include "platform/kernels/pixel_words.h"

#include "kernels/family.h"

#include <cstring>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

template <int bits> uint32_t ValueAt(const uint8_t* row, int64_t x) {
    if constexpr (bits == 1) return row[x >> 3] >> (~x & 7) & 1u;
    if constexpr (bits == 4) return row[x >> 1] >> ((~x & 1) * 4) & 15u;
    if constexpr (bits == 8) return row[x];
    if constexpr (bits == 16) return static_cast<uint32_t>(row[2 * x] | row[2 * x + 1] << 8);
    if constexpr (bits == 24)
        return static_cast<uint32_t>(row[3 * x] | row[3 * x + 1] << 8 | row[3 * x + 2] << 16);
    if constexpr (bits == 32) {
        uint32_t word;
        std::memcpy(&word, row + 4 * x, sizeof word);
        return word;
    }
}

void WidenPlain(const uint8_t* from, int64_t count, uint8_t* out) {
    for (int64_t i = 0; i < count; ++i) {
        const uint32_t word = ValueAt<24>(from, i);
        std::memcpy(out + 4 * i, &word, sizeof word);
    }
}

#if defined(__AVX2__)
// Eight pixels at a time; the second load reaches four bytes in front of its own.
void Widen24(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t*) {
    const __m256i spread =
        _mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1, // from byte 0
                         4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1);
    int64_t i = 0;
    for (; i + 8 <= count; i += 8) {
        const auto* bytes = from + 3 * i;
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 8));
        const __m256i words = _mm256_shuffle_epi8(_mm256_set_m128i(high, low), spread);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 4 * i), words);
    }
    WidenPlain(from + 3 * i, count - i, out + 4 * i);
}
#else
// Four pixels are three words.
void Widen24(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t*) {
    int64_t i = 0;
    for (; i + 4 <= count; i += 4) {
        uint32_t words[3];
        std::memcpy(words, from + 3 * i, sizeof words);
        const uint32_t pixels[4] = {words[0] & 0xFFFFFF, (words[0] >> 24 | words[1] << 8) & 0xFFFFFF,
                                    (words[1] >> 16 | words[2] << 16) & 0xFFFFFF, words[2] >> 8};
        std::memcpy(out + 4 * i, pixels, sizeof pixels);
    }
    WidenPlain(from + 3 * i, count - i, out + 4 * i);
}
#endif

void NarrowPlain(const uint8_t* from, int64_t count, uint8_t* out) {
    for (int64_t i = 0; i < count; ++i)
        std::memcpy(out + 3 * i, from + 4 * i, 3);
}

#if defined(__AVX2__)
// Four pixels at a time; each store reaches over a third of the next one, which comes after it.
void Narrow32(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t*) {
    const __m128i gather = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    int64_t i = 0;
    for (; i + 6 <= count; i += 4) {
        const __m128i words = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 4 * i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 3 * i), _mm_shuffle_epi8(words, gather));
    }
    NarrowPlain(from + 4 * i, count - i, out + 3 * i);
}
#else
void Narrow32(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t*) {
    int64_t i = 0;
    for (; i + 4 <= count; i += 4) {
        uint32_t pixels[4];
        std::memcpy(pixels, from + 4 * i, sizeof pixels);
        const uint32_t words[3] = {(pixels[0] & 0xFFFFFF) | pixels[1] << 24,
                                   (pixels[1] >> 8 & 0xFFFF) | pixels[2] << 16,
                                   (pixels[2] >> 16 & 0xFF) | pixels[3] << 8};
        std::memcpy(out + 3 * i, words, sizeof words);
    }
    NarrowPlain(from + 4 * i, count - i, out + 3 * i);
}
#endif

void Look8(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map) {
    for (int64_t i = 0; i < count; ++i)
        out[i] = static_cast<uint8_t>(map[from[i]]);
}
// The fourth byte of each store is the next pixel's, but for the last one.
void Look24(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map) {
    for (int64_t i = 0; i + 1 < count; ++i)
        std::memcpy(out + 3 * i, &map[from[i]], 4);
    if (count > 0) std::memcpy(out + 3 * (count - 1), &map[from[count - 1]], 3);
}
void Look32(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map) {
    for (int64_t i = 0; i < count; ++i)
        std::memcpy(out + 4 * i, &map[from[i]], 4);
}

template <int bits>
void Load(const uint8_t* row, int64_t x, int count, const uint32_t* map, uint32_t* words) {
    if constexpr (bits == 24) return Widen24(row + 3 * x, count, reinterpret_cast<uint8_t*>(words), map);
    for (int i = 0; i < count; ++i) {
        const uint32_t value = ValueAt<bits>(row, x + i);
        words[i] = bits <= 8 ? map[value] : value;
    }
}

template <int bits>
void Pick(const uint8_t* row, const int32_t* columns, int count, const uint32_t* map, uint32_t* words) {
    for (int i = 0; i < count; ++i) {
        const uint32_t value = ValueAt<bits>(row, columns[i]);
        words[i] = bits <= 8 ? map[value] : value;
    }
}

template <int bits> void StoreBits(const uint32_t* words, int count, uint8_t* out, int firstBit) {
    constexpr int Each = 8 / bits;
    std::memset(out, 0, static_cast<size_t>(firstBit + count * bits + 7) / 8);
    int i = 0, bit = firstBit;
    const auto storeOne = [&] {
        out[bit >> 3] = static_cast<uint8_t>(out[bit >> 3] | words[i] << (8 - bits - (bit & 7)));
        ++i;
        bit += bits;
    };
    while (i < count && bit % 8 != 0)
        storeOne();
    for (; i + Each <= count; i += Each, bit += 8) {
        uint32_t byte = 0;
        for (int k = 0; k < Each; ++k)
            byte = byte << bits | words[i + k];
        out[bit >> 3] = static_cast<uint8_t>(byte);
    }
    while (i < count)
        storeOne();
}

template <int bits> void Store(const uint32_t* words, int count, uint8_t* out, int firstBit) {
    if constexpr (bits < 8) return StoreBits<bits>(words, count, out, firstBit);
    if constexpr (bits == 24) return Narrow32(reinterpret_cast<const uint8_t*>(words), count, out, nullptr);
    if constexpr (bits == 32) std::memcpy(out, words, static_cast<size_t>(count) * sizeof *words);
    if constexpr (bits != 8 && bits != 16) return;
    for (int i = 0; i < count; ++i) {
        if constexpr (bits == 8) {
            out[i] = static_cast<uint8_t>(words[i]);
        } else {
            const auto pixel = static_cast<uint16_t>(words[i]);
            std::memcpy(out + 2 * i, &pixel, sizeof pixel);
        }
    }
}

void Expand15(uint32_t* words, int count) {
    for (int i = 0; i < count; ++i) {
        const uint32_t high = (words[i] & 0x7C00) << 9 | (words[i] & 0x03E0) << 6 | (words[i] & 0x001F) << 3;
        words[i] = high | (high >> 5 & 0x070707);
    }
}
void Shorten15(uint32_t* words, int count) {
    for (int i = 0; i < count; ++i)
        words[i] = (words[i] >> 9 & 0x7C00) | (words[i] >> 6 & 0x03E0) | (words[i] >> 3 & 0x001F);
}
void DropFourth(uint32_t* words, int count) {
    for (int i = 0; i < count; ++i)
        words[i] &= 0xFFFFFF;
}
void Match(uint32_t* words, int count, uint32_t matched) {
    for (int i = 0; i < count; ++i)
        words[i] = words[i] == matched ? 1 : 0;
}

uint64_t Choose(uint64_t zero, uint64_t one, uint64_t by) {
    return zero ^ ((zero ^ one) & by);
}

void Operate(uint8_t* destination, const uint8_t* source, const uint8_t* pattern, size_t bytes,
             const RasterEffect* effects) {
    const RasterEffect e[4] = {effects[0], effects[1], effects[2], effects[3]};
    const auto part = [&](size_t at, size_t size) {
        uint64_t d = 0, s = 0, p = 0;
        std::memcpy(&d, destination + at, size);
        std::memcpy(&s, source + at, size);
        std::memcpy(&p, pattern + at, size);
        const uint64_t keep = Choose(Choose(e[0].Keep, e[1].Keep, s), Choose(e[2].Keep, e[3].Keep, s), p);
        const uint64_t flip = Choose(Choose(e[0].Flip, e[1].Flip, s), Choose(e[2].Flip, e[3].Flip, s), p);
        d = (d & keep) ^ flip;
        std::memcpy(destination + at, &d, size);
    };
    size_t at = 0;
    for (; at + 8 <= bytes; at += 8)
        part(at, 8);
    if (at < bytes) part(at, bytes - at);
}

} // namespace

template <>
constinit const PixelWordKernels Compiled<PixelWordKernels, ThisSet>::Table = {
    {Load<1>, Load<4>, Load<8>, Load<16>, Load<24>, Load<32>},
    {Pick<1>, Pick<4>, Pick<8>, Pick<16>, Pick<24>, Pick<32>},
    {Store<1>, Store<4>, Store<8>, Store<16>, Store<24>, Store<32>},
    Expand15,
    Shorten15,
    DropFourth,
    Match,
    Widen24,
    Narrow32,
    Look8,
    Look24,
    Look32,
    Operate,
};

} // namespace zkr::kernels
