// The outline and the colour overlay. Both are drawn many times a second while somebody selects, so that what they are
// made from is kept in the region's record.
#include "zkr13n/region_paint.h"

#include "regions/platform_region.h"
#include "regions/transforms.h"

#include <array>
#include <utility>

using namespace zkr;

namespace {

constexpr uint32_t White = 0x00FFFFFF;

// Turns the destination's bits round where both the source and the brush have theirs set.
constexpr uint32_t TurnWhereBoth = 0x006A01E9;

// An object in a device context for a scope; the one before comes back.
class Selected {
  public:
    Selected(HDC context, platform::HGDIOBJ object)
        : context_(context), before_(platform::SelectObject(context, object)) {}
    ~Selected() { platform::SelectObject(context_, before_); }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

  private:
    HDC context_;
    platform::HGDIOBJ before_;
};

class OwnedBrush {
  public:
    explicit OwnedBrush(platform::HBRUSH brush) : brush_(brush) {}
    ~OwnedBrush() {
        if (brush_ != nullptr) platform::DeleteObject(brush_);
    }
    OwnedBrush(const OwnedBrush&) = delete;
    OwnedBrush& operator=(const OwnedBrush&) = delete;
    platform::HBRUSH get() const { return brush_; }

  private:
    platform::HBRUSH brush_;
};

class MemoryContext {
  public:
    MemoryContext() : context_(platform::CreateCompatibleDC(nullptr)) {}
    ~MemoryContext() {
        if (context_ != nullptr) platform::DeleteDC(context_);
    }
    MemoryContext(const MemoryContext&) = delete;
    MemoryContext& operator=(const MemoryContext&) = delete;
    HDC get() const { return context_; }

  private:
    HDC context_;
};

// Stripes at 45 degrees, moved on by one for each phase. Rows of a monochrome bitmap are words.
platform::HBRUSH MakeStripes(uint32_t phase) {
    constexpr std::array<uint8_t, 8> stripes = {0x0F, 0x87, 0xC3, 0xE1, 0xF0, 0x78, 0x3C, 0x1E};
    std::array<uint16_t, 8> rows;
    for (uint32_t row = 0; row < rows.size(); ++row)
        rows[row] = stripes[(7 - row + phase) & 7];
    const HBITMAP pattern = platform::CreateBitmap(8, 8, 1, 1, rows.data());
    if (pattern == nullptr) return nullptr;
    const platform::HBRUSH brush = platform::CreatePatternBrush(pattern);
    platform::DeleteObject(pattern);
    return brush;
}

// The pixels by which a region and copies of it, moved a little, differ; null where that cannot be made.
HRGN MakeOutline(HRGN region, bool isOdd) {
    OwnedPlatformRegion outline(DuplicatePlatformRegion(region)), right(DuplicatePlatformRegion(region));
    const OwnedPlatformRegion below(DuplicatePlatformRegion(region));
    if (!outline || !right || !below) return nullptr;
    const bool isMade = (isOdd || platform::OffsetRgn(right.get(), 2, 0) != ERROR) &&
                        platform::OffsetRgn(below.get(), isOdd ? 2 : 0, 2) != ERROR &&
                        platform::OffsetRgn(outline.get(), 1, 1) != ERROR &&
                        platform::CombineRgn(right.get(), right.get(), below.get(), RGN_AND) != ERROR &&
                        platform::CombineRgn(outline.get(), outline.get(), right.get(), RGN_XOR) != ERROR &&
                        platform::OffsetRgn(outline.get(), -1, -1) != ERROR;
    return isMade ? outline.Release() : nullptr;
}

bool ScalesAlike(const RegionXform& a, const RegionXform& b) {
    return a.ViewPerspective == b.ViewPerspective && a.XNumerator == b.XNumerator &&
           a.XDenominator == b.XDenominator && a.YNumerator == b.YNumerator &&
           a.YDenominator == b.YDenominator;
}

// White inside the region of the platform, black around it.
ReturnCode DrawMask(HBITMAP mask, HRGN inside, int width, int height) {
    const MemoryContext context;
    if (context.get() == nullptr) return code::OutOfMemory;
    const Selected selected(context.get(), mask);
    const bool isDrawn = platform::PatBlt(context.get(), 0, 0, width, height, BLACKNESS) &&
                         platform::SelectClipRgn(context.get(), inside) != ERROR &&
                         platform::PatBlt(context.get(), 0, 0, width, height, WHITENESS);
    return isDrawn ? code::Success : code::OutOfMemory;
}

// Makes the mask of a region as a transform shows it within the given bounds.
ReturnCode MakeMask(const BitmapHandle& bitmap, const RegionHandle& region, const RegionXform& xform,
                    const RECT& bounds, HBITMAP& mask) {
    OwnedRegion shown;
    ReturnCode status = DuplicateRegion(shown, region);
    if (status == code::Success) status = TransformRegionOut(&bitmap, &xform, shown.get());
    HRGN made = nullptr;
    if (status == code::Success) status = RegionToPlatform(&bitmap, shown.get(), nullptr, &made);
    if (status != code::Success) return status;
    const OwnedPlatformRegion inside(made);
    if (platform::OffsetRgn(inside.get(), -bounds.left, -bounds.top) == ERROR) return code::OutOfMemory;
    const PixelRect area = PixelRect::Of(bounds);
    if (!FitsInt32(area.Width()) || !FitsInt32(area.Height())) return code::OutOfMemory;
    const auto width = static_cast<int>(area.Width()), height = static_cast<int>(area.Height());
    mask = platform::CreateBitmap(width, height, 1, 1, nullptr);
    if (mask == nullptr) return code::OutOfMemory;
    status = DrawMask(mask, inside.get(), width, height);
    if (status != code::Success) platform::DeleteObject(std::exchange(mask, nullptr));
    return status;
}

// Sees to it that the record keeps a mask for the transform; offsets move it and no more.
ReturnCode KeepMask(const BitmapHandle& bitmap, RegionHandle& region, const RegionXform& xform,
                    const RECT& bounds) {
    const bool isValid = region.MaskBitmap != nullptr && bitmap.ViewPerspective == region.MaskView &&
                         ScalesAlike(region.MaskXform, xform);
    if (!isValid) {
        HBITMAP mask = nullptr;
        const ReturnCode status = MakeMask(bitmap, region, xform, bounds, mask);
        if (status != code::Success) return status;
        if (region.MaskBitmap != nullptr) platform::DeleteObject(region.MaskBitmap);
        region.MaskBitmap = mask;
        region.MaskView = bitmap.ViewPerspective;
    }
    region.MaskXform = xform;
    return code::Success;
}

ReturnCode Overlay(HDC context, HBITMAP mask, const RECT& bounds, uint32_t color) {
    const MemoryContext source;
    const OwnedBrush brush(platform::CreateSolidBrush(color));
    if (source.get() == nullptr || brush.get() == nullptr) return code::OutOfMemory;
    const Selected maskSelected(source.get(), mask), brushSelected(context, brush.get());
    const uint32_t background = platform::SetBkColor(context, White),
                   text = platform::SetTextColor(context, 0);
    const bool isDrawn = platform::BitBlt(context, bounds.left, bounds.top, bounds.right - bounds.left,
                                          bounds.bottom - bounds.top, source.get(), 0, 0, TurnWhereBoth);
    platform::SetBkColor(context, background);
    platform::SetTextColor(context, text);
    return isDrawn ? code::Success : code::OutOfMemory;
}

} // namespace

