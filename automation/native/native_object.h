// The raster object as a class, where there is no component model: references, sinks, and every member handed on to the
// logic.
#pragma once

#include "automation/raster_object.h"
#include "automation/sink_list.h"
#include "zkr13n/raster_object.h"

#include <atomic>

namespace zkr::automation {

// An argument on its way to the logic: arrays change their form.
template <typename T> struct Passed {
    T value;
    operator T() const { return value; }
};
template <> struct Passed<ZVariant*> {
    ZVariant* value;
    Array array{};
    explicit Passed(ZVariant* variant) : value(variant) {}
    ~Passed();
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;
    operator Array*() { return value != nullptr ? &array : nullptr; }
};
template <> struct Passed<ZVariant> {
    Array array;
    explicit Passed(const ZVariant& variant);
    operator const Array&() const { return array; }
};

class NativeObject final : public IZIRCRaster, private Face {
  public:
    NativeObject() : object_(*this) {}
    ~NativeObject() = default;
    ReturnCode Make() { return object_.Make(); }

    uint32_t AddRef() override;
    uint32_t Release() override;
    ZResult AdviseSink(ZRasterEvents* sink, uint32_t* cookie) override;
    ZResult UnadviseSink(uint32_t cookie) override;
    const char* LastErrorText() override { return errorText_; }

    // Bitmap and list
    ZResult get_Bitmap(intptr_t* value) override { return Call(&RasterObject::GetBitmap, value); }
    ZResult put_Bitmap(intptr_t value) override { return Call(&RasterObject::PutBitmap, value); }
    ZResult get_BitmapList(intptr_t* value) override { return Call(&RasterObject::GetBitmapList, value); }
    ZResult put_BitmapList(intptr_t value) override { return Call(&RasterObject::PutBitmapList, value); }
    ZResult get_EnableMethodErrors(int16_t* value) override {
        return Call(&RasterObject::GetEnableMethodErrors, value);
    }
    ZResult put_EnableMethodErrors(int16_t value) override {
        return Call(&RasterObject::PutEnableMethodErrors, value);
    }
    ZResult get_RefBitmap(int16_t* value) override { return Call(&RasterObject::GetRefBitmap, value); }
    ZResult put_RefBitmap(int16_t value) override { return Call(&RasterObject::PutRefBitmap, value); }
    ZResult get_RefBitmapList(int16_t* value) override {
        return Call(&RasterObject::GetRefBitmapList, value);
    }
    ZResult put_RefBitmapList(int16_t value) override { return Call(&RasterObject::PutRefBitmapList, value); }
    ZResult Free(int16_t* result) override { return Call(&RasterObject::Free, result); }

    // Scale
    ZResult get_ScaleMode(int32_t* value) override { return Call(&RasterObject::GetScaleMode, value); }
    ZResult put_ScaleMode(int32_t value) override { return Call(&RasterObject::PutScaleMode, value); }
    ZResult get_ScaleTop(float* value) override { return Call(&RasterObject::GetScaleTop, value); }
    ZResult put_ScaleTop(float value) override { return Call(&RasterObject::PutScaleTop, value); }
    ZResult get_ScaleLeft(float* value) override { return Call(&RasterObject::GetScaleLeft, value); }
    ZResult put_ScaleLeft(float value) override { return Call(&RasterObject::PutScaleLeft, value); }
    ZResult get_ScaleHeight(float* value) override { return Call(&RasterObject::GetScaleHeight, value); }
    ZResult put_ScaleHeight(float value) override { return Call(&RasterObject::PutScaleHeight, value); }
    ZResult get_ScaleWidth(float* value) override { return Call(&RasterObject::GetScaleWidth, value); }
    ZResult put_ScaleWidth(float value) override { return Call(&RasterObject::PutScaleWidth, value); }

