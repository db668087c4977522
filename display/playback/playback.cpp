// The machine of states behind a playback. Each step does one thing and never waits.
#include "zkr13n/playback.h"

#include "core/flags.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "display/playback/canvas.h"
#include "platform/clock.h"
#include "zkr13n/allocation.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zkr::playback {

namespace {

// The rows of the frame added last that are still to come.
class PendingLines {
  public:
    PendingLines() = default;
    ~PendingLines() { Clear(); }
    PendingLines(const PendingLines&) = delete;
    PendingLines& operator=(const PendingLines&) = delete;

    bool IsPending() const { return valid_ != nullptr; }

    ReturnCode Begin(int32_t rows) {
        Clear();
        rows_ = left_ = std::max(rows, 0);
        const auto bytes = static_cast<size_t>(rows_) / 8 + 1;
        valid_ = static_cast<uint8_t*>(Z_Malloc(bytes));
        if (valid_ == nullptr) return code::OutOfMemory;
        std::memset(valid_, 0, bytes);
        return code::Success;
    }
    void Clear() {
        Z_Free(valid_);
        valid_ = nullptr;
    }
    // Rows outside of the frame play no part.
    void Validate(int64_t first, int64_t end) {
        for (int64_t row = std::max<int64_t>(first, 0); row < std::min<int64_t>(end, rows_); ++row) {
            const auto bit = static_cast<uint8_t>(0x80 >> row % 8);
            if ((valid_[row / 8] & bit) != 0) continue;
            valid_[row / 8] |= bit;
            --left_;
        }
        if (left_ == 0) Clear();
    }

  private:
    uint8_t* valid_ = nullptr; // a bit for each row
    int32_t rows_ = 0;
    int32_t left_ = 0;
};

class Playback {
  public:
    Playback(BitmapHandle* target, BitmapList list) : Screen(target), Frames(list) {}

    void Step();
    void CancelWait() {
        if (State == PlaybackWaitInput || IsDelayed()) State = PlaybackDispose;
    }
    ReturnCode GoTo(int32_t index);
    ReturnCode Append(const BitmapHandle& frame);

    bool IsDelayed() const { return State == PlaybackWaitDelay || State == PlaybackWaitDelayInput; }
    uint32_t Elapsed() const { return platform::GetTickCount() - WaitStart; }
    int64_t Count() const {
        uint32_t count = 0;
        Z_GetBitmapListCount(Frames, &count);
        return count;
    }
    // A cleared record where there is none.
    BitmapHandle FrameAt(int64_t index) const {
        BitmapHandle frame{};
        if (index < 0 || Z_GetBitmapListItem(Frames, static_cast<uint32_t>(index), &frame) != code::Success)
            frame = {};
        return frame;
    }

    Canvas Screen;
    BitmapList Frames;
    int32_t Index = -1;
    uint32_t State = PlaybackClear;
    uint32_t WaitStart = 0;
    PendingLines Lines;

  private:
    void Advance() { State = ++Index < Count() ? PlaybackRender : PlaybackEnd; }
    void Render(BitmapHandle& frame);
    void Wait(const BitmapHandle& frame);
};

void Playback::Step() {
    BitmapHandle frame = FrameAt(Index);
    switch (State) {
    case PlaybackClear:
        Screen.Clear();
        State = PlaybackCleared;
        break;
    case PlaybackCleared:
    case PlaybackDisposed: Advance(); break;
    case PlaybackRender:
    case PlaybackAwaitLines: Render(frame); break;
    case PlaybackRendered: Wait(frame); break;
    case PlaybackWaitDelay:
    case PlaybackWaitDelayInput:
        if (Elapsed() >= static_cast<uint32_t>(frame.PlaybackDelay)) State = PlaybackDispose;
        break;
    case PlaybackDispose:
        Screen.Dispose(frame);
        State = PlaybackDisposed;
        break;
    case PlaybackEnd:
        Index = 0;
        State = PlaybackRender;
        break;
    default: break;
    }
}

void Playback::Render(BitmapHandle& frame) {
    if (Lines.IsPending() && Index == Count() - 1) {
        State = PlaybackAwaitLines;
        return;
    }
    Screen.Render(frame);
    State = PlaybackRendered;
}

void Playback::Wait(const BitmapHandle& frame) {
    const bool wantsInput = HasFlag(frame, flag::PlaybackWaitInput);
    if (frame.PlaybackDelay == 0) {
        State = wantsInput ? PlaybackWaitInput : PlaybackDispose;
        return;
    }
    WaitStart = platform::GetTickCount();
    State = wantsInput ? PlaybackWaitDelayInput : PlaybackWaitDelay;
}

ReturnCode Playback::GoTo(int32_t index) {
    if (index < -1 || index > Count()) return code::InvalidArgument;
    Lines.Clear();
    if (Index > index) {
        Screen.DropSaved();
        State = PlaybackClear;
        Index = -1;
    }
    while (Index < index) {
        Step();
        CancelWait();
    }
    return code::Success;
}

ReturnCode Playback::Append(const BitmapHandle& frame) {
    ReturnCode status = Lines.Begin(frame.Height);
    if (status == code::Success) status = Z_InsertBitmapListItem(Frames, UINT32_MAX, &frame);
    if (status != code::Success) {
        Lines.Clear();
        return status;
    }
    const auto last = static_cast<uint32_t>(Count() - 1);
    BitmapHandle stored = FrameAt(last);
    Z_ReleaseBitmap(&stored);
    Z_SetBitmapListItem(Frames, last, &stored);
    if (State == PlaybackEnd) State = PlaybackRender;
    return code::Success;
}

Playback* PlaybackOf(PlaybackHandle handle) {
    return reinterpret_cast<Playback*>(handle);
}

} // namespace

} // namespace zkr::playback

