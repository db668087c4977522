// Region objects. What they hold changes by CombineRgn and OffsetRgn alone, under a lock; everyone else takes
// a copy, which shares the rectangles.
#pragma once

#include "platform/portable/graphics.h"
#include "platform/portable/handle_table.h"
#include "platform/portable/pixel_set.h"

#include <mutex>
#include <utility>

namespace zkr::platform {

struct RegionObject final : Object {
    static constexpr ObjectKind kind = ObjectKind::Region;

    PixelSet Get() {
        const std::scoped_lock lock(mutex);
        return set;
    }
    void Put(PixelSet next) {
        const std::scoped_lock lock(mutex);
        set = std::move(next);
    }
    void Release() override { delete this; }

    std::mutex mutex;
    PixelSet set;
};

// Null, with the last error set, where memory is short.
HRGN MakeRegion(PixelSet set);

inline int Complexity(const PixelSet& set) {
    return set.IsEmpty() ? NULLREGION : set.Count() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

} // namespace zkr::platform
