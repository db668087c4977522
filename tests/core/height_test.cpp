// Z_ChangeBitmapHeight in every class: the rows that stay are whole, and new rows are blank where memory is
// fresh.
#include "core/test_bitmaps.h"

namespace zkr::test {
namespace {

class HeightTest : public testing::TestWithParam<Storage> {};

TEST_P(HeightTest, KeepsTheRowsThatStay) {
    for (const int32_t height : {1, 5, 7, 12, 14, 15, 22, 61}) {
        Bitmap bitmap(6, 15, 8);
        Bytes userData;
        Allocate(bitmap, GetParam(), userData);
        const Bytes before = Fill(bitmap, 8);
        uint8_t row[8];
        Z_GetBitmapRow(&bitmap, row, 9, 8);
        const uint32_t aligned = bitmap.AlignOffset;
        Z_ReleaseBitmap(&bitmap);
        if (GetParam().Type == MemoryUser) {
            EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, height), code::InvalidArgument);
            EXPECT_EQ(bitmap.Height, 15);
            continue;
        }
        ASSERT_EQ(Z_ChangeBitmapHeight(&bitmap, height), 1);
        EXPECT_EQ(bitmap.Height, height);
        EXPECT_EQ(bitmap.Size, static_cast<size_t>(height) * 8 + (height == 15 ? 0 : aligned));
        const bool tiled = GetParam().Type == MemoryTiled;
        EXPECT_EQ(bitmap.CurrentRow, height == 15 && !tiled ? 9u : 0u);
        const int previous = Z_LockBitmap(&bitmap);
        Bytes after = Rows(bitmap);
        const auto kept = static_cast<ptrdiff_t>(std::min(before.size(), after.size()));
        EXPECT_TRUE(std::equal(after.begin(), after.begin() + kept, before.begin())) << height;
        EXPECT_EQ(Bytes(after.begin() + kept, after.end()),
                  Bytes(after.size() - static_cast<size_t>(kept), 0));
        const Bytes again = Fill(bitmap, 9);
        EXPECT_EQ(Rows(bitmap), again);
        Z_UnlockBitmap(&bitmap, previous);
        ASSERT_EQ(Z_ChangeBitmapHeight(&bitmap, 15), 1);
        EXPECT_EQ(Z_UpdateBitmapSize(&bitmap), 1);
        EXPECT_EQ(bitmap.Size, 120u);
    }
}

INSTANTIATE_TEST_SUITE_P(Storages, HeightTest, testing::ValuesIn(AllStorages()), NameOf);

TEST(HeightArguments, AreChecked) {
    EXPECT_EQ(Z_ChangeBitmapHeight(nullptr, 5), code::InvalidBitmap);
    EXPECT_EQ(Z_UpdateBitmapSize(nullptr), code::InvalidBitmap);
    Bitmap bitmap(6, 15, 8);
    EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, 5), code::InvalidBitmap);
    EXPECT_EQ(Z_UpdateBitmapSize(&bitmap), code::InvalidBitmap);
    Bytes none;
    Allocate(bitmap, {"global", GlobalType}, none);
    EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, 15), code::InvalidArgument) << "locked, whatever the height";
    Z_ReleaseBitmap(&bitmap);
    EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, -1), code::InvalidDimensions);
    EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, 15), 1);
    EXPECT_EQ(bitmap.Size, 120u) << "an unchanged height changes nothing";
}

TEST(TiledHeight, KeepsTheTableInOrder) {
    const Thresholds restore;
    Thresholds::Tiles(40, 3, 1);
    Bitmap bitmap(8, 23, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryTiled), 1);
    ASSERT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 40, 5, 2, 1, 0}));
    const Bytes before = Fill(bitmap, 10);
    ASSERT_EQ(Z_ChangeBitmapHeight(&bitmap, 33), 1);
    EXPECT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 40, 7, 2, 1, 0})) << "the last tile had the view and grew";
    Rows(bitmap);
    ASSERT_EQ(Z_ChangeBitmapHeight(&bitmap, 7), 1);
    EXPECT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 40, 2, 2, 1, 0}));
    ASSERT_EQ(Z_ChangeBitmapHeight(&bitmap, 2), 1);
    EXPECT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 40, 1, 1, 1, 0}));
    EXPECT_EQ(Rows(bitmap), Bytes(before.begin(), before.begin() + 16));
    ASSERT_EQ(Z_ChangeBitmapHeight(&bitmap, 12), 1);
    EXPECT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 40, 3, 1, 1, 0}))
        << "new tiles are files, whatever the budget";
}

} // namespace
} // namespace zkr::test
