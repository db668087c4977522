// Any sequence of calls of a playback, with frames of any place and form: the canvas keeps its form, states stay within
// their range, and what has changed lies on the canvas.
#include "input.h"

using namespace fuzz;

namespace {

void Make(Input& input, BitmapHandle& bitmap, int32_t limit) {
    constexpr int32_t views[] = {0, 1, 2, 3, 4, 5, 7, 8};
    const int32_t bits = input.Depth();
    FUZZ_EXPECT(Z_CreateBitmap(&bitmap, MemoryConventional, 1 + input.Below(limit), 1 + input.Below(limit),
                               bits, bits == 12 ? 2 : input.Below(2), nullptr, views[input.Byte() % 8],
                               nullptr, 0) == Z_SUCCESS);
    input.Fill(static_cast<uint8_t*>(bitmap.Addr), bitmap.Size);
}

void Append(Input& input, PlaybackHandle playback) {
    BitmapHandle frame;
    Make(input, frame, 40);
    frame.PlaybackLeft = input.Near(60, -20);
    frame.PlaybackTop = input.Near(60, -20);
    frame.PlaybackDelay = input.Near(3);
    frame.DisposalMethod = input.Near(5);
    frame.TransparentColor = input.Word();
    frame.Flags |= (input.Flip() ? uint32_t{Z_FLAG_PLAYBACK_TRANSPARENCY} : 0) |
                   (input.Flip() ? uint32_t{Z_FLAG_PLAYBACK_WAIT_INPUT} : 0);
    FUZZ_EXPECT(Z_AppendPlayback(playback, &frame) == Z_SUCCESS);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    BitmapHandle canvas;
    Make(input, canvas, 60);
    canvas.PlaybackBackColor = input.Word();
    const BitmapHandle before = canvas;
    PlaybackHandle playback = nullptr;
    FUZZ_EXPECT(Z_CreatePlayback(&playback, &canvas, nullptr) == Z_SUCCESS);
    for (int frames = 0, calls = 0; calls < 60 && !input.IsEmpty(); ++calls) {
        switch (input.Byte() % 8) {
        case 0:
            if (++frames <= 5) Append(input, playback);
            break;
        case 1: Z_ValidatePlaybackLines(playback, input.Near(40, -5), input.Near(40, -5)); break;
        case 2: Z_SetPlaybackIndex(playback, input.Near(6, -1)); break;
        case 3: Z_CancelPlaybackWait(playback); break;
        default: FUZZ_EXPECT(Z_ProcessPlayback(playback, nullptr) == Z_SUCCESS); break;
        }
        uint32_t state = 99;
        RECT update;
        FUZZ_EXPECT(Z_GetPlaybackState(playback, &state) == Z_SUCCESS && state <= PlaybackEnd);
        FUZZ_EXPECT(Z_GetPlaybackUpdateRect(playback, &update, input.Flip()) == Z_SUCCESS);
        FUZZ_EXPECT(update.left >= 0 && update.top >= 0 && update.right <= canvas.Width &&
                    update.bottom <= canvas.Height);
        FUZZ_EXPECT(canvas.Addr == before.Addr && canvas.Flags == before.Flags && canvas.Region == nullptr);
    }
    BitmapList list = nullptr;
    FUZZ_EXPECT(Z_DestroyPlayback(playback, &list) == Z_SUCCESS && Z_DestroyBitmapList(list) == Z_SUCCESS);
    Z_FreeBitmap(&canvas);
    return 0;
}