    // Bitmap facts
    ZResult get_BitmapWidth(float* value) override { return Call(&RasterObject::GetBitmapWidth, value); }
    ZResult get_BitmapHeight(float* value) override { return Call(&RasterObject::GetBitmapHeight, value); }
    ZResult get_BitmapBits(int16_t* value) override { return Call(&RasterObject::GetBitmapBits, value); }
    ZResult get_BitmapXRes(int32_t* value) override { return Call(&RasterObject::GetBitmapXRes, value); }
    ZResult put_BitmapXRes(int32_t value) override { return Call(&RasterObject::PutBitmapXRes, value); }
    ZResult get_BitmapYRes(int32_t* value) override { return Call(&RasterObject::GetBitmapYRes, value); }
    ZResult put_BitmapYRes(int32_t value) override { return Call(&RasterObject::PutBitmapYRes, value); }
    ZResult get_IsGrayscale(int32_t* value) override { return Call(&RasterObject::GetIsGrayscale, value); }
    ZResult get_BitmapPalette(int16_t index, uint32_t* value) override {
        return Call(&RasterObject::GetBitmapPalette, index, value);
    }
    ZResult put_BitmapPalette(int16_t index, uint32_t value) override {
        return Call(&RasterObject::PutBitmapPalette, index, value);
    }

    // Region facts
    ZResult get_HasRgn(int16_t* value) override { return Call(&RasterObject::GetHasRgn, value); }
    ZResult get_RgnLeft(float* value) override { return Call(&RasterObject::GetRgnLeft, value); }
    ZResult get_RgnTop(float* value) override { return Call(&RasterObject::GetRgnTop, value); }
    ZResult get_RgnWidth(float* value) override { return Call(&RasterObject::GetRgnWidth, value); }
    ZResult get_RgnHeight(float* value) override { return Call(&RasterObject::GetRgnHeight, value); }

    // List index
    ZResult get_BitmapListIndex(int16_t* value) override {
        return Call(&RasterObject::GetBitmapListIndex, value);
    }
    ZResult put_BitmapListIndex(int16_t value) override {
        return Call(&RasterObject::PutBitmapListIndex, value);
    }
    ZResult get_BitmapListCount(int32_t* value) override {
        return Call(&RasterObject::GetBitmapListCount, value);
    }

    // Transparency and alpha
    ZResult get_BitmapEnableTransparency(int16_t* value) override {
        return Call(&RasterObject::GetBitmapEnableTransparency, value);
    }
    ZResult put_BitmapEnableTransparency(int16_t value) override {
        return Call(&RasterObject::PutBitmapEnableTransparency, value);
    }
    ZResult get_BitmapTransparentColor(uint32_t* value) override {
        return Call(&RasterObject::GetBitmapTransparentColor, value);
    }
    ZResult put_BitmapTransparentColor(uint32_t value) override {
        return Call(&RasterObject::PutBitmapTransparentColor, value);
    }
    ZResult get_BitmapAlpha(intptr_t* value) override { return Call(&RasterObject::GetBitmapAlpha, value); }
    ZResult put_BitmapAlpha(intptr_t value) override { return Call(&RasterObject::PutBitmapAlpha, value); }

    // Value range
    ZResult get_MinVal(int32_t* value) override { return Call(&RasterObject::GetMinVal, value); }
    ZResult get_MaxVal(int32_t* value) override { return Call(&RasterObject::GetMaxVal, value); }
    ZResult get_MinBit(int16_t* value) override { return Call(&RasterObject::GetMinBit, value); }
    ZResult get_MaxBit(int16_t* value) override { return Call(&RasterObject::GetMaxBit, value); }

    // Pixel
    ZResult get_Pixel(float x, float y, uint32_t* value) override {
        return Call(&RasterObject::GetPixel, x, y, value);
    }
    ZResult put_Pixel(float x, float y, uint32_t value) override {
        return Call(&RasterObject::PutPixel, x, y, value);
    }

