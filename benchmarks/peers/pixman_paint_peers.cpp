// pixman's nearest scaling of the photograph into the memory that is painted into.
#include "../paint_work.h"
#include "../pictures.h"
#include "../work.h"

#include <pixman.h>

namespace bench {

namespace {

void Scale() {
    pixman_image_t* source = pixman_image_create_bits(
        PIXMAN_r8g8b8, PhotographWidth, PhotographHeight,
        reinterpret_cast<uint32_t*>(Data(PhotographBitmap(24, Z_ORDER_BGR))), PhotographWidth * 3);
    pixman_image_t* target =
        pixman_image_create_bits(PIXMAN_x8r8g8b8, PaintedWidth, PaintedHeight,
                                 reinterpret_cast<uint32_t*>(PaintedMemory().data()), PaintedWidth * 4);
    pixman_transform_t transform;
    pixman_transform_init_scale(&transform, pixman_double_to_fixed(double{PhotographWidth} / PaintedWidth),
                                pixman_double_to_fixed(double{PhotographHeight} / PaintedHeight));
    pixman_image_set_transform(source, &transform);
    pixman_image_set_filter(source, PIXMAN_FILTER_NEAREST, nullptr, 0);
    pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, target, 0, 0, 0, 0, 0, 0, PaintedWidth,
                             PaintedHeight);
    pixman_image_unref(source);
    pixman_image_unref(target);
    Touch(PaintedMemory().data());
}

const Adds adds([] { AddPeer(PaintScaledTo32, {"pixman", 0.8, Scale}); });

} // namespace

} // namespace bench
