// A host loads the library, uses it on threads that live on, and unloads it: nothing of it may run or stay
// then. The program does not link the library.
#include "support/loaded_module.h"

#include "zkr13n/bitmap.h"
#include "zkr13n/clipboard.h"
#include "zkr13n/dither.h"
#include "zkr13n/frame.h"
#include "zkr13n/locks.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

#if defined __GLIBC__
#include <malloc.h>
#endif

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

#if defined __GLIBC__ // elsewhere the clipboard is the system's
TEST(Unload, TakesAlongWhatLiesOnTheClipboard) {
    size_t early = 0;
    for (int round = 0; round < 20; ++round) {
        Module module = Load(ZKR_LIBRARY);
        const auto create = ZKR_FIND(module, Z_CreateBitmap);
        const auto copy = ZKR_FIND(module, Z_CopyToClipboard);
        const auto release = ZKR_FIND(module, Z_FreeBitmap);
        ASSERT_TRUE(create != nullptr && copy != nullptr && release != nullptr);
        BitmapHandle bitmap;
        ASSERT_EQ(create(&bitmap, MemoryConventional, 60, 40, 24, 0, nullptr, 0, nullptr, 0), 1);
        EXPECT_EQ(copy(nullptr, &bitmap), 1);
        release(&bitmap);
        Unload(module);
        if (round == 4) early = mallinfo2().uordblks;
    }
    EXPECT_LT(mallinfo2().uordblks, early + 100'000);
}
#endif

} // namespace
} // namespace zkr::test
