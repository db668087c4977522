// Rows of samples at another width: the whole row, or a stretch of it made of the source pixels that this needs.
#pragma once

#include "core/return_codes.h"
#include "core/scratch.h"
#include "geometry/kernels/resample.h"
#include "geometry/resize/nearest_row.h"

#include <optional>

namespace zkr {

enum class Interpolation : uint8_t { Nearest, Linear, Spline };

// Samples as kernels take them; with nearest pixels also one channel of packed pixels of any depth.
struct SampleFormat {
    int32_t Bits; // of a channel, 8 or 16
    int32_t Channels;

    size_t PixelBytes() const { return static_cast<size_t>(Bits / 8 * Channels); }
    size_t TypeIndex() const { return Bits == 8 ? 0 : 1; }
    size_t LayoutIndex() const { return Channels == 1 ? 0 : static_cast<size_t>(Channels - 2); }
};

struct SourceSpan {
    int32_t First, End;
};

class RowResampler {
  public:
    RowResampler() = default;
    RowResampler(const RowResampler&) = delete;
    RowResampler& operator=(const RowResampler&) = delete;

    // Where rows shrink, linear and spline take averages.
    [[nodiscard]] ReturnCode Make(Interpolation method, SampleFormat format, int32_t oldWidth,
                                  int32_t newWidth);

    // Chooses the stretch of the target that Run makes, 1 pixel or more, and says what it is made of.
    SourceSpan Choose(int32_t first, int32_t count);

    // The source begins with pixel `base` of the row, at the chosen span or before it.
    void Run(const uint8_t* source, int32_t base, uint8_t* target);

  private:
    enum class Rule : uint8_t { Nearest, Copy, Linear, Average, Spline };

    [[nodiscard]] ReturnCode MakeLinear();
    [[nodiscard]] ReturnCode MakeAverage();
    [[nodiscard]] ReturnCode MakeSpline();
    SourceSpan SpanOfStretch();
    bool Doubles() const { return newWidth_ == int64_t{oldWidth_} * 2; }

    Rule rule_ = Rule::Copy;
    SampleFormat format_ = {};
    int32_t oldWidth_ = 0, newWidth_ = 0;
    int32_t first_ = 0, count_ = 0;
    SourceSpan span_ = {};
    // Of the whole row; of splines those of the chosen stretch.
    NearestRow nearest_;
    std::optional<ScratchBuffer<kernels::LinearColumn>> linear_;
    std::optional<ScratchBuffer<kernels::AverageColumn>> average_;
    kernels::LinearColumns linearColumns_ = {};
    kernels::AverageColumns averageColumns_ = {};
    std::optional<ScratchBuffer<uint32_t>> pairs_; // and as many reciprocals behind them
    std::optional<ScratchBuffer<float>> inverses_;
    std::optional<ScratchBuffer<uint32_t>> places_;
    std::optional<ScratchBuffer<double>>
        weights_; // of first, middle and last pixels and totals, one behind the other
    std::optional<ScratchBuffer<kernels::SplineColumn>> spline_;
    std::optional<ScratchBuffer<float>> derivatives_; // and behind them as many to work in
};

} // namespace zkr
