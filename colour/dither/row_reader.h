// Rows of any depth as pixels of four bytes: blue, green, red and one without meaning.
#pragma once

#include "colour/convert/stages.h"
#include "zkr13n/bitmap.h"

#include <cstddef>
#include <cstdint>

namespace zkr {

struct DitherState;

// The order and the level table are those that the bitmap has when the reader is made.
class RowReader {
  public:
    RowReader(const DitherState& state, const BitmapHandle& bitmap);

    // Reads the pixels from one that is a multiple of 8 on; at most a piece.
    void Read(const uint8_t* row, size_t first, size_t pixels, uint8_t* quads);

  private:
    void AddGray(const DitherState& state, const BitmapHandle& bitmap);
    void LookUpLevels(const uint8_t* words, size_t pixels, uint8_t* quads) const;

    Stages stages_;
    const RGBQUAD* levels_ = nullptr; // gray words are looked up here after the stages
    uint32_t levelCount_ = 0;
    uint32_t mask_ = 0;
    uint32_t shift_ = 0;
};

} // namespace zkr
