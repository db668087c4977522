// Rows of levels of gray that a scaled bitmap of 1 bit is shown in: the share of white in the area that a pixel covers.
#pragma once

#include "core/scratch.h"
#include "display/paint/band_rows.h"
#include "display/paint/placement.h"
#include "display/paint/source_rows.h"
#include "zkr13n/bitmap.h"

#include <cstdint>
#include <optional>

namespace zkr {

// The source pixels that a target pixel covers along an axis, by weight.
struct CoverageCell {
    int32_t First;
    int32_t Count; // 1 and more
    uint32_t FirstWeight, MiddleWeight, LastWeight;

    uint32_t Weight(int32_t pixel) const {
        return pixel == 0 ? FirstWeight : pixel == Count - 1 ? LastWeight : MiddleWeight;
    }
    uint64_t Total() const {
        if (Count == 1) return FirstWeight;
        return FirstWeight + uint64_t{LastWeight} + static_cast<uint64_t>(Count - 2) * MiddleWeight;
    }
    friend bool operator==(const CoverageCell&, const CoverageCell&) = default;
};

// An axis of a source that is shown in a number of target pixels.
class CoverageAxis {
  public:
    // Exact: parts of source pixels count; else only whole ones, at least one.
    CoverageAxis(int32_t size, const Range& source, int64_t targetSize, bool exact);

    // How many whole source pixels each cell has, or 0 where that differs.
    int32_t WholePixels() const { return pixel_ == 1 && cell_ <= 8 ? static_cast<int32_t>(cell_) : 0; }

    // The cell of a target pixel that begins on the bitmap; what hangs over its edges is cut off.
    CoverageCell At(int64_t target) const;

  private:
    int32_t size_;
    int64_t from_;
    uint64_t pixel_; // what a source pixel and a target pixel measure, in a common unit
    uint64_t cell_;
    bool exact_;
};

struct CoverageRequest {
    Area Source;           // what the destination shows
    int64_t Width, Height; // of the destination, in the order of storage's axes
    Area Part;             // of the destination, what is made
    bool Reversed;         // white is 0
    bool Exact;
};

class CoverageRows final : public BandRows {
  public:
    // The bitmap is locked as long as rows are made.
    CoverageRows(BitmapHandle& bitmap, const CoverageRequest& request);

    [[nodiscard]] ReturnCode Prepare();

    int32_t Bits() const override { return 8; }
    int64_t FirstColumn() const override { return request_.Part.Columns.From - lead_; }
    size_t Pixels() const override { return static_cast<size_t>(request_.Part.Columns.To - FirstColumn()); }
    bool RunsForwards() const override { return false; }
    [[nodiscard]] ReturnCode Make(int64_t firstRow, size_t rows, uint8_t* target, size_t rowBytes) override;

  private:
    void FindSquares();
    template <size_t side> [[nodiscard]] ReturnCode MakeSquares(int32_t firstRow, uint8_t* target);
    [[nodiscard]] ReturnCode MakeRow(const CoverageCell& cell, uint8_t* target);

    CoverageRequest request_;
    CoverageAxis columns_, rows_;
    Range sourceColumns_{};
    SourceRows source_;
    std::optional<ScratchBuffer<CoverageCell>> cells_; // of the columns of a row
    std::optional<ScratchBuffer<uint32_t>> sums_;
    size_t groups_ = 0;
    int32_t side_ = 0;                           // of squares of source pixels, where kernels count them
    int64_t lead_ = 0;                           // columns in front, so that a row begins on a byte
    std::optional<ScratchBuffer<uint8_t>> kept_; // rows of a square that the storage gives no address of
};

} // namespace zkr
