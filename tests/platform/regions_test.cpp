// Regions against grids of pixels. Set operations must agree everywhere; where the system is free to choose
// the pixels at the edge of a shape, EdgeSlack says how far from it.
#include "region_pixels.h"
#include "zkr13n/surface.h"

#include <cmath>
#include <functional>
#include <random>

namespace zkr {
namespace {

using namespace platform;

using Random = std::mt19937;

int Between(Random& random, int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
}
RECT RandomRect(Random& random, int side = Grid::Side) {
    const int left = Between(random, 0, side - 1), top = Between(random, 0, side - 1);
    return {left, top, left + Between(random, 1, 12), top + Between(random, 1, 12)};
}

TEST(Regions, CombineAsSetsOfPixels) {
    Random random(1);
    for (int round = 0; round < 400; ++round) {
        std::vector<RECT> rects[2];
        HRGN regions[2];
        Grid grids[2];
        for (int i = 0; i < 2; ++i) {
            for (int k = Between(random, 0, 12); k > 0; --k)
                rects[i].push_back(RandomRect(random, 37));
            regions[i] = RegionOf(rects[i]); // in any order, overlapping
            for (const RECT& rect : rects[i])
                grids[i].Add(rect);
            ASSERT_EQ(GridOf(regions[i]), grids[i]);
        }
        for (const int mode : {RGN_AND, RGN_OR, RGN_XOR, RGN_DIFF, RGN_COPY}) {
            Grid wanted;
            for (size_t i = 0; i < wanted.pixels.size(); ++i) {
                const bool a = grids[0].pixels[i], b = grids[1].pixels[i];
                wanted.pixels[i] = mode == RGN_AND    ? a && b
                                   : mode == RGN_OR   ? a || b
                                   : mode == RGN_XOR  ? a != b
                                   : mode == RGN_DIFF ? a && !b
                                                      : a;
            }
            HRGN result = CreateRectRgn(3, 3, 9, 9);
            EXPECT_NE(CombineRgn(result, regions[0], mode == RGN_COPY ? nullptr : regions[1], mode), ERROR);
            EXPECT_EQ(GridOf(result), wanted) << "mode " << mode;
            EXPECT_NE(CombineRgn(result, regions[0], nullptr, RGN_COPY), ERROR);
            EXPECT_NE(CombineRgn(result, result, regions[1], mode), ERROR); // onto a source
            EXPECT_EQ(GridOf(result), wanted) << "mode " << mode;
            DeleteObject(result);
        }
        EXPECT_EQ(GridOf(regions[0]), grids[0]);
        DeleteObject(regions[0]);
        DeleteObject(regions[1]);
    }
}

TEST(Regions, MoveAndShareNothing) {
    HRGN region = RegionOf({{1, 1, 4, 3}, {2, 3, 9, 5}}), copy = CreateRectRgn(0, 0, 1, 1);
    CombineRgn(copy, region, nullptr, RGN_COPY);
    EXPECT_EQ(OffsetRgn(copy, 5, -1), COMPLEXREGION);
    Grid moved, stayed;
    moved.Add({6, 0, 9, 2});
    moved.Add({7, 2, 14, 4});
    stayed.Add({1, 1, 4, 3});
    stayed.Add({2, 3, 9, 5});
    EXPECT_EQ(GridOf(copy), moved);
    EXPECT_EQ(GridOf(region), stayed);
    EXPECT_TRUE(DeleteObject(region));
    EXPECT_TRUE(DeleteObject(copy));
}

TEST(Regions, ExchangeSidesInTheWrongOrder) {
    HRGN region = CreateRectRgn(9, 8, 3, 2);
    Grid wanted;
    wanted.Add({3, 2, 9, 8});
    EXPECT_EQ(GridOf(region), wanted);
    DeleteObject(region);
    region = CreateRectRgn(5, 5, 5, 9);
    EXPECT_TRUE(RectsOf(region).empty());
    DeleteObject(region);
}

// Signed distance from the ellipse's edge, roughly; negative inside.
double FromEllipse(double x, double y, double radiusX, double radiusY) {
    const double scaled = std::hypot(x / radiusX, y / radiusY);
    return (scaled - 1) * std::min(radiusX, radiusY);
}

TEST(Regions, RoundShapesHoldTheCentresInside) {
    for (const RECT& rect : {RECT{3, 4, 44, 30}, RECT{2, 2, 13, 45}, RECT{5, 6, 25, 26}, RECT{1, 1, 46, 4},
                             RECT{7, 7, 8, 20}, RECT{0, 0, 2, 2}, RECT{2, 3, 39, 7}, RECT{5, 5, 21, 7}}) {
        const int width = rect.right - rect.left, height = rect.bottom - rect.top;
        for (const auto& [cornerWidth, cornerHeight] :
             {std::pair{width, height}, {6, 9}, {11, 4}, {100, 5}, {0, 7}}) {
            const bool ellipse = cornerWidth == width && cornerHeight == height;
            HRGN region = ellipse ? CreateEllipticRgnIndirect(&rect)
                                  : CreateRoundRectRgn(rect.left, rect.top, rect.right, rect.bottom,
                                                       cornerWidth, cornerHeight);
            for (const RECT& part : RectsOf(region))
                ASSERT_TRUE(part.left < part.right && part.top < part.bottom) << width << 'x' << height;
            Grid grid = GridOf(region);
            const double radiusX = std::min(cornerWidth, width) / 2.0;
            const double radiusY = std::min(cornerHeight, height) / 2.0;
            for (int y = 0; y < Grid::Side; ++y) {
                for (int x = 0; x < Grid::Side; ++x) {
                    const double cx = x + 0.5, cy = y + 0.5;
                    // From the nearest point of the box of the corners' middles.
                    const double fromX = cx - std::clamp(cx, rect.left + radiusX, rect.right - radiusX);
                    const double fromY = cy - std::clamp(cy, rect.top + radiusY, rect.bottom - radiusY);
                    double distance;
                    if (radiusX >= 1 && radiusY >= 1)
                        distance = FromEllipse(fromX, fromY, radiusX, radiusY);
                    else
                        distance =
                            std::max({rect.left - cx, cx - rect.right, rect.top - cy, cy - rect.bottom});
                    if (std::abs(distance) > EdgeSlack) {
                        ASSERT_EQ(grid.At(x, y), distance < 0)
                            << x << ',' << y << " of " << width << 'x' << height << " corners " << cornerWidth
                            << 'x' << cornerHeight;
                    }
                }
            }
            DeleteObject(region);
        }
    }
}

struct Place {
    double x;
    double y;
};

double ToSegment(Place p, Place a, Place b) {
    const double dx = b.x - a.x, dy = b.y - a.y, length = dx * dx + dy * dy;
    const double t = length == 0 ? 0 : std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length, 0.0, 1.0);
    return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

// Whether a polygon's fill covers pixels as its edges to the left of their centres say. Centres within slack
// of an edge are not asked.
void ExpectFilled(Grid grid, const std::vector<Place>& points, bool alternate, double slack) {
    for (int y = 0; y < Grid::Side; ++y) {
        for (int x = 0; x < Grid::Side; ++x) {
            const Place centre{x + 0.5, y + 0.5};
            int winding = 0, crossings = 0;
            double distance = 1e9;
            for (size_t i = 0; i < points.size(); ++i) {
                const Place a = points[i], b = points[(i + 1) % points.size()];
                distance = std::min(distance, ToSegment(centre, a, b));
                if ((a.y <= centre.y) == (b.y <= centre.y)) continue;
                // Exact for whole coordinates: the side of the centre on which the edge lies.
                const double side = (centre.x - a.x) * (b.y - a.y) - (centre.y - a.y) * (b.x - a.x);
                if (b.y > a.y ? side < 0 : side > 0) continue;
                winding += b.y > a.y ? 1 : -1;
                ++crossings;
            }
            if (slack > 0 && distance <= slack) continue;
            ASSERT_EQ(grid.At(x, y), alternate ? crossings % 2 == 1 : winding != 0) << x << ',' << y;
        }
    }
}

TEST(Regions, PolygonsHoldTheCentresInside) {
    Random random(2);
    for (int round = 0; round < 300; ++round) {
        const bool alternate = round % 2 == 0, level = round % 3 == 0;
        std::vector<POINT> points;
        std::vector<Place> places;
        for (int k = 2 * Between(random, 2, 7); k > 0; --k) {
            POINT point{Between(random, 0, 47), Between(random, 0, 47)};
            if (level && !points.empty()) { // edges along rows and columns in turn
                if (k % 2 == 0)
                    point.x = points.back().x;
                else
                    point.y = points.back().y;
                if (k == 1) point.x = points.front().x;
            }
            points.push_back(point);
        }
        if (level) points.back() = {points.front().x, points[points.size() - 2].y};
        for (const POINT& point : points)
            places.push_back({static_cast<double>(point.x), static_cast<double>(point.y)});
        bool along = true;
        for (size_t i = 0; i < points.size(); ++i) {
            const POINT &a = points[i], &b = points[(i + 1) % points.size()];
            along &= a.x == b.x || a.y == b.y;
        }
        HRGN region =
            CreatePolygonRgn(points.data(), static_cast<int>(points.size()), alternate ? ALTERNATE : WINDING);
        ASSERT_NE(region, nullptr);
        ExpectFilled(GridOf(region), places, alternate, along ? 0 : EdgeSlack);
        DeleteObject(region);
    }
}

TEST(Regions, PathsOfCurvesHoldTheCentresInside) {
    Random random(3);
    for (int round = 0; round < 40; ++round) {
        std::vector<POINT> points;
        std::vector<Place> fine;
        for (int k = 1 + 3 * Between(random, 1, 4); k > 0; --k)
            points.push_back({Between(random, 0, 47), Between(random, 0, 47)});
        for (size_t i = 0; i + 3 < points.size(); i += 3) {
            for (int step = 0; step < 100; ++step) {
                const double t = step / 100.0, s = 1 - t;
                const double weights[4] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
                Place place{0, 0};
                for (size_t k = 0; k < 4; ++k) {
                    place.x += weights[k] * points[i + k].x;
                    place.y += weights[k] * points[i + k].y;
                }
                fine.push_back(place);
            }
        }
        fine.push_back({static_cast<double>(points.back().x), static_cast<double>(points.back().y)});
        const bool alternate = round % 2 == 0;
        HDC context = CreateCompatibleDC(nullptr);
        EXPECT_NE(SetPolyFillMode(context, alternate ? ALTERNATE : WINDING), 0);
        EXPECT_TRUE(BeginPath(context));
        EXPECT_TRUE(PolyBezier(context, points.data(), static_cast<DWORD>(points.size())));
        EXPECT_TRUE(EndPath(context));
        HRGN region = PathToRegion(context);
        ASSERT_NE(region, nullptr);
        ExpectFilled(GridOf(region), fine, alternate, std::max(EdgeSlack, 0.05));
        DeleteObject(region);
        EXPECT_TRUE(DeleteDC(context));
    }
}

TEST(Regions, HoldHundredsOfThousandsOfRectangles) {
#ifdef _WIN32
    constexpr int Rows = 64, Runs = 60; // there each rectangle is joined to all before it
#else
    constexpr int Rows = 512, Runs = 400;
#endif
    std::vector<RECT> rects;
    for (int y = 0; y < Rows; ++y) {
        for (int x = 0; x < Runs; ++x)
            rects.push_back({2 * x + y % 2, y, 2 * x + 1 + y % 2, y + 1});
    }
    HRGN board = RegionOf(rects), whole = CreateRectRgn(0, 0, 2 * Runs, Rows);
    HRGN rest = CreateRectRgn(0, 0, 1, 1);
    ASSERT_NE(board, nullptr);
    EXPECT_EQ(CombineRgn(rest, whole, board, RGN_DIFF), COMPLEXREGION);
    EXPECT_EQ(RectsOf(rest).size(), size_t{Rows} * Runs);
    EXPECT_EQ(CombineRgn(rest, rest, board, RGN_OR), SIMPLEREGION);
    EXPECT_EQ(CombineRgn(rest, rest, whole, RGN_AND), SIMPLEREGION);
    for (HRGN region : {board, whole, rest})
        EXPECT_TRUE(DeleteObject(region));
}

TEST(Regions, RefuseWhatIsNone) {
    HRGN region = CreateRectRgn(0, 0, 4, 4);
    RECT box{7, 7, 7, 7};
#ifndef _WIN32 // Wine asks neither
    RGNDATA data{};
    data.rdh = {sizeof(RGNDATAHEADER), RDH_RECTANGLES, 2, 0, {}};
    EXPECT_EQ(ExtCreateRegion(nullptr, sizeof(RGNDATAHEADER), &data), nullptr) << "more than there is";
    const POINT points[3] = {{0, 0}, {5, 0}, {0, 5}};
    EXPECT_EQ(CreatePolygonRgn(points, 3, 7), nullptr);
#endif
    EXPECT_TRUE(DeleteObject(region));
    EXPECT_EQ(GetRgnBox(region, &box), ERROR) << "deleted";
    EXPECT_EQ(OffsetRgn(region, 1, 1), ERROR);
    EXPECT_EQ(GetRegionData(region, 0, nullptr), 0u);
    EXPECT_FALSE(DeleteObject(region));
    EXPECT_EQ(GetRgnBox(nullptr, &box), ERROR);
}

#ifndef _WIN32

TEST(Regions, OfTheHostComeAndGoAsRectangles) {
    const RECT rects[] = {{4, 4, 8, 8}, {0, 0, 5, 5}, {3, 3, 1, 9}, {8, 4, 9, 8}};
    HRGN region = nullptr;
    ASSERT_EQ(Z_CreatePlatformRegion(rects, 4, &region), Z_SUCCESS);
    RECT got[3] = {};
    int32_t count = 2;
    ASSERT_EQ(Z_GetPlatformRegionRects(region, got, &count), Z_SUCCESS);
    const RECT wanted[3] = {{0, 0, 5, 4}, {0, 4, 9, 5}, {}};
    EXPECT_EQ(count, 3);
    EXPECT_EQ(std::memcmp(got, wanted, sizeof got), 0) << "no more than there is room for";
    count = 0;
    EXPECT_EQ(Z_GetPlatformRegionRects(region, nullptr, &count), Z_SUCCESS);
    EXPECT_EQ(count, 3);
    for (int32_t bad : {-1, 1}) {
        count = bad;
        EXPECT_EQ(Z_GetPlatformRegionRects(region, nullptr, &count), Z_ERROR_ARGUMENT);
    }
    EXPECT_EQ(Z_DeleteObject(region), Z_SUCCESS);
    EXPECT_EQ(Z_GetPlatformRegionRects(region, got, &count), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_DeleteObject(region), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_CreatePlatformRegion(nullptr, 1, &region), Z_ERROR_ARGUMENT);
    ASSERT_EQ(Z_CreatePlatformRegion(nullptr, 0, &region), Z_SUCCESS);
    EXPECT_EQ(Z_DeleteObject(region), Z_SUCCESS);
}

// Coordinates at the ends of 32 bits: the right pixels or a refusal, and soon.
TEST(Regions, BearShapesOfAnySize) {
    constexpr int Low = -0x7FFFFFFF - 1, High = 0x7FFFFFFF;
    HRGN region = CreateRectRgn(0, 0, 9, 9);
    EXPECT_EQ(OffsetRgn(region, High - 8, 0), ERROR);
    EXPECT_EQ(RectsOf(region)[0].right, 9);
    DeleteObject(region);
    region = CreateRoundRectRgn(Low, Low, High, High, 10, 8);
    ASSERT_NE(region, nullptr);
    RECT box;
    EXPECT_EQ(GetRgnBox(region, &box), COMPLEXREGION);
    EXPECT_EQ(box.right, High);
    DeleteObject(region);
    region = CreateRoundRectRgn(0, Low, 6, High, 6, -1 - Low);
    EXPECT_EQ(RectsOf(region).size(), 5u) << "as many bands as columns less one";
    DeleteObject(region);
    const RECT all{Low, Low, High, High};
    EXPECT_EQ(CreateEllipticRgnIndirect(&all), nullptr);
    const POINT square[] = {{Low, Low}, {High, Low}, {High, High}, {Low, High}};
    region = CreatePolygonRgn(square, 4, WINDING);
    EXPECT_EQ(RectsOf(region).size(), 1u);
    DeleteObject(region);
    const POINT slanted[] = {{Low, Low}, {High, 7}, {100, High}};
    EXPECT_EQ(CreatePolygonRgn(slanted, 3, WINDING), nullptr);
}

#endif

} // namespace
} // namespace zkr
