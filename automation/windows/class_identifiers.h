// Identifiers that the type library does not tell.
#pragma once

#include <ole2.h>

namespace zkr::automation {

// An interface for this module alone: a raster object's IZIRCRaster, but never that of a proxy.
inline constexpr GUID OwnObject = {
    0x2ad98f07, 0x51c3, 0x4be6, {0xa0, 0x9d, 0x86, 0x13, 0xe7, 0x5f, 0x4c, 0xb2}};

// The class that has a registry script and nothing else.
inline constexpr GUID TableClass = {
    0x96b4d1f3, 0xa85e, 0x4e02, {0xb7, 0xc9, 0x3f, 0xd8, 0x40, 0x2e, 0xa6, 0x15}};

} // namespace zkr::automation
