// The storage classes behind one interface. A class is known by the flags of the record; the bits overlap, so
// they are tested in one fixed order, in ClassOf and nowhere else: Compressed, Tiled, SuperCompressed,
// Memory, Disk.
#pragma once

#include "core/flags.h"
#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr::storage {

// The flags that a class owns. They are cleared before a bitmap is given storage and when it loses it.
inline constexpr uint32_t ClassFlags = flag::Memory | flag::Disk | flag::Locked | flag::Compressed |
                                       flag::UserData | flag::Global | flag::Tiled | flag::SuperCompressed;

struct StorageClass {
    int32_t MemoryType; // as Z_GetBitmapMemoryInfo reports it

    // Gives back the storage. The flags are the caller's business.
    void (*Release)(BitmapHandle& bitmap);

    // Move bytes between a buffer and the row from a pixel column on, going on into the next rows. Nothing is
    // checked. The result is the count of bytes moved, or a code.
    ReturnCode (*Read)(BitmapHandle& bitmap, uint8_t* buffer, int32_t row, int32_t column, uint32_t bytes);
    ReturnCode (*Write)(BitmapHandle& bitmap, const uint8_t* buffer, int32_t row, int32_t column,
                        uint32_t bytes);

    // Where a row of the bitmap stands in memory until the next access; null where it does not, and then the
    // row is reached by Read and Write.
    uint8_t* (*ReachRow)(BitmapHandle& bitmap, int32_t row);

    // Makes the storage that of a bitmap of another height of 0 or more, and sets Height and Size. On failure
    // the rows that are left are whole and Height tells how many they are.
    ReturnCode (*ChangeHeight)(BitmapHandle& bitmap, int32_t height);

    // Works out Size.
    ReturnCode (*UpdateSize)(BitmapHandle& bitmap);
};

extern const StorageClass Compressed;
extern const StorageClass Tiled;
extern const StorageClass SuperCompressed;
extern const StorageClass Conventional;
extern const StorageClass Global;
extern const StorageClass User;
extern const StorageClass Disk;

// The class of a bitmap; null for a record without any class flag.
inline const StorageClass* ClassOf(const BitmapHandle& bitmap) {
    if (HasFlag(bitmap, flag::Compressed)) return &Compressed;
    if (HasFlag(bitmap, flag::Tiled)) return &Tiled;
    if (HasFlag(bitmap, flag::SuperCompressed)) return &SuperCompressed;
    if (HasFlag(bitmap, flag::Memory)) {
        if (HasFlag(bitmap, flag::UserData)) return &User;
        return HasFlag(bitmap, flag::Global) ? &Global : &Conventional;
    }
    return HasFlag(bitmap, flag::Disk) ? &Disk : nullptr;
}

// Each gives an initialised record its storage: StorageHandle, Addr and, where the class has its own rule,
// Size and AlignOffset are set on success, nothing on failure.
[[nodiscard]] ReturnCode BuildConventional(BitmapHandle& bitmap);
[[nodiscard]] ReturnCode BuildTiled(BitmapHandle& bitmap);
[[nodiscard]] ReturnCode BuildDisk(BitmapHandle& bitmap);
[[nodiscard]] ReturnCode BuildCompressed(BitmapHandle& bitmap);
[[nodiscard]] ReturnCode BuildSuperCompressed(BitmapHandle& bitmap);

// Storage that lies in one piece counts AlignOffset into its bytes once its height has been changed.
uint64_t PlainBytes(const BitmapHandle& bitmap, int32_t height);
void SetPlainHeight(BitmapHandle& bitmap, int32_t height, uint64_t bytes);

// Size by the plain rule: BytesPerLine * Height.
[[nodiscard]] ReturnCode UpdatePlainSize(BitmapHandle& bitmap);

} // namespace zkr::storage
