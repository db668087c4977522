// Black pixels counted side by side, a word of pixels at a time.
#include "geometry/kernels/strokes.h"

#include "geometry/kernels/samples.h"
#include "kernels/family.h"

#include <bit>
#if defined(__BMI2__) && defined(__x86_64__)
#include <immintrin.h>
#endif

namespace zkr::kernels {

namespace {

#if defined(__AVX2__)
typedef uint32_t Words __attribute__((vector_size(32)));
#else
typedef uint32_t Words __attribute__((vector_size(16)));
#endif

// A carry runs up through the planes.
template <class Word, uint32_t planes>
void CountWord(const uint8_t* const* rows, size_t count, Word flipped, size_t byte,
               const CountedRows& counts) {
    Word plane[planes] = {};
    Word any = {}, all = ~any;
    for (size_t k = 0; k < count; ++k) {
        const Word black = Load<Word>(rows[k] + byte, 0) ^ flipped;
        any |= black;
        all &= black;
        Word carry = black;
        for (uint32_t p = 0; p < planes; ++p) {
            const Word bit = plane[p];
            plane[p] = bit ^ carry;
            carry &= bit;
        }
    }
    const auto set = [byte](uint8_t* to, Word word) { std::memcpy(to + byte, &word, sizeof word); };
    for (uint32_t p = 0; p < planes; ++p)
        set(counts.Planes[p], plane[p]);
    set(counts.Any, any);
    set(counts.All, all);
}

template <uint32_t planes>
void Count(const uint8_t* const* rows, size_t count, uint32_t flipped, size_t words,
           const CountedRows& counted) {
    const CountedRows counts = counted; // which no store can change
    const Words all = Words{} + flipped;
    const size_t bytes = words * 4;
    size_t i = 0;
    for (; i + sizeof(Words) <= bytes; i += sizeof(Words))
        CountWord<Words, planes>(rows, count, all, i, counts);
    for (; i < bytes; i += 4)
        CountWord<uint32_t, planes>(rows, count, flipped, i, counts);
}

// The pixels from one on, the first of them in the top bit; 57 of them are whole.
uint64_t PixelsFrom(const uint8_t* row, uint32_t pixel) {
    return __builtin_bswap64(Load<uint64_t>(row + pixel / 8, 0)) << pixel % 8;
}

uint32_t Black(uint32_t black, uint32_t threshold) {
    return black >= threshold ? 1 : 0;
}

// Compares cells of at most 57 pixels together, one by one.
template <uint32_t planes> struct EachCell {
    const uint32_t* Bounds;
    uint32_t Threshold;

    uint32_t operator()(const uint64_t (&bits)[planes], size_t first, size_t cells) const {
        uint32_t made = 0;
        for (size_t k = first; k < first + cells; ++k) {
            const uint32_t from = Bounds[k] - Bounds[first], right = 64 - (Bounds[k + 1] - Bounds[k]);
            uint32_t black = 0;
            for (uint32_t p = 0; p < planes; ++p)
                black += static_cast<uint32_t>(std::popcount(bits[p] << from >> right)) << p;
            made = made << 1 | Black(black, Threshold);
        }
        return made;
    }
};

#if defined(__BMI2__) && defined(__x86_64__)

// How many bits are 1 in each byte.
uint64_t BitsOfBytes(uint64_t x) {
    x -= x >> 1 & 0x5555555555555555;
    x = (x & 0x3333333333333333) + (x >> 2 & 0x3333333333333333);
    return (x + (x >> 4)) & 0x0F0F0F0F0F0F0F0F;
}

// Eight cells of at most eight pixels, each spread to a byte of its own.
template <uint32_t planes> struct SpreadCells {
    const uint32_t* Bounds;
    const uint64_t* Spreads;
    uint32_t Threshold;

    uint32_t operator()(const uint64_t (&bits)[planes], size_t first, size_t cells) const {
        constexpr uint64_t each = 0x0101010101010101, top = each << 7;
        const uint32_t right = 64 - (Bounds[first + cells] - Bounds[first]);
        uint64_t black = each * (0x80 - Threshold);
        for (uint32_t p = 0; p < planes; ++p)
            black += BitsOfBytes(_pdep_u64(bits[p] >> right, Spreads[first / 8])) << p;
        return static_cast<uint32_t>(_pext_u64(black, top));
    }
};

#endif

template <uint32_t planes, class Cells>
uint32_t CompareCells(const CountedRows& counts, const uint32_t* bounds, size_t first, size_t cells,
                      const Cells& each) {
    const uint32_t begin = bounds[first], width = bounds[first + cells] - begin;
    const uint64_t whole = ~uint64_t{0} << (64 - width);
    if ((PixelsFrom(counts.Any, begin) & whole) == 0) return 0;
    if ((PixelsFrom(counts.All, begin) & whole) == whole) return (1u << cells) - 1;
    uint64_t bits[planes];
    for (uint32_t p = 0; p < planes; ++p)
        bits[p] = PixelsFrom(counts.Planes[p], begin);
    return each(bits, first, cells);
}

template <uint32_t planes>
void Compare(const CountedRows& counted, const CountedCells& cells, uint32_t threshold, uint8_t* target) {
    const CountedRows counts = counted; // which no store can change
    const uint32_t* const bounds = cells.Bounds;
    const EachCell<planes> each = {bounds, threshold};
    size_t first = 0;
#if defined(__BMI2__) && defined(__x86_64__)
    const SpreadCells<planes> spread = {bounds, cells.Spreads, threshold};
    const bool isShort = cells.Spreads != nullptr && threshold < 0x80 && planes <= 3;
    for (; isShort && first + 8 <= cells.Count; first += 8)
        *target++ = static_cast<uint8_t>(CompareCells<planes>(counts, bounds, first, 8, spread));
#endif
    for (; first + 8 <= cells.Count && bounds[first + 8] - bounds[first] <= WidestCell; first += 8)
        *target++ = static_cast<uint8_t>(CompareCells<planes>(counts, bounds, first, 8, each));
    for (; first < cells.Count; first += 8) {
        uint32_t made = 0;
        for (size_t k = first; k < first + 8; ++k)
            made = made << 1 | (k < cells.Count ? CompareCells<planes>(counts, bounds, k, 1, each) : 0);
        *target++ = static_cast<uint8_t>(made);
    }
}

constexpr uint16_t Doubled(uint32_t byte) {
    uint32_t made = 0;
    for (uint32_t bit = 0; bit < 8; ++bit)
        made |= (byte >> bit & 1) * 3 << 2 * bit;
    return static_cast<uint16_t>(made >> 8 | made << 8);
}

struct DoubledBytes {
    uint16_t Of[256];
};
constexpr DoubledBytes AllDoubled = [] {
    DoubledBytes table = {};
    for (uint32_t byte = 0; byte < 256; ++byte)
        table.Of[byte] = Doubled(byte);
    return table;
}();

void Double(const uint8_t* source, uint8_t* target, size_t bytes) {
    for (size_t i = 0; i < bytes; ++i)
        Store<uint16_t>(target, i, AllDoubled.Of[source[i]]);
}

} // namespace

template <>
constinit const StrokeKernels Compiled<StrokeKernels, ThisSet>::Table = {
    {Count<1>, Count<2>, Count<3>, Count<4>, Count<5>, Count<6>, Count<7>, Count<8>},
    {Compare<1>, Compare<2>, Compare<3>, Compare<4>, Compare<5>, Compare<6>, Compare<7>, Compare<8>},
    Double};

} // namespace zkr::kernels
