// Which storage class a bitmap gets, and what happens when one cannot be made.
#include "core/storage_faults.h"
#include "zkr13n/locks.h"

namespace zkr::test {
namespace {

constexpr int32_t TileSize = 1000;

struct Case {
    std::vector<int32_t> Types;
    int32_t Bits;
    int32_t Rows;     // of 100 bytes
    int32_t Expected; // the type reported, or the code
    uint32_t Locks = 0;
    int32_t LargestConventional = 0x7FFFFFFF;
};

int32_t Chosen(const Case& c, int32_t type) {
    const Thresholds restore;
    Z_SetMemoryThresholds(0, c.LargestConventional, TileSize, -100, 1, 31);
    Z_SetSupportLocks(c.Locks);
    Bitmap bitmap(800 / c.Bits, c.Rows, c.Bits);
    const ReturnCode result = Z_AllocateBitmap(&bitmap, type);
    Z_SetSupportLocks(0);
    EXPECT_EQ(result == 1, (bitmap.Flags & flag::Allocated) != 0);
    EXPECT_EQ(result == 1, bitmap.PaintLUT != nullptr);
    if (result != 1) return result;
    for (unsigned i = 0; i < 256; ++i)
        EXPECT_EQ(bitmap.PaintLUT[i], i);
    return InfoOf(bitmap).Type;
}

TEST(StorageChoice, FollowsTypeSizeAndLocks) {
    constexpr uint32_t document = 1u << Z_SUPPORT_DOCUMENT;
    constexpr uint32_t extendedGray = 1u << Z_SUPPORT_EXTGRAY;
    const Case cases[] = {
        // plain types, below, at and above the tile size
        {{1, 4, 256}, 8, 5, 1},
        {{128}, 8, 5, 128},
        {{4}, 8, 10, 1},
        {{4}, 8, 11, 4},
        {{1, 2, 8, 9, 256}, 8, 11, 1},
        {{128}, 8, 11, 128},
        // the largest conventional bitmap holds above the tile size only
        {{1}, 8, 10, 1, 0, 0},
        {{1, 256}, 8, 11, 4, 0, 0},
        {{1}, 8, 11, 4, 0, 1099},
        {{1}, 8, 11, 1, 0, 1100},
        {{8, 9}, 8, 11, 128, 0, 0},
        // types that are none
        {{0, 3, 5, 12, 129, 257, -1, 2048}, 8, 5, -13},
        {{1028}, 24, 5, -13},
        // rows as runs
        {{512, 513, 768, 1536}, 1, 5, 512},
        {{512}, 8, 5, -13},
        {{513, 514, 768}, 8, 5, 1},
        {{640}, 8, 5, 128},
        {{512}, 1, 5, -13, document},
        {{513, 768}, 1, 5, 1, document},
        // compressed strips
        {{1024, 1025, 1536}, 24, 5, 1024},
        {{1024, 1025}, 1, 5, 1024},
        {{1024}, 8, 5, -13},
        {{1025}, 8, 5, 1},
        {{1024}, 24, 5, -13, document},
        {{1025}, 24, 5, 1, document},
        {{1025}, 32, 5, 1, document},
        // extended gray
        {{1}, 12, 5, -804, extendedGray},
        {{1}, 48, 5, -804, extendedGray},
        {{1}, 64, 5, -804, extendedGray},
        {{1}, 16, 5, 1, extendedGray},
        {{1}, 48, 5, 1, ~extendedGray},
    };
    for (const int32_t bits : {24, 1}) {
        const Fault noModule(fault::Module, 1);
        EXPECT_EQ(Chosen({{}, bits, 5, 0}, MemorySuperCompressed), bits == 24 ? -356 : -357);
    }
    for (const Case& c : cases)
        for (const int32_t type : c.Types)
            EXPECT_EQ(Chosen(c, type), c.Expected)
                << "type " << type << ", " << c.Bits << " bits, " << c.Rows << " rows, locks " << c.Locks
                << ", largest " << c.LargestConventional;
}

TEST(StorageChoice, LeavesTheReserveFree) {
    const Thresholds restore;
    // All memory there is shall stay free: nothing can be conventional above the tile size, and no tile in
    // memory.
    Z_SetMemoryThresholds(-100, 0x7FFFFFFF, TileSize, -100, 5, 31);
    Bitmap bitmap(100, 25, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    EXPECT_EQ(InfoOf(bitmap), (Info{MemoryTiled, 1000, 3, 0, 1, 0}));
}

TEST(StorageChoice, FallsFromMappingToTilesToDisk) {
    const TemporaryDirectory directory;
    const Thresholds restore;
    Thresholds::Tiles(TileSize, -100, 1);
    for (const int32_t type : {MemoryConventional, MemoryNoTiled}) {
        Bitmap bitmap(100, 25, 8);
        const Fault noMapping(fault::Mapping, 1, true);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, type), 1);
        // The budget of memory tiles becomes views.
        EXPECT_EQ(InfoOf(bitmap),
                  type == MemoryNoTiled ? (Info{MemoryDisk}) : (Info{MemoryTiled, 1000, 3, 0, 3, 0}));
    }
    for (const int32_t type : {MemoryConventional, MemoryTiled, MemoryNoTiled, MemoryDisk, MemoryNoDisk}) {
        Bitmap none(100, 25, 8);
        const Fault nothing(fault::Mapping | fault::FileOpen, 1, true);
        EXPECT_EQ(Z_AllocateBitmap(&none, type), code::OutOfMemory) << type;
        EXPECT_EQ(none.Flags & flag::Allocated, 0u);
        EXPECT_EQ(none.PaintLUT, nullptr);
    }
}

// MemoryNoDisk keeps a bitmap off the disk above the tile size; below it the weighing has changed the type.
TEST(StorageChoice, HoldsNoDiskAboveTheTileSizeOnly) {
    const Thresholds restore;
    Thresholds::Tiles(TileSize, -100, 1);
    for (const int32_t rows : {10, 11}) {
        Bitmap bitmap(100, rows, 8);
        // No mapping, and no table of tiles after the paint table.
        const Fault noTable(fault::Mapping | fault::Global, 2, true);
        EXPECT_EQ(Z_AllocateBitmap(&bitmap, MemoryNoDisk), rows == 10 ? 1 : code::OutOfMemory);
        EXPECT_EQ(bitmap.Flags, rows == 10 ? flag::Allocated | flag::Disk : 0u);
    }
}

#ifndef _WIN32
TEST(FullDisk, IsToldAndLosesNothing) {
    const TemporaryDirectory directory;
    Bitmap bitmap(1000, 100, 8);
    {
        const FileSizeLimit limit(50000);
        EXPECT_EQ(Z_AllocateBitmap(&bitmap, MemoryDisk), code::OutOfMemory);
    }
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryDisk), 1);
    const Bytes before = Fill(bitmap, 7);
    const Bytes row(1000, 0xFF);
    {
        const FileSizeLimit limit(50500);
        EXPECT_EQ(Z_PutBitmapRow(&bitmap, row.data(), 60, 1000), code::WriteFailed);
        const uint32_t segments[] = {3, 900};
        EXPECT_EQ(Z_PutBitmapRowSegments(&bitmap, row.data(), 60, 0, segments, 2, 0), code::WriteFailed);
        EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, 200), code::OutOfMemory);
        EXPECT_EQ(bitmap.Height, 100);
        EXPECT_EQ(bitmap.Size, 100000u);
    }
    EXPECT_EQ(Rows(bitmap), before);
}

TEST(FullDisk, IsNotPromisedMoreThanItHas) {
    const TemporaryDirectory directory;
    Bitmap enormous(2400000, 2440000, 24); // 17.6 TB
    if (std::filesystem::space(directory.Path()).available > enormous.Size) GTEST_SKIP() << "it has";
    for (const int32_t type : {int32_t{MemoryDisk}, int32_t{MemoryNoTiled}})
        EXPECT_EQ(Z_AllocateBitmap(&enormous, type), code::OutOfMemory);
    Bitmap bitmap(9000, 100, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryDisk), 1);
    EXPECT_EQ(Z_ChangeBitmapHeight(&bitmap, 2000000000), code::OutOfMemory);
    EXPECT_EQ(bitmap.Height, 100);
}
#endif

} // namespace
} // namespace zkr::test
