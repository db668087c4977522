#include "display/paint/converted_rows.h"

#include <algorithm>
#include <cstring>

namespace zkr {

ReturnCode ConvertedRows::Make(int64_t firstRow, size_t rows, uint8_t* target, size_t rowBytes) {
    const size_t together = conversion_.RowsTogether();
    int32_t shown = -1;
    for (size_t done = 0; done < rows;) {
        const size_t count = std::min(together, rows - done);
        uint8_t* place = target + done * rowBytes;
        const int64_t row = firstRow + static_cast<int64_t>(done);
        const bool repeats = done > 0 && !conversion_.DependsOnRow() && source_.RowShown(row) == shown;
        shown = source_.RowShown(row);
        done += count;
        if (repeats) {
            std::memcpy(place, place - rowBytes, rowBytes);
            continue;
        }
        for (size_t slot = 0; slot < count; ++slot) {
            const uint8_t* pixels = nullptr;
            const ReturnCode status = source_.Fetch(row + static_cast<int64_t>(slot), pixels);
            if (status != code::Success) return status;
            conversion_.Take(slot, pixels);
        }
        conversion_.Make(count, row, place, rowBytes);
    }
    return code::Success;
}

const uint8_t* ConvertedRows::InPlace(int64_t firstRow) {
    return conversion_.Copies() ? source_.RowInPlace(firstRow) : nullptr;
}

} // namespace zkr
