#include "display/kernels/coverage.h"

#include "kernels/family.h"

#if defined(__AVX2__)
#include <immintrin.h>
#endif

namespace zkr::kernels {
namespace {

#if defined(__AVX2__)

void AddBits(const uint8_t* bits, uint32_t weight, uint32_t* sums, size_t groups) {
    const __m256i places = _mm256_setr_epi32(128, 64, 32, 16, 8, 4, 2, 1);
    const __m256i weights = _mm256_set1_epi32(static_cast<int>(weight));
    for (size_t i = 0; i < groups; ++i) {
        if (bits[i] == 0) continue;
        const __m256i byte = _mm256_set1_epi32(bits[i]);
        const __m256i isSet = _mm256_cmpeq_epi32(_mm256_and_si256(byte, places), places);
        auto* sum = reinterpret_cast<__m256i*>(sums + i * 8);
        _mm256_storeu_si256(sum, _mm256_add_epi32(_mm256_loadu_si256(sum), _mm256_and_si256(isSet, weights)));
    }
}

#else

void AddBits(const uint8_t* bits, uint32_t weight, uint32_t* sums, size_t groups) {
    for (size_t i = 0; i < groups; ++i) {
        const uint32_t byte = bits[i];
        if (byte == 0) continue;
        for (uint32_t bit = 0; bit < 8; ++bit)
            sums[i * 8 + bit] += weight & (0u - (byte >> (7 - bit) & 1));
    }
}

#endif

} // namespace

template <> constinit const CoverageKernels Compiled<CoverageKernels, ThisSet>::Table = {AddBits};

} // namespace zkr::kernels
