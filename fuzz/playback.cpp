// Any sequence of calls of a playback, with frames of any place and form: the canvas keeps its form, states stay within
// their range, and what has changed lies on the canvas.
#include "input.h"

using namespace fuzz;

namespace {

void Append(Input& input, PlaybackHandle playback) {
    AnyBitmap frame(input, {40, 40, MemoryConventional});
    frame.PlaybackLeft = input.Near(60, -20);
    frame.PlaybackTop = input.Near(60, -20);
    const int32_t delay = input.Near(3);
    frame.PlaybackDelay = IsExactOnly ? 0 : delay; // time goes as the platform has it
    frame.DisposalMethod = input.Near(5);
    frame.TransparentColor = input.Word();
    frame.Flags |= (input.Flip() ? uint32_t{Z_FLAG_PLAYBACK_TRANSPARENCY} : 0) |
                   (input.Flip() ? uint32_t{Z_FLAG_PLAYBACK_WAIT_INPUT} : 0);
    FUZZ_EXPECT(Z_AppendPlayback(playback, &frame) == Z_SUCCESS);
    frame.Forget();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    AnyBitmap canvas(input, {60, 60, MemoryConventional});
    canvas.PlaybackBackColor = input.Word();
    const BitmapHandle before = canvas;
    PlaybackHandle playback = nullptr;
    FUZZ_EXPECT(Z_CreatePlayback(&playback, &canvas, nullptr) == Z_SUCCESS);
    for (int frames = 0, calls = 0; calls < 60 && !input.IsEmpty(); ++calls) {
        switch (input.Byte() % 8) {
        case 0:
            if (++frames <= 5) Append(input, playback);
            break;
        case 1: {
            const int32_t first = input.Near(40, -5);
            Note(Z_ValidatePlaybackLines(playback, first, input.Near(40, -5)));
            break;
        }
        case 2: Note(Z_SetPlaybackIndex(playback, input.Near(6, -1))); break;
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
        NoteEach({state, update.left, update.top, update.right, update.bottom});
        NotePixels(canvas);
    }
    BitmapList list = nullptr;
    FUZZ_EXPECT(Z_DestroyPlayback(playback, &list) == Z_SUCCESS && Z_DestroyBitmapList(list) == Z_SUCCESS);
    return 0;
}
