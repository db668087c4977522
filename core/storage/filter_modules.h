// The modules that compress strips: loaded from the library's own folder when a bitmap first needs one,
// counted while bitmaps use them, and kept for the next.
#pragma once

#include "zkr13n/codes.h"
#include "zkr13n/filter.h"

#include <cstdint>

namespace zkr::storage {

struct FilterEntries {
    FilterLoadBuffer* Load;
    FilterSaveBuffer* Save;
};

enum class Filter : int32_t { Colour = 0, Bitonal = 1 };

// Adds a user. ColourFilterMissing or FaxFilterMissing where the module cannot be had.
[[nodiscard]] ReturnCode AcquireFilter(Filter filter);

// Takes a user away. The module stays loaded.
void ReleaseFilter(Filter filter);

// The entries of a module in use.
FilterEntries& EntriesOf(Filter filter);

// Unloads the modules that nobody uses.
void UnloadUnusedFilters();

} // namespace zkr::storage
