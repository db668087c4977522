// Regions of the platform: made from records, read into records, and kept in a record as its cache.
#pragma once

#include "platform/graphics.h"
#include "regions/run_store.h"

namespace zkr {

// Deletes what it holds at the end of the scope.
class OwnedPlatformRegion {
  public:
    explicit OwnedPlatformRegion(HRGN region = nullptr) : region_(region) {}
    ~OwnedPlatformRegion() {
        if (region_ != nullptr) platform::DeleteObject(region_);
    }
    OwnedPlatformRegion(const OwnedPlatformRegion&) = delete;
    OwnedPlatformRegion& operator=(const OwnedPlatformRegion&) = delete;

    HRGN get() const { return region_; }
    explicit operator bool() const { return region_ != nullptr; }
    // In the place of none.
    void Take(HRGN region) { region_ = region; }
    HRGN Release() {
        const HRGN region = region_;
        region_ = nullptr;
        return region;
    }

  private:
    HRGN region_;
};

// Null where the platform makes none.
HRGN DuplicatePlatformRegion(HRGN region);

// Makes a platform region of a bitmap's region as a transform shows it. A transform of null shows it as it is.
[[nodiscard]] ReturnCode RegionToPlatform(const BitmapHandle* bitmap, const RegionHandle* region,
                                          const RegionXform* xform, HRGN* result);

// Reads a platform region. Rectangles that do not lie in bands, or that overlap, are refused.
[[nodiscard]] ReturnCode RegionFromPlatform(HRGN platformRegion, OwnedRegion& result);

} // namespace zkr
