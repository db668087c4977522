// Bitmaps: surfaces with a handle, of a device's kind or of a device-independent one.
#pragma once

#include "platform/portable/graphics.h"
#include "platform/portable/handle_table.h"
#include "platform/portable/surfaces.h"

namespace zkr::platform {

struct Bitmap final : Object {
    static constexpr ObjectKind kind = ObjectKind::Bitmap;

    Ref<Surface> surface;
    bool ofSection = false;    // made by CreateDIBSection
    BITMAPINFOHEADER header{}; // of a section
    HANDLE section = nullptr;  // its mapping, the caller's
    DWORD sectionOffset = 0;
    void* bits = nullptr;

    void Release() override { delete this; }
};

int DescribeBitmap(HBITMAP bitmap, int size, void* out); // what GetObjectA gives

} // namespace zkr::platform
