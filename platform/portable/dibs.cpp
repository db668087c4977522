#include "platform/portable/dibs.h"

#include "platform/faults.h"
#include "platform/portable/bitmaps.h"
#include "platform/portable/blit.h"
#include "platform/portable/palettes.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zkr::platform {

namespace {

template <typename Result> Result Fail(DWORD error, Result result = {}) {
    SetLastError(error);
    return result;
}

void ReadColours(const BITMAPINFO* info, UINT usage, const ContextState& state,
                 std::array<PALETTEENTRY, 256>& table) {
    const UINT all = 1u << info->bmiHeader.biBitCount;
    const UINT used = info->bmiHeader.biClrUsed;
    const UINT count = used == 0 ? all : std::min(used, all);
    const auto* colours = static_cast<const uint8_t*>(ColoursOf(info));
    for (UINT i = 0; i < count; ++i) {
        if (usage == DIB_PAL_COLORS) {
            WORD index;
            std::memcpy(&index, colours + 2 * i, sizeof index);
            const ColourWord colour = LogicalColour(state.palette, index);
            table[i] = {static_cast<BYTE>(colour >> 16), static_cast<BYTE>(colour >> 8),
                        static_cast<BYTE>(colour), 0};
        } else {
            RGBQUAD colour;
            std::memcpy(&colour, colours + 4 * i, sizeof colour);
            table[i] = {colour.rgbRed, colour.rgbGreen, colour.rgbBlue, 0};
        }
    }
}

} // namespace

bool ReadDib(const BITMAPINFO* info, const void* bits, UINT usage, const ContextState& state, Dib& out) {
    constexpr WORD Depths[] = {1, 4, 8, 16, 24, 32};
    if (info == nullptr || usage > DIB_PAL_COLORS) return Fail(ERROR_INVALID_PARAMETER, false);
    const BITMAPINFOHEADER& header = info->bmiHeader;
    const int64_t height = std::abs(int64_t{header.biHeight});
    const int64_t rowBytes = (int64_t{header.biWidth} * header.biBitCount + 31) / 32 * 4;
    if (header.biSize < sizeof header || header.biPlanes != 1 || header.biCompression != BI_RGB ||
        std::find(std::begin(Depths), std::end(Depths), header.biBitCount) == std::end(Depths) ||
        header.biWidth <= 0 || height == 0 || height > INT32_MAX || rowBytes > PTRDIFF_MAX / height) {
        return Fail(ERROR_INVALID_PARAMETER, false);
    }
    if (header.biBitCount <= 8) ReadColours(info, usage, state, out.table);
    out.topDown = header.biHeight < 0;
    out.rowBytes = static_cast<ptrdiff_t>(rowBytes);
    Pixels& pixels = out.pixels;
    pixels.width = header.biWidth;
    pixels.height = static_cast<int>(height);
    pixels.bitsPerPixel = header.biBitCount;
    pixels.pitch = out.topDown ? out.rowBytes : -out.rowBytes;
    // A blit only reads its source; what is written to has come in without const.
    pixels.topRow = reinterpret_cast<uint8_t*>(reinterpret_cast<uintptr_t>(bits));
    if (bits != nullptr && !out.topDown) pixels.topRow += (pixels.height - 1) * out.rowBytes;
    pixels.colours = out.table.data();
    return true;
}

int StretchDIBits(HDC handle, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                  int sourceHeight, const void* bits, const BITMAPINFO* info, UINT usage, DWORD operation) {
    const Pin<DeviceContext> context(handle);
    if (!context) return 0;
    const ContextLock lock(*context);
    const ContextState& state = context->state;
    Dib dib;
    if (bits == nullptr) return Fail<int>(ERROR_INVALID_PARAMETER);
    if (!ReadDib(info, bits, usage, state, dib)) return 0;
    if (fault::Due(fault::Drawing)) return Fail<int>(ERROR_NOT_ENOUGH_MEMORY);
    if (width == 0 || height == 0 || sourceWidth == 0 || sourceHeight == 0) return dib.pixels.height;

    Blit blit;
    blit.target = *state.surface;
    if (state.clipped) blit.clip = &state.clip;
    blit.operation = RasterOperation(operation);
    blit.source = &dib.pixels;
    blit.x = {x, width, sourceX, sourceWidth};
    // The source's rows are counted from the picture's bottom, whichever way they stand.
    const int64_t fromTop = int64_t{dib.pixels.height} - sourceY - sourceHeight;
    blit.y = {y, height, fromTop, sourceHeight};
    PreparedBrush brush;
    if (blit.operation.NeedsPattern()) {
        if (!brush.Prepare(state, *state.surface)) return Fail<int>(ERROR_NOT_ENOUGH_MEMORY);
        blit.brush = &brush;
    }
    return blit.Run() ? dib.pixels.height : Fail<int>(ERROR_NOT_ENOUGH_MEMORY);
}

