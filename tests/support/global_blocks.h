// Blocks of global memory, as a host has them: through the system on Windows, through the library elsewhere.
#pragma once

#include "zkr13n/surface.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zkr::test {

inline HGLOBAL AllocateGlobal(size_t bytes) {
#ifdef _WIN32
    return GlobalAlloc(GMEM_MOVEABLE, bytes);
#else
    HGLOBAL block = nullptr;
    Z_AllocGlobalBlock(bytes, &block);
    return block;
#endif
}

inline uint8_t* LockGlobal(HGLOBAL block) {
#ifdef _WIN32
    return static_cast<uint8_t*>(GlobalLock(block));
#else
    void* bytes = nullptr;
    Z_LockGlobalBlock(block, &bytes);
    return static_cast<uint8_t*>(bytes);
#endif
}

inline void UnlockGlobal(HGLOBAL block) {
#ifdef _WIN32
    GlobalUnlock(block);
#else
    Z_UnlockGlobalBlock(block);
#endif
}

// Whether there was such a block.
inline bool FreeGlobal(HGLOBAL block) {
#ifdef _WIN32
    return block != nullptr && GlobalFree(block) == nullptr;
#else
    return Z_FreeGlobalBlock(block) == Z_SUCCESS;
#endif
}

inline HGLOBAL GlobalOf(const void* bytes, size_t count) {
    HGLOBAL block = AllocateGlobal(count);
    if (count == 0) return block;
    std::memcpy(LockGlobal(block), bytes, count);
    UnlockGlobal(block);
    return block;
}

} // namespace zkr::test
