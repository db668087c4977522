// The library as a server of objects: its handle, what keeps it loaded, and how objects are made and held.
#pragma once

#include "zkr13n/allocation.h"

#include <ole2.h>

#include <new>

namespace zkr::automation {

HINSTANCE ThisModule();
// The path of the library; false where it does not fit.
bool ModulePath(wchar_t (&path)[MAX_PATH]);

void KeepModule();
void DropModule();
bool ModuleIsUsed();

// Keeps the module loaded as long as it lives.
class ModuleUse {
  public:
    ModuleUse() { KeepModule(); }
    ~ModuleUse() { DropModule(); }
    ModuleUse(const ModuleUse&) = delete;
    ModuleUse& operator=(const ModuleUse&) = delete;
};

// A reference for a scope.
class Held {
  public:
    template <typename Object> explicit Held(Object& object) : object_(static_cast<IDispatch&>(object)) {
        object_.AddRef();
    }
    ~Held() { object_.Release(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

  private:
    IUnknown& object_;
};

// A pointer to an interface that is released at the end of the scope.
template <typename Interface> class Pointer {
  public:
    Pointer() = default;
    explicit Pointer(Interface* taken) : pointer_(taken) {}
    ~Pointer() {
        if (pointer_ != nullptr) pointer_->Release();
    }
    Pointer(const Pointer&) = delete;
    Pointer& operator=(const Pointer&) = delete;

    Interface* operator->() const { return pointer_; }
    Interface* get() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }
    Interface** Out() { return &pointer_; }
    void** OutUntyped() { return reinterpret_cast<void**>(&pointer_); }
    Interface* HandOver() {
        Interface* pointer = pointer_;
        pointer_ = nullptr;
        return pointer;
    }

  private:
    Interface* pointer_ = nullptr;
};

// Objects lie in blocks of Z_Malloc; null where memory is short.
template <typename Object, typename... Arguments> Object* MakeObject(Arguments&&... arguments) {
    void* room = Z_Malloc(sizeof(Object));
    return room == nullptr ? nullptr : new (room) Object(static_cast<Arguments&&>(arguments)...);
}
template <typename Object> void EndObject(Object* object) {
    object->~Object();
    Z_Free(object);
}

// S_OK, the failure of QueryInterface, or what stands for a ReturnCode outside members.
HRESULT ResultOf(int32_t status);

} // namespace zkr::automation
