// The record and its life: initialised, created, shared, duplicated, freed.
#include "core/test_bitmaps.h"
#include "core/test_regions.h"
#include "zkr13n/allocation.h"
#include "zkr13n/dither.h"
#include "zkr13n/frame.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <set>

namespace zkr::test {
namespace {

TEST(InitBitmap, AcceptsTheFourteenDepths) {
    const std::set<int32_t> depths = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};
    for (int32_t bits = -8; bits <= 130; ++bits) {
        BitmapHandle bitmap;
        std::memset(&bitmap, 0xCC, sizeof bitmap);
        const bool accepted = depths.count(bits) != 0;
        ASSERT_EQ(Z_InitBitmap(&bitmap, 33, 7, bits), accepted ? 1 : code::InvalidBitsPerPixel) << bits;
        BitmapHandle expected = {};
        if (accepted) {
            expected.Width = 33, expected.Height = 7, expected.BitsPerPixel = bits;
            expected.BytesPerLine = static_cast<uint32_t>((33 * bits + 31) / 32 * 4);
            expected.Size = expected.BytesPerLine * 7;
            expected.ColorsUsed = bits < 9 ? 1u << bits : 0;
            expected.Order = bits < 9 ? 0 : bits == 12 ? 2 : 1;
            expected.ViewPerspective = 2, expected.DitheringMethod = Z_GetDefaultDithering();
            expected.XResolution = 150, expected.YResolution = 150;
            expected.HighBit = bits - 1, expected.LevelHighBit = bits - 1, expected.PaintGamma = 100;
        }
        EXPECT_EQ(0, std::memcmp(&bitmap, &expected, sizeof bitmap)) << bits;
    }
    BitmapHandle empty;
    std::memset(&empty, 0xCC, sizeof empty);
    const BitmapHandle clear = {};
    EXPECT_EQ(Z_InitBitmap(&empty, 0, 0, 0), 1);
    EXPECT_EQ(0, std::memcmp(&empty, &clear, sizeof empty));
    EXPECT_EQ(Z_InitBitmap(nullptr, 1, 1, 1), code::InvalidBitmap);
}

TEST(CreateBitmap, ChoosesPaletteAndOrder) {
    const RGBQUAD colours[16] = {{9, 18, 200, 0}};
    const struct {
        int32_t Bits, Order;
        const RGBQUAD* Colours;
        int32_t ExpectedBits, ExpectedOrder;
        uint32_t Entries;
        uint8_t FirstGreen;
    } cases[] = {
        {4, Z_ORDER_BGR, colours, 4, Z_ORDER_RGB, 16, 18}, // order is for bitmaps without a palette
        {0, Z_ORDER_RGB, colours, 8, Z_ORDER_RGB, 256, 0}, // a gray ramp
        {1, Z_ORDER_RGB, nullptr, 1, Z_ORDER_RGB, 2, 0},   // a default palette
        {12, Z_ORDER_BGR, nullptr, 12, Z_ORDER_BGR, 0, 99},
    };
    for (const auto& c : cases) {
        Bitmap bitmap;
        ASSERT_EQ(Z_CreateBitmap(&bitmap, 1, 5, 5, c.Bits, c.Order, c.Colours, 7, nullptr, 0), 1);
        RGBQUAD found[256] = {{99, 99, 99, 99}};
        EXPECT_EQ(Z_GetBitmapPaletteEntries(&bitmap, 0, 256, found), c.Entries) << c.Bits;
        EXPECT_EQ(found[0].rgbGreen, c.FirstGreen) << c.Bits;
        EXPECT_TRUE(c.Entries != 256 || found[100].rgbRed == 100);
        EXPECT_EQ(std::tuple(bitmap.BitsPerPixel, bitmap.Order, bitmap.ViewPerspective),
                  std::tuple(c.ExpectedBits, c.ExpectedOrder, 7));
    }
}

TEST(CreateBitmap, RefusesAndLeavesNothing) {
    EXPECT_EQ(Z_CreateBitmap(nullptr, 1, 5, 5, 8, 0, nullptr, 2, nullptr, 0), code::InvalidArgument);
    uint8_t data[40], other[40];
    Bitmap bitmap;
    EXPECT_EQ(Z_CreateBitmap(&bitmap, 1, 5, 5, 9, 0, nullptr, 2, nullptr, 0), code::InvalidBitsPerPixel);
    EXPECT_EQ(Z_CreateBitmap(&bitmap, 0, 5, 5, 8, 0, nullptr, 2, nullptr, 0), code::InvalidArgument);
    EXPECT_EQ(Z_CreateBitmap(&bitmap, MemoryUser, 5, 5, 8, 0, nullptr, 2, data, 39), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapDataPointer(&bitmap, data, 40), code::InvalidArgument) << "not allocated";
    EXPECT_EQ(bitmap.Flags & flag::Allocated, 0u);
    EXPECT_EQ(bitmap.Palette, nullptr);
    EXPECT_EQ(bitmap.PaintLUT, nullptr);
    ASSERT_EQ(Z_CreateBitmap(&bitmap, MemoryUser, 5, 5, 8, 0, nullptr, 2, data, 40), 1);
    EXPECT_EQ(Z_SetBitmapDataPointer(&bitmap, other, 41), code::InvalidArgument);
    EXPECT_EQ(bitmap.Addr, data);
    EXPECT_EQ(Z_SetBitmapDataPointer(&bitmap, nullptr, 7), 1);
    EXPECT_EQ(bitmap.Addr, nullptr);
    Bitmap conventional(5, 5, 8);
    ASSERT_EQ(Z_AllocateBitmap(&conventional, 1), 1);
    EXPECT_EQ(Z_SetBitmapDataPointer(&conventional, data, 40), code::InvalidArgument);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(conventional.Addr) % 32, 0u);
}

