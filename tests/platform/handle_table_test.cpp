// The table of handles under misuse and under many threads.
#include "platform/portable/address_index.h"
#include "platform/portable/handle_table.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

namespace zkr {
namespace {

using namespace platform;

struct Probe final : Object {
    static constexpr ObjectKind kind = ObjectKind::Palette;

    std::atomic<int> released{0};
    std::atomic<bool> alive{true};
    void Release() override {
        ++released;
        alive = false;
    }
};

TEST(HandleTable, RefusesStaleForeignAndWrongKindHandles) {
    Probe probe;
    HANDLE handle = InsertHandle(Probe::kind, probe);
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(PinHandle(Probe::kind, handle), nullptr);
    UnpinHandle(handle);
    EXPECT_EQ(PinHandle(ObjectKind::File, handle), nullptr);
    const auto bits = reinterpret_cast<uintptr_t>(handle);
    const uintptr_t forged = (bits & ~uintptr_t{15}) | static_cast<uintptr_t>(ObjectKind::File);
    EXPECT_EQ(PinHandle(ObjectKind::File, reinterpret_cast<HANDLE>(forged)), nullptr) << "kind rewritten";
    EXPECT_EQ(PinHandle(Probe::kind, reinterpret_cast<HANDLE>(bits + (uintptr_t{1} << 28))), nullptr)
        << "generation";
    EXPECT_EQ(PinHandle(Probe::kind, reinterpret_cast<HANDLE>(bits | 0x0FFFFFF0)), nullptr) << "index";
    for (const HANDLE foreign : {HANDLE{nullptr}, static_cast<HANDLE>(&probe), INVALID_HANDLE_VALUE}) {
        EXPECT_EQ(PinHandle(Probe::kind, foreign), nullptr);
        EXPECT_FALSE(CloseHandleOfKind(Probe::kind, foreign));
    }
    EXPECT_EQ(probe.released, 0);
    EXPECT_TRUE(CloseHandleOfKind(Probe::kind, handle));
    EXPECT_EQ(probe.released, 1);
    EXPECT_FALSE(CloseHandleOfKind(Probe::kind, handle));

    Probe next;
    HANDLE reused = InsertHandle(Probe::kind, next);
    EXPECT_NE(reused, handle) << "a place that is used again has a new generation";
    EXPECT_EQ(PinHandle(Probe::kind, handle), nullptr);
    CloseHandleOfKind(Probe::kind, reused);
    EXPECT_EQ(probe.released, 1);
}

// Threads open, use and close handles that they all see; every object is released exactly once and never
// while pinned.
TEST(HandleTable, BearsThreadsThatCloseWhatOthersUse) {
    constexpr int Rounds = 20000, Places = 8, Threads = 4;
    std::atomic<HANDLE> shared[Places] = {};
    std::vector<Probe> probes(Rounds);
    std::atomic<int> closed{0}, usedDead{0};
    const auto work = [&](int thread) {
        for (int round = thread; round < Rounds; round += Threads) {
            auto& place = shared[round % Places];
            HANDLE old = place.exchange(InsertHandle(Probe::kind, probes[static_cast<size_t>(round)]));
            for (auto& other : shared) {
                const HANDLE handle = other.load();
                const Pin<Probe> pin(handle);
                if (pin && !pin->alive) ++usedDead;
            }
            if (old != nullptr && CloseHandleOfKind(Probe::kind, old)) ++closed;
            if (round % 3 == 0 && CloseHandleOfKind(Probe::kind, place.load()))
                ++closed; // a race for the close
        }
    };
    const uint32_t before = CountHandles();
    std::vector<std::thread> threads;
    for (int i = 0; i < Threads; ++i)
        threads.emplace_back(work, i);
    for (auto& thread : threads)
        thread.join();
    for (auto& place : shared)
        closed += CloseHandleOfKind(Probe::kind, place.load());
    EXPECT_EQ(usedDead, 0);
    EXPECT_EQ(closed, Rounds);
    for (const Probe& probe : probes)
        ASSERT_EQ(probe.released, 1);
    EXPECT_EQ(CountHandles(), before);
}

TEST(AddressIndex, KeepsNodesApartThroughGrowthAndDuplicates) {
    AddressIndex index;
    std::vector<AddressNode> nodes(3000);
    std::vector<char> bytes(nodes.size());
    for (size_t i = 0; i < nodes.size(); ++i) {
        nodes[i].address = &bytes[i];
        index.Add(nodes[i]);
    }
    AddressNode twin;
    twin.address = &bytes[5];
    index.Add(twin);
    for (size_t i = 0; i < nodes.size(); i += 2)
        index.Remove(nodes[i]);
    for (size_t i = 0; i < nodes.size(); ++i) {
        EXPECT_EQ(index.Find(&bytes[i], [](AddressNode&) {}), i % 2 == 1) << i;
    }
    AddressNode* first = index.Take(&bytes[5]);
    AddressNode* second = index.Take(&bytes[5]);
    EXPECT_TRUE((first == &twin && second == &nodes[5]) || (first == &nodes[5] && second == &twin));
    EXPECT_EQ(index.Take(&bytes[5]), nullptr);
    for (size_t i = 1; i < nodes.size(); i += 2)
        index.Take(&bytes[i]);
}

} // namespace
} // namespace zkr
