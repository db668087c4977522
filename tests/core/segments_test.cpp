// Row segments at the ends of a bitmap and of the window through which a file's rows are merged. All storage
// classes, depths and offsets have their plain model in the attack on rows.
#include "core/test_bitmaps.h"
#include "support/pixel_bits.h"

namespace zkr::test {
namespace {

// Longer than the window through which a file's rows are merged, at depths whose pixels straddle its end.
TEST(LongSegments, AreWholeOnDisk) {
    std::mt19937 random(22);
    for (const int32_t bits : {1, 3, 5, 7, 12, 24, 48}) {
        constexpr int32_t width = 50000;
        Bitmap bitmap(width, 2, bits);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryDisk), 1);
        const Bytes before = Fill(bitmap, 6);
        const Bytes source = RandomBytes(bitmap.BytesPerLine, random);
        const uint32_t segments[] = {0, 49990};
        ASSERT_EQ(Z_PutBitmapRowSegments(&bitmap, source.data(), 1, 5, segments, 2, 0), 1);
        const Bytes after = Rows(bitmap);
        for (int32_t column = 0; column < width; ++column) {
            const bool written = column >= 5 && column < 49995;
            const uint64_t expected = written ? ReadPixel(source.data(), bits, column - 5)
                                              : ReadPixel(before.data() + bitmap.BytesPerLine, bits, column);
            ASSERT_EQ(ReadPixel(after.data() + bitmap.BytesPerLine, bits, column), expected)
                << bits << ", " << column;
        }
    }
}

TEST(SegmentEnds, StayInsideTheBitmap) {
    Bitmap bitmap(10, 1, 8);
    Bytes data(12, 0);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryUser), 1);
    ASSERT_EQ(Z_SetBitmapDataPointer(&bitmap, data.data(), 12), 1);
    const Bytes source = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14};
    const uint32_t segments[] = {0, 14, 3};
    EXPECT_EQ(Z_PutBitmapRowSegments(&bitmap, source.data(), 0, -2, segments, 3, 0), 1);
    EXPECT_EQ(data, (Bytes{3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0}));
    const uint32_t backwards[] = {6, 2};
    EXPECT_EQ(Z_PutBitmapRowSegments(&bitmap, source.data(), 0, 0, backwards, 2, 0), 1);
    EXPECT_EQ(data, (Bytes{3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0}));
    ASSERT_EQ(Z_SetBitmapDataPointer(&bitmap, nullptr, 0), 1);
    EXPECT_EQ(Z_PutBitmapRowSegments(&bitmap, source.data(), 0, 0, segments, 2, 0), code::InvalidBitmap);
}

} // namespace
} // namespace zkr::test
