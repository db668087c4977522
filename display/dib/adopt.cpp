// Packed blocks of global memory that become the storage of a bitmap.
#include "core/flags.h"
#include "core/return_codes.h"
#include "display/dib/from_dib.h"
#include "display/dib/locked_block.h"
#include "display/dib/masks.h"
#include "platform/memory.h"
#include "zkr13n/allocation.h"
#include "zkr13n/dib.h"

#include <limits>
#include <numeric>

namespace zkr::dib {

namespace {

constexpr uint32_t PaintLUTLength = 256;

enum class Owner { Bitmap, Caller };

// Gives a record what Z_AllocateBitmap and the header give, but for the storage.
ReturnCode Furnish(BitmapHandle& bitmap, const uint8_t* data, const Header& header) {
    ReturnCode status = InitRecord(bitmap, header);
    if (status != code::Success) return status;
    bitmap.PaintLUT = static_cast<uint8_t*>(Z_OsAlloc(PaintLUTLength));
    if (bitmap.PaintLUT == nullptr) return code::OutOfMemory;
    std::iota(bitmap.PaintLUT, bitmap.PaintLUT + PaintLUTLength, uint8_t{0});
    status = GivePalette(bitmap, data, header);
    if (status != code::Success) Z_OsFree(bitmap.PaintLUT);
    return status;
}

ReturnCode TakeRows(BitmapHandle& bitmap, HGLOBAL handle, const LockedBlock& block, const Header& header,
                    Owner owner) {
    if (header.BitsOffset() > std::numeric_limits<uint32_t>::max()) return code::InvalidArgument;
    const ReturnCode status = Furnish(bitmap, block.Data(), header);
    if (status != code::Success) return status;
    uint8_t* const rows = block.Data() + header.BitsOffset();
    if (header.Form == PixelForm::Masked) {
        const kernels::MaskedPixels rule = RuleOf(ReadMasks(block.Data()), bitmap.BitsPerPixel);
        const auto unmask = MaskedKernelOf(bitmap.BitsPerPixel);
        for (int32_t row = 0; row < bitmap.Height; ++row) {
            uint8_t* const pixels = rows + static_cast<size_t>(row) * bitmap.BytesPerLine;
            unmask(pixels, pixels, static_cast<size_t>(bitmap.Width), rule);
        }
    }
    bitmap.StorageHandle = handle;
    bitmap.AlignOffset = static_cast<uint32_t>(header.BitsOffset());
    bitmap.Flags |= flag::Allocated | flag::Memory | flag::Global;
    if (owner == Owner::Caller) bitmap.Flags |= flag::UserData;
    return code::Success;
}

ReturnCode TakeBlock(BitmapHandle& bitmap, HGLOBAL handle, Owner owner) {
    bool isConverted = false;
    {
        const LockedBlock block(handle);
        if (block.Data() == nullptr) return code::InvalidArgument;
        Header header;
        ReturnCode status = ReadPacked(block.Data(), block.Bytes(), header);
        if (status != code::Success) return status;
        isConverted = !header.HasOwnRows();
        status = isConverted ? ConvertPacked(bitmap, block.Data(), header, block.Bytes())
                             : TakeRows(bitmap, handle, block, header, owner);
        if (status != code::Success) return status;
    }
    if (isConverted && owner == Owner::Bitmap) platform::GlobalFree(handle);
    return code::Success;
}

ReturnCode Take(BitmapHandle* bitmap, HGLOBAL handle, Owner owner) {
    if (bitmap == nullptr) return code::InvalidArgument;
    const ReturnCode status = TakeBlock(*bitmap, handle, owner);
    if (status != code::Success) *bitmap = {};
    return status;
}

} // namespace

} // namespace zkr::dib

using namespace zkr;

ReturnCode Z_CALL Z_ChangeFromDIB(BitmapHandle* bitmap, HGLOBAL block) {
    return dib::Take(bitmap, block, dib::Owner::Bitmap);
}

ReturnCode Z_CALL Z_MirrorFromDIB(BitmapHandle* bitmap, HGLOBAL block) {
    return dib::Take(bitmap, block, dib::Owner::Caller);
}
