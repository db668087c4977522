// The life of a bitmap: records are initialised, created in one call, freed, pointed at a caller's data and
// changed in height. How they get their storage is in storage_choice.cpp, how one record is made from another in
// duplicate.cpp.
#include "core/attachments.h"
#include "core/dispatch.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/storage/storage_class.h"
#include "core/thread_settings.h"
#include "core/views.h"
#include "platform/graphics.h"
#include "zkr13n/allocation.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <limits>

namespace zkr {

namespace {

constexpr int32_t StandardResolution = 150;
constexpr int32_t NoGammaChange = 100;

int32_t ResolutionFrom(int32_t setting) {
    return setting > 0 ? setting : StandardResolution;
}

// A byte count too large for its field is stored as the field's largest value; such a record cannot be
// allocated.
void SetSizes(BitmapHandle& bitmap) {
    constexpr uint64_t largestRow = std::numeric_limits<uint32_t>::max() & ~3u;
    constexpr uint64_t largestSize = std::numeric_limits<size_t>::max();
    const uint64_t row = StorageRowBytes(bitmap.Width, bitmap.BitsPerPixel);
    bitmap.BytesPerLine = static_cast<uint32_t>(std::min(row, largestRow));
    bitmap.Size = static_cast<size_t>(std::min(RowsBytes(bitmap, bitmap.Height), largestSize));
}

// The palette of a new bitmap of up to 8 bits: the gray ramp where no depth was named, else the caller's
// colours, else the fixed palette.
void GivePalette(BitmapHandle& bitmap, bool gray, const RGBQUAD* palette) {
    bitmap.Flags &= ~flag::PaletteIsBlock;
    if (gray)
        bitmap.Palette = Z_CreateGrayPalette(bitmap.BitsPerPixel);
    else if (palette != nullptr)
        bitmap.Palette = Z_CreatePalette(palette, bitmap.ColorsUsed);
    else
        Z_CreateBitmapFixedPalette(&bitmap);
}

} // namespace

void ReleasePalette(BitmapHandle& bitmap) {
    if (bitmap.Palette == nullptr) return;
    if (HasFlag(bitmap, flag::PaletteIsBlock))
        Z_OsFree(bitmap.Palette);
    else
        platform::DeleteObject(bitmap.Palette);
    bitmap.Palette = nullptr;
}

void ReleaseRegion(BitmapHandle& bitmap) {
    if (bitmap.Region != nullptr) Dispatch().FreeBitmapRgn(&bitmap);
    bitmap.Region = nullptr;
}

ReturnCode CopyRegion(BitmapHandle& target, BitmapHandle& source, int32_t dx, int32_t dy) {
    const ReturnCode result = Dispatch().CopyBitmapRegion(&target, &source, dx, dy);
    if (result != code::Success) target.Region = nullptr;
    return result;
}

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_InitBitmap(BitmapHandle* bitmap, int32_t width, int32_t height, int32_t bitsPerPixel) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    *bitmap = {};
    if (width == 0 && height == 0 && bitsPerPixel == 0) return code::Success;
    if (!IsSupportedDepth(bitsPerPixel)) return code::InvalidBitsPerPixel;

    bitmap->Width = width;
    bitmap->Height = height;
    bitmap->BitsPerPixel = bitsPerPixel;
    SetSizes(*bitmap);

    const ThreadSettings& settings = CurrentThreadSettings();
    bitmap->DitheringMethod = settings.DefaultDithering;
    bitmap->XResolution = ResolutionFrom(settings.DefaultXResolution);
    bitmap->YResolution = ResolutionFrom(settings.DefaultYResolution);

    bitmap->ViewPerspective = view::BottomLeft;
    bitmap->ColorsUsed = bitsPerPixel <= MostIndexedBits ? 1u << bitsPerPixel : 0;
    bitmap->Order = DepthOf(bitsPerPixel).NaturalOrder;
    bitmap->HighBit = bitsPerPixel - 1;
    bitmap->LevelHighBit = bitsPerPixel - 1;
    bitmap->PaintGamma = NoGammaChange;
    return code::Success;
}

ReturnCode Z_CALL Z_CreateBitmap(BitmapHandle* bitmap, int32_t memoryType, int32_t width, int32_t height,
                                 int32_t bitsPerPixel, int32_t order, const RGBQUAD* palette,
                                 int32_t viewPerspective, void* data, size_t dataSize) {
    if (bitmap == nullptr) return code::InvalidArgument;
    const bool gray = bitsPerPixel == 0;
    ReturnCode result = Z_InitBitmap(bitmap, width, height, gray ? 8 : bitsPerPixel);
    if (result == code::Success) result = Z_AllocateBitmap(bitmap, memoryType);
    if (result != code::Success) return result;

    if (bitmap->BitsPerPixel <= MostIndexedBits)
        GivePalette(*bitmap, gray, palette);
    else
        bitmap->Order = order;
    bitmap->ViewPerspective = viewPerspective;

    if (memoryType == MemoryUser && data != nullptr) {
        result = Z_SetBitmapDataPointer(bitmap, data, dataSize);
        if (result != code::Success) Z_FreeBitmap(bitmap);
    }
    return result;
}

ReturnCode Z_CALL Z_FreeBitmap(BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    ReleaseRegion(*bitmap);
    ReleasePalette(*bitmap);
    if (!HasFlag(*bitmap, flag::Allocated)) return code::General;

    if (const storage::StorageClass* storageClass = storage::ClassOf(*bitmap)) storageClass->Release(*bitmap);
    bitmap->StorageHandle = nullptr;
    bitmap->Addr = nullptr;
    bitmap->Flags &= ~(flag::Allocated | storage::ClassFlags);
    Z_FreeGrayParams(bitmap);
    return code::Success;
}

ReturnCode Z_CALL Z_FreeImage(BitmapHandle* bitmap, int32_t ownsAttachments) {
    if (!IsAllocated(bitmap)) return code::Success;
    if (ownsAttachments == 0) {
        bitmap->Palette = nullptr;
        bitmap->Region = nullptr;
    }
    Z_FreeBitmap(bitmap);
    return code::Success;
}

ReturnCode Z_CALL Z_SetBitmapDataPointer(BitmapHandle* bitmap, void* data, size_t dataSize) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (!HasFlag(*bitmap, flag::Allocated) || !HasFlag(*bitmap, flag::UserData) ||
        HasFlag(*bitmap, flag::Global))
        return code::InvalidArgument;
    if (data != nullptr && dataSize != bitmap->Size) return code::InvalidArgument;
    bitmap->Addr = data;
    return code::Success;
}

ReturnCode Z_CALL Z_ChangeBitmapHeight(BitmapHandle* bitmap, int32_t height) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (HasFlag(*bitmap, flag::Locked | flag::UserData)) return code::InvalidArgument;
    if (height == bitmap->Height) return code::Success;
    if (height < 0) return code::InvalidDimensions;
    const storage::StorageClass* storageClass = storage::ClassOf(*bitmap);
    return storageClass == nullptr ? code::InvalidBitmap : storageClass->ChangeHeight(*bitmap, height);
}

ReturnCode Z_CALL Z_UpdateBitmapSize(BitmapHandle* bitmap) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const storage::StorageClass* storageClass = storage::ClassOf(*bitmap);
    return storageClass == nullptr ? code::InvalidBitmap : storageClass->UpdateSize(*bitmap);
}
