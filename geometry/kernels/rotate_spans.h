// Where a straight walk through a source enters and leaves a rectangle of it, by exact division. Every name here is
// internal to the kernel file that includes it.
#pragma once

#include "geometry/kernels/rotate_kernels.h"

#include <algorithm>

namespace zkr::kernels {
namespace {

// The steps of a walk from the first to before the last one.
struct Span {
    int32_t First, End;
};

// An axis of a walk whose fraction is in the range that its steps keep: from -8192 to 8191, and the other way round
// where they go down. Whole parts then follow from the sum of all steps alone.
class AxisWalk {
  public:
    static bool CanStart(int32_t fraction, int32_t step) {
        constexpr int32_t half = RotateUnit / 2;
        if (step == 0) return fraction > -half && fraction < half;
        return step > 0 ? fraction >= -half && fraction < half : fraction > -half && fraction <= half;
    }

    AxisWalk(int32_t whole, int32_t fraction, int32_t step)
        : sum_(int64_t{whole} * RotateUnit + fraction + Bias(step)), step_(step) {}

    static int32_t Bias(int32_t step) { return RotateUnit / 2 - (step < 0 ? 1 : 0); }

    int64_t WholeAt(int32_t steps) const { return SumAt(steps) >> RotateFractionBits; }
    void At(int32_t steps, int32_t& whole, int32_t& fraction) const {
        whole = static_cast<int32_t>(WholeAt(steps));
        fraction = static_cast<int32_t>(SumAt(steps) - int64_t{whole} * RotateUnit - Bias(step_));
    }

    // Cuts a span to the steps at which the whole part is from low to before high.
    Span Within(int32_t low, int32_t high, Span span) const {
        const auto isInside = [&](int32_t steps) {
            const int64_t whole = WholeAt(steps);
            return whole >= low && whole < high;
        };
        if (span.First >= span.End || (isInside(span.First) && isInside(span.End - 1))) return span;
        if (step_ == 0 || low >= high) return {span.First, span.First};
        const int64_t lowest = int64_t{low} * RotateUnit - sum_,
                      highest = int64_t{high} * RotateUnit - 1 - sum_;
        const int64_t size = step_ < 0 ? -int64_t{step_} : step_;
        const int64_t first = step_ > 0 ? Up(lowest, size) : Up(-highest, size);
        const int64_t last = step_ > 0 ? Down(highest, size) : Down(-lowest, size);
        const int64_t from = std::max<int64_t>(first, span.First), to = std::min<int64_t>(last + 1, span.End);
        if (from >= to) return {span.First, span.First};
        return {static_cast<int32_t>(from), static_cast<int32_t>(to)};
    }

  private:
    int64_t SumAt(int32_t steps) const { return sum_ + int64_t{step_} * steps; }
    static int64_t Down(int64_t a, int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }
    static int64_t Up(int64_t a, int64_t b) { return -Down(-a, b); }

    int64_t sum_; // of whole part and fraction, moved so that its whole units are the whole part
    int32_t step_;
};

} // namespace
} // namespace zkr::kernels
