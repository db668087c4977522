// Rows that the caller feeds one by one, resized in place, with the count of how often each appears.
#include "geometry/resize/stepping.h"
#include "zkr13n/allocation.h"
#include "zkr13n/resize.h"

struct ResizeLineState {
    int32_t LastRow;  // the row given before, -1 at first
    int32_t Backward; // 1 while the caller walks upwards
    int32_t OldWidth, OldHeight, NewWidth, NewHeight;
    int32_t StepX, RemainderX; // source pixels for each target pixel
    int32_t ReservedX[2];
    int32_t StepY, RemainderY; // target rows for each source row
    int32_t ReservedY;
    int32_t ErrorY;
};
static_assert(sizeof(ResizeLineState) == 14 * 4);

namespace zkr {

namespace {

void Synchronise(ResizeLineState& state, uint32_t row) {
    const uint64_t sum = static_cast<uint64_t>(static_cast<uint32_t>(state.RemainderY)) * row;
    state.ErrorY = static_cast<int32_t>(sum % static_cast<uint32_t>(state.OldHeight));
}

// How often the row appears, and the state moved to it.
int32_t RepeatsOf(ResizeLineState& state, uint32_t row) {
    const auto last = static_cast<uint32_t>(state.LastRow);
    const bool goesUp = row == last - 1 && state.LastRow > 0;
    const bool goesOn = goesUp ? state.Backward != 0 : row == last + 1 && state.Backward == 0;
    if (!goesOn) Synchronise(state, row);
    state.Backward = goesUp;
    state.LastRow = static_cast<int32_t>(row);
    int64_t error = state.ErrorY;
    bool passes = false;
    if (goesUp) {
        error -= state.RemainderY;
        passes = error < 0;
        if (passes) error += state.OldHeight;
    } else {
        error += state.RemainderY;
        passes = error >= state.OldHeight;
        if (passes) error -= state.OldHeight;
    }
    state.ErrorY = static_cast<int32_t>(error);
    return state.StepY + (passes ? 1 : 0);
}

void StepInPlace(const ResizeLineState& state, void* row, int32_t bitsPerPixel) {
    if (state.NewWidth == state.OldWidth) return;
    const bool shrinks = state.NewWidth < state.OldWidth;
    const auto step = shrinks && bitsPerPixel >= 8 ? Z_GetResizedScanLine : Z_ReverseGetResizedScanLine;
    const auto width = static_cast<uint32_t>(state.NewWidth);
    step(bitsPerPixel, 0, 0, static_cast<uint32_t>(state.StepX), 0, static_cast<uint32_t>(state.RemainderX),
         row, row, width, state.NewWidth, shrinks ? 0 : 1);
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_StartResize(int32_t oldWidth, int32_t oldHeight, int32_t newWidth, int32_t newHeight,
                                ResizeLineState** state) {
    if (state == nullptr) return code::InvalidArgument;
    const ReturnCode result = CompleteSize(oldWidth, oldHeight, newWidth, newHeight);
    if (result != code::Success) return result;
    auto* made = static_cast<ResizeLineState*>(Z_Malloc(sizeof(ResizeLineState)));
    if (made == nullptr) return code::OutOfMemory;
    *made = {.LastRow = -1,
             .Backward = 0,
             .OldWidth = oldWidth,
             .OldHeight = oldHeight,
             .NewWidth = newWidth,
             .NewHeight = newHeight,
             .StepX = oldWidth / newWidth,
             .RemainderX = oldWidth % newWidth,
             .ReservedX = {},
             .StepY = newHeight / oldHeight,
             .RemainderY = newHeight % oldHeight,
             .ReservedY = 0,
             .ErrorY = 0};
    *state = made;
    return code::Success;
}

ReturnCode Z_CALL Z_Resize(void* row, uint32_t index, int32_t bitsPerPixel, int32_t* newWidth,
                           int32_t* repeat, ResizeLineState* state) {
    if (row == nullptr || newWidth == nullptr || repeat == nullptr || state == nullptr)
        return code::InvalidArgument;
    const bool isSame = state->NewWidth == state->OldWidth && state->NewHeight == state->OldHeight;
    *repeat = isSame ? 1 : RepeatsOf(*state, index);
    *newWidth = state->NewWidth;
    if (*repeat != 0) StepInPlace(*state, row, bitsPerPixel);
    return *repeat;
}

ReturnCode Z_CALL Z_StopResize(ResizeLineState* state) {
    Z_Free(state);
    return code::Success;
}
