// The raster object as an Automation object: references, dispatch, error information, events, and every member handed on
// to the logic.
#pragma once

#include "automation/raster_object.h"
#include "automation/windows/arguments.h"
#include "automation/windows/connection_points.h"
#include "automation/windows/interfaces.h"
#include "automation/windows/module.h"

#include <atomic>

namespace zkr::automation {

class ComRaster final : public IZIRCRaster,
                        public ISupportErrorInfo,
                        public IConnectionPointContainer,
                        public IProvideClassInfo2,
                        private Face {
  public:
    ComRaster() : object_(*this), events_(*this) {}
    ~ComRaster() = default;
    ReturnCode Make() { return object_.Make(); }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID member, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* argument) override;

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override;
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;
    STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
    STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;

    // For companions, which have an object's IUnknown alone: the logic behind it, while the reference is held. The
    // object is known by an interface that no other class has.
    RasterObject& Logic() { return object_; }

    // Bitmap and list
    STDMETHODIMP get_Bitmap(LONG_PTR* value) override { return Call(&RasterObject::GetBitmap, value); }
    STDMETHODIMP put_Bitmap(LONG_PTR value) override { return Call(&RasterObject::PutBitmap, value); }
    STDMETHODIMP get_BitmapList(LONG_PTR* value) override {
        return Call(&RasterObject::GetBitmapList, value);
    }
    STDMETHODIMP put_BitmapList(LONG_PTR value) override { return Call(&RasterObject::PutBitmapList, value); }
    STDMETHODIMP get_EnableMethodErrors(VARIANT_BOOL* value) override {
        return Call(&RasterObject::GetEnableMethodErrors, value);
    }
    STDMETHODIMP put_EnableMethodErrors(VARIANT_BOOL value) override {
        return Call(&RasterObject::PutEnableMethodErrors, value);
    }
    STDMETHODIMP get_RefBitmap(VARIANT_BOOL* value) override {
        return Call(&RasterObject::GetRefBitmap, value);
    }
    STDMETHODIMP put_RefBitmap(VARIANT_BOOL value) override {
        return Call(&RasterObject::PutRefBitmap, value);
    }
    STDMETHODIMP get_RefBitmapList(VARIANT_BOOL* value) override {
        return Call(&RasterObject::GetRefBitmapList, value);
    }
    STDMETHODIMP put_RefBitmapList(VARIANT_BOOL value) override {
        return Call(&RasterObject::PutRefBitmapList, value);
    }
    STDMETHODIMP Free(short* result) override { return Call(&RasterObject::Free, result); }

    // Scale
    STDMETHODIMP get_ScaleMode(RasterScaleModeConstants* value) override {
        return Call(&RasterObject::GetScaleMode, value);
    }
    STDMETHODIMP put_ScaleMode(RasterScaleModeConstants value) override {
        return Call(&RasterObject::PutScaleMode, value);
    }
    STDMETHODIMP get_ScaleTop(float* value) override { return Call(&RasterObject::GetScaleTop, value); }
    STDMETHODIMP put_ScaleTop(float value) override { return Call(&RasterObject::PutScaleTop, value); }
    STDMETHODIMP get_ScaleLeft(float* value) override { return Call(&RasterObject::GetScaleLeft, value); }
    STDMETHODIMP put_ScaleLeft(float value) override { return Call(&RasterObject::PutScaleLeft, value); }
    STDMETHODIMP get_ScaleHeight(float* value) override { return Call(&RasterObject::GetScaleHeight, value); }
    STDMETHODIMP put_ScaleHeight(float value) override { return Call(&RasterObject::PutScaleHeight, value); }
    STDMETHODIMP get_ScaleWidth(float* value) override { return Call(&RasterObject::GetScaleWidth, value); }
    STDMETHODIMP put_ScaleWidth(float value) override { return Call(&RasterObject::PutScaleWidth, value); }

