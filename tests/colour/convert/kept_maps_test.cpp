// What the library keeps from one row to the next, the map between two palettes and the search of a palette,
// must never show: rows in turn, and no memory to keep anything.
#include "colour/convert/reference_convert.h"
#include "platform/faults.h"
#include "support/pixel_bits.h"
#include "support/random_palettes.h"
#include "support/seeded.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace zkr::test {
namespace {

class KeptMaps : public ::testing::Test {
  protected:
    void ExpectAsModel(const Conversion& conversion) {
        constexpr int Width = 300;
        const int wider = std::max(conversion.sourceBits, conversion.targetBits);
        std::vector<uint8_t> row(RowBytes(Width, wider));
        for (uint8_t& byte : row)
            byte = seeded_.Byte();
        std::vector<uint8_t> expected = row;
        EXPECT_EQ(Convert(row.data(), Width, conversion),
                  ReferenceConvert(expected.data(), Width, conversion));
        EXPECT_EQ(row, expected) << Describe(conversion);
    }

    void ConvertInTurn() {
        const RGBQUAD* first = first_.data();
        const RGBQUAD* second = second_.data();
        ExpectAsModel({8, 8, 0, 0, first, second});
        ExpectAsModel({4, 8, 0, 0, first, second}); // the same entries, fewer of them
        ExpectAsModel({8, 4, 0, 0, first, second});
        ExpectAsModel({0, 8, 0, 0, nullptr, second}); // gray levels on one side
        ExpectAsModel({8, 0, 0, 0, second, nullptr});
        ExpectAsModel({12, 7, 2, 0, nullptr, second});
        ExpectAsModel({24, 8, 0, 0, nullptr, second}); // searches the palette that the maps were made for
        ExpectAsModel({8, 8, 0, 0, second, first});
    }

    Seeded seeded_{11};
    std::vector<RGBQUAD> first_ = RandomPalette(seeded_, 256).Entries;
    std::vector<RGBQUAD> second_ = RandomPalette(seeded_, 256).Entries;
};

// A new thread has nothing yet, and may get neither a record of its own nor anything to hang on it.
TEST_F(KeptMaps, AreNotNeeded) {
    for (uint32_t nth = 1; nth <= 4; ++nth)
        for (const bool sticky : {false, true})
            std::thread([&] {
                platform::fault::Arm(platform::fault::AllMemory | platform::fault::Thread, nth, sticky);
                ConvertInTurn();
                platform::fault::Disarm();
                ConvertInTurn();
            }).join();
}

} // namespace
} // namespace zkr::test
