// Surfaces and the screen, and the family of functions by which a host brings its own.
#include "platform/portable/screen.h"

#include "platform/portable/fork.h"
#include "zkr13n/surface.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <new>

namespace zkr::platform {

namespace {

// The screen of a process without a screen surface. Its own reference is never dropped.
constinit Surface unseenScreen{1024, 768, 32, true};

constinit std::mutex screenMutex;
constinit Surface* screen = nullptr; // held; null: the unseen one

// A thread that was drawing on the screen is not there in the child, where nobody else would give its mutex back. At
// worst a picture on the child's screen is half drawn.
const ForkPart forkPart(
    ForkOrder::Inner, [] { screenMutex.lock(); },
    [](bool inChild) {
        if (inChild && screen != nullptr) new (&screen->mutex) std::mutex;
        screenMutex.unlock();
    });

// Makes a surface the screen if the one that is meant to go is there, or any with a null going.
void ReplaceScreen(const Surface* going, Surface* next) {
    const std::scoped_lock lock(screenMutex);
    if (going != nullptr && going != screen) return;
    if (next != nullptr) next->Hold();
    if (screen != nullptr) screen->Drop();
    screen = next;
}

ReturnCode Check(const SurfaceDescription& description) {
    if (description.StructSize != sizeof description || description.Bits == nullptr ||
        description.Width < 1 || description.Height < 1) {
        return Z_ERROR_ARGUMENT;
    }
    constexpr int depths[] = {1, 4, 8, 16, 24, 32};
    const int bits = description.BitsPerPixel;
    if (std::find(std::begin(depths), std::end(depths), bits) == std::end(depths))
        return Z_ERROR_BITS_PER_PIXEL;
    const int64_t rowBytes = (int64_t{description.Width} * bits + 7) / 8;
    const int colours = bits <= 8 ? 1 << bits : 0;
    const bool coloursFit = description.ColorCount >= 0 && description.ColorCount <= colours &&
                            (description.ColorCount == 0 || description.Colors != nullptr);
    const bool staticsFit =
        description.StaticColors >= 0 && description.StaticColors <= (bits == 8 ? 256 : 0);
    return description.Pitch >= rowBytes && coloursFit && staticsFit ? Z_SUCCESS : Z_ERROR_ARGUMENT;
}

void Describe(Surface& surface, const SurfaceDescription& description) {
    surface.width = description.Width;
    surface.height = description.Height;
    surface.bitsPerPixel = description.BitsPerPixel;
    surface.staticColours = static_cast<UINT>(description.StaticColors);
    auto* first = static_cast<uint8_t*>(description.Bits);
    const ptrdiff_t toLast = static_cast<ptrdiff_t>(description.Height - 1) * description.Pitch;
    surface.topRow = description.TopDown != 0 ? first : first + toLast;
    surface.pitch = description.TopDown != 0 ? description.Pitch : -description.Pitch;
    for (int i = 0; i < description.ColorCount; ++i) {
        const RGBQUAD& colour = description.Colors[i];
        surface.table[static_cast<size_t>(i)] = {colour.rgbRed, colour.rgbGreen, colour.rgbBlue, 0};
    }
}

} // namespace

Surface* MakeSurface(int width, int height, int bitsPerPixel) {
    const int64_t pitch = (int64_t{width} * bitsPerPixel + 31) / 32 * 4;
    const bool sized = width > 0 && height > 0 && pitch <= PTRDIFF_MAX / height;
    void* memory = sized ? std::calloc(static_cast<size_t>(height), static_cast<size_t>(pitch)) : nullptr;
    auto* surface = memory == nullptr ? nullptr : new (std::nothrow) Surface(width, height, bitsPerPixel);
    if (surface == nullptr) {
        std::free(memory);
        SetLastError(sized ? ERROR_NOT_ENOUGH_MEMORY : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    surface->memory = memory;
    surface->release = std::free;
    surface->topRow = static_cast<uint8_t*>(memory);
    surface->pitch = static_cast<ptrdiff_t>(pitch);
    return surface;
}

Ref<Surface> ScreenSurface() {
    const std::scoped_lock lock(screenMutex);
    return Ref<Surface>(screen == nullptr ? &unseenScreen : screen);
}

HDC GetDC(HWND window) {
    if (window != nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const Ref<Surface> shown = ScreenSurface();
    return MakeContext(*shown, *shown, DeviceContext::Owner::Screen);
}

int ReleaseDC(HWND, HDC handle) {
    const Pin<DeviceContext> context(handle);
    return context && context->owner == DeviceContext::Owner::Screen &&
                   CloseHandleOfKind(DeviceContext::kind, handle)
               ? 1
               : 0;
}

} // namespace zkr::platform

using namespace zkr::platform;

namespace {

bool IsOfHost(const Pin<DeviceContext>& context) {
    return context && context->owner == DeviceContext::Owner::Surface;
}

} // namespace

ReturnCode Z_CALL Z_CreateSurface(const SurfaceDescription* description, HDC* contextOut) {
    if (description == nullptr || contextOut == nullptr) return Z_ERROR_ARGUMENT;
    const ReturnCode result = Check(*description);
    if (result != Z_SUCCESS) return result;

    auto* surface = new (std::nothrow) Surface;
    if (surface == nullptr) return Z_ERROR_MEMORY;
    Describe(*surface, *description);
    HDC context = MakeContext(*surface, *surface, DeviceContext::Owner::Surface);
    surface->Drop();
    if (context == nullptr) return Z_ERROR_MEMORY;
    *contextOut = context;
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_DeleteSurface(HDC handle) {
    const Pin<DeviceContext> context(handle);
    if (!IsOfHost(context) || !CloseHandleOfKind(DeviceContext::kind, handle)) return Z_ERROR_ARGUMENT;
    Surface& surface = *context->device;
    ReplaceScreen(&surface, nullptr);
    const std::scoped_lock lock(surface.mutex);
    surface.topRow = nullptr;
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_SetScreenSurface(HDC handle) {
    if (handle == nullptr) {
        ReplaceScreen(nullptr, nullptr);
        return Z_SUCCESS;
    }
    const Pin<DeviceContext> context(handle);
    if (!IsOfHost(context)) return Z_ERROR_ARGUMENT;
    ReplaceScreen(nullptr, context->device.Get());
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_SelectSurfacePalette(HDC handle, HPALETTE palette) {
    const Pin<DeviceContext> context(handle);
    if (palette == nullptr) palette = static_cast<HPALETTE>(StockHandle(ObjectKind::Palette));
    if (!IsOfHost(context) || SelectPalette(handle, palette, zkr::FALSE) == nullptr) return Z_ERROR_ARGUMENT;
    RealizePalette(handle);
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_GetSurfaceColors(HDC handle, RGBQUAD* colors, int32_t* count) {
    const Pin<DeviceContext> context(handle);
    if (!IsOfHost(context) || count == nullptr || *count < 0 || (colors == nullptr && *count > 0))
        return Z_ERROR_ARGUMENT;
    const ContextLock lock(*context);
    const Surface& surface = *context->device;
    const int size = surface.bitsPerPixel > 8 ? 0 : 1 << surface.bitsPerPixel;
    std::transform(surface.table.begin(), surface.table.begin() + std::min(size, *count), colors,
                   [](const PALETTEENTRY& entry) {
                       return RGBQUAD{entry.peBlue, entry.peGreen, entry.peRed, 0};
                   });
    *count = size;
    return Z_SUCCESS;
}
