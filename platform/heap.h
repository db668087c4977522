// The run-time heap, the ground of the Z_Malloc family. Null means that memory is short.
#pragma once

#include "platform/faults.h"

#include <cstddef>
#include <cstdlib>

namespace zkr::platform {

inline void* HeapMade(void* pointer) {
    if (pointer != nullptr) fault::Made();
    return pointer;
}
inline void* HeapMalloc(size_t size) {
    return fault::Due(fault::Heap) ? nullptr : HeapMade(std::malloc(size));
}
inline void* HeapCalloc(size_t count, size_t size) {
    return fault::Due(fault::Heap) ? nullptr : HeapMade(std::calloc(count, size));
}
inline void HeapFree(void* pointer) {
    if (pointer != nullptr) fault::Released();
    std::free(pointer);
}
// On failure the old block stays valid. A size of 0 releases a block, which run-time libraries do not agree
// upon.
inline void* HeapRealloc(void* pointer, size_t size) {
    if (pointer == nullptr) return HeapMalloc(size);
    if (size == 0) {
        HeapFree(pointer);
        return nullptr;
    }
    return fault::Due(fault::Heap) ? nullptr : std::realloc(pointer, size);
}

} // namespace zkr::platform
