// The handle table. Slots lie in chunks that double in size and never move, so that a lookup takes no lock;
// the lock guards making and recycling slots alone.
#include "platform/portable/handle_table.h"

#include "platform/faults.h"

#include <array>
#include <atomic>
#include <bit>
#include <mutex>
#include <new>

namespace zkr::platform {

namespace {

static_assert(sizeof(void*) == 8, "a handle packs 4 bits of kind, 24 of index and 35 of generation");

constexpr uint32_t IndexBits = 24;
constexpr uint32_t FirstChunkSlots = 1024;
constexpr uint32_t ChunkCount = IndexBits - 10;
constexpr uint32_t NoSlot = 0xFFFFFFFFu;

// A slot's state is its generation, a bit for a live handle, and the count of pins.
constexpr uint64_t PinMask = (1u << 28) - 1;
constexpr uint64_t LiveBit = 1u << 28;
constexpr uint32_t GenerationShift = 29;
constexpr uint64_t GenerationMask = (uint64_t{1} << 35) - 1;

struct Slot {
    std::atomic<uint64_t> state{0};
    Object* object = nullptr;
    ObjectKind kind = ObjectKind::None;
    uint32_t nextFree = NoSlot;
};

struct Table {
    std::mutex mutex;
    std::array<std::atomic<Slot*>, ChunkCount> chunks{};
    uint32_t used = 0; // slots ever taken
    uint32_t firstFree = NoSlot;
    uint32_t live = 0;

    Slot* Find(uint32_t index) {
        const uint32_t shifted = index + FirstChunkSlots;
        const auto chunk = static_cast<uint32_t>(std::bit_width(shifted)) - 11;
        if (chunk >= ChunkCount) return nullptr;
        Slot* slots = chunks[chunk].load(std::memory_order_acquire);
        return slots == nullptr ? nullptr : slots + (shifted - (FirstChunkSlots << chunk));
    }

    // A free slot's index, under the lock.
    uint32_t Take() {
        if (firstFree != NoSlot) {
            const uint32_t index = firstFree;
            firstFree = Find(index)->nextFree;
            return index;
        }
        const auto chunk = static_cast<uint32_t>(std::bit_width(used + FirstChunkSlots)) - 11;
        if (chunk >= ChunkCount) return NoSlot;
        if (chunks[chunk].load() == nullptr) {
            auto* slots = new (std::nothrow) Slot[FirstChunkSlots << chunk];
            if (slots == nullptr) return NoSlot;
            chunks[chunk].store(slots, std::memory_order_release);
        }
        return used++;
    }
};

constinit Table table;

// When the library is unloaded with every handle closed, nothing of the table stays behind. It runs after the
// destructors of static objects, which close handles of theirs.
__attribute__((destructor(101))) void ReleaseTable() {
    const std::scoped_lock lock(table.mutex);
    if (table.live != 0) return;
    for (auto& chunk : table.chunks)
        delete[] chunk.exchange(nullptr);
    table.used = 0;
    table.firstFree = NoSlot;
}

uint32_t IndexOf(HANDLE handle) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(handle) >> 4) & ((1u << IndexBits) - 1);
}
uint64_t GenerationOf(HANDLE handle) {
    return reinterpret_cast<uintptr_t>(handle) >> (4 + IndexBits);
}
HANDLE MakeHandle(ObjectKind kind, uint32_t index, uint64_t generation) {
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(kind) | (static_cast<uintptr_t>(index) << 4) |
                                    (generation << (4 + IndexBits)));
}

void Unpin(uint32_t index, Slot& slot) {
    const uint64_t before = slot.state.fetch_sub(1, std::memory_order_acq_rel);
    if ((before & (PinMask | LiveBit)) != 1) return;

    Object* object = slot.object;
    slot.object = nullptr;
    {
        const std::scoped_lock lock(table.mutex);
        slot.nextFree = table.firstFree;
        table.firstFree = index;
        --table.live;
    }
    fault::Released();
    object->Release();
}

} // namespace

HANDLE InsertHandle(ObjectKind kind, Object& object) {
    const std::scoped_lock lock(table.mutex);
    const uint32_t index = table.Take();
    if (index == NoSlot) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    Slot& slot = *table.Find(index);
    slot.object = &object;
    slot.kind = kind;
    uint64_t generation = ((slot.state.load() >> GenerationShift) + 1) & GenerationMask;
    if (generation == 0) generation = 1;
    slot.state.store((generation << GenerationShift) | LiveBit, std::memory_order_release);
    ++table.live;
    fault::Made();
    return MakeHandle(kind, index, generation);
}

Object* PinHandle(ObjectKind kind, HANDLE handle) {
    Slot* slot = ClaimedKind(handle) == kind ? table.Find(IndexOf(handle)) : nullptr;
    if (slot != nullptr) {
        const uint64_t wanted = (GenerationOf(handle) << GenerationShift) | LiveBit;
        uint64_t state = slot->state.load(std::memory_order_acquire);
        while ((state & ~PinMask) == wanted) {
            if (!slot->state.compare_exchange_weak(state, state + 1, std::memory_order_acq_rel)) continue;
            if (slot->kind == kind) return slot->object;
            Unpin(IndexOf(handle), *slot);
            break;
        }
    }
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

void UnpinHandle(HANDLE handle) {
    const uint32_t index = IndexOf(handle);
    Unpin(index, *table.Find(index));
}

bool CloseHandleOfKind(ObjectKind kind, HANDLE handle) {
    if (PinHandle(kind, handle) == nullptr) return false;
    Slot& slot = *table.Find(IndexOf(handle));
    const bool closed = (slot.state.fetch_and(~LiveBit, std::memory_order_acq_rel) & LiveBit) != 0;
    UnpinHandle(handle);
    if (!closed) SetLastError(ERROR_INVALID_HANDLE);
    return closed;
}

uint32_t CountHandles() {
    const std::scoped_lock lock(table.mutex);
    return table.live;
}

} // namespace zkr::platform
