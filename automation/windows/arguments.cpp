#include "automation/windows/arguments.h"

#include <cstring>

namespace zkr::automation {

Passed<BSTR>::Passed(BSTR wide) {
    text[0] = 0;
    if (wide == nullptr) return;
    // A text that does not fit is cut; what it means does not lie in its length.
    if (WideCharToMultiByte(CP_ACP, 0, wide, -1, text, sizeof text, nullptr, nullptr) == 0)
        text[sizeof text - 1] = 0;
}

Passed<VARIANT>::Passed(const VARIANT& variant) {
    const VARIANT* held = &variant;
    // References may stand behind one another, but not without an end.
    for (int depth = 0; depth < 8 && V_VT(held) == (VT_BYREF | VT_VARIANT) && V_VARIANTREF(held) != nullptr;
         ++depth)
        held = V_VARIANTREF(held);
    if (V_VT(held) == VT_EMPTY || V_VT(held) == VT_NULL || V_VT(held) == VT_ERROR) return;
    array_.Elements = Array::Kind::Floats; // what the logic refuses
    array_.ByReference = (V_VT(held) & VT_BYREF) != 0;
    if ((V_VT(held) & VT_ARRAY) == 0) return;
    SAFEARRAY* array =
        array_.ByReference ? (V_ARRAYREF(held) != nullptr ? *V_ARRAYREF(held) : nullptr) : V_ARRAY(held);
    const VARTYPE type = V_VT(held) & VT_TYPEMASK;
    if (array == nullptr || SafeArrayGetDim(array) != 1 || (type != VT_UI1 && type != VT_I1)) return;
    void* data = nullptr;
    if (FAILED(SafeArrayAccessData(array, &data))) return;
    locked_ = array;
    const ULONG count = array->rgsabound[0].cElements;
    array_.Elements = type == VT_UI1 ? Array::Kind::Bytes : Array::Kind::SignedBytes;
    array_.Count = count <= INT32_MAX ? static_cast<int32_t>(count) : INT32_MAX;
    array_.Data = data;
}

Passed<VARIANT>::~Passed() {
    if (locked_ != nullptr) SafeArrayUnaccessData(locked_);
}

bool CopyArray(const Array& from, VARIANT* variant) {
    VariantInit(variant);
    if (from.Elements == Array::Kind::None) return true;
    const VARTYPE type = from.Elements == Array::Kind::Floats ? VT_R4 : VT_UI1;
    SAFEARRAY* array = SafeArrayCreateVector(type, 0, static_cast<ULONG>(from.Count));
    if (array == nullptr) return false;
    void* data = nullptr;
    if (from.Count != 0 && SUCCEEDED(SafeArrayAccessData(array, &data))) {
        std::memcpy(data, from.Data, static_cast<size_t>(from.Count) * (type == VT_R4 ? sizeof(float) : 1));
        SafeArrayUnaccessData(array);
    }
    V_VT(variant) = VT_ARRAY | type;
    V_ARRAY(variant) = array;
    return true;
}

} // namespace zkr::automation
