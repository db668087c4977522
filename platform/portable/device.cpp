// Device contexts: their making and end, and what is set in them.
#include "platform/portable/device.h"

#include "platform/faults.h"
#include "platform/portable/regions.h"
#include "platform/portable/screen.h"

#include <algorithm>
#include <new>
#include <utility>

namespace zkr::platform {

namespace {

constinit Surface onePixel{1, 1, 1, true}; // its own reference is never dropped

template <typename Result> Result Refuse(Result result) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return result;
}

// Sets a value of a context and gives the one before, or failure for a bad handle.
template <typename Value> Value Exchange(HDC handle, Value ContextState::*member, Value next, Value failure) {
    const Pin<DeviceContext> context(handle);
    if (!context) return failure;
    const std::scoped_lock lock(context->mutex);
    return std::exchange(context->state.*member, next);
}

} // namespace

Surface& OnePixelSurface() {
    return onePixel;
}

void DeviceContext::Release() {
    while (saved != nullptr)
        delete std::exchange(saved, saved->before);
    delete this;
}

HDC MakeContext(Surface& shown, Surface& device, DeviceContext::Owner owner) {
    auto* context = fault::Due(fault::Device) ? nullptr : new (std::nothrow) DeviceContext;
    if (context == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    context->state.surface = Ref<Surface>(&shown);
    context->device = Ref<Surface>(&device);
    context->owner = owner;
    HANDLE handle = InsertHandle(DeviceContext::kind, *context);
    if (handle == nullptr) context->Release();
    return static_cast<HDC>(handle);
}

void ContextLock::Take(std::mutex* first, std::mutex* second) {
    if (reinterpret_cast<uintptr_t>(second) < reinterpret_cast<uintptr_t>(first)) std::swap(first, second);
    if (first == second) first = nullptr;
    for (std::mutex* mutex : {first, second}) {
        if (mutex == nullptr) continue;
        mutex->lock();
        mutexes_[count_++] = mutex;
    }
}

ContextLock::ContextLock(DeviceContext& first, DeviceContext& second) {
    Take(&first.mutex, &second.mutex);
    const auto mutexOf = [](const DeviceContext& context) {
        Surface& shown = *context.state.surface;
        return shown.unseen ? nullptr : &shown.mutex;
    };
    Take(mutexOf(first), mutexOf(second));
}

ContextLock::~ContextLock() {
    while (count_ > 0)
        mutexes_[--count_]->unlock();
}

HDC CreateCompatibleDC(HDC handle) {
    if (handle == nullptr) {
        const Ref<Surface> screen = ScreenSurface();
        return MakeContext(onePixel, *screen, DeviceContext::Owner::Memory);
    }
    const Pin<DeviceContext> context(handle);
    return context ? MakeContext(onePixel, *context->device, DeviceContext::Owner::Memory) : nullptr;
}

BOOL DeleteDC(HDC handle) {
    const Pin<DeviceContext> context(handle);
    return context && context->owner == DeviceContext::Owner::Memory &&
           CloseHandleOfKind(DeviceContext::kind, handle);
}

int SaveDC(HDC handle) {
    const Pin<DeviceContext> context(handle);
    if (!context) return 0;
    const std::scoped_lock lock(context->mutex);
    auto* saved =
        fault::Due(fault::Device) ? nullptr : new (std::nothrow) SavedState{context->state, context->saved};
    if (saved == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    context->saved = saved;
    return ++context->savedCount;
}

BOOL RestoreDC(HDC handle, int level) {
    const Pin<DeviceContext> context(handle);
    if (!context) return FALSE;
    const std::scoped_lock lock(context->mutex);
    if (level < 0) level += context->savedCount + 1;
    if (level < 1 || level > context->savedCount) return Refuse(FALSE);
    while (context->savedCount >= level) {
        SavedState* last = context->saved;
        if (context->savedCount == level) context->state = last->state;
        context->saved = last->before;
        --context->savedCount;
        delete last;
    }
    return TRUE;
}

COLORREF SetTextColor(HDC handle, COLORREF colour) {
    return Exchange(handle, &ContextState::textColour, colour, CLR_INVALID);
}
COLORREF SetBkColor(HDC handle, COLORREF colour) {
    return Exchange(handle, &ContextState::backgroundColour, colour, CLR_INVALID);
}
int SetStretchBltMode(HDC handle, int mode) {
    if (mode < BLACKONWHITE || mode > HALFTONE) return Refuse(0);
    return Exchange(handle, &ContextState::stretchMode, mode, 0);
}
int SetPolyFillMode(HDC handle, int mode) {
    if (mode != ALTERNATE && mode != WINDING) return Refuse(0);
    return Exchange(handle, &ContextState::polyFillMode, mode, 0);
}
BOOL SetBrushOrgEx(HDC handle, int x, int y, POINT* before) {
    const Pin<DeviceContext> context(handle);
    if (!context) return FALSE;
    const std::scoped_lock lock(context->mutex);
    const POINT old = std::exchange(context->state.brushOrigin, POINT{x, y});
    if (before != nullptr) *before = old;
    return TRUE;
}

int SelectClipRgn(HDC handle, HRGN regionHandle) {
    const Pin<DeviceContext> context(handle);
    if (!context) return ERROR;
    PixelSet clip;
    if (regionHandle != nullptr) {
        const Pin<RegionObject> region(regionHandle);
        if (!region) return ERROR;
        clip = region->Get();
    }
    const std::scoped_lock lock(context->mutex);
    context->state.clipped = regionHandle != nullptr;
    context->state.clip = clip;
    return regionHandle == nullptr ? SIMPLEREGION : Complexity(clip);
}

int IntersectClipRect(HDC handle, int left, int top, int right, int bottom) {
    const Pin<DeviceContext> context(handle);
    if (!context) return ERROR;
    PixelSet rect;
    bool made = SetOfRect(
        {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)}, rect);
    const std::scoped_lock lock(context->mutex);
    ContextState& state = context->state;
    if (state.clipped) made = made && Combine(state.clip, rect, Keep::And, rect);
    if (!made) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return ERROR;
    }
    state.clipped = true;
    state.clip = rect;
    return Complexity(rect);
}

