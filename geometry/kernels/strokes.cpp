// Black pixels counted side by side, a word of pixels at a time.
#include "geometry/kernels/strokes.h"

#include "geometry/kernels/samples.h"
#include "kernels/family.h"

#include <bit>

namespace zkr::kernels {

namespace {

// A carry runs up through the planes.
template <uint32_t planes>
void Add(const uint8_t* row, uint32_t flipped, size_t words, const CountedRows& counts) {
    uint8_t* const __restrict any = counts.Any;
    uint8_t* const __restrict all = counts.All;
    uint8_t* plane[planes];
    for (uint32_t p = 0; p < planes; ++p)
        plane[p] = counts.Planes[p];
    for (size_t i = 0; i < words; ++i) {
        const uint32_t black = Load<uint32_t>(row, i) ^ flipped;
        Store<uint32_t>(any, i, Load<uint32_t>(any, i) | black);
        Store<uint32_t>(all, i, Load<uint32_t>(all, i) & black);
        uint32_t carry = black;
        for (uint32_t p = 0; p < planes; ++p) {
            const uint32_t bit = Load<uint32_t>(plane[p], i);
            Store<uint32_t>(plane[p], i, bit ^ carry);
            carry &= bit;
        }
    }
}

// The pixels from one on, the first of them in the top bit; 57 of them are whole.
uint64_t PixelsFrom(const uint8_t* row, uint32_t pixel) {
    return __builtin_bswap64(Load<uint64_t>(row + pixel / 8, 0)) << pixel % 8;
}

// Compares some cells of at most 57 pixels together.
struct CellGroup {
    const CountedRows& Counts;
    uint32_t Planes;
    const uint32_t* Bounds;
    uint32_t Threshold;

    uint32_t Compare(size_t first, size_t cells) const {
        const uint32_t begin = Bounds[first], width = Bounds[first + cells] - begin;
        const uint64_t whole = ~uint64_t{0} << (64 - width);
        const uint32_t ones = (1u << cells) - 1;
        if ((PixelsFrom(Counts.Any, begin) & whole) == 0) return 0;
        if ((PixelsFrom(Counts.All, begin) & whole) == whole) return ones;
        uint64_t bits[MostPlanes];
        for (uint32_t p = 0; p < Planes; ++p)
            bits[p] = PixelsFrom(Counts.Planes[p], begin);
        uint32_t made = 0;
        for (size_t k = first; k < first + cells; ++k) {
            const uint32_t from = Bounds[k] - begin, pixels = Bounds[k + 1] - Bounds[k];
            uint32_t black = 0;
            for (uint32_t p = 0; p < Planes; ++p)
                black += static_cast<uint32_t>(std::popcount(bits[p] << from >> (64 - pixels))) << p;
            made = made << 1 | (black >= Threshold);
        }
        return made;
    }
};

void Compare(const CountedRows& counts, uint32_t planes, const uint32_t* bounds, size_t cells,
             uint32_t threshold, uint8_t* target) {
    const CellGroup group = {counts, planes, bounds, threshold};
    for (size_t first = 0; first < cells; first += 8) {
        const size_t now = cells - first < 8 ? cells - first : 8;
        uint32_t made = 0;
        if (bounds[first + now] - bounds[first] <= WidestCell)
            made = group.Compare(first, now);
        else
            for (size_t k = 0; k < now; ++k)
                made = made << 1 | group.Compare(first + k, 1);
        *target++ = static_cast<uint8_t>(made << (8 - now));
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
    {Add<1>, Add<2>, Add<3>, Add<4>, Add<5>, Add<6>, Add<7>, Add<8>}, Compare, Double};

} // namespace zkr::kernels