namespace {

// The colours of a bitmap as GetDIBits gives them in another depth or its own.
void WriteColours(const Surface& surface, UINT usage, BITMAPINFO* info,
                  std::array<PALETTEENTRY, 256>& table) {
    const int bits = info->bmiHeader.biBitCount;
    if (bits == surface.bitsPerPixel)
        table = surface.table;
    else
        DefaultColours(bits, table.data());
    auto* out = reinterpret_cast<uint8_t*>(info) + info->bmiHeader.biSize;
    for (UINT i = 0; i < 1u << bits; ++i) {
        const RGBQUAD colour{table[i].peBlue, table[i].peGreen, table[i].peRed, 0};
        const auto index = static_cast<WORD>(i);
        if (usage == DIB_PAL_COLORS)
            std::memcpy(out + 2 * i, &index, sizeof index);
        else
            std::memcpy(out + 4 * i, &colour, sizeof colour);
    }
}

void DescribeDib(const Surface& surface, BITMAPINFOHEADER& header) {
    const int64_t rowBytes = (int64_t{surface.width} * surface.bitsPerPixel + 31) / 32 * 4;
    const DWORD size = header.biSize;
    header = {};
    header.biSize = size;
    header.biWidth = surface.width;
    header.biHeight = surface.height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<WORD>(surface.bitsPerPixel);
    header.biSizeImage = static_cast<DWORD>(rowBytes * surface.height);
}

} // namespace

int GetDIBits(HDC handle, HBITMAP bitmapHandle, UINT first, UINT count, void* bits, BITMAPINFO* info,
              UINT usage) {
    const Pin<DeviceContext> context(handle);
    const Pin<Bitmap> bitmap(bitmapHandle);
    if (!context || !bitmap) return 0;
    if (info == nullptr || info->bmiHeader.biSize < sizeof info->bmiHeader)
        return Fail<int>(ERROR_INVALID_PARAMETER);
    if (fault::Due(fault::Drawing)) return Fail<int>(ERROR_NOT_ENOUGH_MEMORY);
    Surface& surface = *bitmap->surface;
    const std::scoped_lock lock(surface.mutex);
    if (info->bmiHeader.biBitCount == 0) {
        DescribeDib(surface, info->bmiHeader);
        return TRUE;
    }
    // The colours that stand there are not read.
    BITMAPINFO asked{info->bmiHeader, {}};
    Dib dib;
    asked.bmiHeader.biSize = sizeof asked.bmiHeader;
    asked.bmiHeader.biClrUsed = 1;
    if (!ReadDib(&asked, bits, usage, ContextState(), dib)) return 0;
    info->bmiHeader.biSizeImage = static_cast<DWORD>(dib.rowBytes * dib.pixels.height);
    if (dib.pixels.bitsPerPixel <= 8) WriteColours(surface, usage, info, dib.table);
    if (bits == nullptr) return dib.pixels.height;

    // The bits hold rows first to first + count of the picture, counted from its bottom whichever way they stand.
    const int64_t rows = std::min<int64_t>(count, int64_t{dib.pixels.height} - first);
    if (rows <= 0) return 0;
    dib.pixels.topRow = static_cast<uint8_t*>(bits) + (dib.topDown ? 0 : (rows - 1) * dib.rowBytes);
    dib.pixels.monochrome = surface.monochrome && dib.pixels.bitsPerPixel == 1;
    const int64_t top = surface.height - int64_t{first} - rows;
    dib.pixels.height = static_cast<int>(rows);
    const int64_t width = dib.pixels.width;
    Blit blit;
    blit.target = dib.pixels;
    blit.source = &surface;
    blit.operation = RasterOperation(SRCCOPY);
    blit.x = {0, width, 0, width};
    blit.y = {0, rows, top, rows};
    return blit.Run() ? static_cast<int>(rows) : Fail<int>(ERROR_NOT_ENOUGH_MEMORY);
}

} // namespace zkr::platform
