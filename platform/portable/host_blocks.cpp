// Global blocks for hosts.
#include "platform/portable/memory.h"
#include "zkr13n/surface.h"

using namespace zkr;
using namespace zkr::platform;

ReturnCode Z_CALL Z_AllocGlobalBlock(size_t size, HGLOBAL* blockOut) {
    if (blockOut == nullptr) return Z_ERROR_ARGUMENT;
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
    if (block == nullptr) return Z_ERROR_MEMORY;
    *blockOut = block;
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_LockGlobalBlock(HGLOBAL block, void** bytesOut) {
    void* bytes = bytesOut == nullptr ? nullptr : GlobalLock(block);
    if (bytes == nullptr) return Z_ERROR_ARGUMENT;
    *bytesOut = bytes;
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_UnlockGlobalBlock(HGLOBAL block) {
    SetLastError(NO_ERROR);
    return GlobalUnlock(block) || GetLastError() == NO_ERROR ? Z_SUCCESS : Z_ERROR_ARGUMENT;
}

ReturnCode Z_CALL Z_GetGlobalBlockSize(HGLOBAL block, size_t* sizeOut) {
    if (sizeOut == nullptr) return Z_ERROR_ARGUMENT;
    SetLastError(NO_ERROR);
    const size_t size = GlobalSize(block);
    if (size == 0 && GetLastError() != NO_ERROR) return Z_ERROR_ARGUMENT;
    *sizeOut = size;
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_FreeGlobalBlock(HGLOBAL block) {
    return block != nullptr && GlobalFree(block) == nullptr ? Z_SUCCESS : Z_ERROR_ARGUMENT;
}
