// The raster object as clients of the component model see it: class objects, dispatch, error information, events and
// companions. The library is the DLL itself, which nobody has registered.
#include "zkr13n/pixels.h"
#include "zkr13n/raster_component.h"
#include "zkr13n/storage.h"

#include <ole2.h>

#include <ocidl.h>
#include <olectl.h>

#include <raster_interfaces.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <thread>
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
    CLSID table; // which is in the registry and nowhere else
    ASSERT_EQ(CLSIDFromString(L"{96B4D1F3-A85E-4E02-B7C9-3FD8402EA615}", &table), S_OK);
    EXPECT_EQ(OF_LIBRARY(DllGetClassObject)(table, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
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
    V_VT(&whole) = VT_BYREF | VT_VARIANT, V_VARIANTREF(&whole) = &whole;
    EXPECT_EQ(static_cast<uint32_t>(raster->put_PixelData(0, 0, whole)), 0x800A4E2Du);
    V_VT(&data) = VT_BSTR, V_BSTR(&data) = nullptr;
    EXPECT_EQ(static_cast<uint32_t>(raster->put_PixelData(0, 0, data)), 0x800A4E2Du);
    EXPECT_EQ(raster->FreeList(&result), S_OK);
    SafeArrayDestroy(bytes);
}

// A picture of the system's, which gets the handles.
IPictureDisp* Picture(PICTDESC description) {
    void* picture = nullptr;
    description.cbSizeofstruct = sizeof description;
    EXPECT_EQ(OleCreatePictureIndirect(&description, IID_IDispatch, TRUE, &picture), S_OK);
    return static_cast<IPictureDisp*>(picture);
}

TEST_F(ComRaster, PicturesAreReadOrDrawn) {
    // An icon whose left half is black and whose right half lets the ground through.
    std::vector<uint8_t> mask, colours(128, 0);
    for (int byte = 0; byte < 128; ++byte)
        mask.push_back(byte % 4 < 2 ? 0 : 0xFF);
    PICTDESC description = {};
    description.picType = PICTYPE_ICON;
    description.icon.hicon = CreateIcon(nullptr, 32, 32, 1, 1, mask.data(), colours.data());
    IPictureDisp* icon = Picture(description);
    description.picType = PICTYPE_BITMAP;
    description.bmp.hbitmap = nullptr;
    IPictureDisp* hollow = Picture(description);
    short result = 0;
    float width = 0, height = 0;
    OLE_COLOR left = 1, right = 1;
    EXPECT_EQ(raster->SetPicture(icon, &result), S_OK);
    EXPECT_EQ(raster->get_BitmapWidth(&width), S_OK);
    EXPECT_EQ(raster->get_BitmapHeight(&height), S_OK);
    EXPECT_EQ(width, 32);
    EXPECT_EQ(height, 32);
    EXPECT_EQ(raster->get_Pixel(8, 16, &left), S_OK);
    EXPECT_EQ(raster->get_Pixel(24, 16, &right), S_OK);
    EXPECT_EQ(left, 0u);
    EXPECT_EQ(right, 0xFFFFFFu);
    EXPECT_EQ(static_cast<uint32_t>(raster->SetPicture(hollow, &result)), 0x800A4E22u);
    EXPECT_EQ(static_cast<uint32_t>(raster->SetPicture(nullptr, &result)), 0x800A4E2Du);
    icon->Release();
    hollow->Release();
}

TEST(ComThreads, HaveObjectsOfTheirOwn) {
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int number = 1; number <= 4; ++number)
        threads.emplace_back([&wrong, number] {
            CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            IClassFactory* factory = nullptr;
            OF_LIBRARY(DllGetClassObject)
            (CLSID_ZIRCRaster, IID_IClassFactory, reinterpret_cast<void**>(&factory));
            for (int round = 0; round < 50; ++round) {
                IZIRCRaster* raster = nullptr;
                short result = 0;
                OLE_COLOR colour = 0;
                const float width = float(number + round);
                factory->CreateInstance(nullptr, IID_IZIRCRaster, reinterpret_cast<void**>(&raster));
                const bool good = raster->CreateBitmap(width, 2, 24, &result) == S_OK &&
                                  raster->put_Pixel(width - 1, 1, OLE_COLOR(number)) == S_OK &&
                                  raster->get_Pixel(width - 1, 1, &colour) == S_OK &&
                                  colour == OLE_COLOR(number) && raster->put_ScaleMode(8) != S_OK;
                IErrorInfo* error = nullptr; // the thread's
                if (!good || GetErrorInfo(0, &error) != S_OK) ++wrong;
                if (error != nullptr) error->Release();
                raster->Release();
            }
            factory->Release();
            CoUninitialize();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(OF_LIBRARY(DllCanUnloadNow)(), S_OK);
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
    // Who was there when the telling began is told, though another one has sent it away.
    EXPECT_EQ(point->Advise(&first, &cookies[0]), S_OK);
    second.told.clear();
    second.meanwhile = [&] { EXPECT_EQ(point->Unadvise(cookies[0]), S_OK); };
    EXPECT_EQ(raster->put_BitmapXRes(7), S_OK);
    EXPECT_EQ(second.told, (std::vector<long>{1, 3, 0, 0}));
    EXPECT_EQ(first.told.size(), 8u);
    EXPECT_EQ(first.references, 1);
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

TEST_F(ComRaster, MembersOfTheFaceLookAtTheListToo) {
    Sink sink;
    IConnectionPoint* point = Point();
    DWORD cookie = 0;
    short result = 0;
    LONG_PTR list = 0;
    EXPECT_EQ(raster->CreateBitmap(4, 4, 8, &result), S_OK);
    EXPECT_EQ(raster->get_BitmapList(&list), S_OK);
    EXPECT_EQ(point->Advise(&sink, &cookie), S_OK);
    EXPECT_EQ(Z_DeleteBitmapListItems(reinterpret_cast<BitmapList>(list), 0, 1), Z_SUCCESS);
    IZIRCRaster* same = nullptr;
    EXPECT_EQ(raster->GetInterfacePointer(&same), S_OK);
    EXPECT_EQ(same, raster);
    EXPECT_EQ(sink.told, (std::vector<long>{1, 0xF, 0, 0}));
    same->Release();
    EXPECT_EQ(static_cast<uint32_t>(raster->GetInterfacePointer(nullptr)), 0x800A4E2Du);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    point->Release();
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

// Prints what a member costs in calls of the function behind it, the fastest of several runs; asserts nothing of it.
template <typename Body> double Nanoseconds(Body body) {
    double best = 1e300;
    for (int run = 0; run < 15; ++run) {
        constexpr int calls = 20000;
        const auto start = std::chrono::steady_clock::now();
        for (int call = 0; call < calls; ++call)
            body(call & 15);
        const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
        best = std::min(best, taken.count() / calls);
    }
    return best;
}

TEST_F(ComRaster, PixelsAreReachedOnThreeRoads) {
    short result = 0;
    ASSERT_EQ(raster->CreateBitmap(16, 16, 24, &result), S_OK);
    BitmapHandle bitmap;
    ASSERT_EQ(Z_CreateBitmap(&bitmap, MemoryConventional, 16, 16, 24, Z_ORDER_BGR, nullptr, VIEW_BOTTOM_LEFT,
                             nullptr, 0),
              Z_SUCCESS);
    const DISPID id = Id(L"Pixel");
    OLE_COLOR seen = 0;
    uint32_t flat = 0;
    DISPID named = DISPID_PROPERTYPUT;
    VARIANTARG arguments[3];
    VARIANT value;
    const auto prepare = [&](int place) {
        V_VT(&arguments[0]) = VT_I4, V_I4(&arguments[0]) = place;
        V_VT(&arguments[1]) = VT_R4, V_R4(&arguments[1]) = 3;
        V_VT(&arguments[2]) = VT_R4, V_R4(&arguments[2]) = float(place);
    };
    const double flatGet = Nanoseconds([&](int x) { flat += Z_GetPixelColor(&bitmap, 3, x); });
    const double tableGet = Nanoseconds([&](int x) { raster->get_Pixel(float(x), 3, &seen); });
    const double dispatchGet = Nanoseconds([&](int x) {
        prepare(x);
        DISPPARAMS parameters = {arguments + 1, nullptr, 2, 0};
        EXPECT_EQ(
            raster->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYGET, &parameters, &value, nullptr, nullptr),
            S_OK);
    });
    const double flatPut = Nanoseconds([&](int x) { Z_PutPixelColor(&bitmap, 3, x, uint32_t(x)); });
    const double tablePut = Nanoseconds([&](int x) { raster->put_Pixel(float(x), 3, OLE_COLOR(x)); });
    const double dispatchPut = Nanoseconds([&](int x) {
        prepare(x);
        DISPPARAMS parameters = {arguments, &named, 3, 1};
        EXPECT_EQ(
            raster->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr, nullptr),
            S_OK);
    });
    std::printf("Pixel get: %.0f ns flat, x %.1f through the table, x %.1f through dispatch\n", flatGet,
                tableGet / flatGet, dispatchGet / flatGet);
    std::printf("Pixel put: %.0f ns flat, x %.1f through the table, x %.1f through dispatch\n", flatPut,
                tablePut / flatPut, dispatchPut / flatPut);
    EXPECT_EQ(raster->get_Pixel(9, 3, &seen), S_OK);
    EXPECT_EQ(seen, 9u);
    Z_FreeBitmap(&bitmap);
}

} // namespace
