// Parity cases of regions. Ellipses, curves and slanted edges are not among them: which pixels belong to them is left
// to the platform.
#include "parity/subject.h"

#include "zkr13n/fill.h"
#include "zkr13n/flip.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_shapes.h"

#include <vector>

namespace zkr::test {
namespace {

constexpr int Views[] = {0, 1, 2, 3, 4, 5, 7, 8};

void AddRegion(Digest& digest, BitmapHandle& bitmap) {
    uint32_t area = 0, most = 0, count = 0;
    RECT bounds{};
    digest.Add(Z_BitmapHasRgn(&bitmap));
    digest.Add(Z_GetBitmapRgnArea(&bitmap, &area));
    digest.Add(Z_GetBitmapRgnBounds(&bitmap, nullptr, &bounds));
    digest.Add(Z_GetBitmapClipSegmentsMax(&bitmap, &most));
    for (const auto number : {int64_t{area}, int64_t{bounds.left}, int64_t{bounds.top}, int64_t{bounds.right},
                              int64_t{bounds.bottom}})
        digest.Add(number);
    std::vector<int32_t> segments(most + 2);
    for (int32_t row = -2; row < bitmap.Height + 2; ++row) {
        digest.Add(Z_GetBitmapClipSegments(&bitmap, row, segments.data(), &count));
        digest.Add(segments.data(), count * sizeof(int32_t));
    }
}

RegionXform RandomXform(Seeded& seeded) {
    return {Pick(seeded, Views),  seeded.Between(1, 5),  seeded.Between(1, 5), seeded.Between(1, 5),
            seeded.Between(1, 5), seeded.Between(-9, 9), seeded.Between(-9, 9)};
}

void Change(Seeded& seeded, Digest& digest, BitmapHandle& bitmap) {
    const RegionXform random = RandomXform(seeded);
    const RegionXform* const xform = seeded.Below(3) == 0 ? &random : nullptr;
    const auto mode = static_cast<uint32_t>(seeded.Below(8));
    const auto a = static_cast<uint32_t>(seeded.Next()), b = static_cast<uint32_t>(seeded.Next());
    switch (seeded.Below(8)) {
    case 0: {
        const RECT rect = {seeded.Between(-20, 200), seeded.Between(-20, 40), seeded.Between(-20, 200),
                           seeded.Between(-20, 60)};
        digest.Add(Z_SetBitmapRgnRect(&bitmap, xform, &rect, mode));
        break;
    }
    case 1: digest.Add(Z_SetBitmapRgnColor(&bitmap, a & 0x01FFFFFF, mode)); break;
    case 2: digest.Add(Z_SetBitmapRgnColorRGBRange(&bitmap, a & b & 0xFFFFFF, a | b, mode)); break;
    case 3:
        digest.Add(Z_SetBitmapRgnColorHSVRange(&bitmap, (a & b & 0xFFFF00) | (a & 0xFF), a | b, mode));
        break;
    case 4:
        digest.Add(Z_SetBitmapRgnMagicWand(&bitmap, seeded.Below(bitmap.Width), seeded.Below(bitmap.Height),
                                           a & 127, mode));
        break;
    case 5: {
        BitmapHandle mask{};
        digest.Add(Z_CreateMaskFromBitmapRgn(&bitmap, &mask));
        digest.Add(Z_OffsetBitmapRgn(&bitmap, seeded.Between(-4, 4), seeded.Between(-20, 20)));
        digest.Add(Z_SetBitmapRgnFromMask(&bitmap, xform, &mask, mode));
        Z_FreeBitmap(&mask);
        break;
    }
    case 6: digest.Add(seeded.Below(2) == 0 ? Z_FlipBitmap(&bitmap) : Z_ReverseBitmap(&bitmap)); break;
    default: {
        RECT bounds{};
        digest.Add(Z_GetBitmapRgnBounds(&bitmap, &random, &bounds));
        digest.Add(&bounds, sizeof bounds);
    }
    }
}

void RegionCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    if (seeded.Below(4) == 0) picture.Flags |= Z_FLAG_REGION_UNCLIPPED;
    for (int i = 0; i < 5; ++i) {
        Change(seeded, digest, picture);
        AddRegion(digest, picture);
    }
    digest.Add(Z_FillBitmap(&picture, static_cast<uint32_t>(seeded.Next()) & 0x01FFFFFF));
    AddPixels(digest, picture);
}

void CurveCase(Seeded& seeded, Digest& digest) {
    POINT points[12], bezier[40] = {};
    for (POINT& point : points)
        point = {seeded.Between(-100000, 100000), seeded.Between(-100000, 100000)};
    const Curve curve = {sizeof(Curve),
                         Z_CURVE_CARDINAL,
                         seeded.Between(2, 12),
                         points,
                         Z_POLY_WINDING,
                         seeded.Below(1001) / 1000.0,
                         static_cast<uint32_t>(seeded.Below(4)),
                         0};
    int32_t count = 0;
    digest.Add(Z_CurveToBezier(&curve, &count, bezier));
    digest.Add(count);
    digest.Add(bezier, sizeof bezier);
}

constexpr Family Families[] = {{"regions", 1500, RegionCase}, {"curves", 500, CurveCase}};

} // namespace

std::span<const Family> RegionFamilies() {
    return Families;
}

} // namespace zkr::test
