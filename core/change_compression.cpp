// The change between plain and compressed storage: a whole new record beside the old one, which is committed
// when all rows are in it.
#include "core/copy.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/replacement.h"
#include "core/return_codes.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/locks.h"
#include "zkr13n/storage.h"

namespace zkr {

namespace {

constexpr uint32_t CompressionFlags = flag::Compressed | flag::SuperCompressed;

uint32_t FlagOf(int32_t method) {
    if (method == COMP_RLE) return flag::Compressed;
    return method == COMP_SUPER ? flag::SuperCompressed : 0;
}

// A duplicate takes the form of its source, which wears the flags of the wanted form for that moment.
ReturnCode DuplicateAs(BitmapHandle& record, BitmapHandle* bitmap, uint32_t formFlag) {
    const uint32_t flags = bitmap->Flags;
    bitmap->Flags = (flags & ~CompressionFlags) | formFlag;
    const ReturnCode status =
        Z_DupBitmapNewDim(&record, bitmap, bitmap->Width, bitmap->Height, bitmap->BitsPerPixel, Z_DUP_DATA);
    bitmap->Flags = flags;
    return status;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_ChangeBitmapCompression(BitmapHandle* bitmap, int32_t method) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (method != COMP_NONE && method != COMP_RLE && method != COMP_SUPER) return code::InvalidArgument;
    const uint32_t formFlag = FlagOf(method);
    if ((bitmap->Flags & CompressionFlags) == formFlag) return code::Success;

    BitmapReplacement replacement(bitmap);
    ReturnCode status = DuplicateAs(replacement.record(), bitmap, formFlag);
    if (status == code::Success) status = CopyBitmapDataExactly(&replacement.record(), bitmap);
    if (status != code::Success) return status;
    replacement.Commit();
    if (HasFlag(*bitmap, flag::Compressed)) Z_TrimBitmapHeap(bitmap);
    return code::Success;
}

ReturnCode Z_CALL Z_ToggleBitmapCompression(BitmapHandle* bitmap) {
    if (Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) != 0) return code::DocumentLocked;
    if (!IsAllocated(bitmap) || bitmap->BitsPerPixel != 1) return code::InvalidBitmap;
    return Z_ChangeBitmapCompression(bitmap, HasFlag(*bitmap, CompressionFlags) ? COMP_NONE : COMP_RLE);
}
