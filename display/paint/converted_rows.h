// Rows of a source, converted.
#pragma once

#include "display/paint/band_rows.h"
#include "display/paint/row_conversion.h"
#include "display/paint/source_rows.h"

namespace zkr {

class ConvertedRows final : public BandRows {
  public:
    // Both are prepared, and stay.
    ConvertedRows(SourceRows& source, RowConversion& conversion) : source_(source), conversion_(conversion) {}

    int32_t Bits() const override { return conversion_.Bits(); }
    int64_t FirstColumn() const override {
        return source_.FirstColumn() + static_cast<int64_t>(conversion_.Skipped());
    }
    size_t Pixels() const override { return source_.Pixels() - conversion_.Skipped(); }
    bool RunsForwards() const override { return conversion_.RunsForwards(); }
    [[nodiscard]] ReturnCode Make(int64_t firstRow, size_t rows, uint8_t* target, size_t rowBytes) override;
    const uint8_t* InPlace(int64_t firstRow) override;

  private:
    SourceRows& source_;
    RowConversion& conversion_;
};

} // namespace zkr
