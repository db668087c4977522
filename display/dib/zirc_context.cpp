// Device contexts on a bitmap's own pixels: the bitmap's mapping is the section of a platform bitmap.
#include "core/copy.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/record_like.h"
#include "core/replacement.h"
#include "core/return_codes.h"
#include "core/storage/storage_class.h"
#include "core/views.h"
#include "display/dib/contexts.h"
#include "display/dib/depth_for_dib.h"
#include "display/dib/dib_header.h"
#include "platform/memory.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/dib.h"
#include "zkr13n/flip.h"
#include "zkr13n/palettes.h"

namespace zkr::dib {

namespace {

// Conventional storage, whatever the thread's thresholds say of its size.
ReturnCode MoveToMapping(BitmapHandle& bitmap) {
    if (storage::ClassOf(bitmap) == &storage::Conventional) return code::Success;
    BitmapReplacement replacement(&bitmap);
    BitmapHandle& record = replacement.record();
    ReturnCode status = InitRecordLike(record, bitmap, bitmap.Width, bitmap.Height, bitmap.BitsPerPixel, 0);
    if (status == code::Success) status = storage::BuildConventional(record);
    if (status != code::Success) return status;
    record.Flags |= flag::Allocated | flag::Memory;
    status = CopyBitmapDataExactly(&record, &bitmap);
    if (status == code::Success) replacement.CommitStorage();
    return status;
}

ReturnCode BringToDevice(BitmapHandle& bitmap) {
    ReturnCode status = code::Success;
    if (HasFlag(bitmap, flag::Compressed | flag::SuperCompressed))
        status = Z_ChangeBitmapCompression(&bitmap, COMP_NONE);
    const HeldForm form = HeldFormOf(bitmap);
    if (status == code::Success && form.IsChange) {
        if (bitmap.BitsPerPixel <= MostIndexedBits && bitmap.Palette == nullptr)
            status = Z_CreateBitmapGrayPalette(&bitmap);
        if (status == code::Success) status = BringToForm(bitmap, bitmap, form);
    }
    if (status == code::Success)
        status = Z_IntChangeBitmapViewPerspective(nullptr, &bitmap, view::BottomLeft, 0);
    return status == code::Success ? MoveToMapping(bitmap) : status;
}

// A platform bitmap on the bitmap's mapping, through a handle of its own.
HBITMAP CreateSection(HDC context, const BitmapHandle& bitmap) {
    HANDLE self = platform::GetCurrentProcess();
    HANDLE mapping = nullptr;
    if (!platform::DuplicateHandle(self, bitmap.StorageHandle, self, &mapping, 0, 0, DUPLICATE_SAME_ACCESS))
        return nullptr;
    InfoWithColours info;
    info.Header.biSize = InfoHeaderBytes;
    info.Header.biWidth = bitmap.Width;
    info.Header.biHeight = bitmap.Height;
    info.Header.biPlanes = 1;
    info.Header.biBitCount = static_cast<uint16_t>(bitmap.BitsPerPixel);
    if (bitmap.BitsPerPixel <= MostIndexedBits) info.Header.biClrUsed = ColoursOf(bitmap, info.Colours);
    void* bits = nullptr;
    HBITMAP section =
        platform::CreateDIBSection(context, info.Get(), DIB_RGB_COLORS, &bits, mapping, bitmap.AlignOffset);
    if (section == nullptr) platform::CloseHandle(mapping);
    return section;
}

// The mapping of a section; null for another object.
HANDLE MappingOf(platform::HGDIOBJ object) {
    platform::DIBSECTION described{};
    constexpr int size = sizeof described;
    return platform::GetObjectA(object, size, &described) == size ? described.dshSection : nullptr;
}

void DeleteSection(platform::HGDIOBJ section) {
    HANDLE mapping = MappingOf(section);
    if (mapping == nullptr) return;
    platform::DeleteObject(section);
    platform::CloseHandle(mapping);
}

} // namespace

} // namespace zkr::dib

using namespace zkr;

HDC Z_CALL Z_CreateZircDC(BitmapHandle* bitmap) {
    if (!IsAllocated(bitmap) || dib::BringToDevice(*bitmap) != code::Success) return nullptr;
    HDC context = platform::CreateCompatibleDC(nullptr);
    if (context == nullptr) return nullptr;
    HBITMAP section = dib::CreateSection(context, *bitmap);
    if (section != nullptr && platform::SelectObject(context, section) != nullptr) return context;
    if (section != nullptr) dib::DeleteSection(section);
    platform::DeleteDC(context);
    return nullptr;
}

int32_t Z_CALL Z_DeleteZircDC(HDC deviceContext) {
    HBITMAP pixel = platform::CreateBitmap(1, 1, 1, 1, nullptr);
    if (pixel == nullptr) return 0;
    platform::HGDIOBJ section = platform::SelectObject(deviceContext, pixel);
    const bool isDeleted = section != nullptr && platform::DeleteDC(deviceContext) != 0;
    if (isDeleted) dib::DeleteSection(section);
    platform::DeleteObject(pixel);
    return isDeleted ? 1 : 0;
}
