// GlobalAlloc and its relatives: blocks of the run-time heap with a handle and an entry in the index of
// addresses.
#include "platform/faults.h"
#include "platform/portable/address_index.h"
#include "platform/portable/fork.h"
#include "platform/portable/handle_table.h"
#include "platform/portable/memory.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace zkr::platform {

namespace {

constinit AddressIndex blocks;
const ForkPart forkPart(
    ForkOrder::Inner, [] { blocks.LockAll(); }, [](bool) { blocks.UnlockAll(); });

struct GlobalBlock final : Object, AddressNode {
    static constexpr ObjectKind kind = ObjectKind::Global;

    void* data = nullptr; // null while the block has 0 bytes
    size_t size = 0;
    HGLOBAL handle = nullptr;
    std::atomic<uint32_t> locks{0};

    void Publish() {
        address = data;
        if (data != nullptr) blocks.Add(*this);
    }
    void Withdraw() {
        if (data != nullptr) blocks.Remove(*this);
    }
    void Release() override {
        std::free(data);
        delete this;
    }
};

HGLOBAL OutOfMemory() {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

} // namespace

HGLOBAL GlobalAlloc(UINT flags, size_t bytes) {
    if ((flags & GMEM_MOVEABLE) == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (fault::Due(fault::Global)) return OutOfMemory();

    auto* block = new (std::nothrow) GlobalBlock;
    if (block == nullptr) return OutOfMemory();
    block->size = bytes;
    if (bytes != 0) {
        block->data = (flags & GMEM_ZEROINIT) != 0 ? std::calloc(1, bytes) : std::malloc(bytes);
        if (block->data == nullptr) {
            block->Release();
            return OutOfMemory();
        }
    }
    block->handle = InsertHandle(GlobalBlock::kind, *block);
    if (block->handle == nullptr) {
        block->Release();
        return nullptr;
    }
    block->Publish();
    return block->handle;
}

HGLOBAL GlobalReAlloc(HGLOBAL handle, size_t bytes, UINT flags) {
    const Pin<GlobalBlock> block(handle);
    if (!block) return nullptr;
    if (fault::Due(fault::Global)) return OutOfMemory();

    block->Withdraw();
    if (bytes == 0) {
        std::free(block->data);
        block->data = nullptr;
    } else {
        void* data = std::realloc(block->data, bytes);
        if (data == nullptr) {
            block->Publish();
            return OutOfMemory();
        }
        block->data = data;
        if ((flags & GMEM_ZEROINIT) != 0 && bytes > block->size) {
            std::memset(static_cast<char*>(data) + block->size, 0, bytes - block->size);
        }
    }
    block->size = bytes;
    block->Publish();
    return handle;
}

HGLOBAL GlobalFree(HGLOBAL handle) {
    if (handle == nullptr) return nullptr;
    {
        const Pin<GlobalBlock> block(handle);
        if (!block || !CloseHandleOfKind(GlobalBlock::kind, handle)) return handle;
        block->Withdraw();
    }
    return nullptr;
}

void* GlobalLock(HGLOBAL handle) {
    const Pin<GlobalBlock> block(handle);
    if (!block || block->data == nullptr) return nullptr;
    ++block->locks;
    return block->data;
}

BOOL GlobalUnlock(HGLOBAL handle) {
    const Pin<GlobalBlock> block(handle);
    if (!block) return FALSE;
    uint32_t locks = block->locks.load();
    do {
        if (locks == 0) {
            SetLastError(ERROR_NOT_LOCKED);
            return FALSE;
        }
    } while (!block->locks.compare_exchange_weak(locks, locks - 1));
    SetLastError(NO_ERROR);
    return locks > 1 ? TRUE : FALSE;
}

HGLOBAL GlobalHandle(const void* address) {
    HGLOBAL handle = nullptr;
    if (!blocks.Find(address, [&](AddressNode& node) { handle = static_cast<GlobalBlock&>(node).handle; })) {
        SetLastError(ERROR_INVALID_HANDLE);
    }
    return handle;
}

size_t GlobalSize(HGLOBAL handle) {
    const Pin<GlobalBlock> block(handle);
    return block ? block->size : 0;
}

} // namespace zkr::platform
