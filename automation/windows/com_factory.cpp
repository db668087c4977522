#include "automation/windows/com_factory.h"

#include "automation/windows/type_info.h"

namespace zkr::automation {

namespace {

// An object of a class; with a licence only where the class checks one.
HRESULT Create(BSTR className, BSTR licence, REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    CLSID id;
    HRESULT result = CLSIDFromProgID(className, &id);
    if (FAILED(result)) return result;
    char narrow[8] = {}; // the first character, which may need several
    const bool licensed =
        licence != nullptr &&
        WideCharToMultiByte(CP_ACP, 0, licence, 1, narrow, sizeof narrow, nullptr, nullptr) != 0 &&
        narrow[0] != 0;
    if (licensed) {
        Pointer<IClassFactory2> factory;
        result = CoGetClassObject(id,
                                  CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER |
                                      CLSCTX_REMOTE_SERVER, // 23
                                  nullptr, IID_IClassFactory2, factory.OutUntyped());
        if (FAILED(result)) return result;
        return factory->CreateInstanceLic(nullptr, nullptr, iid, licence, object);
    }
    Pointer<IClassFactory> factory;
    result = CoGetClassObject(
        id, CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER,
        nullptr, IID_IClassFactory, factory.OutUntyped());
    if (FAILED(result)) return result;
    return factory->CreateInstance(nullptr, iid, object);
}

} // namespace

HRESULT ComFactory::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IDispatch) &&
        !IsEqualIID(iid, IID_IZIRCRasterFactory))
        return E_NOINTERFACE;
    *object = static_cast<IZIRCRasterFactory*>(this);
    AddRef();
    return S_OK;
}

ULONG ComFactory::AddRef() {
    return references_.fetch_add(1) + 1;
}

ULONG ComFactory::Release() {
    const ULONG left = references_.fetch_sub(1) - 1;
    if (left == 0) EndObject(this);
    return left;
}

HRESULT ComFactory::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
}

HRESULT ComFactory::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    const HRESULT result = OwnTypeInfo(IID_IZIRCRasterFactory, info);
    if (SUCCEEDED(result)) (*info)->AddRef();
    return result;
}

HRESULT ComFactory::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    ITypeInfo* info = nullptr;
    const HRESULT result = OwnTypeInfo(IID_IZIRCRasterFactory, &info);
    return FAILED(result) ? result : info->GetIDsOfNames(names, count, ids);
}

HRESULT ComFactory::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                           EXCEPINFO* exception, UINT* argument) {
    ITypeInfo* info = nullptr;
    const HRESULT found = OwnTypeInfo(IID_IZIRCRasterFactory, &info);
    if (FAILED(found)) return found;
    const Held held(*this);
    return info->Invoke(static_cast<IZIRCRasterFactory*>(this), member, flags, parameters, result, exception,
                        argument);
}

HRESULT ComFactory::CreateObject(BSTR className, BSTR licence, IUnknown** object) {
    return Create(className, licence, IID_IUnknown, reinterpret_cast<void**>(object));
}

HRESULT ComFactory::CreateObject2(BSTR className, BSTR licence, IDispatch** object) {
    return Create(className, licence, IID_IDispatch, reinterpret_cast<void**>(object));
}

} // namespace zkr::automation
