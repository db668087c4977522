// Paths of Bezier curves in device contexts.
#include "platform/faults.h"
#include "platform/portable/device.h"
#include "platform/portable/regions.h"

namespace zkr::platform {

namespace {

template <typename Result> Result Refuse(Result result) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return result;
}

} // namespace

BOOL BeginPath(HDC handle) {
    const Pin<DeviceContext> context(handle);
    if (!context) return FALSE;
    const std::scoped_lock lock(context->mutex);
    context->path.Clear();
    context->pathState = PathState::Open;
    return TRUE;
}

BOOL EndPath(HDC handle) {
    const Pin<DeviceContext> context(handle);
    if (!context) return FALSE;
    const std::scoped_lock lock(context->mutex);
    if (context->pathState != PathState::Open) return Refuse(FALSE);
    context->pathState = PathState::Whole;
    return TRUE;
}

BOOL PolyBezier(HDC handle, const POINT* points, DWORD count) {
    const Pin<DeviceContext> context(handle);
    if (!context) return FALSE;
    if (points == nullptr || count < 4 || count % 3 != 1) return Refuse(FALSE);
    const std::scoped_lock lock(context->mutex);
    if (context->pathState != PathState::Open) return Refuse(FALSE);
    const auto at = [&](DWORD i) {
        return Outline::Point{points[i].x * Outline::One, points[i].y * Outline::One};
    };
    Outline& path = context->path;
    bool made = !fault::Due(fault::Region) && path.MoveTo(at(0));
    for (DWORD i = 1; i < count && made; i += 3)
        made = path.CurveTo(at(i), at(i + 1), at(i + 2));
    if (made && path.Close()) return TRUE;
    path.Clear();
    context->pathState = PathState::None;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
}

HRGN PathToRegion(HDC handle) {
    const Pin<DeviceContext> context(handle);
    if (!context) return nullptr;
    const std::scoped_lock lock(context->mutex);
    if (context->pathState != PathState::Whole) return Refuse(HRGN{});
    context->pathState = PathState::None;
    PixelSet set;
    const bool made =
        !fault::Due(fault::Region) && context->path.Fill(context->state.polyFillMode == ALTERNATE, set);
    context->path.Clear();
    if (made) return MakeRegion(std::move(set));
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

} // namespace zkr::platform
