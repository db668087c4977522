// Looks pixels up in a set of colours, a group at a time.
#include "colour/rows/colour_set.h"

#include <cstring>

namespace zkr::rows {
namespace {

size_t SkipKnown(const uint8_t* quads, size_t pixels, const uint32_t* set) {
    size_t done = 0;
    for (; pixels - done >= colourGroupPixels; done += colourGroupPixels) {
        uint32_t group[colourGroupPixels];
        std::memcpy(group, quads + done * 4, sizeof group);
        uint32_t known = 1;
        for (const uint32_t quad : group) {
            const uint32_t bit = ColourSetBit(quad);
            known &= set[bit >> 5] >> (bit & 31);
        }
        if (known == 0) break;
    }
    return done;
}

} // namespace

namespace ZKR_KERNEL_SET {

extern const CountKernels countKernels;
const CountKernels countKernels = {SkipKnown};

} // namespace ZKR_KERNEL_SET
} // namespace zkr::rows
