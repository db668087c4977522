// The raster object as an Automation object: references, dispatch, error information, events, and every member handed on
// to the logic.
#pragma once

#include "automation/raster_object.h"
#include "automation/windows/arguments.h"
#include "automation/windows/connection_points.h"
#include "automation/windows/interfaces.h"
#include "automation/windows/module.h"

#include <atomic>
#include <type_traits>

namespace zkr::automation {

class ComRaster final : public IZIRCRaster,
                        public ISupportErrorInfo,
                        public IConnectionPointContainer,
                        public IProvideClassInfo2,
                        private Face {
    // The types in the table of members, as the type library has them.
    using Handle = LONG_PTR;
    using Truth = VARIANT_BOOL;
    using Short = short;
    using Long = long;
    using Float = float;
    using Double = double;
    using Colour = OLE_COLOR;
    using Text = BSTR;
    using ArrayIn = VARIANT;
    using ArrayOut = VARIANT*;
    using PictureIn = IDispatch*;
    using PictureOut = IDispatch**;

  public:
    ComRaster() : object_(*this), events_(*this) {}
    ~ComRaster() = default;
    ReturnCode Make() { return object_.Make(); }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID member, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* argument) override;

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override;
    STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
    STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;
    STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
    STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;

    // For companions, which have an object's IUnknown alone: the logic behind it, while the reference is held. The
    // object is known by an interface that no other class has.
    RasterObject& Logic() { return object_; }

    STDMETHODIMP GetInterfacePointer(IZIRCRaster** raster) override;
#define LIST(...) __VA_ARGS__
#define MEMBER(member, logic, parameters, arguments)                                                         \
    STDMETHODIMP member parameters override {                                                                \
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
    bool HasPictures() const override {
        return true;
    }
    ReturnCode MakePicture(HBITMAP bitmap, HPALETTE palette, intptr_t* picture) override;
    ReturnCode ReadPicture(intptr_t picture, BitmapHandle* made) override;

    // A sink, a companion or, in some calls, an object of the client's may release the client's last reference.
    Face* AtRisk(bool always = false) {
        return always || events_.IsWatched() || object_.HasCompanion() ? this : nullptr;
    }

    template <typename Member, typename... Arguments>
    HRESULT Call(Member member, const Arguments&... arguments) {
        const KeptFace kept(AtRisk((std::is_same_v<Arguments, PictureIn> || ...)));
        return (object_.*member)(Passed<Arguments>{arguments}...);
    }
    template <typename Member> HRESULT Call(Member member, float y, VARIANT* variant) {
        return CallForArray(variant, member, y);
    }
    template <typename Member> HRESULT Call(Member member, float x, float y, VARIANT* variant) {
        return CallForArray(variant, member, x, y);
    }
    // The client's copy of an array is made last, and may fail.
    template <typename Member, typename... Arguments>
    HRESULT CallForArray(VARIANT* variant, Member member, Arguments... arguments) {
        const KeptFace kept(AtRisk());
        Array array;
        const HRESULT result = (object_.*member)(arguments..., variant != nullptr ? &array : nullptr);
        if (variant == nullptr || CopyArray(array, variant)) return result;
        return object_.Map(Z_ERROR_MEMORY);
    }

    ModuleUse use_;
    std::atomic<ULONG> references_{1};
    RasterObject object_;
    ConnectionPoint events_;
};

} // namespace zkr::automation
