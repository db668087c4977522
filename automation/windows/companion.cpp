// What companions call, which have an object by its IUnknown.
#include "automation/windows/class_identifiers.h"
#include "automation/windows/com_raster.h"
#include "zkr13n/raster_component.h"

namespace zkr::automation {

namespace {

// Works on the object behind a pointer, if it is one of this module's and not somebody's proxy of it.
template <typename Body> HRESULT With(IUnknown* unknown, Body body) {
    if (unknown == nullptr) return E_POINTER;
    Pointer<IZIRCRaster> raster;
    if (FAILED(unknown->QueryInterface(OwnObject, raster.OutUntyped()))) return E_NOINTERFACE;
    return body(static_cast<ComRaster*>(raster.get()));
}

} // namespace

} // namespace zkr::automation

using namespace zkr::automation;

HRESULT Z_CALL Advise(IUnknown* object, RasterCallback callback, BitmapList list) {
    return With(object, [&](ComRaster* raster) {
        static_assert(sizeof(RasterCallback) == sizeof(ChangeCallback));
        return ResultOf(raster->Logic().Attach(reinterpret_cast<ChangeCallback>(callback), list));
    });
}

HRESULT Z_CALL UnAdvise(IUnknown* object, int32_t mode) {
    return With(object, [&](ComRaster* raster) { return ResultOf(raster->Logic().Detach(mode)); });
}

HRESULT Z_CALL AdviseChanged(IUnknown* object, int32_t notification, int32_t flags, int32_t reserved1,
                             int32_t reserved2) {
    return With(object, [&](ComRaster* raster) {
        return raster->NotifyChange(notification, flags, reserved1, reserved2);
    });
}

HRESULT Z_CALL SetChangeInfo(IUnknown* object, int32_t type, void* info) {
    return With(object, [&](ComRaster* raster) {
        short known = 0;
        return raster->SetChangeInfo(type, reinterpret_cast<LONG_PTR>(info), &known);
    });
}

HRESULT Z_CALL ListChanged(IUnknown* object, BitmapList list) {
    return With(object, [&](ComRaster* raster) { return ResultOf(raster->Logic().ReplaceListOnly(list)); });
}

HRESULT Z_CALL UpdateList(IUnknown* object) {
    return With(object, [&](ComRaster* raster) {
        raster->Logic().ReloadFromList();
        return S_OK;
    });
}
