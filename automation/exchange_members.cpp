// Bitmaps exchanged with the platform: device contexts.
#include "automation/raster_object.h"

namespace zkr::automation {

void RasterObject::ReleaseContext() {
    bitmapContext_ = nullptr;
    contextCount_ = 0;
}

Result RasterObject::GetPicture(intptr_t, intptr_t* picture) {
    return Value(Needs::Bitmap, picture, [&](intptr_t&) { return Z_ERROR_FEATURE; });
}

Result RasterObject::SetPicture(intptr_t, int16_t* result) {
    return Member(Needs::NoContext, result, [&] { return Z_ERROR_FEATURE; });
}

Result RasterObject::GetBitmapDC(intptr_t* context) {
    return Value(Needs::Nothing, context,
                 [&](intptr_t&) { return HasBitmap() ? Z_ERROR_FEATURE : Z_ERROR_BITMAP; });
}

Result RasterObject::ReleaseBitmapDC(int16_t* result) {
    return Member(Needs::Nothing, result, [&] { return Z_SUCCESS; });
}

Result RasterObject::Copy(intptr_t, int16_t, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] { return Z_ERROR_FEATURE; });
}

Result RasterObject::Paste(intptr_t, int16_t, int16_t* result) {
    return Member(Needs::NoContext, result, [&] { return Z_ERROR_FEATURE; });
}

Result RasterObject::SetDIB(intptr_t, int16_t* result) {
    return Member(Needs::NoContext, result, [&] { return Z_ERROR_FEATURE; });
}

Result RasterObject::SetDDB(intptr_t, intptr_t, intptr_t, int16_t* result) {
    return Member(Needs::NoContext, result, [&] { return Z_ERROR_FEATURE; });
}

Result RasterObject::GetDIB(intptr_t* dib) {
    return GetDIB2(DIB_BITMAPINFOHEADER, dib);
}

Result RasterObject::GetDIB2(int32_t, intptr_t* dib) {
    return Value(Needs::Bitmap, dib, [&](intptr_t&) { return Z_ERROR_FEATURE; });
}

Result RasterObject::GetDDB(intptr_t, intptr_t* bitmap) {
    return Value(Needs::Bitmap, bitmap, [&](intptr_t&) { return Z_ERROR_FEATURE; });
}

Result RasterObject::Capture(intptr_t, float, float, float, float, int16_t* result) {
    return Member(Needs::NoContext, result, [&] { return Z_ERROR_FEATURE; });
}

} // namespace zkr::automation
