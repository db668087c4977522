// The warp against a plain model that maps and blends pixel after pixel, over all depths, storages and views.
#include "core/reports.h"
#include "geometry/picture.h"
#include "support/seeded.h"

#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/views.h"
#include "zkr13n/warp.h"

#include <array>
#include <cmath>

namespace zkr::test {
namespace {

struct Call {
    WarpPoints points;
    int32_t left, top, width, height;
    uint32_t flags;
};

uint64_t Blended(const std::array<uint64_t, 4>& samples, double tx, double ty, int bits, bool isColour16) {
    const int channelBits = bits == 1 || bits == 12    ? bits
                            : isColour16               ? 5
                            : bits == 16 || bits >= 48 ? 16
                                                       : 8;
    const int channels = isColour16 ? 3 : bits / channelBits;
    uint64_t all = 0;
    for (int c = 0; c < channels; ++c) {
        std::array<double, 4> v;
        for (size_t k = 0; k < 4; ++k)
            v[k] = static_cast<double>(samples[k] >> (c * channelBits) & ((uint64_t{1} << channelBits) - 1));
        double value =
            (1 - tx) * (1 - ty) * v[0] + tx * (1 - ty) * v[1] + (1 - tx) * ty * v[2] + tx * ty * v[3];
        if (bits == 1) value = std::floor(value + 0.5);
        all |= static_cast<uint64_t>(value) << (c * channelBits);
    }
    return all;
}

struct Corner {
    int64_t x, y;
};

// The corners as stored pixels of the destination, in the order of the stored rectangle's corners: its top left one
// is the picture's corner after which the source's view is named.
std::array<Corner, 4> StoredCorners(BitmapHandle& destination, const BitmapHandle& source,
                                    const WarpPoints& p) {
    const POINT &tl = p.TopLeft, &tr = p.TopRight, &br = p.BottomRight, &bl = p.BottomLeft;
    std::array<POINT, 4> order = {tl, tr, br, bl};
    switch (source.ViewPerspective) {
    case 1: order = {tr, tl, bl, br}; break;
    case 2: order = {bl, br, tr, tl}; break;
    case 3: order = {br, bl, tl, tr}; break;
    case 4: order = {tr, br, bl, tl}; break;
    case 5: order = {tl, bl, br, tr}; break;
    case 7: order = {br, tr, tl, bl}; break;
    case 8: order = {bl, tl, tr, br}; break;
    default: break;
    }
    std::array<Corner, 4> stored;
    for (size_t i = 0; i < 4; ++i) {
        int32_t x = order[i].x, y = order[i].y;
        EXPECT_EQ(Z_PointToBitmap(&destination, 0, &x, &y), 1);
        stored[i] = {x, y};
    }
    return stored;
}

Picture Expected(BitmapHandle& destination, BitmapHandle& source, const Call& call, bool isBlended) {
    Picture result = Picture::Of(destination);
    const bool isSame = destination.Addr == source.Addr && destination.StorageHandle == source.StorageHandle;
    const Picture original = Picture::Of(source);
    const auto p = StoredCorners(destination, source, call.points);
    int32_t x0 = call.left, y0 = call.top, x1 = call.left + call.width - 1, y1 = call.top + call.height - 1;
    Z_PointToBitmap(&source, 0, &x0, &y0);
    Z_PointToBitmap(&source, 0, &x1, &y1);
    const int left = std::min(x0, x1), top = std::min(y0, y1);
    const int width = std::abs(x1 - x0) + 1, height = std::abs(y1 - y0) + 1;

    const auto D = [](int64_t v) { return static_cast<double>(v); };
    const int64_t sx = p[0].x - p[1].x + p[2].x - p[3].x, sy = p[0].y - p[1].y + p[2].y - p[3].y;
    double a, b, d, e, g = 0, h = 0;
    const double c = D(p[0].x), f = D(p[0].y);
    if (sx == 0 && sy == 0) {
        a = D(p[1].x - p[0].x), b = D(p[2].x - p[1].x), d = D(p[1].y - p[0].y), e = D(p[2].y - p[1].y);
    } else {
        const int64_t dx1 = p[1].x - p[2].x, dx2 = p[3].x - p[2].x, dy1 = p[1].y - p[2].y,
                      dy2 = p[3].y - p[2].y;
        const double den = D(dx1 * dy2 - dx2 * dy1);
        g = D(sx * dy2 - dx2 * sy) / den, h = D(dx1 * sy - sx * dy1) / den;
        a = D(p[1].x - p[0].x) + g * D(p[1].x), b = D(p[3].x - p[0].x) + h * D(p[3].x);
        d = D(p[1].y - p[0].y) + g * D(p[1].y), e = D(p[3].y - p[0].y) + h * D(p[3].y);
    }
    const double n[9] = {e - f * h,     c * h - b,     b * f - c * e, f * g - d,    a - c * g,
                         c * d - a * f, d * h - e * g, b * g - a * h, a * e - b * d};
    int64_t minX = p[0].x, maxX = minX, minY = p[0].y, maxY = minY;
    for (const Corner& corner : p)
        minX = std::min(minX, corner.x), maxX = std::max(maxX, corner.x), minY = std::min(minY, corner.y),
        maxY = std::max(maxY, corner.y);

    for (int y = static_cast<int>(minY); y <= maxY; ++y) {
        const Picture sampled = isSame ? result : original;
        for (int x = static_cast<int>(minX); x <= maxX; ++x) {
            const double w = x * n[6] + y * n[7] + n[8];
            const double u = (x * n[0] + y * n[1] + n[2]) / w, v = (x * n[3] + y * n[4] + n[5]) / w;
            if (!isBlended) {
                const double column = std::floor((width - 1) * u + 0.5),
                             row = std::floor((height - 1) * v + 0.5);
                if (column >= 0 && column <= width - 1 && row >= 0 && row <= height - 1)
                    result.Set(x, y,
                               sampled.At(left + static_cast<int>(column), top + static_cast<int>(row)));
                continue;
            }
            const double fx = (width - 1) * u + left, fy = (height - 1) * v + top;
            if (!(left - 1 <= fx && fx < left + width && top - 1 <= fy && fy < top + height)) continue;
            const int ix = static_cast<int>(std::floor(fx)), iy = static_cast<int>(std::floor(fy));
            std::array<uint64_t, 4> samples;
            for (int k = 0; k < 4; ++k) {
                const int sampleX = ix + k % 2, sampleY = iy + k / 2;
                const bool inside =
                    sampleX >= left && sampleX < left + width && sampleY >= top && sampleY < top + height;
                samples[static_cast<size_t>(k)] = inside ? sampled.At(sampleX, sampleY) : result.At(x, y);
            }
            result.Set(x, y,
                       Blended(samples, fx - ix, fy - iy, source.BitsPerPixel,
                               source.BitsPerPixel == 16 && source.Order != 2));
        }
    }
    return result;
}

int32_t Viewed(const BitmapHandle& bitmap, bool wantsWidth) {
    return (bitmap.ViewPerspective >= 4) == wantsWidth ? bitmap.Height : bitmap.Width;
}

Call RandomCall(Seeded& random, const BitmapHandle& destination, const BitmapHandle& source, uint32_t flags) {
    Call call = {};
    call.flags = flags;
    const int w = Viewed(destination, true), h = Viewed(destination, false);
    if (random.Below(4) == 0) { // a parallelogram
        const int x = random.Below(w / 3), y = random.Below(h / 3);
        const int dx = 1 + random.Below(w / 3), dy = random.Below(h / 3), ex = random.Below(w / 3),
                  ey = 1 + random.Below(h / 3 - 1);
        call.points = {{x, y}, {x + dx, y + dy}, {x + dx + ex, y + dy + ey}, {x + ex, y + ey}};
    } else {
        const auto at = [&](int x, int y) { return POINT{x + random.Below(w / 2), y + random.Below(h / 2)}; };
        call.points = {at(0, 0), at(w / 2, 0), at(w / 2, h / 2), at(0, h / 2)};
    }
    if (random.Below(3) == 0) std::swap(call.points.TopRight, call.points.BottomLeft);
    const int sw = Viewed(source, true), sh = Viewed(source, false);
    call.left = random.Below(sw), call.top = random.Below(sh);
    call.width = 1 + random.Below(sw - call.left), call.height = 1 + random.Below(sh - call.top);
    return call;
}

ReturnCode Run(BitmapHandle& destination, BitmapHandle& source, const Call& c) {
    return Z_CombineBitmapWarp(&destination, &c.points, &source, c.left, c.top, c.width, c.height, c.flags);
}

// What does not turn the same way at each corner is refused and changes nothing.
void CheckRandomCalls(BitmapHandle& destination, BitmapHandle& source, int calls, bool mayBlend,
                      Seeded& random) {
    int drawn = 0;
    for (int i = 0; i < calls; ++i) {
        const uint32_t flags =
            WARP_REQUIRED | (random.Below(2) != 0 ? WARP_BILINEAR : 0) | (random.Below(2) != 0 ? 0x2FE : 0);
        const Call call = RandomCall(random, destination, source, flags);
        const Picture before = Picture::Of(destination);
        const Picture expected =
            Expected(destination, source, call, mayBlend && (flags & WARP_BILINEAR) != 0);
        const ReturnCode result = Run(destination, source, call);
        ASSERT_TRUE(result == 1 || result == Z_ERROR_ARGUMENT) << result;
        drawn += result == 1;
        ASSERT_TRUE(Picture::Of(destination) == (result == 1 ? expected : before))
            << destination.BitsPerPixel << " bits, views " << source.ViewPerspective << " to "
            << destination.ViewPerspective << ", call " << i << ", result " << result << ", flags " << flags;
    }
    EXPECT_GT(drawn, calls / 4);
}

TEST(Warp, DrawsEveryDepthInEveryView) {
    Seeded random(1);
    for (const int bits : AllDepths) {
        for (int order = 0; order <= (bits == 16 || bits == 8 ? 2 : 0); order += 2) {
            for (int i = 0; i < 12; ++i) {
                Bitmap source, destination;
                const int32_t sourceView = AllViews[random.Below(8)], view = AllViews[random.Below(8)];
                const bool isGrayRamp = bits == 8 && order == 2;
                RGBQUAD ramp[256];
                for (int entry = 0; entry < 256; ++entry) {
                    const auto gray = static_cast<uint8_t>(entry);
                    ramp[entry] = {gray, gray, gray, 0};
                }
                Z_CreateBitmap(&source, MemoryConventional, 40 + random.Below(30), 31, bits, order,
                               isGrayRamp ? ramp : nullptr, sourceView, nullptr, 0);
                Z_CreateBitmap(&destination, MemoryConventional, 90, 50 + random.Below(50), bits, order,
                               isGrayRamp ? ramp : nullptr, view, nullptr, 0);
                Fill(source, 5);
                Fill(destination, 6);
                const bool mayBlend = bits == 1 || isGrayRamp || bits > 8;
                CheckRandomCalls(destination, source, 8, mayBlend, random);
            }
        }
    }
}

// Pieces of a row that lie well inside the source have a way of their own, which must leave where places or blends fall on
// whole numbers: on pictures at their size and at twice that, and on flat ones.
TEST(Warp, DrawsLongRowsToTheByte) {
    Seeded random(3);
    for (const int bits : {8, 16, 24, 32, 48, 64}) {
        Bitmap source(300, 60, bits), destination(620, 130, bits);
        for (Bitmap* bitmap : {&source, &destination}) {
            Z_AllocateBitmap(bitmap, MemoryConventional);
            bitmap->ViewPerspective = 0;
        }
        Fill(source, 9);
        Fill(destination, 10);
        const size_t half = source.Size / 2;
        for (const bool isFlat : {false, true}) {
            if (isFlat) std::memset(static_cast<uint8_t*>(source.Addr) + half, 77, source.Size - half);
            CheckRandomCalls(destination, source, 10, bits > 8, random);
            for (const int scale : {1, 2}) {
                const int right = 299 * scale, bottom = 59 * scale;
                for (const uint32_t flags : {WARP_REQUIRED | 0u, WARP_REQUIRED | WARP_BILINEAR | 0u}) {
                    const Call call = {
                        {{0, 0}, {right, 0}, {right, bottom}, {0, bottom}}, 0, 0, 300, 60, flags};
                    const Picture expected =
                        Expected(destination, source, call, bits > 8 && (flags & WARP_BILINEAR) != 0);
                    ASSERT_EQ(test::Run(destination, source, call), 1);
                    ASSERT_TRUE(Picture::Of(destination) == expected) << bits << ' ' << scale;
                }
            }
        }
    }
}

TEST(Warp, SamplesEveryStorageAndItself) {
    Seeded random(2);
    for (const Storage& storage : AllStorages()) {
        for (const int bits : {1, 24}) {
            Bytes memory, otherMemory;
            Bitmap source(300, 40, bits), destination(60, 150, bits);
            Allocate(source, storage, memory);
            Allocate(destination, storage, otherMemory);
            for (Bitmap* bitmap : {&source, &destination})
                if (bits == 1) Z_CreateBitmapFixedPalette(bitmap);
            Fill(source, 7);
            Fill(destination, 8);
            SCOPED_TRACE(storage.Name);
            CheckRandomCalls(destination, source, 6, true, random);
            CheckRandomCalls(source, source, 6, true, random);
            BitmapHandle copy = source;
            CheckRandomCalls(source, copy, 6, true, random);
        }
    }
}

TEST(Warp, RefusesInTheOrderOfItsTests) {
    Bitmap a(20, 20, 4), b(20, 20, 4), deep(20, 20, 8), empty;
    for (Bitmap* bitmap : {&a, &b, &deep}) {
        Z_AllocateBitmap(bitmap, MemoryConventional);
        Z_CreateBitmapFixedPalette(bitmap);
    }
    const WarpPoints square = {{2, 2}, {9, 2}, {9, 9}, {2, 9}};
    const WarpPoints flat = {{2, 2}, {9, 2}, {15, 2}, {2, 9}}, crossed = {{2, 2}, {9, 9}, {9, 2}, {2, 9}};
    const WarpPoints wide = {{2, 2}, {20, 2}, {9, 9}, {2, 9}};
    const WarpPoints huge = {
        {INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MIN}, {INT32_MAX, INT32_MAX}, {INT32_MIN, INT32_MAX}};
    const auto call = [](BitmapHandle* to, const WarpPoints* points, BitmapHandle* from, int l, int t, int w,
                         int h, uint32_t flags = 0x100) {
        return Z_CombineBitmapWarp(to, points, from, l, t, w, h, flags);
    };
    EXPECT_EQ(call(nullptr, nullptr, nullptr, 0, 0, 0, 0, 0xFFFFFEFF), -16);
    EXPECT_EQ(call(nullptr, nullptr, &a, 0, 0, 0, 0, 0x500), -2);
    EXPECT_EQ(call(&a, &square, &empty, 0, 0, 5, 5), -2);
    EXPECT_EQ(call(&a, &square, &deep, 0, 0, 5, 5, 0x80000100), -13);
    EXPECT_EQ(call(&a, nullptr, &deep, 0, 0, 5, 5), -13);
    for (const WarpPoints& bad : {flat, crossed})
        EXPECT_EQ(call(&a, &bad, &deep, 0, 0, 5, 5), -13);
    EXPECT_EQ(call(&a, &huge, &deep, 0, 0, 5, 5), -27);
    for (const WarpPoints& bad : {wide, huge})
        EXPECT_EQ(call(&a, &bad, &b, 0, 0, 5, 5), -13);
    for (const auto& [l, t, w, h] : std::vector<std::array<int, 4>>{{-1, 0, 5, 5},
                                                                    {0, -1, 5, 5},
                                                                    {0, 0, 0, 5},
                                                                    {0, 0, 5, -1},
                                                                    {16, 0, 5, 5},
                                                                    {0, 16, 5, 5},
                                                                    {INT32_MAX, 0, INT32_MAX, 5}})
        EXPECT_EQ(call(&a, &square, &b, l, t, w, h), -13) << l << ' ' << t << ' ' << w << ' ' << h;
    EXPECT_EQ(call(&a, &square, &b, 0, 0, 20, 20), 1);
    Bitmap blank(20, 20, 24), other(20, 20, 24);
    Z_AllocateBitmap(&blank, MemoryUser); // its pixels are still to be told
    Z_AllocateBitmap(&other, MemoryConventional);
    EXPECT_EQ(call(&other, &square, &blank, 0, 0, 5, 5, 0x101), -2);
    EXPECT_EQ(call(&blank, &square, &other, 0, 0, 5, 5, 0x101), -2);

    RGBQUAD entries[16];
    Z_GetFixedPalette(entries, 4);
    const auto withEntry = [&](size_t index) {
        RGBQUAD changed[16];
        std::copy_n(entries, 16, changed);
        changed[index].rgbGreen ^= 1;
        return Z_PutBitmapColors(&b, 0, 16, changed);
    };
    ASSERT_EQ(withEntry(7), 1);
    EXPECT_EQ(call(&a, &square, &b, 0, 0, 5, 5), 1);
    ASSERT_EQ(withEntry(8), 1);
    EXPECT_EQ(call(&a, &square, &b, 0, 0, 5, 5), -13);

    Bitmap gray(20, 20, 16), colour(20, 20, 16);
    gray.Order = Z_ORDER_GRAY;
    for (Bitmap* bitmap : {&gray, &colour})
        Z_AllocateBitmap(bitmap, MemoryConventional);
    EXPECT_EQ(call(&gray, &square, &colour, 0, 0, 5, 5), -13);
    for (const int32_t noView : {6, 9, -1}) {
        colour.ViewPerspective = noView;
        EXPECT_EQ(call(&colour, &square, &colour, 0, 0, 5, 5), -13);
    }
}

TEST(Warp, StopsAtAReportAndKeepsTheRowsDrawn) {
    Bitmap source(8, 8, 8), destination(30, 30, 8);
    destination.ViewPerspective = 0;
    for (Bitmap* bitmap : {&source, &destination})
        Z_AllocateBitmap(bitmap, MemoryConventional);
    std::memset(source.Addr, 9, source.Size);
    const WarpPoints points = {{0, 0}, {20, 0}, {20, 8}, {0, 8}};
    {
        Reports reports(Z_SetStatusCallBack);
        EXPECT_EQ(Z_CombineBitmapWarp(&destination, &points, &source, 0, 0, 8, 8, 0x100), 1);
        EXPECT_EQ(reports.Seen, (std::vector<int32_t>{0, 12, 25, 37, 50, 62, 75, 87, 100}));
    }
    for (int y = 0; y < 30; ++y)
        std::memset(static_cast<uint8_t*>(destination.Addr) +
                        static_cast<size_t>(y) * destination.BytesPerLine,
                    0, destination.BytesPerLine);
    Reports reports(Z_SetStatusCallBack, 2);
    EXPECT_EQ(Z_CombineBitmapWarp(&destination, &points, &source, 0, 0, 8, 8, 0x100), Reports::Stopped);
    const Picture picture = Picture::Of(destination);
    for (int y = 0; y < 9; ++y)
        EXPECT_EQ(picture.At(3, y), y < 2 ? 9u : 0u) << y;
}

} // namespace
} // namespace zkr::test
