#include "automation/windows/type_info.h"
#include "automation/windows/interfaces.h"

#include "automation/windows/module.h"

#include <atomic>

namespace zkr::automation {

namespace {

struct Kept {
    const GUID* Guid;
    std::atomic<ITypeInfo*> Info;
};

constinit Kept kept[] = {
    {&IID_IZIRCRaster, nullptr}, {&IID_IZIRCRasterFactory, nullptr}, {&CLSID_ZIRCRaster, nullptr}};

} // namespace

HRESULT LoadOwnLibrary(ITypeLib** library) {
    wchar_t path[MAX_PATH];
    if (!ModulePath(path)) return E_UNEXPECTED;
    return LoadTypeLibEx(path, REGKIND_NONE, library);
}

HRESULT OwnTypeInfo(REFGUID guid, ITypeInfo** info) {
    for (Kept& place : kept) {
        if (!IsEqualGUID(*place.Guid, guid)) continue;
        *info = place.Info.load();
        if (*info != nullptr) return S_OK;
        Pointer<ITypeLib> library;
        HRESULT result = LoadOwnLibrary(library.Out());
        if (SUCCEEDED(result)) result = library->GetTypeInfoOfGuid(guid, info);
        if (FAILED(result)) return result;
        ITypeInfo* none = nullptr;
        if (!place.Info.compare_exchange_strong(none, *info)) { // another thread was faster
            (*info)->Release();
            *info = none;
        }
        return S_OK;
    }
    return TYPE_E_ELEMENTNOTFOUND;
}

void DropTypeInfos() {
    for (Kept& place : kept)
        if (ITypeInfo* info = place.Info.exchange(nullptr); info != nullptr) info->Release();
}

} // namespace zkr::automation
