// Makes objects of the family by the names of their classes.
#pragma once

#include "automation/windows/interfaces.h"
#include "automation/windows/module.h"

#include <atomic>

namespace zkr::automation {

class ComFactory final : public IZIRCRasterFactory {
  public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID member, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* argument) override;

    STDMETHODIMP CreateObject(BSTR className, BSTR licence, IUnknown** object) override;
    STDMETHODIMP CreateObject2(BSTR className, BSTR licence, IDispatch** object) override;

  private:
    ModuleUse use_;
    std::atomic<ULONG> references_{1};
};

} // namespace zkr::automation