    // Polygon
    ZResult get_PolygonSize(int32_t* value) override { return Call(&RasterObject::GetPolygonSize, value); }
    ZResult put_PolygonSize(int32_t value) override { return Call(&RasterObject::PutPolygonSize, value); }
    ZResult get_PolygonX(int32_t index, float* value) override {
        return Call(&RasterObject::GetPolygonX, index, value);
    }
    ZResult put_PolygonX(int32_t index, float value) override {
        return Call(&RasterObject::PutPolygonX, index, value);
    }
    ZResult get_PolygonY(int32_t index, float* value) override {
        return Call(&RasterObject::GetPolygonY, index, value);
    }
    ZResult put_PolygonY(int32_t index, float value) override {
        return Call(&RasterObject::PutPolygonY, index, value);
    }

    // Capability
    ZResult UnlockSupport(int32_t support, const char* key, int16_t* result) override {
        return Call(&RasterObject::UnlockSupport, support, key, result);
    }
    ZResult IsSupportLocked(int32_t support, int16_t* locked) override {
        return Call(&RasterObject::IsSupportLocked, support, locked);
    }

    // Region edits
    ZResult FreeRgn(int16_t* result) override { return Call(&RasterObject::FreeRgn, result); }

    // List edits
    ZResult DeleteBitmapListItems(int16_t index, int32_t count, int16_t* result) override {
        return Call(&RasterObject::DeleteBitmapListItems, index, count, result);
    }

    // Pictures
    ZResult GetPicture(intptr_t context, intptr_t* picture) override {
        return Call(&RasterObject::GetPicture, context, picture);
    }
    ZResult SetPicture(intptr_t picture, int16_t* result) override {
        return Call(&RasterObject::SetPicture, picture, result);
    }

    // Creation
    ZResult CreateBitmap(float width, float height, int16_t bits, int16_t* result) override {
        return Call(&RasterObject::CreateBitmap, width, height, bits, result);
    }

    // Device context
    ZResult GetBitmapDC(intptr_t* context) override { return Call(&RasterObject::GetBitmapDC, context); }
    ZResult ReleaseBitmapDC(int16_t* result) override { return Call(&RasterObject::ReleaseBitmapDC, result); }

    // Clipboard
    ZResult Copy(intptr_t window, int16_t flags, int16_t* result) override {
        return Call(&RasterObject::Copy, window, flags, result);
    }
    ZResult Paste(intptr_t window, int16_t flags, int16_t* result) override {
        return Call(&RasterObject::Paste, window, flags, result);
    }

    // Exchange
    ZResult SetDIB(intptr_t dib, int16_t* result) override {
        return Call(&RasterObject::SetDIB, dib, result);
    }
    ZResult SetDDB(intptr_t context, intptr_t bitmap, intptr_t palette, int16_t* result) override {
        return Call(&RasterObject::SetDDB, context, bitmap, palette, result);
    }
    ZResult GetDIB(intptr_t* dib) override { return Call(&RasterObject::GetDIB, dib); }
    ZResult GetDDB(intptr_t context, intptr_t* bitmap) override {
        return Call(&RasterObject::GetDDB, context, bitmap);
    }
    ZResult Capture(intptr_t context, float left, float top, float width, float height,
                    int16_t* result) override {
        return Call(&RasterObject::Capture, context, left, top, width, height, result);
    }

    // List insert
    ZResult InsertBitmapListItem(int16_t index, intptr_t bitmap, int16_t* result) override {
        return Call(&RasterObject::InsertBitmapListItem, index, bitmap, result);
    }

    // Ranges
    ZResult GetMinMaxVal(int16_t* result) override { return Call(&RasterObject::GetMinMaxVal, result); }
    ZResult GetMinMaxBits(int16_t* result) override { return Call(&RasterObject::GetMinMaxBits, result); }

