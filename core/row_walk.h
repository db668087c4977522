// Visits the rows of a bitmap in order while it is locked, and reports progress.
#pragma once

#include "core/bitmap_lock.h"
#include "core/progress.h"
#include "core/return_codes.h"

#include <cstdint>

namespace zkr {

// What a row does to an operation that cannot be read, written or asked for.
enum class RowFailures { Returned, Ignored };

// Calls visit(row) for the first `rows` rows. A result other than code::Success, of the visitor or of the
// status callback, ends the walk and is its result.
template <typename Visitor>
ReturnCode WalkRows(BitmapHandle* bitmap, int32_t rows, StatusReceiver receiver, Visitor visit) {
    const BitmapLock lock(bitmap);
    Progress progress(receiver, rows);
    ReturnCode status = progress.Begin();
    for (int32_t row = 0; row < rows && status == code::Success; ++row) {
        status = visit(row);
        if (status == code::Success) status = progress.Step();
    }
    return status;
}

} // namespace zkr
