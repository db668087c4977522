// Playback with each call of the system failing in turn: what is made is freed, and the canvas stays a canvas.
#include "faults/fault_driver.h"

#include "zkr13n/playback.h"

#include <utility>

namespace zkr::test {
namespace {

TEST(PlaybackFailures, OfMakingAndAppending) {
    std::vector<Scenario> scenarios;
    const auto prepare = [](Ground& g) {
        ASSERT_EQ(Z_CreateBitmap(&g.Subject, MemoryConventional, 20, 10, 24, 1, nullptr, 0, nullptr, 0), 1);
        Fill(g.Subject, 3);
        ASSERT_EQ(Z_CreateBitmap(&g.Made, MemoryConventional, 9, 4, 8, 1, nullptr, 4, nullptr, 0), 1);
    };
    scenarios.push_back({"append", {code::OutOfMemory}, prepare, [](Ground& g) {
                             PlaybackHandle playback = nullptr;
                             ReturnCode result = Z_CreatePlayback(&playback, &g.Subject, nullptr);
                             if (result == 1) {
                                 result = Z_AppendPlayback(playback, &g.Made);
                                 if (result == 1) static_cast<BitmapHandle&>(g.Made) = {};
                                 EXPECT_EQ(Z_DestroyPlayback(playback, &g.List), 1);
                                 if (result != 1) Z_DestroyBitmapList(std::exchange(g.List, nullptr));
                             }
                             return result;
                         }});
    RunAll(scenarios);
}

// A frame that cannot be drawn is passed over; steps themselves do not fail.
TEST(PlaybackFailures, OfDrawing) {
    std::vector<Scenario> scenarios;
    const auto prepare = [](Ground& g) {
        ASSERT_EQ(Z_CreateBitmap(&g.Subject, MemoryConventional, 20, 10, 24, 1, nullptr, 0, nullptr, 0), 1);
        ASSERT_EQ(Z_CreateBitmapList(&g.List), 1);
        for (const int32_t disposal : {2, 3}) {
            BitmapHandle frame;
            ASSERT_EQ(Z_CreateBitmap(&frame, MemoryConventional, 9, 4, 8, 1, nullptr, 5, nullptr, 0), 1);
            frame.Flags |= flag::PlaybackTransparency;
            frame.DisposalMethod = disposal;
            ASSERT_EQ(Z_InsertBitmapListItem(g.List, UINT32_MAX, &frame), 1);
        }
    };
    scenarios.push_back({"play",
                         {code::OutOfMemory},
                         prepare,
                         [](Ground& g) {
                             PlaybackHandle playback = nullptr;
                             const ReturnCode result = Z_CreatePlayback(&playback, &g.Subject, g.List);
                             if (result != 1) return result;
                             for (int i = 0; i < 12; ++i)
                                 EXPECT_EQ(Z_ProcessPlayback(playback, nullptr), 1);
                             return Z_DestroyPlayback(playback, nullptr);
                         },
                         Kept::Nothing});
    RunAll(scenarios);
}

} // namespace
} // namespace zkr::test
