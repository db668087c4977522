// The run-time heap, the ground of the Z_Malloc family. Null means that memory is short.
#pragma once

#include "platform/faults.h"

#include <cstddef>
#include <cstdlib>

namespace zkr::platform {

inline void* HeapMalloc(size_t size) {
    return fault::Due(fault::Heap) ? nullptr : std::malloc(size);
}
inline void* HeapCalloc(size_t count, size_t size) {
    return fault::Due(fault::Heap) ? nullptr : std::calloc(count, size);
}
// On failure the old block stays valid.
inline void* HeapRealloc(void* pointer, size_t size) {
    return fault::Due(fault::Heap) ? nullptr : std::realloc(pointer, size);
}
inline void HeapFree(void* pointer) {
    std::free(pointer);
}

} // namespace zkr::platform
