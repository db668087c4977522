// Regions, with each call of the system failing in turn: the region that there is stays until all else is done.
#include "faults/fault_driver.h"

#include "regions/moves.h"
#include "regions/pixel_sets.h"
#include "regions/scale.h"
#include "regions/turns.h"
#include "zkr13n/copy.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_paint.h"
#include "zkr13n/region_shapes.h"

namespace zkr::test {
namespace {

PixelSet Present() {
    Seeded seeded(71);
    return PixelSet::Random(seeded, {0, 0, 30, 8});
}

std::function<void(Ground&)> Selected(int32_t type, int32_t bits) {
    return [=](Ground& g) {
        Make(g.Subject, type, bits, Z_ORDER_BGR, 1, 30, 8);
        g.Subject.Region = RegionFrom(Present());
    };
}

// The driver compares records; this looks at what they point to.
void ExpectPresent(Ground& g, ReturnCode result) {
    if (result == code::Success) return;
    ASSERT_NE(g.Subject.Region, nullptr);
    EXPECT_EQ(SetOf(*RegionOf(g.Subject)), Present());
}

class Scenarios {
  public:
    ~Scenarios() { RunAll(all_); }
    void Add(const char* name, std::vector<ReturnCode> failures, std::function<void(Ground&)> prepare,
             std::function<ReturnCode(Ground&)> call) {
        all_.push_back({name, failures, prepare, call, Kept::Everything, ExpectPresent});
    }

