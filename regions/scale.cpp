// Scaling: every coordinate is mapped by itself, so that runs and rows that touched still touch, and what becomes
// empty vanishes.
#include "regions/scale.h"

#include <algorithm>
#include <cstdlib>

namespace zkr {

namespace {

class Axis {
  public:
    Axis(int32_t numerator, int32_t denominator, bool roundsUp)
        : numerator_(numerator), denominator_(denominator), added_(roundsUp ? int64_t{denominator} - 1 : 0) {}

    int32_t operator()(int32_t value) const {
        return Saturated((value * numerator_ + added_) / denominator_);
    }

  private:
    int64_t numerator_, denominator_, added_;
};

// Halves the fraction until the products of both bounds fit 32 bits, or one of its terms is used up.
void KeepProductsShort(int32_t first, int32_t end, int32_t& numerator, int32_t& denominator) {
    const int64_t reach = std::max(std::abs(int64_t{first}), std::abs(int64_t{end}));
    while (numerator != 0 && reach > std::numeric_limits<int32_t>::max() / std::abs(int64_t{numerator})) {
        if (numerator == -1 && denominator == -1) break; // halves of -1 are -1
        numerator >>= 1;
        denominator >>= 1;
        if (denominator == 0) {
            denominator = 1;
            break;
        }
    }
}

bool ChangesNothing(const RegionScale& scale) {
    return scale.XNumerator == scale.XDenominator && scale.YNumerator == scale.YDenominator;
}

ReturnCode ScaleRows(const RegionHandle& region, const Axis& x, const Axis& y, RegionBuilder& builder) {
    ReturnCode status = code::Success;
    int32_t from = y(region.Top);
    for (int32_t row = region.Top; row < region.Bottom && status == code::Success; ++row) {
        const int32_t to = y(row + 1);
        if (from == to) continue;
        const Runs runs = RowRuns(region, row);
        for (size_t i = 0; i < runs.size(); i += 2)
            builder.AddRun(x(runs[i]), x(runs[i + 1]));
        status = builder.EndRows(int64_t{to} - from);
        from = to;
    }
    return status;
}

ReturnCode Scale(RegionHandle& region, const Axis& x, const Axis& y) {
    if (IsEmpty(region)) return code::Success;
    const PixelRect area = {x(region.Left), y(region.Top), x(region.Right), y(region.Bottom)};
    if (area.IsEmpty()) {
        EmptyRegion(region);
        return code::Success;
    }
    RegionBuilder builder;
    ReturnCode status = builder.Begin(area, 0, EntriesOf(region));
    if (status == code::Success) status = ScaleRows(region, x, y, builder);
    if (status != code::Success) return status;
    OwnedRegion scaled;
    builder.Finish(scaled);
    ReplaceRuns(region, scaled);
    return code::Success;
}

} // namespace

ReturnCode ScaleRegion(RegionHandle* region, const RegionScale& scale) {
    if (region == nullptr || scale.XDenominator == 0 || scale.YDenominator == 0) return code::InvalidArgument;
    if (ChangesNothing(scale)) return code::Success;
    RegionScale kept = scale;
    KeepProductsShort(region->Left, region->Right, kept.XNumerator, kept.XDenominator);
    KeepProductsShort(region->Top, region->Bottom, kept.YNumerator, kept.YDenominator);
    return Scale(*region, Axis(kept.XNumerator, kept.XDenominator, true),
                 Axis(kept.YNumerator, kept.YDenominator, true));
}

ReturnCode ScaleRegionForDisplay(RegionHandle* region, const RegionScale& scale, bool roundsUpY) {
    if (region == nullptr || scale.XDenominator == 0 || scale.YDenominator == 0) return code::InvalidArgument;
    if (ChangesNothing(scale)) return code::Success;
    return Scale(*region, Axis(scale.XNumerator, scale.XDenominator, true),
                 Axis(scale.YNumerator, scale.YDenominator, roundsUpY));
}

} // namespace zkr
