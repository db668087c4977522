// What the header of a device-independent bitmap tells, read and tested. Headers come from outside: each test has a
// function of its own, and those who read a header choose their order.
#pragma once

#include "zkr13n/bitmap.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zkr::dib {

inline constexpr uint32_t CoreHeaderBytes = 12;
inline constexpr uint32_t InfoHeaderBytes = 40;
inline constexpr uint32_t MaskBytes = 12;

// The codes of biCompression.
inline constexpr uint32_t PlainRows = 0;
inline constexpr uint32_t RunLength8 = 1;
inline constexpr uint32_t RunLength4 = 2;
inline constexpr uint32_t BitFields = 3;

constexpr uint32_t FourCC(const char (&code)[5]) {
    uint32_t value = 0;
    for (int i = 3; i >= 0; --i)
        value = value << 8 | static_cast<uint8_t>(code[i]);
    return value;
}

enum class PixelForm : uint8_t { Plain, Masked, Runs, Planar, Packed };

struct Header {
    uint32_t Bytes; // of the header alone
    int32_t Width;
    int32_t StoredHeight; // below 0 where the uppermost row comes first
    int32_t BitCount;
    uint32_t Compression;
    uint32_t ImageBytes; // as it is told, 0 for not at all
    int32_t XPelsPerMetre;
    int32_t YPelsPerMetre;
    uint32_t ColoursTold;
    PixelForm Form; // once it is known to be one

    bool IsCore() const { return Bytes == CoreHeaderBytes; }
    bool IsTopDown() const { return StoredHeight < 0; }
    int64_t Height() const { return StoredHeight < 0 ? -int64_t{StoredHeight} : StoredHeight; }
    // Whether the rows are those of a bitmap, or become so in their place.
    bool HasOwnRows() const { return Form == PixelForm::Plain || Form == PixelForm::Masked; }
    // The bitmap's depth.
    int32_t Depth() const { return Form == PixelForm::Planar || Form == PixelForm::Packed ? 24 : BitCount; }

    // Masks and colours stand behind the header.
    uint32_t MasksBehind() const {
        return Form == PixelForm::Masked && Bytes == InfoHeaderBytes ? MaskBytes : 0;
    }
    uint32_t ColourBytes() const { return IsCore() ? 3 : 4; }
    uint64_t ColoursStored() const;
    uint32_t Colours() const; // those that count, 0 to 256
    uint64_t ColoursOffset() const { return uint64_t{Bytes} + MasksBehind(); }
    uint64_t BitsOffset() const { return ColoursOffset() + ColoursStored() * ColourBytes(); }
    uint64_t BitsBytes() const; // the pixels need at least as many
};

// `known` bytes may be read. code::InvalidArgument where these are too few to tell the fields, code::FeatureMissing for
// the size of a header that there is not.
[[nodiscard]] ReturnCode Read(const uint8_t* data, size_t known, Header& header);

// Finds the form. code::FeatureMissing for what cannot be read.
[[nodiscard]] ReturnCode FindForm(Header& header);

// code::InvalidDimensions for sizes that no bitmap can have.
[[nodiscard]] ReturnCode TestSizes(const Header& header);

// code::InvalidArgument for a packed DIB of fewer bytes than the header tells.
[[nodiscard]] ReturnCode TestLength(const Header& header, size_t known);

using Palette = std::array<RGBQUAD, 256>;

// The colours that count and the masks of red, green and blue.
void ReadColours(const uint8_t* data, const Header& header, Palette& colours);
std::array<uint32_t, 3> ReadMasks(const uint8_t* data);

// Begins a record: dimensions, depth, view, and the resolutions, where they are missing by the screen.
[[nodiscard]] ReturnCode InitRecord(BitmapHandle& bitmap, const Header& header);

// Gives a record the header's palette, up to 8 bits.
[[nodiscard]] ReturnCode GivePalette(BitmapHandle& bitmap, const uint8_t* data, const Header& header);

} // namespace zkr::dib
