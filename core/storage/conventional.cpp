// The conventional class: the whole bitmap in one anonymous mapping, row 0 aligned to 32 bytes.
#include "core/return_codes.h"
#include "core/sizes.h"
#include "core/storage/mapping.h"
#include "core/storage/plain_rows.h"
#include "core/storage/storage_class.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>

namespace zkr::storage {

namespace {

constexpr uint32_t Alignment = 32;

struct AlignedBlock {
    MappedView Block;
    uint32_t AlignOffset;

    uint8_t* Data() const { return Block.View + AlignOffset; }
};

bool MapAligned(uint64_t bytes, AlignedBlock& block) {
    if (!MapMemory(bytes + Alignment - 1, block.Block)) return false;
    const auto misplaced = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(block.Block.View) % Alignment);
    block.AlignOffset = misplaced == 0 ? 0 : Alignment - misplaced;
    return true;
}

void Adopt(BitmapHandle& bitmap, const AlignedBlock& block) {
    bitmap.StorageHandle = block.Block.Mapping;
    bitmap.Addr = block.Data();
    bitmap.AlignOffset = block.AlignOffset;
}

void Release(BitmapHandle& bitmap) {
    MappedView view = {bitmap.StorageHandle, nullptr};
    if (bitmap.Addr != nullptr) view.View = static_cast<uint8_t*>(bitmap.Addr) - bitmap.AlignOffset;
    Unmap(view);
}

ReturnCode ChangeHeight(BitmapHandle& bitmap, int32_t height) {
    const uint64_t bytes = PlainBytes(bitmap, height);
    AlignedBlock block;
    if (!FitsSize(bytes) || !MapAligned(bytes, block)) return code::OutOfMemory;
    const uint64_t kept = RowsBytes(bitmap, std::min(bitmap.Height, height));
    std::memcpy(block.Data(), bitmap.Addr, static_cast<size_t>(kept));
    Release(bitmap);
    Adopt(bitmap, block);
    SetPlainHeight(bitmap, height, bytes);
    return code::Success;
}

} // namespace

ReturnCode BuildConventional(BitmapHandle& bitmap) {
    AlignedBlock block;
    if (!MapAligned(bitmap.Size, block)) return code::OutOfMemory;
    Adopt(bitmap, block);
    return code::Success;
}

const StorageClass Conventional = {
    .MemoryType = MemoryConventional,
    .Release = Release,
    .Read = ReadMemoryRow,
    .Write = WriteMemoryRow,
    .ReachRow = ReachMemoryRow,
    .ChangeHeight = ChangeHeight,
    .UpdateSize = UpdatePlainSize,
};

} // namespace zkr::storage
