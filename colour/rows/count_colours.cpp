// Looks pixels up in a set of colours.
#include "colour/rows/colour_set.h"

#include <cstring>

namespace zkr::rows {
namespace {

uint32_t IsMissing(const uint8_t* set, uint32_t colour) {
    return ~static_cast<uint32_t>(set[colour >> 3]) >> (colour & 7) & 1;
}

template <size_t bytes> uint32_t LoadColour(const uint8_t* pixel) {
    uint32_t colour = 0;
    std::memcpy(&colour, pixel, bytes);
    return colour & 0xFFFFFF;
}

// Groups of four, of which most are known in whole. Nothing is stored into the set, so that no look-up waits
// for another. A pixel is loaded with four bytes as long as another one follows.
template <size_t pixelBytes>
size_t FindNew(const uint8_t* pixels, size_t count, const uint8_t* set, uint16_t* places) {
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

uint32_t AddColour(uint8_t* set, uint32_t colour) {
    const uint32_t missing = IsMissing(set, colour);
    set[colour >> 3] = static_cast<uint8_t>(set[colour >> 3] | 1u << (colour & 7));
    return missing;
}

template <size_t pixelBytes> uint32_t AddAll(const uint8_t* pixels, size_t count, uint8_t* set) {
    constexpr size_t group = 4;
    uint32_t added = 0;
    size_t i = 0;
    for (; i + group < count; i += group) {
        uint32_t colours[group];
        uint32_t any = 0;
        for (size_t j = 0; j < group; ++j) {
            colours[j] = LoadColour<4>(pixels + (i + j) * pixelBytes);
            any |= IsMissing(set, colours[j]);
        }
        if (any == 0) continue;
        for (size_t j = 0; j < group; ++j)
            added += AddColour(set, colours[j]);
    }
    for (; i < count; ++i)
        added += AddColour(set, LoadColour<3>(pixels + i * pixelBytes));
    return added;
}

} // namespace

namespace ZKR_KERNEL_SET {

extern const CountKernels countKernels;
const CountKernels countKernels = {FindNew<3>, FindNew<4>, AddAll<3>, AddAll<4>};

} // namespace ZKR_KERNEL_SET
} // namespace zkr::rows
