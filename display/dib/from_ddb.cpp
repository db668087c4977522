// Bitmaps of platform bitmaps.
#include "core/depth.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "display/dib/contexts.h"
#include "display/dib/dib_header.h"
#include "display/dib/locked_block.h"
#include "zkr13n/dib.h"

#include <cstring>
#include <limits>

namespace zkr::dib {

namespace {

int32_t DepthOfDevice(const platform::BITMAP& described) {
    const int32_t bits = int32_t{described.bmPlanes} * described.bmBitsPixel;
    return bits <= 1 ? 1 : bits <= 4 ? 4 : bits <= 8 ? 8 : 24;
}

BITMAPINFOHEADER HeaderOf(const platform::BITMAP& described) {
    BITMAPINFOHEADER header{};
    header.biSize = InfoHeaderBytes;
    header.biWidth = described.bmWidth;
    header.biHeight = described.bmHeight;
    header.biPlanes = 1;
    header.biBitCount = static_cast<uint16_t>(DepthOfDevice(described));
    const uint64_t bytes = StorageRowBytes(header.biWidth, header.biBitCount) *
                           static_cast<uint64_t>(described.bmHeight > 0 ? described.bmHeight : 0);
    header.biSizeImage = bytes <= std::numeric_limits<uint32_t>::max() ? static_cast<uint32_t>(bytes) : 0;
    return header;
}

// Fills a block of which the header tells the form. The platform may write the header again.
ReturnCode ReadPixels(HDC given, HBITMAP source, HPALETTE palette, const BITMAPINFOHEADER& header,
                      HGLOBAL handle, size_t headBytes) {
    const DeviceOrScreen context(given);
    const LockedBlock block(handle);
    if (context.Get() == nullptr || block.Data() == nullptr) return code::OutOfMemory;
    std::memcpy(block.Data(), &header, sizeof header);
    const SelectedPalette selected(context.Get(), palette);
    const int rows = platform::GetDIBits(
        context.Get(), source, 0, static_cast<uint32_t>(header.biHeight), block.Data() + headBytes,
        reinterpret_cast<platform::BITMAPINFO*>(block.Data()), DIB_RGB_COLORS);
    return rows == header.biHeight ? code::Success : code::InvalidArgument;
}

ReturnCode FromDdb(HDC context, BitmapHandle& bitmap, HBITMAP source, HPALETTE palette) {
    platform::BITMAP described{};
    constexpr int size = sizeof described;
    if (source == nullptr || platform::GetObjectA(source, size, &described) != size)
        return code::InvalidArgument;
    const BITMAPINFOHEADER header = HeaderOf(described);
    const uint64_t colours = header.biBitCount <= MostIndexedBits ? uint64_t{1} << header.biBitCount : 0;
    const uint64_t headBytes = InfoHeaderBytes + colours * sizeof(RGBQUAD);
    const uint64_t bytes = headBytes + StorageRowBytes(header.biWidth, header.biBitCount) *
                                           static_cast<uint64_t>(header.biHeight);
    if (header.biHeight <= 0 || !FitsSize(bytes)) return code::InvalidArgument;
    HGLOBAL block =
        platform::GlobalAlloc(GMEM_MOVEABLE | GMEM_SHARE | GMEM_ZEROINIT, static_cast<size_t>(bytes));
    if (block == nullptr) return code::OutOfMemory;
    ReturnCode status = ReadPixels(context, source, palette, header, block, static_cast<size_t>(headBytes));
    if (status == code::Success) status = Z_ChangeFromDIB(&bitmap, block);
    if (status != code::Success) platform::GlobalFree(block);
    return status;
}

} // namespace

} // namespace zkr::dib

using namespace zkr;

ReturnCode Z_CALL Z_ConvertFromDDB(HDC deviceContext, BitmapHandle* bitmap, HBITMAP platformBitmap,
                                   HPALETTE platformPalette) {
    if (bitmap == nullptr) return code::InvalidArgument;
    const ReturnCode status = dib::FromDdb(deviceContext, *bitmap, platformBitmap, platformPalette);
    if (status != code::Success) *bitmap = {};
    return status;
}

ReturnCode Z_CALL Z_ChangeFromDDB(HDC deviceContext, BitmapHandle* bitmap, HBITMAP platformBitmap,
                                  HPALETTE platformPalette) {
    const ReturnCode status = Z_ConvertFromDDB(deviceContext, bitmap, platformBitmap, platformPalette);
    if (status != code::Success) return status;
    platform::DeleteObject(platformBitmap);
    if (platformPalette != nullptr) platform::DeleteObject(platformPalette);
    return status;
}
