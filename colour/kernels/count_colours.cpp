// Looks pixels up in a set of colours.
#include "colour/kernels/colour_set.h"
#include "kernels/family.h"

#include <bit>
#include <cstring>

namespace zkr::kernels {
namespace {

uint32_t IsMissing(const uint32_t* set, uint32_t colour) {
    return ~set[colour >> 5] >> (colour & 31) & 1;
}

template <size_t bytes> uint32_t LoadColour(const uint8_t* pixel) {
    uint32_t colour = 0;
    std::memcpy(&colour, pixel, bytes);
    return colour & 0xFFFFFF;
}

// Groups of four, of which most are known in whole. Nothing is stored into the set, so that no look-up waits
// for another. A pixel is loaded with four bytes as long as another one follows.
template <size_t pixelBytes>
size_t FindNew(const uint8_t* pixels, size_t count, const uint32_t* set, uint16_t* places) {
    constexpr size_t group = 4;
    size_t found = 0, i = 0;
    for (; i + group < count; i += group) {
        uint32_t missing[group];
        uint32_t any = 0;
        for (size_t j = 0; j < group; ++j) {
            missing[j] = IsMissing(set, LoadColour<4>(pixels + (i + j) * pixelBytes));
            any |= missing[j];
        }
        if (any == 0) continue;
        for (size_t j = 0; j < group; ++j) {
            places[found] = static_cast<uint16_t>(i + j);
            found += missing[j];
        }
    }
    for (; i < count; ++i) {
        places[found] = static_cast<uint16_t>(i);
        found += IsMissing(set, LoadColour<3>(pixels + i * pixelBytes));
    }
    return found;
}

// Nothing is asked, so that nothing can be guessed wrong: what is in the set is counted when all are in it.
template <size_t pixelBytes> void AddAll(const uint8_t* pixels, size_t count, uint32_t* set) {
    const auto add = [set](uint32_t colour) { set[colour >> 5] |= 1u << (colour & 31); };
    size_t i = 0;
    for (; i + 1 < count; ++i)
        add(LoadColour<4>(pixels + i * pixelBytes));
    if (i < count) add(LoadColour<3>(pixels + i * pixelBytes));
}

uint32_t CountSet(const uint32_t* set, size_t words) {
    uint32_t count = 0;
    for (size_t i = 0; i < words; ++i)
        count += static_cast<uint32_t>(std::popcount(set[i]));
    return count;
}

} // namespace

template <>
constinit const CountKernels Compiled<CountKernels, ThisSet>::Table = {FindNew<3>, FindNew<4>, AddAll<3>,
                                                                       AddAll<4>, CountSet};

} // namespace zkr::kernels
