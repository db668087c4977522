// The rows of the source that a warp samples in any order. Rows of a bitmap in memory are reached where they
// stand; of others so many are kept that a piece of a target row finds all that it needs among them.
#pragma once

#include "core/return_codes.h"
#include "core/scratch.h"
#include "geometry/kernels/warp_kernels.h"

#include <optional>

namespace zkr::warp {

class SourceRows {
  public:
    // The rectangle's place lies inside the bitmap, which stays locked as long as this is used.
    SourceRows(BitmapHandle& bitmap, int32_t left, int32_t top, int32_t width, int32_t height)
        : bitmap_(bitmap), area_{nullptr, left, top, width, height} {}
    SourceRows(const SourceRows&) = delete;
    SourceRows& operator=(const SourceRows&) = delete;

    [[nodiscard]] ReturnCode Begin();

    // Sees to it that the rows which a piece samples can be reached.
    [[nodiscard]] ReturnCode Prepare(const kernels::WarpPiece& piece, bool withNextRow) {
        return kept_ ? Fetch(piece, withNextRow) : code::Success;
    }

    const kernels::WarpSource& Area() const { return area_; }

    // Whether bytes belong to a row that is reached where it stands.
    bool Overlaps(const uint8_t* bytes, size_t count) const;

    // Forgets what is kept of a row, which has been written.
    void Forget(int32_t bitmapRow);

  private:
    // A piece needs two rows for each of its pixels at the most.
    static constexpr size_t FewestKept = 2 * kernels::WarpPiecePixels;
    static constexpr size_t KeptBytes = size_t{4} << 20;

    void SetPitch();
    [[nodiscard]] ReturnCode Fetch(const kernels::WarpPiece& piece, bool withNextRow);
    [[nodiscard]] ReturnCode FetchRow(int32_t row);

    BitmapHandle& bitmap_;
    kernels::WarpSource area_;
    std::optional<ScratchBuffer<const uint8_t*>> rows_;
    std::optional<ScratchBuffer<uint8_t>> kept_; // room for kept rows
    std::optional<ScratchBuffer<int32_t>>
        rowOf_; // which row a place of the room holds, in the order of reading
    size_t room_ = 0;
    size_t used_ = 0;
};

} // namespace zkr::warp
