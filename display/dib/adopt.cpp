// Packed blocks of global memory that become the storage of a bitmap.
#include "core/flags.h"
#include "core/return_codes.h"
#include "display/dib/from_dib.h"
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

// A block that is locked for a scope.
class LockedBlock {
  public:
    explicit LockedBlock(HGLOBAL block)
        : block_(block), data_(static_cast<uint8_t*>(platform::GlobalLock(block))) {}
    ~LockedBlock() {
        if (data_ != nullptr) platform::GlobalUnlock(block_);
    }
    LockedBlock(const LockedBlock&) = delete;
    LockedBlock& operator=(const LockedBlock&) = delete;

    uint8_t* Data() const { return data_; }
    size_t Bytes() const { return platform::GlobalSize(block_); }

  private:
    HGLOBAL block_;
    uint8_t* data_;
};

ReturnCode ReadPacked(const LockedBlock& block, Header& header) {
    ReturnCode status = Read(block.Data(), block.Bytes(), header);
    if (status == code::Success && (header.Width == 0 || header.StoredHeight == 0))
        status = code::InvalidArgument;
    if (status == code::Success) status = FindForm(header);
    if (status == code::Success) status = TestSizes(header);
    if (status == code::Success) status = TestLength(header, block.Bytes());
    return status;
}

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
        ReturnCode status = ReadPacked(block, header);
        if (status != code::Success) return status;
        isConverted = !header.HasOwnRows();
        if (isConverted) {
            const auto offset = static_cast<size_t>(header.BitsOffset());
            status =
                ConvertPixels(bitmap, block.Data(), header, block.Data() + offset, block.Bytes() - offset);
        } else {
            status = TakeRows(bitmap, handle, block, header, owner);
        }
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
