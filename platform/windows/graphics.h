// What the library asks of Windows: palettes, regions and device contexts.
#pragma once

#include "platform/windows/guarded.h"

namespace zkr::platform {

using ::BITMAP;
using ::BITMAPINFO;
using ::BOOL;
using ::BYTE;
using ::COLORREF;
using ::DIBSECTION;
using ::DWORD;
using ::HBRUSH;
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
using ::RealizePalette;
using ::RestoreDC;
ZKR_FAULTABLE(SaveDC, Device, 0, ERROR_NOT_ENOUGH_MEMORY);
using ::GetClipBox;
using ::IntersectClipRect;
using ::SelectClipRgn;
using ::SelectObject;
using ::SelectPalette;
using ::SetBkColor;
using ::SetBrushOrgEx;
using ::SetStretchBltMode;
using ::SetTextColor;

ZKR_MAKING(CreateBitmap, Device, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(CreateCompatibleBitmap, Device, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(CreateDIBSection, Device, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(CreatePatternBrush, Device, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_MAKING(CreateSolidBrush, Device, nullptr, ERROR_NOT_ENOUGH_MEMORY);

ZKR_FAULTABLE(BitBlt, Drawing, FALSE, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(GetDIBits, Drawing, 0, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(PaintRgn, Drawing, FALSE, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(PatBlt, Drawing, FALSE, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(StretchDIBits, Drawing, 0, ERROR_NOT_ENOUGH_MEMORY);
using ::GdiFlush;

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