using namespace zkr;
using zkr::playback::Playback;
using zkr::playback::PlaybackOf;

ReturnCode Z_CALL Z_CreatePlayback(PlaybackHandle* playback, BitmapHandle* target, BitmapList frames) {
    if (playback == nullptr) return code::InvalidArgument;
    *playback = nullptr;
    if (!IsAllocated(target)) return code::InvalidArgument;
    BitmapList list = frames;
    if (list == nullptr) {
        const ReturnCode status = Z_CreateBitmapList(&list);
        if (status != code::Success) return status;
    }
    void* const memory = Z_Malloc(sizeof(Playback));
    if (memory == nullptr) {
        if (frames == nullptr) Z_DestroyBitmapList(list);
        return code::OutOfMemory;
    }
    *playback = reinterpret_cast<PlaybackHandle>(new (memory) Playback(target, list));
    return code::Success;
}

ReturnCode Z_CALL Z_DestroyPlayback(PlaybackHandle playback, BitmapList* frames) {
    if (playback == nullptr) return code::InvalidArgument;
    if (frames != nullptr) *frames = PlaybackOf(playback)->Frames;
    PlaybackOf(playback)->~Playback();
    Z_Free(playback);
    return code::Success;
}

ReturnCode Z_CALL Z_ProcessPlayback(PlaybackHandle playback, uint32_t* state) {
    if (playback == nullptr) return code::InvalidArgument;
    PlaybackOf(playback)->Step();
    if (state != nullptr) *state = PlaybackOf(playback)->State;
    return code::Success;
}

ReturnCode Z_CALL Z_CancelPlaybackWait(PlaybackHandle playback) {
    if (playback == nullptr) return code::InvalidArgument;
    PlaybackOf(playback)->CancelWait();
    return code::Success;
}

ReturnCode Z_CALL Z_GetPlaybackState(PlaybackHandle playback, uint32_t* state) {
    if (playback == nullptr || state == nullptr) return code::InvalidArgument;
    *state = PlaybackOf(playback)->State;
    return code::Success;
}

ReturnCode Z_CALL Z_GetPlaybackIndex(PlaybackHandle playback, int32_t* index) {
    if (playback == nullptr || index == nullptr) return code::InvalidArgument;
    *index = PlaybackOf(playback)->Index;
    return code::Success;
}

ReturnCode Z_CALL Z_GetPlaybackDelay(PlaybackHandle playback, uint32_t* milliseconds) {
    if (playback == nullptr || milliseconds == nullptr) return code::InvalidArgument;
    const Playback& self = *PlaybackOf(playback);
    *milliseconds = 0;
    if (!self.IsDelayed()) return code::Success;
    const auto delay = static_cast<uint32_t>(self.FrameAt(self.Index).PlaybackDelay);
    *milliseconds = delay - std::min(delay, self.Elapsed());
    return code::Success;
}

ReturnCode Z_CALL Z_GetPlaybackUpdateRect(PlaybackHandle playback, RECT* rectangle, int32_t clear) {
    if (playback == nullptr) return code::InvalidArgument;
    if (rectangle != nullptr) *rectangle = PlaybackOf(playback)->Screen.Update();
    if (clear != 0) PlaybackOf(playback)->Screen.ClearUpdate();
    return code::Success;
}

ReturnCode Z_CALL Z_ClearPlaybackUpdateRect(PlaybackHandle playback) {
    return Z_GetPlaybackUpdateRect(playback, nullptr, 1);
}

ReturnCode Z_CALL Z_SetPlaybackIndex(PlaybackHandle playback, int32_t index) {
    return playback == nullptr ? code::InvalidArgument : PlaybackOf(playback)->GoTo(index);
}

ReturnCode Z_CALL Z_AppendPlayback(PlaybackHandle playback, const BitmapHandle* frame) {
    if (playback == nullptr || frame == nullptr) return code::InvalidArgument;
    return PlaybackOf(playback)->Append(*frame);
}

ReturnCode Z_CALL Z_ValidatePlaybackLines(PlaybackHandle playback, int32_t row, int32_t count) {
    if (playback == nullptr) return code::InvalidArgument;
    Playback& self = *PlaybackOf(playback);
    if (!self.Lines.IsPending()) return code::Success;
    const int64_t height = self.FrameAt(self.Count() - 1).Height;
    self.Lines.Validate(row, std::min(int64_t{row} + count, height));
    return code::Success;
}
