// By libexif. Both name where the first row and the first column lie, EXIF by numbers of its own.
#include "exif_view.h"

#include "zkr13n/bitmap.h"

#include <libexif/exif-data.h>

#include <iterator>
#include <memory>

namespace zkr::app {

int32_t ViewOfExif(const uint8_t* data, size_t bytes) {
    // By orientation; 0 and what is above 8 are reserved.
    constexpr int32_t views[] = {VIEW_TOP_LEFT,     VIEW_TOP_LEFT,     VIEW_TOP_RIGHT,
                                 VIEW_BOTTOM_RIGHT, VIEW_BOTTOM_LEFT,  VIEW_LEFT_TOP,
                                 VIEW_RIGHT_TOP,    VIEW_RIGHT_BOTTOM, VIEW_LEFT_BOTTOM};
    const std::unique_ptr<ExifData, void (*)(ExifData*)> exif(
        exif_data_new_from_data(data, static_cast<unsigned>(bytes)), exif_data_unref);
    if (exif == nullptr) return VIEW_TOP_LEFT;
    const ExifEntry* entry = exif_content_get_entry(exif->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
    if (entry == nullptr || entry->format != EXIF_FORMAT_SHORT || entry->components != 1)
        return VIEW_TOP_LEFT;
    const ExifShort orientation = exif_get_short(entry->data, exif_data_get_byte_order(exif.get()));
    return orientation < std::size(views) ? views[orientation] : VIEW_TOP_LEFT;
}

} // namespace zkr::app
