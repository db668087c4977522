// The roads of a rotation: exact turns where the angle and the size of the result allow them, else the general way.
#include "zkr13n/rotate.h"

#include "core/dispatch.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "geometry/rotate/free_rotation.h"
#include "geometry/row_progress.h"
#include "geometry/views/row_moves.h"

namespace zkr {

namespace {

constexpr int32_t Quarter = 9000;
constexpr int32_t Circle = 4 * Quarter;

ReturnCode TurnHalf(BitmapHandle* bitmap, uint32_t start, uint32_t end) {
    const ReturnCode status = geometry::MoveRows(*bitmap, geometry::RowMove::HalfTurn, start, end);
    if (status != code::Success) return status;
    return Dispatch().RotateRegion(bitmap, bitmap->Width, bitmap->Height, 2 * Quarter);
}

ReturnCode ReportAlone(uint32_t start, uint32_t end) {
    geometry::RowProgress progress(start, end, 1);
    const ReturnCode status = progress.Begin();
    return status == code::Success ? progress.Visit() : status;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_RotateBitmap(BitmapHandle* bitmap, int32_t angle, uint32_t flags, uint32_t fill) {
    return Z_IntRotateBitmap(bitmap, angle, flags, fill, 0, 100);
}

ReturnCode Z_CALL Z_IntRotateBitmap(BitmapHandle* bitmap, int32_t angle, uint32_t flags, uint32_t fill,
                                    uint32_t start, uint32_t end) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const int32_t anticlockwise = (Circle - angle % Circle) % Circle;
    const bool canTurn = (flags & ROTATE_RESIZE) != 0 || bitmap->Width == bitmap->Height;
    if (anticlockwise == 0) return ReportAlone(start, end);
    if (anticlockwise == 2 * Quarter) return TurnHalf(bitmap, start, end);
    if (canTurn && anticlockwise == Quarter) return Z_RotateBitmap90(bitmap, 0, start, end);
    if (canTurn && anticlockwise == 3 * Quarter) return Z_RotateBitmap90(bitmap, 1, start, end);
    return geometry::RotateFreely(*bitmap, {.Angle = anticlockwise,
                                            .Flags = flags,
                                            .Fill = fill,
                                            .Start = start,
                                            .End = end,
                                            .RegionAngle = angle});
}
