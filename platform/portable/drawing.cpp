// Calls that draw from one context onto another, or with a brush.
#include "platform/faults.h"
#include "platform/portable/blit.h"
#include "platform/portable/device.h"
#include "platform/portable/regions.h"

#include <algorithm>
#include <cstring>

namespace zkr::platform {

namespace {

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

bool Paint(const ContextState& state, Blit& blit) {
    PreparedBrush brush;
    if (blit.operation.NeedsPattern()) {
        if (!brush.Prepare(state, *state.surface)) return false;
        blit.brush = &brush;
    }
    return blit.Run();
}

Blit OnSurface(const ContextState& state, int x, int y, int width, int height, DWORD operation) {
    Blit blit;
    blit.target = *state.surface;
    if (state.clipped) blit.clip = &state.clip;
    blit.x = {x, width, 0, width};
    blit.y = {y, height, 0, height};
    blit.operation = RasterOperation(operation);
    return blit;
}

// Within one surface the rows of the source are copied first.
bool CopyAside(const Surface& surface, Blit& blit, Ref<Surface>& kept) {
    const int64_t other = blit.y.from + blit.y.fromExtent;
    const int64_t top = std::max<int64_t>(std::min(blit.y.from, other), 0);
    const int64_t bottom = std::min<int64_t>(std::max(blit.y.from, other) + 1, surface.height);
    if (top >= bottom || surface.topRow == nullptr) {
        blit.y.toExtent = 0;
        return true;
    }
    Surface* copy = MakeSurface(surface.width, static_cast<int>(bottom - top), surface.bitsPerPixel);
    if (copy == nullptr) return false;
    kept = Ref<Surface>(copy);
    copy->Drop();
    copy->monochrome = surface.monochrome;
    copy->table = surface.table;
    const auto rowBytes = static_cast<size_t>((int64_t{surface.width} * surface.bitsPerPixel + 7) / 8);
    for (int64_t y = top; y < bottom; ++y)
        std::memcpy(copy->Row(y - top), surface.Row(y), rowBytes);
    blit.y.from -= top;
    blit.source = copy;
    return true;
}

} // namespace

BOOL PatBlt(HDC handle, int x, int y, int width, int height, DWORD operation) {
    const Pin<DeviceContext> context(handle);
    if (!context) return FALSE;
    if (fault::Due(fault::Drawing)) return Fail(ERROR_NOT_ENOUGH_MEMORY);
    const ContextLock lock(*context);
    Blit blit = OnSurface(context->state, x, y, width, height, operation);
    if (blit.operation.NeedsSource()) return Fail(ERROR_INVALID_PARAMETER);
    return Paint(context->state, blit) ? TRUE : Fail(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL PaintRgn(HDC handle, HRGN regionHandle) {
    const Pin<DeviceContext> context(handle);
    const Pin<RegionObject> region(regionHandle);
    if (!context || !region) return FALSE;
    const ContextLock lock(*context);
    const ContextState& state = context->state;
    PixelSet painted = region->Get();
    if (fault::Due(fault::Drawing) || (state.clipped && !Combine(painted, state.clip, Keep::And, painted))) {
        return Fail(ERROR_NOT_ENOUGH_MEMORY);
    }
    Blit blit = OnSurface(state, 0, 0, state.surface->width, state.surface->height, PATCOPY);
    blit.clip = &painted;
    return Paint(state, blit) ? TRUE : Fail(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL BitBlt(HDC handle, int x, int y, int width, int height, HDC sourceHandle, int sourceX, int sourceY,
            DWORD operation) {
    if (!RasterOperation(operation).NeedsSource()) return PatBlt(handle, x, y, width, height, operation);
    const Pin<DeviceContext> context(handle), from(sourceHandle);
    if (!context || !from) return FALSE;
    if (fault::Due(fault::Drawing)) return Fail(ERROR_NOT_ENOUGH_MEMORY);
    const ContextLock lock(*context, *from);
    const ContextState &state = context->state, &sourceState = from->state;
    const Surface& source = *sourceState.surface;

    Blit blit = OnSurface(state, x, y, width, height, operation);
    blit.x.from = sourceX;
    blit.y.from = sourceY;
    blit.source = &source;
    blit.colours = {ResolveColour(state.textColour, state), ResolveColour(state.backgroundColour, state),
                    true, ResolveColour(sourceState.backgroundColour, sourceState)};
    Ref<Surface> kept;
    if (&source == state.surface.Get() && !CopyAside(source, blit, kept))
        return Fail(ERROR_NOT_ENOUGH_MEMORY);
    return Paint(state, blit) ? TRUE : Fail(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL GdiFlush() {
    return TRUE;
}

} // namespace zkr::platform
