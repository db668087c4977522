#include "core/record_like.h"

#include "core/flags.h"
#include "zkr13n/playback.h"
#include "zkr13n/storage.h"

namespace zkr {

ReturnCode InitRecordLike(BitmapHandle& record, const BitmapHandle& source, int32_t width, int32_t height,
                          int32_t bitsPerPixel, uint32_t carried) {
    const ReturnCode result = Z_InitBitmap(&record, width, height, bitsPerPixel);
    record.ViewPerspective = source.ViewPerspective;
    record.XResolution = source.XResolution;
    record.YResolution = source.YResolution;
    uint32_t flags = 0;
    if ((carried & carry::RegionUnclipped) != 0) flags |= flag::RegionUnclipped;
    if ((carried & carry::Form) != 0) {
        flags |= flag::Compressed | flag::SuperCompressed | flag::Disk | flag::Signed;
        record.Order = source.Order;
    }
    record.Flags |= source.Flags & flags;
    if ((carried & carry::Playback) != 0) Z_CopyPlaybackParms(&record, &source);
    return result;
}

int32_t MemoryTypeOfForm(const BitmapHandle& record) {
    if (HasFlag(record, flag::Compressed)) return MemoryCompressed | MemoryConventional;
    if (HasFlag(record, flag::SuperCompressed)) return MemorySuperCompressed;
    return HasFlag(record, flag::Disk) ? MemoryDisk : MemoryConventional;
}

ReturnCode AllocatePlainLike(BitmapHandle& record, const BitmapHandle& source) {
    return Z_AllocateBitmap(&record, HasFlag(source, flag::Disk) ? MemoryDisk : MemoryConventional);
}

} // namespace zkr
