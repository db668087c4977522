// pixman's quarter turn of the photograph in 32 bits.
#include "../pictures.h"
#include "../turn_work.h"
#include "../work.h"

#include <pixman.h>

#include <vector>

namespace bench {

namespace {

void Turn() {
    static std::vector<uint32_t> memory(PhotographPixels);
    pixman_image_t* source = pixman_image_create_bits(
        PIXMAN_x8r8g8b8, PhotographWidth, PhotographHeight,
        reinterpret_cast<uint32_t*>(Data(PhotographBitmap(32, 1))), PhotographWidth * 4);
    pixman_image_t* target = pixman_image_create_bits(PIXMAN_x8r8g8b8, PhotographHeight, PhotographWidth,
                                                      memory.data(), PhotographHeight * 4);
    pixman_transform_t transform;
    pixman_transform_init_rotate(&transform, 0, -pixman_fixed_1);
    pixman_transform_translate(&transform, nullptr, 0, pixman_int_to_fixed(PhotographHeight));
    pixman_image_set_transform(source, &transform);
    pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, target, 0, 0, 0, 0, 0, 0, PhotographHeight,
                             PhotographWidth);
    pixman_image_unref(source);
    pixman_image_unref(target);
    Touch(memory.data());
}

const Adds adds([] { AddPeer(Turn32, {"pixman", 3, Turn}); });

} // namespace

} // namespace bench
