#include "display/paint/placement.h"

#include "core/views.h"

namespace zkr {

int64_t PaintAxis::ScaledSize() const {
    const auto to = static_cast<uint64_t>(DeviceSize), from = static_cast<uint64_t>(Source.Length());
    const uint64_t size = (static_cast<uint64_t>(Size) * to + from / 2) / from;
    return static_cast<int64_t>(std::max<uint64_t>(size, 1));
}

// Whole source lengths and the rest apart, so that no product passes 64 bits.
int64_t PaintAxis::ScaledEdge(int64_t edge) const {
    if (!IsScaled()) return edge;
    const int64_t length = Source.Length();
    int64_t whole = edge / length, rest = edge % length;
    if (rest < 0) {
        --whole;
        rest += length;
    }
    const auto product = static_cast<uint64_t>(rest) * static_cast<uint64_t>(DeviceSize);
    const auto divisor = static_cast<uint64_t>(length);
    return whole * DeviceSize + static_cast<int64_t>(product / divisor + (product % divisor != 0));
}

Placement::Placement(const BitmapHandle& bitmap, const Area& source, const Area& device, int32_t view,
                     bool upsideDown) {
    const ViewParts parts = PartsOf(IsView(view) ? view : view::TopLeft);
    const bool reversesY = parts.ReversesY != upsideDown;
    Turned = parts.IsTurned;
    const Range& alongColumns = Turned ? device.Rows : device.Columns;
    const Range& alongRows = Turned ? device.Columns : device.Rows;
    Columns = {bitmap.Width, source.Columns, alongColumns.From, alongColumns.Length(),
               Turned ? reversesY : parts.ReversesX};
    Rows = {bitmap.Height, source.Rows, alongRows.From, alongRows.Length(),
            Turned ? parts.ReversesX : reversesY};
}

} // namespace zkr
