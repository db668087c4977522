// The two allocation families. Working buffers come from the run-time heap; blocks that cross the interface
// are movable global memory that stays locked for its whole life, so that the address alone names it.
#include "zkr13n/allocation.h"

#include "core/thread_settings.h"
#include "platform/heap.h"
#include "platform/memory.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

using namespace zkr;

namespace {

void* AllocateLocked(size_t size, uint32_t flags) {
    const HGLOBAL block = platform::GlobalAlloc(flags, std::max<size_t>(size, 1));
    if (block == nullptr) return nullptr;
    void* pointer = platform::GlobalLock(block);
    if (pointer == nullptr) platform::GlobalFree(block);
    return pointer;
}

// A block that cannot be resized is locked again where it lies.
void* ReallocateLocked(void* pointer, size_t size, uint32_t flags) {
    const HGLOBAL block = platform::GlobalHandle(pointer);
    if (block == nullptr) return nullptr;
    platform::GlobalUnlock(block);
    const HGLOBAL resized = platform::GlobalReAlloc(block, std::max<size_t>(size, 1), flags);
    void* locked = platform::GlobalLock(resized != nullptr ? resized : block);
    return resized != nullptr ? locked : nullptr;
}

} // namespace

void* Z_CALL Z_Malloc(size_t size) {
    return platform::HeapMalloc(size);
}

void Z_CALL Z_Free(void* pointer) {
    platform::HeapFree(pointer);
}

void* Z_CALL Z_Realloc(void* pointer, size_t size) {
    return platform::HeapRealloc(pointer, size);
}

void* Z_CALL Z_Calloc(size_t count, size_t size) {
    if (size != 0 && count > SIZE_MAX / size) return nullptr;
    return platform::HeapCalloc(count, size);
}

char* Z_CALL Z_Strtok(char* string, const char* delimiters) {
    char*& rest = CurrentThreadSettings().TokenRest;
    char* token = string != nullptr ? string : rest;
    if (token == nullptr || delimiters == nullptr) return nullptr;
    token += std::strspn(token, delimiters);
    char* end = token + std::strcspn(token, delimiters);
    const bool last = *end == '\0';
    *end = '\0';
    rest = last ? end : end + 1;
    return token != end ? token : nullptr;
}

void* Z_CALL Z_OsAlloc(size_t size) {
    return AllocateLocked(size, GMEM_MOVEABLE | GMEM_SHARE);
}

void* Z_CALL Z_OsAllocInit(size_t size, int32_t clear) {
    return AllocateLocked(size, GMEM_MOVEABLE | GMEM_SHARE | (clear != 0 ? GMEM_ZEROINIT : 0));
}

void* Z_CALL Z_OsReAlloc(void* pointer, size_t size) {
    return pointer == nullptr ? Z_OsAlloc(size) : ReallocateLocked(pointer, size, GMEM_MOVEABLE);
}

void* Z_CALL Z_OsReAllocInit(void* pointer, size_t size) {
    return pointer == nullptr ? Z_OsAllocInit(size, 1)
                              : ReallocateLocked(pointer, size, GMEM_MOVEABLE | GMEM_ZEROINIT);
}

int32_t Z_CALL Z_OsFree(void* pointer) {
    const HGLOBAL block = pointer != nullptr ? platform::GlobalHandle(pointer) : nullptr;
    if (block != nullptr) {
        platform::GlobalUnlock(block);
        platform::GlobalFree(block);
    }
    return 0;
}
