// What the library asks of Windows: palettes and device contexts.
#pragma once

#include "platform/windows/guarded.h"

namespace zkr::platform {

using ::BOOL;
using ::BYTE;
using ::COLORREF;
using ::HGDIOBJ;
using ::HWND;
using ::LOGPALETTE;
using ::PALETTEENTRY;
using ::UINT;
using ::WORD;

ZKR_MAKING(CreatePalette, Palette, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_RELEASING(DeleteObject, TRUE);
using ::GetNearestPaletteIndex;
using ::GetObjectA;
using ::GetPaletteEntries;
using ::SetPaletteEntries;

ZKR_MAKING(GetDC, Device, nullptr, ERROR_NOT_ENOUGH_MEMORY);
using ::GetDeviceCaps;
using ::GetSystemPaletteEntries;
ZKR_RELEASING(ReleaseDC, 1);

} // namespace zkr::platform
