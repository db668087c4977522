// Sizing of whole bitmaps: which method is meant, whether the request can be met, and what becomes of the region.
#include "zkr13n/sizing.h"

#include "core/dispatch.h"
#include "core/predicates.h"
#include "core/replacement.h"
#include "core/views.h"
#include "geometry/resize/stepping.h"
#include "geometry/sizing/sizing_work.h"
#include "zkr13n/flip.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"

namespace zkr {

namespace {

enum class Method : uint8_t { Nearest, Strokes, Linear, Spline };

bool Grows(const BitmapHandle& source, int32_t newWidth, int32_t newHeight) {
    return newWidth > source.Width || newHeight > source.Height;
}

bool KeepsBlack(const BitmapHandle& bitmap, uint32_t flags) {
    return (flags & SIZE_KEEP_BLACK) != 0 && bitmap.BitsPerPixel == 1 &&
           Z_IsSupportLocked(Z_SUPPORT_BITONAL) == 0 && Z_IsGrayScaleBitmap(&bitmap) != GRAY_NO;
}

// What a bitmap is given other dimensions by: splines before strokes before steps.
Method MethodOfSizing(const BitmapHandle& bitmap, int32_t newWidth, int32_t newHeight, uint32_t flags) {
    const bool keepsBlack = KeepsBlack(bitmap, flags);
    if ((flags & SIZE_LINEAR) != 0 && !keepsBlack) return Method::Linear;
    if ((flags & SIZE_CUBIC) != 0)
        return Grows(bitmap, newWidth, newHeight) ? Method::Spline : Method::Linear;
    return keepsBlack ? Method::Strokes : Method::Nearest;
}

// What a bitmap is filled with another by: strokes before steps before splines, whatever the palette.
Method MethodOfFilling(const BitmapHandle& source, const BitmapHandle& target, uint32_t flags) {
    if ((flags & SIZE_KEEP_BLACK) != 0 && source.BitsPerPixel == 1 && target.BitsPerPixel == 1)
        return Method::Strokes;
    if ((flags & SIZE_LINEAR) != 0) return Method::Linear;
    if ((flags & SIZE_CUBIC) == 0) return Method::Nearest;
    return Grows(source, target.Width, target.Height) ? Method::Spline : Method::Linear;
}

ReturnCode Fill(BitmapHandle& source, BitmapHandle& target, Method method) {
    switch (method) {
    case Method::Nearest: return FillNearest(source, target);
    case Method::Strokes: return FillKeepingStrokes(source, target);
    default: return FillBlended(source, target, method == Method::Spline);
    }
}

// The new record shares the region of the old one until it has been scaled, by pixels as they were.
ReturnCode ScaleRegion(BitmapHandle& bitmap, BitmapHandle& made, Method method) {
    const int32_t width = made.Width, height = made.Height;
    if (method == Method::Nearest || method == Method::Strokes) {
        const ReturnCode result = Dispatch().ScaleBitmapRegion(&bitmap, width, height);
        made.Region = bitmap.Region;
        return result;
    }
    made.Width = bitmap.Width;
    made.Height = bitmap.Height;
    const ReturnCode result = Dispatch().ScaleBitmapRegion(&made, width, height);
    made.Width = width;
    made.Height = height;
    if (result != code::Success) bitmap.Region = made.Region;
    return result;
}

// A region that stands for another bitmap than the source is one of the source's pixels, and goes with them.
ReturnCode ScaleTargetRegion(BitmapHandle& source, BitmapHandle& target) {
    if (target.Region == nullptr || target.Region == source.Region) return code::Success;
    void* const own = source.Region;
    source.Region = target.Region;
    const ReturnCode result = Dispatch().ScaleBitmapRegion(&source, target.Width, target.Height);
    target.Region = source.Region;
    source.Region = own;
    return result;
}

ReturnCode FillFrom(BitmapHandle& source, BitmapHandle& target, uint32_t flags) {
    const ReturnCode result = Fill(source, target, MethodOfFilling(source, target, flags));
    return result == code::Success ? ScaleTargetRegion(source, target) : result;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_SizeBitmap(BitmapHandle* bitmap, int32_t newWidth, int32_t newHeight, uint32_t flags) {
    if (!IsAllocated(bitmap)) return code::InvalidArgument;
    if (bitmap->Width == newWidth && bitmap->Height == newHeight) return code::Success;
    ReturnCode result = CompleteSize(bitmap->Width, bitmap->Height, newWidth, newHeight);
    if (result != code::Success) return result;
    const Method method = MethodOfSizing(*bitmap, newWidth, newHeight, flags);
    BitmapReplacement replacement(bitmap);
    BitmapHandle& made = replacement.record();
    result = Z_DupBitmapNewDim(&made, bitmap, newWidth, newHeight, bitmap->BitsPerPixel, Z_DUP_DATA);
    if (result == code::Success) result = Fill(*bitmap, made, method);
    if (result == code::Success) result = ScaleRegion(*bitmap, made, method);
    if (result == code::Success) replacement.Commit();
    return result;
}

ReturnCode Z_CALL Z_ResizeBitmap(BitmapHandle* source, BitmapHandle* target) {
    return Z_ResizeBitmapExt(source, target, 0);
}

ReturnCode Z_CALL Z_ResizeBitmapExt(BitmapHandle* source, BitmapHandle* target, uint32_t flags) {
    if (!IsAllocated(source) || !IsAllocated(target)) return code::InvalidBitmap;
    if (DifferInRowOrderAtMost(source->ViewPerspective, target->ViewPerspective))
        return FillFrom(*source, *target, flags);
    constexpr uint32_t owned = Z_DUP_DATA | Z_DUP_PALETTE | Z_DUP_REGION;
    BitmapHandle turned = {};
    ReturnCode result = Z_IntChangeBitmapViewPerspective(&turned, source, target->ViewPerspective, owned);
    if (result != code::Success) return result;
    result = FillFrom(turned, *target, flags);
    Z_FreeDuplicateBitmap(&turned, owned);
    return result;
}

ReturnCode Z_CALL Z_KrnSizeBitmapRgn(BitmapHandle* bitmap, int32_t newWidth, int32_t newHeight) {
    return Dispatch().ScaleBitmapRegion(bitmap, newWidth, newHeight);
}
