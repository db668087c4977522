// Enumerators of the component model over a copy of what they list.
#pragma once

#include "automation/array.h"
#include "automation/windows/module.h"

#include <ocidl.h>
#include <ole2.h>

#include <atomic>

namespace zkr::automation {

inline IUnknown* ReferenceIn(IConnectionPoint* item) {
    return item;
}
inline IUnknown* ReferenceIn(const CONNECTDATA& item) {
    return item.pUnk;
}

template <typename Interface, typename Item> class Enumerator final : public Interface {
  public:
    Enumerator() = default;
    ~Enumerator() {
        for (int32_t index = 0; index < items_.Count(); ++index)
            ReferenceIn(items_[index])->Release();
    }
    Enumerator(const Enumerator&) = delete;
    Enumerator& operator=(const Enumerator&) = delete;

    // The next item, with a reference of its own.
    bool Append(Item item) {
        const int32_t count = items_.Count();
        if (!items_.Resize(count + 1)) return false;
        items_[count] = item;
        ReferenceIn(item)->AddRef();
        return true;
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, __uuidof(Interface))) return E_NOINTERFACE;
        *object = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return references_.fetch_add(1) + 1; }
    STDMETHODIMP_(ULONG) Release() override {
        const ULONG left = references_.fetch_sub(1) - 1;
        if (left == 0) EndObject(this);
        return left;
    }
    STDMETHODIMP Next(ULONG count, Item* items, ULONG* fetched) override {
        if (items == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
        ULONG given = 0;
        for (; given < count && next_ < items_.Count(); ++given, ++next_) {
            items[given] = items_[next_];
            ReferenceIn(items[given])->AddRef();
        }
        if (fetched != nullptr) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG count) override {
        const auto left = static_cast<ULONG>(items_.Count() - next_);
        next_ += static_cast<int32_t>(count < left ? count : left);
        return count <= left ? S_OK : S_FALSE;
    }
    STDMETHODIMP Reset() override {
        next_ = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(Interface** copy) override {
        if (copy == nullptr) return E_POINTER;
        *copy = nullptr;
        auto* made = MakeObject<Enumerator>();
        if (made == nullptr) return E_OUTOFMEMORY;
        for (int32_t index = 0; index < items_.Count(); ++index) {
            if (made->Append(items_[index])) continue;
            made->Release();
            return E_OUTOFMEMORY;
        }
        made->next_ = next_;
        *copy = made;
        return S_OK;
    }

  private:
    ModuleUse use_;
    std::atomic<ULONG> references_{1};
    Values<Item> items_;
    int32_t next_ = 0;
};

} // namespace zkr::automation