    // Regions
    ZResult DeleteRgnHandle(intptr_t region, int16_t* result) override {
        return Call(&RasterObject::DeleteRgnHandle, region, result);
    }
    ZResult GetRgnArea(int32_t* area) override { return Call(&RasterObject::GetRgnArea, area); }
    ZResult GetRgnHandle(intptr_t* region) override { return Call(&RasterObject::GetRgnHandle, region); }
    ZResult IsPtInRgn(float x, float y, int16_t* inside) override {
        return Call(&RasterObject::IsPtInRgn, x, y, inside);
    }
    ZResult OffsetRgn(float x, float y, int16_t* result) override {
        return Call(&RasterObject::OffsetRgn, x, y, result);
    }
    ZResult SetRgnColor(uint32_t value, int32_t mode, int16_t* result) override {
        return Call(&RasterObject::SetRgnColor, value, mode, result);
    }
    ZResult SetRgnHandle(intptr_t region, int32_t mode, int16_t* result) override {
        return Call(&RasterObject::SetRgnHandle, region, mode, result);
    }
    ZResult SetRgnEllipse(float left, float top, float width, float height, int32_t mode,
                          int16_t* result) override {
        return Call(&RasterObject::SetRgnEllipse, left, top, width, height, mode, result);
    }
    ZResult SetRgnRect(float left, float top, float width, float height, int32_t mode,
                       int16_t* result) override {
        return Call(&RasterObject::SetRgnRect, left, top, width, height, mode, result);
    }
    ZResult SetRgnRoundRect(float left, float top, float width, float height, float ellipseWidth,
                            float ellipseHeight, int32_t mode, int16_t* result) override {
        return Call(&RasterObject::SetRgnRoundRect, left, top, width, height, ellipseWidth, ellipseHeight,
                    mode, result);
    }
    ZResult SetRgnPolygon(int32_t fillMode, int32_t mode, int16_t* result) override {
        return Call(&RasterObject::SetRgnPolygon, fillMode, mode, result);
    }
    ZResult SetRgnMagicWand(float x, float y, int16_t tolerance, int32_t mode, int16_t* result) override {
        return Call(&RasterObject::SetRgnMagicWand, x, y, tolerance, mode, result);
    }

    // Client extent
    ZResult get_ClientX(int32_t* value) override { return Call(&RasterObject::GetClientX, value); }
    ZResult put_ClientX(int32_t value) override { return Call(&RasterObject::PutClientX, value); }
    ZResult get_ClientY(int32_t* value) override { return Call(&RasterObject::GetClientY, value); }
    ZResult put_ClientY(int32_t value) override { return Call(&RasterObject::PutClientY, value); }

    // List ownership
    ZResult FreeList(int16_t* result) override { return Call(&RasterObject::FreeList, result); }
    ZResult NewList(int16_t* result) override { return Call(&RasterObject::NewList, result); }
    ZResult PutInList(int16_t* result) override { return Call(&RasterObject::PutInList, result); }

    // Events
    ZResult EnableChangeEvents(int16_t enable, int16_t* result) override {
        return Call(&RasterObject::EnableChangeEvents, enable, result);
    }
    ZResult NotifyChange(int32_t notification, int32_t modifyFlags, int32_t reserved1,
                         int32_t reserved2) override {
        return Call(&RasterObject::NotifyChange, notification, modifyFlags, reserved1, reserved2);
    }

    // Level table
    ZResult get_LevelLUTLength(int32_t* value) override {
        return Call(&RasterObject::GetLevelLUTLength, value);
    }
    ZResult get_LevelLUT(int32_t index, uint32_t* value) override {
        return Call(&RasterObject::GetLevelLUT, index, value);
    }
    ZResult put_LevelLUT(int32_t index, uint32_t value) override {
        return Call(&RasterObject::PutLevelLUT, index, value);
    }
    ZResult get_LevelLowBit(int16_t* value) override { return Call(&RasterObject::GetLevelLowBit, value); }
    ZResult put_LevelLowBit(int16_t value) override { return Call(&RasterObject::PutLevelLowBit, value); }
    ZResult get_LevelHighBit(int16_t* value) override { return Call(&RasterObject::GetLevelHighBit, value); }
    ZResult put_LevelHighBit(int16_t value) override { return Call(&RasterObject::PutLevelHighBit, value); }
    ZResult WindowLevelFillLUT(uint32_t first, uint32_t second, int32_t low, int32_t high, int16_t lowBit,
                               int16_t highBit, int32_t minimum, int32_t maximum, int16_t inside,
                               int16_t* result) override {
        return Call(&RasterObject::WindowLevelFillLUT, first, second, low, high, lowBit, highBit, minimum,
                    maximum, inside, result);
    }

