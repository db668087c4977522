#include "display/dib/dib_header.h"

#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/views.h"
#include "display/dib/resolution.h"
#include "display/dib/yuv_layout.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace zkr::dib {

namespace {

template <typename T> T Field(const uint8_t* data, size_t offset) {
    T value;
    std::memcpy(&value, data + offset, sizeof value);
    return value;
}

bool IsOneOf(int32_t value, std::initializer_list<int32_t> values) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

void ReadCore(const uint8_t* data, Header& header) {
    header.Width = Field<uint16_t>(data, 4);
    header.StoredHeight = Field<uint16_t>(data, 6);
    header.BitCount = Field<uint16_t>(data, 10);
}

void ReadInfo(const uint8_t* data, Header& header) {
    header.Width = Field<int32_t>(data, 4);
    header.StoredHeight = Field<int32_t>(data, 8);
    header.BitCount = Field<uint16_t>(data, 14);
    header.Compression = Field<uint32_t>(data, 16);
    header.ImageBytes = Field<uint32_t>(data, 20);
    header.XPelsPerMetre = Field<int32_t>(data, 24);
    header.YPelsPerMetre = Field<int32_t>(data, 28);
    header.ColoursTold = Field<uint32_t>(data, 32);
}

} // namespace

uint64_t Header::ColoursStored() const {
    if (ColoursTold != 0) return ColoursTold;
    return BitCount <= MostIndexedBits ? uint64_t{1} << BitCount : 0;
}

uint32_t Header::Colours() const {
    if (BitCount > MostIndexedBits) return 0;
    return static_cast<uint32_t>(std::min(ColoursStored(), uint64_t{1} << BitCount));
}

uint64_t Header::BitsBytes() const {
    switch (Form) {
    case PixelForm::Runs: return ImageBytes;
    case PixelForm::Planar: return PlanarLayoutOf(*this).Bytes();
    case PixelForm::Packed: return PackedLayoutOf(*this).RowBytes * static_cast<uint64_t>(Height());
    default: return StorageRowBytes(Width, BitCount) * static_cast<uint64_t>(Height());
    }
}

ReturnCode Read(const uint8_t* data, size_t known, Header& header) {
    header = {};
    if (known < sizeof header.Bytes) return code::InvalidArgument;
    header.Bytes = Field<uint32_t>(data, 0);
    if (header.Bytes != CoreHeaderBytes && header.Bytes < InfoHeaderBytes) return code::FeatureMissing;
    if (known < (header.IsCore() ? CoreHeaderBytes : InfoHeaderBytes)) return code::InvalidArgument;
    header.IsCore() ? ReadCore(data, header) : ReadInfo(data, header);
    return code::Success;
}

ReturnCode FindForm(Header& header) {
    const int32_t bits = header.BitCount;
    const auto found = [&](PixelForm form, bool fits) {
        header.Form = form;
        return fits ? code::Success : code::FeatureMissing;
    };
    switch (header.Compression) {
    case PlainRows: return found(PixelForm::Plain, IsOneOf(bits, {1, 4, 8, 16, 24, 32}));
    case RunLength8: return found(PixelForm::Runs, bits == 8);
    case RunLength4: return found(PixelForm::Runs, bits == 4);
    case BitFields: return found(PixelForm::Masked, IsOneOf(bits, {16, 32}));
    default: break;
    }
    const YuvCode* yuv = FindYuvCode(header.Compression);
    if (yuv == nullptr) return code::FeatureMissing;
    return found(yuv->Form, (bits == yuv->Bits || bits == 24) && header.Width % YuvWidthStep == 0);
}

ReturnCode TestSizes(const Header& header) {
    const uint64_t rowBytes = StorageRowBytes(header.Width, header.Depth());
    const int64_t height = header.Height();
    const bool fits = header.Width > 0 && height > 0 && height <= std::numeric_limits<int32_t>::max() &&
                      rowBytes <= std::numeric_limits<uint32_t>::max() &&
                      FitsSize(rowBytes * static_cast<uint64_t>(height));
    return fits ? code::Success : code::InvalidDimensions;
}

ReturnCode TestLength(const Header& header, size_t known) {
    const bool masksInside = header.Form == PixelForm::Masked && header.MasksBehind() == 0;
    const uint64_t masksEnd = masksInside ? InfoHeaderBytes + MaskBytes : 0;
    const uint64_t bits = header.BitsOffset();
    const bool fits = masksEnd <= known && bits <= known && header.BitsBytes() <= known - bits;
    return fits ? code::Success : code::InvalidArgument;
}

void ReadColours(const uint8_t* data, const Header& header, Palette& colours) {
    const uint8_t* from = data + header.ColoursOffset();
    for (uint32_t i = 0; i < header.Colours(); ++i, from += header.ColourBytes())
        colours[i] = {from[0], from[1], from[2], header.IsCore() ? uint8_t{0} : from[3]};
}

std::array<uint32_t, 3> ReadMasks(const uint8_t* data) {
    std::array<uint32_t, 3> masks;
    std::memcpy(masks.data(), data + InfoHeaderBytes, sizeof masks);
    return masks;
}

ReturnCode InitRecord(BitmapHandle& bitmap, const Header& header) {
    const ReturnCode status =
        Z_InitBitmap(&bitmap, header.Width, static_cast<int32_t>(header.Height()), header.Depth());
    if (status != code::Success) return status;
    const Resolutions missing =
        header.XPelsPerMetre == 0 || header.YPelsPerMetre == 0 ? ScreenPelsPerMetre() : Resolutions{};
    bitmap.XResolution = DotsPerInch(header.XPelsPerMetre != 0 ? header.XPelsPerMetre : missing.X);
    bitmap.YResolution = DotsPerInch(header.YPelsPerMetre != 0 ? header.YPelsPerMetre : missing.Y);
    bitmap.ViewPerspective = header.IsTopDown() ? view::TopLeft : view::BottomLeft;
    return code::Success;
}

ReturnCode GivePalette(BitmapHandle& bitmap, const uint8_t* data, const Header& header) {
    const uint32_t count = header.Colours();
    if (count == 0) return code::Success;
    Palette colours;
    ReadColours(data, header, colours);
    bitmap.Palette = Z_CreatePalette(colours.data(), count);
    if (bitmap.Palette == nullptr) return code::OutOfMemory;
    bitmap.ColorsUsed = count;
    return code::Success;
}

} // namespace zkr::dib
