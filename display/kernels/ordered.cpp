#include "display/kernels/ordered.h"

#include "kernels/family.h"

#include <cstring>

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

constexpr size_t Group = ThresholdSide; // pixels

uint32_t NibbleOf(const uint8_t* pixel, uint8_t threshold, bool redFirst) {
    const uint32_t first = threshold < pixel[0], green = threshold < pixel[1], third = threshold < pixel[2];
    const uint32_t bits = redFirst ? first | green << 1 | third << 2 : third | green << 1 | first << 2;
    return bits | (bits != 0 ? 8u : 0u);
}

void PlainNibbles(const uint8_t* pixels, const uint8_t (&thresholds)[Group], bool redFirst, uint8_t* target,
                  size_t count) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t nibble = NibbleOf(pixels + i * 3, thresholds[i % Group], redFirst);
        target[i / 2] = static_cast<uint8_t>(i % 2 == 0 ? nibble << 4 : target[i / 2] | nibble);
    }
}

#if defined(__AVX2__)

void Nibbles(const uint8_t* pixels, const uint8_t (&thresholds)[Group], bool redFirst, uint8_t* target,
             size_t count) {
    uint8_t pattern[32] = {};
    for (size_t i = 0; i < Group * 3; ++i)
        pattern[i] = thresholds[i / 3];
    const __m256i below = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pattern));
    constexpr uint32_t ones = 0x11111111;
    constexpr size_t beyond = 3; // pixels that a load reads behind its group
    size_t done = 0;
    for (; done + Group + beyond <= count; done += Group) {
        const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels + done * 3));
        const __m256i isBelow = _mm256_cmpeq_epi8(_mm256_subs_epu8(bytes, below), _mm256_setzero_si256());
        const auto isAbove = ~static_cast<uint32_t>(_mm256_movemask_epi8(isBelow));
        // A nibble for each pixel, the first channel in its lowest bit.
        const uint32_t spread = _pdep_u32(isAbove, 7 * ones);
        const uint32_t first = spread & ones, green = spread & 2 * ones, third = spread >> 2 & ones;
        uint32_t nibbles = redFirst ? spread : third | green | first << 2;
        nibbles |= (first | green >> 1 | third) << 3;
        nibbles = (nibbles & 0x0F0F0F0F) << 4 | (nibbles >> 4 & 0x0F0F0F0F);
        std::memcpy(target + done / 2, &nibbles, sizeof nibbles);
    }
    PlainNibbles(pixels + done * 3, thresholds, redFirst, target + done / 2, count - done);
}

#else

void Nibbles(const uint8_t* pixels, const uint8_t (&thresholds)[Group], bool redFirst, uint8_t* target,
             size_t count) {
    PlainNibbles(pixels, thresholds, redFirst, target, count);
}

#endif

uint8_t ByteOf(const uint8_t* pixel, const uint8_t (&tables)[3][256]) {
    return static_cast<uint8_t>(tables[0][pixel[0]] + tables[1][pixel[1]] + tables[2][pixel[2]]);
}

void Bytes(const uint8_t* pixels, const ThresholdTables& tables, uint8_t* target, size_t count) {
    size_t done = 0;
    for (; done + Group <= count; done += Group) {
        for (size_t i = 0; i < Group; ++i)
            target[done + i] = ByteOf(pixels + (done + i) * 3, tables[i]);
    }
    for (; done < count; ++done)
        target[done] = ByteOf(pixels + done * 3, tables[done % Group]);
}

} // namespace

template <> constinit const OrderedKernels Compiled<OrderedKernels, ThisSet>::Table = {Nibbles, Bytes};

} // namespace zkr::kernels
