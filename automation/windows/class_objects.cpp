// The class objects of the module.
#include "automation/windows/com_factory.h"
#include "automation/windows/com_raster.h"
#include "automation/windows/type_info.h"
#include "zkr13n/raster_component.h"

namespace zkr::automation {

namespace {

HRESULT MakeRaster(REFIID iid, void** object) {
    auto* raster = MakeObject<ComRaster>();
    if (raster == nullptr) return E_OUTOFMEMORY;
    const ReturnCode status = raster->Make();
    const HRESULT result = status == Z_SUCCESS ? raster->QueryInterface(iid, object) : E_OUTOFMEMORY;
    static_cast<IZIRCRaster*>(raster)->Release();
    return result;
}

HRESULT MakeFactory(REFIID iid, void** object) {
    auto* factory = MakeObject<ComFactory>();
    if (factory == nullptr) return E_OUTOFMEMORY;
    const HRESULT result = factory->QueryInterface(iid, object);
    factory->Release();
    return result;
}

// One of these stands for each class, as long as the module is there.
class ClassObject final : public IClassFactory {
  public:
    using Maker = HRESULT (*)(REFIID iid, void** object);
    constexpr explicit ClassObject(Maker make) : make_(make) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, IID_IClassFactory)) return E_NOINTERFACE;
        *object = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override {
        KeepModule();
        return 2;
    }
    STDMETHODIMP_(ULONG) Release() override {
        DropModule();
        return 1;
    }
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : make_(iid, object);
    }
    STDMETHODIMP LockServer(BOOL lock) override {
        if (lock != FALSE) {
            KeepModule();
        } else {
            DropModule();
        }
        return S_OK;
    }

  private:
    Maker make_;
};

constinit ClassObject rasterClass(MakeRaster);
constinit ClassObject factoryClass(MakeFactory);

} // namespace

} // namespace zkr::automation

HRESULT Z_CALL DllGetClassObject(REFCLSID classId, REFIID iid, LPVOID* object) {
    using namespace zkr::automation;
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (IsEqualCLSID(classId, CLSID_ZIRCRaster)) return rasterClass.QueryInterface(iid, object);
    if (IsEqualCLSID(classId, CLSID_ZIRCRasterFactory)) return factoryClass.QueryInterface(iid, object);
    return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT Z_CALL DllCanUnloadNow() {
    if (zkr::automation::ModuleIsUsed()) return S_FALSE;
    zkr::automation::DropTypeInfos();
    return S_OK;
}
