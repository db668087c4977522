// Rectangles of bitmaps against a copy of single pixels: every depth, every phase on both sides, all storage
// classes, rectangles that hang over every edge. Then reports, regions, refusals.
#include "core/predicates.h"
#include "core/reports.h"
#include "core/test_bitmaps.h"
#include "core/test_regions.h"
#include "support/pixel_bits.h"
#include "zkr13n/copy.h"

namespace zkr::test {
namespace {

constexpr int Depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};

struct PixelRect {
    int32_t Left, Top, Width, Height;
};

// The rows of the copy: zeros but for what the source has.
Bytes Expected(const BitmapHandle& source, const Bytes& rows, const PixelRect& r) {
    BitmapHandle copy;
    Z_InitBitmap(&copy, r.Width, r.Height, source.BitsPerPixel);
    Bytes expected(copy.Size);
    for (int32_t y = std::max(r.Top, 0); y < std::min(r.Top + r.Height, source.Height); ++y)
        for (int32_t x = std::max(r.Left, 0); x < std::min(r.Left + r.Width, source.Width); ++x)
            WritePixel(&expected[size_t{copy.BytesPerLine} * static_cast<size_t>(y - r.Top)],
                       source.BitsPerPixel, x - r.Left,
                       ReadPixel(&rows[size_t{source.BytesPerLine} * static_cast<size_t>(y)],
                                 source.BitsPerPixel, x));
    return expected;
}

struct Source : Bitmap {
    Source(int32_t width, int32_t height, int32_t bits,
           const Storage& storage = {"conventional", MemoryConventional})
        : Bitmap(width, height, bits) {
        Allocate(*this, storage, Data);
        Pixels = Fill(*this, 11);
    }
    Bytes Data, Pixels;
};

TEST(CopyRect, IsExactAtEveryDepthAndPhase) {
    for (const int bits : Depths) {
        Source source(431, 3, bits);
        for (int32_t left = -17; left <= 17; ++left) {
            for (const int32_t width : {1, 2, 3, 5, 8, 9, 17, 64, 131, 300, 414, 431, 448, 470}) {
                const PixelRect r = {left, left % 3, width, 2 + width % 3};
                Bitmap copy;
                ASSERT_EQ(Z_CopyBitmapRect(&copy, &source, r.Left, r.Top, r.Width, r.Height), 1);
                ASSERT_EQ(Rows(copy), Expected(source, source.Pixels, r))
                    << bits << " bits, left " << left << ", width " << width;
            }
        }
    }
}

TEST(CopyRect, GoesFromEveryStorageToEveryType) {
    const PixelRect r = {-3, 2, 30, 8};
    for (const Storage& storage : AllStorages()) {
        for (const int bits : {1, 3, 12, 24}) {
            Source source(37, 11, bits, storage);
            const Bytes expected = Expected(source, source.Pixels, r);
            for (const int32_t type : {MemoryConventional, MemoryTiled, MemoryDisk}) {
                const Thresholds restore;
                Thresholds::Tiles(300, 1, 1);
                Bitmap copy;
                ASSERT_EQ(Z_CopyBitmapRect2(&copy, &source, r.Left, r.Top, r.Width, r.Height, type), 1);
                EXPECT_EQ(InfoOf(copy).Type,
                          copy.Size <= 300 && type == MemoryTiled ? +MemoryConventional : type);
                EXPECT_EQ(Rows(copy), expected) << storage.Name << " to " << type << ", " << bits;
            }
            // The type that the caller leaves open is the source's where that is a file or runs.
            const int32_t before = InfoOf(source).Type;
            ASSERT_EQ(Z_CopyBitmapRect(nullptr, &source, r.Left, r.Top, r.Width, r.Height), 1);
            EXPECT_EQ(InfoOf(source).Type, before == MemoryTiled ? +MemoryConventional : before);
            EXPECT_EQ(Rows(source), expected) << storage.Name;
        }
    }
}

TEST(CopyRect, OfNothingIsBlankAndReplacesNothing) {
    Source source(20, 10, 8);
    constexpr int32_t lowest = INT32_MIN, highest = INT32_MAX;
    for (const auto& [left, top, width, height] : {PixelRect{20, 0, 5, 5},
                                                   {0, 10, 5, 5},
                                                   {-5, 0, 5, 5},
                                                   {3, -6, 4, 6},
                                                   {lowest, 0, 5, 5},
                                                   {highest, highest, 5, 5},
                                                   {0, lowest, 5, 5}}) {
        Bitmap copy;
        Reports reports(Z_SetCopyStatusCallBack);
        EXPECT_EQ(Z_CopyBitmapRect(&copy, &source, left, top, width, height), 1);
        EXPECT_EQ(Rows(copy), Bytes(copy.Size));
        EXPECT_EQ(Z_CopyBitmapRect(nullptr, &source, left, top, width, height), 1);
        EXPECT_EQ(Z_CopyBitmapRect(&source, &source, left, top, width, height), 1);
        EXPECT_EQ(Rows(source), source.Pixels);
        EXPECT_TRUE(reports.Seen.empty());
    }
}

// Steps are parts of the height asked for; a stopped copy is kept as far as it has come, also where it takes
// the source's place.
TEST(CopyRect, ReportsAndStops) {
    Source source(9, 6, 24);
    const PixelRect r = {0, 3, 9, 8};
    Bytes expected = Expected(source, source.Pixels, r);
    {
        Bitmap copy;
        Reports reports(Z_SetCopyStatusCallBack);
        EXPECT_EQ(Z_CopyBitmapRect(&copy, &source, r.Left, r.Top, r.Width, r.Height), 1);
        EXPECT_EQ(reports.Seen, (std::vector<int32_t>{0, 12, 25, 37}));
        EXPECT_EQ(Rows(copy), expected);
    }
    for (size_t stopAt = 3; stopAt-- > 0;) { // rows that are copied before the stop
        std::fill(expected.begin() + static_cast<ptrdiff_t>(stopAt * source.BytesPerLine), expected.end(),
                  uint8_t{0});
        Bitmap copy, whole;
        ASSERT_EQ(Z_CopyBitmap(&whole, &source), 1);
        Reports reports(Z_SetCopyStatusCallBack);
        reports.StopAt = stopAt;
        EXPECT_EQ(Z_CopyBitmapRect(&copy, &source, r.Left, r.Top, r.Width, r.Height), Reports::Stopped);
        EXPECT_EQ(Rows(copy), expected) << stopAt;
        reports.Seen.clear();
        EXPECT_EQ(Z_CopyBitmapRect(nullptr, &whole, r.Left, r.Top, r.Width, r.Height), Reports::Stopped);
        EXPECT_EQ(whole.Height, 8);
        EXPECT_EQ(Rows(whole), expected) << stopAt;
    }
}

TEST(CopyRect, TakesTheRegionAlong) {
    RegionSlots slots;
    Source source(20, 10, 8);
    RegionSlots::Give(source, {{3, 2, 15, 9}});
    {
        Bitmap copy;
        ASSERT_EQ(Z_CopyBitmapRect(&copy, &source, 5, -1, 8, 8), 1);
        EXPECT_EQ(RegionSlots::Alive, 2);
        for (int32_t row = 0; row < 8; ++row)
            for (int32_t column = 0; column < 8; ++column)
                EXPECT_EQ(RegionSlots::Of(copy).Holds(row, column),
                          RegionSlots::Of(source).Holds(row - 1, column + 5));
    }
    RegionSlots::CopyResult = -42;
    Bitmap copy;
    EXPECT_EQ(Z_CopyBitmapRect(&copy, &source, 5, -1, 8, 8), -42);
    EXPECT_FALSE(IsAllocated(&copy));
    EXPECT_EQ(Z_CopyBitmapRect(nullptr, &source, 5, -1, 8, 8), -42);
    EXPECT_EQ(Rows(source), source.Pixels);
    RegionSlots::CopyResult = 1;
    EXPECT_EQ(Z_TrimBitmap(&source, 4, 3, 99, 99), 1);
    EXPECT_EQ(RegionSlots::Alive, 1);
    EXPECT_EQ(RegionSlots::Of(source).Bounds.left, -1);
    EXPECT_EQ(RegionSlots::Of(source).Bounds.top, -1);
}

TEST(Trim, CutsToWhatTheBitmapHas) {
    constexpr int32_t highest = INT32_MAX;
    for (const auto& [given, cut] : {std::pair{PixelRect{-4, 2, 10, 4}, PixelRect{0, 2, 6, 4}},
                                     {{13, -1, highest, highest}, {13, 0, 7, 10}},
                                     {{0, 0, 20, 10}, {0, 0, 20, 10}}}) {
        Source bitmap(20, 10, 3);
        const Bytes expected = Expected(bitmap, bitmap.Pixels, cut);
        EXPECT_EQ(Z_TrimBitmap(&bitmap, given.Left, given.Top, given.Width, given.Height), 1);
        EXPECT_EQ(bitmap.Width, cut.Width);
        EXPECT_EQ(Rows(bitmap), expected);
    }
    Source bitmap(20, 10, 3);
    constexpr int32_t lowest = INT32_MIN;
    for (const PixelRect& r :
         {PixelRect{20, 0, 4, 4}, {0, 0, 0, 3}, {5, 5, -1, 3}, {lowest, 0, lowest, 4}, {-9, 0, 9, 2}})
        EXPECT_EQ(Z_TrimBitmap(&bitmap, r.Left, r.Top, r.Width, r.Height), code::InvalidDimensions);
    EXPECT_EQ(Rows(bitmap), bitmap.Pixels);
}

TEST(CopiesOfAType, HaveItAndTheFreshWindowOfABitmap) {
    Bitmap source, whole, part;
    ASSERT_EQ(Z_CreateBitmap(&source, MemoryConventional, 10, 4, 16, Z_ORDER_GRAY, nullptr, 3, nullptr, 0),
              1);
    const Bytes pixels = Fill(source, 4);
    source.LowBit = 3;
    source.PaintLUT[1] = 99;
    ASSERT_EQ(Z_CopyBitmap2(&whole, &source, MemoryDisk), 1);
    ASSERT_EQ(Z_CopyBitmapRect2(&part, &source, 0, 0, 10, 4, MemoryDisk), 1);
    for (BitmapHandle* copy : {&whole, &part}) {
        EXPECT_EQ(InfoOf(*copy).Type, +MemoryDisk);
        EXPECT_EQ(Rows(*copy), pixels);
        EXPECT_EQ(copy->Order, +Z_ORDER_GRAY);
        EXPECT_EQ(copy->ViewPerspective, 3);
        EXPECT_EQ(copy->LowBit, 0);
        EXPECT_EQ(copy->PaintLUT[1], 1);
    }
}

TEST(Rectangles, BadArguments) {
    Source source(8, 8, 8);
    BitmapHandle none{}, copy{};
    for (BitmapHandle* bad : {static_cast<BitmapHandle*>(nullptr), &none}) {
        EXPECT_EQ(Z_CopyBitmap2(&copy, bad, 1), code::InvalidArgument);
        EXPECT_EQ(Z_CopyBitmapRect(&copy, bad, 0, 0, 4, 4), code::InvalidArgument);
        EXPECT_EQ(Z_CopyBitmapRect2(nullptr, bad, 0, 0, 4, 4, 1), code::InvalidArgument);
        EXPECT_EQ(Z_TrimBitmap(bad, 0, 0, 4, 4), code::InvalidArgument);
    }
    EXPECT_EQ(Z_CopyBitmap2(nullptr, &source, 1), code::InvalidArgument);
    EXPECT_EQ(Z_CopyBitmap2(&source, &source, 77), 1);
    EXPECT_EQ(Z_CopyBitmap2(&copy, &source, 77), code::InvalidArgument);
    EXPECT_EQ(Z_CopyBitmapRect2(nullptr, &source, 0, 0, 4, 4, 77), code::InvalidArgument);
    EXPECT_EQ(Z_CopyBitmapRect(nullptr, &source, 0, 0, 4, 0), code::InvalidDimensions);
    EXPECT_EQ(Rows(source), source.Pixels);
    // The caller's memory comes later.
    ASSERT_EQ(Z_CopyBitmapRect2(&copy, &source, 0, 0, 4, 4, MemoryUser), 1);
    EXPECT_EQ(copy.Addr, nullptr);
    Z_FreeBitmap(&copy);
}

} // namespace
} // namespace zkr::test
