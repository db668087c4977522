// Rows of what a device gets, made in groups: of converted pixels, or of levels of gray.
#pragma once

#include "core/return_codes.h"

#include <cstddef>
#include <cstdint>

namespace zkr {

class BandRows {
  public:
    BandRows() = default;
    BandRows(const BandRows&) = delete;
    BandRows& operator=(const BandRows&) = delete;

    virtual int32_t Bits() const = 0;
    // The columns of a row; the first of them is a multiple of 8 where packed pixels demand it.
    virtual int64_t FirstColumn() const = 0;
    virtual size_t Pixels() const = 0;
    // Whether each row depends on the one before it.
    virtual bool RunsForwards() const = 0;

    // Some rows that follow each other.
    [[nodiscard]] virtual ReturnCode Make(int64_t firstRow, size_t rows, uint8_t* target,
                                          size_t rowBytes) = 0;

    // Where rows from this one on stand as the device takes them, rowBytes from one to the next; null where they have to
    // be made. The pixels of such a row are all those of the bitmap.
    virtual const uint8_t* InPlace([[maybe_unused]] int64_t firstRow) { return nullptr; }

  protected:
    ~BandRows() = default;
};

} // namespace zkr
