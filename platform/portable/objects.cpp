// What all kinds of graphics objects have in common.
#include "platform/portable/bitmaps.h"
#include "platform/portable/brushes.h"
#include "platform/portable/device.h"
#include "platform/portable/palettes.h"
#include "platform/portable/regions.h"
#include "zkr13n/surface.h"

namespace zkr::platform {

namespace {

HGDIOBJ Refuse(DWORD error) {
    SetLastError(error);
    return nullptr;
}

HGDIOBJ SelectBitmap(DeviceContext& context, HBITMAP handle) {
    if (context.owner != DeviceContext::Owner::Memory) return Refuse(ERROR_INVALID_PARAMETER);
    Ref<Surface> surface(&OnePixelSurface());
    if (handle != StockHandle(Bitmap::kind)) {
        const Pin<Bitmap> bitmap(handle);
        if (!bitmap) return nullptr;
        surface = bitmap->surface;
    }
    const std::scoped_lock lock(context.mutex);
    context.state.surface = surface;
    return std::exchange(context.state.bitmap, handle);
}

HGDIOBJ SelectBrush(DeviceContext& context, HBRUSH handle) {
    Ref<Brush> held;
    if (handle != StockHandle(Brush::kind)) {
        const Pin<Brush> brush(handle);
        if (!brush) return nullptr;
        held = Ref<Brush>(&*brush);
    }
    const std::scoped_lock lock(context.mutex);
    context.state.brush = held;
    return std::exchange(context.state.brushHandle, handle);
}

} // namespace

HGDIOBJ SelectObject(HDC handle, HGDIOBJ object) {
    const Pin<DeviceContext> context(handle);
    if (!context) return nullptr;
    switch (ClaimedKind(object)) {
    case ObjectKind::Bitmap: return SelectBitmap(*context, static_cast<HBITMAP>(object));
    case ObjectKind::Brush: return SelectBrush(*context, static_cast<HBRUSH>(object));
    case ObjectKind::Region:
        return reinterpret_cast<HGDIOBJ>(
            static_cast<intptr_t>(SelectClipRgn(handle, static_cast<HRGN>(object))));
    default: return Refuse(ERROR_INVALID_HANDLE);
    }
}

// What a context has selected lives on in it without a handle.
BOOL DeleteObject(HGDIOBJ object) {
    const ObjectKind kind = ClaimedKind(object);
    switch (kind) {
    case ObjectKind::Palette:
    case ObjectKind::Region:
    case ObjectKind::Bitmap:
    case ObjectKind::Brush:
        return object == StockHandle(kind) || CloseHandleOfKind(kind, object) ? TRUE : FALSE;
    default: SetLastError(ERROR_INVALID_HANDLE); return FALSE;
    }
}

int GetObjectA(HGDIOBJ object, int size, void* out) {
    switch (ClaimedKind(object)) {
    case ObjectKind::Palette: return DescribePalette(static_cast<HPALETTE>(object), size, out);
    case ObjectKind::Bitmap: return DescribeBitmap(static_cast<HBITMAP>(object), size, out);
    default: SetLastError(ERROR_INVALID_HANDLE); return 0;
    }
}

} // namespace zkr::platform

using namespace zkr::platform;

ReturnCode Z_CALL Z_DeleteObject(HANDLE object) {
    const ObjectKind kind = ClaimedKind(object);
    const bool ofHosts =
        kind == ObjectKind::Palette || kind == ObjectKind::Region || kind == ObjectKind::Bitmap;
    return ofHosts && CloseHandleOfKind(kind, object) ? Z_SUCCESS : Z_ERROR_ARGUMENT;
}
