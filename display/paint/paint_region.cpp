// Painting where a bitmap's region lies.
#include "core/predicates.h"
#include "core/return_codes.h"
#include "platform/graphics.h"
#include "zkr13n/paint.h"
#include "zkr13n/region.h"

using namespace zkr;

namespace {

// The context with the region as its clip, for a scope.
class RegionClip {
  public:
    explicit RegionClip(HDC context) : context_(context) {}
    ~RegionClip() {
        if (saved_) platform::RestoreDC(context_, -1);
    }
    RegionClip(const RegionClip&) = delete;
    RegionClip& operator=(const RegionClip&) = delete;

    ReturnCode Select(BitmapHandle* bitmap, const RECT* source, const RECT* destination) {
        HRGN region = nullptr;
        int32_t owned = 0;
        const ReturnCode status = Z_GetResizedRgnHandle(bitmap, source, destination, &region, &owned);
        if (status != code::Success) return status;
        saved_ = platform::SaveDC(context_) != 0;
        if (saved_) platform::SelectObject(context_, region);
        if (owned != 0) platform::DeleteObject(region);
        return saved_ ? code::Success : code::OutOfMemory;
    }

  private:
    HDC context_;
    bool saved_ = false;
};

template <typename Painter>
ReturnCode PaintInRegion(HDC context, BitmapHandle* bitmap, const RECT* source, const RECT* destination,
                         Painter paint) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (destination == nullptr) return code::InvalidArgument;
    if (context == nullptr) return paint(); // which tells
    RegionClip clip(context);
    const ReturnCode status = clip.Select(bitmap, source, destination);
    return status == code::Success ? paint() : status;
}

} // namespace

ReturnCode Z_CALL Z_PaintRgnDC(HDC deviceContext, BitmapHandle* bitmap, const RECT* source,
                               const RECT* sourceClip, const RECT* destination, const RECT* destinationClip,
                               uint32_t rasterOperation) {
    return PaintInRegion(deviceContext, bitmap, source, destination, [&] {
        return Z_PaintDC(deviceContext, bitmap, source, sourceClip, destination, destinationClip,
                         rasterOperation);
    });
}

ReturnCode Z_CALL Z_PaintRgnDCBuffer(HDC deviceContext, BitmapHandle* bitmap, const RECT* source,
                                     const RECT* sourceClip, const RECT* destination,
                                     const RECT* destinationClip, uint32_t rasterOperation,
                                     const void* rowData, int32_t firstRow, int32_t rowCount) {
    return PaintInRegion(deviceContext, bitmap, source, destination, [&] {
        return Z_PaintDCBuffer(deviceContext, bitmap, source, sourceClip, destination, destinationClip,
                               rasterOperation, rowData, firstRow, rowCount);
    });
}
