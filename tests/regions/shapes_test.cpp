// Regions of shapes and curves, and what a bitmap tells of its region.
#include "core/flags.h"
#include "platform/graphics.h"
#include "platform/region_pixels.h"
#include "regions/moves.h"
#include "regions/pixel_sets.h"
#include "zkr13n/region_shapes.h"

#include <array>
#include <cmath>
#include <vector>

namespace zkr::test {

namespace {

struct Sheet : BitmapHandle {
    Sheet(int32_t width, int32_t height, bool isUnclipped = false) : BitmapHandle{} {
        Width = width;
        Height = height;
        if (isUnclipped) Flags = flag::RegionUnclipped;
    }
    ~Sheet() { Z_FreeBitmapRgn(this); }
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;
    PixelSet Set() const { return SetOf(*RegionOf(*this)); }
};

// Without those whose centre is so near to the shape's edge that the platform may decide.
void ExpectShape(const PixelSet& set, const std::function<double(double x, double y)>& distanceInside) {
    for (int32_t y = -2; y < 45; ++y)
        for (int32_t x = -2; x < 45; ++x) {
            const double inside = distanceInside(x + 0.5, y + 0.5);
            if (std::abs(inside) <= EdgeSlack + 1e-9) continue;
            ASSERT_EQ(set.Has(x, y), inside > 0) << x << ", " << y;
        }
}

TEST(Shapes, HoldPixelsWhoseCentreIsInside) {
    Sheet sheet(44, 44);
    const RECT around = {3, 5, 33, 35};
    ASSERT_EQ(Z_SetBitmapRgnEllipse(&sheet, nullptr, &around, Z_RGN_SET), 1);
    ExpectShape(sheet.Set(), [](double x, double y) { return 15 - std::hypot(x - 18, y - 20); });
    ASSERT_EQ(Z_SetBitmapRgnRoundRect(&sheet, nullptr, &around, 10, 10, Z_RGN_SET), 1);
    ExpectShape(sheet.Set(), [](double x, double y) {
        const double dx = std::max(std::abs(x - 18) - 10, 0.0), dy = std::max(std::abs(y - 20) - 10, 0.0);
        return 5 - std::hypot(dx, dy);
    });
    for (int32_t width = 2; width < 42; ++width)
        for (int32_t height = 2; height < 8; ++height) {
            const RECT flat = {1, 1, 1 + width, 1 + height};
            ASSERT_EQ(Z_SetBitmapRgnEllipse(&sheet, nullptr, &flat, Z_RGN_SET), 1) << width << "x" << height;
        }
    const POINT corners[] = {{3, 5}, {33, 5}, {33, 15}, {13, 15}, {13, 25}, {3, 25}};
    ASSERT_EQ(Z_SetBitmapRgnPolygon(&sheet, nullptr, corners, 6, Z_POLY_ALTERNATE, Z_RGN_SET), 1);
    EXPECT_EQ(sheet.Set(), PixelSet::Where([](int32_t x, int32_t y) {
                  return (x >= 3 && x < 33 && y >= 5 && y < 15) || (x >= 3 && x < 13 && y >= 5 && y < 25);
              }));
    // Two squares, one in the other: the fill mode decides.
    const POINT twice[] = {{0, 0},   {30, 0},  {30, 30}, {0, 30},  {0, 0},
                           {10, 10}, {20, 10}, {20, 20}, {10, 20}, {10, 10}};
    ASSERT_EQ(Z_SetBitmapRgnPolygon(&sheet, nullptr, twice, 10, Z_POLY_WINDING, Z_RGN_SET), 1);
    EXPECT_TRUE(sheet.Set().Has(15, 15));
    ASSERT_EQ(Z_SetBitmapRgnPolygon(&sheet, nullptr, twice, 10, Z_POLY_ALTERNATE, Z_RGN_SET), 1);
    EXPECT_FALSE(sheet.Set().Has(15, 15));
}

TEST(Shapes, AreNothingWhereTheirRectangleIsInverted) {
    Sheet sheet(20, 20);
    for (const RECT& inverted : {RECT{9, 2, 3, 8}, RECT{3, 8, 9, 2}, RECT{3, 3, 3, 9}}) {
        const auto expectEmpty = [&](ReturnCode status) {
            EXPECT_EQ(status, 1);
            EXPECT_EQ(sheet.Set(), PixelSet{});
        };
        expectEmpty(Z_SetBitmapRgnRect(&sheet, nullptr, &inverted, Z_RGN_SET));
        expectEmpty(Z_SetBitmapRgnEllipse(&sheet, nullptr, &inverted, Z_RGN_SET));
        expectEmpty(Z_SetBitmapRgnRoundRect(&sheet, nullptr, &inverted, 2, 2, Z_RGN_SET));
    }
}

TEST(Shapes, RefuseBadArguments) {
    Sheet sheet(20, 20);
    const RECT rectangle = {1, 1, 5, 5};
    const POINT points[3] = {{0, 0}, {9, 0}, {0, 9}};
    EXPECT_EQ(Z_SetBitmapRgnRect(nullptr, nullptr, nullptr, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnRect(nullptr, nullptr, &rectangle, Z_RGN_SET), code::InvalidBitmap);
    EXPECT_EQ(Z_SetBitmapRgnRect(&sheet, nullptr, &rectangle, 7), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnEllipse(nullptr, nullptr, &rectangle, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnEllipse(&sheet, nullptr, nullptr, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnPolygon(&sheet, nullptr, points, 2, 0, Z_RGN_SET), code::OutOfMemory);
    EXPECT_EQ(Z_SetBitmapRgnPolygon(&sheet, nullptr, points, 3, 2, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(Z_SetBitmapRgnPolygon(&sheet, nullptr, nullptr, 3, 0, Z_RGN_SET), code::InvalidArgument);
    EXPECT_EQ(sheet.Region, nullptr);
}

Curve CurveOf(const std::vector<POINT>& points, uint32_t type, uint32_t close, double tension) {
    return {sizeof(Curve), type, static_cast<int32_t>(points.size()), points.data(), Z_POLY_WINDING, tension,
            close,         0};
}

TEST(Curves, BecomeBezierCurves) {
    Seeded seeded(41);
    for (int round = 0; round < 500; ++round) {
        const uint32_t close = static_cast<uint32_t>(seeded.Below(3));
        const auto n = static_cast<size_t>(seeded.Between(close == 0 ? 4 : 3, 9));
        std::vector<POINT> points(n);
        for (POINT& point : points)
            point = {seeded.Between(-1000, 1000), seeded.Between(-1000, 1000)};
        const double tension = seeded.Below(101) / 100.0;
        const Curve curve = CurveOf(points, 77, close, tension); // the type is not looked at
        int32_t count = -1;
        ASSERT_EQ(Z_CurveToBezier(&curve, &count, nullptr), 1);
        ASSERT_EQ(static_cast<size_t>(count), close == 0 ? 3 * n - 8 : close == 1 ? 3 * n + 1 : 3 * n - 2);
        std::vector<POINT> bezier(static_cast<size_t>(count) + 1, POINT{-7, -7});
        ASSERT_EQ(Z_CurveToBezier(&curve, &count, bezier.data()), 1);
        const size_t start = close == 2 ? n - 1 : 0;
        const auto at = [&](size_t i) { return points[i % n]; };
        size_t out = 0;
        const auto expect = [&](double x, double y) {
            EXPECT_EQ(bezier[out].x, static_cast<int32_t>(x)) << "round " << round << ", point " << out;
            EXPECT_EQ(bezier[out++].y, static_cast<int32_t>(y));
        };
        expect(at(start + 1).x, at(start + 1).y);
        for (size_t i = start; out + 1 < bezier.size(); ++i) {
            const POINT p0 = at(i), p1 = at(i + 1), p2 = at(i + 2), p3 = at(i + 3);
            expect(p1.x + tension / 3 * (p2.x - p0.x), p1.y + tension / 3 * (p2.y - p0.y));
            expect(p2.x - tension / 3 * (p3.x - p1.x), p2.y - tension / 3 * (p3.y - p1.y));
            expect(p2.x, p2.y);
        }
        EXPECT_EQ(bezier[out].x, -7);
    }
}

TEST(Curves, RefuseBadOnes) {
    const std::vector<POINT> points = {{0, 0}, {9, 0}, {9, 9}, {INT32_MAX, INT32_MIN}};
    POINT bezier[16] = {{-7, 0}};
    int32_t count = -7;
    const auto refused = [&](Curve curve, auto change) {
        change(curve);
        EXPECT_EQ(Z_CurveToBezier(&curve, &count, bezier), code::InvalidArgument);
        EXPECT_TRUE(count == -7 && bezier[0].x == -7);
    };
    const Curve good = CurveOf(points, Z_CURVE_CARDINAL, Z_CURVE_OPEN, 0.5);
    refused(good, [](Curve& curve) { curve.StructSize -= 4; });
    refused(good, [](Curve& curve) { curve.Close = 3; });
    refused(good, [](Curve& curve) { curve.PointCount = 3; });
    refused(good, [](Curve& curve) { curve.Points = nullptr; });
    refused(good, [](Curve& curve) { curve.Tension = NAN; });
    refused(good, [](Curve& curve) { curve.Tension = 1e9; }); // coordinates leave 32 bits
    refused(good, [](Curve& curve) {
        curve.Close = Z_CURVE_CLOSED;
        curve.PointCount = 1 << 30;
    });
    EXPECT_EQ(Z_CurveToBezier(&good, nullptr, bezier), code::InvalidArgument);
    EXPECT_EQ(Z_CurveToBezier(nullptr, &count, bezier), code::InvalidArgument);

    Sheet sheet(10, 10);
    const auto set = [&](Curve curve) { return Z_SetBitmapRgnCurve(&sheet, nullptr, &curve, Z_RGN_SET); };
    Curve curve = good;
    curve.PointCount = 3;
    EXPECT_EQ(set(curve), code::OutOfMemory); // no segment
    curve.Tension = 1.5;
    EXPECT_EQ(set(curve), code::InvalidArgument);
    curve = CurveOf(points, Z_CURVE_BEZIER, 99, NAN);
    curve.PointCount = 3;
    EXPECT_EQ(set(curve), code::InvalidArgument);
    curve = good;
    curve.CurveType = 2;
    EXPECT_EQ(set(curve), code::InvalidArgument);
    curve = good;
    curve.FillMode = 2;
    EXPECT_EQ(set(curve), code::InvalidArgument);
    EXPECT_EQ(sheet.Region, nullptr);
}

// A spline without tension is the polygon of its points.
TEST(Curves, HoldTheirInside) {
    const std::vector<POINT> square = {{4, 4}, {24, 4}, {24, 24}, {4, 24}};
    Sheet sheet(40, 40);
    Curve curve = CurveOf(square, Z_CURVE_CARDINAL, Z_CURVE_CLOSED, 0);
    ASSERT_EQ(Z_SetBitmapRgnCurve(&sheet, nullptr, &curve, Z_RGN_SET), 1);
    EXPECT_EQ(sheet.Set(), PixelSet::Of({4, 4, 24, 24}));
    curve.Tension = 1;
    ASSERT_EQ(Z_SetBitmapRgnCurve(&sheet, nullptr, &curve, Z_RGN_SET), 1);
    EXPECT_TRUE(sheet.Set().Has(14, 1) && sheet.Set().Has(1, 14) && !sheet.Set().Has(1, 1));
    // A quarter of an ellipse as a Bezier curve, closed by its chord.
    const std::vector<POINT> arc = {{0, 30}, {0, 13}, {13, 0}, {30, 0}};
    curve = CurveOf(arc, Z_CURVE_BEZIER, 99, NAN);
    ASSERT_EQ(Z_SetBitmapRgnCurve(&sheet, nullptr, &curve, Z_RGN_SET), 1);
    ExpectShape(sheet.Set(), [](double x, double y) {
        const double arcSide = 30 - std::hypot(30 - x, 30 - y), chordSide = (30 - x - y) / std::sqrt(2.0);
        const double inside = std::min(arcSide, chordSide);
        return std::abs(inside) < 0.7 ? 0 : inside; // flattened
    });
}

TEST(RegionOfBitmap, TellsRuns) {
    Seeded seeded(51);
    for (int round = 0; round < 300; ++round) {
        const bool isUnclipped = round % 2 == 0;
        Sheet sheet(seeded.Between(1, 30), seeded.Between(1, 10), isUnclipped);
        const int32_t margin = isUnclipped ? 8 : 0;
        const PixelSet set =
            PixelSet::Random(seeded, {-margin, -margin, sheet.Width + margin, sheet.Height + margin});
        sheet.Region = RegionFrom(set);
        uint32_t most = 0;
        ASSERT_EQ(Z_GetBitmapClipSegmentsMax(&sheet, &most), 1);
        const PixelRect bounds = BoundsOf(*RegionOf(sheet));
        ASSERT_EQ(most, static_cast<uint32_t>(bounds.Width() + 1) & ~1u);
        uint32_t area = 0;
        ASSERT_EQ(Z_GetBitmapRgnArea(&sheet, &area), 1);
        ASSERT_EQ(area, set.Bits.count());
        for (int32_t row = -10; row < 20; ++row) {
            std::vector<int32_t> segments(most + 2, -99);
            uint32_t count = 99;
            ASSERT_EQ(Z_GetBitmapClipSegments(&sheet, row, segments.data(), &count), 1);
            ASSERT_LE(count, most);
            std::vector<int32_t> expected;
            for (int32_t x = -40; x < 50; ++x) {
                const bool inside =
                    set.Has(x, row) &&
                    (!isUnclipped || (x >= 0 && x < sheet.Width && row >= 0 && row < sheet.Height));
                if (inside != (expected.size() % 2 != 0)) expected.push_back(x);
                ASSERT_EQ(Z_IsPtInBitmapRgn(&sheet, row, x), set.Has(x, row)) << row << ", " << x;
            }
            segments.resize(count);
            ASSERT_EQ(segments, expected) << "row " << row;
        }
    }
}

TEST(RegionOfBitmap, DiffersFromNone) {
    Sheet sheet(12, 7);
    int32_t segments[4];
    uint32_t count = 0, most = 0, area = 0;
    RECT bounds{};
    EXPECT_EQ(Z_BitmapHasRgn(&sheet) + Z_BitmapHasRgn(nullptr), 0);
    EXPECT_EQ(
        Z_GetBitmapClipSegmentsMax(&sheet, &most) + Z_GetBitmapClipSegments(&sheet, 99, segments, &count), 2);
    EXPECT_TRUE(most == 2 && count == 2 && segments[0] == 0 && segments[1] == 12);
    EXPECT_EQ(Z_GetBitmapRgnArea(&sheet, &area) + Z_GetBitmapRgnBounds(&sheet, nullptr, &bounds), 2);
    EXPECT_TRUE(area == 84 && bounds.right == 12 && bounds.bottom == 7);
    EXPECT_EQ(Z_IsPtInBitmapRgn(&sheet, 6, 11), 1);
    EXPECT_EQ(Z_IsPtInBitmapRgn(&sheet, 11, 6) + Z_IsPtInBitmapRgn(nullptr, 0, 0), 0);

    sheet.Region = RegionFrom({});
    EXPECT_EQ(Z_BitmapHasRgn(&sheet), 1);
    EXPECT_EQ(
        Z_GetBitmapClipSegmentsMax(&sheet, &most) + Z_GetBitmapClipSegments(&sheet, 1, segments, &count), 2);
    EXPECT_TRUE(most == 0 && count == 0);
    EXPECT_EQ(Z_GetBitmapRgnArea(&sheet, &area) + Z_GetBitmapRgnBounds(&sheet, nullptr, &bounds), 2);
    EXPECT_TRUE(area == 0 && bounds.right == 0 && bounds.bottom == 0);
    EXPECT_EQ(Z_FreeBitmapRgn(&sheet) + Z_FreeBitmapRgn(&sheet), 2);
    EXPECT_EQ(Z_FreeBitmapRgn(nullptr), code::InvalidArgument);

    sheet.Region = RegionFrom(PixelSet::Of({-5, 3, 4, 20}));
    Sheet none(0, 7, true); // which no run reaches
    none.Region = RegionFrom(PixelSet::Of({-5, 3, 4, 20}));
    EXPECT_EQ(Z_GetBitmapClipSegments(&none, 3, segments, &count), 1);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(Z_GetBitmapRgnBoundsClip(&sheet, nullptr, &bounds), 1);
    EXPECT_EQ(PixelRect::Of(bounds), (PixelRect{0, 3, 4, 7}));
    const RegionXform away = {0, 1, 1, 1, 1, 50, 0};
    EXPECT_EQ(Z_GetBitmapRgnBoundsClip(&sheet, &away, &bounds), 1);
    EXPECT_EQ(PixelRect::Of(bounds), PixelRect{});
    EXPECT_EQ(Z_GetBitmapRgnBounds(&sheet, &away, nullptr), code::InvalidArgument);
    EXPECT_EQ(Z_GetBitmapRgnBoundsClip(nullptr, &away, nullptr), code::InvalidBitmap);
}

TEST(RegionOfBitmap, IsMovedRowsFirst) {
    Sheet sheet(12, 7);
    ASSERT_EQ(Z_OffsetBitmapRgn(&sheet, 2, -5), 1);
    EXPECT_EQ(sheet.Set(), PixelSet::Of({0, 2, 7, 7}));
    sheet.Flags = flag::RegionUnclipped;
    ASSERT_EQ(Z_OffsetBitmapRgn(&sheet, 0, 10), 1);
    EXPECT_EQ(sheet.Set(), PixelSet::Of({10, 2, 17, 7}));
    ASSERT_EQ(Z_OffsetBitmapRgn(&sheet, INT32_MAX, 0), code::InvalidArgument);
    EXPECT_EQ(sheet.Set(), PixelSet::Of({10, 2, 17, 7}));
    EXPECT_EQ(Z_OffsetBitmapRgn(nullptr, 0, 0), code::InvalidBitmap);
}

} // namespace

} // namespace zkr::test