TEST(FreeBitmap, KeepsTheDimensionsForNewStorage) {
    Bitmap bitmap;
    ASSERT_EQ(Z_CreateBitmap(&bitmap, 1, 5, 6, 8, 0, nullptr, 2, nullptr, 0), 1);
    EXPECT_EQ(Z_FreeBitmap(&bitmap), 1);
    EXPECT_EQ(bitmap.Flags, 0u);
    EXPECT_EQ(bitmap.Palette, nullptr);
    EXPECT_EQ(bitmap.PaintLUT, nullptr);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryDisk), 1);
    EXPECT_EQ(Rows(bitmap), Bytes(48, 0));
    Z_FreeBitmap(&bitmap);

    Z_CreateBitmapFixedPalette(&bitmap);
    EXPECT_EQ(Z_FreeBitmap(&bitmap), 0) << "nothing was stored";
    EXPECT_EQ(bitmap.Palette, nullptr);
    EXPECT_EQ(Z_FreeBitmap(nullptr), code::InvalidBitmap);
}

TEST(Locking, NestsWithoutACount) {
    Bitmap bitmap(5, 5, 8);
    Bytes none;
    Allocate(bitmap, {"global", GlobalType}, none);
    Z_ReleaseBitmap(&bitmap);
    const int32_t outer = Z_LockBitmap(&bitmap);
    void* const address = bitmap.Addr;
    EXPECT_EQ(outer, 0);
    EXPECT_NE(address, nullptr);
    const int32_t inner = Z_LockBitmap(&bitmap);
    EXPECT_EQ(inner, 1);
    Z_UnlockBitmap(&bitmap, inner);
    EXPECT_EQ(bitmap.Addr, address);
    Z_UnlockBitmap(&bitmap, outer);
    EXPECT_EQ(bitmap.Addr, nullptr);
    EXPECT_EQ(bitmap.Flags & flag::Locked, 0u);
}

// Of a bitmap in a file that has everything.
class Duplicates : public testing::Test {
  protected:
    void SetUp() override {
        Z_CreateBitmap(&source, MemoryDisk, 8, 8, 8, 0, nullptr, 4, nullptr, 0);
        RegionSlots::Give(source, {{1, 2, 7, 5}});
        Original = source.Region;
        source.XResolution = 72, source.YResolution = 73, source.PlaybackLeft = 9;
        source.Flags |= flag::Signed | flag::RegionUnclipped;
        source.PaintLUT[1] = 99;
    }
    void TearDown() override { Z_FreeBitmap(&source); }

    RegionSlots slots;
    void* Original;
    BitmapHandle source, copy;
};

TEST_F(Duplicates, InheritEverythingButDimensions) {
    ASSERT_EQ(Z_DupBitmapNewDim(&copy, &source, 20, 3, 4, 7), 1);
    EXPECT_EQ(InfoOf(copy).Type, MemoryDisk) << "the class of the source";
    EXPECT_EQ(std::tuple(copy.Width, copy.BytesPerLine, copy.ViewPerspective, copy.XResolution,
                         copy.YResolution, copy.PlaybackLeft, copy.ColorsUsed),
              std::tuple(20, 12u, 4, 72, 73, 9, 256u))
        << "colours copied from the source";
    EXPECT_EQ(copy.Flags, flag::Allocated | flag::Disk | flag::Signed | flag::RegionUnclipped);
    EXPECT_NE(copy.Palette, source.Palette);
    EXPECT_EQ(RegionSlots::Of(copy).Bounds.top, 2);
    EXPECT_NE(copy.Region, Original);
    EXPECT_EQ(source.Region, Original);
    EXPECT_EQ(copy.PaintLUT[1], 99);
    EXPECT_EQ(Z_FreeDuplicateBitmap(&copy, 7), 1);
    EXPECT_EQ(copy.Flags & flag::Allocated, 0u);
}