  private:
    std::vector<Scenario> all_;
};

TEST(RegionFailures, OfShapes) {
    Scenarios scenarios;
    // A platform region that cannot be read is a bad one, whatever the cause.
    const auto add = [&](const char* name, std::function<ReturnCode(Ground&)> call) {
        scenarios.Add(name, {Memory, code::InvalidArgument}, Selected(MemoryConventional, 8), call);
    };
    static constexpr RegionXform xform = {4, 3, 2, 1, 2, 1, 1};
    static constexpr RECT rectangle = {3, 2, 25, 7};
    static constexpr POINT points[] = {{2, 2}, {25, 3}, {20, 8}, {9, 5}};
    add("rectangle", [](Ground& g) { return Z_SetBitmapRgnRect(&g.Subject, &xform, &rectangle, Z_RGN_XOR); });
    add("rectangle instead",
        [](Ground& g) { return Z_SetBitmapRgnRect(&g.Subject, nullptr, &rectangle, Z_RGN_SETNOT); });
    add("round rectangle",
        [](Ground& g) { return Z_SetBitmapRgnRoundRect(&g.Subject, nullptr, &rectangle, 4, 4, Z_RGN_OR); });
    add("ellipse",
        [](Ground& g) { return Z_SetBitmapRgnEllipse(&g.Subject, nullptr, &rectangle, Z_RGN_OR); });
    add("region of the platform", [](Ground& g) {
        const HRGN made = platform::CreateRectRgn(1, 1, 9, 9);
        if (made == nullptr) return Memory;
        const ReturnCode result = Z_SetBitmapRgnHandle(&g.Subject, &xform, made, Z_RGN_XOR);
        platform::DeleteObject(made);
        return result;
    });
    add("polygon",
        [](Ground& g) { return Z_SetBitmapRgnPolygon(&g.Subject, nullptr, points, 4, 1, Z_RGN_AND); });
    add("spline", [](Ground& g) {
        const Curve curve = {sizeof(Curve), Z_CURVE_CARDINAL, 4, points, 0, 0.5, 1, 0};
        return Z_SetBitmapRgnCurve(&g.Subject, nullptr, &curve, Z_RGN_SET);
    });
    add("copy with a platform region", [](Ground& g) {
        HRGN kept = nullptr;
        int32_t owned = 0;
        const ReturnCode asked = Z_IntGetBitmapRgnHandle(&g.Subject, nullptr, &kept, &owned);
        if (asked != code::Success) return asked;
        RegionHandle* copy = nullptr;
        const ReturnCode copied = Z_CopyZircRgn(&copy, RegionOf(g.Subject));
        FreeRegion(copy);
        return copied;
    });
    add("part of a platform region", [](Ground& g) {
        HRGN made = nullptr;
        int32_t owned = 0;
        const ReturnCode result = Z_GetResizedRgnHandle(&g.Subject, &rectangle, &rectangle, &made, &owned);
        if (made != nullptr) platform::DeleteObject(made);
        return result;
    });
    add("rotation", [](Ground& g) { return RotateRegion(&g.Subject, 8, 30, 1234); });
    add("overlay", [](Ground& g) {
        const HDC context = platform::CreateCompatibleDC(nullptr);
        if (context == nullptr) return Memory;
        const ReturnCode result = Z_ColorBitmapRgn(context, &g.Subject, nullptr, 0x00FFFFFF);
        platform::DeleteDC(context);
        return result;
    });
    add("scaling", [](Ground& g) { return ScaleRegion(RegionOf(g.Subject), {3, 2, 3, 2}); });
    add("clip", [](Ground& g) { return ClipRegion(RegionOf(g.Subject), {4, 1, 20, 6}); });
}

// A failure of the handle for hosts is 0 or, where the copy fails, a lack of memory.
TEST(RegionFailures, OfPlatformRegions) {
    Scenarios scenarios;
    scenarios.Add("handle", {Memory, 0}, Selected(MemoryConventional, 8), [](Ground& g) {
        HRGN made = nullptr;
        const ReturnCode result = Z_GetBitmapRgnHandle(&g.Subject, nullptr, &made);
        EXPECT_EQ(made != nullptr, result == code::Success);
        if (made != nullptr) platform::DeleteObject(made);
        return result;
    });
}

TEST(RegionFailures, OfPixels) {
    Scenarios scenarios;
    for (const int32_t type : {int32_t{MemoryConventional}, int32_t{MemoryDisk}}) {
        const auto add = [&](const char* name, int32_t bits, std::vector<ReturnCode> failures,
                             std::function<ReturnCode(Ground&)> call) {
            scenarios.Add(name, failures, Selected(type, bits), call);
        };
        add("colour", 8, OfReading,
            [](Ground& g) { return Z_SetBitmapRgnColor(&g.Subject, 0x0100003A, Z_RGN_OR); });
        add("hues", 48, OfReading,
            [](Ground& g) { return Z_SetBitmapRgnColorHSVRange(&g.Subject, 0, 0xC0FFC0, Z_RGN_SET); });
        add("wand over words", 16, OfReading,
            [](Ground& g) { return Z_SetBitmapRgnMagicWand(&g.Subject, 5, 5, 160, Z_RGN_SET); });
        add("wand", 24, OfReading,
            [](Ground& g) { return Z_SetBitmapRgnMagicWand(&g.Subject, 5, 5, 200, Z_RGN_XOR); });
        add("mask of another depth", 24, OfFiles,
            [](Ground& g) { return Z_SetBitmapRgnFromMask(&g.Subject, nullptr, &g.Subject, Z_RGN_SET); });
        add("mask made", 8, OfFiles, [](Ground& g) {
            BitmapHandle mask{};
            const ReturnCode result = Z_CreateMaskFromBitmapRgn(&g.Subject, &mask);
            EXPECT_EQ(IsAllocated(&mask), result == code::Success);
            EXPECT_EQ(mask.Region, nullptr);
            Z_FreeBitmap(&mask);
            return result;
        });
        add("copy of a bitmap", 24, OfFiles, [](Ground& g) {
            BitmapHandle copy{};
            const ReturnCode result = Z_CopyBitmap(&copy, &g.Subject);
            Z_FreeBitmap(&copy);
            return result;
        });
    }
}

} // namespace
} // namespace zkr::test
