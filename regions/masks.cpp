// Regions from 1-bit masks and back, and regions as a picture of another size shows them.
#include "core/flags.h"
#include "core/predicates.h"
#include "core/views.h"
#include "regions/combine.h"
#include "regions/platform_region.h"
#include "regions/transforms.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/fill.h"
#include "zkr13n/gray.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/storage.h"

#include <cstdlib>

using namespace zkr;

namespace {

constexpr uint32_t White = 0xFFFFFF;
constexpr uint32_t IndexOne = 0x01000001;

// A bitmap of one bit with the mask's pixels and no region; its pixels are the mask's own or those of a copy.
class WorkingMask {
  public:
    WorkingMask() = default;
    ~WorkingMask() {
        Z_FreeBitmapRgn(&record_);
        if (isCopy_) Z_FreeBitmap(&record_);
    }
    WorkingMask(const WorkingMask&) = delete;
    WorkingMask& operator=(const WorkingMask&) = delete;

    ReturnCode Take(const BitmapHandle& bitmap, const BitmapHandle& mask) {
        BitmapHandle given = mask;
        given.Region = nullptr;
        const int32_t grayness = Z_IsGrayScaleBitmap(&bitmap);
        if (mask.BitsPerPixel == 1 && (grayness == GRAY_ORDEREDNORMAL || grayness == GRAY_ORDEREDREVERSE)) {
            record_ = given;
            return code::Success;
        }
        const ReturnCode status =
            Z_ColorResBitmap(&given, &record_, 1, COLORRES_FIXED_PALETTE, nullptr, nullptr, 0, nullptr, 0);
        isCopy_ = status == code::Success;
        return status;
    }
    BitmapHandle& record() { return record_; }

  private:
    BitmapHandle record_{};
    bool isCopy_ = false;
};

ReturnCode FillMask(BitmapHandle& bitmap, BitmapHandle& mask) {
    ReturnCode status = Z_ClearBitmap(&mask);
    if (status == code::Success) status = CopyBitmapRegion(&mask, &bitmap, 0, 0);
    if (status == code::Success) status = Z_FillBitmap(&mask, IndexOne);
    Z_FreeBitmapRgn(&mask);
    return status;
}

// From a bitmap's coordinates to those of a picture drawn into a rectangle.
RegionXform XformInto(const BitmapHandle& bitmap, const RECT& destination) {
    const zkr::PixelRect area = zkr::PixelRect::Of(destination);
    return {view::TopLeft,
            Saturated(area.Width()),
            ViewedWidth(bitmap),
            Saturated(area.Height()),
            ViewedHeight(bitmap),
            area.Left,
            area.Top};
}

// The part of a bitmap in a rectangle as a bitmap of its own, as far as regions need one. The region belongs to it.
ReturnCode TakePart(BitmapHandle& bitmap, const zkr::PixelRect& source, BitmapHandle& part) {
    const int64_t dx = -int64_t{source.Left}, dy = -int64_t{source.Top};
    if (!FitsInt32(dx) || !FitsInt32(dy)) return code::InvalidArgument;
    part = bitmap;
    part.Width = Saturated(source.Width());
    part.Height = Saturated(std::abs(source.Height()));
    return CopyBitmapRegion(&part, &bitmap, static_cast<int32_t>(dx), static_cast<int32_t>(dy));
}

} // namespace

ReturnCode Z_CALL Z_SetBitmapRgnFromMask(BitmapHandle* bitmap, const RegionXform* xform, BitmapHandle* mask,
                                         uint32_t mode) {
    if (bitmap == nullptr || !IsAllocated(mask)) return code::InvalidArgument;
    OwnedRegion record;
    {
        WorkingMask working;
        ReturnCode status = working.Take(*bitmap, *mask);
        if (status == code::Success) status = Z_SetBitmapRgnColor(&working.record(), White, Z_RGN_SET);
        if (status != code::Success) return status;
        record.Reset(RegionOf(working.record()));
        working.record().Region = nullptr;
    }
    return CombineRegion(bitmap, xform, record.Release(), mode);
}

ReturnCode Z_CALL Z_CreateMaskFromBitmapRgn(BitmapHandle* bitmap, BitmapHandle* mask) {
    if (bitmap == nullptr || mask == nullptr) return code::InvalidArgument;
    const int32_t memory = HasFlag(*bitmap, flag::Disk) ? MemoryDisk : MemoryConventional;
    ReturnCode status = Z_CreateBitmap(mask, memory, bitmap->Width, bitmap->Height, 1, Z_ORDER_RGB, nullptr,
                                       bitmap->ViewPerspective, nullptr, 0);
    if (status != code::Success) return status;
    status = FillMask(*bitmap, *mask);
    if (status != code::Success) Z_FreeBitmap(mask);
    return status;
}

ReturnCode Z_CALL Z_GetResizedRgnHandle(BitmapHandle* bitmap, const RECT* sourceRectangle,
                                        const RECT* destinationRectangle, HRGN* platformRegion,
                                        int32_t* owned) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (destinationRectangle == nullptr || platformRegion == nullptr || owned == nullptr)
        return code::InvalidArgument;
    if (sourceRectangle == nullptr) {
        const RegionXform xform = XformInto(*bitmap, *destinationRectangle);
        return Z_IntGetBitmapRgnHandle(bitmap, &xform, platformRegion, owned);
    }
    BitmapHandle part{};
    ReturnCode status = TakePart(*bitmap, PixelRect::Of(*sourceRectangle), part);
    if (status != code::Success) return status;
    const OwnedRegion region(RegionOf(part));
    const RegionXform xform = XformInto(part, *destinationRectangle);
    HRGN made = nullptr;
    int32_t isOwned = 0;
    status = Z_IntGetBitmapRgnHandle(&part, &xform, &made, &isOwned);
    if (status != code::Success) return status;
    if (isOwned == 0) made = DuplicatePlatformRegion(made);
    if (made == nullptr) return code::OutOfMemory;
    *platformRegion = made;
    *owned = 1;
    return code::Success;
}
