// Playback against a plain player that composes whole canvases as they are seen, and its states one by one.
#include "zkr13n/playback.h"

#include "core/flags.h"
#include "core/reports.h"
#include "geometry/picture.h"
#include "support/seeded.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/copy.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/views.h"

#include <algorithm>

namespace zkr::test {
namespace {

class Player {
  public:
    explicit Player(BitmapHandle* target) : target_(target) {
        EXPECT_EQ(Z_CreatePlayback(&handle, target, nullptr), 1);
    }
    ~Player() {
        BitmapList list = nullptr;
        EXPECT_EQ(Z_DestroyPlayback(handle, &list), 1);
        EXPECT_EQ(Z_DestroyBitmapList(list), 1);
    }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    void Add(BitmapHandle& frame) {
        ASSERT_EQ(Z_AppendPlayback(handle, &frame), 1);
        ASSERT_EQ(Z_ValidatePlaybackLines(handle, 0, frame.Height), 1);
    }
    uint32_t Step() {
        uint32_t state = 99;
        EXPECT_EQ(Z_ProcessPlayback(handle, &state), 1);
        return state;
    }
    void StepTo(uint32_t wanted) {
        for (int i = 0; i < 20 && Step() != wanted; ++i)
            Z_CancelPlaybackWait(handle);
    }
    Picture Shown() { return Picture::Of(*target_).Seen(target_->ViewPerspective); }

    PlaybackHandle handle = nullptr;

  private:
    BitmapHandle* target_;
};

void MakeFrame(BitmapHandle& frame, Seeded& seeded, int32_t width, int32_t height, int32_t view) {
    // Few colours, so that the transparent one is met often.
    ASSERT_EQ(
        Z_CreateBitmap(&frame, MemoryConventional, width, height, 24, Z_ORDER_BGR, nullptr, view, nullptr, 0),
        1);
    for (int y = 0; y < frame.Height; ++y)
        for (int x = 0; x < frame.Width; ++x)
            std::memset(static_cast<uint8_t*>(frame.Addr) + static_cast<size_t>(y) * frame.BytesPerLine +
                            static_cast<size_t>(x) * 3,
                        seeded.Below(4) * 60, 3);
    frame.PlaybackLeft = seeded.Between(-6, 30), frame.PlaybackTop = seeded.Between(-6, 20);
    frame.DisposalMethod = seeded.Below(5);
    frame.TransparentColor = static_cast<uint32_t>(seeded.Below(4)) * 0x3C3C3C;
    if (seeded.Below(2) != 0) frame.Flags |= flag::PlaybackTransparency;
}

// Composes canvases of the frames as they are seen.
struct PlainPlayer {
    Picture canvas, saved;
    uint64_t background;