int GetClipBox(HDC handle, RECT* box) {
    const Pin<DeviceContext> context(handle);
    if (!context) return ERROR;
    if (box == nullptr) return Refuse(ERROR);
    const std::scoped_lock lock(context->mutex);
    const ContextState& state = context->state;
    RECT visible{0, 0, state.surface->width, state.surface->height};
    if (state.clipped) {
        const RECT clip = state.clip.Bounds();
        visible = {std::max(visible.left, clip.left), std::max(visible.top, clip.top),
                   std::min(visible.right, clip.right), std::min(visible.bottom, clip.bottom)};
        if (visible.left >= visible.right || visible.top >= visible.bottom) visible = {};
    }
    *box = visible;
    if (visible.left == visible.right) return NULLREGION;
    return state.clipped ? Complexity(state.clip) : SIMPLEREGION;
}

int GetDeviceCaps(HDC handle, int index) {
    const Pin<DeviceContext> context(handle);
    if (!context) return 0;
    const std::scoped_lock lock(context->mutex);
    const Surface &device = *context->device, &shown = *context->state.surface;
    const bool palettes = shown.staticColours > 0;
    const auto millimetres = [](int pixels) { return static_cast<int>((int64_t{pixels} * 254 + 480) / 960); };
    switch (index) {
    case TECHNOLOGY: return DT_RASDISPLAY;
    case HORZSIZE: return millimetres(device.width);
    case VERTSIZE: return millimetres(device.height);
    case HORZRES: return device.width;
    case VERTRES: return device.height;
    case BITSPIXEL: return shown.bitsPerPixel;
    case PLANES: return 1;
    case NUMCOLORS:
        return palettes                 ? static_cast<int>(shown.staticColours)
               : shown.bitsPerPixel > 8 ? -1
                                        : 1 << shown.bitsPerPixel;
    case RASTERCAPS:
        return RC_BITBLT | RC_BITMAP64 | RC_DI_BITMAP | RC_STRETCHDIB | (palettes ? RC_PALETTE : 0);
    case LOGPIXELSX:
    case LOGPIXELSY: return 96;
    case SIZEPALETTE: return palettes ? static_cast<int>(shown.table.size()) : 0;
    case NUMRESERVED: return static_cast<int>(shown.staticColours);
    case COLORRES: return palettes ? 24 : 0;
    default: return 0;
    }
}

UINT GetSystemPaletteEntries(HDC handle, UINT start, UINT count, PALETTEENTRY* out) {
    const Pin<DeviceContext> context(handle);
    if (!context) return 0;
    const ContextLock lock(*context);
    if (context->state.surface->staticColours == 0) return 0;
    const auto& table = context->state.surface->table;
    const auto size = static_cast<UINT>(table.size());
    if (out == nullptr) return size;
    if (start >= size) return 0;
    const UINT copied = std::min(count, size - start);
    std::copy_n(table.begin() + start, copied, out);
    return copied;
}

} // namespace zkr::platform
