// Which source pixels a target pixel is made of, by each rule of resampling. The rules hold for rows as they do for
// columns.
#pragma once

#include "geometry/kernels/resample.h"

#include <cstdint>

namespace zkr {

// Each source pixel becomes a stretch of the target and lies in its middle; from there the target goes to the next one.
// The first stretch is flat up to its middle, and the last one behind it.
kernels::LinearColumn LinearAt(int32_t column, int32_t oldSize, int32_t newSize);

// Hands out the target pixels of the area rule one after the other. Positions add up in floating point, and an end that
// reaches the last source pixel's end is drawn back to its beginning.
class AverageSteps {
  public:
    AverageSteps(int32_t oldSize, int32_t newSize)
        : oldSize_(oldSize), ratio_(static_cast<double>(oldSize) / static_cast<double>(newSize)) {}

    kernels::AverageColumn Next();

  private:
    int32_t oldSize_;
    double ratio_;
    double begin_ = 0;
};

// The part of a row that splines are made over for a stretch of the target.
struct SplineWindow {
    SplineWindow(int32_t oldSize, int32_t newSize, int32_t first, int32_t count);

    // Source pixels for each target pixel, and how often the first target pixel is repeated to bring source pixels to the
    // middle of their stretches.
    static float Ratio(int32_t oldSize, int32_t newSize) {
        return static_cast<float>(oldSize) / static_cast<float>(newSize);
    }
    static int32_t Repeats(float ratio) { return static_cast<int32_t>(0.5f / ratio); }

    // Columns count source pixels from the row's start. As many as the window was made for.
    void Fill(kernels::SplineColumn* columns) const;

    int32_t First, End; // source pixels

  private:
    int32_t target_, count_;
    int32_t start_;      // the target pixel without the repeated ones before it
    int32_t startPixel_; // the source pixel there
    float ratio_;
};

} // namespace zkr
