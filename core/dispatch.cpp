// The pointer to the table in force, and the operations of a library without regions.
#include "core/dispatch.h"

#include "core/rectangle.h"
#include "core/return_codes.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/fill.h"
#include "zkr13n/storage.h"

#include <atomic>

namespace zkr {

namespace {

constinit std::atomic<const DispatchTable*> inForce = nullptr;

ReturnCode WithoutRegion(const BitmapHandle* bitmap) {
    return bitmap == nullptr ? code::InvalidBitmap : code::Success;
}

} // namespace

const DispatchTable& Dispatch() {
    const DispatchTable* table = inForce.load(std::memory_order_acquire);
    while (table == nullptr) {
        SetDisplayDispatch();
        table =
            inForce.load(std::memory_order_acquire); // another thread may have stopped the library meanwhile
    }
    return *table;
}

const DispatchTable* ExchangeDispatch(const DispatchTable* table) {
    return inForce.exchange(table, std::memory_order_acq_rel);
}

namespace no_region {

ReturnCode ReverseRegion(BitmapHandle* bitmap) {
    return WithoutRegion(bitmap);
}

ReturnCode CopyBitmapRegion(BitmapHandle* destination, BitmapHandle* source, int32_t, int32_t) {
    if (destination == nullptr || source == nullptr) return code::InvalidArgument;
    destination->Region = nullptr;
    return code::Success;
}

ReturnCode Z_CALL SetBitmapRgnFromMask(BitmapHandle* bitmap, const RegionXform*, BitmapHandle* mask,
                                       uint32_t) {
    return bitmap == nullptr || mask == nullptr ? code::InvalidArgument : code::Success;
}

ReturnCode Z_CALL GetBitmapClipSegmentsMax(BitmapHandle* bitmap, uint32_t* maximum) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (maximum == nullptr) return code::InvalidArgument;
    *maximum = 2;
    return code::Success;
}

ReturnCode Z_CALL GetBitmapClipSegments(BitmapHandle* bitmap, int32_t, int32_t* segments, uint32_t* count) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (segments == nullptr || count == nullptr) return code::InvalidArgument;
    segments[0] = 0;
    segments[1] = bitmap->Width;
    *count = 2;
    return code::Success;
}

ReturnCode ScaleBitmapRegion(BitmapHandle* bitmap, int32_t, int32_t) {
    return WithoutRegion(bitmap);
}

ReturnCode CombineRegion(BitmapHandle* bitmap, const RegionXform*, RegionHandle*, uint32_t) {
    return WithoutRegion(bitmap);
}

ReturnCode Z_CALL GetBitmapRgnBounds(BitmapHandle* bitmap, const RegionXform*, RECT* bounds) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (bounds == nullptr) return code::InvalidArgument;
    *bounds = PixelRect::Whole(*bitmap).AsRect();
    return code::Success;
}

ReturnCode Z_CALL CopyZircRgn(RegionHandle** destination, const RegionHandle*) {
    if (destination == nullptr) return code::InvalidArgument;
    *destination = nullptr;
    return code::Success;
}

ReturnCode OffsetRegion(RegionHandle*, int32_t, int32_t) {
    return code::Success;
}

ReturnCode FlipRegion(RegionHandle*, int32_t) {
    return code::Success;
}

ReturnCode ShearRegion(BitmapHandle* bitmap, int32_t) {
    return WithoutRegion(bitmap);
}

ReturnCode RotateRegion(BitmapHandle* bitmap, int32_t, int32_t, int32_t) {
    return WithoutRegion(bitmap);
}

ReturnCode Z_CALL IntGetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform*, HRGN* region,
                                        int32_t* owned) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (region == nullptr || owned == nullptr) return code::InvalidArgument;
    *region = nullptr;
    *owned = 0;
    return code::Success;
}

ReturnCode Z_CALL SetBitmapRgnColor(BitmapHandle* bitmap, uint32_t, uint32_t) {
    return WithoutRegion(bitmap);
}

ReturnCode Z_CALL SetBitmapRgnRect(BitmapHandle* bitmap, const RegionXform*, const RECT*, uint32_t) {
    return WithoutRegion(bitmap);
}

int32_t Z_CALL IsPtInBitmapRgn(BitmapHandle* bitmap, int32_t row, int32_t column) {
    return bitmap != nullptr && PixelRect::Whole(*bitmap).Holds(column, row) ? 1 : 0;
}

ReturnCode Z_CALL CreateMaskFromBitmapRgn(BitmapHandle* bitmap, BitmapHandle* mask) {
    if (bitmap == nullptr || mask == nullptr) return code::InvalidArgument;
    const ReturnCode made = Z_CreateBitmap(mask, MemoryConventional, bitmap->Width, bitmap->Height, 1,
                                           Z_ORDER_RGB, nullptr, bitmap->ViewPerspective, nullptr, 0);
    if (made != code::Success) return made;
    constexpr uint32_t selected = 0x01000001; // the index 1
    const ReturnCode filled = Z_FillBitmap(mask, selected);
    if (filled != code::Success) Z_FreeBitmap(mask);
    return filled;
}

ReturnCode FlipBitmapRegion(BitmapHandle* bitmap) {
    return WithoutRegion(bitmap);
}

ReturnCode Z_CALL GetBitmapRgnHandle(BitmapHandle*, const RegionXform*, HRGN* region) {
    if (region == nullptr) return code::InvalidArgument;
    *region = nullptr;
    return code::Success;
}

ReturnCode Z_CALL FreeBitmapRgn(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidArgument;
    bitmap->Region = nullptr;
    return code::Success;
}

} // namespace no_region

} // namespace zkr
