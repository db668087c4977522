// Sizes at the borders of what the record's fields, the address space and the memory can hold: refused, never
// wrapped, and right above 4 GiB.
#include "core/storage_faults.h"

#include <limits>

namespace zkr::test {
namespace {

constexpr int32_t Largest = std::numeric_limits<int32_t>::max();
constexpr bool Wide = sizeof(size_t) == 8;

struct Dimensions {
    int32_t Width;
    int32_t Height;
    int32_t Bits;
};

TEST(Sizes, ThatFieldsCannotHoldAreRefused) {
    const Dimensions refused[] = {
        {0, 0, 8},
        {0, 5, 8},
        {5, 0, 8},
        {-1, 5, 8},
        {5, -1, 8},
        {-5, -5, 8},
        {Largest, 1, 24},
        {Largest, 1, 64},
        {1 << 29, 1, 64},
        {1 << 30, 1, 32},
        {Largest, 2, 16},
        {-1, 2, 64},
        {Largest, Largest, 32},
        {Largest, Largest, 64},
    };
    for (const Dimensions& d : refused) {
        if (Wide && d.Width == Largest && d.Bits == 16) continue;
        for (const int32_t type : {MemoryConventional, MemoryUser, MemoryDisk}) {
            Bitmap bitmap(d.Width, d.Height, d.Bits);
            EXPECT_EQ(Z_AllocateBitmap(&bitmap, type), code::InvalidDimensions)
                << d.Width << " x " << d.Height << " at " << d.Bits;
        }
    }
}

TEST(Sizes, AreWorkedOutWithoutWrapping) {
    Bitmap row(Largest, 1, 1);
    EXPECT_EQ(row.BytesPerLine, 0x10000000u);
    Bitmap wide(Largest - 3, 1, 16);
    EXPECT_EQ(wide.BytesPerLine, 0xFFFFFFF8u);
    Bitmap square(65536, 65537, 8);
    if (!Wide) {
        EXPECT_EQ(Z_AllocateBitmap(&square, MemoryUser), code::InvalidDimensions);
        return;
    }
    EXPECT_EQ(uint64_t{square.Size}, 0x100010000u);
    Bitmap huge(Largest, Largest, 8);
    EXPECT_EQ(uint64_t{huge.Size}, 0x80000000u * uint64_t{0x7FFFFFFF});
    ASSERT_EQ(Z_AllocateBitmap(&huge, MemoryUser), 1) << "the caller may have room for it";
    EXPECT_EQ(Z_SetBitmapDataPointer(&huge, &row, static_cast<size_t>(0x80000000u)), code::InvalidArgument);
}

// An exabyte: no mapping, no table of tiles of so many bands, no file.
TEST(Sizes, ThatMemoryCannotHoldAreRefused) {
    const Thresholds restore;
    for (const int32_t tileSize : {0, 1}) {
        Thresholds::Tiles(tileSize, 0, 1);
        for (const int32_t type : {MemoryConventional, MemoryNoTiled}) {
            Bitmap bitmap(Largest, Wide ? Largest / 4 : 1, 8);
            const Fault noFile(fault::FileOpen, 1, true);
            EXPECT_EQ(Z_AllocateBitmap(&bitmap, type), code::OutOfMemory) << tileSize << ", " << type;
        }
    }
}

TEST(Sizes, OfARecordAreNotTakenFromAnOlderClass) {
    Bitmap bitmap(100, 100, 8);
    bitmap.Size = 5;
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    EXPECT_EQ(bitmap.Size, 10000u);
    Fill(bitmap, 1);
}

class LargeBitmap : public testing::TestWithParam<Storage> {};

// 5 GiB of which only the corners are ever touched.
TEST_P(LargeBitmap, KeepsItsCorners) {
    if (!Wide) GTEST_SKIP() << "no room in 32 bits";
    const Storage& storage = GetParam();
    constexpr int32_t width = 50000, height = 107375;
    const Thresholds restore;
    Z_SetMemoryThresholds(0, -100, 1 << 30, storage.ConventionalTiles, storage.MappedTiles, 31);
    Bitmap bitmap(width, height, 8);
    EXPECT_GT(uint64_t{bitmap.Size}, uint64_t{5} << 30);
    const ReturnCode result = Z_AllocateBitmap(&bitmap, storage.Type);
    ASSERT_EQ(result, 1);
    if (storage.Type == MemoryConventional && InfoOf(bitmap).Type != MemoryConventional)
        GTEST_SKIP() << "not enough memory is free";
    ASSERT_EQ(InfoOf(bitmap).Type, storage.Type);
    const int32_t rows[] = {0, height - 1, 42949, 42950, 85900, height / 2};
    for (const int32_t row : rows)
        for (const int32_t column : {0, width - 4}) {
            const int32_t mark = row * 2 + (column != 0);
            ASSERT_EQ(Z_PutBitmapRowCol(&bitmap, &mark, row, column, 4), 4);
        }
    for (const int32_t row : rows)
        for (const int32_t column : {0, width - 4}) {
            int32_t mark = -1;
            ASSERT_EQ(Z_GetBitmapRowCol(&bitmap, &mark, row, column, 4), 4);
            EXPECT_EQ(mark, row * 2 + (column != 0));
        }
    int32_t untouched = -1;
    ASSERT_EQ(Z_GetBitmapRowCol(&bitmap, &untouched, 1, 0, 4), 4);
    EXPECT_EQ(untouched, 0);
}

// Tiles are not among the cases whose views would take their room on the disk: only tiles that are reached
// through their files are.
INSTANTIATE_TEST_SUITE_P(Storages, LargeBitmap,
                         testing::Values(Storage{"disk", MemoryDisk},
                                         Storage{"conventional", MemoryConventional},
                                         Storage{"memorytiles", MemoryTiled, 0, -100, 0},
                                         Storage{"filetiles", MemoryTiled, 0, 0, 0}),
                         NameOf);

} // namespace
} // namespace zkr::test
