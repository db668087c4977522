// Values of threads: each thread its own, released at its end, and all released when the key goes.
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

TEST(ThreadValues, BelongToTheirThreadAndEndWithIt) {
    released = 0;
    const DWORD key = FlsAlloc(Release);
    ASSERT_NE(key, FLS_OUT_OF_INDEXES);
    int mine = 1, other = 10;
    EXPECT_EQ(FlsGetValue(key), nullptr);
    EXPECT_NE(FlsSetValue(key, &mine), FALSE);
    std::thread([&] {
        EXPECT_EQ(FlsGetValue(key), nullptr);
        FlsSetValue(key, &mine);
        FlsSetValue(key, &other);
        EXPECT_EQ(FlsGetValue(key), &other);
    }).join();
    EXPECT_EQ(released, 10) << "once, and the last value";
    std::thread([&] {
        FlsSetValue(key, &other);
        FlsSetValue(key, nullptr);
    }).join();
    EXPECT_EQ(released, 10) << "no value, no callback";
    EXPECT_EQ(FlsGetValue(key), &mine);
    EXPECT_NE(FlsFree(key), FALSE);
    EXPECT_EQ(released, 11);
}

TEST(ThreadValues, OfThreadsThatStillRunAreReleasedWithTheKey) {
    released = 0;
    const DWORD key = FlsAlloc(Release);
    std::atomic<int> ready{0};
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    std::vector<int> values = {1, 10, 100};
    for (int& value : values) {
        threads.emplace_back([&ready, &stop, &value, key] {
            FlsSetValue(key, &value);
            ++ready;
            while (!stop)
                SwitchToThread();
        });
    }
    while (ready != 3)
        SwitchToThread();
    EXPECT_NE(FlsFree(key), FALSE);
    EXPECT_EQ(released, 111);
    stop = true;
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(released, 111) << "the end of the threads finds nothing left";
    EXPECT_EQ(FlsFree(key), FALSE);
}

#ifndef _WIN32
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
#endif

} // namespace
} // namespace zkr
