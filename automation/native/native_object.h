// The raster object as a class, where there is no component model: references, sinks, and every member handed on to the
// logic.
#pragma once

#include "automation/plain_types.h"
#include "automation/raster_object.h"
#include "automation/sink_list.h"
#include "zkr13n/raster_object.h"

#include <atomic>

namespace zkr::automation {

// An argument on its way to the logic: arrays change their form.
template <typename T> struct Passed {
    T value;
    operator T() const { return value; }
};
template <> struct Passed<ZVariant*> {
    ZVariant* value;
    Array array{};
    explicit Passed(ZVariant* variant) : value(variant) {}
    ~Passed();
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;
    operator Array*() { return value != nullptr ? &array : nullptr; }
};
template <> struct Passed<ZVariant> {
    Array array;
    explicit Passed(const ZVariant& variant);
    operator const Array&() const { return array; }
};

class NativeObject final : public IZIRCRaster, private Face, private PlainTypes {
    using ArrayIn = const ZVariant&;
    using ArrayOut = ZVariant*;

  public:
    NativeObject() : object_(*this) {}
    ~NativeObject() = default;
    ReturnCode Make() { return object_.Make(); }

    uint32_t AddRef() override;
    uint32_t Release() override;
    ZResult AdviseSink(ZRasterEvents* sink, uint32_t* cookie) override;
    ZResult UnadviseSink(uint32_t cookie) override;
    const char* LastErrorText() override { return errorText_; }

    ZResult GetInterfacePointer(IZIRCRaster** raster) override;
#define LIST(...) __VA_ARGS__
#define MEMBER(member, logic, parameters, arguments)                                                         \
    ZResult member parameters override {                                                                     \
        return Call(&RasterObject::logic, LIST arguments);                                                   \
    }
#include "automation/members.inc"
#undef LIST

  private:
    void Keep() override {
        AddRef();
    }
    void Drop() override {
        Release();
    }
    void ReportFailure(const char* text) override;
    void FireChange(int32_t change, int32_t reserved1, int32_t reserved2) override;
    void FireRegionChange() override;
    bool TranslateColour(uint32_t colour, uint32_t* plain) override;

    // Sinks may release the last reference of the client's.
    Face* AtRisk() {
        return sinks_.Count() != 0 ? this : nullptr;
    }

    template <typename Member, typename... Arguments>
    ZResult Call(Member member, const Arguments&... arguments) {
        const KeptFace kept(AtRisk());
        return (object_.*member)(Passed<Arguments>{arguments}...);
    }

    RasterObject object_;
    std::atomic<uint32_t> references_{1};
    SinkList<ZRasterEvents*> sinks_;
    char errorText_[160] = {};
};

} // namespace zkr::automation
