// Row segments in every storage class against a writer that moves one pixel at a time.
#include "core/test_bitmaps.h"
#include "support/pixel_bits.h"

namespace zkr::test {
namespace {

uint64_t KeptMask(int32_t bits, int32_t order) {
    if (bits == 16) return order == Z_ORDER_GRAY ? 0 : 0x8000;
    if (bits == 32) return 0xFF000000;
    return bits == 64 ? 0xFFFF000000000000 : 0;
}

class SegmentsTest : public testing::TestWithParam<Storage> {};

TEST_P(SegmentsTest, WriteWhatPixelByPixelWrites) {
    std::mt19937 random(21);
    for (const int32_t bits : {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64}) {
        for (const int32_t order : {Z_ORDER_BGR, Z_ORDER_GRAY}) {
            Bitmap bitmap(61, 9, bits);
            bitmap.Order = order;
            Bytes userData;
            Allocate(bitmap, GetParam(), userData);
            Bytes model = Fill(bitmap, 5);
            for (int step = 0; step < 60; ++step) {
                const bool keep = random() % 2 == 0;
                const auto row = static_cast<int32_t>(random() % 9);
                const auto columnOffset = static_cast<int32_t>(random() % 12);
                std::vector<uint32_t> segments;
                uint32_t column = 0;
                while (segments.size() < 6) {
                    column += static_cast<uint32_t>(random() % 9);
                    segments.push_back(std::min<uint32_t>(column, static_cast<uint32_t>(61 - columnOffset)));
                }
                // Ends where the last segment ends, so that a read too far leaves the block.
                const Bytes source = RandomBytes(RowBytes(static_cast<int>(segments.back()), bits), random);
                ASSERT_EQ(Z_PutBitmapRowSegments(&bitmap, source.data(), row, columnOffset, segments.data(),
                                                 6, keep),
                          1);
                uint8_t* line = model.data() + static_cast<size_t>(row) * bitmap.BytesPerLine;
                const uint64_t kept = keep ? KeptMask(bits, order) : 0;
                for (size_t pair = 0; pair < 6; pair += 2)
                    for (auto c = static_cast<int32_t>(segments[pair]);
                         c < static_cast<int32_t>(segments[pair + 1]); ++c)
                        WritePixel(line, bits, columnOffset + c,
                                   (ReadPixel(source.data(), bits, c) & ~kept) |
                                       (ReadPixel(line, bits, columnOffset + c) & kept));
                ASSERT_EQ(Rows(bitmap), model) << bits << " bits, row " << row << ", at " << columnOffset;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Storages, SegmentsTest, testing::ValuesIn(AllStorages()), NameOf);

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
