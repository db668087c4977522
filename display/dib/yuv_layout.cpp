#include "display/dib/yuv_layout.h"

namespace zkr::dib {

namespace {

constexpr YuvCode Codes[] = {
    {FourCC("YVU9"), 9, PixelForm::Planar, 4, true},
    {FourCC("IF09"), 9, PixelForm::Planar, 4, true},
    {FourCC("I420"), 12, PixelForm::Planar, 2, false},
    {FourCC("IYUV"), 12, PixelForm::Planar, 2, false},
    {FourCC("YV12"), 12, PixelForm::Planar, 2, true},
    {FourCC("UYVY"), 16, PixelForm::Packed, 0, false, PackedOrder::Uyvy},
    {FourCC("cyuv"), 16, PixelForm::Packed, 0, false, PackedOrder::Uyvy},
    {FourCC("YUY2"), 16, PixelForm::Packed, 0, false, PackedOrder::Yuy2},
    {FourCC("YVYU"), 16, PixelForm::Packed, 0, false, PackedOrder::Yvyu},
    {FourCC("Y41P"), 16, PixelForm::Packed, 0, false, PackedOrder::Y41p},
};

} // namespace

const YuvCode* FindYuvCode(uint32_t compression) {
    for (const YuvCode& code : Codes) {
        if (code.Code == compression) return &code;
    }
    return nullptr;
}

PlanarLayout PlanarLayoutOf(const Header& header) {
    const YuvCode& code = *FindYuvCode(header.Compression);
    const auto width = static_cast<uint64_t>(header.Width), height = static_cast<uint64_t>(header.Height());
    const auto step = static_cast<uint64_t>(code.Subsampling);
    const uint64_t chromaRow = width / step;
    return {code.Subsampling, code.VFirst, width,
            width * height,   chromaRow,   chromaRow * ((height + step - 1) / step)};
}

PackedLayout PackedLayoutOf(const Header& header) {
    const PackedOrder order = FindYuvCode(header.Compression)->Order;
    const auto width = static_cast<uint64_t>(header.Width);
    return {order, order == PackedOrder::Y41p ? width / 8 * 12 : width * 2};
}

} // namespace zkr::dib
