#include "display/dib/from_dib.h"

#include "core/return_codes.h"
#include "core/row_access.h"
#include "core/scratch.h"
#include "display/dib/masks.h"
#include "display/dib/runs.h"
#include "display/dib/yuv_layout.h"
#include "kernels/family.h"
#include "zkr13n/dib.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace zkr::dib {

namespace {

// Makes all rows by make(row, bytes), in order.
template <typename Make> ReturnCode MakeRows(BitmapHandle& bitmap, uint8_t* scratch, Make make) {
    for (int32_t row = 0; row < bitmap.Height; ++row) {
        const ReturnCode status = StoreRow(bitmap, row, scratch, [&](uint8_t* to) { make(row, to); });
        if (status != code::Success) return status;
    }
    return code::Success;
}

ReturnCode CopyRows(BitmapHandle& bitmap, const uint8_t* bits) {
    for (int32_t row = 0; row < bitmap.Height; ++row, bits += bitmap.BytesPerLine) {
        const ReturnCode status = WriteExactly(bitmap, bits, row, 0, bitmap.BytesPerLine);
        if (status != code::Success) return status;
    }
    return code::Success;
}

ReturnCode UnmaskRows(BitmapHandle& bitmap, const uint8_t* data, const uint8_t* bits, uint8_t* scratch) {
    const kernels::MaskedPixels rule = RuleOf(ReadMasks(data), bitmap.BitsPerPixel);
    const auto unmask = MaskedKernelOf(bitmap.BitsPerPixel);
    return MakeRows(bitmap, scratch, [&](int32_t row, uint8_t* to) {
        unmask(bits + static_cast<size_t>(row) * bitmap.BytesPerLine, to, static_cast<size_t>(bitmap.Width),
               rule);
    });
}

ReturnCode JoinPlanes(BitmapHandle& bitmap, const Header& header, const uint8_t* bits, uint8_t* scratch) {
    const PlanarLayout layout = PlanarLayoutOf(header);
    const auto& kernels = kernels::Chosen<kernels::DibKernels>();
    const auto join = layout.Subsampling == 2 ? kernels.PlanarBy2 : kernels.PlanarBy4;
    const uint8_t* const first = bits + layout.LumaBytes;
    const uint8_t* const second = first + layout.ChromaBytes;
    return MakeRows(bitmap, scratch, [&](int32_t row, uint8_t* to) {
        const size_t light = static_cast<size_t>(row) * static_cast<size_t>(layout.LumaRow);
        const size_t chroma =
            static_cast<size_t>(row / layout.Subsampling) * static_cast<size_t>(layout.ChromaRow);
        join(bits + light, (layout.VFirst ? second : first) + chroma,
             (layout.VFirst ? first : second) + chroma, to, static_cast<size_t>(bitmap.Width));
    });
}

ReturnCode Unpack(BitmapHandle& bitmap, const Header& header, const uint8_t* bits, uint8_t* scratch) {
    const PackedLayout layout = PackedLayoutOf(header);
    const auto& kernels = kernels::Chosen<kernels::DibKernels>();
    const auto unpack = layout.Order == PackedOrder::Uyvy   ? kernels.Uyvy
                        : layout.Order == PackedOrder::Yuy2 ? kernels.Yuy2
                        : layout.Order == PackedOrder::Yvyu ? kernels.Yvyu
                                                            : kernels.Y41p;
    return MakeRows(bitmap, scratch, [&](int32_t row, uint8_t* to) {
        unpack(bits + static_cast<size_t>(row) * static_cast<size_t>(layout.RowBytes), to,
               static_cast<size_t>(bitmap.Width));
    });
}

ReturnCode MakePixels(BitmapHandle& bitmap, const uint8_t* data, const Header& header, const uint8_t* bits,
                      size_t bytes) {
    ScratchRow scratch(bitmap);
    if (!scratch) return code::OutOfMemory;
    switch (header.Form) {
    case PixelForm::Masked: return UnmaskRows(bitmap, data, bits, scratch.data());
    case PixelForm::Planar: return JoinPlanes(bitmap, header, bits, scratch.data());
    case PixelForm::Packed: return Unpack(bitmap, header, bits, scratch.data());
    case PixelForm::Runs:
        std::memset(scratch.data(), 0, bitmap.BytesPerLine);
        if (header.ImageBytes != 0) bytes = std::min<size_t>(bytes, header.ImageBytes);
        return DecodeRuns(bitmap, bits, bytes, scratch.data());
    default: return CopyRows(bitmap, bits);
    }
}

} // namespace

ReturnCode ConvertPixels(BitmapHandle& bitmap, const uint8_t* data, const Header& header, const uint8_t* bits,
                         size_t bytes) {
    ReturnCode status = InitRecord(bitmap, header);
    if (status != code::Success) return status;
    int32_t memoryType;
    Z_GetDefaultMemoryType(&memoryType);
    status = Z_AllocateBitmap(&bitmap, memoryType);
    if (status != code::Success) return status;
    status = GivePalette(bitmap, data, header);
    if (status == code::Success) status = MakePixels(bitmap, data, header, bits, bytes);
    if (status != code::Success) Z_FreeBitmap(&bitmap);
    return status;
}

ReturnCode ReadPacked(const uint8_t* data, size_t bytes, Header& header) {
    ReturnCode status = Read(data, bytes, header);
    if (status == code::Success && (header.Width == 0 || header.StoredHeight == 0))
        status = code::InvalidArgument;
    if (status == code::Success) status = FindForm(header);
    if (status == code::Success) status = TestSizes(header);
    if (status == code::Success) status = TestLength(header, bytes);
    return status;
}

ReturnCode ConvertPacked(BitmapHandle& bitmap, const uint8_t* data, const Header& header, size_t bytes) {
    const auto offset = static_cast<size_t>(header.BitsOffset());
    return ConvertPixels(bitmap, data, header, data + offset, bytes - offset);
}

namespace {

// The length of what is read is not known.
ReturnCode ConvertUnbounded(BitmapHandle& bitmap, const uint8_t* data, const uint8_t* bits) {
    constexpr size_t unknown = std::numeric_limits<size_t>::max();
    Header header;
    ReturnCode status = Read(data, unknown, header);
    if (status == code::Success) status = FindForm(header);
    if (status != code::Success) return status;
    if (header.StoredHeight == 0) return InitRecord(bitmap, header);
    status = TestSizes(header);
    if (status != code::Success) return status;
    // Runs of unknown length end by themselves.
    const uintptr_t behind = std::numeric_limits<uintptr_t>::max() - reinterpret_cast<uintptr_t>(bits);
    return ConvertPixels(bitmap, data, header, bits, std::min<uintptr_t>(behind, PTRDIFF_MAX));
}

} // namespace

} // namespace zkr::dib

using namespace zkr;

ReturnCode Z_CALL Z_ConvertFromDIB(BitmapHandle* bitmap, const void* header, const void* bits) {
    if (bitmap == nullptr || header == nullptr || bits == nullptr) return code::InvalidArgument;
    const ReturnCode status = dib::ConvertUnbounded(*bitmap, static_cast<const uint8_t*>(header),
                                                    static_cast<const uint8_t*>(bits));
    if (status != code::Success) *bitmap = {};
    return status;
}
