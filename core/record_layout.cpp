// The layout of the public records, field by field. Callers compiled in other languages know a record by its
// offsets, so none of them may move: words of 32 bits on 32-bit platforms, natural alignment with 64-bit pointers
// and byte counts of whole bitmaps on 64-bit ones.
#include "zkr13n/bitmap.h"
#include "zkr13n/region.h"

#include <cstddef>

namespace {

template <size_t on32, size_t on64> constexpr size_t Place() {
    return sizeof(void*) == 4 ? on32 * 4 : on64;
}

// The first number is the field's word on 32 bits, the second its byte on 64 bits.
#define ZKR_RECORD_FIELD_AT(record, field, on32, on64)                                                       \
    static_assert(offsetof(record, field) == Place<on32, on64>(), #field " has moved")
#define ZKR_FIELD_AT(field, on32, on64) ZKR_RECORD_FIELD_AT(BitmapHandle, field, on32, on64)

ZKR_FIELD_AT(StorageHandle, 0, 0);
ZKR_FIELD_AT(Addr, 1, 8);
ZKR_FIELD_AT(Width, 2, 16);
ZKR_FIELD_AT(Height, 3, 20);
ZKR_FIELD_AT(BitsPerPixel, 4, 24);
ZKR_FIELD_AT(BytesPerLine, 5, 28);
ZKR_FIELD_AT(CurrentRowOffset, 6, 32);
ZKR_FIELD_AT(CurrentRow, 7, 40);
ZKR_FIELD_AT(Flags, 8, 44);
ZKR_FIELD_AT(ColorsUsed, 9, 48);
ZKR_FIELD_AT(Palette, 10, 56);
ZKR_FIELD_AT(ViewPerspective, 11, 64);
ZKR_FIELD_AT(Order, 12, 68);
ZKR_FIELD_AT(Size, 13, 72);
ZKR_FIELD_AT(DitherData, 14, 80);
ZKR_FIELD_AT(DitheringMethod, 15, 88);
ZKR_FIELD_AT(Region, 16, 96);
ZKR_FIELD_AT(XResolution, 17, 104);
ZKR_FIELD_AT(YResolution, 18, 108);
ZKR_FIELD_AT(PlaybackLeft, 19, 112);
ZKR_FIELD_AT(PlaybackTop, 20, 116);
ZKR_FIELD_AT(PlaybackDelay, 21, 120);
ZKR_FIELD_AT(PlaybackBackColor, 22, 124);
ZKR_FIELD_AT(TransparentColor, 23, 128);
ZKR_FIELD_AT(DisposalMethod, 24, 132);
ZKR_FIELD_AT(LowBit, 25, 136);
ZKR_FIELD_AT(HighBit, 26, 140);
ZKR_FIELD_AT(LevelLUT, 27, 144);
ZKR_FIELD_AT(LevelLUTLength, 28, 152);
ZKR_FIELD_AT(AlignOffset, 29, 156);
ZKR_FIELD_AT(MinVal, 30, 160);
ZKR_FIELD_AT(MaxVal, 31, 164);
ZKR_FIELD_AT(LevelLowBit, 32, 168);
ZKR_FIELD_AT(LevelHighBit, 33, 172);
ZKR_FIELD_AT(PaintGamma, 34, 176);
ZKR_FIELD_AT(PaintContrast, 35, 180);
ZKR_FIELD_AT(PaintIntensity, 36, 184);
ZKR_FIELD_AT(PaintLUT, 37, 192);
ZKR_FIELD_AT(Reserved, 38, 200);
static_assert(sizeof(BitmapHandle) == Place<39, 208>(), "the record has changed its size");

#define ZKR_REGION_FIELD_AT(field, on32, on64) ZKR_RECORD_FIELD_AT(RegionHandle, field, on32, on64)

ZKR_REGION_FIELD_AT(PlatformRegion, 0, 0);
ZKR_REGION_FIELD_AT(PlatformXform, 1, 8);
ZKR_REGION_FIELD_AT(PlatformView, 8, 36);
ZKR_REGION_FIELD_AT(MaskBitmap, 9, 40);
ZKR_REGION_FIELD_AT(MaskXform, 10, 48);
ZKR_REGION_FIELD_AT(MaskView, 17, 76);
ZKR_REGION_FIELD_AT(Left, 18, 80);
ZKR_REGION_FIELD_AT(Top, 19, 84);
ZKR_REGION_FIELD_AT(Right, 20, 88);
ZKR_REGION_FIELD_AT(Bottom, 21, 92);
ZKR_REGION_FIELD_AT(RowTableBytes, 22, 96);
ZKR_REGION_FIELD_AT(RowTable, 23, 104);
ZKR_REGION_FIELD_AT(SegmentBytes, 24, 112);
ZKR_REGION_FIELD_AT(Segments, 25, 120);
static_assert(sizeof(RegionHandle) == Place<26, 128>(), "the record has changed its size");
static_assert(sizeof(RegionXform) == 28 && sizeof(RegionRowEntry) == 8);

} // namespace
