// Packed pixels of 1 to 7 and 12 bits to and from bytes and words, 32 at a time for AVX2. The layouts are
// told in packing_plain.h.
#pragma once

#include "colour/kernels/row_kernel.h"
#include "colour/kernels/units_avx2.h"

namespace zkr::kernels {
namespace {

// A map of up to 256 bytes, looked up 16 entries at a time: each index is moved so that only those that lie
// in the part being looked up stay below 0x80, and all others give zero.
template <size_t entries> struct ByteMap {
    static constexpr size_t parts = (entries + 15) / 16;
    __m256i part[parts];
    explicit ByteMap(const void* map) {
        uint8_t bytes[parts * 16] = {};
        std::memcpy(bytes, map, entries);
        for (size_t i = 0; i < parts; ++i)
            part[i] = _mm256_broadcastsi128_si256(LoadHalf(bytes + i * 16));
    }
    __m256i operator()(__m256i indices) const {
        __m256i found = _mm256_setzero_si256();
        for (size_t i = 0; i < parts; ++i) {
            const __m256i moved = _mm256_sub_epi8(indices, _mm256_set1_epi8(static_cast<char>(i * 16)));
            const __m256i inPart = _mm256_adds_epu8(moved, _mm256_set1_epi8(0x70));
            found = _mm256_or_si256(found, _mm256_shuffle_epi8(part[i], inPart));
        }
        return found;
    }
};

template <size_t bits> struct UnpackStep {
    static constexpr size_t sourceBits = bits;
    static constexpr size_t targetBits = 8;
    static constexpr size_t reach = 64;

    // Each pixel is moved to the top of the big-endian pair of bytes that holds it, and down from there.
    static constexpr Places pairPlaces = MakePlaces([](size_t i) {
        const size_t first = i % 16 / 2 * bits / 8;
        const size_t byte = i % 2 == 0 ? first + 1 : first;
        return byte < bits ? byte : None;
    });
    static constexpr Places factorBytes =
        MakePlaces([](size_t i) { return i % 2 == 0 ? 1u << (i % 16 / 2 * bits % 8) : 0u; });
    __m256i pairs = Load(pairPlaces);
    __m256i factors = Load(factorBytes);
    ByteMap<size_t{1} << bits> map;

    explicit UnpackStep(const RowParameters& p) : map(p.Table) {}

    __m256i Sixteen(const uint8_t* first, const uint8_t* second) const {
        const __m256i packed = _mm256_setr_m128i(LoadQuarter(first), LoadQuarter(second));
        const __m256i top = _mm256_mullo_epi16(_mm256_shuffle_epi8(packed, pairs), factors);
        return _mm256_srli_epi16(top, 16 - bits);
    }
    void operator()(uint8_t* target, const uint8_t* source) const {
        const __m256i even = Sixteen(source, source + 2 * bits);
        const __m256i odd = Sixteen(source + bits, source + 3 * bits);
        Store(target, map(_mm256_packus_epi16(even, odd)));
    }
};

template <> struct UnpackStep<1> {
    static constexpr size_t sourceBits = 1;
    static constexpr size_t targetBits = 8;
    static constexpr size_t reach = UnitPixels;

    __m256i zero, one;
    static constexpr Places bytePlaces = MakePlaces([](size_t i) { return i / 8; });
    static constexpr Places bitBytes = MakePlaces([](size_t i) { return 0x80u >> i % 8; });
    __m256i spread = Load(bytePlaces);
    __m256i bit = Load(bitBytes);

    explicit UnpackStep(const RowParameters& p)
        : zero(_mm256_set1_epi8(static_cast<const char*>(p.Table)[0])),
          one(_mm256_set1_epi8(static_cast<const char*>(p.Table)[1])) {}

    void operator()(uint8_t* target, const uint8_t* source) const {
        int packed;
        std::memcpy(&packed, source, 4);
        const __m256i bits = _mm256_and_si256(_mm256_shuffle_epi8(_mm256_set1_epi32(packed), spread), bit);
        Store(target, _mm256_blendv_epi8(zero, one, _mm256_cmpeq_epi8(bits, bit)));
    }
};

template <size_t bits> struct PackStep {
    static constexpr size_t sourceBits = 8;
    static constexpr size_t targetBits = bits;
    static constexpr size_t reach = 64;

    static constexpr Places reversed =
        MakePlaces([](size_t i) { return i % 16 < 2 * bits ? i % 16 / bits * 8 + 7 - i % 16 % bits : None; });
    __m256i byteFactors = _mm256_set1_epi16(1 << bits | 1 << 8);
    __m256i wordFactors = _mm256_set1_epi32(1 << (2 * bits) | 1 << 16);
    __m256i reverse = Load(reversed);

    explicit PackStep(const RowParameters&) {}

    // Neighbours are joined to pairs, to fours and to eights, which then stand at the top of 64 bits.
    void operator()(uint8_t* target, const uint8_t* source) const {
        const __m256i pairs = _mm256_maddubs_epi16(byteFactors, Load(source));
        const __m256i fours = _mm256_madd_epi16(pairs, wordFactors);
        const __m256i second = _mm256_slli_epi64(_mm256_srli_epi64(fours, 32), 64 - 8 * bits);
        const __m256i eights = _mm256_or_si256(_mm256_slli_epi64(fours, 64 - 4 * bits), second);
        const __m256i bytes = _mm256_shuffle_epi8(eights, reverse);
        constexpr auto storeSixteen = bits > 4 ? StoreHalf : StoreQuarter;
        storeSixteen(target, _mm256_castsi256_si128(bytes));
        storeSixteen(target + 2 * bits, _mm256_extracti128_si256(bytes, 1));
    }
};

template <> struct PackStep<1> {
    static constexpr size_t sourceBits = 8;
    static constexpr size_t targetBits = 1;
    static constexpr size_t reach = UnitPixels;

    static constexpr Places reversed = MakePlaces([](size_t i) { return i % 16 ^ 7; });
    __m256i reverse = Load(reversed);

    explicit PackStep(const RowParameters&) {}

    void operator()(uint8_t* target, const uint8_t* source) const {
        const __m256i bytes = _mm256_shuffle_epi8(Load(source), reverse);
        const int packed = _mm256_movemask_epi8(_mm256_slli_epi16(bytes, 7));
        std::memcpy(target, &packed, 4);
    }
};

struct Unpack12Step {
    static constexpr size_t sourceBits = 12;
    static constexpr size_t targetBits = 16;
    static constexpr size_t reach = UnitPixels;

