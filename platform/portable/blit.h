// The one road by which pixels come onto a surface: a rectangle, what lies under it, and a raster operation.
#pragma once

#include "platform/portable/brushes.h"
#include "platform/portable/pixel_rows.h"
#include "platform/portable/pixel_set.h"
#include "platform/portable/raster_operation.h"

namespace zkr::platform {

__extension__ using Wide = __int128;

// One direction of a rectangle's way from source to target. A negative extent runs backwards from its start,
// which belongs to it like that of a positive one.
struct Axis {
    int64_t to = 0;
    int64_t toExtent = 0;
    int64_t from = 0;
    int64_t fromExtent = 0;

    int64_t First() const { return toExtent < 0 ? to + toExtent + 1 : to; }
    int64_t End() const { return toExtent < 0 ? to + 1 : to + toExtent; }
    // The source's place for one of the target's: the middle of a pixel decides.
    int64_t Source(int64_t at) const {
        const int64_t extent = toExtent < 0 ? -toExtent : toExtent;
        const int64_t reach = fromExtent < 0 ? -fromExtent : fromExtent;
        const int64_t step = toExtent < 0 ? to - at : at - to;
        const int64_t moved =
            extent == reach ? step : static_cast<int64_t>(Wide{2 * step + 1} * reach / (2 * extent));
        return fromExtent < 0 ? from - moved : from + moved;
    }
    bool RunsAlong() const { return toExtent == fromExtent; }
};

struct Blit {
    Pixels target;
    const PixelSet* clip = nullptr; // null: the whole target
    Axis x, y;
    RasterOperation operation{0};
    const PreparedBrush* brush = nullptr; // where the operation needs a pattern
    const Pixels* source = nullptr;       // where it needs one; shares no memory with the target
    MonochromeColours colours;

    bool Run() const; // false where memory is short
};

} // namespace zkr::platform
