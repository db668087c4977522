// Visits the rows of a bitmap in order while it is locked, and reports progress where it is to.
#pragma once

#include "core/bitmap_lock.h"
#include "core/progress.h"
#include "core/return_codes.h"

#include <cstdint>

namespace zkr {

// What a row does to an operation that cannot be read, written or asked for.
enum class RowFailures { Returned, Ignored };

// What a visitor tells of its row: how it went, and whether the walk has all that it needs. A plain code goes on when
// it is code::Success, and else ends the walk and is its result.
struct Visited {
    constexpr Visited(ReturnCode status) : Status(status) {}
    static constexpr Visited Last() {
        Visited visited(code::Success);
        visited.IsLast = true;
        return visited;
    }

    ReturnCode Status;
    bool IsLast = false;
};

class RowWalk {
  public:
    explicit RowWalk(BitmapHandle& bitmap) : bitmap_(&bitmap) {}

    // Another bitmap that is locked during the walk.
    RowWalk& With(BitmapHandle& other) {
        other_ = &other;
        return *this;
    }
    // Reports the given part of the operation, which counts so many rows, or those that are walked. Nothing is
    // reported without it.
    RowWalk& Reporting(StatusReceiver receiver, PercentRange range = {}, int32_t parts = 0) {
        receiver_ = receiver;
        range_ = range;
        parts_ = parts;
        return *this;
    }

    // Calls visit(row) for the first `rows` rows; it returns a ReturnCode or a Visited. A result of the status callback
    // other than code::Success ends the walk, too. A walk that has all that it needs reports the range's end.
    template <typename Visitor> [[nodiscard]] ReturnCode Run(int32_t rows, Visitor visit) const {
        const BitmapLock lock(bitmap_), otherLock(other_);
        Progress progress(receiver_, parts_ > 0 ? parts_ : rows, range_);
        ReturnCode status = progress.Begin();
        for (int32_t row = 0; row < rows && status == code::Success; ++row) {
            const Visited visited = visit(row);
            if (visited.IsLast) return receiver_.Report(range_.End);
            status = visited.Status == code::Success ? progress.Step() : visited.Status;
        }
        return status;
    }

  private:
    BitmapHandle* bitmap_;
    BitmapHandle* other_ = nullptr;
    StatusReceiver receiver_{};
    PercentRange range_;
    int32_t parts_ = 0;
};

} // namespace zkr
