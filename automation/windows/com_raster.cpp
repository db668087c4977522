#include "automation/windows/com_raster.h"

#include "automation/windows/class_identifiers.h"
#include "automation/windows/type_info.h"

#include <olectl.h>

#include <cstring>
#include <iterator>

namespace zkr::automation {

namespace {

constexpr wchar_t ProgramIdentifier[] = L"ZIRCRaster.ZIRCRaster";

} // namespace

HRESULT ComRaster::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, IID_IZIRCRaster) ||
        IsEqualIID(iid, OwnObject))
        *object = static_cast<IZIRCRaster*>(this);
    else if (IsEqualIID(iid, IID_ISupportErrorInfo))
        *object = static_cast<ISupportErrorInfo*>(this);
    else if (IsEqualIID(iid, IID_IConnectionPointContainer))
        *object = static_cast<IConnectionPointContainer*>(this);
    else if (IsEqualIID(iid, IID_IProvideClassInfo) || IsEqualIID(iid, IID_IProvideClassInfo2))
        *object = static_cast<IProvideClassInfo2*>(this);
    else
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG ComRaster::AddRef() {
    return references_.fetch_add(1, std::memory_order_relaxed) + 1;
}

ULONG ComRaster::Release() {
    const ULONG left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) EndObject(this);
    return left;
}

HRESULT ComRaster::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
}

HRESULT ComRaster::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    const HRESULT result = OwnTypeInfo(IID_IZIRCRaster, info);
    if (SUCCEEDED(result)) (*info)->AddRef();
    return result;
}

HRESULT ComRaster::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    ITypeInfo* info = nullptr;
    const HRESULT result = OwnTypeInfo(IID_IZIRCRaster, &info);
    return FAILED(result) ? result : info->GetIDsOfNames(names, count, ids);
}

HRESULT ComRaster::Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                          EXCEPINFO* exception, UINT* argument) {
    ITypeInfo* info = nullptr;
    const HRESULT found = OwnTypeInfo(IID_IZIRCRaster, &info);
    if (FAILED(found)) return found;
    const KeptFace kept(AtRisk());
    return info->Invoke(static_cast<IZIRCRaster*>(this), member, flags, parameters, result, exception,
                        argument);
}

HRESULT ComRaster::InterfaceSupportsErrorInfo(REFIID iid) {
    return IsEqualIID(iid, IID_IZIRCRaster) ? S_OK : S_FALSE;
}

HRESULT ComRaster::EnumConnectionPoints(IEnumConnectionPoints** points) {
    return MakePointEnumerator(&events_, points);
}

HRESULT ComRaster::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
    if (point == nullptr) return E_POINTER;
    *point = nullptr;
    if (!IsEqualIID(iid, DIID__ZIRCRasterEvents)) return CONNECT_E_NOCONNECTION;
    *point = &events_;
    AddRef();
    return S_OK;
}

HRESULT ComRaster::GetClassInfo(ITypeInfo** info) {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    const HRESULT result = OwnTypeInfo(CLSID_ZIRCRaster, info);
    if (SUCCEEDED(result)) (*info)->AddRef();
    return result;
}

HRESULT ComRaster::GetGUID(DWORD kind, GUID* guid) {
    if (guid == nullptr) return E_POINTER;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) {
        *guid = GUID_NULL;
        return E_INVALIDARG;
    }
    *guid = DIID__ZIRCRasterEvents;
    return S_OK;
}

HRESULT ComRaster::GetInterfacePointer(IZIRCRaster** raster) {
    const KeptFace kept(AtRisk());
    if (raster != nullptr) {
        *raster = this;
        AddRef();
    }
    return object_.OwnMember(raster != nullptr ? Z_SUCCESS : Z_ERROR_ARGUMENT);
}

void ComRaster::ReportFailure(const char* text) {
    Pointer<ICreateErrorInfo> made;
    Pointer<IErrorInfo> error;
    if (FAILED(CreateErrorInfo(made.Out()))) return;
    wchar_t wide[160];
    size_t length = 0;
    for (; text[length] != 0 && length + 1 < std::size(wide); ++length)
        wide[length] = static_cast<unsigned char>(text[length]); // messages are plain ASCII
    wide[length] = 0;
    wchar_t source[std::size(ProgramIdentifier)];
    std::memcpy(source, ProgramIdentifier, sizeof source);
    made->SetGUID(IID_IZIRCRaster);
    made->SetSource(source);
    made->SetDescription(wide);
    if (SUCCEEDED(made->QueryInterface(IID_IErrorInfo, error.OutUntyped()))) SetErrorInfo(0, error.get());
}

void ComRaster::FireChange(int32_t change, int32_t reserved1, int32_t reserved2) {
    const int32_t numbers[] = {change, reserved1, reserved2};
    if (events_.IsWatched()) events_.Fire(1, numbers, 3);
}

void ComRaster::FireRegionChange() {
    if (events_.IsWatched()) events_.Fire(2, nullptr, 0);
}

bool ComRaster::TranslateColour(uint32_t colour, uint32_t* plain) {
    COLORREF translated = colour;
    if (colour <= 0xFFFFFF) return *plain = colour, true; // as the system has it
    if (FAILED(OleTranslateColor(colour, nullptr, &translated))) return false;
    *plain = translated;
    return true;
}

} // namespace zkr::automation