    // Animation frame
    ZResult get_BitmapLeft(float* value) override { return Call(&RasterObject::GetBitmapLeft, value); }
    ZResult put_BitmapLeft(float value) override { return Call(&RasterObject::PutBitmapLeft, value); }
    ZResult get_BitmapTop(float* value) override { return Call(&RasterObject::GetBitmapTop, value); }
    ZResult put_BitmapTop(float value) override { return Call(&RasterObject::PutBitmapTop, value); }
    ZResult get_BitmapDelay(int32_t* value) override { return Call(&RasterObject::GetBitmapDelay, value); }
    ZResult put_BitmapDelay(int32_t value) override { return Call(&RasterObject::PutBitmapDelay, value); }
    ZResult get_BitmapDisposalMethod(int32_t* value) override {
        return Call(&RasterObject::GetBitmapDisposalMethod, value);
    }
    ZResult put_BitmapDisposalMethod(int32_t value) override {
        return Call(&RasterObject::PutBitmapDisposalMethod, value);
    }

    // More exchange and regions
    ZResult GetDIB2(int32_t type, intptr_t* dib) override { return Call(&RasterObject::GetDIB2, type, dib); }
    ZResult SetRgnColorRGBRange(uint32_t lower, uint32_t upper, int32_t mode, int16_t* result) override {
        return Call(&RasterObject::SetRgnColorRGBRange, lower, upper, mode, result);
    }
    ZResult SetRgnColorHSVRange(int32_t lower, int32_t upper, int32_t mode, int16_t* result) override {
        return Call(&RasterObject::SetRgnColorHSVRange, lower, upper, mode, result);
    }

    // Change information
    ZResult SetChangeInfo(int32_t type, intptr_t info, int16_t* result) override {
        return Call(&RasterObject::SetChangeInfo, type, info, result);
    }
    ZResult GetChangeInfo(int32_t type, intptr_t info, int16_t* result) override {
        return Call(&RasterObject::GetChangeInfo, type, info, result);
    }

    // Curve
    ZResult get_CurveSize(int32_t* value) override { return Call(&RasterObject::GetCurveSize, value); }
    ZResult put_CurveSize(int32_t value) override { return Call(&RasterObject::PutCurveSize, value); }
    ZResult get_CurveType(int32_t* value) override { return Call(&RasterObject::GetCurveType, value); }
    ZResult put_CurveType(int32_t value) override { return Call(&RasterObject::PutCurveType, value); }
    ZResult get_CurveTension(double* value) override { return Call(&RasterObject::GetCurveTension, value); }
    ZResult put_CurveTension(double value) override { return Call(&RasterObject::PutCurveTension, value); }
    ZResult get_CurveClose(int32_t* value) override { return Call(&RasterObject::GetCurveClose, value); }
    ZResult put_CurveClose(int32_t value) override { return Call(&RasterObject::PutCurveClose, value); }
    ZResult get_BezierSize(int32_t* value) override { return Call(&RasterObject::GetBezierSize, value); }
    ZResult get_CurveX(int32_t index, float* value) override {
        return Call(&RasterObject::GetCurveX, index, value);
    }
    ZResult put_CurveX(int32_t index, float value) override {
        return Call(&RasterObject::PutCurveX, index, value);
    }
    ZResult get_CurveY(int32_t index, float* value) override {
        return Call(&RasterObject::GetCurveY, index, value);
    }
    ZResult put_CurveY(int32_t index, float value) override {
        return Call(&RasterObject::PutCurveY, index, value);
    }
    ZResult get_BezierX(int32_t index, float* value) override {
        return Call(&RasterObject::GetBezierX, index, value);
    }
    ZResult get_BezierY(int32_t index, float* value) override {
        return Call(&RasterObject::GetBezierY, index, value);
    }
    ZResult SetRgnCurve(int32_t fillMode, int32_t mode, int16_t* result) override {
        return Call(&RasterObject::SetRgnCurve, fillMode, mode, result);
    }
    ZResult CurveToBezier(int16_t* result) override { return Call(&RasterObject::CurveToBezier, result); }

