// What the row functions tell and keep, and rows of large bitmaps. What they move is held against a plain
// array of bytes by the attack on rows.
#include "core/test_bitmaps.h"

namespace zkr::test {
namespace {

TEST(RowFailures, TellWhyNothingMoved) {
    uint8_t buffer[64] = {};
    Bitmap bitmap(8, 2, 8);
    EXPECT_EQ(Z_GetBitmapRow(&bitmap, buffer, 1, 8), code::OutOfMemory) << "no class at all";
    EXPECT_EQ(bitmap.CurrentRow, 1u);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryUser), 1);
    EXPECT_EQ(Z_GetBitmapRow(&bitmap, buffer, 0, 8), code::InvalidBitmap) << "a user bitmap without data";
    EXPECT_EQ(Z_PutBitmapRowCol(&bitmap, buffer, 1, 3, 5), code::InvalidBitmap);
    const uint32_t segment[] = {0, 3};
    EXPECT_EQ(Z_PutBitmapRowSegments(&bitmap, buffer, 0, 0, segment, 2, 0), code::InvalidBitmap);

    Bitmap global(8, 2, 8);
    Bytes none;
    Allocate(global, {"global", GlobalType}, none);
    Z_ReleaseBitmap(&global);
    EXPECT_EQ(Z_GetBitmapRow(&global, buffer, 0, 8), code::InvalidBitmap)
        << "a global bitmap that is not locked";
}

TEST(RowCache, FollowsTheRowLastReached) {
    Bitmap bitmap(10, 200, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    uint8_t buffer[12];
    for (const uint32_t row : {5u, 6u, 5u, 5u, 105u, 199u, 0u, 1u}) {
        Z_GetBitmapRow(&bitmap, buffer, static_cast<int32_t>(row), 12);
        EXPECT_EQ(bitmap.CurrentRow, row);
        EXPECT_EQ(bitmap.CurrentRowOffset, row * 12u);
    }
}

// Rows of large bitmaps take another road into memory; its ends lie at all places in a cache line.
TEST(LargeRows, AreWrittenExactly) {
    std::mt19937 random(23);
    constexpr size_t margin = 256;
    Bitmap bitmap(12000, 3000, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryUser), 1);
    Bytes data(bitmap.Size + 1, 0x5A);
    const Bytes source = RandomBytes(9000, random);
    for (size_t misplaced = 0; misplaced < 2; ++misplaced) {
        ASSERT_EQ(Z_SetBitmapDataPointer(&bitmap, data.data() + misplaced, bitmap.Size), 1);
        for (int32_t column = 1000; column < 1070; ++column) {
            const auto count = static_cast<uint32_t>(8190 + random() % 140);
            ASSERT_EQ(Z_PutBitmapRowCol(&bitmap, source.data(), 2999, column, count),
                      static_cast<int32_t>(count));
            const auto start = data.end() - 1 + static_cast<ptrdiff_t>(misplaced) - 12000 + column;
            const Bytes untouched(margin, 0x5A);
            ASSERT_EQ(Bytes(start - margin, start), untouched);
            ASSERT_EQ(Bytes(start, start + count), Bytes(source.begin(), source.begin() + count));
            ASSERT_EQ(Bytes(start + count, start + count + margin), untouched);
            std::fill(start, start + count, uint8_t{0x5A});
        }
    }
}

// A buffer that stands a little behind the row within their pages is filled and written out by a loop.
TEST(LargeRows, MoveBetweenAllPlacesOfPages) {
    std::mt19937 random(29);
    constexpr size_t page = 4096;
    Bitmap bitmap(8192, 3, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    const Bytes source = RandomBytes(2 * page, random);
    Bytes block(5 * page);
    for (size_t behind = 0; behind <= 33; ++behind) {
        const auto count = static_cast<uint32_t>(2048 + random() % 6000);
        const auto row = reinterpret_cast<uintptr_t>(bitmap.Addr) + bitmap.BytesPerLine;
        const size_t place = page + (row + behind - reinterpret_cast<uintptr_t>(block.data())) % page;
        Z_PutBitmapRow(&bitmap, source.data(), 1, bitmap.BytesPerLine);
        block.assign(block.size(), 0x5A);
        ASSERT_EQ(Z_GetBitmapRow(&bitmap, block.data() + place, 1, count), static_cast<int32_t>(count));
        Bytes expected(block.size(), 0x5A);
        std::copy_n(source.begin(), count, expected.begin() + static_cast<ptrdiff_t>(place));
        ASSERT_EQ(block, expected) << behind << " behind, " << count << " bytes";

        const size_t before = place - 2 * behind; // the row stands behind the buffer
        std::copy_n(source.rbegin(), count, block.begin() + static_cast<ptrdiff_t>(before));
        Bytes written(source);
        std::copy_n(source.rbegin(), count, written.begin());
        ASSERT_EQ(Z_PutBitmapRow(&bitmap, block.data() + before, 1, count), static_cast<int32_t>(count));
        Bytes got(bitmap.BytesPerLine);
        Z_GetBitmapRow(&bitmap, got.data(), 1, bitmap.BytesPerLine);
        ASSERT_EQ(got, written) << behind << " before, " << count << " bytes";
    }
}

TEST(TiledRows, CountWhatWasAskedForBehindTheLastRow) {
    const Thresholds restore;
    Thresholds::Tiles(24, -100, 1);
    Bitmap bitmap(8, 5, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryTiled), 1);
    Bytes buffer(100, 0xEE);
    EXPECT_EQ(Z_GetBitmapRow(&bitmap, buffer.data(), -1, 100), 100) << "no row that there is";
    EXPECT_EQ(buffer[0], 0xEE);
    EXPECT_EQ(Z_GetBitmapRow(&bitmap, buffer.data(), 0, 8), 8);
    EXPECT_EQ(buffer[0], 0) << "the rows that there are stay in reach";
    std::fill(buffer.begin(), buffer.end(), uint8_t{0xEE});
    EXPECT_EQ(Z_GetBitmapRow(&bitmap, buffer.data(), 3, 100), 100);
    EXPECT_EQ(Bytes(buffer.begin() + 16, buffer.end()), Bytes(84, 0xEE)) << "only two rows were left";
    EXPECT_EQ(Z_PutBitmapRow(&bitmap, buffer.data(), 4, 100), 100);
}

} // namespace
} // namespace zkr::test
