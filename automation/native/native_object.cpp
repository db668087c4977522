#include "automation/native/native_object.h"

#include "zkr13n/allocation.h"

#include <cstdio>
#include <iterator>
#include <new>

namespace zkr::automation {

namespace {

// Colours of the system, by their numbers, as a plain desktop has them.
constexpr uint32_t SystemColours[] = {0xC8C8C8, 0x000000, 0xD1B499, 0xDBCDBF, 0xF0F0F0, 0xFFFFFF, 0x646464,
                                      0x000000, 0x000000, 0x000000, 0xB4B4B4, 0xFCF7F4, 0xABABAB, 0xD77800,
                                      0xFFFFFF, 0xF0F0F0, 0xA0A0A0, 0x6D6D6D, 0x000000, 0x000000, 0xFFFFFF,
                                      0x696969, 0xE3E3E3, 0x000000, 0xE1FFFF, 0x000000, 0xCC6600, 0xEAD1B9,
                                      0xF2E4D7, 0xD77800, 0xF0F0F0};

Array ToArray(const ZVariant& variant) {
    Array array{Array::Kind::None, variant.Count, variant.Data, (variant.Type & Z_VARIANT_BY_REFERENCE) != 0};
    switch (variant.Type & ~Z_VARIANT_BY_REFERENCE) {
    case Z_VARIANT_EMPTY: array.Count = 0; break;
    case Z_VARIANT_BYTES: array.Elements = Array::Kind::Bytes; break;
    case Z_VARIANT_SIGNED_BYTES: array.Elements = Array::Kind::SignedBytes; break;
    default: array.Elements = Array::Kind::Floats; break;
    }
    return array;
}

} // namespace

Passed<ZVariant*>::~Passed() {
    if (value == nullptr) return;
    const int32_t type = array.Elements == Array::Kind::Floats  ? Z_VARIANT_FLOATS
                         : array.Elements == Array::Kind::Bytes ? Z_VARIANT_BYTES
                                                                : Z_VARIANT_EMPTY;
    *value = {type, array.Count, array.Data};
}

Passed<ZVariant>::Passed(const ZVariant& variant) : array(ToArray(variant)) {}

uint32_t NativeObject::AddRef() {
    return references_.fetch_add(1, std::memory_order_relaxed) + 1;
}

uint32_t NativeObject::Release() {
    const uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) {
        this->~NativeObject();
        Z_Free(this);
    }
    return left;
}

ZResult NativeObject::AdviseSink(ZRasterEvents* sink, uint32_t* cookie) {
    if (cookie != nullptr) *cookie = 0;
    if (sink == nullptr || cookie == nullptr) return object_.Map(Z_ERROR_ARGUMENT);
    *cookie = sinks_.Add(sink);
    return object_.Map(*cookie != 0 ? Z_SUCCESS : Z_ERROR_MEMORY);
}

ZResult NativeObject::UnadviseSink(uint32_t cookie) {
    return object_.Map(sinks_.Remove(cookie) ? Z_SUCCESS : Z_ERROR_ARGUMENT);
}

ZResult NativeObject::GetInterfacePointer(IZIRCRaster** raster) {
    const KeptFace kept(AtRisk());
    if (raster != nullptr) {
        *raster = this;
        AddRef();
    }
    return object_.OwnMember(raster != nullptr ? Z_SUCCESS : Z_ERROR_ARGUMENT);
}

void NativeObject::ReportFailure(const char* text) {
    std::snprintf(errorText_, sizeof errorText_, "%s", text);
}

void NativeObject::FireChange(int32_t change, int32_t reserved1, int32_t reserved2) {
    sinks_.ForEach([=](ZRasterEvents* sink, uint32_t) { sink->Change(change, reserved1, reserved2); });
}

void NativeObject::FireRegionChange() {
    sinks_.ForEach([](ZRasterEvents* sink, uint32_t) { sink->RgnChange(); });
}

// The top byte is 0 for a colour value, 1 for an index into a palette, 2 for a colour that a palette may stand for, and
// 128 for a colour of the system.
bool NativeObject::TranslateColour(uint32_t colour, uint32_t* plain) {
    const uint32_t kind = colour >> 24, number = colour & 0xFFFFFF;
    if (kind <= 2) {
        *plain = colour;
        return true;
    }
    if (kind != 0x80 || number >= std::size(SystemColours)) return false;
    *plain = SystemColours[number];
    return true;
}

} // namespace zkr::automation

ReturnCode Z_CALL Z_CreateRasterObject(IZIRCRaster** raster) {
    using zkr::automation::NativeObject;
    if (raster == nullptr) return Z_ERROR_ARGUMENT;
    *raster = nullptr;
    void* room = Z_Malloc(sizeof(NativeObject));
    if (room == nullptr) return Z_ERROR_MEMORY;
    auto* object = new (room) NativeObject;
    const ReturnCode status = object->Make();
    if (status == Z_SUCCESS) {
        *raster = object;
    } else {
        object->Release();
    }
    return status;
}
