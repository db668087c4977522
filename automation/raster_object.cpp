// The life of a raster object, its test and the mapping of codes.
#include "automation/raster_object.h"

#include "zkr13n/display_modes.h"

#include <cstdio>

namespace zkr::automation {

RasterObject::~RasterObject() {
    ReleaseContext();
    if (list_ == nullptr) {
        Z_FreeBitmap(&current_);
    } else if (OwnsList()) {
        if (CountItems() == listCount_) StoreRecord(); // else the item may be another one
        Z_DestroyBitmapList(list_);
    }
    Z_FreeBitmap(&alpha_);
    FreeUserData(this);
}

ReturnCode RasterObject::Make() {
    if (!token_.Make() || !alphaToken_.Make()) return Z_ERROR_MEMORY;
    token_.Fill(&current_, OwnerNotified, this);
    alphaToken_.Fill(&alpha_, nullptr, nullptr);
    const ReturnCode status = FreshList();
    if (status == Z_SUCCESS) SetDisplayDispatch();
    return status;
}

ReturnCode RasterObject::Test(Needs needs) const {
    if (needs == Needs::Nothing) return Z_SUCCESS;
    if (needs == Needs::Bitmap && !HasBitmap()) return Z_ERROR_BITMAP;
    return contextCount_ == 0 ? Z_SUCCESS : Z_ERROR_BITMAP;
}

Result RasterObject::Map(ReturnCode status, int16_t* shortResult, bool force) {
    if (status == Z_SUCCESS) {
        if (shortResult != nullptr) *shortResult = 0;
        return 0;
    }
    const uint32_t number = 20000u - static_cast<uint32_t>(status);
    if (shortResult != nullptr) *shortResult = static_cast<int16_t>(number);
    if (!enableMethodErrors_ && !force) return 0;
    char text[160];
    if (const char* message = Z_GetErrorText(status); message != nullptr) {
        std::snprintf(text, sizeof text, "ZIRC Error: %s", message);
    } else {
        std::snprintf(text, sizeof text, "ZIRC Error: Internal Error %d - call ZIRC",
                      static_cast<int>(number));
    }
    face_.ReportFailure(text);
    return static_cast<Result>(0x800A0000u | number);
}

ReturnCode RasterObject::Changed(ReturnCode status, int32_t change) {
    StoreRecord();
    if (status == Z_SUCCESS) Notify(change);
    return status;
}

ReturnCode RasterObject::RegionChanged(ReturnCode status) {
    StoreRecord();
    if (status == Z_SUCCESS) NotifyRegion();
    return status;
}

ReturnCode RasterObject::Translate(uint32_t colour, uint32_t* plain) {
    return face_.TranslateColour(colour, plain) ? Z_SUCCESS : Z_ERROR_ARGUMENT;
}

ReturnCode RasterObject::Translate(uint32_t colour, RGBQUAD* entry) {
    uint32_t plain = 0;
    const ReturnCode status = Translate(colour, &plain);
    entry->rgbRed = static_cast<uint8_t>(plain);
    entry->rgbGreen = static_cast<uint8_t>(plain >> 8);
    entry->rgbBlue = static_cast<uint8_t>(plain >> 16);
    entry->rgbReserved = 0;
    return status;
}

} // namespace zkr::automation