TEST_F(Duplicates, ShareWhatTheyDoNotOwn) {
    ASSERT_EQ(Z_DupBitmapNewDim(&copy, &source, 20, 3, 4, 0), 1);
    EXPECT_EQ(copy.Flags & flag::Allocated, 0u);
    EXPECT_EQ(copy.Palette, source.Palette);
    EXPECT_EQ(copy.Region, Original);
    EXPECT_EQ(Z_FreeDuplicateBitmap(&copy, 0), 1);
    EXPECT_EQ(copy.Palette, nullptr);
    EXPECT_EQ(RegionSlots::Alive, 1) << "the shared region is left alone";

    ASSERT_EQ(Z_DupBitmapNewDim(&copy, &source, 20, 3, 4, 6), 1);
    EXPECT_EQ(RegionSlots::Alive, 2);
    EXPECT_EQ(Z_FreeDuplicateBitmap(&copy, 6), 1);
    EXPECT_EQ(copy.Palette, nullptr) << "without storage its own palette and region are freed";
    EXPECT_EQ(copy.Region, nullptr);
    EXPECT_EQ(RegionSlots::Alive, 1);
}

TEST_F(Duplicates, FailWithTheirRegion) {
    RegionSlots::CopyResult = code::OutOfMemory, RegionSlots::FailsInPlace = true;
    EXPECT_EQ(Z_DupBitmapNewDim(&copy, &source, 8, 8, 8, 7), code::OutOfMemory);
    EXPECT_EQ(source.Region, Original);
    EXPECT_EQ(copy.Flags & flag::Allocated, 0u);
    EXPECT_EQ(copy.Region, nullptr);
    const DispatchTable none;
    const DispatchTable* const before = ExchangeDispatch(&none);
    ASSERT_EQ(Z_DupBitmapNewDim(&copy, &source, 8, 8, 8, 7), 1);
    EXPECT_EQ(copy.Region, nullptr) << "nobody can copy a region";
    ExchangeDispatch(before);
    Z_FreeDuplicateBitmap(&copy, 7);
}

TEST_F(Duplicates, OfABadDepthAreClearedRecords) {
    EXPECT_EQ(Z_DupBitmapNewDim(&copy, nullptr, 8, 8, 8, 7), code::InvalidBitmap);
    EXPECT_EQ(Z_DupBitmapNewDim(&copy, &source, 8, 8, 9, 7), code::InvalidDimensions);
    EXPECT_EQ(Z_DupBitmapNewDim(&copy, &source, 8, 8, 9, 0), 1);
    EXPECT_EQ(copy.Width, 0);
    EXPECT_EQ(copy.XResolution, 72);
}

TEST_F(Duplicates, OfGrayCarryTheWindow) {
    Bitmap gray(8, 8, 16);
    gray.Order = Z_ORDER_GRAY;
    ASSERT_EQ(Z_AllocateBitmap(&gray, 1), 1);
    gray.LowBit = 3, gray.HighBit = 9;
    gray.LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(4 * sizeof(RGBQUAD), 1));
    gray.LevelLUTLength = 4;
    ASSERT_EQ(Z_DupBitmapNewDim(&copy, &gray, 4, 4, 16, 7), 1);
    EXPECT_EQ(copy.HighBit, 9);
    EXPECT_NE(copy.LevelLUT, gray.LevelLUT);
    Z_FreeDuplicateBitmap(&copy, 7);
    ASSERT_EQ(Z_DupBitmapNewDim(&copy, &gray, 4, 4, 12, 7), 1);
    EXPECT_EQ(copy.HighBit, 11) << "another depth has its own window";
    EXPECT_EQ(copy.Order, Z_ORDER_GRAY);
    Z_FreeDuplicateBitmap(&copy, 7);
}

TEST_F(Duplicates, OfARecordShareItsStorage) {
    Z_CopyBitmapHandle(&copy, &source);
    EXPECT_EQ(0, std::memcmp(&copy, &source, sizeof copy));
    EXPECT_EQ(Z_FreeImage(&copy, 0), 1);
    EXPECT_EQ(copy.Palette, nullptr);
    EXPECT_EQ(RegionSlots::Alive, 1) << "palette and region live on in the source";
    source.Flags &= ~(flag::Allocated | flag::Disk);
    source.PaintLUT = nullptr;
    EXPECT_EQ(Z_FreeImage(&source, 1), 1);
    EXPECT_NE(source.Palette, nullptr) << "nothing is done without storage";
    EXPECT_EQ(Z_FreeImage(nullptr, 1), 1);
}

} // namespace
} // namespace zkr::test
