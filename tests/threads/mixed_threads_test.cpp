// Threads at work on bitmaps of their own, each through all that they share without knowing: handles, blocks, views,
// files, filter modules, the records of threads, the dispatch table, the choice of kernels. Threads come and go, and
// the library is stopped again and again. Each must come to what it comes to alone; ThreadSanitizer tells the rest.
#include "fuzz/input.h"
#include "support/seeded.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace zkr::test {
namespace {

thread_local uint64_t digest; // of all that the library has handed back (FNV-1a; Fowler, Noll and Vo, 1991)

void Hear(const void* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i)
        digest = (digest ^ static_cast<const uint8_t*>(bytes)[i]) * 0x100000001B3u;
}

// Any operations on any pictures.
uint64_t Play(uint64_t seed, int rounds) {
    Seeded seeded(seed);
    fuzz::Listener = Hear;
    digest = 0xCBF29CE484222325u;
    for (int round = 0; round < rounds; ++round) {
        std::vector<uint8_t> input(300);
        for (uint8_t& byte : input)
            byte = seeded.Byte();
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    return digest;
}

TEST(MixedThreads, ComeToWhatEachComesToAlone) {
    constexpr int players = 4, games = 6, rounds = 30;
    uint64_t expected[players];
    fuzz::IsExactOnly = true; // there is one clipboard, which they would hand things through
    for (int player = 0; player < players; ++player)
        std::thread([&, player] { expected[player] = Play(static_cast<uint64_t>(player), rounds); }).join();

    std::atomic<bool> done = false;
    std::thread stopper([&] {
        while (!done) {
            Z_GetDefaultDithering();
            Z_IntShutdown();
            std::this_thread::yield();
        }
    });
    std::vector<std::thread> threads;
    for (int player = 0; player < players; ++player)
        threads.emplace_back([&, player] {
            for (int game = 0; game < games; ++game) // each in a thread that ends with it
                std::thread([&] {
                    EXPECT_EQ(Play(static_cast<uint64_t>(player), rounds), expected[player]);
                }).join();
        });
    for (std::thread& thread : threads)
        thread.join();
    done = true;
    stopper.join();
}

} // namespace
} // namespace zkr::test
