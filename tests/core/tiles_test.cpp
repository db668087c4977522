// Tiles: how the budget is shared, which tiles have a view, and how they live without one.
#include "core/storage/tile_table.h"
#include "core/storage_faults.h"

#include <array>

namespace zkr::test {
namespace {

TEST(TileBudget, IsSharedBetweenMemoryAndViews) {
    const struct {
        int32_t ConventionalTiles, MappedTiles, Conventional, MaxMapped;
    } shares[] = {{-100, 1, 10, 0}, {10, 1, 10, 0}, {11, 5, 10, 0}, {9, 1, 8, 1},    {9, 9, 0, 9},
                  {9, 10, 0, 9},    {9, 0, 9, 0},   {0, 0, 0, 0},   {0, 1, 0, 1},    {0, 7, 0, 1},
                  {5, 2, 3, 2},     {-55, 2, 3, 2}, {-9, 2, 0, 1},  {5, -100, 0, 5}, {0, -100, 0, 1},
                  {4, -50, 0, 4},   {6, -50, 2, 4}, {6, -25, 5, 1}, {3, -25, 1, 2},  {5, -10, 4, 1},
                  {9, -25, 8, 1},   {5, -23, 4, 1}, {7, -33, 6, 1}, {8, -43, 6, 2}};
    // Parts of a whole are rounded: 4 * 25 / 75 = 1.33, 5 * 10 / 90 = 0.56, 5 * 23 / 77 = 1.49, 2 * 43 / 57 = 1.51.
    for (const auto& share : shares) {
        const Thresholds restore;
        Thresholds::Tiles(1000, share.ConventionalTiles, share.MappedTiles);
        Bitmap bitmap(100, 95, 8);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryTiled), 1);
        EXPECT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 1000, 10, share.Conventional, share.MaxMapped, 0}))
            << share.ConventionalTiles << ", " << share.MappedTiles;
    }
}

TEST(TileBudget, KeepsAtLeastOneRowToATile) {
    const Thresholds restore;
    for (const auto& [tileSize, rows, tiles] :
         {std::array{1, 1, 25}, {99, 1, 25}, {100, 1, 25}, {199, 1, 25}, {200, 2, 13}, {2499, 24, 2}}) {
        Thresholds::Tiles(tileSize, -100, 1);
        Bitmap bitmap(100, 25, 8);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryTiled), 1);
        EXPECT_EQ(InfoOf(bitmap).TileSize, rows * 100);
        EXPECT_EQ(InfoOf(bitmap).TileCount, tiles);
    }
}

class TileViews : public testing::Test {
  protected:
    // Ten tiles of one row, of which two are in memory and three may have a view.
    void SetUp() override {
        const Thresholds restore;
        Thresholds::Tiles(4, 5, 3);
        Z_InitBitmap(&bitmap, 4, 10, 8);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryTiled), 1);
        ASSERT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 4, 10, 2, 3, 0}));
    }

    std::vector<uint32_t> Viewed() {
        std::vector<uint32_t> viewed;
        storage::TileTable& table = storage::TableOf(bitmap);
        for (uint32_t index = table.ConventionalCount; index < table.TileCount; ++index)
            if (table[index].Memory.View != nullptr) viewed.push_back(index);
        EXPECT_EQ(viewed.size(), table.MappedCount);
        return viewed;
    }

    std::vector<uint32_t> After(std::initializer_list<int32_t> rows) {
        uint8_t row[4];
        for (const int32_t index : rows)
            Z_GetBitmapRow(&bitmap, row, index, 4);
        return Viewed();
    }

    using Numbers = std::vector<uint32_t>;
    Bitmap bitmap;
};

TEST_F(TileViews, LeaveInTheOrderInWhichTheyCame) {
    EXPECT_EQ(After({0, 1}), Numbers{}) << "memory tiles take none";
    EXPECT_EQ(After({5, 3, 9}), (Numbers{3, 5, 9}));
    EXPECT_EQ(After({5, 5, 5, 2}), (Numbers{2, 3, 9})) << "a re-read does not refresh";
    EXPECT_EQ(After({4}), (Numbers{2, 4, 9}));
    EXPECT_EQ(After({5, 6}), (Numbers{4, 5, 6}));
}

TEST_F(TileViews, GiveWayUntilOneCanBeMade) {
    const Bytes before = Fill(bitmap, 3);
    After({3, 4, 5});
    {
        const Fault first(fault::View, 1);
        EXPECT_EQ(After({6}), (Numbers{5, 6})) << "the first failure costs one more view";
    }
    {
        const Fault all(fault::View, 1, true);
        EXPECT_EQ(After({7}), Numbers{});
        EXPECT_EQ(Rows(bitmap), before) << "without any view";
        uint8_t row[4] = {1, 2, 3, 4};
        EXPECT_EQ(Z_PutBitmapRow(&bitmap, row, 7, 4), 4);
    }
    uint8_t row[4] = {};
    {
        const Fault all(fault::View | fault::FileWrite, 1, true);
        const uint32_t segments[] = {1, 3};
        EXPECT_EQ(Z_PutBitmapRowSegments(&bitmap, row, 7, 0, segments, 2, 0), code::WriteFailed);
        EXPECT_EQ(Z_PutBitmapRow(&bitmap, row, 7, 4), 4) << "the row functions do not report it";
    }
    Z_GetBitmapRow(&bitmap, row, 7, 4);
    EXPECT_EQ(0, std::memcmp(row, "\1\2\3\4", 4)) << "what was written to the file is seen in the view";
}

TEST_F(TileViews, AreAllTakenByOneLongTransfer) {
    const Bytes before = Fill(bitmap, 4);
    Bytes all(40);
    EXPECT_EQ(Z_GetBitmapRow(&bitmap, all.data(), 0, 40), 40);
    EXPECT_EQ(all, before);
    EXPECT_EQ(Viewed(), (Numbers{7, 8, 9}));
}

TEST(TileBuild, MovesTheRestOfTheMemoryBudgetToViews) {
    const Thresholds restore;
    Thresholds::Tiles(4, 6, 2);
    Bitmap bitmap(4, 10, 8);
    const Fault third(fault::Mapping, 3);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryTiled), 1);
    EXPECT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 4, 10, 2, 4, 0}));
}

// A build that fails is tried again with tiles of half the size; it goes on while a tile has more than eight
// rows.
TEST(TileBuild, IsRetriedWithSmallerTiles) {
    const Thresholds restore;
    for (const int32_t rows : {20, 8}) {
        Thresholds::Tiles(rows * 4, 0, 1);
        Bitmap bitmap(4, 40, 8);
        const Fault once(fault::FileOpen, 1);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryTiled), 1);
        EXPECT_EQ(InfoOf(bitmap), rows == 20 ? (Info{MemoryTiled, 10 * 4, 4, 0, 1, 0}) : Info{MemoryDisk});
    }
}

} // namespace
} // namespace zkr::test
