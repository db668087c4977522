// The kept rows are let go together when their room is used up. A bitmap of the caller's may have no pixels yet, which
// the first transfer tells.
#include "geometry/warp/source_rows.h"

#include "core/exact_rows.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/row_access.h"

#include <algorithm>

namespace zkr::warp {

ReturnCode SourceRows::Begin() {
    const auto height = static_cast<size_t>(area_.Height);
    rows_.emplace(height);
    if (!*rows_) return code::OutOfMemory;
    area_.Rows = rows_->data();
    if (LiesInMemory(bitmap_) && ReachRow(bitmap_, area_.Top) != nullptr) {
        for (size_t i = 0; i < height; ++i)
            (*rows_)[i] = ReachRow(bitmap_, area_.Top + static_cast<int32_t>(i));
        SetPitch();
        return code::Success;
    }
    room_ = std::min(height, std::max(FewestKept, KeptBytes / bitmap_.BytesPerLine));
    kept_.emplace(room_ * bitmap_.BytesPerLine);
    rowOf_.emplace(room_);
    if (!*kept_ || !*rowOf_) return code::OutOfMemory;
    std::fill_n(rows_->data(), height, nullptr);
    return code::Success;
}

// Where rows follow one another, which the rows of tiles need not do.
void SourceRows::SetPitch() {
    const int32_t bits = bitmap_.BitsPerPixel;
    const uint64_t pitch = bitmap_.BytesPerLine;
    if (bits % 8 != 0 || pitch * static_cast<uint32_t>(area_.Height) > INT32_MAX) return;
    for (size_t i = 1; i < static_cast<size_t>(area_.Height); ++i)
        if ((*rows_)[i] != (*rows_)[i - 1] + pitch) return;
    area_.PixelBytes = bits / 8;
    area_.First = (*rows_)[0] + static_cast<size_t>(area_.Left) * static_cast<size_t>(area_.PixelBytes);
    area_.Pitch = static_cast<int32_t>(pitch);
}

ReturnCode SourceRows::FetchRow(int32_t row) {
    uint8_t* place = kept_->data() + used_ * bitmap_.BytesPerLine;
    const ReturnCode status = ReadExactly(bitmap_, place, area_.Top + row, 0, bitmap_.BytesPerLine);
    if (status != code::Success) return status;
    (*rows_)[static_cast<size_t>(row)] = place;
    (*rowOf_)[used_++] = row;
    return code::Success;
}

ReturnCode SourceRows::Fetch(const kernels::WarpPiece& piece, bool withNextRow) {
    for (size_t i = 0; i < piece.Pixels; ++i) {
        if (piece.Row[i] == kernels::WarpPiece::Outside) continue;
        const int32_t last = std::min(piece.Row[i] + (withNextRow ? 1 : 0), area_.Height - 1);
        for (int32_t row = std::max(piece.Row[i], 0); row <= last; ++row) {
            if ((*rows_)[static_cast<size_t>(row)] != nullptr) continue;
            if (used_ == room_) {
                while (used_ > 0)
                    (*rows_)[static_cast<size_t>((*rowOf_)[--used_])] = nullptr;
                return Fetch(piece, withNextRow); // once: an empty room holds all that a piece needs
            }
            if (const ReturnCode status = FetchRow(row); status != code::Success) return status;
        }
    }
    return code::Success;
}

bool SourceRows::Overlaps(const uint8_t* bytes, size_t count) const {
    if (kept_) return false;
    const auto first = reinterpret_cast<uintptr_t>(area_.Rows[0]);
    const auto end = reinterpret_cast<uintptr_t>(area_.Rows[area_.Height - 1]) + bitmap_.BytesPerLine;
    const auto start = reinterpret_cast<uintptr_t>(bytes);
    return first < start + count && start < end;
}

void SourceRows::Forget(int32_t bitmapRow) {
    // Its place stays taken until all rows are let go.
    const int32_t row = bitmapRow - area_.Top;
    if (kept_ && row >= 0 && row < area_.Height) (*rows_)[static_cast<size_t>(row)] = nullptr;
}

} // namespace zkr::warp
