// What the library asks of Windows: palettes, regions and device contexts.
#pragma once

#include "platform/windows/guarded.h"

namespace zkr::platform {

using ::BOOL;
using ::BYTE;
using ::COLORREF;
using ::DWORD;
using ::HGDIOBJ;
using ::HWND;
using ::LOGPALETTE;
using ::LONG;
using ::PALETTEENTRY;
using ::RGNDATA;
using ::RGNDATAHEADER;
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
ZKR_MAKING(CreateCompatibleDC, Device, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_RELEASING(DeleteDC, TRUE);

ZKR_MAKING(CreateEllipticRgnIndirect, Region, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(CreatePolygonRgn, Region, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(CreateRectRgn, Region, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(CreateRectRgnIndirect, Region, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(CreateRoundRectRgn, Region, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(ExtCreateRegion, Region, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(CombineRgn, Region, ERROR, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(GetRegionData, Region, 0, ERROR_NOT_ENOUGH_MEMORY);
using ::GetRgnBox;
using ::OffsetRgn;

using ::BeginPath;
using ::EndPath;
ZKR_MAKING(PathToRegion, Region, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(PolyBezier, Region, FALSE, ERROR_NOT_ENOUGH_MEMORY);
using ::SetPolyFillMode;

} // namespace zkr::platform
