// The part of a bitmap that an operation may touch: the rows and segments of its region, or the whole bitmap
// where it has none.
#pragma once

#include "core/return_codes.h"
#include "core/row_walk.h"
#include "core/scratch.h"
#include "zkr13n/bitmap.h"

#include <cstdint>
#include <optional>
#include <span>

namespace zkr {

class RegionRows {
  public:
    // What happens to a row whose segments the region does not give: it is Ignored as one without any.
    explicit RegionRows(BitmapHandle& bitmap, RowFailures failures = RowFailures::Returned)
        : bitmap_(bitmap), failures_(failures) {}
    RegionRows(const RegionRows&) = delete;
    RegionRows& operator=(const RegionRows&) = delete;

    // Asks for bounds and makes room for segments; the bounds are cut to the bitmap, and have no rows where they lie
    // beside it.
    [[nodiscard]] ReturnCode Begin();

    int32_t top() const { return top_; }
    int32_t rows() const { return rows_; }
    // No row has a pixel; such a region may have rows all the same.
    bool IsEmpty() const { return room_ == 0; }

    // Pairs of columns inside the bitmap, ends not included; valid until the next call. A pair may be empty.
    [[nodiscard]] ReturnCode SegmentsOf(int32_t row, std::span<const uint32_t>& segments);

  private:
    BitmapHandle& bitmap_;
    RowFailures failures_;
    int32_t top_ = 0;
    int32_t rows_ = 0;
    uint32_t room_ = 0; // entries
    std::optional<ScratchBuffer<int32_t>> segments_;
};

} // namespace zkr
