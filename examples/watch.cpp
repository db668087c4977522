/*
 * Watches a raster object: two sinks are told of every change while the object is worked on by the names of its
 * members. One of them leaves after its first event and looks at the bitmap meanwhile; the other one lets go of the
 * object when a region is drawn, which the object outlives until that call is done.
 *
 *     i686-w64-mingw32-g++ watch.cpp -o watch.exe -lole32 -loleaut32 -luuid
 *
 * The library has been entered into the registry by regsvr32 ZKR13N.dll.
 */
#include <ocidl.h>
#include <ole2.h>

#include <cstdio>
#include <initializer_list>

namespace {

// Calls a member by its name. kind is DISPATCH_METHOD, DISPATCH_PROPERTYGET or DISPATCH_PROPERTYPUT.
HRESULT Call(IDispatch* object, const wchar_t* name, WORD kind, std::initializer_list<long> numbers,
             VARIANT* result = nullptr) {
    DISPID member, put = DISPID_PROPERTYPUT;
    auto* text = const_cast<wchar_t*>(name);
    HRESULT found = object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &member);
    if (FAILED(found)) return found;
    VARIANTARG arguments[8];
    UINT count = 0;
    for (auto number = numbers.end(); number != numbers.begin(); ++count) { // the last one comes first
        V_VT(&arguments[count]) = VT_I4;
        V_I4(&arguments[count]) = *--number;
    }
    DISPPARAMS parameters = {arguments, nullptr, count, 0};
    if (kind == DISPATCH_PROPERTYPUT) parameters.rgdispidNamedArgs = &put, parameters.cNamedArgs = 1;
    return object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, result, nullptr, nullptr);
}

class Watcher final : public IDispatch {
  public:
    explicit Watcher(const char* name) : name_(name) {}

    // Begins to watch the events that the object's class tells of.
    HRESULT Watch(IUnknown* object) {
        IProvideClassInfo2* info = nullptr;
        IConnectionPointContainer* container = nullptr;
        IID events = GUID_NULL;
        HRESULT result = object->QueryInterface(IID_IProvideClassInfo2, reinterpret_cast<void**>(&info));
        if (SUCCEEDED(result)) {
            result = info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events);
            info->Release();
        }
        if (SUCCEEDED(result))
            result =
                object->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container));
        if (FAILED(result)) return result;
        result = container->FindConnectionPoint(events, &point_);
        container->Release();
        return SUCCEEDED(result) ? point_->Advise(this, &cookie_) : result;
    }
    void Leave() {
        if (point_ == nullptr) return;
        point_->Unadvise(cookie_);
        point_->Release();
        point_ = nullptr;
    }
    // What the next Change, and the next RgnChange, brings about.
    void LookAndLeave(IDispatch* object) { looked_ = object; }
    void LetGo(IDispatch** object) { released_ = object; }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch);
        *object = known ? static_cast<IDispatch*>(this) : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override { return --references_; } // they live as long as the program
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        if (member == 1 && parameters->cArgs == 3) {
            std::printf("%s: changed 0x%lX\n", name_,
                        static_cast<unsigned long>(V_I4(&parameters->rgvarg[2])));
            if (looked_ != nullptr) Look();
        } else if (member == 2) {
            std::printf("%s: region changed\n", name_);
            if (released_ != nullptr) {
                Leave();
                (*released_)->Release();
                *released_ = nullptr;
            }
        }
        return S_OK;
    }

    ULONG References() const { return references_; }

  private:
    void Look() {
        VARIANT width;
        VariantInit(&width);
        IDispatch* object = looked_;
        looked_ = nullptr;
        if (SUCCEEDED(Call(object, L"BitmapWidth", DISPATCH_PROPERTYGET, {}, &width)))
            std::printf("%s: %g pixels wide, and leaves\n", name_, static_cast<double>(V_R4(&width)));
        Leave();
    }

    const char* name_;
    ULONG references_ = 1;
    IConnectionPoint* point_ = nullptr;
    DWORD cookie_ = 0;
    IDispatch* looked_ = nullptr;
    IDispatch** released_ = nullptr;
};

int Fail(const char* what, HRESULT result) {
    std::printf("%s: 0x%08lX\n", what, static_cast<unsigned long>(result));
    return 1;
}

} // namespace

int main() {
    CoInitialize(nullptr);
    CLSID id;
    IDispatch* raster = nullptr;
    HRESULT result = CLSIDFromProgID(L"ZIRCRaster.ZIRCRaster", &id);
    if (SUCCEEDED(result))
        result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                  reinterpret_cast<void**>(&raster));
    if (FAILED(result)) return Fail("no raster object", result);

    Watcher first("first"), second("second");
    first.LookAndLeave(raster);
    second.LetGo(&raster);
    result = first.Watch(raster);
    if (SUCCEEDED(result)) result = second.Watch(raster);
    if (SUCCEEDED(result)) result = Call(raster, L"CreateBitmap", DISPATCH_METHOD, {40, 30, 24});
    if (SUCCEEDED(result)) result = Call(raster, L"Pixel", DISPATCH_PROPERTYPUT, {3, 4, 0xFF});
    // Nothing is told between these two.
    if (SUCCEEDED(result)) result = Call(raster, L"EnableChangeEvents", DISPATCH_METHOD, {1});
    if (SUCCEEDED(result)) result = Call(raster, L"Pixel", DISPATCH_PROPERTYPUT, {3, 5, 0xFF});
    if (SUCCEEDED(result)) result = Call(raster, L"EnableChangeEvents", DISPATCH_METHOD, {0});
    if (SUCCEEDED(result)) result = Call(raster, L"SetRgnRect", DISPATCH_METHOD, {0, 0, 10, 10, 1});
    if (FAILED(result)) return Fail("a call", result);
    std::printf("the object is %s, sinks are held by %lu others\n", raster == nullptr ? "gone" : "there",
                first.References() + second.References() - 2);
    CoUninitialize();
    return 0;
}
