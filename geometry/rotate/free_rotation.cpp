#include "geometry/rotate/free_rotation.h"

#include "core/bitmap_lock.h"
#include "core/flags.h"
#include "core/replacement.h"
#include "core/views.h"
#include "geometry/rotate/rotate_rows.h"
#include "geometry/rotate/turn_region.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/rotate.h"

#include <algorithm>
#include <limits>

namespace zkr::geometry {

namespace {

constexpr uint32_t CompressionFlags = flag::Compressed | flag::SuperCompressed;
constexpr int64_t Unit = kernels::RotateUnit;

struct Extent {
    int64_t Width, Height;
};

// Of what holds the four corners, turned about a centre that is rounded up.
Extent GrownExtent(int32_t width, int32_t height, int64_t cosine, int64_t sine) {
    const int64_t cx = (int64_t{width} + 1) / 2, cy = (int64_t{height} + 1) / 2;
    int64_t left = std::numeric_limits<int64_t>::max(), top = left;
    int64_t right = std::numeric_limits<int64_t>::min(), bottom = right;
    for (const int64_t x : {int64_t{0}, int64_t{width} - 1})
        for (const int64_t y : {int64_t{0}, int64_t{height} - 1}) {
            const int64_t dx = x - cx, dy = cy - y;
            const int64_t newX = (dx * cosine - dy * sine) / Unit + cx;
            const int64_t newY = cy - (dx * sine + dy * cosine) / Unit;
            left = std::min(left, newX), right = std::max(right, newX);
            top = std::min(top, newY), bottom = std::max(bottom, newY);
        }
    return {right + 1 - left, bottom + 1 - top};
}

// Indices, and samples that stand for others, cannot be blended.
kernels::RotateMethod MethodFor(const BitmapHandle& bitmap, uint32_t flags) {
    const bool mapped = bitmap.Order == Z_ORDER_GRAY && bitmap.LevelLUT != nullptr;
    const bool indices = bitmap.BitsPerPixel < 8 ||
                         (bitmap.BitsPerPixel == 8 && Z_IsGrayScaleBitmap(&bitmap) != GRAY_ORDEREDNORMAL);
    if (mapped || indices) return kernels::RotateMethod::Nearest;
    if ((flags & ROTATE_CUBIC) != 0) return kernels::RotateMethod::Cubic;
    return (flags & ROTATE_LINEAR) != 0 ? kernels::RotateMethod::Linear : kernels::RotateMethod::Nearest;
}

// Of an axis to which the source's width and height contribute these lengths, in pixels.
int32_t MixedResolution(const BitmapHandle& source, double ofWidth, double ofHeight, int32_t kept) {
    const double length = ofWidth / source.XResolution + ofHeight / source.YResolution;
    if (!(length > 0)) return kept;
    const double mixed = (ofWidth + ofHeight) / length + 0.5;
    const bool fits = mixed > -2147483649.0 && mixed < 2147483648.0;
    return fits ? static_cast<int32_t>(mixed) : kept;
}

void MixResolutions(BitmapHandle& result, const BitmapHandle& source, int32_t cosine, int32_t sine) {
    if (source.XResolution == 0 || source.YResolution == 0) return;
    const double c = cosine < 0 ? -cosine : cosine, s = sine < 0 ? -sine : sine;
    const double width = source.Width, height = source.Height;
    result.XResolution = MixedResolution(source, width * c, height * s, source.XResolution);
    result.YResolution = MixedResolution(source, width * s, height * c, source.YResolution);
}

kernels::RotatePosition FirstPosition(const BitmapHandle& source, const BitmapHandle& result, int64_t cosine,
                                      int64_t sine) {
    const int64_t tx = result.Width / 2, ty = result.Height / 2;
    const int64_t u = -tx * cosine + ty * sine, v = -tx * sine - ty * cosine;
    return {static_cast<int32_t>(source.Width / 2 + u / Unit), static_cast<int32_t>(u % Unit),
            static_cast<int32_t>(source.Height / 2 + v / Unit), static_cast<int32_t>(v % Unit)};
}

// The result has the storage class that the source had before it was expanded.
ReturnCode MakeResult(BitmapHandle& result, BitmapHandle& source, uint32_t form, Extent extent) {
    constexpr int64_t most = std::numeric_limits<int32_t>::max();
    if (extent.Width > most || extent.Height > most) return code::InvalidDimensions;
    const uint32_t flags = source.Flags;
    source.Flags |= form;
    const ReturnCode status =
        Z_DupBitmapNewDim(&result, &source, static_cast<int32_t>(extent.Width),
                          static_cast<int32_t>(extent.Height), source.BitsPerPixel, Z_DUP_DATA);
    source.Flags = flags;
    return status;
}

// A result that could not be made in its source's class tries again; without success it stays as it is.
void RestoreForm(BitmapHandle& result, uint32_t form) {
    if (form == 0 || HasFlag(result, form) || Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) != 0) return;
    Z_ChangeBitmapCompression(&result, form == flag::Compressed ? COMP_RLE : COMP_SUPER);
}

} // namespace

ReturnCode RotateFreely(BitmapHandle& bitmap, const RotationRequest& request) {
    const int32_t angle = IsMirroredView(bitmap.ViewPerspective) ? 36000 - request.Angle : request.Angle;
    const int32_t cosine = Z_CosValue(angle), sine = Z_SinValue(angle);
    const Extent extent = (request.Flags & ROTATE_RESIZE) != 0
                              ? GrownExtent(bitmap.Width, bitmap.Height, cosine, sine)
                              : Extent{bitmap.Width, bitmap.Height};
    const uint32_t form = bitmap.Flags & CompressionFlags;
    ReturnCode status = form != 0 ? Z_ChangeBitmapCompression(&bitmap, COMP_NONE) : code::Success;
    if (status != code::Success) return status;

    BitmapReplacement replacement(&bitmap);
    BitmapHandle& result = replacement.record();
    status = MakeResult(result, bitmap, form, extent);
    if (status != code::Success) return status;
    MixResolutions(result, bitmap, cosine, sine);
    {
        const BitmapLock lockSource(&bitmap);
        const BitmapLock lockResult(&result);
        const RotationPlan plan = {MethodFor(bitmap, request.Flags),
                                   FirstPosition(bitmap, result, cosine, sine), cosine, sine, request.Fill};
        RowProgress progress(request.Start, request.End, result.Height);
        status = progress.Begin();
        if (status == code::Success) status = RotateRows(result, bitmap, plan, progress);
    }
    if (status == code::Success) status = TurnRegion(result, bitmap, request.RegionAngle);
    if (status != code::Success) return status;
    RestoreForm(result, form);
    replacement.Commit();
    return code::Success;
}

} // namespace zkr::geometry
