// What regions do behind the interface: set operations on records, and rotation and scaling with a bitmap.
#include "region_work.h"
#include "regions/bitmap_regions.h"
#include "regions/set_operations.h"
#include "regions/turns.h"
#include "turn_work.h"
#include "work.h"

#include <cstdlib>

namespace bench {

namespace {

using SetOperation = ReturnCode (*)(zkr::OwnedRegion&, const RegionHandle&, const RegionHandle&);

void AddSetWork(int number, const char* name, SetOperation operation) {
    AddWork(number, {name, TextPixels, size_t{TextRegion()->SegmentBytes} * 3, [operation] {
                         zkr::OwnedRegion result;
                         if (operation(result, *TextRegion(), *OtherTextRegion()) != Z_SUCCESS) std::abort();
                         Touch(result.get());
                     }});
}

// On a copy, which takes next to no time.
template <typename Change> void AddChange(int number, const char* name, Change change) {
    AddWork(number, {name, TextPixels, size_t{TextRegion()->SegmentBytes} * 2, [change] {
                         BitmapHandle* sheet = SheetWith(TextRegion());
                         if (change(sheet) != Z_SUCCESS) std::abort();
                         Touch(sheet->Region);
                         Z_FreeBitmapRgn(sheet);
                         delete sheet;
                     }});
}

const Adds adds([] {
    AddSetWork(UniteText, "union of text regions", zkr::UniteRegions);
    AddSetWork(IntersectText, "intersection of text regions", zkr::IntersectRegions);
    AddSetWork(SubtractText, "difference of text regions", zkr::SubtractRegions);
    AddChange(RotateText, "rotation of a text region, 30 degrees", [](BitmapHandle* sheet) {
        return zkr::RotateRegion(sheet, TextWidth, TextHeight, RotationDegrees * 100);
    });
    AddChange(ScaleText, "scaling of a text region by 0.37", [](BitmapHandle* sheet) {
        return zkr::ScaleBitmapRegion(sheet, TextWidth * ScaledBy / 100, TextHeight * ScaledBy / 100);
    });
});

} // namespace

} // namespace bench
