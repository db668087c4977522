// Values of threads when keys go while threads end. That each thread has its own is tested with its settings.
#include "platform/clock.h"
#include "platform/threads.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace zkr {
namespace {

using namespace platform;

std::atomic<int> released;

void Z_CALL Release(void* value) {
    released += *static_cast<int*>(value);
}

DWORD freedByCallback;

void ReleaseAndFreeKey(void* value) {
    Release(value);
    FlsFree(freedByCallback);
}

TEST(ThreadValues, ACallbackMayFreeItsKey) {
    released = 0;
    freedByCallback = FlsAlloc(ReleaseAndFreeKey);
    int value = 5;
    std::thread([&] { FlsSetValue(freedByCallback, &value); }).join();
    EXPECT_EQ(released, 5);
    EXPECT_EQ(FlsGetValue(freedByCallback), nullptr);
}

TEST(ThreadValues, AKeyThatGoesWhileThreadsEndReleasesEachValueOnce) {
    for (int round = 0; round < 300; ++round) {
        released = 0;
        const DWORD key = FlsAlloc(Release);
        std::atomic<int> ready{0};
        int value = 1;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                FlsSetValue(key, &value);
                ++ready;
            });
        }
        while (ready != 4)
            SwitchToThread();
        FlsFree(key);
        EXPECT_EQ(released, 4);
        for (auto& thread : threads)
            thread.join();
        ASSERT_EQ(released, 4);
    }
}

TEST(IsOnlyThread, IsNotToldBesideAnother) {
    std::thread([] { EXPECT_FALSE(IsOnlyThread()); }).join();
}

} // namespace
} // namespace zkr
