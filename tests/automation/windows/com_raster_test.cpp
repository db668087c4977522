// The raster object as clients of the component model see it: class objects, dispatch, error information, events,
// registration and companions. The library is the DLL itself, which nobody has registered.
#include "zkr13n/raster_component.h"

#include <ole2.h>

#include <ocidl.h>
#include <olectl.h>

#include <raster_interfaces.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

// The system's own libraries have functions of these names too.
template <typename Function> Function* OfLibrary(Function*, const char* name) {
    const HMODULE library = GetModuleHandleW(L"ZKR13N.dll");
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}
#define OF_LIBRARY(function) OfLibrary(static_cast<decltype(function)*>(nullptr), #function)

struct Model {
    Model() { CoInitialize(nullptr); }
    ~Model() { CoUninitialize(); }
};

class ComRaster : public testing::Test {
  protected:
    void SetUp() override {
        IClassFactory* factory = nullptr;
        ASSERT_EQ(OF_LIBRARY(DllGetClassObject)(CLSID_ZIRCRaster, IID_IClassFactory,
                                                reinterpret_cast<void**>(&factory)),
                  S_OK);
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IZIRCRaster, reinterpret_cast<void**>(&raster)), S_OK);
        factory->Release();
        EXPECT_EQ(OF_LIBRARY(DllCanUnloadNow)(), S_FALSE);
    }
    void TearDown() override {
        EXPECT_TRUE(raster == nullptr || raster->Release() == 0);
        EXPECT_EQ(OF_LIBRARY(DllCanUnloadNow)(), S_OK);
    }
    DISPID Id(const wchar_t* name) {
        std::wstring text(name);
        wchar_t* names = text.data();
        DISPID id = -99;
        EXPECT_EQ(raster->GetIDsOfNames(IID_NULL, &names, 1, 0, &id), S_OK);
        return id;
    }
    IConnectionPoint* Point() {
        IConnectionPointContainer* container = nullptr;
        IConnectionPoint* point = nullptr;
        EXPECT_EQ(raster->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container)),
                  S_OK);
        EXPECT_EQ(container->FindConnectionPoint(DIID__ZIRCRasterEvents, &point), S_OK);
        container->Release();
        return point;
    }

    Model model;
    IZIRCRaster* raster = nullptr;
};

TEST_F(ComRaster, ClassesAreThoseOfTheLibrary) {
    void* object = &object;
    EXPECT_EQ(OF_LIBRARY(DllGetClassObject)(IID_IDispatch, IID_IClassFactory, &object),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    ITypeInfo* info = nullptr;
    ASSERT_EQ(raster->GetTypeInfo(0, 0, &info), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    const int functions = attributes->cFuncs;
    int members = 0, last = -1;
    for (int index = 0; index < functions; ++index) {
        FUNCDESC* function = nullptr;
        ASSERT_EQ(info->GetFuncDesc(static_cast<UINT>(index), &function), S_OK);
        if (function->memid < 0x10000) {
            EXPECT_TRUE(function->memid == last || function->memid == last + 1) << function->memid;
            last = function->memid;
            ++members;
        }
        info->ReleaseFuncDesc(function);
    }
    info->ReleaseTypeAttr(attributes);
    info->Release();
    EXPECT_EQ(members, 148);
    EXPECT_EQ(last, 108);
    EXPECT_EQ(Id(L"Bitmap"), 0);
    EXPECT_EQ(Id(L"Pixel"), 32);
    EXPECT_EQ(Id(L"SetBitmapDataPointer"), 108);
}

TEST_F(ComRaster, DispatchReachesMembersAndTellsFailures) {
    VARIANTARG arguments[3];
    V_VT(&arguments[0]) = VT_I4, V_I4(&arguments[0]) = 24; // the last argument comes first
    V_VT(&arguments[1]) = VT_I4, V_I4(&arguments[1]) = 6;
    V_VT(&arguments[2]) = VT_R8, V_R8(&arguments[2]) = 8;
    DISPPARAMS parameters = {arguments, nullptr, 3, 0};
    VARIANT result;
    VariantInit(&result);
    EXPECT_EQ(raster->Invoke(Id(L"CreateBitmap"), IID_NULL, 0, DISPATCH_METHOD, &parameters, &result, nullptr,
                             nullptr),
              S_OK);
    EXPECT_EQ(V_VT(&result), VT_I2);
    EXPECT_EQ(V_I2(&result), 0);
    parameters.cArgs = 0;
    EXPECT_EQ(raster->Invoke(Id(L"BitmapWidth"), IID_NULL, 0, DISPATCH_PROPERTYGET, &parameters, &result,
                             nullptr, nullptr),
              S_OK);
    EXPECT_EQ(V_VT(&result), VT_R4);
    EXPECT_EQ(V_R4(&result), 8);
    DISPID put = DISPID_PROPERTYPUT;
    V_I4(&arguments[0]) = 8;
    parameters = {arguments, &put, 1, 1};
    EXCEPINFO exception = {};
    EXPECT_EQ(raster->Invoke(Id(L"ScaleMode"), IID_NULL, 0, DISPATCH_PROPERTYPUT, &parameters, nullptr,
                             &exception, nullptr),
              DISP_E_EXCEPTION);
    EXPECT_EQ(static_cast<uint32_t>(exception.scode), 0x800A4E2Du);
    EXPECT_STREQ(exception.bstrDescription, L"ZIRC Error: Invalid parmameter passed");
    EXPECT_STREQ(exception.bstrSource, L"ZIRCRaster.ZIRCRaster");
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    ISupportErrorInfo* support = nullptr;
    ASSERT_EQ(raster->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support)), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IZIRCRaster), S_OK);
    EXPECT_EQ(support->InterfaceSupportsErrorInfo(IID_IDispatch), S_FALSE);
    support->Release();
}

