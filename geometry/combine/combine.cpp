// Z_CombineBitmap: the test of its arguments, and where its rectangles lie in storage.
#include "zkr13n/combine.h"

#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/views.h"
#include "geometry/combine/combine_code.h"
#include "geometry/combine/combine_rows.h"
#include "zkr13n/flip.h"
#include "zkr13n/views.h"

#include <algorithm>

namespace zkr::geometry {

namespace {

struct Area {
    int64_t Left, Top, Width, Height;
};

// A mapping of rectangles that exchanges and reverses axes, found by mapping three pixels: rectangles that lie
// far away are then worked out in 64 bits.
class AreaMap {
  public:
    // map(rectangle) changes its argument.
    template <typename Map> explicit AreaMap(Map map) {
        const auto place = [&](int32_t x, int32_t y) {
            RECT pixel = {x, y, x + 1, y + 1};
            map(pixel);
            return Place{pixel.left, pixel.top};
        };
        origin_ = place(0, 0);
        const Place right = place(1, 0), below = place(0, 1);
        right_ = {right.X - origin_.X, right.Y - origin_.Y};
        below_ = {below.X - origin_.X, below.Y - origin_.Y};
    }

    Area operator()(const Area& area) const {
        const Place first = Mapped(area.Left, area.Top);
        const Place last = Mapped(area.Left + area.Width - 1, area.Top + area.Height - 1);
        const bool isTurned = right_.X == 0;
        return {std::min(first.X, last.X), std::min(first.Y, last.Y), isTurned ? area.Height : area.Width,
                isTurned ? area.Width : area.Height};
    }

  private:
    struct Place {
        int64_t X, Y;
    };

    Place Mapped(int64_t x, int64_t y) const {
        return {origin_.X + right_.X * x + below_.X * y, origin_.Y + right_.Y * x + below_.Y * y};
    }

    Place origin_{}, right_{}, below_{};
};

// A view that there is not leaves rectangles as they are.
AreaMap ToStorage(BitmapHandle& bitmap) {
    return AreaMap([&](RECT& rectangle) { Z_RectToBitmap(&bitmap, VIEW_TOP_LEFT, &rectangle); });
}

AreaMap ToView(BitmapHandle& bitmap, int32_t value) {
    return AreaMap([&](RECT& rectangle) {
        Z_RectToBitmap(&bitmap, VIEW_TOP_LEFT, &rectangle);
        Z_RectFromBitmap(&bitmap, static_cast<uint32_t>(value), &rectangle);
    });
}

bool CanBeSource(const BitmapHandle* source, const BitmapHandle& target) {
    return IsAllocated(source) && source->BitsPerPixel == target.BitsPerPixel &&
           source->Order == target.Order;
}

CombinedAreas AreasOf(const Area& target, const Area& source) {
    return {target.Left, target.Top, target.Width, target.Height, source.Left, source.Top};
}

// From a copy of the source in the target's view.
ReturnCode CombineTurned(BitmapHandle& target, BitmapHandle& source, const CombinedAreas& areas,
                         uint32_t code) {
    constexpr uint32_t flags = Z_DUP_DATA | Z_DUP_REGION;
    BitmapHandle turned{};
    if (Z_IntChangeBitmapViewPerspective(&turned, &source, target.ViewPerspective, flags) != code::Success)
        return code::OutOfMemory;
    const ReturnCode status = CombineAreas(target, &turned, areas, code);
    Z_FreeDuplicateBitmap(&turned, flags);
    return status;
}

} // namespace

} // namespace zkr::geometry

using namespace zkr;
using namespace zkr::geometry;

ReturnCode Z_CALL Z_CombineBitmap(BitmapHandle* destination, int32_t left, int32_t top, int32_t width,
                                  int32_t height, BitmapHandle* source, int32_t sourceLeft, int32_t sourceTop,
                                  uint32_t flags) {
    if (!IsAllocated(destination) || !AreCombineFlags(flags)) return code::InvalidArgument;
    const uint32_t compiled = CompileCombineFlags(flags, destination->BitsPerPixel == 1);
    if ((compiled & combine_code::Operation) == combine_code::Keep) return ReportNothingDone();

    const Area area = ToStorage(*destination)({left, top, width, height});
    if ((compiled & combine_code::ReadsSource) == 0)
        return CombineAreas(*destination, nullptr, AreasOf(area, {}), compiled);
    if (!CanBeSource(source, *destination)) return code::InvalidArgument;
    const Area sourceArea = {sourceLeft, sourceTop, width, height};
    if (DifferInRowOrderAtMost(destination->ViewPerspective, source->ViewPerspective))
        return CombineAreas(*destination, source, AreasOf(area, ToStorage(*source)(sourceArea)), compiled);
    const AreaMap toView = ToView(*source, destination->ViewPerspective);
    return CombineTurned(*destination, *source, AreasOf(area, toView(sourceArea)), compiled);
}
