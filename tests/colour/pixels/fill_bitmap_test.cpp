// Fills of whole bitmaps and of regions: the pixels of every storage class and depth, and what is reported.
// Which pixel a colour gives is the business of the row that is filled, and known from it here.
#include "colour/pixels/fill_row.h"
#include "core/reports.h"
#include "core/test_bitmaps.h"
#include "core/test_regions.h"
#include "support/pixel_bits.h"
#include "zkr13n/fill.h"

namespace zkr::test {
namespace {

constexpr uint32_t Colour = 0x00B26A31;
const Storage Plain = {"conventional", MemoryConventional};
const Storage OnDisk = {"disk", MemoryDisk};

struct Canvas : Bitmap {
    Canvas(int32_t width, int32_t height, int32_t bits, const Storage& storage)
        : Bitmap(width, height, bits) {
        Allocate(*this, storage, Data);
        Before = Fill(*this, 3);
    }

    // Every pixel that the region holds has the colour, or is 0 for none; all other bits are as before.
    Bytes Expected(const TestRegion* region, const uint32_t* colour) const {
        Bytes filled(BytesPerLine);
        if (colour != nullptr) FillRowWithColor(*this, *colour, filled.data(), Width);
        Bytes expected = Before;
        for (int32_t row = 0; row < Height; ++row)
            for (int32_t column = 0; column < Width; ++column)
                if (region == nullptr || region->Holds(row, column))
                    WritePixel(&expected[size_t{BytesPerLine} * static_cast<size_t>(row)], BitsPerPixel,
                               column, ReadPixel(filled.data(), BitsPerPixel, column));
        return expected;
    }
    Bytes Data, Before;
};

TEST(Fill, WritesThePixelsOfTheRegionAndNoOthers) {
    const RegionSlots slots;
    const TestRegion region = {{5, 2, 29, 30}};
    for (const Storage& storage : AllStorages()) {
        for (const int bits : {1, 3, 8, 12, 24, 64}) {
            for (const bool clears : {false, true}) {
                for (const bool hasRegion : {false, true}) {
                    Canvas canvas(27, 11, bits, storage);
                    if (hasRegion) RegionSlots::Give(canvas, region);
                    const uint32_t colour = bits <= 8 ? 0x01000000u | 0xB6 >> (8 - bits) : Colour;
                    EXPECT_EQ(clears ? Z_ClearBitmap(&canvas) : Z_FillBitmap(&canvas, colour), 1);
                    EXPECT_EQ(Rows(canvas),
                              canvas.Expected(hasRegion ? &region : nullptr, clears ? nullptr : &colour))
                        << storage.Name << ", " << bits << " bits, region " << hasRegion;
                }
            }
        }
    }
}

// Without region code the whole bitmap is filled, whatever its Region field says. The larger one is written past
// the cache.
TEST(Fill, KnowsNoRegionWithoutRegionCode) {
    int nothing = 0;
    for (const auto& [width, height] : {std::pair{401, 5}, {1501, 1900}}) {
        Canvas canvas(width, height, 24, Plain);
        const DispatchTable none;
        const DispatchTable* const before = ExchangeDispatch(&none);
        canvas.Region = &nothing;
        EXPECT_EQ(Z_FillBitmap(&canvas, Colour), 1);
        EXPECT_TRUE(Rows(canvas) == canvas.Expected(nullptr, &Colour));
        canvas.Region = nullptr;
        ExchangeDispatch(before);
    }
}

using Seen = std::vector<int32_t>;

TEST(Fill, ReportsRowsOfAFileAndElseBothEnds) {
    const struct {
        const Storage& In;
        RECT Region;
        size_t StopAt;
        Seen Told;
        int32_t RowsFilled;
    } cases[] = {{Plain, {0, 0, 9, 8}, SIZE_MAX, {0, 100}, 8},
                 {OnDisk, {0, 0, 9, 8}, SIZE_MAX, {0, 12, 25, 37, 50, 62, 75, 87, 100}, 8},
                 {OnDisk, {2, 5, 19, 18}, SIZE_MAX, {0, 33, 66, 100}, 3},
                 {OnDisk, {0, 0, 9, 8}, 2, {0, 12, 25}, 2},
                 {Plain, {0, 0, 9, 8}, 0, {0}, 0},
                 {Plain, {0, 0, 9, 8}, 1, {0, 100}, 8},
                 // No row: below, beside, above the bitmap.
                 {Plain, {0, 8, 9, 12}, SIZE_MAX, {}, 0},
                 {OnDisk, {9, 0, 14, 8}, SIZE_MAX, {}, 0},
                 {OnDisk, {0, -7, 9, 0}, SIZE_MAX, {}, 0}};
    const RegionSlots slots;
    for (const auto& [storage, bounds, stopAt, told, rowsFilled] : cases) {
        for (const bool clears : {false, true}) {
            Canvas canvas(9, 8, 8, storage);
            TestRegion region = {bounds};
            RegionSlots::Give(canvas, region);
            Reports reports(Z_SetStatusCallBack);
            reports.StopAt = stopAt;
            const ReturnCode result = clears ? Z_ClearBitmap(&canvas) : Z_FillBitmap(&canvas, 0x010000EE);
            EXPECT_EQ(result, stopAt == SIZE_MAX ? 1 : Reports::Stopped);
            EXPECT_EQ(reports.Seen, told);
            region.Bounds.bottom = std::max<int32_t>(bounds.top, 0) + rowsFilled;
            const uint32_t colour = 0x010000EE;
            EXPECT_EQ(Rows(canvas), canvas.Expected(&region, clears ? nullptr : &colour));
        }
    }
}

TEST(Fill, FailuresAndWhatIsNone) {
    BitmapHandle none{};
    for (BitmapHandle* bad : {static_cast<BitmapHandle*>(nullptr), &none}) {
        EXPECT_EQ(Z_FillBitmap(bad, 0), code::InvalidBitmap);
        EXPECT_EQ(Z_ClearBitmap(bad), code::InvalidBitmap);
    }
    RegionSlots slots;
    Canvas canvas(9, 8, 8, Plain);
    for (ReturnCode* result : {&RegionSlots::BoundsResult, &RegionSlots::SegmentsMaxResult}) {
        *result = -77;
        EXPECT_EQ(Z_FillBitmap(&canvas, 0), -77);
        EXPECT_EQ(Z_ClearBitmap(&canvas), -77);
        *result = 1;
    }
    RegionSlots::SegmentsResult = -77; // of a row, which is left out
    EXPECT_EQ(Z_ClearBitmap(&canvas), 1);
    RegionSlots::SegmentsResult = 1;

    // A region without room for a segment ends a fill at once; a clear still walks its rows.
    RegionSlots::Give(canvas, {{4, 0, 4, 8}});
    slots.ForgetBounds();
    Reports reports(Z_SetStatusCallBack);
    EXPECT_EQ(Z_FillBitmap(&canvas, 0), 1);
    EXPECT_EQ(reports.Seen, Seen{});
    EXPECT_EQ(Z_ClearBitmap(&canvas), 1);
    EXPECT_EQ(reports.Seen, (Seen{0, 100}));
    EXPECT_EQ(Rows(canvas), canvas.Before);

    Bitmap user(9, 8, 8); // whose pixels the caller has not given yet
    ASSERT_EQ(Z_AllocateBitmap(&user, MemoryUser), 1);
    EXPECT_EQ(Z_FillBitmap(&user, 0), 1);
}

} // namespace
} // namespace zkr::test
