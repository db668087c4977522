// How luminance and chroma lie in the YUV forms of a device-independent bitmap.
#pragma once

#include "display/dib/dib_header.h"

namespace zkr::dib {

inline constexpr int32_t YuvWidthStep = 16;

enum class PackedOrder : uint8_t { Uyvy, Yuy2, Yvyu, Y41p };

struct YuvCode {
    uint32_t Code;
    int32_t Bits; // of biBitCount, which may be 24 too
    PixelForm Form;
    // Of planes:
    int32_t Subsampling = 0; // pixels to a chroma sample, each way
    bool VFirst = false;
    // Of packed pixels:
    PackedOrder Order = PackedOrder::Uyvy;
};

const YuvCode* FindYuvCode(uint32_t compression); // null for none

struct PlanarLayout {
    int32_t Subsampling;
    bool VFirst;
    uint64_t LumaRow; // bytes
    uint64_t LumaBytes;
    uint64_t ChromaRow;
    uint64_t ChromaBytes; // of each plane

    uint64_t Bytes() const { return LumaBytes + 2 * ChromaBytes; }
};

struct PackedLayout {
    PackedOrder Order;
    uint64_t RowBytes;
};

// Of a header that has one of these forms, and sizes that pass TestSizes.
PlanarLayout PlanarLayoutOf(const Header& header);
PackedLayout PackedLayoutOf(const Header& header);

} // namespace zkr::dib
