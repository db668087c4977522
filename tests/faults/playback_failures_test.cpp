// Playback with each call of the system failing in turn: what is made is freed, and the canvas stays a canvas.
#include "faults/fault_driver.h"

#include "zkr13n/playback.h"

#include <utility>

namespace zkr::test {
namespace {

// A frame that cannot be drawn is passed over; steps themselves do not fail.
TEST(PlaybackFailures, OfMakingAppendingAndDrawing) {
    const auto pair = [](Ground& g) {
        Make(g.Subject, MemoryConventional, 24, 1, 0, 20, 10);
        Make(g.Made, MemoryConventional, 8, 1, 4, 9, 4);
    };
    const auto append = [](Ground& g) {
        PlaybackHandle playback = nullptr;
        ReturnCode result = Z_CreatePlayback(&playback, &g.Subject, nullptr);
        if (result != 1) return result;
        result = Z_AppendPlayback(playback, &g.Made);
        if (result == 1) static_cast<BitmapHandle&>(g.Made) = {};
        EXPECT_EQ(Z_DestroyPlayback(playback, &g.List), 1);
        if (result != 1) Z_DestroyBitmapList(std::exchange(g.List, nullptr));
        return result;
    };
    const auto frames = [](Ground& g) {
        Make(g.Subject, MemoryConventional, 24, 1, 0, 20, 10);
        ASSERT_EQ(Z_CreateBitmapList(&g.List), 1);
        for (const int32_t disposal : {2, 3}) {
            BitmapHandle frame;
            Make(frame, MemoryConventional, 8, 1, 5, 9, 4);
            frame.Flags |= flag::PlaybackTransparency;
            frame.DisposalMethod = disposal;
            ASSERT_EQ(Z_InsertBitmapListItem(g.List, UINT32_MAX, &frame), 1);
        }
    };
    const auto play = [](Ground& g) {
        PlaybackHandle playback = nullptr;
        const ReturnCode result = Z_CreatePlayback(&playback, &g.Subject, g.List);
        if (result != 1) return result;
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(Z_ProcessPlayback(playback, nullptr), 1);
        return Z_DestroyPlayback(playback, nullptr);
    };
    RunAll({{"append", OfMemory, pair, append}, {"play", OfMemory, frames, play, Kept::Nothing}});
}

} // namespace
} // namespace zkr::test