    template <typename Colour> void ForEach(const Picture& frame, const BitmapHandle& record, Colour colour) {
        for (int y = 0; y < frame.Height; ++y)
            for (int x = 0; x < frame.Width; ++x) {
                const int cx = x + record.PlaybackLeft, cy = y + record.PlaybackTop;
                if (cx < 0 || cy < 0 || cx >= canvas.Width || cy >= canvas.Height) continue;
                uint64_t& pixel = canvas.Pixels[static_cast<size_t>(cy * canvas.Width + cx)];
                pixel = colour(frame.At(x, y), pixel, cx, cy);
            }
    }
    void Render(const Picture& frame, const BitmapHandle& record) {
        saved = canvas;
        const bool isTransparent = (record.Flags & flag::PlaybackTransparency) != 0;
        ForEach(frame, record, [&](uint64_t source, uint64_t present, int, int) {
            return isTransparent && source == record.TransparentColor ? present : source;
        });
    }
    void Dispose(const Picture& frame, const BitmapHandle& record) {
        if (record.DisposalMethod == PLAYBACK_DISPOSE_BACKGROUND)
            ForEach(frame, record, [&](uint64_t, uint64_t, int, int) { return background; });
        if (record.DisposalMethod == PLAYBACK_DISPOSE_PREVIOUS)
            ForEach(frame, record, [&](uint64_t, uint64_t, int x, int y) { return saved.At(x, y); });
    }
};

TEST(Playback, ComposesFramesAsAPlainPlayerDoes) {
    Seeded seeded(7);
    for (int round = 0; round < 60; ++round) {
        const int32_t view = AllViews[seeded.Below(8)];
        Bitmap target;
        ASSERT_EQ(Z_CreateBitmap(&target, MemoryConventional, view < 4 ? 40 : 30, view < 4 ? 30 : 40, 24,
                                 Z_ORDER_BGR, nullptr, view, nullptr, 0),
                  1);
        target.PlaybackBackColor = 0x010101;
        Player player(&target);
        std::vector<BitmapHandle> frames(4);
        for (BitmapHandle& frame : frames) {
            const int32_t side = seeded.Between(3, 25); // square, so that turned views have the same size
            MakeFrame(frame, seeded, side, side,
                      view < 4 ? AllViews[seeded.Below(4)] : AllViews[seeded.Below(8)]);
            // A region that is turned with its frame moves by a pixel where a side is even.
            const bool turns =
                frame.ViewPerspective != view &&
                (frame.ViewPerspective % 2 != 0 || view % 2 != 0 || view > 2 || frame.ViewPerspective > 2);
            if (turns) frame.Flags &= ~flag::PlaybackTransparency;
            player.Add(frame);
        }
        PlainPlayer plain{Picture::Made(40, 30, [](int, int) { return 0x010101u; }), {}, 0x010101};
        for (size_t i = 0; i < frames.size(); ++i) {
            const Picture frame = Picture::Of(frames[i]).Seen(frames[i].ViewPerspective);
            player.StepTo(PlaybackRendered);
            plain.Render(frame, frames[i]);
            ASSERT_EQ(player.Shown(), plain.canvas) << "frame " << i << ", round " << round << ", views "
                                                    << frames[i].ViewPerspective << " on " << view;
            player.StepTo(PlaybackDisposed);
            plain.Dispose(frame, frames[i]);
            ASSERT_EQ(player.Shown(), plain.canvas)
                << "disposal of " << i << ", round " << round << ", view " << view;
        }
        // Going back and forth composes the same.
        ASSERT_EQ(Z_SetPlaybackIndex(player.handle, 1), 1);
        ASSERT_EQ(Z_SetPlaybackIndex(player.handle, 4), 1);
        ASSERT_EQ(player.Shown(), plain.canvas);
    }
}

TEST(Playback, FramesOfOtherFormsAndRegionsAreDrawnAsTheyCanBe) {
    Seeded seeded(8);
    Bitmap target(20, 20, 24);
    target.ViewPerspective = 0;
    ASSERT_EQ(Z_AllocateBitmap(&target, MemoryConventional), 1);
    Player player(&target);
    BitmapHandle frame;
    MakeFrame(frame, seeded, 8, 8, 0);
    frame.PlaybackLeft = 3, frame.PlaybackTop = 2, frame.DisposalMethod = 2,
    frame.Flags &= ~flag::PlaybackTransparency;
    ASSERT_EQ(
        Z_ColorResBitmap(&frame, &frame, 8, COLORRES_OPTIMIZED_PALETTE, nullptr, nullptr, 0, nullptr, 0), 1);
    const RECT part = {1, 1, 5, 4};
    ASSERT_EQ(Z_SetBitmapRgnRect(&frame, nullptr, &part, Z_RGN_SET), 1);
    player.Add(frame);
    const RECT right = {6, 0, 20, 20};
    ASSERT_EQ(Z_SetBitmapRgnRect(&target, nullptr, &right, Z_RGN_SET), 1);
    void* const own = target.Region;
    ASSERT_EQ(player.Step(), PlaybackCleared);
    RECT update;
    ASSERT_EQ(Z_GetPlaybackUpdateRect(player.handle, &update, 1), 1);
    EXPECT_EQ(std::memcmp(&update, std::array{0, 0, 20, 20}.data(), sizeof update), 0);
    target.PlaybackBackColor = 0x777777;
    player.StepTo(PlaybackRendered);
    const Picture drawn = player.Shown();
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            EXPECT_TRUE((x >= 6 && x < 8 && y >= 3 && y < 6) || drawn.At(x, y) == 0) << x << ',' << y;
    ASSERT_EQ(Z_GetPlaybackUpdateRect(player.handle, &update, 0), 1);
    ASSERT_EQ(Z_ClearPlaybackUpdateRect(player.handle), 1);
    EXPECT_EQ(std::memcmp(&update, std::array{4, 3, 8, 6}.data(), sizeof update), 0);
    player.StepTo(PlaybackDisposed);
    const Picture disposed = player.Shown();
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            EXPECT_EQ(disposed.At(x, y) == 0x777777u, x >= 6 && x < 11 && y >= 2 && y < 10) << x << ',' << y;
    EXPECT_EQ(target.Region, own);
}

TEST(Playback, PassesFramesOverThatCannotBeDrawn) {
    for (const int32_t view : AllViews) {
        Bitmap target;
        ASSERT_EQ(
            Z_CreateBitmap(&target, MemoryConventional, 20, 30, 24, Z_ORDER_BGR, nullptr, view, nullptr, 0),
            1);
        Player player(&target);
        BitmapHandle bare, distant;
        ASSERT_EQ(Z_InitBitmap(&bare, 5, 4, 24), 1); // without storage
        bare.ViewPerspective = VIEW_TOP_LEFT;
        bare.PlaybackLeft = 3, bare.PlaybackTop = 2;
        ASSERT_EQ(Z_CreateBitmap(&distant, MemoryConventional, 5, 4, 24, Z_ORDER_BGR, nullptr, 0, nullptr, 0),
                  1);
        distant.PlaybackLeft = INT32_MAX - 2, distant.PlaybackTop = INT32_MIN + 2;
        bare.DisposalMethod = distant.DisposalMethod = PLAYBACK_DISPOSE_PREVIOUS;
        player.Add(bare);
        player.Add(distant);
        player.Step();
        const Picture before = player.Shown();
        RECT changed = {3, 2, 8, 6};
        Z_RectToBitmap(&target, VIEW_TOP_LEFT, &changed);
        for (const RECT& expected : {changed, RECT{}}) {
            ASSERT_EQ(Z_ClearPlaybackUpdateRect(player.handle), 1);
            player.StepTo(PlaybackDisposed);
            RECT update;
            ASSERT_EQ(Z_GetPlaybackUpdateRect(player.handle, &update, 0), 1);
            EXPECT_EQ(std::memcmp(&update, &expected, sizeof update), 0) << view;
            EXPECT_EQ(player.Shown(), before);
        }
    }
}

TEST(Playback, WaitsForDelaysInputAndLines) {
    Bitmap target(10, 10, 24);
    ASSERT_EQ(Z_AllocateBitmap(&target, MemoryConventional), 1);
    Player player(&target);
    EXPECT_EQ(player.Step(), PlaybackCleared);
    EXPECT_EQ(player.Step(), PlaybackEnd);
    for (const uint32_t state :
         {PlaybackRender, PlaybackRendered, PlaybackDispose, PlaybackDisposed, PlaybackEnd})
        EXPECT_EQ(player.Step(), state); // of a frame that is not there

    BitmapHandle frame{};
    ASSERT_EQ(Z_CreateBitmap(&frame, MemoryConventional, 4, 11, 24, Z_ORDER_BGR, nullptr, 0, nullptr, 0), 1);
    frame.PlaybackDelay = 60000;
    ASSERT_EQ(Z_AppendPlayback(player.handle, &frame), 1);
    uint32_t number = 99;
    ASSERT_EQ(Z_GetPlaybackState(player.handle, &number), 1);
    EXPECT_EQ(number, PlaybackRender);
    ASSERT_EQ(Z_SetPlaybackIndex(player.handle, -1), 1);
    BitmapHandle second;
    ASSERT_EQ(Z_CopyBitmap(&second, &frame), 1);
    ASSERT_EQ(Z_AppendPlayback(player.handle, &second), 1); // rows of it are missing
    player.StepTo(PlaybackWaitDelay);
    uint32_t left = 0;
    ASSERT_EQ(Z_GetPlaybackDelay(player.handle, &left), 1);
    EXPECT_GT(left, 50000u);
    EXPECT_LE(left, 60000u);
    EXPECT_EQ(player.Step(), PlaybackWaitDelay);
    ASSERT_EQ(Z_CancelPlaybackWait(player.handle), 1);
    for (const uint32_t state : {PlaybackDisposed, PlaybackRender, PlaybackAwaitLines, PlaybackAwaitLines})
        EXPECT_EQ(player.Step(), state);
    for (const auto& [row, count] :
         {std::pair{-5, 8}, {0, 3}, {9, INT32_MAX}, {INT32_MAX, INT32_MAX}, {3, 5}}) {
        ASSERT_EQ(Z_ValidatePlaybackLines(player.handle, row, count), 1);
        EXPECT_EQ(player.Step(), PlaybackAwaitLines);
    }
    ASSERT_EQ(Z_ValidatePlaybackLines(player.handle, 8, 1), 1);
    EXPECT_EQ(player.Step(), PlaybackRendered);
    ASSERT_EQ(Z_GetPlaybackDelay(player.handle, &left), 1);
    EXPECT_EQ(left, 0u);
    int32_t index = -9;
    ASSERT_EQ(Z_GetPlaybackIndex(player.handle, &index), 1);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(Z_SetPlaybackIndex(player.handle, 3), -13);
    EXPECT_EQ(Z_SetPlaybackIndex(player.handle, -2), -13);
    ASSERT_EQ(Z_SetPlaybackIndex(player.handle, 2), 1);
    EXPECT_EQ(player.Step(), PlaybackRender);
}

TEST(Playback, RefusesNulls) {
    Bitmap target(2, 2, 24);
    PlaybackHandle handle = reinterpret_cast<PlaybackHandle>(&target);
    uint32_t number = 0;
    EXPECT_EQ(Z_CreatePlayback(nullptr, &target, nullptr), -13);
    EXPECT_EQ(Z_CreatePlayback(&handle, &target, nullptr), -13);
    EXPECT_EQ(handle, nullptr);
    for (const ReturnCode result :
         {Z_DestroyPlayback(nullptr, nullptr), Z_ProcessPlayback(nullptr, &number),
          Z_CancelPlaybackWait(nullptr), Z_GetPlaybackState(nullptr, &number),
          Z_GetPlaybackDelay(nullptr, &number), Z_SetPlaybackIndex(nullptr, 0),
          Z_AppendPlayback(nullptr, &target), Z_ValidatePlaybackLines(nullptr, 0, 1),
          Z_GetPlaybackUpdateRect(nullptr, nullptr, 0)})
        EXPECT_EQ(result, -13);
}

} // namespace
} // namespace zkr::test
