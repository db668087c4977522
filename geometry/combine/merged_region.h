// The region of a bitmap narrowed for a while to what another one lets through as well.
#pragma once

#include "core/return_codes.h"
#include "zkr13n/bitmap.h"
#include "zkr13n/region.h"

namespace zkr::geometry {

class MergedRegion {
  public:
    explicit MergedRegion(BitmapHandle& bitmap) : bitmap_(bitmap) {}
    // The bitmap has again the region that it had, or none.
    ~MergedRegion();
    MergedRegion(const MergedRegion&) = delete;
    MergedRegion& operator=(const MergedRegion&) = delete;

    // Keeps to the other's region, flipped within its height and then moved. A bitmap without one lets all through.
    [[nodiscard]] ReturnCode Add(const BitmapHandle& other, bool flips, int32_t dx, int32_t dy);

  private:
    BitmapHandle& bitmap_;
    RegionHandle* kept_ = nullptr;
    bool isMerged_ = false;
};

} // namespace zkr::geometry
