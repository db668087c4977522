// Values of threads on pthread keys. A key's values hang in nodes that are listed with the key, so that
// FlsFree can reach those of every thread.
#include "platform/portable/threads.h"

#include "platform/faults.h"
#include "platform/portable/fork.h"

#include <atomic>
#include <mutex>
#include <new>
#include <pthread.h>
#include <sched.h>
#ifdef __GLIBC__
#include <sys/single_threaded.h>
#endif
#include <sys/syscall.h>
#include <unistd.h>

namespace zkr::platform {

namespace {

struct Node {
    void* value = nullptr;
    Node* next = nullptr;
};

struct Key {
    std::atomic<bool> used{false};
    pthread_key_t system = 0;
    PFLS_CALLBACK_FUNCTION callback = nullptr;
    Node* nodes = nullptr;
    int callbacksRunning = 0;
};

constexpr DWORD KeyCount = 16;
constinit std::mutex mutex; // guards the keys' lists and counts
constinit Key keys[KeyCount];
thread_local int callbacksHere[KeyCount]; // those of callbacksRunning that run on this thread

// The callbacks of other threads end with them: the child has none.
const ForkPart forkPart(
    ForkOrder::Inner, [] { mutex.lock(); },
    [](bool inChild) {
        for (DWORD index = 0; inChild && index < KeyCount; ++index)
            keys[index].callbacksRunning = callbacksHere[index];
        mutex.unlock();
    });

// Takes the node out of its key's list. It may be gone already, and its memory with it, when the key was
// freed as the thread ended; so the lists are searched for its address.
Key* Unlist(const Node* node) {
    for (Key& key : keys) {
        for (Node** link = &key.nodes; *link != nullptr; link = &(*link)->next) {
            if (*link != node) continue;
            *link = node->next;
            return &key;
        }
    }
    return nullptr;
}

void ThreadEnds(void* argument) {
    auto* node = static_cast<Node*>(argument);
    Key* key;
    {
        const std::scoped_lock lock(mutex);
        key = Unlist(node);
        if (key == nullptr) return;
        ++key->callbacksRunning;
    }
    ++callbacksHere[key - keys];
    if (node->value != nullptr && key->callback != nullptr) key->callback(node->value);
    --callbacksHere[key - keys];
    delete node;
    const std::scoped_lock lock(mutex);
    --key->callbacksRunning;
}

bool Known(DWORD index) {
    if (index < KeyCount && keys[index].used.load(std::memory_order_acquire)) return true;
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

} // namespace

DWORD GetCurrentThreadId() {
    return static_cast<DWORD>(syscall(SYS_gettid));
}

bool IsOnlyThread() {
#ifdef __GLIBC__
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

BOOL SwitchToThread() {
    return sched_yield() == 0 ? TRUE : FALSE;
}

DWORD FlsAlloc(PFLS_CALLBACK_FUNCTION callback) {
    ExpectTheEnd();
    const std::scoped_lock lock(mutex);
    for (DWORD index = 0; index < KeyCount && !fault::Due(fault::Thread); ++index) {
        Key& key = keys[index];
        if (key.used.load() || key.callbacksRunning != 0) continue;
        if (pthread_key_create(&key.system, ThreadEnds) != 0) break;
        key.callback = callback;
        key.used.store(true, std::memory_order_release);
        return index;
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FLS_OUT_OF_INDEXES;
}

BOOL FlsFree(DWORD index) {
    if (!Known(index)) return FALSE;
    Key& key = keys[index];
    Node* node;
    {
        const std::scoped_lock lock(mutex);
        if (!key.used.exchange(false)) return FALSE;
        pthread_key_delete(key.system);
        node = key.nodes;
        key.nodes = nullptr;
    }
    while (node != nullptr) {
        Node* next = node->next;
        if (node->value != nullptr && key.callback != nullptr) key.callback(node->value);
        delete node;
        node = next;
    }
    std::unique_lock lock(mutex);
    while (key.callbacksRunning != callbacksHere[index]) {
        lock.unlock();
        sched_yield();
        lock.lock();
    }
    return TRUE;
}

void* FlsGetValue(DWORD index) {
    if (!Known(index)) return nullptr;
    const auto* node = static_cast<const Node*>(pthread_getspecific(keys[index].system));
    return node == nullptr ? nullptr : node->value;
}

BOOL FlsSetValue(DWORD index, void* value) {
    if (!Known(index)) return FALSE;
    Key& key = keys[index];
    if (auto* node = static_cast<Node*>(pthread_getspecific(key.system))) {
        node->value = value;
        return TRUE;
    }
    auto* node = fault::Due(fault::Thread) ? nullptr : new (std::nothrow) Node{value, nullptr};
    if (node == nullptr || pthread_setspecific(key.system, node) != 0) {
        delete node;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    const std::scoped_lock lock(mutex);
    node->next = key.nodes;
    key.nodes = node;
    return TRUE;
}

} // namespace zkr::platform
