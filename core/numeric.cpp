// Whole-number services that other families and callers share.
#include "zkr13n/numeric.h"

#include <algorithm>
#include <array>
#include <bit>

namespace zkr {

namespace {

constexpr std::array<uint8_t, 256> OneBits = [] {
    std::array<uint8_t, 256> counts{};
    for (uint32_t byte = 0; byte < counts.size(); ++byte)
        counts[byte] = static_cast<uint8_t>(std::popcount(byte));
    return counts;
}();

} // namespace

} // namespace zkr

// Newton's steps, until root and quotient are neighbours; the lower of them is the root rounded down.
uint32_t Z_CALL Z_SQRT(uint32_t value) {
    if (value < 4) return value != 0 ? 1 : 0;
    uint32_t root = value >> 1;
    for (;;) {
        const uint32_t quotient = value / root;
        const uint32_t lower = std::min(root, quotient);
        const uint32_t step = (std::max(root, quotient) - lower) / 2;
        root = lower + step;
        if (step == 0) return root;
    }
}

const uint8_t* Z_CALL Z_Get1BitOnTable(void) {
    return zkr::OneBits.data();
}