    // Misc
    ZResult get_IsSigned(int16_t* value) override { return Call(&RasterObject::GetIsSigned, value); }
    ZResult put_IsSigned(int16_t value) override { return Call(&RasterObject::PutIsSigned, value); }
    ZResult get_BitmapSize(int32_t* value) override { return Call(&RasterObject::GetBitmapSize, value); }
    ZResult GetBitmapClipSegments(float y, ZVariant* segments) override {
        return Call(&RasterObject::GetBitmapClipSegments, y, segments);
    }
    ZResult get_PixelData(float x, float y, ZVariant* value) override {
        return Call(&RasterObject::GetPixelData, x, y, value);
    }
    ZResult put_PixelData(float x, float y, const ZVariant& value) override {
        return Call(&RasterObject::PutPixelData, x, y, value);
    }
    ZResult ResizeRgn(int32_t mode, float size, int16_t* result) override {
        return Call(&RasterObject::ResizeRgn, mode, size, result);
    }
    ZResult get_BitmapCompression(int32_t* value) override {
        return Call(&RasterObject::GetBitmapCompression, value);
    }
    ZResult get_ReadOnlyBitmapList(int16_t* value) override {
        return Call(&RasterObject::GetReadOnlyBitmapList, value);
    }
    ZResult put_ReadOnlyBitmapList(int16_t value) override {
        return Call(&RasterObject::PutReadOnlyBitmapList, value);
    }
    ZResult GetInterfacePointer(IZIRCRaster** raster) override;
    ZResult CreateUserBitmap(float width, float height, int16_t bits, const ZVariant& data, int32_t size,
                             int16_t* result) override {
        return Call(&RasterObject::CreateUserBitmap, width, height, bits, data, size, result);
    }
    ZResult SetBitmapDataPointer(const ZVariant& data, int32_t size, int16_t* result) override {
        return Call(&RasterObject::SetBitmapDataPointer, data, size, result);
    }

  private:
    void Keep() override { AddRef(); }
    void Drop() override { Release(); }
    void ReportFailure(const char* text) override;
    void FireChange(int32_t change, int32_t reserved1, int32_t reserved2) override;
    void FireRegionChange() override;
    bool TranslateColour(uint32_t colour, uint32_t* plain) override;

    // A reference for the time of a call, where there are sinks: they may release the last one of the client's.
    class Held {
      public:
        explicit Held(NativeObject& object) : object_(object.sinks_.Count() != 0 ? &object : nullptr) {
            if (object_ != nullptr) object_->AddRef();
        }
        ~Held() {
            if (object_ != nullptr) object_->Release();
        }
        Held(const Held&) = delete;
        Held& operator=(const Held&) = delete;

      private:
        NativeObject* object_;
    };

    template <typename Member, typename... Arguments>
    ZResult Call(Member member, const Arguments&... arguments) {
        const Held held(*this);
        return (object_.*member)(Passed<Arguments>{arguments}...);
    }

    RasterObject object_;
    std::atomic<uint32_t> references_{1};
    SinkList<ZRasterEvents*> sinks_;
    char errorText_[160] = {};
};

} // namespace zkr::automation
