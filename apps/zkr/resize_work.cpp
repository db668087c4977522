#include "resize_work.h"

#include "failure.h"

#include "zkr13n/sizing.h"

namespace zkr::app {

namespace {

uint32_t FlagOf(SizeMethod method) {
    switch (method) {
    case SizeMethod::Linear: return SIZE_LINEAR;
    case SizeMethod::Spline: return SIZE_CUBIC;
    case SizeMethod::Strokes: return SIZE_KEEP_BLACK;
    default: return 0;
    }
}

} // namespace

void Resize(Bitmap& bitmap, const Resizing& resizing) {
    if (resizing.method == SizeMethod::Strokes && bitmap.Format().bits != 1)
        throw Failure(bitmap.Name(),
                      "strokes are kept of pictures of 1 bit per pixel only, and this one has " +
                          std::to_string(bitmap.Format().bits));
    const ReturnCode result =
        Z_SizeBitmap(bitmap.Handle(), resizing.width, resizing.height, FlagOf(resizing.method));
    if (result == Z_ERROR_ARGUMENT)
        throw Failure(bitmap.Name(), "has no pixel left, or too many, when its proportions are kept");
    Check(result, bitmap.Name());
}

} // namespace zkr::app
