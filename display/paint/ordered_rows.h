// Rows of 24 bits dithered by thresholds in one pass, the paint table included, for devices of 4 and 8 bits.
#pragma once

#include "core/return_codes.h"
#include "core/scratch.h"
#include "display/kernels/ordered.h"

#include <cstdint>
#include <optional>

namespace zkr {

struct OrderedRequest {
    int32_t DeviceClass;
    const kernels::ThresholdMatrix& Matrix;
    const uint8_t* PaintTable; // null for none
    bool RedFirst;
    bool ToCube; // of 8 bits: to the cube of 216 colours
};

class OrderedRows {
  public:
    explicit OrderedRows(const OrderedRequest& request) : request_(request) {}

    // Whether it can be done at all; 4 bits want a table that never falls and begins with 0.
    static bool Serves(const OrderedRequest& request);

    [[nodiscard]] ReturnCode Prepare();
    void Make(const uint8_t* pixels, int64_t row, uint8_t* target, size_t count);

  private:
    void FillTables(size_t row);
    uint8_t Threshold(uint8_t threshold) const;

    OrderedRequest request_;
    uint8_t thresholds_[kernels::ThresholdSide][kernels::ThresholdSide];
    std::optional<ScratchBuffer<uint8_t>> tables_; // of 8 bits, by row of the matrix, made when a row is met
    uint32_t filled_ = 0;
};

} // namespace zkr
