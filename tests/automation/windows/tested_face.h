// The face of raster objects in the component model, as the tests of all faces work on it.
#pragma once

#include "automation/array.h"
#include "automation/windows/class_identifiers.h"
#include "automation/windows/interfaces.h"
#include "zkr13n/raster_component.h"

#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace zkr::test {

using automation::Array;

inline void Demand(bool holds) {
    if (!holds) std::abort();
}

class TestedFace : private IDispatch {
  public:
    TestedFace() {
        // Of the DLL where there is one; other libraries of the system have a function of this name.
        const HMODULE library = GetModuleHandleW(L"ZKR13N.dll");
        auto* getClassObject = &DllGetClassObject;
        if (library != nullptr)
            getClassObject = reinterpret_cast<decltype(getClassObject)>(
                reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
        IClassFactory* factory = nullptr;
        Demand(getClassObject(CLSID_ZIRCRaster, IID_IClassFactory, reinterpret_cast<void**>(&factory)) ==
               S_OK);
        Demand(factory->CreateInstance(nullptr, IID_IZIRCRaster, reinterpret_cast<void**>(&raster_)) == S_OK);
        factory->Release();
        IConnectionPointContainer* container = nullptr;
        Demand(raster_->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container)) ==
               S_OK);
        Demand(container->FindConnectionPoint(DIID__ZIRCRasterEvents, &point_) == S_OK);
        container->Release();
        Demand(point_->Advise(this, &cookie_) == S_OK);
    }
    virtual ~TestedFace() {
        Demand(point_->Unadvise(cookie_) == S_OK);
        point_->Release();
        Demand(raster_->Release() == 0u);
    }
    TestedFace(const TestedFace&) = delete;
    TestedFace& operator=(const TestedFace&) = delete;

    // Of the failure since the last call.
    std::string LastText() {
        IErrorInfo* error = nullptr;
        std::string text;
        if (GetErrorInfo(0, &error) != S_OK) return text;
        BSTR wide = nullptr;
        Demand(error->GetDescription(&wide) == S_OK);
        for (UINT index = 0; index < SysStringLen(wide); ++index)
            text += static_cast<char>(wide[index]);
        SysFreeString(wide);
        error->Release();
        return text;
    }
    std::vector<int> Told; // changes, and RegionChange
    std::function<void(int)> OnChange;

  protected:
    using Interface = IZIRCRaster;

    template <typename... Wanted, typename... Given>
    int32_t Call(HRESULT (STDMETHODCALLTYPE IZIRCRaster::*member)(Wanted...), const Given&... given) {
        SetErrorInfo(0, nullptr);
        return (raster_->*member)(Passed<Given>{*this, given}...);
    }

  private:
    // Numbers and their addresses become what the interface calls them.
    template <typename T> struct Passed {
        TestedFace& face;
        T value;
        template <typename Wanted> operator Wanted() const {
            if constexpr (std::is_pointer_v<T> || std::is_pointer_v<Wanted>)
                return reinterpret_cast<Wanted>(value);
            else
                return static_cast<Wanted>(value);
        }
    };

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch);
        *object = known ? static_cast<IDispatch*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        const int change = member == 1 ? V_I4(&parameters->rgvarg[2]) : -1; // the first argument comes last
        Told.push_back(change);
        if (member == 1 && OnChange) OnChange(change);
        return S_OK;
    }

    IZIRCRaster* raster_ = nullptr;
    IConnectionPoint* point_ = nullptr;
    DWORD cookie_ = 0;
    std::vector<unsigned char> given_; // what the object gave out last
};

template <> struct TestedFace::Passed<const char*> {
    Passed(TestedFace&, const char* text)
        : wide_(SysAllocString(std::wstring(text, text + std::strlen(text)).c_str())) {}
    ~Passed() { SysFreeString(wide_); }
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;
    operator BSTR() const { return wide_; }

  private:
    BSTR wide_;
};

// An array by reference lies where the test has it.
template <> struct TestedFace::Passed<automation::Array> {
    Passed(TestedFace&, const Array& array) {
        VariantInit(&variant_);
        if (array.Elements == Array::Kind::None) return;
        const VARTYPE type = array.Elements == Array::Kind::Floats        ? VT_R4
                             : array.Elements == Array::Kind::SignedBytes ? VT_I1
                                                                          : VT_UI1;
        Demand(SafeArrayAllocDescriptorEx(type, 1, &array_) == S_OK);
        array_->cbElements = type == VT_R4 ? 4 : 1;
        array_->rgsabound[0] = {static_cast<ULONG>(array.Count), 0};
        array_->pvData = array.Data;
        array_->fFeatures |= FADF_STATIC | FADF_FIXEDSIZE;
        V_VT(&variant_) = static_cast<VARTYPE>(VT_ARRAY | type | (array.ByReference ? VT_BYREF : 0));
        if (array.ByReference) {
            V_ARRAYREF(&variant_) = &array_;
        } else {
            V_ARRAY(&variant_) = array_;
        }
    }
    ~Passed() {
        if (array_ != nullptr) SafeArrayDestroyDescriptor(array_);
    }
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;
    operator const VARIANT&() const { return variant_; }

  private:
    VARIANT variant_;
    SAFEARRAY* array_ = nullptr;
};

template <> struct TestedFace::Passed<automation::Array*> {
    Passed(TestedFace& face, Array* array) : face_(face), array_(array) { VariantInit(&variant_); }
    ~Passed() {
        if (array_ == nullptr) return;
        *array_ = {};
        if ((V_VT(&variant_) & VT_ARRAY) == 0) return;
        const bool floats = V_VT(&variant_) == (VT_ARRAY | VT_R4);
        Demand(floats || V_VT(&variant_) == (VT_ARRAY | VT_UI1));
        const ULONG count = V_ARRAY(&variant_)->rgsabound[0].cElements;
        face_.given_.resize(count * (floats ? sizeof(float) : 1));
        if (count != 0) std::memcpy(face_.given_.data(), V_ARRAY(&variant_)->pvData, face_.given_.size());
        *array_ = {floats ? Array::Kind::Floats : Array::Kind::Bytes, static_cast<int32_t>(count),
                   face_.given_.data(), false};
        VariantClear(&variant_);
    }
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;
    operator VARIANT*() { return array_ != nullptr ? &variant_ : nullptr; }

  private:
    TestedFace& face_;
    Array* array_;
    VARIANT variant_;
};

} // namespace zkr::test
