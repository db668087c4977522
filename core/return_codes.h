// The results of the library under the names that its own code uses.
#pragma once

#include "zkr13n/codes.h"

namespace zkr::code {

inline constexpr ReturnCode Success = Z_SUCCESS;
inline constexpr ReturnCode General = Z_ERROR_GENERAL;
inline constexpr ReturnCode OutOfMemory = Z_ERROR_MEMORY;
inline constexpr ReturnCode InvalidBitmap = Z_ERROR_BITMAP;
inline constexpr ReturnCode SeekFailed = Z_ERROR_SEEK;
inline constexpr ReturnCode WriteFailed = Z_ERROR_WRITE;
inline constexpr ReturnCode ReadFailed = Z_ERROR_READ;
inline constexpr ReturnCode InvalidDimensions = Z_ERROR_DIMENSIONS;
inline constexpr ReturnCode InvalidArgument = Z_ERROR_ARGUMENT;
inline constexpr ReturnCode FeatureMissing = Z_ERROR_FEATURE;
inline constexpr ReturnCode InvalidBitsPerPixel = Z_ERROR_BITS_PER_PIXEL;
inline constexpr ReturnCode DocumentLocked = Z_ERROR_DOCUMENT_LOCKED;
inline constexpr ReturnCode OutOfDiskSpace = Z_ERROR_DISK_SPACE;
inline constexpr ReturnCode ColourFilterMissing = Z_ERROR_COLOUR_FILTER;
inline constexpr ReturnCode FaxFilterMissing = Z_ERROR_FAX_FILTER;
inline constexpr ReturnCode ExtendedGrayLocked = Z_ERROR_EXTENDED_GRAY_LOCKED;

} // namespace zkr::code
