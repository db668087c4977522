// The reports of an operation on rows within a part of the percentages: one step a row, however often the rows are
// gone through.
#pragma once

#include "core/progress.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace zkr::geometry {

class RowProgress {
  public:
    // Of a walk through so many rows, each of them visited so many times. An end below the start counts as it.
    RowProgress(uint32_t start, uint32_t end, int32_t rows, int32_t passes = 1)
        : receiver_(StatusReceiver::Status()), counter_(Percent(start), Percent(std::max(start, end)), rows),
          passes_(passes) {}

    [[nodiscard]] ReturnCode Begin() const { return receiver_.Report(counter_.Percent()); }
    [[nodiscard]] ReturnCode Visit() {
        if (++visits_ < passes_) return code::Success;
        visits_ = 0;
        return counter_.Advance(1) ? receiver_.Report(counter_.Percent()) : code::Success;
    }

  private:
    static int32_t Percent(uint32_t given) {
        return static_cast<int32_t>(
            std::min<uint32_t>(given, static_cast<uint32_t>(std::numeric_limits<int32_t>::max())));
    }

    StatusReceiver receiver_;
    PercentCounter counter_;
    int32_t passes_;
    int32_t visits_ = 0;
};

} // namespace zkr::geometry
