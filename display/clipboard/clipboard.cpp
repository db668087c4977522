#include "zkr13n/clipboard.h"

#include "core/predicates.h"
#include "core/return_codes.h"
#include "display/dib/region_exchange.h"
#include "platform/clipboard.h"
#include "platform/graphics.h"
#include "platform/memory.h"
#include "zkr13n/copy.h"
#include "zkr13n/dib.h"
#include "zkr13n/palettes.h"
#include "zkr13n/region.h"

#include <cstring>

using namespace zkr;

namespace {

constexpr uint32_t AllForms = COPY_DIB | COPY_DDB | COPY_PALETTE | COPY_RGN;

uint32_t RegionFormat() {
    return platform::RegisterClipboardFormatA("ZIRCONKIT 8.0 Region");
}

// The clipboard, open for a scope.
class OpenedClipboard {
  public:
    explicit OpenedClipboard(HWND owner) : own_(owner == nullptr ? platform::CreateOwner() : nullptr) {
        opened_ = platform::OpenClipboard(owner != nullptr ? owner : own_) != 0;
    }
    ~OpenedClipboard() {
        if (opened_) platform::CloseClipboard();
        if (own_ != nullptr) platform::DestroyOwner(own_);
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    explicit operator bool() const { return opened_; }

  private:
    HWND own_;
    bool opened_ = false;
};

// What cannot be put there is given back; a null one could not be made.
bool PutBlock(uint32_t format, HGLOBAL block) {
    if (block == nullptr) return false;
    if (format != 0 && platform::SetClipboardData(format, block) != nullptr) return true;
    platform::GlobalFree(block);
    return false;
}

bool PutObject(uint32_t format, platform::HGDIOBJ object) {
    if (object == nullptr) return false;
    if (platform::SetClipboardData(format, object) != nullptr) return true;
    platform::DeleteObject(object);
    return false;
}

bool PutForms(BitmapHandle& bitmap, uint32_t flags) {
    if ((flags & COPY_DIB) != 0 && !PutBlock(CF_DIB, Z_ConvertToDIB(&bitmap))) return false;
    if ((flags & COPY_DDB) != 0 && !PutObject(CF_BITMAP, Z_ConvertToDDB(nullptr, &bitmap))) return false;
    if ((flags & COPY_PALETTE) != 0 && bitmap.Palette != nullptr &&
        !PutObject(CF_PALETTE, Z_DupBitmapPalette(&bitmap)))
        return false;
    return (flags & COPY_RGN) == 0 || !Z_BitmapHasRgn(&bitmap) ||
           PutBlock(RegionFormat(), dib::RegionToBlock(bitmap));
}

// A copy of the clipboard's block, which others may read too.
ReturnCode FromDib(HGLOBAL block, BitmapHandle* bitmap) {
    const size_t size = platform::GlobalSize(block);
    const void* bytes = platform::GlobalLock(block);
    if (bytes == nullptr) return code::InvalidArgument;
    HGLOBAL copy = platform::GlobalAlloc(GMEM_MOVEABLE, size);
    void* room = copy != nullptr ? platform::GlobalLock(copy) : nullptr;
    if (room != nullptr) {
        std::memcpy(room, bytes, size);
        platform::GlobalUnlock(copy);
    }
    platform::GlobalUnlock(block);
    ReturnCode status = room != nullptr ? Z_ChangeFromDIB(bitmap, copy) : code::OutOfMemory;
    if (status != code::Success && copy != nullptr) platform::GlobalFree(copy);
    return status;
}

// Converting only some forms, the clipboard may do it itself: what is there tells which one to ask for.
ReturnCode FromOpened(BitmapHandle* bitmap) {
    ReturnCode status = Z_ERROR_CLIPBOARD_EMPTY;
    if (HANDLE block = platform::GetClipboardData(CF_DIB); block != nullptr) {
        status = FromDib(static_cast<HGLOBAL>(block), bitmap);
    } else if (HANDLE picture = platform::GetClipboardData(CF_BITMAP); picture != nullptr) {
        status = Z_ConvertFromDDB(nullptr, bitmap, static_cast<HBITMAP>(picture),
                                  static_cast<HPALETTE>(platform::GetClipboardData(CF_PALETTE)));
    }
    if (status != code::Success) return status;
    const uint32_t format = RegionFormat();
    HANDLE region = format != 0 ? platform::GetClipboardData(format) : nullptr;
    if (region != nullptr) static_cast<void>(dib::RegionFromBlock(*bitmap, static_cast<HGLOBAL>(region)));
    return status;
}

} // namespace

ReturnCode Z_CALL Z_CopyToClipboardExt(HWND owner, BitmapHandle* bitmap, uint32_t flags) {
    if (flags == 0 || (flags & ~(COPY_EMPTY | AllForms)) != 0) return code::InvalidArgument;
    const bool looksAtBitmap = (flags & AllForms) != 0;
    if (looksAtBitmap && !IsAllocated(bitmap)) return code::InvalidBitmap;
    const OpenedClipboard clipboard(owner);
    if (!clipboard) return Z_ERROR_CLIPBOARD_COPY;
    if ((flags & COPY_EMPTY) != 0 && platform::EmptyClipboard() == 0) return Z_ERROR_CLIPBOARD_COPY;
    return !looksAtBitmap || PutForms(*bitmap, flags) ? code::Success : Z_ERROR_CLIPBOARD_COPY;
}

ReturnCode Z_CALL Z_CopyToClipboard(HWND owner, BitmapHandle* bitmap) {
    return Z_CopyToClipboardExt(owner, bitmap, AllForms);
}

ReturnCode Z_CALL Z_CopyFromClipboard(HWND owner, BitmapHandle* bitmap) {
    if (bitmap == nullptr) return code::InvalidArgument;
    *bitmap = {};
    const OpenedClipboard clipboard(owner);
    return clipboard ? FromOpened(bitmap) : Z_ERROR_CLIPBOARD;
}

int32_t Z_CALL Z_ClipboardReady() {
    return platform::IsClipboardFormatAvailable(CF_DIB) != 0 ||
           platform::IsClipboardFormatAvailable(CF_BITMAP) != 0;
}
