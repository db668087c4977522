// A bitmap seen at another size, one stretch of a row at a time. What a request has made stays for the next one, so that
// the same stretch of a neighbouring row reads at most one row of the source.
#pragma once

#include "geometry/resize/output_rows.h"
#include "geometry/resize/work_rows.h"

namespace zkr {

class RowStream {
  public:
    RowStream() = default;
    RowStream(const RowStream&) = delete;
    RowStream& operator=(const RowStream&) = delete;
    ~RowStream();

    // The request's size is complete.
    [[nodiscard]] ReturnCode Make(BitmapHandle* bitmap, const OutputRequest& request, RowReader reader);

    [[nodiscard]] ReturnCode Get(uint8_t* target, int32_t row, int32_t column, uint32_t bytes);

  private:
    static constexpr int MostRows = 4;

    [[nodiscard]] ReturnCode MakeRows(const BitmapHandle& bitmap);
    [[nodiscard]] ReturnCode Reduce(int32_t row);
    [[nodiscard]] ReturnCode EnlargeNearest(int32_t row, bool isNext);
    [[nodiscard]] ReturnCode EnlargeLinear(int32_t row, bool isNext);
    [[nodiscard]] ReturnCode EnlargeSpline(int32_t row, bool isNext);
    [[nodiscard]] ReturnCode FetchAround();
    [[nodiscard]] ReturnCode MoveDown();
    [[nodiscard]] ReturnCode MoveUp();
    [[nodiscard]] ReturnCode FetchOrCopy(int32_t row, int index, int neighbour);
    int32_t Shifted(int32_t row) const;
    size_t SampleCount() const;

    Interpolation method_ = Interpolation::Nearest;
    int32_t oldHeight_ = 0, newWidth_ = 0, newHeight_ = 0;
    bool enlargesRows_ = false;
    int32_t stepY_ = 0, remainderY_ = 0; // source rows for each target row that a reduction counts

    WorkRows work_;
    OutputRows output_;
    BitmapHandle* locked_ = nullptr;
    int32_t lockedBefore_ = 0;

    std::optional<ScratchBuffer<uint8_t>> rows_[MostRows];
    uint8_t* row_[MostRows] = {}; // linear: the two around the wanted place; spline: the four
    std::optional<ScratchBuffer<uint8_t>> made_;
    const uint8_t* result_ = nullptr;           // the working row to be written
    std::optional<ScratchBuffer<double>> sums_; // of whole rows, and therefore exact

    // The request before.
    bool isValid_ = false;
    int32_t column_ = 0, count_ = 0;
    uint32_t bytes_ = 0;
    int32_t lastRow_ = 0; // shifted
    int32_t sourceRow_ = 0;
    float fraction_ = 0, ratio_ = 1; // splines: between two source rows, and how far a row goes on
};

} // namespace zkr
