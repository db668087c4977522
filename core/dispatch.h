// The process-wide table through which core, colour and geometry reach the operations on regions without knowing their
// code: 20 slots, numbered in their order, each of which begins as a function that knows no region.
//
// Threads read the table through an atomic pointer to a constant one. Nobody writes a table that others read: the
// library's stop takes the pointer away, and whoever needs an operation next puts it back.
#pragma once

#include "zkr13n/bitmap.h"
#include "zkr13n/region.h"

namespace zkr {

// What a slot does where there is no region code. Results are codes unless told otherwise. Operations that move or
// change a region do nothing for a bitmap without one and give code::Success; those that take a bitmap give
// code::InvalidBitmap for null.
namespace no_region {

// Mirrors the region left to right, within the bitmap's width.
[[nodiscard]] ReturnCode ReverseRegion(BitmapHandle* bitmap);
// Puts a copy of source's region, moved by (dx, dy) and cut to destination unless RegionUnclipped, into destination,
// whose Region field is overwritten and not freed. After a failure nobody may follow what stands there.
[[nodiscard]] ReturnCode CopyBitmapRegion(BitmapHandle* destination, BitmapHandle* source, int32_t dx,
                                          int32_t dy);
ReturnCode Z_CALL SetBitmapRgnFromMask(BitmapHandle* bitmap, const RegionXform* xform, BitmapHandle* mask,
                                       uint32_t mode);
// The most entries that GetBitmapClipSegments writes for a row, two for each segment.
ReturnCode Z_CALL GetBitmapClipSegmentsMax(BitmapHandle* bitmap, uint32_t* maximum);
// The segments of a row as pairs of columns, the end not included, and how many entries they take. The count is output
// alone: segments has room for the maximum.
ReturnCode Z_CALL GetBitmapClipSegments(BitmapHandle* bitmap, int32_t row, int32_t* segments,
                                        uint32_t* count);
// Scales the region by xNumerator / bitmap->Width and yNumerator / bitmap->Height: for a bitmap that is to become as
// large as the numerators, and still has its old size.
[[nodiscard]] ReturnCode ScaleBitmapRegion(BitmapHandle* bitmap, int32_t xNumerator, int32_t yNumerator);
// Takes the record over, whatever the result; null removes the bitmap's region.
[[nodiscard]] ReturnCode CombineRegion(BitmapHandle* bitmap, const RegionXform* xform, RegionHandle* record,
                                       uint32_t mode);
// The region's bounds in storage coordinates or, with a transform, in the caller's; the whole bitmap without a region.
ReturnCode Z_CALL GetBitmapRgnBounds(BitmapHandle* bitmap, const RegionXform* xform, RECT* bounds);
ReturnCode Z_CALL CopyZircRgn(RegionHandle** destination, const RegionHandle* source);
[[nodiscard]] ReturnCode OffsetRegion(RegionHandle* record, int32_t dx, int32_t dy);
// Mirrors a record top to bottom, within the given number of rows.
[[nodiscard]] ReturnCode FlipRegion(RegionHandle* record, int32_t height);
[[nodiscard]] ReturnCode ShearRegion(BitmapHandle* bitmap, int32_t angleHundredths);
// For a bitmap that has its new dimensions already; the old ones and the angle are the caller's.
[[nodiscard]] ReturnCode RotateRegion(BitmapHandle* bitmap, int32_t oldWidth, int32_t oldHeight,
                                      int32_t angleHundredths);
// owned: 1 where the caller has to delete the region.
ReturnCode Z_CALL IntGetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform, HRGN* region,
                                        int32_t* owned);
ReturnCode Z_CALL SetBitmapRgnColor(BitmapHandle* bitmap, uint32_t color, uint32_t mode);
ReturnCode Z_CALL SetBitmapRgnRect(BitmapHandle* bitmap, const RegionXform* xform, const RECT* rectangle,
                                   uint32_t mode);
// 1 for a pixel that the region, or without one the bitmap, holds, else 0.
int32_t Z_CALL IsPtInBitmapRgn(BitmapHandle* bitmap, int32_t row, int32_t column);
ReturnCode Z_CALL CreateMaskFromBitmapRgn(BitmapHandle* bitmap, BitmapHandle* mask);
// FlipRegion of the bitmap's own record, within its height.
[[nodiscard]] ReturnCode FlipBitmapRegion(BitmapHandle* bitmap);
// The region is the caller's to delete.
ReturnCode Z_CALL GetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform, HRGN* region);

// Releases a bitmap's region and clears its field.
ReturnCode Z_CALL FreeBitmapRgn(BitmapHandle* bitmap);

} // namespace no_region

struct DispatchTable {
#define ZKR_SLOT(name) decltype(&no_region::name) name = no_region::name
    ZKR_SLOT(ReverseRegion); // 0
    ZKR_SLOT(CopyBitmapRegion);
    ZKR_SLOT(SetBitmapRgnFromMask);
    ZKR_SLOT(GetBitmapClipSegmentsMax);
    ZKR_SLOT(GetBitmapClipSegments);
    ZKR_SLOT(ScaleBitmapRegion); // 5
    ZKR_SLOT(CombineRegion);
    ZKR_SLOT(GetBitmapRgnBounds);
    ZKR_SLOT(CopyZircRgn);
    ZKR_SLOT(OffsetRegion);
    ZKR_SLOT(FlipRegion); // 10
    ZKR_SLOT(ShearRegion);
    ZKR_SLOT(RotateRegion);
    ZKR_SLOT(IntGetBitmapRgnHandle);
    ZKR_SLOT(SetBitmapRgnColor);
    ZKR_SLOT(SetBitmapRgnRect); // 15
    ZKR_SLOT(IsPtInBitmapRgn);
    ZKR_SLOT(CreateMaskFromBitmapRgn);
    ZKR_SLOT(FlipBitmapRegion);
    ZKR_SLOT(GetBitmapRgnHandle);
    ZKR_SLOT(FreeBitmapRgn); // behind the numbered slots
#undef ZKR_SLOT
};

// The table in force. When there is none, because nobody has asked yet or the library was stopped by the end of its
// last thread or by a shutdown, SetDisplayDispatch puts it there.
const DispatchTable& Dispatch();

// Puts a table into force, which has to last, or with null none, and gives the one that stood there.
const DispatchTable* ExchangeDispatch(const DispatchTable* table);

} // namespace zkr
