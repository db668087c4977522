// The life of a thread's record: what it starts with, what stands in for it when memory is short, and what
// goes with it.
#include "core/thread_settings.h"

#include "core/dispatch.h"
#include "platform/faults.h"
#include "zkr13n/allocation.h"
#include "zkr13n/dither.h"
#include "zkr13n/locks.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using namespace zkr;
namespace fault = platform::fault;

std::atomic<int> alive = 0;
struct Counted {
    Counted() { ++alive; }
    ~Counted() { --alive; }
    int Weight = 0;
};
struct Other : Counted {};

TEST(ThreadSettings, WithoutMemoryAThreadSeesZeros) {
    std::thread([] {
        for (fault::Kind kind : {fault::Heap, fault::Thread}) {
            fault::Arm(kind, 1, true);
            EXPECT_EQ(Z_GetDefaultDithering(), 0);
            EXPECT_EQ(Z_SetDefaultMemoryType(128), 1);
            int32_t type = -1;
            EXPECT_EQ(Z_GetDefaultMemoryType(&type), 1);
            EXPECT_EQ(type, 0);
            EXPECT_TRUE(IsFallbackRecord(CurrentThreadSettings()));
            fault::Disarm();
        }
        EXPECT_EQ(Z_GetDefaultDithering(), 7) << "the thread gets its settings once there is memory";
        EXPECT_FALSE(IsFallbackRecord(CurrentThreadSettings()));
    }).join();
}

TEST(ThreadSettings, AnAttachmentGoesWithItsThread) {
    std::thread([&] {
        OfThread<Counted>()->Weight = 5;
        OfThread<Other>()->Weight = 7;
        EXPECT_EQ(OfThread<Counted>()->Weight, 5);
        std::thread([] { EXPECT_EQ(OfThread<Counted>()->Weight, 0) << "each thread has its own"; }).join();
        EXPECT_EQ(alive, 2);
    }).join();
    EXPECT_EQ(alive, 0);
    std::thread([&] {
        OfThread<Counted>();
        Z_IntShutdown();
        EXPECT_EQ(alive, 0);
        Z_GetDefaultDithering();
        fault::Arm(fault::Heap, 1, true);
        EXPECT_EQ(OfThread<Counted>(), nullptr);
        fault::Disarm();
        EXPECT_NE(OfThread<Counted>(), nullptr);
    }).join();
    EXPECT_EQ(alive, 0);
}

// The stop of the library takes the dispatch table away; whoever needs it next has it again.
bool WasStopped() {
    static const DispatchTable marker;
    return ExchangeDispatch(&marker) == nullptr;
}

TEST(ThreadSettings, TheLastRecordStopsTheLibrary) {
    Z_IntShutdown();
    std::thread([] {
        Z_GetDefaultDithering();
        WasStopped();
        std::thread([] { Z_GetDefaultDithering(); }).join();
        EXPECT_FALSE(WasStopped()) << "stopped while this thread has a record";
    }).join();
    EXPECT_TRUE(WasStopped());
}

TEST(ThreadSettings, AShutdownStopsTheLibraryWhoeverCallsIt) {
    Z_GetDefaultDithering();
    WasStopped();
    std::thread([] { Z_IntShutdown(); }).join();
    EXPECT_TRUE(WasStopped());
    Z_GetDefaultDithering(); // this thread's record is the first of a new start
    EXPECT_FALSE(WasStopped());
    Z_IntShutdown();
    EXPECT_TRUE(WasStopped());
    ExchangeDispatch(nullptr);
    const DispatchTable* const asked = &Dispatch();
    EXPECT_EQ(ExchangeDispatch(nullptr), asked) << "there is a table for whoever asks";
}

} // namespace