    // Bitmap facts
    STDMETHODIMP get_BitmapWidth(float* value) override { return Call(&RasterObject::GetBitmapWidth, value); }
    STDMETHODIMP get_BitmapHeight(float* value) override {
        return Call(&RasterObject::GetBitmapHeight, value);
    }
    STDMETHODIMP get_BitmapBits(short* value) override { return Call(&RasterObject::GetBitmapBits, value); }
    STDMETHODIMP get_BitmapXRes(long* value) override { return Call(&RasterObject::GetBitmapXRes, value); }
    STDMETHODIMP put_BitmapXRes(long value) override { return Call(&RasterObject::PutBitmapXRes, value); }
    STDMETHODIMP get_BitmapYRes(long* value) override { return Call(&RasterObject::GetBitmapYRes, value); }
    STDMETHODIMP put_BitmapYRes(long value) override { return Call(&RasterObject::PutBitmapYRes, value); }
    STDMETHODIMP get_IsGrayscale(GrayscaleTypes* value) override {
        return Call(&RasterObject::GetIsGrayscale, value);
    }
    STDMETHODIMP get_BitmapPalette(short index, OLE_COLOR* value) override {
        return Call(&RasterObject::GetBitmapPalette, index, value);
    }
    STDMETHODIMP put_BitmapPalette(short index, OLE_COLOR value) override {
        return Call(&RasterObject::PutBitmapPalette, index, value);
    }

    // Region facts
    STDMETHODIMP get_HasRgn(VARIANT_BOOL* value) override { return Call(&RasterObject::GetHasRgn, value); }
    STDMETHODIMP get_RgnLeft(float* value) override { return Call(&RasterObject::GetRgnLeft, value); }
    STDMETHODIMP get_RgnTop(float* value) override { return Call(&RasterObject::GetRgnTop, value); }
    STDMETHODIMP get_RgnWidth(float* value) override { return Call(&RasterObject::GetRgnWidth, value); }
    STDMETHODIMP get_RgnHeight(float* value) override { return Call(&RasterObject::GetRgnHeight, value); }

    // List index
    STDMETHODIMP get_BitmapListIndex(short* value) override {
        return Call(&RasterObject::GetBitmapListIndex, value);
    }
    STDMETHODIMP put_BitmapListIndex(short value) override {
        return Call(&RasterObject::PutBitmapListIndex, value);
    }
    STDMETHODIMP get_BitmapListCount(long* value) override {
        return Call(&RasterObject::GetBitmapListCount, value);
    }

    // Transparency and alpha
    STDMETHODIMP get_BitmapEnableTransparency(VARIANT_BOOL* value) override {
        return Call(&RasterObject::GetBitmapEnableTransparency, value);
    }
    STDMETHODIMP put_BitmapEnableTransparency(VARIANT_BOOL value) override {
        return Call(&RasterObject::PutBitmapEnableTransparency, value);
    }
    STDMETHODIMP get_BitmapTransparentColor(OLE_COLOR* value) override {
        return Call(&RasterObject::GetBitmapTransparentColor, value);
    }
    STDMETHODIMP put_BitmapTransparentColor(OLE_COLOR value) override {
        return Call(&RasterObject::PutBitmapTransparentColor, value);
    }
    STDMETHODIMP get_BitmapAlpha(LONG_PTR* value) override {
        return Call(&RasterObject::GetBitmapAlpha, value);
    }
    STDMETHODIMP put_BitmapAlpha(LONG_PTR value) override {
        return Call(&RasterObject::PutBitmapAlpha, value);
    }

    // Value range
    STDMETHODIMP get_MinVal(long* value) override { return Call(&RasterObject::GetMinVal, value); }
    STDMETHODIMP get_MaxVal(long* value) override { return Call(&RasterObject::GetMaxVal, value); }
    STDMETHODIMP get_MinBit(short* value) override { return Call(&RasterObject::GetMinBit, value); }
    STDMETHODIMP get_MaxBit(short* value) override { return Call(&RasterObject::GetMaxBit, value); }

    // Pixel
    STDMETHODIMP get_Pixel(float x, float y, OLE_COLOR* value) override {
        return Call(&RasterObject::GetPixel, x, y, value);
    }
    STDMETHODIMP put_Pixel(float x, float y, OLE_COLOR value) override {
        return Call(&RasterObject::PutPixel, x, y, value);
    }

