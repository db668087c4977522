// Arguments on their way from a client to the logic.
#pragma once

#include "automation/array.h"

#include <ole2.h>

namespace zkr::automation {

// Numbers pass as they are.
template <typename T> struct Passed {
    T value;
    operator T() const { return value; }
};
template <> struct Passed<long*> {
    long* value;
    operator int32_t*() const { return reinterpret_cast<int32_t*>(value); }
};
template <> struct Passed<unsigned long*> {
    unsigned long* value;
    operator uint32_t*() const { return reinterpret_cast<uint32_t*>(value); }
};
template <> struct Passed<IDispatch*> {
    IDispatch* value;
    operator intptr_t() const { return reinterpret_cast<intptr_t>(value); }
};
template <> struct Passed<IDispatch**> {
    IDispatch** value;
    operator intptr_t*() const { return reinterpret_cast<intptr_t*>(value); }
};

// A text in the system's narrow characters.
template <> struct Passed<BSTR> {
    char text[256];
    explicit Passed(BSTR wide);
    operator const char*() const { return text; }
};

// An array of a client, locked for the scope.
template <> struct Passed<VARIANT> {
    explicit Passed(const VARIANT& variant);
    ~Passed();
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;
    operator const Array&() const { return array_; }

  private:
    Array array_;
    SAFEARRAY* locked_ = nullptr;
};

// An array for a client, which gets a copy of its own, or the empty variant for none. False where memory is short.
bool CopyArray(const Array& from, VARIANT* variant);

} // namespace zkr::automation
