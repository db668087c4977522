// A mutex of one word for places that there are many of and where nobody stays for long. Tools that watch mutexes do
// not bear a thread that holds dozens of them, as one that forks does.
#pragma once

#include "platform/portable/threads.h"

#include <atomic>
#include <cstdint>

namespace zkr::platform {

class Latch {
  public:
    // Nobody begins a thread while it holds a latch, so that one who is alone need not be on guard.
    void lock() {
        if (IsOnlyThread()) return state_.store(Taken, std::memory_order_relaxed);
        uint32_t expected = Free;
        if (state_.compare_exchange_strong(expected, Taken, std::memory_order_acquire)) return;
        while (state_.exchange(Awaited, std::memory_order_acquire) != Free)
            state_.wait(Awaited, std::memory_order_relaxed);
    }
    void unlock() {
        if (IsOnlyThread()) return state_.store(Free, std::memory_order_relaxed);
        if (state_.exchange(Free, std::memory_order_release) == Awaited) state_.notify_one();
    }

  private:
    static constexpr uint32_t Free = 0, Taken = 1, Awaited = 2;

    std::atomic<uint32_t> state_{Free};
};

} // namespace zkr::platform
