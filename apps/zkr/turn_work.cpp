#include "turn_work.h"

#include "failure.h"

#include "zkr13n/flip.h"
#include "zkr13n/rotate.h"
#include "zkr13n/shear.h"

namespace zkr::app {

namespace {

uint32_t FlagOf(RotationMethod method) {
    switch (method) {
    case RotationMethod::Linear: return ROTATE_LINEAR;
    case RotationMethod::Cubic: return ROTATE_CUBIC;
    default: return 0;
    }
}

} // namespace

void Rotate(Bitmap& bitmap, const Rotation& rotation) {
    const uint32_t flags = FlagOf(rotation.method) | (rotation.grow ? uint32_t{ROTATE_RESIZE} : 0);
    Check(Z_RotateBitmap(bitmap.Handle(), rotation.hundredths, flags, rotation.fill), bitmap.Name());
}

void Shear(Bitmap& bitmap, const Shearing& shearing) {
    const ReturnCode result =
        Z_ShearBitmap(bitmap.Handle(), shearing.hundredths, shearing.vertical ? 0 : 1, shearing.fill);
    if (result == Z_ERROR_ARGUMENT)
        throw Failure(bitmap.Name(),
                      "would become too large: a sheared row or column has at most 32768 bytes");
    Check(result, bitmap.Name());
}

void Flip(Bitmap& bitmap) {
    Check(Z_FlipBitmap(bitmap.Handle()), bitmap.Name());
}

void Mirror(Bitmap& bitmap) {
    Check(Z_ReverseBitmap(bitmap.Handle()), bitmap.Name());
}

void StoreInView(Bitmap& bitmap, int32_t view) {
    Check(Z_ChangeBitmapViewPerspective(nullptr, bitmap.Handle(), view), bitmap.Name());
    bitmap.Handle()->ViewPerspective = VIEW_TOP_LEFT;
}

} // namespace zkr::app