TEST_F(ComRaster, ArraysCrossAsVariants) {
    SAFEARRAY* bytes = SafeArrayCreateVector(VT_UI1, 0, 12);
    VARIANT data, back;
    V_VT(&data) = VT_ARRAY | VT_UI1 | VT_BYREF, V_ARRAYREF(&data) = &bytes;
    short result = 9;
    ASSERT_EQ(raster->CreateUserBitmap(3, 1, 24, data, 0, &result), S_OK);
    EXPECT_EQ(raster->put_Pixel(1, 0, 0x030201), S_OK);
    EXPECT_EQ(static_cast<uint8_t*>(bytes->pvData)[3], 3); // blue first, where the array lies
    EXPECT_EQ(raster->get_PixelData(1, 0, &back), S_OK);
    EXPECT_EQ(V_VT(&back), VT_ARRAY | VT_UI1);
    EXPECT_EQ(V_ARRAY(&back)->rgsabound[0].cElements, 3u);
    VARIANT whole;
    V_VT(&whole) = VT_BYREF | VT_VARIANT, V_VARIANTREF(&whole) = &back;
    EXPECT_EQ(raster->put_PixelData(0, 0, whole), S_OK);
    EXPECT_EQ(static_cast<uint8_t*>(bytes->pvData)[0], 3);
    VariantClear(&back);
    EXPECT_EQ(raster->GetBitmapClipSegments(0, &back), S_OK);
    EXPECT_EQ(V_VT(&back), VT_ARRAY | VT_R4);
    VariantClear(&back);
    V_VT(&data) = VT_BSTR, V_BSTR(&data) = nullptr;
    EXPECT_EQ(static_cast<uint32_t>(raster->put_PixelData(0, 0, data)), 0x800A4E2Du);
    EXPECT_EQ(raster->FreeList(&result), S_OK);
    SafeArrayDestroy(bytes);
}

struct Sink final : IDispatch {
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch);
        *object = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                                     EXCEPINFO*, UINT*) override {
        told.push_back(member);
        for (UINT index = parameters->cArgs; index-- > 0;)
            told.push_back(V_I4(&parameters->rgvarg[index]));
        if (meanwhile) std::exchange(meanwhile, nullptr)();
        return E_FAIL; // which plays no part
    }

    int references = 1;
    std::vector<long> told;
    std::function<void()> meanwhile;
};

TEST_F(ComRaster, SinksComeAndGoWhileTheyAreTold) {
    Sink first, second;
    IConnectionPoint* point = Point();
    DWORD cookies[2] = {};
    EXPECT_EQ(point->Advise(&first, &cookies[0]), S_OK);
    EXPECT_EQ(point->Advise(&second, &cookies[1]), S_OK);
    short result = 0;
    first.meanwhile = [&] { // leaves, and calls back
        EXPECT_EQ(point->Unadvise(cookies[0]), S_OK);
        EXPECT_EQ(raster->SetRgnRect(0, 0, 1, 1, 1, &result), S_OK);
    };
    EXPECT_EQ(raster->CreateBitmap(4, 4, 8, &result), S_OK);
    EXPECT_EQ(first.told, (std::vector<long>{1, 0x10F, 0, 0}));
    EXPECT_EQ(second.told, (std::vector<long>{2, 1, 0x10F, 0, 0}));
    EXPECT_EQ(first.references, 1);
    EXPECT_EQ(point->Unadvise(cookies[0]), CONNECT_E_NOCONNECTION);
    // The last reference goes inside a call.
    point->Release();
    second.meanwhile = [&] { std::exchange(raster, nullptr)->Release(); };
    EXPECT_EQ(raster->NotifyChange(3, 7, 8, 9), S_OK);
    EXPECT_EQ(second.references, 1);
    EXPECT_EQ(OF_LIBRARY(DllCanUnloadNow)(), S_OK);
}

