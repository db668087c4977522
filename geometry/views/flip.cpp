// Flips and reverses of the stored pixels. What the viewer calls a row may be a column of storage.
#include "zkr13n/flip.h"

#include "core/flags.h"
#include "core/return_codes.h"
#include "core/views.h"
#include "geometry/views/row_moves.h"

namespace zkr {

namespace {

using geometry::RowMove;

ReturnCode Move(BitmapHandle* bitmap, RowMove move) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    return geometry::MoveRows(*bitmap, move, 0, 100);
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_FlipBitmap(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (!IsView(bitmap->ViewPerspective)) return code::InvalidArgument;
    return Move(bitmap, ExchangesAxes(bitmap->ViewPerspective) ? RowMove::Reverse : RowMove::Flip);
}

ReturnCode Z_CALL Z_ReverseBitmap(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    return Move(bitmap, ExchangesAxes(bitmap->ViewPerspective) ? RowMove::Flip : RowMove::Reverse);
}
