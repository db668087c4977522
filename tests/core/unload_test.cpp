// A host loads the library, uses it on threads that live on, and unloads it: nothing of it may run or stay
// then. The program does not link the library.
#include "support/loaded_module.h"

#include "zkr13n/dither.h"
#include "zkr13n/frame.h"
#include "zkr13n/locks.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace zkr::test {
namespace {

TEST(Unload, ThreadsOutliveTheLibrary) {
    for (int round = 0; round < 3; ++round) {
        Module module = Load(ZKR_LIBRARY);
        ASSERT_NE(module, nullptr);
        const auto defaultDithering = ZKR_FIND(module, Z_GetDefaultDithering);
        const auto shutdown = ZKR_FIND(module, Z_IntShutdown);
        ASSERT_TRUE(defaultDithering != nullptr && shutdown != nullptr);

        std::promise<void> used, unloaded;
        std::thread thread([&] {
            EXPECT_EQ(defaultDithering(), 7);
            used.set_value();
            unloaded.get_future().wait();
        });
        used.get_future().wait();
        EXPECT_EQ(defaultDithering(), 7);
        if (round == 2) shutdown();
        Unload(module);
        EXPECT_FALSE(IsLoaded(ZKR_LIBRARY));
        unloaded.set_value();
        thread.join();
    }
}

} // namespace
} // namespace zkr::test
