// The records of the library's threads, and the start and stop of the library that hang on them: whoever
// needs a record starts the library, and the last record that goes stops it. The records are reached through
// one per-thread value of the platform, which hands a thread's record back when the thread ends, and they are
// linked in a list, so that an unloading library can release those of threads that live on.
#include "core/thread_settings.h"

#include "core/assertion.h"
#include "core/dispatch.h"
#include "core/spin_lock.h"
#include "core/storage/filter_modules.h"
#include "platform/files.h"
#include "platform/fork.h"
#include "platform/threads.h"
#include "zkr13n/allocation.h"
#include "zkr13n/locks.h"

#include <atomic>
#include <cstdint>
#include <utility>

namespace zkr {

namespace {

struct Record {
    ThreadSettings Settings;
    Record* Previous;
    Record* Next;
};

constexpr uint32_t NoSlot = UINT32_MAX;

constinit SpinLock recordsLock; // guards the list
constinit SpinLock lifeLock;    // guards start and stop; taken before recordsLock where both are needed
constinit Record* records = nullptr;
constinit std::atomic<uint32_t> slot = NoSlot; // made at the first start, kept until the library is unloaded
constinit std::atomic<bool> started = false;
constinit ThreadSettings fallback{};

// The records of threads that a child does not have stay with it until it ends.
const platform::ForkPart forkPart(
    platform::ForkOrder::Outer,
    [] {
        lifeLock.Lock();
        recordsLock.Lock();
    },
    [](bool inChild) {
        for (SpinLock* lock : {&recordsLock, &lifeLock})
            inChild ? lock->Reset() : lock->Unlock();
    });

void Z_CALL EndThread(void* value);

bool Start() {
    const SpinGuard guard(lifeLock);
    if (slot.load(std::memory_order_relaxed) == NoSlot) slot.store(platform::FlsAlloc(EndThread));
    if (slot.load(std::memory_order_relaxed) == NoSlot) return false;
    started.store(true);
    return true;
}

void Stop() {
    started.store(false);
    ExchangeDispatch(nullptr);
}

bool HasRecords() {
    const SpinGuard guard(recordsLock);
    return records != nullptr;
}

void Link(Record* record) {
    const SpinGuard guard(recordsLock);
    record->Next = records;
    if (records != nullptr) records->Previous = record;
    records = record;
}

void Unlink(Record* record) {
    const SpinGuard guard(recordsLock);
    if (record->Next != nullptr) record->Next->Previous = record->Previous;
    (record->Previous != nullptr ? record->Previous->Next : records) = record->Next;
}

// A hot key belongs to the thread that armed it and must not fire once that thread is gone.
void DisarmHotKey(ThreadSettings& settings) {
    settings.HotKeyState = 0;
}

// The last one first, since a thing may rest on one that was there before it.
void ReleaseAttachments(ThreadSettings& settings) {
    for (size_t i = MostAttachments; i-- > 0;) {
        const ThreadAttachment attachment = std::exchange(settings.Attachments[i], {});
        if (attachment.Kind == nullptr) continue;
        attachment.Kind->Release(attachment.Data);
        Z_Free(attachment.Data);
    }
}

void Release(Record* record) {
    Unlink(record);
    DisarmHotKey(record->Settings);
    ReleaseAttachments(record->Settings);
    Z_Free(record);
}

void StopAfterLastRecord() {
    const SpinGuard guard(lifeLock);
    if (started.load() && !HasRecords()) Stop();
}

void Z_CALL EndThread(void* value) {
    if (value == nullptr) return;
    Release(static_cast<Record*>(value));
    StopAfterLastRecord();
}

void SetDefaults(ThreadSettings& settings) {
    settings.File = {Z_OsOpen, Z_OsRead, Z_OsWrite, Z_OsSeek, Z_OsClose};
    settings.DefaultDithering = 7;
    settings.DefaultXResolution = 150;
    settings.DefaultYResolution = 150;
    settings.DefaultMemoryType = 1;
    settings.MaxConventionalSize = INT32_MAX;
    settings.ConventionalTiles = -100;
    settings.MappedTiles = 1;
    constexpr uint32_t size = sizeof settings.TempDirectory;
    if (platform::GetTempPathA(size, settings.TempDirectory) >= size) settings.TempDirectory[0] = '\0';
    settings.CapabilityLocks = Z_GetSupportLocks();
}

Record* CurrentRecord() {
    const uint32_t index = slot.load(std::memory_order_acquire);
    return index == NoSlot ? nullptr : static_cast<Record*>(platform::FlsGetValue(index));
}

Record* CreateRecord() {
    auto* record = static_cast<Record*>(Z_Calloc(1, sizeof(Record)));
    if (record == nullptr) return nullptr;
    SetDefaults(record->Settings);
    Link(record); // before the start, so that a thread that ends meanwhile does not stop the library
    if (Start() && platform::FlsSetValue(slot.load(), record)) return record;
    EndThread(record);
    return nullptr;
}

ThreadSettings& FallbackRecord() {
    fallback = ThreadSettings{}; // what another thread has stored there is not this one's
    return fallback;
}

// Unloading the library ends all that it keeps for threads; nobody else is inside the library then. At the
// exit of a process other threads may work on, or have been ended while they held a lock: what they have goes
// with the process.
struct Unloading {
    ~Unloading() {
        if (platform::OthersMayWorkOn() || !IsFree(lifeLock) || !IsFree(recordsLock)) return;
        const uint32_t index = slot.exchange(NoSlot);
        if (index != NoSlot) platform::FlsFree(index);
        while (records != nullptr)
            Release(records);
        Stop();
    }
    static bool IsFree(SpinLock& lock) {
        if (!lock.TryLock()) return false;
        lock.Unlock();
        return true;
    }
} unloading;

} // namespace

ThreadSettings& CurrentThreadSettings() {
    Record* record = CurrentRecord();
    if (record != nullptr && started.load(std::memory_order_acquire)) return record->Settings;
    if (record == nullptr) record = CreateRecord();
    return record != nullptr && Start() ? record->Settings : FallbackRecord();
}

bool IsFallbackRecord(const ThreadSettings& settings) {
    return &settings == &fallback;
}

void* AttachmentOf(const AttachmentKind& kind) {
    ThreadSettings& settings = CurrentThreadSettings();
    for (ThreadAttachment& attachment : settings.Attachments) {
        if (attachment.Kind == &kind) return attachment.Data;
        if (attachment.Kind != nullptr) continue;
        void* const memory = IsFallbackRecord(settings) ? nullptr : Z_Calloc(1, kind.Bytes);
        if (memory == nullptr) return nullptr;
        kind.Make(memory);
        attachment = {&kind, memory};
        return memory;
    }
    ZKR_ASSERT(!"there are more kinds than MostAttachments");
    return nullptr;
}

uint32_t* CurrentMatchTable() {
    return CurrentThreadSettings().MatchTable;
}

uint32_t* SwapMatchTable(uint32_t* table) {
    ThreadSettings& settings = CurrentThreadSettings();
    uint32_t* previous = settings.MatchTable;
    settings.MatchTable = table;
    return previous;
}

void ShutDown() {
    if (Record* record = CurrentRecord(); record != nullptr) {
        platform::FlsSetValue(slot.load(), nullptr);
        Release(record);
    }
    storage::UnloadUnusedFilters();
    const SpinGuard guard(lifeLock);
    if (started.load()) Stop();
}

} // namespace zkr
