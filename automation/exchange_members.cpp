// Bitmaps exchanged with the platform: device-independent bitmaps, platform bitmaps, pictures and device contexts. What
// replaces the bitmap is made first, so that a handle which is not accepted changes nothing.
#include "automation/raster_object.h"

#include "platform/graphics.h"
#include "zkr13n/clipboard.h"
#include "zkr13n/dib.h"

#include <cstring>

namespace zkr::automation {

namespace {

// A block of the object's own with what a client's block holds; null for what is no block, and where memory is short.
HGLOBAL CopyOfBlock(HGLOBAL block, ReturnCode* status) {
    *status = Z_ERROR_ARGUMENT;
    const size_t size = block == nullptr ? 0 : platform::GlobalSize(block);
    const void* bytes = size == 0 ? nullptr : platform::GlobalLock(block);
    if (bytes == nullptr) return nullptr;
    HGLOBAL copy =
        platform::GlobalHandle(bytes) == block ? platform::GlobalAlloc(GMEM_MOVEABLE, size) : nullptr;
    void* room = copy != nullptr ? platform::GlobalLock(copy) : nullptr;
    if (platform::GlobalHandle(bytes) == block) *status = room != nullptr ? Z_SUCCESS : Z_ERROR_MEMORY;
    if (room != nullptr) {
        std::memcpy(room, bytes, size);
        platform::GlobalUnlock(copy);
    }
    platform::GlobalUnlock(block);
    return copy;
}

// A copy is adopted first, which holds what the header tells against the size of the block. Rows of other forms are
// converted then; those that a bitmap can lie on are converted from the block itself.
ReturnCode FromBlock(HGLOBAL block, BitmapHandle* made) {
    ReturnCode status;
    HGLOBAL copy = CopyOfBlock(block, &status);
    if (status != Z_SUCCESS) return status;
    BitmapHandle adopted{};
    status = Z_ChangeFromDIB(&adopted, copy);
    if (status != Z_SUCCESS) {
        platform::GlobalFree(copy);
        return status;
    }
    if (adopted.StorageHandle != copy) {
        *made = adopted;
        return Z_SUCCESS;
    }
    const auto* header = static_cast<const uint8_t*>(platform::GlobalLock(block));
    status =
        header != nullptr ? Z_ConvertFromDIB(made, header, header + adopted.AlignOffset) : Z_ERROR_ARGUMENT;
    if (header != nullptr) platform::GlobalUnlock(block);
    Z_FreeBitmap(&adopted);
    return status;
}

} // namespace

// A context that cannot be deleted, where memory is short, waits for the next one and for the object's end.
void RasterObject::ReleaseContext() {
    if (bitmapContext_ != nullptr && Z_DeleteZircDC(bitmapContext_) != 0) bitmapContext_ = nullptr;
    contextCount_ = 0;
}

// The frame of members that replace the list by what a body makes.
template <typename Body> Result RasterObject::ReplaceAll(int16_t* result, Body body) {
    return Member(Needs::NoContext, result, [&]() -> ReturnCode {
        BitmapHandle made{};
        const ReturnCode status = body(&made);
        if (status != Z_SUCCESS) return status;
        EmptyList();
        return Install(made);
    });
}

Result RasterObject::GetPicture(intptr_t context, intptr_t* picture) {
    return Value(Needs::Bitmap, picture, [&](intptr_t& out) -> ReturnCode {
        if (!face_.HasPictures()) return Z_ERROR_FEATURE;
        const HDC device = reinterpret_cast<HDC>(context);
        const HBITMAP bitmap = Z_ConvertToDDB(device, &current_);
        StoreRecord();
        if (bitmap == nullptr) return Z_ERROR_GENERAL;
        return face_.MakePicture(bitmap, Z_CreatePaintPalette(device, &current_), &out);
    });
}

Result RasterObject::SetPicture(intptr_t picture, int16_t* result) {
    return ReplaceAll(result, [&](BitmapHandle* made) {
        return face_.HasPictures() ? face_.ReadPicture(picture, made) : Z_ERROR_FEATURE;
    });
}

Result RasterObject::GetBitmapDC(intptr_t* context) {
    return Value(Needs::Nothing, context, [&](intptr_t& out) -> ReturnCode {
        if (!HasBitmap()) return Z_ERROR_BITMAP;
        if (contextCount_ == INT16_MAX) return Z_ERROR_MEMORY;
        if (contextCount_ == 0) {
            ReleaseContext();
            if (bitmapContext_ != nullptr) return Z_ERROR_MEMORY;
            bitmapContext_ = Z_CreateZircDC(&current_);
            StoreRecord();
        }
        if (bitmapContext_ == nullptr) return Z_ERROR_MEMORY;
        ++contextCount_;
        out = reinterpret_cast<intptr_t>(bitmapContext_);
        return Z_SUCCESS;
    });
}

Result RasterObject::ReleaseBitmapDC(int16_t* result) {
    return Member(Needs::Nothing, result, [&] {
        if (contextCount_ > 0 && --contextCount_ == 0) ReleaseContext();
        return Z_SUCCESS;
    });
}

Result RasterObject::Copy(intptr_t window, int16_t flags, int16_t* result) {
    return Member(Needs::Bitmap, result, [&] {
        const ReturnCode status = Z_CopyToClipboardExt(reinterpret_cast<HWND>(window), &current_,
                                                       static_cast<uint32_t>(int32_t{flags}));
        StoreRecord();
        return status;
    });
}

Result RasterObject::Paste(intptr_t window, int16_t flags, int16_t* result) {
    if ((flags & PASTE_ISREADY) != 0)
        return Member(Needs::NoContext, result, [] { return ReturnCode{Z_ClipboardReady()}; });
    return ReplaceAll(result, [&](BitmapHandle* made) {
        return Z_CopyFromClipboard(reinterpret_cast<HWND>(window), made);
    });
}

Result RasterObject::SetDIB(intptr_t dib, int16_t* result) {
    return ReplaceAll(result,
                      [&](BitmapHandle* made) { return FromBlock(reinterpret_cast<HGLOBAL>(dib), made); });
}

Result RasterObject::SetDDB(intptr_t context, intptr_t bitmap, intptr_t palette, int16_t* result) {
    return ReplaceAll(result, [&](BitmapHandle* made) {
        return Z_ConvertFromDDB(reinterpret_cast<HDC>(context), made, reinterpret_cast<HBITMAP>(bitmap),
                                reinterpret_cast<HPALETTE>(palette));
    });
}

Result RasterObject::GetDIB(intptr_t* dib) {
    return GetDIB2(DIB_BITMAPINFOHEADER, dib);
}

Result RasterObject::GetDIB2(int32_t type, intptr_t* dib) {
    return Value(Needs::Bitmap, dib, [&](intptr_t& out) {
        out = reinterpret_cast<intptr_t>(Z_ConvertToDIB2(&current_, type));
        StoreRecord();
        return out != 0 ? Z_SUCCESS : Z_ERROR_GENERAL;
    });
}

Result RasterObject::GetDDB(intptr_t context, intptr_t* bitmap) {
    return Value(Needs::Bitmap, bitmap, [&](intptr_t& out) {
        out = reinterpret_cast<intptr_t>(Z_ConvertToDDB(reinterpret_cast<HDC>(context), &current_));
        StoreRecord();
        return out != 0 ? Z_SUCCESS : Z_ERROR_GENERAL;
    });
}

Result RasterObject::Capture(intptr_t context, float left, float top, float width, float height,
                             int16_t* result) {
    return ReplaceAll(result, [&](BitmapHandle* made) {
        const HDC device = reinterpret_cast<HDC>(context);
        const RECT part = ToRect(left, top, width, height, device);
        return Z_ScreenCaptureBitmap(device, made, &part);
    });
}

} // namespace zkr::automation
