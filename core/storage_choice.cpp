// Z_AllocateBitmap: which storage class a bitmap gets.
#include "core/flags.h"
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/storage/budget.h"
#include "core/storage/storage_class.h"
#include "zkr13n/allocation.h"
#include "zkr13n/locks.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

namespace zkr {

namespace {

constexpr uint32_t PaintLUTLength = 256;

// The memory types that the choice can start from. A type that asks for runs always carries MemoryNoDisk by
// then.
constexpr std::array<int32_t, 10> AcceptedTypes = {
    MemoryConventional,
    MemoryUser,
    MemoryTiled,
    MemoryNoTiled,
    MemoryConventional | MemoryNoTiled,
    MemoryDisk,
    MemoryNoDisk,
    MemoryCompressed | MemoryNoDisk,
    MemorySuperCompressed,
    MemorySuperCompressed | MemoryConventional,
};

// Whether the record's fields can hold its sizes, and its dimensions make sense.
bool HasHoldableSize(const BitmapHandle& bitmap) {
    return bitmap.Width >= 0 && bitmap.Height >= 0 &&
           StorageRowBytes(bitmap.Width, bitmap.BitsPerPixel) <= std::numeric_limits<uint32_t>::max() &&
           FitsSize(RowsBytes(bitmap, bitmap.Height));
}

bool NeedsExtendedGray(const BitmapHandle& bitmap) {
    return bitmap.Order == Z_ORDER_GRAY || IsDeep(bitmap.BitsPerPixel);
}

// Takes the compressed forms out of a type where the bitmap cannot have them.
int32_t WithoutRefusedCompression(const BitmapHandle& bitmap, int32_t type) {
    const bool unlocked = Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) == 0;
    if ((type & MemoryCompressed) != 0)
        type =
            bitmap.BitsPerPixel == 1 && unlocked ? MemoryCompressed | MemoryNoDisk : type & ~MemoryCompressed;
    if ((type & MemorySuperCompressed) != 0) {
        const bool hasForm = bitmap.BitsPerPixel == 24 || bitmap.BitsPerPixel == 1;
        if (!hasForm || !unlocked) type &= ~MemorySuperCompressed;
    }
    return type;
}

// Weighs the bitmap against the tile size and the memory there is.
int32_t WeighedType(const BitmapHandle& bitmap, int32_t type) {
    if (bitmap.Size <= storage::TileSizeInForce()) return (type & ~MemoryTiled) | MemoryConventional;
    if (bitmap.Size > storage::UsableMemory() || bitmap.Size > storage::LargestConventionalSize())
        return type | MemoryTiled;
    return type;
}

ReturnCode Given(BitmapHandle& bitmap, ReturnCode built, uint32_t classFlags) {
    if (built == code::Success) bitmap.Flags |= flag::Allocated | classFlags;
    return built;
}

// The roads in the order in which they are tried.
ReturnCode BuildPlainStorage(BitmapHandle& bitmap, int32_t type) {
    type = WeighedType(bitmap, type);
    if ((type & (MemoryTiled | MemoryDisk)) == 0 &&
        Given(bitmap, storage::BuildConventional(bitmap), flag::Memory) == code::Success)
        return code::Success;
    if ((type & (MemoryNoTiled | MemoryDisk)) == 0 &&
        Given(bitmap, storage::BuildTiled(bitmap), flag::Memory | flag::Tiled) == code::Success)
        return code::Success;
    // The weighing may have added to the type, so that MemoryNoDisk holds for what it has left alone.
    if (type != MemoryNoDisk) return Given(bitmap, storage::BuildDisk(bitmap), flag::Disk);
    return code::OutOfMemory;
}

ReturnCode BuildStorage(BitmapHandle& bitmap, int32_t type) {
    type = WithoutRefusedCompression(bitmap, type);
    if (std::find(AcceptedTypes.begin(), AcceptedTypes.end(), type) == AcceptedTypes.end())
        return code::InvalidArgument;
    if (type == MemoryUser) return Given(bitmap, code::Success, flag::Memory | flag::UserData);
    if ((type & MemoryCompressed) != 0)
        return Given(bitmap, storage::BuildCompressed(bitmap), flag::Memory | flag::Compressed);
    if ((type & MemorySuperCompressed) != 0)
        return Given(bitmap, storage::BuildSuperCompressed(bitmap), flag::Memory | flag::SuperCompressed);
    return BuildPlainStorage(bitmap, type);
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_AllocateBitmap(BitmapHandle* bitmap, int32_t memoryType) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    if (bitmap->Size == 0 || !HasHoldableSize(*bitmap)) return code::InvalidDimensions;
    if (NeedsExtendedGray(*bitmap) && Z_IsSupportLocked(Z_SUPPORT_EXTGRAY) != 0)
        return code::ExtendedGrayLocked;

    // A record that has lost storage of another class may count fewer bytes than its rows need.
    bitmap->Size = std::max(bitmap->Size, static_cast<size_t>(RowsBytes(*bitmap, bitmap->Height)));
    bitmap->Flags &= ~(flag::Allocated | storage::ClassFlags);
    bitmap->StorageHandle = nullptr;
    bitmap->Addr = nullptr;
    bitmap->AlignOffset = 0;

    bitmap->PaintLUT = static_cast<uint8_t*>(Z_OsAlloc(PaintLUTLength));
    if (bitmap->PaintLUT == nullptr) return code::OutOfMemory;
    std::iota(bitmap->PaintLUT, bitmap->PaintLUT + PaintLUTLength, uint8_t{0});

    const ReturnCode result = BuildStorage(*bitmap, memoryType);
    if (result != code::Success) {
        Z_OsFree(bitmap->PaintLUT);
        bitmap->PaintLUT = nullptr;
    }
    return result;
}
