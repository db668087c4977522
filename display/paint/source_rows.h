// The rows that are painted: of a bitmap or of its caller's buffer, as they are or scaled.
#pragma once

#include "core/scratch.h"
#include "display/paint/placement.h"
#include "zkr13n/bitmap.h"

#include <cstdint>
#include <optional>

namespace zkr {

// Rows that a caller holds in the bitmap's format.
struct HeldRows {
    const uint8_t* Data = nullptr; // null: the bitmap's own
    int64_t First = 0;             // row of the bitmap
    size_t RowBytes = 0;           // from one to the next
};

class SourceRows {
  public:
    // Pixels of a row are given out from a multiple of 8 on.
    static constexpr int64_t Grain = 8;

    // The bitmap is locked as long as rows are read.
    SourceRows(BitmapHandle& bitmap, const HeldRows& held, const Placement& placement, const Range& columns);

    // What else it takes: buffers and lists.
    [[nodiscard]] ReturnCode Prepare();

    int64_t FirstColumn() const { return columns_.From; }
    size_t Pixels() const { return static_cast<size_t>(columns_.Length()); }

    // The bitmap's row that a scaled row shows.
    int32_t RowShown(int64_t scaledRow) const;

    // The pixels of a scaled row from FirstColumn on; they stay until the next call. Rows that show the same row give the
    // same address.
    [[nodiscard]] ReturnCode Fetch(int64_t scaledRow, const uint8_t*& pixels);

    // Whether rows stay where Fetch finds them.
    bool GivesAddresses() const;

    // Where an unscaled row begins, when the others stand before and behind it so that rows of the bitmap's width follow one
    // another as blocks have them; else null.
    const uint8_t* RowInPlace(int64_t row);

  private:
    uint32_t ColumnShown(int64_t scaledColumn) const;
    [[nodiscard]] ReturnCode FetchStored(int32_t row, const uint8_t*& pixels);

    BitmapHandle& bitmap_;
    HeldRows held_;
    bool scalesColumns_;
    bool scalesRows_;
    int64_t scaledWidth_;
    int64_t scaledHeight_;
    Range columns_;          // scaled
    int32_t storedFrom_ = 0; // of the bitmap, what those columns show
    uint32_t storedBytes_ = 0;
    int32_t lastRow_ = -1;
    const uint8_t* lastPixels_ = nullptr;
    std::optional<ScratchBuffer<uint8_t>> stored_;
    std::optional<ScratchBuffer<uint8_t>> scaled_;
    std::optional<ScratchBuffer<uint32_t>> list_; // columns from storedFrom_ on
};

} // namespace zkr
