// Parity cases of playback: frames of any form on canvases of any form, step by step.
#include "parity/subject.h"

#include "zkr13n/playback.h"

namespace zkr::test {
namespace {

void PlaybackCase(Seeded& seeded, Digest& digest) {
    Subject canvas(seeded);
    canvas.PlaybackBackColor = static_cast<uint32_t>(seeded.Next()) & 0x01FFFFFF;
    PlaybackHandle playback = nullptr;
    digest.Add(Z_CreatePlayback(&playback, &canvas, nullptr));
    for (int i = seeded.Below(4); i > 0; --i) {
        Subject frame(seeded);
        frame.PlaybackLeft = seeded.Between(-20, 100), frame.PlaybackTop = seeded.Between(-20, 30);
        frame.DisposalMethod = seeded.Below(4);
        frame.TransparentColor = static_cast<uint32_t>(seeded.Next()) & 0x01FFFFFF;
        if (seeded.Below(2) != 0) frame.Flags |= Z_FLAG_PLAYBACK_TRANSPARENCY;
        digest.Add(Z_AppendPlayback(playback, &frame));
        digest.Add(Z_ValidatePlaybackLines(playback, 0, frame.Height - seeded.Below(2)));
        frame.Flags = 0, frame.Palette = nullptr, frame.LevelLUT = nullptr,
        frame.PaintLUT = nullptr; // the list's now
    }
    for (int i = 0; i < 12; ++i) {
        uint32_t state = 0;
        RECT update;
        digest.Add(seeded.Below(6) == 0 ? Z_SetPlaybackIndex(playback, seeded.Between(-1, 3))
                                        : Z_ProcessPlayback(playback, &state));
        digest.Add(static_cast<int32_t>(state));
        digest.Add(Z_GetPlaybackUpdateRect(playback, &update, seeded.Below(2)));
        for (const int32_t edge : {static_cast<int32_t>(update.left), static_cast<int32_t>(update.top),
                                   static_cast<int32_t>(update.right), static_cast<int32_t>(update.bottom)})
            digest.Add(edge);
        AddPixels(digest, canvas);
    }
    BitmapList list = nullptr;
    digest.Add(Z_DestroyPlayback(playback, &list));
    digest.Add(Z_DestroyBitmapList(list));
}

constexpr Family Families[] = {{"playback", 150, PlaybackCase}};

} // namespace

std::span<const Family> PlaybackFamilies() {
    return Families;
}

} // namespace zkr::test
