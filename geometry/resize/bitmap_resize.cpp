// The handle of a stream and the functions that take it.
#include "core/predicates.h"
#include "geometry/resize/row_stream.h"
#include "geometry/resize/stepping.h"
#include "zkr13n/allocation.h"
#include "zkr13n/resize.h"

#include <new>

struct ResizeRowContext {
    static constexpr uint32_t OurTag = 2516;

    uint32_t Tag = OurTag;
    zkr::RowStream Stream;
};

namespace zkr {

namespace {

void Release(ResizeRowContext* context) {
    context->Tag = 0;
    context->~ResizeRowContext();
    Z_Free(context);
}

bool IsContext(const ResizeRowContext* context) {
    return context != nullptr && context->Tag == ResizeRowContext::OurTag;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_StartResizeBitmap(BitmapHandle* bitmap, int32_t newWidth, int32_t newHeight,
                                      int32_t newBits, const RGBQUAD* palette, uint32_t paletteCount,
                                      uint32_t flags, ResizeReadRow readRow, void* readRowData,
                                      ResizeRowContext** context) {
    if (bitmap == nullptr || (readRow == nullptr && !IsAllocated(bitmap))) return code::InvalidBitmap;
    if (context == nullptr) return code::InvalidArgument;
    ReturnCode result = CompleteSize(bitmap->Width, bitmap->Height, newWidth, newHeight);
    if (result != code::Success) return result;
    void* const memory = Z_Malloc(sizeof(ResizeRowContext));
    if (memory == nullptr) return code::OutOfMemory;
    auto* const made = new (memory) ResizeRowContext;
    const OutputRequest request{newWidth, newHeight, newBits, palette, paletteCount, flags};
    result = made->Stream.Make(bitmap, request, {readRow, readRowData});
    if (result == code::Success)
        *context = made;
    else
        Release(made);
    return result;
}

ReturnCode Z_CALL Z_GetResizedRowCol(ResizeRowContext* context, void* target, int32_t row, int32_t column,
                                     uint32_t bytes) {
    if (!IsContext(context)) return code::InvalidArgument;
    return context->Stream.Get(static_cast<uint8_t*>(target), row, column, bytes);
}

ReturnCode Z_CALL Z_StopResizeBitmap(ResizeRowContext* context) {
    if (!IsContext(context)) return code::InvalidArgument;
    Release(context);
    return code::Success;
}
