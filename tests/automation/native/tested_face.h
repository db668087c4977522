// The face of raster objects outside the component model, as the tests of all faces work on it.
#pragma once

#include "automation/array.h"
#include "zkr13n/raster_object.h"

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace zkr::test {

using automation::Array;

inline void Demand(bool holds) {
    if (!holds) std::abort();
}

class TestedFace : private ZRasterEvents {
  public:
    TestedFace() {
        Demand(Z_CreateRasterObject(&raster_) == Z_SUCCESS);
        Demand(raster_->AdviseSink(this, &cookie_) == 0);
    }
    virtual ~TestedFace() {
        Demand(raster_->UnadviseSink(cookie_) == 0);
        Demand(raster_->Release() == 0u);
    }
    TestedFace(const TestedFace&) = delete;
    TestedFace& operator=(const TestedFace&) = delete;

    std::string LastText() { return raster_->LastErrorText(); }
    std::vector<int> Told; // changes, and RegionChange
    std::function<void(int)> OnChange;

  protected:
    using Interface = IZIRCRaster;

    template <typename... Wanted, typename... Given>
    int32_t Call(ZResult (IZIRCRaster::*member)(Wanted...), const Given&... given) {
        return (raster_->*member)(Passed<Given>{given}...);
    }

  private:
    template <typename T> struct Passed {
        T value;
        operator T() const { return value; }
    };

    void Change(int32_t change, int32_t, int32_t) override {
        Told.push_back(change);
        if (OnChange) OnChange(change);
    }
    void RgnChange() override { Told.push_back(-1); }

    IZIRCRaster* raster_ = nullptr;
    uint32_t cookie_ = 0;
};

template <> struct TestedFace::Passed<automation::Array> {
    explicit Passed(const Array& array)
        : variant_{array.Elements == Array::Kind::None          ? Z_VARIANT_EMPTY
                   : array.Elements == Array::Kind::Floats      ? Z_VARIANT_FLOATS
                   : array.Elements == Array::Kind::SignedBytes ? Z_VARIANT_SIGNED_BYTES
                                                                : Z_VARIANT_BYTES,
                   array.Count, array.Data} {
        if (array.ByReference) variant_.Type |= Z_VARIANT_BY_REFERENCE;
    }
    operator const ZVariant&() const { return variant_; }

  private:
    ZVariant variant_;
};

template <> struct TestedFace::Passed<automation::Array*> {
    explicit Passed(Array* array) : array_(array) {}
    ~Passed() {
        if (array_ == nullptr) return;
        const Array::Kind kind = variant_.Type == Z_VARIANT_FLOATS  ? Array::Kind::Floats
                                 : variant_.Type == Z_VARIANT_BYTES ? Array::Kind::Bytes
                                                                    : Array::Kind::None;
        *array_ = {kind, variant_.Count, variant_.Data, false};
    }
    Passed(const Passed&) = delete;
    Passed& operator=(const Passed&) = delete;
    operator ZVariant*() { return array_ != nullptr ? &variant_ : nullptr; }

  private:
    Array* array_;
    ZVariant variant_{};
};

} // namespace zkr::test
