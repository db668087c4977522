// Regions with every argument from outside: shapes, transforms, curves, masks, colours, the wand and platform regions.
// A record that a bitmap has is always in the one form in which sets of pixels are stored.
#include "input.h"

#include "support/region_form.h"

#include <algorithm>
#include <vector>

using namespace fuzz;

namespace {

void CheckForm(const BitmapHandle& bitmap) {
    const auto* const region = static_cast<const RegionHandle*>(bitmap.Region);
    if (region == nullptr) return;
    FUZZ_EXPECT(zkr::test::HasStoredForm(*region));
    NoteEach({region->Left, region->Top, region->Right, region->Bottom});
    for (int64_t row = 0; row < int64_t{region->Bottom} - region->Top; ++row) {
        const RegionRowEntry& entry = region->RowTable[row];
        Note(region->Segments + entry.Offset / 4, entry.Count * sizeof(int32_t));
    }
}

// A row, near where a region is not cut to its bitmap: with a far one the whole area between has rows.
int32_t RowOf(Input& input, const BitmapHandle& bitmap) {
    return (bitmap.Flags & Z_FLAG_REGION_UNCLIPPED) != 0 ? input.Below(39) - 9 : input.Near(30, -9);
}

// Rows in reasonable number, columns anywhere.
RECT Rect(Input& input, const BitmapHandle& bitmap) {
    RECT rect = {input.Near(190, -9), RowOf(input, bitmap), input.Near(200, -9), 0};
    rect.bottom = static_cast<int32_t>(std::min<int64_t>(int64_t{rect.top} + input.Below(60) - 5, INT32_MAX));
    return rect;
}

RegionXform Xform(Input& input, const BitmapHandle& bitmap) {
    return {input.Near(9),  input.Near(7),      input.Near(7),       input.Below(7) - 1,
            input.Below(6), input.Near(20, -9), RowOf(input, bitmap)};
}

std::vector<POINT> Points(Input& input) {
    std::vector<POINT> points(static_cast<size_t>(1 + input.Below(9)));
    for (POINT& point : points)
        point = {input.Near(90, -9), input.Below(60) - 9};
    return points;
}

void SetCurve(Input& input, BitmapHandle& bitmap, const RegionXform* xform, uint32_t mode) {
    const std::vector<POINT> points = Points(input);
    const Curve curve = {input.Byte() < 250 ? uint32_t{sizeof(Curve)} : input.Word(),
                         static_cast<uint32_t>(input.Near(2)),
                         static_cast<int32_t>(points.size()),
                         points.data(),
                         static_cast<uint32_t>(input.Near(2)),
                         input.Below(300) / 200.0,
                         static_cast<uint32_t>(input.Near(3)),
                         input.Word()};
    if (!IsExactOnly) Z_SetBitmapRgnCurve(&bitmap, xform, &curve, mode);
    int32_t count = -1;
    POINT bezier[40];
    if (Z_CurveToBezier(&curve, &count, nullptr) == 1) {
        FUZZ_EXPECT(count >= 4 && count <= 28);
        if (Note(Z_CurveToBezier(&curve, &count, bezier)) == 1)
            Note(bezier, static_cast<size_t>(count) * sizeof(POINT));
    }
}

#ifdef _WIN32
void SetPlatformRegion(Input&, BitmapHandle&, const RegionXform*, uint32_t) {}
void AskHandles(Input&, BitmapHandle&, const RegionXform*) {}
#else
void SetPlatformRegion(Input& input, BitmapHandle& bitmap, const RegionXform* xform, uint32_t mode) {
    std::vector<RECT> rects(static_cast<size_t>(input.Below(9)));
    for (RECT& rect : rects)
        rect = Rect(input, bitmap);
    HRGN region = nullptr;
    if (Z_CreatePlatformRegion(rects.data(), static_cast<int32_t>(rects.size()), &region) != 1) return;
    Z_SetBitmapRgnHandle(&bitmap, xform, region, mode);
    FUZZ_EXPECT(Z_DeleteObject(region) == 1);
    FUZZ_EXPECT(Z_SetBitmapRgnHandle(&bitmap, xform, region, mode) == Z_ERROR_ARGUMENT); // deleted
}

void AskHandles(Input& input, BitmapHandle& bitmap, const RegionXform* xform) {
    HRGN region = nullptr;
    int32_t owned = 0;
    RECT bounds;
    Z_GetBitmapRgnBoundsClip(&bitmap, xform, &bounds);
    if (Z_IntGetBitmapRgnHandle(&bitmap, xform, &region, &owned) == 1 && owned == 1) Z_DeleteObject(region);
    const RECT source = Rect(input, bitmap), destination = Rect(input, bitmap);
    if (Z_GetResizedRgnHandle(&bitmap, input.Flip() ? &source : nullptr, &destination, &region, &owned) ==
            1 &&
        owned == 1)
        Z_DeleteObject(region);
}

#endif

// Whether operations on rows of the region need memory that not every platform has.
bool IsVast(BitmapHandle& bitmap) {
    RECT box{};
    return Z_BitmapHasRgn(&bitmap) != 0 && Z_GetBitmapRgnBounds(&bitmap, nullptr, &box) == Z_SUCCESS &&
           int64_t{box.right} - box.left > 1 << 20;
}

void Step(Input& input, BitmapHandle& bitmap) {
    const RegionXform random = Xform(input, bitmap);
    const RegionXform* const xform = input.Byte() < 90 ? &random : nullptr;
    const auto mode = static_cast<uint32_t>(input.Near(7));
    const RECT rect = Rect(input, bitmap);
    const int choice = input.Byte() % 14;
    if (IsExactOnly && (choice == 12 || (choice >= 1 && choice <= 5 && choice != 4))) return;
    const uint32_t first = input.Word();
    const int32_t x = input.Near(90), row = RowOf(input, bitmap);
    switch (choice) {
    case 0: Z_SetBitmapRgnRect(&bitmap, xform, &rect, mode); break;
    case 1:
        // Ellipses as wide as all columns are the platform's own matter.
        if (int64_t{rect.right} - rect.left < 1000) Z_SetBitmapRgnEllipse(&bitmap, xform, &rect, mode);
        break;
    case 2:
        if (int64_t{rect.right} - rect.left < 1000)
            Z_SetBitmapRgnRoundRect(&bitmap, xform, &rect, input.Near(20), input.Near(20), mode);
        break;
    case 3: {
        const std::vector<POINT> points = Points(input);
        Z_SetBitmapRgnPolygon(&bitmap, xform, points.data(), static_cast<int32_t>(points.size()),
                              static_cast<uint32_t>(input.Near(2)), mode);
        break;
    }
    case 4: SetCurve(input, bitmap, xform, mode); break;
    case 5: SetPlatformRegion(input, bitmap, xform, mode); break;
    case 6: Z_SetBitmapRgnColor(&bitmap, first, mode); break;
    case 7: Z_SetBitmapRgnColorRGBRange(&bitmap, first, input.Word(), mode); break;
    case 8: Z_SetBitmapRgnColorHSVRange(&bitmap, first, input.Word(), mode); break;
    case 9: Z_SetBitmapRgnMagicWand(&bitmap, x, input.Near(30), first, mode); break;
    case 10: Z_OffsetBitmapRgn(&bitmap, row, input.Near(90, -40)); break;
    case 11: {
        BitmapHandle mask{};
        if (Z_CreateMaskFromBitmapRgn(&bitmap, &mask) == 1)
            Z_SetBitmapRgnFromMask(&bitmap, xform, &mask, mode);
        Z_FreeBitmap(&mask);
        break;
    }
    case 12: AskHandles(input, bitmap, xform); break;
    default: {
        const int32_t height = 1 + input.Below(30);
        if (IsExactOnly && IsVast(bitmap)) return;
        switch (input.Byte() % 5) {
        case 0: Z_FlipBitmap(&bitmap); break;
        case 1: Z_ReverseBitmap(&bitmap); break;
        case 2: Z_RotateBitmap(&bitmap, input.Near(36000, -36000), 0, 0); break;
        case 3: Z_ChangeBitmapHeight(&bitmap, height); break;
        default: Z_FillBitmap(&bitmap, input.Word()); break;
        }
    }
    }
    CheckForm(bitmap);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    AnyBitmap bitmap(input, {200, 30, input.Flip() ? +MemoryConventional : +MemoryTiled});
    if (input.Byte() < 60) bitmap.Flags |= Z_FLAG_REGION_UNCLIPPED;
    bitmap.LowBit = input.Near(16);
    bitmap.HighBit = input.Near(16);
    for (int step = 0; step < 12 && !input.IsEmpty() && bitmap.Width < 2000 && bitmap.Height < 2000; ++step)
        Step(input, bitmap);
    NotePixels(bitmap);
    return 0;
}
