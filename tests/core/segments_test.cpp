// Row segments at the end of the window through which a file's rows are merged. All storage classes, depths,
// offsets and ends have their plain model in the attack on rows.
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

} // namespace
} // namespace zkr::test
