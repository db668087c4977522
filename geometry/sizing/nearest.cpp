// Nearest pixels: packed rows are stepped through as they are, and rows that are equal are made once.
#include "core/row_access.h"
#include "core/scratch.h"
#include "core/sizes.h"
#include "geometry/resize/nearest_row.h"
#include "geometry/row_tail.h"
#include "geometry/sizing/sizing_work.h"

#include <algorithm>

namespace zkr {

ReturnCode FillNearest(BitmapHandle& source, BitmapHandle& target) {
    // Pixels keep their depth. Where the target's is another, its rows take of them what they can hold.
    const uint64_t rowBytes =
        std::max<uint64_t>(StorageRowBytes(target.Width, source.BitsPerPixel), target.BytesPerLine);
    if (!FitsSize(rowBytes)) return code::OutOfMemory;
    ScratchBuffer<uint8_t> made(static_cast<size_t>(rowBytes));
    ScratchRow buffer(source);
    if (!made || !buffer) return code::OutOfMemory;
    NearestRow columns;
    const ReturnCode ready = columns.Make(source.BitsPerPixel, source.Width, target.Width);
    if (ready != code::Success) return ready;
    Stepping rows = Stepping::Between(source.Height, target.Height);
    int64_t last = -1;
    return FillRows(source, target, made.data(), [&](int32_t) {
        const auto row = static_cast<int32_t>(rows.Index);
        rows.Next();
        if (row == last) return code::Success;
        last = row;
        const uint8_t* bytes = nullptr;
        const ReturnCode result = FetchRow(source, row, buffer.data(), bytes);
        if (result != code::Success) return result;
        columns.Run(bytes, 0, source.BytesPerLine, 0, target.Width, made.data());
        ClearBehind(source.BitsPerPixel, made.data(), static_cast<uint32_t>(target.Width), rowBytes);
        return code::Success;
    });
}

} // namespace zkr
