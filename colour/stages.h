// A few row kernels one behind the other, with the working rows between them.
#pragma once

#include "colour/kernels/row_kernel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zkr {

class Stages {
  public:
    // A multiple of 8, so that every piece of a row begins on a byte.
    static constexpr size_t PiecePixels = 512;

    Stages() = default;
    Stages(const Stages&) = delete;
    Stages& operator=(const Stages&) = delete;

    // At most four stages, of at most eight bytes a pixel.
    void Append(kernels::RowKernel kernel, const kernels::RowParameters& parameters = {}) {
        stages_[count_++] = {kernel, parameters};
    }

    // A piece of a row to what the last stage makes of it, in a working row; without stages the piece itself.
    const uint8_t* Run(const uint8_t* source, size_t pixels) {
        for (size_t i = 0; i < count_; ++i)
            source = RunStage(i, source, work_[i & 1], pixels);
        return source;
    }

    // A whole row; there is at least one stage.
    void RunRow(const uint8_t* source, size_t sourceBits, uint8_t* target, size_t targetBits, size_t pixels) {
        const size_t piece = count_ == 1 ? pixels : PiecePixels;
        for (size_t done = 0; done < pixels; done += piece) {
            const size_t now = std::min(piece, pixels - done);
            const uint8_t* from = source + done / 8 * sourceBits;
            for (size_t i = 0; i + 1 < count_; ++i)
                from = RunStage(i, from, work_[i & 1], now);
            RunStage(count_ - 1, from, target + done / 8 * targetBits, now);
        }
    }

  private:
    struct Stage {
        kernels::RowKernel Kernel;
        kernels::RowParameters Parameters;
    };

    const uint8_t* RunStage(size_t index, const uint8_t* source, uint8_t* target, size_t pixels) {
        stages_[index].Kernel(source, target, pixels, stages_[index].Parameters);
        return target;
    }

    static constexpr size_t MostStages = 4;
    Stage stages_[MostStages] = {};
    size_t count_ = 0;
    alignas(8) uint8_t work_[2][PiecePixels * 8];
};

} // namespace zkr
