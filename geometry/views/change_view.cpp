// The physical change of view: what the arithmetic of views asks for, done to the pixels by a flip and a turn.
#include "core/copy.h"
#include "core/dispatch.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/views.h"
#include "geometry/views/row_moves.h"
#include "zkr13n/flip.h"
#include "zkr13n/frame.h"
#include "zkr13n/locks.h"
#include "zkr13n/rotate.h"
#include "zkr13n/views.h"

namespace zkr {

namespace {

// Takes the thread's status callback away for a scope.
class SilentStatus {
  public:
    SilentStatus() : callback_(Z_GetStatusCallBack(&userData_)) { Z_SetStatusCallBack(nullptr, 0); }
    ~SilentStatus() { Z_SetStatusCallBack(callback_, userData_); }
    SilentStatus(const SilentStatus&) = delete;
    SilentStatus& operator=(const SilentStatus&) = delete;

  private:
    intptr_t userData_ = 0;
    StatusCallback callback_;
};

// Moves rows and then the region by follow(); rows whose region cannot follow go back.
template <typename Follow>
ReturnCode MoveWithRegion(BitmapHandle& bitmap, geometry::RowMove move, Follow follow) {
    ReturnCode status = geometry::MoveRows(bitmap, move, 0, 100);
    if (status != code::Success) return status;
    status = follow();
    if (status != code::Success) static_cast<void>(geometry::MoveRows(bitmap, move, 0, 100));
    return status;
}

ReturnCode FlipRows(BitmapHandle& bitmap) {
    return MoveWithRegion(bitmap, geometry::RowMove::Flip,
                          [&] { return Dispatch().FlipBitmapRegion(&bitmap); });
}

// Clockwise, of a bitmap in the top left view.
ReturnCode Turn(BitmapHandle& bitmap, int32_t degrees) {
    if (degrees != 180) return Z_RotateBitmap(&bitmap, degrees * 100, ROTATE_RESIZE, 0);
    return MoveWithRegion(bitmap, geometry::RowMove::HalfTurn, [&] {
        return Dispatch().RotateRegion(&bitmap, bitmap.Width, bitmap.Height, degrees * 100);
    });
}

// Gives an allocated bitmap another view; on failure it is as it was.
ReturnCode ChangeView(BitmapHandle& bitmap, int32_t value) {
    const int32_t before = bitmap.ViewPerspective;
    if (before == value) return code::Success;
    int32_t flip, angle;
    ReturnCode status = Z_GetChangeViewPerspectiveParams(static_cast<uint32_t>(before),
                                                         static_cast<uint32_t>(value), &flip, &angle);
    if (status != code::Success) return status;
    if (!IsAllocated(&bitmap)) return code::InvalidBitmap;
    const SilentStatus silent;
    if (flip != 0) status = FlipRows(bitmap);
    if (status != code::Success) return status;
    // A turn goes the other way through a mirrored view.
    bitmap.ViewPerspective = view::TopLeft;
    if (angle != 0) status = Turn(bitmap, angle);
    if (status != code::Success && flip != 0) {
        static_cast<void>(geometry::MoveRows(bitmap, geometry::RowMove::Flip, 0, 100));
        static_cast<void>(Dispatch().FlipBitmapRegion(&bitmap));
    }
    bitmap.ViewPerspective = status == code::Success ? value : before;
    return status;
}

// Makes target the copy of source in another view. A region that the target only shares does not move with it.
ReturnCode CopyInView(BitmapHandle& target, BitmapHandle& source, int32_t value, uint32_t flags) {
    ReturnCode status =
        Z_DupBitmapNewDim(&target, &source, source.Width, source.Height, source.BitsPerPixel, flags);
    if (status != code::Success) return status;
    const bool sharesRegion = (flags & Z_DUP_REGION) == 0;
    if (sharesRegion) target.Region = nullptr;
    status = CopyBitmapDataExactly(&target, &source);
    if (status == code::Success) status = ChangeView(target, value);
    if (status != code::Success)
        Z_FreeDuplicateBitmap(&target, flags);
    else if (sharesRegion)
        target.Region = source.Region;
    return status;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_ChangeBitmapViewPerspective(BitmapHandle* target, BitmapHandle* source, int32_t newView) {
    if (!IsAllocated(source)) return code::InvalidArgument;
    if (ExchangesAxes(newView) && Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) != 0) return code::DocumentLocked;
    if (target == nullptr || target == source)
        return Z_IntChangeBitmapViewPerspective(nullptr, source, newView, 0);
    return Z_IntChangeBitmapViewPerspective(target, source, newView,
                                            Z_DUP_DATA | Z_DUP_PALETTE | Z_DUP_REGION);
}

ReturnCode Z_CALL Z_IntChangeBitmapViewPerspective(BitmapHandle* target, BitmapHandle* source,
                                                   int32_t newView, uint32_t flags) {
    if (source == nullptr) return code::InvalidArgument;
    return target == nullptr ? ChangeView(*source, newView) : CopyInView(*target, *source, newView, flags);
}