    // Load24 leaves four bytes before the pixels of the high half.
    static constexpr Places wordPlaces =
        MakePlaces([](size_t i) { return i / 16 * 4 + i % 16 / 4 * 3 + (i % 4 + 1) / 2; });
    __m256i words = Load(wordPlaces);
    __m256i factors = _mm256_set1_epi32(16 | 1 << 16);

    explicit Unpack12Step(const RowParameters&) {}

    void operator()(uint8_t* target, const uint8_t* source) const {
        for (size_t i = 0; i < 2; ++i) {
            const __m256i top =
                _mm256_mullo_epi16(_mm256_shuffle_epi8(Load24(source + i * 24), words), factors);
            Store(target + i * 32, _mm256_srli_epi16(top, 4));
        }
    }
};

struct Pack12Step {
    static constexpr size_t sourceBits = 16;
    static constexpr size_t targetBits = 12;
    static constexpr size_t reach = UnitPixels;

    static constexpr Places bytePlaces =
        MakePlaces([](size_t i) { return i % 16 < 12 ? i % 16 / 3 * 4 + i % 16 % 3 : None; });
    __m256i bytes = Load(bytePlaces);

    explicit Pack12Step(const RowParameters&) {}

    __m256i Sixteen(const uint8_t* source) const {
        const __m256i values = _mm256_and_si256(Load(source), _mm256_set1_epi16(0xFFF));
        return _mm256_shuffle_epi8(_mm256_madd_epi16(values, _mm256_set1_epi32(1 | 4096 << 16)), bytes);
    }
    void operator()(uint8_t* target, const uint8_t* source) const {
        const __m256i first = Sixteen(source);
        const __m256i second = Sixteen(source + 32);
        Store48(target, first, second);
    }
};

struct MapStep {
    static constexpr size_t sourceBits = 8;
    static constexpr size_t targetBits = 8;
    static constexpr size_t reach = UnitPixels;

    ByteMap<256> map;

    explicit MapStep(const RowParameters& p) : map(p.Table) {}
    void operator()(uint8_t* target, const uint8_t* source) const { Store(target, map(Load(source))); }
};

template <size_t bits> constexpr RowKernel Unpack = RunStep<UnpackStep<bits>>;
template <size_t bits> constexpr RowKernel Pack = RunStep<PackStep<bits>>;
constexpr RowKernel Unpack12 = RunStep<Unpack12Step>;
constexpr RowKernel Pack12 = RunStep<Pack12Step>;
constexpr RowKernel MapBytes = RunStep<MapStep>;

} // namespace
} // namespace zkr::kernels
