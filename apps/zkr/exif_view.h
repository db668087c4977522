// The view of a JPEG picture, by the orientation that cameras note in its EXIF data.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr::app {

// `data` is the content of an APP1 segment. Gives VIEW_...; VIEW_TOP_LEFT where no orientation is noted.
int32_t ViewOfExif(const uint8_t* data, size_t bytes);

} // namespace zkr::app