    // Polygon
    STDMETHODIMP get_PolygonSize(long* value) override { return Call(&RasterObject::GetPolygonSize, value); }
    STDMETHODIMP put_PolygonSize(long value) override { return Call(&RasterObject::PutPolygonSize, value); }
    STDMETHODIMP get_PolygonX(long index, float* value) override {
        return Call(&RasterObject::GetPolygonX, index, value);
    }
    STDMETHODIMP put_PolygonX(long index, float value) override {
        return Call(&RasterObject::PutPolygonX, index, value);
    }
    STDMETHODIMP get_PolygonY(long index, float* value) override {
        return Call(&RasterObject::GetPolygonY, index, value);
    }
    STDMETHODIMP put_PolygonY(long index, float value) override {
        return Call(&RasterObject::PutPolygonY, index, value);
    }

    // Capability
    STDMETHODIMP UnlockSupport(RasterSupportLockConstants support, BSTR key, short* result) override {
        return Call(&RasterObject::UnlockSupport, support, key, result);
    }
    STDMETHODIMP IsSupportLocked(RasterSupportLockConstants support, VARIANT_BOOL* locked) override {
        return Call(&RasterObject::IsSupportLocked, support, locked);
    }

    // Region edits
    STDMETHODIMP FreeRgn(short* result) override { return Call(&RasterObject::FreeRgn, result); }

    // List edits
    STDMETHODIMP DeleteBitmapListItems(short index, long count, short* result) override {
        return Call(&RasterObject::DeleteBitmapListItems, index, count, result);
    }

    // Pictures
    STDMETHODIMP GetPicture(LONG_PTR context, IDispatch** picture) override {
        return Call(&RasterObject::GetPicture, context, picture);
    }
    STDMETHODIMP SetPicture(IDispatch* picture, short* result) override {
        return Call(&RasterObject::SetPicture, picture, result);
    }

    // Creation
    STDMETHODIMP CreateBitmap(float width, float height, short bits, short* result) override {
        return Call(&RasterObject::CreateBitmap, width, height, bits, result);
    }

    // Device context
    STDMETHODIMP GetBitmapDC(LONG_PTR* context) override { return Call(&RasterObject::GetBitmapDC, context); }
    STDMETHODIMP ReleaseBitmapDC(short* result) override {
        return Call(&RasterObject::ReleaseBitmapDC, result);
    }

    // Clipboard
    STDMETHODIMP Copy(LONG_PTR window, short flags, short* result) override {
        return Call(&RasterObject::Copy, window, flags, result);
    }
    STDMETHODIMP Paste(LONG_PTR window, short flags, short* result) override {
        return Call(&RasterObject::Paste, window, flags, result);
    }

    // Exchange
    STDMETHODIMP SetDIB(LONG_PTR dib, short* result) override {
        return Call(&RasterObject::SetDIB, dib, result);
    }
    STDMETHODIMP SetDDB(LONG_PTR context, LONG_PTR bitmap, LONG_PTR palette, short* result) override {
        return Call(&RasterObject::SetDDB, context, bitmap, palette, result);
    }
    STDMETHODIMP GetDIB(LONG_PTR* dib) override { return Call(&RasterObject::GetDIB, dib); }
    STDMETHODIMP GetDDB(LONG_PTR context, LONG_PTR* bitmap) override {
        return Call(&RasterObject::GetDDB, context, bitmap);
    }
    STDMETHODIMP Capture(LONG_PTR context, float left, float top, float width, float height,
                         short* result) override {
        return Call(&RasterObject::Capture, context, left, top, width, height, result);
    }

    // List insert
    STDMETHODIMP InsertBitmapListItem(short index, LONG_PTR bitmap, short* result) override {
        return Call(&RasterObject::InsertBitmapListItem, index, bitmap, result);
    }

    // Ranges
    STDMETHODIMP GetMinMaxVal(short* result) override { return Call(&RasterObject::GetMinMaxVal, result); }
    STDMETHODIMP GetMinMaxBits(short* result) override { return Call(&RasterObject::GetMinMaxBits, result); }

