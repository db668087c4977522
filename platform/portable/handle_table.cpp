// The handle table. Slots lie in chunks that double in size and never move, so that a lookup takes no lock;
// locks guard making and recycling slots alone.
#include "platform/portable/handle_table.h"

#include "platform/faults.h"
#include "platform/portable/fork.h"
#include "platform/portable/latch.h"

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
    uint32_t nextFree = NoSlot;
    ObjectKind kind = ObjectKind::None;
    uint16_t home = 0; // the stripe that it goes back to
};

// The free slots of some threads. Each thread has one stripe, and a stripe takes slots in batches that fill
// lines of the cache, so that threads that make handles meet neither at a lock nor in a line.
constexpr uint32_t StripeCount = 64;
constexpr uint32_t BatchSlots = 64;
constexpr size_t LineBytes = 64;
static_assert(BatchSlots * sizeof(Slot) % LineBytes == 0 && FirstChunkSlots % BatchSlots == 0);

struct alignas(LineBytes) Stripe {
    Latch latch;
    uint32_t firstFree = NoSlot;
    uint32_t unused = 0; // slots of the last batch that have never been taken
    uint32_t unusedEnd = 0;
    uint32_t live = 0;
};

struct Table {
    std::array<std::atomic<Slot*>, ChunkCount> chunks{};
    std::array<Stripe, StripeCount> stripes{};
    alignas(LineBytes) std::mutex growth; // taken under a stripe's lock
    uint32_t used = 0;                    // slots in batches

    Slot* Find(uint32_t index) {
        const uint32_t shifted = index + FirstChunkSlots;
        const auto chunk = static_cast<uint32_t>(std::bit_width(shifted)) - 11;
        if (chunk >= ChunkCount) return nullptr;
        Slot* slots = chunks[chunk].load(std::memory_order_acquire);
        return slots == nullptr ? nullptr : slots + (shifted - (FirstChunkSlots << chunk));
    }

    // A batch for a stripe that has none left, under its lock.
    bool TakeBatch(Stripe& stripe) {
        ExpectTheEnd();
        const std::scoped_lock lock(growth);
        const auto chunk = static_cast<uint32_t>(std::bit_width(used + FirstChunkSlots)) - 11;
        if (chunk >= ChunkCount) return false;
        if (chunks[chunk].load() == nullptr) {
            auto* slots = new (std::align_val_t{LineBytes}, std::nothrow) Slot[FirstChunkSlots << chunk];
            if (slots == nullptr) return false;
            chunks[chunk].store(slots, std::memory_order_release);
        }
        stripe.unused = used;
        stripe.unusedEnd = used += BatchSlots;
        return true;
    }

    // A slot of the stripe, and a new batch for it where it may grow; its index, or NoSlot.
    uint32_t Take(uint32_t home, bool grows) {
        Stripe& stripe = stripes[home];
        const std::scoped_lock lock(stripe.latch);
        uint32_t index = stripe.firstFree;
        if (index != NoSlot) {
            stripe.firstFree = Find(index)->nextFree;
        } else if (stripe.unused != stripe.unusedEnd || (grows && TakeBatch(stripe))) {
            index = stripe.unused++;
            Find(index)->home = static_cast<uint16_t>(home);
        } else {
            return NoSlot;
        }
        ++stripe.live;
        return index;
    }

    // The caller's stripe has a slot, or when the table cannot grow any other.
    uint32_t Take(uint32_t own) {
        uint32_t index = Take(own, true);
        for (uint32_t other = 0; index == NoSlot && other < StripeCount; ++other)
            index = Take(other, false);
        return index;
    }

    void GiveBack(uint32_t index, Slot& slot) {
        Stripe& stripe = stripes[slot.home];
        const std::scoped_lock lock(stripe.latch);
        slot.nextFree = stripe.firstFree;
        stripe.firstFree = index;
        --stripe.live;
    }
};

constinit Table table;

const ForkPart forkPart(
    ForkOrder::Inner,
    [] {
        for (Stripe& stripe : table.stripes)
            stripe.latch.lock();
        table.growth.lock();
    },
    [](bool) {
        table.growth.unlock();
        for (Stripe& stripe : table.stripes)
            stripe.latch.unlock();
    });

uint32_t OwnStripe() {
    static constinit std::atomic<uint32_t> threads{0};
    static thread_local uint32_t number = 0; // from 1
    if (number == 0) number = threads.fetch_add(1, std::memory_order_relaxed) % StripeCount + 1;
    return number - 1;
}

// When the library is unloaded with every handle closed, nothing of the table stays behind. It runs after the
// destructors of static objects, which close handles of theirs.
__attribute__((destructor(101))) void ReleaseTable() {
    if (OthersMayWorkOn() || CountHandles() != 0) return;
    for (auto& chunk : table.chunks)
        ::operator delete[](chunk.exchange(nullptr), std::align_val_t{LineBytes});
    table.used = 0;
    for (Stripe& stripe : table.stripes) {
        stripe.firstFree = NoSlot;
        stripe.unused = stripe.unusedEnd = 0;
    }
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
    table.GiveBack(index, slot);
    fault::Released();
    object->Release();
}

} // namespace

HANDLE InsertHandle(ObjectKind kind, Object& object) {
    const uint32_t index = table.Take(OwnStripe());
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
    uint32_t live = 0;
    for (Stripe& stripe : table.stripes) {
        const std::scoped_lock lock(stripe.latch);
        live += stripe.live;
    }
    return live;
}

} // namespace zkr::platform
