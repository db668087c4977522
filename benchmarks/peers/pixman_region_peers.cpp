// pixman's regions of rectangles.
#include "../region_work.h"
#include "../work.h"
#include "pixman_regions.h"

namespace bench {

namespace {

pixman_region32_t* Text() {
    static pixman_region32_t* region = PixmanRegionOf(TextMask());
    return region;
}
pixman_region32_t* OtherText() {
    static pixman_region32_t* region = [] {
        BitmapHandle mask;
        Z_CopyBitmap(&mask, TextMask());
        Z_ReverseBitmap(&mask);
        return PixmanRegionOf(&mask);
    }();
    return region;
}

template <typename Operation> void AddSetPeer(int number, Operation operation) {
    AddPeer(number, {"pixman", 1.5, [operation] {
                         pixman_region32_t result;
                         pixman_region32_init(&result);
                         operation(&result, Text(), OtherText());
                         Touch(result.data);
                         pixman_region32_fini(&result);
                     }});
}

void Copy() {
    pixman_region32_t result;
    pixman_region32_init(&result);
    pixman_region32_copy(&result, Text());
    Touch(result.data);
    pixman_region32_fini(&result);
}

void Offset() {
    static pixman_region32_t* moved = PixmanRegionOf(TextMask());
    static int by = 1;
    pixman_region32_translate(moved, by, by);
    by = -by;
    Touch(moved);
}

void FromMask() {
    static pixman_image_t* image = PixmanMaskOf(TextMask());
    pixman_region32_t result;
    pixman_region32_init_from_image(&result, image);
    Touch(result.data);
    pixman_region32_fini(&result);
}

void IntoMask() {
    pixman_image_t* image =
        pixman_image_create_bits(PIXMAN_a1, TextWidth, TextHeight, nullptr, TextWidth / 8);
    int count = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(Text(), &count);
    const pixman_color_t set = {0, 0, 0, 0xFFFF};
    pixman_image_fill_boxes(PIXMAN_OP_SRC, image, &set, count, boxes);
    Touch(pixman_image_get_data(image));
    pixman_image_unref(image);
}

void AskPoints() {
    int inside = 0;
    for (const auto& [x, y] : Points())
        inside += pixman_region32_contains_point(Text(), x, y, nullptr);
    Touch(&inside);
}

const Adds adds([] {
    AddSetPeer(UniteText, pixman_region32_union);
    AddSetPeer(IntersectText, pixman_region32_intersect);
    AddSetPeer(SubtractText, pixman_region32_subtract);
    AddPeer(CopyText, {"pixman", 0.8, Copy});
    AddPeer(OffsetText, {"pixman", 0.8, Offset});
    AddPeer(TextFromMask, {"pixman", 3, FromMask});
    AddPeer(TextIntoMask, {"pixman", 4, IntoMask});
    AddPeer(PointsInText, {"pixman", 0.8, AskPoints});
});

} // namespace

} // namespace bench
