// Playback of an animation: frames of 256 colours composed on a canvas of 24 bits.
#include "animation_work.h"

#include "pictures.h"
#include "work.h"

#include <algorithm>

namespace bench {

namespace {

// A list of the frames on a canvas, which is played again and again without delays.
struct Player {
    explicit Player(AnimationWork work) {
        BitmapList list = nullptr;
        Z_CreateBitmapList(&list);
        for (const Frame& frame : AnimationFor(work)) {
            BitmapHandle bitmap;
            Z_CreateBitmap(&bitmap, MemoryConventional, AnimationWidth, AnimationHeight, 8, Z_ORDER_RGB,
                           frame.Palette.data(), VIEW_TOP_LEFT, nullptr, 0);
            std::copy(frame.Indices.begin(), frame.Indices.end(), Data(&bitmap));
            if (work == PlayChanges) {
                bitmap.Flags |= Z_FLAG_PLAYBACK_TRANSPARENCY;
                bitmap.TransparentColor = 0x01000000u | TransparentIndex;
            }
            Z_InsertBitmapListItem(list, 0xFFFFFFFF, &bitmap);
        }
        Z_CreateBitmap(&Canvas, MemoryConventional, AnimationWidth, AnimationHeight, 24, Z_ORDER_RGB, nullptr,
                       VIEW_TOP_LEFT, nullptr, 0);
        Z_CreatePlayback(&Playback, &Canvas, list);
    }

    void Play() {
        for (uint32_t state = PlaybackClear; state != PlaybackEnd;)
            Z_ProcessPlayback(Playback, &state);
        Touch(Data(&Canvas));
    }

    BitmapHandle Canvas{};
    PlaybackHandle Playback = nullptr;
};

template <AnimationWork Which> void AddAnimation(const char* name) {
    constexpr size_t pixels = size_t{AnimationWidth} * AnimationHeight * AnimationFrames;
    AddWork(Which, {name, pixels, pixels * 4, [] {
                        static Player player(Which);
                        player.Play();
                    }});
}

const Adds adds([] {
    AddAnimation<PlayWhole>("animation: 256 colours");
    AddAnimation<PlayChanges>("animation: half transparent");
});

} // namespace

std::vector<Frame> AnimationFor(AnimationWork work) {
    std::vector<Frame> frames(AnimationFrames);
    for (int32_t i = 0; i < AnimationFrames; ++i) {
        BitmapHandle look{};
        Z_CopyBitmapRect(&look, PhotographBitmap(24, Z_ORDER_BGR), 300 + 8 * i, 400, AnimationWidth,
                         AnimationHeight);
        Z_ColorResBitmap(&look, &look, 8, COLORRES_OPTIMIZED_PALETTE, nullptr, nullptr, TransparentIndex,
                         nullptr, 0);
        Frame& frame = frames[static_cast<size_t>(i)];
        frame.Palette.resize(256);
        Z_GetBitmapColors(&look, 0, TransparentIndex, frame.Palette.data());
        frame.Indices.assign(Data(&look), Data(&look) + look.Size);
        for (uint32_t pixel = 0; work == PlayChanges && i > 0 && pixel < frame.Indices.size(); ++pixel) {
            const uint32_t spot =
                pixel / AnimationWidth / 3 * 7919 + pixel % AnimationWidth / 5 + static_cast<uint32_t>(i);
            if (spot * 2654435761u >> 31 != 0) frame.Indices[pixel] = TransparentIndex;
        }
        Z_FreeBitmap(&look);
    }
    return frames;
}

} // namespace bench
