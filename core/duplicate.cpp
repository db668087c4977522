// Records made from other records: plain copies, and duplicates of new dimensions that inherit everything
// else.
#include "core/dispatch.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/record_like.h"
#include "core/return_codes.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/playback.h"

#include <cstring>

namespace zkr {

namespace {

void InheritPalette(BitmapHandle& destination, const BitmapHandle& source, uint32_t flags) {
    destination.Flags = (destination.Flags & ~flag::PaletteIsBlock) | (source.Flags & flag::PaletteIsBlock);
    if ((flags & Z_DUP_PALETTE) != 0)
        Z_CopyBitmapPalette(&destination, &source);
    else
        destination.Palette = source.Palette;
    destination.ColorsUsed = source.ColorsUsed;
}

ReturnCode InheritRegion(BitmapHandle& destination, BitmapHandle& source, uint32_t flags) {
    if ((flags & Z_DUP_REGION) == 0) {
        destination.Region = source.Region;
        return code::Success;
    }
    void* const original = source.Region;
    const ReturnCode result = Dispatch().CopyBitmapRegion(&source, &source, 0, 0);
    if (result == code::Success) destination.Region = source.Region;
    source.Region = original;
    return result;
}

bool SharesGrayWindow(const BitmapHandle& destination, const BitmapHandle& source) {
    return source.Order == Z_ORDER_GRAY && source.BitsPerPixel == destination.BitsPerPixel;
}

} // namespace

} // namespace zkr

using namespace zkr;

void Z_CALL Z_CopyBitmapHandle(BitmapHandle* destination, const BitmapHandle* source) {
    if (destination != nullptr && source != nullptr) *destination = *source;
}

ReturnCode Z_CALL Z_DupBitmapNewDim(BitmapHandle* destination, BitmapHandle* source, int32_t width,
                                    int32_t height, int32_t bitsPerPixel, uint32_t flags) {
    if (destination == nullptr || !IsAllocated(source)) return code::InvalidBitmap;
    // A refused depth makes a record all the same.
    static_cast<void>(InitRecordLike(*destination, *source, width, height, bitsPerPixel,
                                     carry::RegionUnclipped | carry::Form));
    if ((flags & Z_DUP_DATA) != 0) {
        const ReturnCode result = Z_AllocateBitmap(destination, MemoryTypeOfForm(*destination));
        if (result != code::Success) return result;
    }
    InheritPalette(*destination, *source, flags);
    Z_CopyPlaybackParms(destination, source);

    ReturnCode result = InheritRegion(*destination, *source, flags);
    if (result != code::Success) {
        Z_FreeDuplicateBitmap(destination, flags & (Z_DUP_DATA | Z_DUP_PALETTE));
        return result;
    }
    if ((flags & Z_DUP_DATA) != 0 && SharesGrayWindow(*destination, *source)) {
        destination->Order = Z_ORDER_GRAY;
        result = Z_CopyGrayParams(destination, source);
        if (result != code::Success) {
            Z_FreeDuplicateBitmap(destination, flags);
            return result;
        }
    }
    if (destination->PaintLUT != nullptr && source->PaintLUT != nullptr)
        std::memcpy(destination->PaintLUT, source->PaintLUT, 256);
    return code::Success;
}

ReturnCode Z_CALL Z_FreeDuplicateBitmap(BitmapHandle* bitmap, uint32_t flags) {
    if (bitmap == nullptr) return code::Success;
    if ((flags & Z_DUP_PALETTE) == 0) bitmap->Palette = nullptr;
    if ((flags & Z_DUP_REGION) == 0) bitmap->Region = nullptr;
    if ((flags & Z_DUP_DATA) != 0) {
        Z_FreeBitmap(bitmap);
        return code::Success;
    }
    // Without storage of its own, only the palette and the region are there to be freed.
    BitmapHandle attachments = {};
    attachments.Palette = bitmap->Palette;
    attachments.Region = bitmap->Region;
    attachments.Flags = bitmap->Flags & flag::PaletteIsBlock;
    Z_FreeBitmap(&attachments);
    bitmap->Palette = nullptr;
    bitmap->Region = nullptr;
    return code::Success;
}
