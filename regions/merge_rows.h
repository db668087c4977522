// Rows of a set operation: the runs of two rows, merged, for one pair of rows or for several in step.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace zkr {

// An operation as a truth table: bit 2 * (in a) + (in b) says whether such a pixel is in the result. Bit 0 is never
// set.
enum class SetOperation : uint32_t { Intersect = 0b1000, Unite = 0b1110, Subtract = 0b0100, Xor = 0b0110 };

constexpr bool Keeps(SetOperation operation, bool inA, bool inB) {
    return (static_cast<uint32_t>(operation) >> (2 * inA + inB) & 1) != 0;
}

// Any operation, edge by edge. Writes the end points of the result, and perhaps one entry behind them that means
// nothing; gives their number. In the middle of a row nothing is decided by a jump: edges come in an order that no
// processor guesses.
template <SetOperation operation>
size_t MergeEdges(std::span<const int32_t> a, std::span<const int32_t> b, int32_t* out) {
    constexpr auto truth = static_cast<uint32_t>(operation);
    size_t i = 0, j = 0, count = 0; // an odd number of edges passed means inside
    while (i < a.size() && j < b.size()) {
        const int32_t edgeOfA = a[i], edgeOfB = b[j];
        i += edgeOfA <= edgeOfB;
        j += edgeOfB <= edgeOfA;
        const size_t inside = truth >> ((i & 1) * 2 + (j & 1)) & 1;
        out[count] = std::min(edgeOfA, edgeOfB);
        count += (inside ^ count) & 1;
    }
    if constexpr (Keeps(operation, true, false))
        for (; i < a.size(); ++i)
            out[count++] = a[i];
    if constexpr (Keeps(operation, false, true))
        for (; j < b.size(); ++j)
            out[count++] = b[j];
    return count;
}

// The stretches that two lists of stretches share, on its way. A step takes the shorter stretch and has to wait for the
// one before, so that it pays to let several rows go in step.
class Overlap {
  public:
    // Two entries more than the result has are written.
    void Begin(std::span<const int32_t> a, std::span<const int32_t> b, int32_t* out) {
        a_ = a.data();
        b_ = b.data();
        endOfA_ = a_ + a.size();
        endOfB_ = b_ + b.size();
        start_ = out_ = out;
    }

    // As many as can be done whatever comes.
    size_t SafeSteps() const { return static_cast<size_t>(std::min(endOfA_ - a_, endOfB_ - b_)) / 2; }

    void Step() {
        const int64_t startOfA = a_[0], startOfB = b_[0], aheadOfB = startOfA - startOfB;
        const int64_t endOfA = a_[1], endOfB = b_[1], beyondB = endOfA - endOfB;
        const int64_t start = startOfB + (aheadOfB & ~(aheadOfB >> 63)),
                      end = endOfB + (beyondB & beyondB >> 63);
        out_[0] = static_cast<int32_t>(start);
        out_[1] = static_cast<int32_t>(end);
        out_ += TwoIfNegative(start - end);
        a_ += TwoIfNegative(beyondB - 1);
        b_ += TwoIfNegative(~beyondB);
    }

    // The rest; gives the end points of all.
    std::span<const int32_t> Finish() {
        while (const size_t steps = SafeSteps())
            for (size_t i = 0; i < steps; ++i)
                Step();
        return {start_, out_};
    }

  private:
    // By the sign, so that no compiler makes a jump of it: which way it goes is anybody's guess.
    static ptrdiff_t TwoIfNegative(int64_t value) { return static_cast<ptrdiff_t>(value >> 63 & 2); }

    const int32_t *a_, *b_, *endOfA_, *endOfB_;
    int32_t *start_, *out_;
};

// Four rows, as many as the processor's registers take.
inline void OverlapInStep(std::array<Overlap, 4>& overlaps) {
    auto [a, b, c, d] = overlaps;
    while (size_t steps = std::min({a.SafeSteps(), b.SafeSteps(), c.SafeSteps(), d.SafeSteps()})) {
        for (; steps > 0; --steps) {
            a.Step();
            b.Step();
            c.Step();
            d.Step();
        }
    }
    overlaps = {a, b, c, d};
}

// What lies between runs, as stretches: the runs' end points with an end of the number line on either side. No edge
// stands there.
inline std::span<const int32_t> WriteGaps(std::span<const int32_t> runs, int32_t* out) {
    out[0] = std::numeric_limits<int32_t>::min();
    std::copy(runs.begin(), runs.end(), out + 1);
    out[runs.size() + 1] = std::numeric_limits<int32_t>::max();
    return {out, runs.size() + 2};
}

} // namespace zkr
