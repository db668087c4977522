// The one table behind all handles. A handle holds the kind of its object, the place in the table and the
// place's generation, so that a stale, foreign or wrong-kind handle is told apart without following it. The
// low four bits, the kind, are never 0, so no aligned address can pass for a handle.
//
// Calls reach an object through a Pin, which keeps it alive: a handle closed by another thread meanwhile only
// loses the object when the last pin goes.
#pragma once

#include "platform/portable/types.h"

namespace zkr::platform {

enum class ObjectKind : uint16_t {
    None,
    Global,
    File,
    Mapping,
    Module,
    Palette,
    DeviceContext,
    Region,
    Bitmap,
    Brush
};

class Object {
  public:
    // The handle and the last pin are gone.
    virtual void Release() = 0;

  protected:
    ~Object() = default;
};

// Gives an object a handle; null where the table cannot grow, and the object stays the caller's.
HANDLE InsertHandle(ObjectKind kind, Object& object);

// Withdraws the handle. False, with the last error set, unless it is a live handle of this kind.
bool CloseHandleOfKind(ObjectKind kind, HANDLE handle);

// What a handle claims to be; nothing is known yet about whether it lives.
inline ObjectKind ClaimedKind(HANDLE handle) {
    return static_cast<ObjectKind>(reinterpret_cast<uintptr_t>(handle) & 15);
}

// Handles alive in the process.
uint32_t CountHandles();

Object* PinHandle(ObjectKind kind, HANDLE handle); // null, with the last error set, for a bad handle
void UnpinHandle(HANDLE handle);                   // a handle that PinHandle accepted

// The object of a handle for a scope; empty for a handle that is not a live one of T's kind.
template <typename T> class Pin {
  public:
    explicit Pin(HANDLE handle) : handle_(handle), object_(static_cast<T*>(PinHandle(T::kind, handle))) {}
    ~Pin() {
        if (object_ != nullptr) UnpinHandle(handle_);
    }
    Pin(const Pin&) = delete;
    Pin& operator=(const Pin&) = delete;

    explicit operator bool() const { return object_ != nullptr; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }

  private:
    HANDLE handle_;
    T* object_;
};

} // namespace zkr::platform
