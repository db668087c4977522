// The members that take places, for pictures that lie in their storage in every way: all of them mean what the viewer sees.
#include "automation/raster_host.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

constexpr int Columns = 9, Rows = 7; // of storage; odd, since regions turn around a whole pixel

struct View {
    int32_t Value;
    bool IsTurned, FromRight, FromBottom; // where the first pixel of storage lies

    int Width() const { return IsTurned ? Rows : Columns; }
    int Height() const { return IsTurned ? Columns : Rows; }
    // The storage's place of one that is seen.
    std::pair<int, int> RowAndColumn(int x, int y) const {
        const int across = FromRight ? Width() - 1 - x : x, down = FromBottom ? Height() - 1 - y : y;
        return IsTurned ? std::pair(across, down) : std::pair(down, across);
    }
};

constexpr View Views[] = {{VIEW_TOP_LEFT, false, false, false},   {VIEW_TOP_RIGHT, false, true, false},
                          {VIEW_BOTTOM_LEFT, false, false, true}, {VIEW_BOTTOM_RIGHT, false, true, true},
                          {VIEW_RIGHT_TOP, true, true, false},    {VIEW_LEFT_TOP, true, false, false},
                          {VIEW_RIGHT_BOTTOM, true, true, true},  {VIEW_LEFT_BOTTOM, true, false, true}};

struct Viewed : Raster {
    explicit Viewed(const View& view) : Raster(Columns, Rows, 8), view_(view) {
        Record().ViewPerspective = view.Value;
        EXPECT_EQ(object.PutInList(nullptr), 0);
    }
    // Adds a rectangle that is seen to the region. The members that do so turn by angles, which is not exact.
    void AddRect(int x, int y, int width, int height) {
        const auto [row, column] = view_.RowAndColumn(x, y);
        const auto [otherRow, otherColumn] = view_.RowAndColumn(x + width - 1, y + height - 1);
        const RECT rect = {std::min(column, otherColumn), std::min(row, otherRow),
                           std::max(column, otherColumn) + 1, std::max(row, otherRow) + 1};
        BitmapHandle& record = Record();
        EXPECT_EQ(
            Z_SetBitmapRgnRect(&record, nullptr, &rect, record.Region == nullptr ? Z_RGN_SET : Z_RGN_OR), 1);
        EXPECT_EQ(object.PutInList(nullptr), 0);
    }
    // Holds the region against what is to be in it.
    template <typename Holds> void ExpectRegion(const char* after, Holds holds) {
        for (int y = 0; y < view_.Height(); ++y)
            for (int x = 0; x < view_.Width(); ++x) {
                int16_t in = 0;
                EXPECT_EQ(object.IsPtInRgn(float(x), float(y), &in), 0);
                EXPECT_EQ(in != 0, holds(x, y)) << after << ", view " << view_.Value << ", " << x << ' ' << y;
            }
    }

  private:
    View view_;
};

// A figure that no flip and no turn leaves as it is.
bool IsOnHook(int x, int y) {
    return (x == 1 && y >= 1 && y <= 4) || (y == 4 && x <= 3 && x >= 1);
}

TEST_F(RasterTest, PicturesAreSeenTheirWay) {
    for (const View& view : Views) {
        Viewed raster(view);
        EXPECT_EQ(raster.Width(), view.Width());
        EXPECT_EQ(raster.Get(&RasterObject::GetBitmapHeight), view.Height());
        for (int y = 0; y < view.Height(); ++y)
            for (int x = 0; x < view.Width(); ++x)
                EXPECT_EQ(raster.object.PutPixel(float(x), float(y), 0x01000000u + uint32_t(y * 16 + x)), 0);
        for (int y = 0; y < view.Height(); ++y)
            for (int x = 0; x < view.Width(); ++x) {
                const auto [row, column] = view.RowAndColumn(x, y);
                Array byte;
                EXPECT_EQ(raster.object.GetPixelData(float(x), float(y), &byte), 0);
                EXPECT_EQ(*static_cast<uint8_t*>(byte.Data), y * 16 + x);
                EXPECT_EQ(Z_GetPixelColor(&raster.Record(), row, column), raster.Pixel(float(x), float(y)));
            }
        for (const auto& [x, y] : {std::pair(-1, 0), {0, -1}, {view.Width(), 0}, {0, view.Height()}})
            EXPECT_EQ(raster.Pixel(float(x), float(y)), Z_NO_COLOR);
    }
}

