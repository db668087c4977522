// Copies between all storage classes, their reports and their refusals.
#include "core/reports.h"
#include "core/test_bitmaps.h"
#include "zkr13n/copy.h"

namespace zkr::test {
namespace {

const Storage Plain = {"conventional", MemoryConventional};

// A bitmap of 24 bits in a storage.
struct Colour : Bitmap {
    Colour(int32_t width, int32_t height, const Storage& storage = Plain) : Bitmap(width, height, 24) {
        Allocate(*this, storage, Data);
    }
    Bytes Data;
};

ReturnCode Z_CALL NeverCalled(int32_t, intptr_t) {
    ADD_FAILURE() << "a copy reports to the copy status callback alone";
    return 1;
}

TEST(CopyData, MovesPixelsBetweenAllStorageClasses) {
    for (const Storage& from : AllStorages()) {
        for (const Storage& to : AllStorages()) {
            Colour source(37, 11, from), destination(37, 11, to);
            const Bytes expected = Fill(source, 5);
            ASSERT_EQ(Z_CopyBitmapData(&destination, &source), 1);
            EXPECT_EQ(Rows(destination), expected) << from.Name << " to " << to.Name;
            EXPECT_EQ(Rows(source), expected);
        }
    }
}

TEST(CopyData, OtherDimensionsAreCut) {
    Colour source(10, 6), wide(20, 4), narrow(3, 9);
    const Bytes from = Fill(source, 1);
    Fill(wide, 200);
    Bytes expectedWide(60 * 4), expectedNarrow = Fill(narrow, 100);
    ASSERT_EQ(Z_CopyBitmapData(&wide, &source), 1);
    ASSERT_EQ(Z_CopyBitmapData(&narrow, &source), 1);
    for (size_t row = 0; row < 6; ++row) {
        if (row < 4) std::memcpy(&expectedWide[row * 60], &from[row * 32], 32);
        std::memcpy(&expectedNarrow[row * 12], &from[row * 32], 12);
    }
    EXPECT_EQ(Rows(wide), expectedWide);
    EXPECT_EQ(Rows(narrow), expectedNarrow);
}

TEST(CopyData, ReportsToTheCopyCallback) {
    Colour source(4, 8), destination(4, 8), partial(4, 8);
    Bytes pixels = Fill(source, 9);
    Z_SetStatusCallBack(NeverCalled, 0);
    Reports reports(Z_SetCopyStatusCallBack);
    EXPECT_EQ(Z_CopyBitmapData(&destination, &source), 1);
    EXPECT_EQ(reports.Seen, (std::vector<int32_t>{0, 12, 25, 37, 50, 62, 75, 87, 100}));

    reports.Seen.clear();
    reports.StopAt = 3;
    EXPECT_EQ(Z_CopyBitmapData(&partial, &source), Reports::Stopped);
    EXPECT_EQ(reports.Seen, (std::vector<int32_t>{0, 12, 25, 37}));
    std::fill(pixels.begin() + 3 * 12, pixels.end(), uint8_t{0});
    EXPECT_EQ(Rows(partial), pixels);

    BitmapHandle copy = {};
    reports.Seen.clear();
    EXPECT_EQ(Z_CopyBitmap(&copy, &source), Reports::Stopped);
    EXPECT_EQ(copy.Flags & flag::Allocated, 0u);
    Z_SetStatusCallBack(nullptr, 0);
}

TEST(Copy, BadBitmaps) {
    Colour bitmap(4, 4);
    BitmapHandle none{};
    for (const auto& [to, from] : {std::pair<BitmapHandle*, BitmapHandle*>{&bitmap, nullptr},
                                   {nullptr, &bitmap},
                                   {&bitmap, &none},
                                   {&none, &bitmap},
                                   {&none, &none}})
        EXPECT_EQ(Z_CopyBitmapData(to, from), code::InvalidBitmap);
    EXPECT_EQ(Z_CopyBitmapData(&bitmap, &bitmap), 1);
    EXPECT_EQ(Z_CopyBitmap(nullptr, &bitmap), code::InvalidArgument);
    EXPECT_EQ(Z_CopyBitmap(&none, nullptr), code::InvalidArgument);
    EXPECT_EQ(Z_CopyBitmap(&none, &none), code::InvalidArgument);
    EXPECT_EQ(Z_CopyBitmap(&bitmap, &bitmap), 1);
}

} // namespace
} // namespace zkr::test
