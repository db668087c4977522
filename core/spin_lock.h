// A lock for the few process-wide moments of the library: an interlocked counter that is raised, and lowered
// and tried again when somebody else had raised it before. Held for a handful of instructions only.
#pragma once

#include "platform/threads.h"

#include <atomic>
#include <cstdint>

namespace zkr {

class SpinLock {
  public:
    constexpr SpinLock() = default;

    bool TryLock() {
        if (counter_.fetch_add(1, std::memory_order_acquire) == 0) return true;
        counter_.fetch_sub(1, std::memory_order_relaxed);
        return false;
    }
    void Lock() {
        while (!TryLock())
            platform::SwitchToThread();
    }
    // Free again in the child of a fork, whatever other threads were about in the parent.
    void Reset() { counter_.store(0, std::memory_order_release); }
    void Unlock() { counter_.fetch_sub(1, std::memory_order_release); }

  private:
    std::atomic<int32_t> counter_ = 0;
};

class SpinGuard {
  public:
    explicit SpinGuard(SpinLock& lock) : lock_(lock) { lock_.Lock(); }
    ~SpinGuard() { lock_.Unlock(); }
    SpinGuard(const SpinGuard&) = delete;
    SpinGuard& operator=(const SpinGuard&) = delete;

  private:
    SpinLock& lock_;
};

} // namespace zkr