ReturnCode Z_CALL Z_FrameBitmapRgn(HDC context, BitmapHandle* bitmap, const RegionXform* xform,
                                   uint32_t frameType) {
    HRGN region = nullptr;
    int32_t owned = 0;
    if (context == nullptr || Z_IntGetBitmapRgnHandle(bitmap, xform, &region, &owned) != code::Success)
        return code::Success;
    const OwnedPlatformRegion made(owned != 0 ? region : nullptr);
    const OwnedPlatformRegion outline(MakeOutline(region, (frameType & 1) != 0));
    const OwnedBrush stripes(MakeStripes(frameType));
    if (!outline || stripes.get() == nullptr) return code::Success;
    POINT origin = {0, 0};
    platform::SetBrushOrgEx(context, 0, 0, &origin);
    {
        const Selected selected(context, stripes.get());
        platform::PaintRgn(context, outline.get());
    }
    platform::SetBrushOrgEx(context, origin.x, origin.y, nullptr);
    return code::Success;
}

ReturnCode Z_CALL Z_ColorBitmapRgn(HDC context, BitmapHandle* bitmap, const RegionXform* xform,
                                   uint32_t color) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    RegionHandle* const region = RegionOf(*bitmap);
    if (region == nullptr) return code::Success;
    if (context == nullptr) return code::InvalidArgument;
    const RegionXform wanted = xform != nullptr ? *xform : NeutralXform(*bitmap);
    RECT bounds = BoundsOf(*region).AsRect();
    ReturnCode status = TransformRect(bitmap, &wanted, &bounds);
    if (status != code::Success || PixelRect::Of(bounds).IsEmpty()) return status;
    status = KeepMask(*bitmap, *region, wanted, bounds);
    return status == code::Success ? Overlay(context, region->MaskBitmap, bounds, color) : status;
}
