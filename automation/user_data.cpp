#include "automation/user_data.h"

#include "platform/fork.h"
#include "platform/threads.h"
#include "zkr13n/allocation.h"

#include <atomic>
#include <cstdint>
#include <cstring>

namespace zkr::automation {

namespace {

struct alignas(16) Copy {
    Copy* Next;
    const void* Owner;

    void* Bytes() { return this + 1; }
};

// All copies of the process. What is done under the lock is short and calls nobody.
constinit std::atomic_flag locked = ATOMIC_FLAG_INIT;
constinit Copy* copies = nullptr;

void TakeLock() {
    while (locked.test_and_set(std::memory_order_acquire))
        platform::SwitchToThread();
}
void GiveLock() {
    locked.clear(std::memory_order_release);
}

class Lock {
  public:
    Lock() { TakeLock(); }
    ~Lock() { GiveLock(); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
};

const platform::ForkPart forkPart(platform::ForkOrder::Inner, TakeLock, [](bool) { GiveLock(); });

// Takes out the copies that a test names, and frees them.
template <typename Test> void FreeWhere(Test test) {
    Copy* freed = nullptr;
    {
        const Lock lock;
        for (Copy** link = &copies; *link != nullptr;) {
            Copy* copy = *link;
            if (test(*copy)) {
                *link = copy->Next;
                copy->Next = freed;
                freed = copy;
            } else {
                link = &copy->Next;
            }
        }
    }
    while (freed != nullptr) {
        Copy* next = freed->Next;
        Z_Free(freed);
        freed = next;
    }
}

bool LiesOnUserData(const BitmapHandle& bitmap) {
    return (bitmap.Flags & Z_FLAG_USER_DATA) != 0 && bitmap.Addr != nullptr;
}

} // namespace

void* CopyUserData(const void* bytes, size_t size) {
    if (size > SIZE_MAX - sizeof(Copy)) return nullptr;
    auto* copy = static_cast<Copy*>(Z_Malloc(sizeof(Copy) + size));
    if (copy == nullptr) return nullptr;
    std::memcpy(copy->Bytes(), bytes, size);
    copy->Owner = nullptr;
    const Lock lock;
    copy->Next = copies;
    copies = copy;
    return copy->Bytes();
}

void ClaimUserData(const void* owner, const BitmapHandle& bitmap) {
    if (!LiesOnUserData(bitmap)) return;
    const Lock lock;
    for (Copy* copy = copies; copy != nullptr; copy = copy->Next)
        if (copy->Bytes() == bitmap.Addr) copy->Owner = owner;
}

void ClaimUserData(const void* owner, BitmapList list) {
    uint32_t count = 0;
    Z_GetBitmapListCount(list, &count);
    for (uint32_t index = 0; index < count; ++index) {
        BitmapHandle item;
        if (Z_GetBitmapListItem(list, index, &item) == Z_SUCCESS) ClaimUserData(owner, item);
    }
}

void FreeUserDataAt(const void* bytes) {
    if (bytes != nullptr) FreeWhere([&](Copy& copy) { return copy.Bytes() == bytes; });
}

void ReleaseUserData(const BitmapHandle& bitmap) {
    if (LiesOnUserData(bitmap)) FreeUserDataAt(bitmap.Addr);
}

void FreeUserData(const void* owner) {
    FreeWhere([&](const Copy& copy) { return copy.Owner == owner; });
}

} // namespace zkr::automation
