// Rows of any depth as pixels of four bytes: blue, green, red and one without meaning.
#pragma once

#include "colour/kernels/dither_rows.h"
#include "colour/kernels/row_kernel.h"
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
    void Add(kernels::RowKernel kernel, const kernels::RowParameters& parameters);
    void Add(kernels::Source source, kernels::Target target, const kernels::RowParameters& parameters);
    void LookUpLevels(const uint8_t* words, size_t pixels, uint8_t* quads) const;

    struct Stage {
        kernels::RowKernel Kernel;
        kernels::RowParameters Parameters;
    };
    size_t bits_;
    int32_t stageCount_ = 0;
    Stage stages_[3];

    const RGBQUAD* levels_ = nullptr; // gray words are looked up here after the stages
    uint32_t levelCount_ = 0;
    uint32_t mask_ = 0;
    uint32_t shift_ = 0;
    uint8_t between_[2][kernels::DitherPiece * 2]; // words at most
};

} // namespace zkr
