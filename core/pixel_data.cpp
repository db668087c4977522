// The bytes that hold one pixel, in and out as they are stored. As in row transfer, only what costs nothing
// is checked.
#include "core/flags.h"
#include "core/return_codes.h"
#include "zkr13n/pixels.h"
#include "zkr13n/rows.h"

using namespace zkr;

namespace {

// Calls move(bytes) with the count of bytes that any bit of the pixel lies in.
template <typename Move>
ReturnCode MovePixel(const BitmapHandle& bitmap, const void* data, int32_t column, uint32_t size, Move move) {
    if (!HasFlag(bitmap, flag::Allocated)) return code::InvalidBitmap;
    const int64_t firstBit = int64_t{column} * bitmap.BitsPerPixel;
    const int64_t bytes = (firstBit + bitmap.BitsPerPixel + 7) / 8 - firstBit / 8;
    if (data == nullptr || size < bytes) return code::InvalidArgument;
    return move(static_cast<uint32_t>(bytes)) == bytes ? code::Success : code::OutOfMemory;
}

} // namespace

ReturnCode Z_CALL Z_GetPixelData(BitmapHandle* bitmap, void* data, int32_t row, int32_t column,
                                 uint32_t size) {
    return MovePixel(*bitmap, data, column, size,
                     [=](uint32_t bytes) { return Z_GetBitmapRowCol(bitmap, data, row, column, bytes); });
}

ReturnCode Z_CALL Z_PutPixelData(BitmapHandle* bitmap, const void* data, int32_t row, int32_t column,
                                 uint32_t size) {
    return MovePixel(*bitmap, data, column, size,
                     [=](uint32_t bytes) { return Z_PutBitmapRowCol(bitmap, data, row, column, bytes); });
}
