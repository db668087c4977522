// Flips and turns of the picture that change nothing but the record's view perspective.
#include "core/return_codes.h"
#include "core/views.h"
#include "zkr13n/locks.h"
#include "zkr13n/views.h"

#include <array>

namespace zkr {

namespace {

constexpr int32_t NoView = code::InvalidArgument;

// The view that each becomes.
using ViewMap = std::array<int32_t, 9>;
constexpr ViewMap Flipped = {2, 3, 0, 1, 7, 8, NoView, 4, 5};
constexpr ViewMap Reversed = {1, 0, 3, 2, 5, 4, NoView, 8, 7};
constexpr ViewMap TurnedOnce = {4, 7, 5, 8, 3, 1, NoView, 2, 0};

int32_t Mapped(const ViewMap& map, int32_t view, int32_t otherwise) {
    return IsView(view) ? map[static_cast<size_t>(view)] : otherwise;
}

ReturnCode Map(BitmapHandle* bitmap, const ViewMap& map) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    bitmap->ViewPerspective = Mapped(map, bitmap->ViewPerspective, bitmap->ViewPerspective);
    return code::Success;
}

bool IsLocked() {
    return Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) != 0;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_FlipBitmapViewPerspective(BitmapHandle* bitmap) {
    return IsLocked() ? code::DocumentLocked : Z_IntFlipBitmapViewPerspective(bitmap);
}

ReturnCode Z_CALL Z_IntFlipBitmapViewPerspective(BitmapHandle* bitmap) {
    return Map(bitmap, Flipped);
}

ReturnCode Z_CALL Z_ReverseBitmapViewPerspective(BitmapHandle* bitmap) {
    return IsLocked() ? code::DocumentLocked : Z_IntReverseBitmapViewPerspective(bitmap);
}

ReturnCode Z_CALL Z_IntReverseBitmapViewPerspective(BitmapHandle* bitmap) {
    return Map(bitmap, Reversed);
}

ReturnCode Z_CALL Z_RotateBitmapViewPerspective(BitmapHandle* bitmap, int32_t degrees) {
    return IsLocked() ? code::DocumentLocked : Z_IntRotateBitmapViewPerspective(bitmap, degrees);
}

ReturnCode Z_CALL Z_IntRotateBitmapViewPerspective(BitmapHandle* bitmap, int32_t degrees) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    degrees %= 360;
    if (degrees % 90 != 0) return code::InvalidArgument;
    for (int32_t turns = (degrees / 90 + 4) % 4; turns > 0; --turns)
        bitmap->ViewPerspective = Mapped(TurnedOnce, bitmap->ViewPerspective, NoView);
    return code::Success;
}