std::vector<int32_t> changes;
void __stdcall Note(int32_t change, LONG_PTR, LONG_PTR) {
    changes.push_back(change);
}

TEST_F(ComRaster, CompanionsAttach) {
    Sink foreign;
    BitmapList list = nullptr;
    ASSERT_EQ(Z_CreateBitmapList(&list), Z_SUCCESS);
    EXPECT_EQ(Advise(nullptr, Note, list), E_POINTER);
    EXPECT_EQ(Advise(&foreign, Note, list), E_NOINTERFACE);
    EXPECT_EQ(UnAdvise(raster, 2), S_OK);
    EXPECT_EQ(static_cast<uint32_t>(UnAdvise(raster, 0)), 0x800A4E2Du);
    EXPECT_EQ(Advise(raster, Note, list), S_OK);
    EXPECT_EQ(static_cast<uint32_t>(Advise(raster, Note, list)), 0x800A4E2Du);
    EXPECT_EQ(AdviseChanged(raster, 3, 5, 0, 0), S_OK);
    EXPECT_EQ(changes, (std::vector<int32_t>{0x10F, 5}));
    EXPECT_EQ(UpdateList(raster), S_OK);
    EXPECT_EQ(ListChanged(raster, list), S_OK);
    EXPECT_EQ(UnAdvise(raster, 1), S_OK);
    EXPECT_EQ(Z_DestroyBitmapList(list), Z_SUCCESS);
}

// All values of a key and those below it, by their paths.
void Read(HKEY key, const std::wstring& path, std::map<std::wstring, std::wstring>* out) {
    wchar_t name[256], text[512];
    for (DWORD index = 0;; ++index) {
        DWORD length = 256, bytes = sizeof text - 2;
        if (RegEnumValueW(key, index, name, &length, nullptr, nullptr, reinterpret_cast<BYTE*>(text),
                          &bytes) != 0)
            break;
        text[bytes / 2] = 0;
        (*out)[path + L":" + name] = text;
    }
    for (DWORD index = 0;; ++index) {
        DWORD length = 256;
        if (RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != 0) break;
        HKEY child = nullptr;
        RegOpenKeyExW(key, name, 0, KEY_READ, &child);
        (*out)[path + L"\\" + name] = L"";
        Read(child, path + L"\\" + name, out);
        RegCloseKey(child);
    }
}

TEST(ComRegistration, EntersAndLeaves) {
    const Model model;
    HKEY root = nullptr;
    const wchar_t* path = L"Software\\ZkrRegistrationTest";
    RegDeleteTreeW(HKEY_CURRENT_USER, path);
    ASSERT_EQ(
        RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &root, nullptr), 0);
    // The managers of categories and type libraries are the system's, found through the real key.
    std::map<std::wstring, std::wstring> before, there, after;
    Read(root, L"", &before);
    ASSERT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, root), 0);
    const HRESULT entered = OF_LIBRARY(DllRegisterServer)();
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    Read(root, L"", &there);
    EXPECT_EQ(there[L"\\ZIRCRaster.ZIRCRaster:"], L"ZIRC Raster Object");
    EXPECT_EQ(there[L"\\ZIRCRaster.ZIRCRaster\\CurVer:"], L"ZIRCRaster.ZIRCRaster.13");
    EXPECT_EQ(there[L"\\ZIRCRasterTable.ZIRCRasterTable.13:"], L"ZIRC Raster Table");
    ASSERT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, root), 0);
    const HRESULT left = OF_LIBRARY(DllUnregisterServer)(), again = OF_LIBRARY(DllUnregisterServer)();
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    Read(root, L"", &after);
    EXPECT_EQ(left, S_OK);
    EXPECT_EQ(again, S_OK);
    for (const auto& [name, value] : after)
        EXPECT_EQ(name.find(L"ZIRC"), std::wstring::npos);
    EXPECT_TRUE(SUCCEEDED(entered) || there.size() > 20) << std::hex << entered;
    RegCloseKey(root);
    RegDeleteTreeW(HKEY_CURRENT_USER, path);
}

} // namespace
