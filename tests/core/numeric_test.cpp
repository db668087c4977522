// Roots by what makes a number a root, and bits counted one by one.
#include "zkr13n/numeric.h"

#include <gtest/gtest.h>

namespace {

void ExpectRoot(uint64_t value) {
    const uint64_t root = Z_SQRT(static_cast<uint32_t>(value));
    EXPECT_LE(root * root, value);
    EXPECT_GT((root + 1) * (root + 1), value) << value;
}

TEST(Numeric, RootsAreRoundedDown) {
    for (uint64_t value = 0; value < 70000; ++value)
        ExpectRoot(value);
    for (uint64_t root = 2; root < 65536; ++root)
        for (const uint64_t value :
             {root * root - 1, root * root, root * root + root, root * root + 2 * root})
            ExpectRoot(value);
}

TEST(Numeric, OneBitsOfABytes) {
    for (int byte = 0; byte < 256; ++byte) {
        int ones = 0;
        for (int bit = 0; bit < 8; ++bit)
            ones += byte >> bit & 1;
        EXPECT_EQ(Z_Get1BitOnTable()[byte], ones);
    }
}

} // namespace
