// Device contexts and the screen, and the family of functions by which a host brings its own surfaces.
#include "platform/portable/device.h"

#include "platform/faults.h"
#include "platform/portable/fork.h"
#include "zkr13n/surface.h"

#include <algorithm>
#include <mutex>
#include <new>

namespace zkr::platform {

namespace {

// The screen of a process without a screen surface. The second reference, its own, is never dropped.
constinit Surface unseenScreen{1024, 768, 32, nullptr, 0, 0, {}, 2};

// What a memory context shows at first. Its own reference too is never dropped.
constinit Surface onePixel{1, 1, 1, nullptr, 0, 0, {}, 1};

constinit std::mutex screenMutex;
const ForkPart forkPart(
    ForkOrder::Inner, [] { screenMutex.lock(); }, [](bool) { screenMutex.unlock(); });
constinit Surface* screen = &unseenScreen; // held

// A context that shows a surface, which it holds from now on; null where memory is short.
HDC MakeContext(Surface& surface, DeviceContext::Owner owner) {
    auto* context = fault::Due(fault::Device) ? nullptr : new (std::nothrow) DeviceContext;
    if (context == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    surface.Hold();
    context->surface = &surface;
    context->owner = owner;
    HANDLE handle = InsertHandle(DeviceContext::kind, *context);
    if (handle == nullptr) context->Release();
    return static_cast<HDC>(handle);
}

// Makes a surface the screen if the one that is meant to go is there, or any with a null going.
void ReplaceScreen(const Surface* going, Surface& next) {
    const std::scoped_lock lock(screenMutex);
    if (going != nullptr && going != screen) return;
    next.Hold();
    screen->Drop();
    screen = &next;
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
        surface.colours[static_cast<size_t>(i)] = {colour.rgbRed, colour.rgbGreen, colour.rgbBlue, 0};
    }
}

} // namespace

void Surface::Drop() {
    if (references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void DeviceContext::Release() {
    surface->Drop();
    delete this;
}

HDC GetDC(HWND window) {
    if (window != nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    const std::scoped_lock lock(screenMutex);
    return MakeContext(*screen, DeviceContext::Owner::Screen);
}

int ReleaseDC(HWND, HDC handle) {
    const Pin<DeviceContext> context(handle);
    return context && context->owner == DeviceContext::Owner::Screen &&
                   CloseHandleOfKind(DeviceContext::kind, handle)
               ? 1
               : 0;
}

HDC CreateCompatibleDC(HDC handle) {
    if (handle != nullptr && !Pin<DeviceContext>(handle)) return nullptr;
    return MakeContext(onePixel, DeviceContext::Owner::Memory);
}

BOOL DeleteDC(HDC handle) {
    const Pin<DeviceContext> context(handle);
    return context && context->owner == DeviceContext::Owner::Memory &&
           CloseHandleOfKind(DeviceContext::kind, handle);
}

int GetDeviceCaps(HDC handle, int index) {
    const Pin<DeviceContext> context(handle);
    if (!context) return 0;
    const Surface& surface = *context->surface;
    const bool palettes = surface.staticColours > 0;
    switch (index) {
    case HORZRES: return surface.width;
    case VERTRES: return surface.height;
    case BITSPIXEL: return surface.bitsPerPixel;
    case PLANES: return 1;
    case RASTERCAPS: return palettes ? RC_PALETTE : 0;
    case LOGPIXELSX:
    case LOGPIXELSY: return 96;
    case SIZEPALETTE: return palettes ? static_cast<int>(surface.colours.size()) : 0;
    case NUMRESERVED: return static_cast<int>(surface.staticColours);
    default: return 0;
    }
}

UINT GetSystemPaletteEntries(HDC handle, UINT start, UINT count, PALETTEENTRY* out) {
    const Pin<DeviceContext> context(handle);
    if (!context || context->surface->staticColours == 0) return 0;
    const auto& colours = context->surface->colours;
    const auto size = static_cast<UINT>(colours.size());
    if (out == nullptr) return size;
    if (start >= size) return 0;
    const UINT copied = std::min(count, size - start);
    std::copy_n(colours.begin() + start, copied, out);
    return copied;
}

} // namespace zkr::platform

using namespace zkr::platform;

ReturnCode Z_CALL Z_CreateSurface(const SurfaceDescription* description, HDC* contextOut) {
    if (description == nullptr || contextOut == nullptr) return Z_ERROR_ARGUMENT;
    const ReturnCode result = Check(*description);
    if (result != Z_SUCCESS) return result;

    auto* surface = new (std::nothrow) Surface;
    if (surface == nullptr) return Z_ERROR_MEMORY;
    Describe(*surface, *description);
    HDC context = MakeContext(*surface, DeviceContext::Owner::Surface);
    surface->Drop();
    if (context == nullptr) return Z_ERROR_MEMORY;
    *contextOut = context;
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_DeleteSurface(HDC handle) {
    const Pin<DeviceContext> context(handle);
    if (!context || context->owner != DeviceContext::Owner::Surface ||
        !CloseHandleOfKind(DeviceContext::kind, handle))
        return Z_ERROR_ARGUMENT;
    ReplaceScreen(context->surface, unseenScreen);
    context->surface->topRow = nullptr;
    return Z_SUCCESS;
}

ReturnCode Z_CALL Z_SetScreenSurface(HDC handle) {
    if (handle == nullptr) {
        ReplaceScreen(nullptr, unseenScreen);
        return Z_SUCCESS;
    }
    const Pin<DeviceContext> context(handle);
    if (!context || context->owner != DeviceContext::Owner::Surface) return Z_ERROR_ARGUMENT;
    ReplaceScreen(nullptr, *context->surface);
    return Z_SUCCESS;
}
