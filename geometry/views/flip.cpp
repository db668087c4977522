// Flips and reverses of the stored pixels. What the viewer calls a row may be a column of storage.
#include "zkr13n/flip.h"

#include "core/dispatch.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/views.h"
#include "geometry/views/row_moves.h"

namespace zkr {

namespace {

using geometry::RowMove;

ReturnCode ExchangeRows(BitmapHandle* bitmap) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const ReturnCode status = geometry::MoveRows(*bitmap, RowMove::Flip, 0, 100);
    return status == code::Success ? Dispatch().FlipBitmapRegion(bitmap) : status;
}

ReturnCode MirrorRows(BitmapHandle* bitmap) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const ReturnCode status = geometry::MoveRows(*bitmap, RowMove::Reverse, 0, 100);
    return status == code::Success ? Dispatch().ReverseRegion(bitmap) : status;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_FlipBitmap(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (!IsView(bitmap->ViewPerspective)) return code::InvalidArgument;
    return ExchangesAxes(bitmap->ViewPerspective) ? MirrorRows(bitmap) : ExchangeRows(bitmap);
}

ReturnCode Z_CALL Z_ReverseBitmap(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    return ExchangesAxes(bitmap->ViewPerspective) ? ExchangeRows(bitmap) : MirrorRows(bitmap);
}
