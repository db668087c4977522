// The display mode of a thread, and the state that holds it.
#include "core/thread_settings.h"
#include "display/modes/paint_state.h"
#include "zkr13n/locks.h"

namespace zkr {

namespace {

constinit PaintState shared;

} // namespace

PaintState& CurrentPaintState() {
    PaintState* state = OfThread<PaintState>();
    return state != nullptr ? *state : shared;
}

} // namespace zkr

using namespace zkr;

uint32_t Z_CALL Z_SetDisplayMode(uint32_t mask, uint32_t value) {
    PaintState& state = CurrentPaintState();
    const uint32_t old = state.Mode;
    if (Z_IsSupportLocked(Z_SUPPORT_BITONAL) != 0)
        mask &= ~uint32_t{DISPLAY_SCALE_TO_GRAY | DISPLAY_COARSE_GRAY};
    if ((old & DISPLAY_INDEXED) == 0 && (value & DISPLAY_INDEXED) != 0) state.WriteIdentityWords();
    state.Mode = (old & ~mask) | (value & mask);
    return old;
}

uint32_t Z_CALL Z_GetDisplayMode(void) {
    return CurrentPaintState().Mode;
}