    // Regions
    STDMETHODIMP DeleteRgnHandle(LONG_PTR region, short* result) override {
        return Call(&RasterObject::DeleteRgnHandle, region, result);
    }
    STDMETHODIMP GetRgnArea(long* area) override { return Call(&RasterObject::GetRgnArea, area); }
    STDMETHODIMP GetRgnHandle(LONG_PTR* region) override { return Call(&RasterObject::GetRgnHandle, region); }
    STDMETHODIMP IsPtInRgn(float x, float y, VARIANT_BOOL* inside) override {
        return Call(&RasterObject::IsPtInRgn, x, y, inside);
    }
    STDMETHODIMP OffsetRgn(float x, float y, short* result) override {
        return Call(&RasterObject::OffsetRgn, x, y, result);
    }
    STDMETHODIMP SetRgnColor(OLE_COLOR value, RgnCombineModeConstants mode, short* result) override {
        return Call(&RasterObject::SetRgnColor, value, mode, result);
    }
    STDMETHODIMP SetRgnHandle(LONG_PTR region, RgnCombineModeConstants mode, short* result) override {
        return Call(&RasterObject::SetRgnHandle, region, mode, result);
    }
    STDMETHODIMP SetRgnEllipse(float left, float top, float width, float height, RgnCombineModeConstants mode,
                               short* result) override {
        return Call(&RasterObject::SetRgnEllipse, left, top, width, height, mode, result);
    }
    STDMETHODIMP SetRgnRect(float left, float top, float width, float height, RgnCombineModeConstants mode,
                            short* result) override {
        return Call(&RasterObject::SetRgnRect, left, top, width, height, mode, result);
    }
    STDMETHODIMP SetRgnRoundRect(float left, float top, float width, float height, float ellipseWidth,
                                 float ellipseHeight, RgnCombineModeConstants mode, short* result) override {
        return Call(&RasterObject::SetRgnRoundRect, left, top, width, height, ellipseWidth, ellipseHeight,
                    mode, result);
    }
    STDMETHODIMP SetRgnPolygon(RgnPolygonFillModeConstants fillMode, RgnCombineModeConstants mode,
                               short* result) override {
        return Call(&RasterObject::SetRgnPolygon, fillMode, mode, result);
    }
    STDMETHODIMP SetRgnMagicWand(float x, float y, short tolerance, RgnCombineModeConstants mode,
                                 short* result) override {
        return Call(&RasterObject::SetRgnMagicWand, x, y, tolerance, mode, result);
    }

    // Client extent
    STDMETHODIMP get_ClientX(long* value) override { return Call(&RasterObject::GetClientX, value); }
    STDMETHODIMP put_ClientX(long value) override { return Call(&RasterObject::PutClientX, value); }
    STDMETHODIMP get_ClientY(long* value) override { return Call(&RasterObject::GetClientY, value); }
    STDMETHODIMP put_ClientY(long value) override { return Call(&RasterObject::PutClientY, value); }

    // List ownership
    STDMETHODIMP FreeList(short* result) override { return Call(&RasterObject::FreeList, result); }
    STDMETHODIMP NewList(short* result) override { return Call(&RasterObject::NewList, result); }
    STDMETHODIMP PutInList(short* result) override { return Call(&RasterObject::PutInList, result); }

    // Events
    STDMETHODIMP EnableChangeEvents(VARIANT_BOOL enable, short* result) override {
        return Call(&RasterObject::EnableChangeEvents, enable, result);
    }
    STDMETHODIMP NotifyChange(long notification, long modifyFlags, long reserved1, long reserved2) override {
        return Call(&RasterObject::NotifyChange, notification, modifyFlags, reserved1, reserved2);
    }

    // Level table
    STDMETHODIMP get_LevelLUTLength(long* value) override {
        return Call(&RasterObject::GetLevelLUTLength, value);
    }
    STDMETHODIMP get_LevelLUT(long index, OLE_COLOR* value) override {
        return Call(&RasterObject::GetLevelLUT, index, value);
    }
    STDMETHODIMP put_LevelLUT(long index, OLE_COLOR value) override {
        return Call(&RasterObject::PutLevelLUT, index, value);
    }
    STDMETHODIMP get_LevelLowBit(short* value) override { return Call(&RasterObject::GetLevelLowBit, value); }
    STDMETHODIMP put_LevelLowBit(short value) override { return Call(&RasterObject::PutLevelLowBit, value); }
    STDMETHODIMP get_LevelHighBit(short* value) override {
        return Call(&RasterObject::GetLevelHighBit, value);
    }
    STDMETHODIMP put_LevelHighBit(short value) override {
        return Call(&RasterObject::PutLevelHighBit, value);
    }
    STDMETHODIMP WindowLevelFillLUT(OLE_COLOR first, OLE_COLOR second, long low, long high, short lowBit,
                                    short highBit, long minimum, long maximum, VARIANT_BOOL inside,
                                    short* result) override {
        return Call(&RasterObject::WindowLevelFillLUT, first, second, low, high, lowBit, highBit, minimum,
                    maximum, inside, result);
    }

