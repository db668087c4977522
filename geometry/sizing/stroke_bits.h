// Strokes kept of rows that are held as bits: black pixels are counted in whole words.
#pragma once

#include "core/scratch.h"
#include "core/views.h"
#include "geometry/kernels/strokes.h"
#include "geometry/resize/stepping.h"
#include "zkr13n/bitmap.h"

namespace zkr {

// Strokes are kept as they are seen: the rows of view 2 are walked from the picture's top.
inline int32_t StoredRow(const BitmapHandle& bitmap, int32_t row) {
    return bitmap.ViewPerspective == view::BottomLeft ? bitmap.Height - 1 - row : row;
}

class StrokeBits {
  public:
    // Widths that shrink, stay or double, and cells that can be counted in.
    static bool Suits(const BitmapHandle& source, const BitmapHandle& target);

    StrokeBits(BitmapHandle& source, BitmapHandle& target, uint32_t threshold, bool blackIsOne);

    explicit operator bool() const {
        return counts_ && bounds_ && spreads_ && made_ && targetRow_ && sourceRows_ && fetched_ && runs_;
    }

    void Begin();
    [[nodiscard]] ReturnCode Pass(int32_t row);

  private:
    static constexpr size_t Rows = kernels::MostPlanes + 2;
    static constexpr size_t Slack = 8; // that kernels may read behind a row

    [[nodiscard]] ReturnCode Fetch(int32_t first, int32_t count);
    [[nodiscard]] ReturnCode Store(int32_t row);

    BitmapHandle& source_;
    BitmapHandle& target_;
    Stepping steps_;
    uint32_t threshold_;
    bool blackIsOne_;
    size_t rowBytes_, cells_;
    uint32_t planes_; // for the most rows of a cell
    ScratchBuffer<uint8_t> counts_;
    kernels::CountedRows rows_ = {};
    ScratchBuffer<uint32_t> bounds_;
    ScratchBuffer<uint64_t> spreads_;
    bool isShort_ = false; // cells so narrow that they have spreads
    ScratchBuffer<uint8_t> made_;
    ScratchRow targetRow_;
    ScratchBuffer<uint8_t> sourceRows_; // of a cell, where the bitmap does not lie in memory
    ScratchBuffer<const uint8_t*> fetched_;
    ScratchBuffer<uint16_t> runs_; // of a target that is held as runs
    int64_t counted_ = -1;
};

} // namespace zkr
