// Mapped memory: anonymous blocks, zeroed when new, and views of whole files.
#pragma once

#include "zkr13n/platform_types.h"

#include <cstdint>

namespace zkr::storage {

struct MappedView {
    HANDLE Mapping; // null when there is no view
    uint8_t* View;  // null when there is no view
};

// Both leave the view empty when it cannot be made.
bool MapMemory(uint64_t bytes, MappedView& view);
bool MapFile(intptr_t file, MappedView& view);

// Releases a view and its mapping and empties it. An empty view stays empty.
void Unmap(MappedView& view);

} // namespace zkr::storage