    // Animation frame
    STDMETHODIMP get_BitmapLeft(float* value) override { return Call(&RasterObject::GetBitmapLeft, value); }
    STDMETHODIMP put_BitmapLeft(float value) override { return Call(&RasterObject::PutBitmapLeft, value); }
    STDMETHODIMP get_BitmapTop(float* value) override { return Call(&RasterObject::GetBitmapTop, value); }
    STDMETHODIMP put_BitmapTop(float value) override { return Call(&RasterObject::PutBitmapTop, value); }
    STDMETHODIMP get_BitmapDelay(long* value) override { return Call(&RasterObject::GetBitmapDelay, value); }
    STDMETHODIMP put_BitmapDelay(long value) override { return Call(&RasterObject::PutBitmapDelay, value); }
    STDMETHODIMP get_BitmapDisposalMethod(AnimationDisposalConstants* value) override {
        return Call(&RasterObject::GetBitmapDisposalMethod, value);
    }
    STDMETHODIMP put_BitmapDisposalMethod(AnimationDisposalConstants value) override {
        return Call(&RasterObject::PutBitmapDisposalMethod, value);
    }

    // More exchange and regions
    STDMETHODIMP GetDIB2(DIBTypeConstants type, LONG_PTR* dib) override {
        return Call(&RasterObject::GetDIB2, type, dib);
    }
    STDMETHODIMP SetRgnColorRGBRange(OLE_COLOR lower, OLE_COLOR upper, RgnCombineModeConstants mode,
                                     short* result) override {
        return Call(&RasterObject::SetRgnColorRGBRange, lower, upper, mode, result);
    }
    STDMETHODIMP SetRgnColorHSVRange(long lower, long upper, RgnCombineModeConstants mode,
                                     short* result) override {
        return Call(&RasterObject::SetRgnColorHSVRange, lower, upper, mode, result);
    }

    // Change information
    STDMETHODIMP SetChangeInfo(long type, LONG_PTR info, short* result) override {
        return Call(&RasterObject::SetChangeInfo, type, info, result);
    }
    STDMETHODIMP GetChangeInfo(long type, LONG_PTR info, short* result) override {
        return Call(&RasterObject::GetChangeInfo, type, info, result);
    }

    // Curve
    STDMETHODIMP get_CurveSize(long* value) override { return Call(&RasterObject::GetCurveSize, value); }
    STDMETHODIMP put_CurveSize(long value) override { return Call(&RasterObject::PutCurveSize, value); }
    STDMETHODIMP get_CurveType(CurveTypeConstants* value) override {
        return Call(&RasterObject::GetCurveType, value);
    }
    STDMETHODIMP put_CurveType(CurveTypeConstants value) override {
        return Call(&RasterObject::PutCurveType, value);
    }
    STDMETHODIMP get_CurveTension(double* value) override {
        return Call(&RasterObject::GetCurveTension, value);
    }
    STDMETHODIMP put_CurveTension(double value) override {
        return Call(&RasterObject::PutCurveTension, value);
    }
    STDMETHODIMP get_CurveClose(CurveCloseConstants* value) override {
        return Call(&RasterObject::GetCurveClose, value);
    }
    STDMETHODIMP put_CurveClose(CurveCloseConstants value) override {
        return Call(&RasterObject::PutCurveClose, value);
    }
    STDMETHODIMP get_BezierSize(long* value) override { return Call(&RasterObject::GetBezierSize, value); }
    STDMETHODIMP get_CurveX(long index, float* value) override {
        return Call(&RasterObject::GetCurveX, index, value);
    }
    STDMETHODIMP put_CurveX(long index, float value) override {
        return Call(&RasterObject::PutCurveX, index, value);
    }
    STDMETHODIMP get_CurveY(long index, float* value) override {
        return Call(&RasterObject::GetCurveY, index, value);
    }
    STDMETHODIMP put_CurveY(long index, float value) override {
        return Call(&RasterObject::PutCurveY, index, value);
    }
    STDMETHODIMP get_BezierX(long index, float* value) override {
        return Call(&RasterObject::GetBezierX, index, value);
    }
    STDMETHODIMP get_BezierY(long index, float* value) override {
        return Call(&RasterObject::GetBezierY, index, value);
    }
    STDMETHODIMP SetRgnCurve(RgnPolygonFillModeConstants fillMode, RgnCombineModeConstants mode,
                             short* result) override {
        return Call(&RasterObject::SetRgnCurve, fillMode, mode, result);
    }
    STDMETHODIMP CurveToBezier(short* result) override { return Call(&RasterObject::CurveToBezier, result); }