TEST_F(RasterTest, RegionsMoveAsTheyAreSeen) {
    for (const View& view : Views) {
        Viewed raster(view);
        for (int y = 0; y < view.Height(); ++y)
            for (int x = 0; x < view.Width(); ++x)
                EXPECT_EQ(raster.object.PutPixel(float(x), float(y), IsOnHook(x, y) ? 0xFFFFFF : 0), 0);
        EXPECT_EQ(raster.object.SetRgnMagicWand(3, 4, 0, Z_RGN_SET, nullptr), 0);
        raster.ExpectRegion("the wand", IsOnHook);
        EXPECT_EQ(raster.Get(&RasterObject::GetRgnLeft), 1);
        EXPECT_EQ(raster.Get(&RasterObject::GetRgnTop), 1);
        EXPECT_EQ(raster.Get(&RasterObject::GetRgnWidth), 3);
        EXPECT_EQ(raster.Get(&RasterObject::GetRgnHeight), 4);
        // The system's region is the one that is seen.
        const auto handle = reinterpret_cast<HRGN>(raster.Get(&RasterObject::GetRgnHandle));
        HRGN hook = platform::CreateRectRgn(1, 1, 2, 5), foot = platform::CreateRectRgn(1, 4, 4, 5);
        EXPECT_NE(platform::CombineRgn(hook, hook, foot, RGN_OR), ERROR);
        EXPECT_EQ(platform::CombineRgn(hook, hook, handle, RGN_XOR), NULLREGION);
        for (HRGN region : {handle, hook, foot})
            platform::DeleteObject(region);
        EXPECT_EQ(raster.object.OffsetRgn(1, -1, nullptr), 0);
        raster.ExpectRegion("a move", [](int x, int y) { return IsOnHook(x - 1, y + 1); });
        EXPECT_EQ(raster.object.ResizeRgn(RGN_EXPAND, 1, nullptr), 0);
        const auto grown = [](int x, int y) {
            bool any = false;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx)
                    any = any || IsOnHook(x - 1 + dx, y + 1 + dy);
            return any;
        };
        raster.ExpectRegion("growth", grown);
        // Moved out of the picture, a part of it is gone for good.
        EXPECT_EQ(raster.object.OffsetRgn(-3, 0, nullptr), 0);
        EXPECT_EQ(raster.object.OffsetRgn(3, 0, nullptr), 0);
        raster.ExpectRegion("moves out and in", [&](int x, int y) { return x >= 3 && grown(x, y); });
        EXPECT_EQ(raster.object.OffsetRgn(1e9f, -1e9f, nullptr), 0);
        raster.ExpectRegion("a move away", [](int, int) { return false; });
        // What is much larger than the picture is no work.
        EXPECT_EQ(raster.object.SetRgnRect(-1e9f, -1e9f, 2e9f, 2e9f, Z_RGN_SET, nullptr), 0);
        EXPECT_EQ(raster.object.SetRgnRoundRect(-6e7f, -6e7f, 1.2e8f, 1.2e8f, 9, 9, Z_RGN_AND, nullptr), 0);
        EXPECT_EQ(raster.Get(&RasterObject::GetRgnArea), Columns * Rows);
    }
}

TEST_F(RasterTest, RegionsGrowByUnitsOfTheirOwnAcrossAndDown) {
    for (const View& view : Views) {
        Viewed raster(view);
        raster.AddRect(2, 2, 1, 1);
        // A unit is 2 columns, or 1 row.
        EXPECT_EQ(raster.object.PutScaleWidth(50), 0);
        EXPECT_EQ(raster.object.PutScaleHeight(100), 0);
        EXPECT_EQ(raster.object.ResizeRgn(RGN_EXPAND, 1, nullptr), 0);
        EXPECT_EQ(raster.object.PutScaleMode(SCALEMODE_PIXEL), 0);
        raster.ExpectRegion("growth", [](int x, int y) { return x <= 4 && y >= 1 && y <= 3; });
    }
}

TEST_F(RasterTest, ClipSegmentsAreThoseOfSeenRows) {
    for (const View& view : Views) {
        Viewed raster(view);
        raster.AddRect(1, 1, 2, 3);
        raster.AddRect(4, 3, 1, 2);
        EXPECT_EQ(raster.object.PutScaleLeft(10), 0);
        EXPECT_EQ(raster.object.PutScaleWidth(50), 0); // half a unit to the column
        EXPECT_EQ(raster.object.PutScaleHeight(100), 0);
        raster.Changes();
        const std::vector<float> rows[] = {
            {}, {10.5f, 11.5f}, {10.5f, 11.5f}, {10.5f, 11.5f, 12, 12.5f}, {12, 12.5f}, {}};
        for (int y = 0; y < 6; ++y) {
            Array segments;
            EXPECT_EQ(raster.object.GetBitmapClipSegments(float(y), &segments), 0);
            const auto* ends = static_cast<const float*>(segments.Data);
            EXPECT_EQ(std::vector<float>(ends, ends + segments.Count), rows[y]) << "view " << view.Value;
        }
        const bool isKept = view.Value == VIEW_TOP_LEFT || view.Value == VIEW_BOTTOM_LEFT;
        EXPECT_EQ(raster.Record().ViewPerspective, isKept ? view.Value : int32_t{VIEW_TOP_LEFT});
        EXPECT_EQ(raster.Changes(), std::vector<int>{});
        raster.Items(); // the item has the new view
    }
}

} // namespace
} // namespace zkr::test
