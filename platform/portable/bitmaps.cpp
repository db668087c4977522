#include "platform/portable/bitmaps.h"

#include "platform/faults.h"
#include "platform/portable/dibs.h"
#include "platform/portable/memory.h"
#include "platform/portable/palettes.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace zkr::platform {

namespace {

constexpr DWORD Granularity = 65536; // of the offsets of views

template <typename Result> Result Fail(DWORD error, Result result = {}) {
    SetLastError(error);
    return result;
}

// Takes over the surface, a null one too.
Bitmap* MakeBitmap(Surface* surface) {
    auto* bitmap = surface == nullptr ? nullptr : new (std::nothrow) Bitmap;
    if (bitmap != nullptr)
        bitmap->surface = Ref<Surface>(surface);
    else
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    if (surface != nullptr) surface->Drop();
    return bitmap;
}

HBITMAP Insert(Bitmap* bitmap) {
    HANDLE handle = InsertHandle(Bitmap::kind, *bitmap);
    if (handle == nullptr) bitmap->Release();
    return static_cast<HBITMAP>(handle);
}

void Unmap(void* memory) {
    const auto address = reinterpret_cast<uintptr_t>(memory);
    UnmapViewOfFile(reinterpret_cast<const void*>(address));
}

} // namespace

HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void* bits) {
    constexpr UINT Depths[] = {1, 4, 8, 16, 24, 32};
    if (width == 0 || height == 0) width = height = static_cast<int>(bitsPerPixel = 1);
    if (width < 0 || height < 0 || planes != 1 ||
        std::find(std::begin(Depths), std::end(Depths), bitsPerPixel) == std::end(Depths)) {
        return Fail<HBITMAP>(ERROR_INVALID_PARAMETER);
    }
    if (fault::Due(fault::Device)) return Fail<HBITMAP>(ERROR_NOT_ENOUGH_MEMORY);
    Bitmap* bitmap = MakeBitmap(MakeSurface(width, height, static_cast<int>(bitsPerPixel)));
    if (bitmap == nullptr) return nullptr;
    Surface& surface = *bitmap->surface;
    surface.monochrome = bitsPerPixel == 1;
    if (bitsPerPixel <= 8) DefaultColours(static_cast<int>(bitsPerPixel), surface.table.data());
    const size_t rowBytes = (static_cast<size_t>(width) * bitsPerPixel + 15) / 16 * 2;
    for (int y = 0; y < height && bits != nullptr; ++y)
        std::memcpy(surface.Row(y), static_cast<const uint8_t*>(bits) + static_cast<size_t>(y) * rowBytes,
                    rowBytes);
    return Insert(bitmap);
}

HBITMAP CreateCompatibleBitmap(HDC handle, int width, int height) {
    const Pin<DeviceContext> context(handle);
    if (!context) return nullptr;
    const ContextLock lock(*context);
    const Surface& like = *context->state.surface;
    if (width == 0 || height == 0 || like.bitsPerPixel == 1)
        return CreateBitmap(width, height, 1, 1, nullptr);
    if (width < 0 || height < 0) return Fail<HBITMAP>(ERROR_INVALID_PARAMETER);
    if (fault::Due(fault::Device)) return Fail<HBITMAP>(ERROR_NOT_ENOUGH_MEMORY);
    Bitmap* bitmap = MakeBitmap(MakeSurface(width, height, like.bitsPerPixel));
    if (bitmap == nullptr) return nullptr;
    bitmap->surface->table = like.table;
    bitmap->surface->staticColours = like.staticColours;
    return Insert(bitmap);
}

HBITMAP CreateDIBSection(HDC handle, const BITMAPINFO* info, UINT usage, void** bitsOut, HANDLE section,
                         DWORD offset) {
    ContextState state;
    if (handle != nullptr) {
        const Pin<DeviceContext> context(handle);
        if (!context) return nullptr;
        const std::scoped_lock lock(context->mutex);
        state = context->state;
    }
    Dib dib;
    if (!ReadDib(info, nullptr, usage, state, dib)) return nullptr;
    if (section != nullptr && offset % 4 != 0) return Fail<HBITMAP>(ERROR_INVALID_PARAMETER);
    if (fault::Due(fault::Device)) return Fail<HBITMAP>(ERROR_NOT_ENOUGH_MEMORY);

    Surface* surface = nullptr;
    if (section == nullptr) {
        surface = MakeSurface(dib.pixels.width, dib.pixels.height, dib.pixels.bitsPerPixel);
    } else {
        const DWORD before = offset % Granularity;
        const auto bytes = static_cast<size_t>(dib.rowBytes) * static_cast<size_t>(dib.pixels.height);
        void* view = MapViewOfFile(section, FILE_MAP_WRITE, 0, offset - before, bytes + before);
        if (view == nullptr) return nullptr;
        surface = new (std::nothrow) Surface(dib.pixels.width, dib.pixels.height, dib.pixels.bitsPerPixel);
        if (surface == nullptr) {
            Unmap(view);
        } else {
            surface->memory = view;
            surface->release = Unmap;
            surface->topRow = static_cast<uint8_t*>(view) + before;
            surface->pitch = dib.rowBytes;
        }
    }
    Bitmap* bitmap = MakeBitmap(surface);
    if (bitmap == nullptr) return nullptr;
    surface->table = dib.table;
    bitmap->bits = surface->topRow;
    if (!dib.topDown) {
        surface->topRow = surface->Row(surface->height - 1);
        surface->pitch = -surface->pitch;
    }
    bitmap->ofSection = true;
    bitmap->section = section;
    bitmap->sectionOffset = offset;
    BITMAPINFOHEADER& header = bitmap->header = info->bmiHeader;
    header.biSize = sizeof header;
    header.biSizeImage = static_cast<DWORD>(dib.rowBytes * dib.pixels.height);
    header.biClrUsed = header.biBitCount > 8 ? 0 : 1u << header.biBitCount;
    void* bits = bitmap->bits;
    HBITMAP made = Insert(bitmap);
    if (bitsOut != nullptr) *bitsOut = made == nullptr ? nullptr : bits;
    return made;
}

int DescribeBitmap(HBITMAP handle, int size, void* out) {
    const Pin<Bitmap> bitmap(handle);
    if (!bitmap) return 0;
    if (out == nullptr) return sizeof(BITMAP);
    if (size < static_cast<int>(sizeof(BITMAP))) return 0;
    const Surface& surface = *bitmap->surface;
    const int64_t rowBits = int64_t{surface.width} * surface.bitsPerPixel;
    const int64_t rowBytes = bitmap->ofSection ? (rowBits + 31) / 32 * 4 : (rowBits + 15) / 16 * 2;
    DIBSECTION record{};
    record.dsBm = {0,
                   surface.width,
                   surface.height,
                   static_cast<LONG>(rowBytes),
                   1,
                   static_cast<WORD>(surface.bitsPerPixel),
                   bitmap->bits};
    record.dsBmih = bitmap->header;
    record.dshSection = bitmap->section;
    record.dsOffset = bitmap->sectionOffset;
    const bool whole = bitmap->ofSection && size >= static_cast<int>(sizeof record);
    const size_t bytes = whole ? sizeof record : sizeof record.dsBm;
    std::memcpy(out, &record, bytes);
    return static_cast<int>(bytes);
}

} // namespace zkr::platform