    // Misc
    STDMETHODIMP get_IsSigned(VARIANT_BOOL* value) override {
        return Call(&RasterObject::GetIsSigned, value);
    }
    STDMETHODIMP put_IsSigned(VARIANT_BOOL value) override { return Call(&RasterObject::PutIsSigned, value); }
    STDMETHODIMP get_BitmapSize(long* value) override { return Call(&RasterObject::GetBitmapSize, value); }
    STDMETHODIMP GetBitmapClipSegments(float y, VARIANT* segments) override {
        return Call(&RasterObject::GetBitmapClipSegments, y, segments);
    }
    STDMETHODIMP get_PixelData(float x, float y, VARIANT* value) override {
        return Call(&RasterObject::GetPixelData, x, y, value);
    }
    STDMETHODIMP put_PixelData(float x, float y, VARIANT value) override {
        return Call(&RasterObject::PutPixelData, x, y, value);
    }
    STDMETHODIMP ResizeRgn(ResizeRgnConstants mode, float size, short* result) override {
        return Call(&RasterObject::ResizeRgn, mode, size, result);
    }
    STDMETHODIMP get_BitmapCompression(BitmapCompressionConstants* value) override {
        return Call(&RasterObject::GetBitmapCompression, value);
    }
    STDMETHODIMP get_ReadOnlyBitmapList(VARIANT_BOOL* value) override {
        return Call(&RasterObject::GetReadOnlyBitmapList, value);
    }
    STDMETHODIMP put_ReadOnlyBitmapList(VARIANT_BOOL value) override {
        return Call(&RasterObject::PutReadOnlyBitmapList, value);
    }
    STDMETHODIMP GetInterfacePointer(IZIRCRaster** raster) override;
    STDMETHODIMP CreateUserBitmap(float width, float height, short bits, VARIANT data, long size,
                                  short* result) override {
        return Call(&RasterObject::CreateUserBitmap, width, height, bits, data, size, result);
    }
    STDMETHODIMP SetBitmapDataPointer(VARIANT data, long size, short* result) override {
        return Call(&RasterObject::SetBitmapDataPointer, data, size, result);
    }

  private:
    void Keep() override { AddRef(); }
    void Drop() override { Release(); }
    void ReportFailure(const char* text) override;
    void FireChange(int32_t change, int32_t reserved1, int32_t reserved2) override;
    void FireRegionChange() override;
    bool TranslateColour(uint32_t colour, uint32_t* plain) override;
    bool HasPictures() const override { return true; }
    ReturnCode MakePicture(HBITMAP bitmap, HPALETTE palette, intptr_t* picture) override;
    ReturnCode ReadPicture(intptr_t picture, BitmapHandle* made) override;

    template <typename Member, typename... Arguments>
    HRESULT Call(Member member, const Arguments&... arguments) {
        const Held held(*this);
        return (object_.*member)(Passed<Arguments>{arguments}...);
    }

    ModuleUse use_;
    std::atomic<ULONG> references_{1};
    RasterObject object_;
    ConnectionPoint events_;
};

} // namespace zkr::automation
