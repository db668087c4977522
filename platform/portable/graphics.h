// Palettes, regions and device contexts on systems other than Windows. A device context shows a surface: pixels
// in memory that the host provides through zkr13n/surface.h.
#pragma once

#include "platform/portable/types.h"

namespace zkr {

inline constexpr uint32_t CLR_INVALID = 0xFFFFFFFFu;

// What GetDeviceCaps tells.
inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;
inline constexpr int BITSPIXEL = 12;
inline constexpr int PLANES = 14;
inline constexpr int RASTERCAPS = 38;
inline constexpr int LOGPIXELSX = 88;
inline constexpr int LOGPIXELSY = 90;
inline constexpr int SIZEPALETTE = 104;
inline constexpr int NUMRESERVED = 106;

inline constexpr int RC_PALETTE = 0x0100;

// What calls on regions tell.
inline constexpr int ERROR = 0;
inline constexpr int NULLREGION = 1;
inline constexpr int SIMPLEREGION = 2;
inline constexpr int COMPLEXREGION = 3;

inline constexpr int RGN_AND = 1;
inline constexpr int RGN_OR = 2;
inline constexpr int RGN_XOR = 3;
inline constexpr int RGN_DIFF = 4;
inline constexpr int RGN_COPY = 5;

inline constexpr int ALTERNATE = 1;
inline constexpr int WINDING = 2;

inline constexpr uint32_t RDH_RECTANGLES = 1;

} // namespace zkr

namespace zkr::platform {

using HWND = struct HWND__*;

struct PALETTEENTRY {
    BYTE peRed;
    BYTE peGreen;
    BYTE peBlue;
    BYTE peFlags;
};
struct LOGPALETTE {
    WORD palVersion; // 0x300
    WORD palNumEntries;
    PALETTEENTRY palPalEntry[1];
};

struct RGNDATAHEADER {
    DWORD dwSize;   // of this record
    DWORD iType;    // RDH_RECTANGLES
    DWORD nCount;   // rectangles
    DWORD nRgnSize; // their bytes
    RECT rcBound;
};
struct RGNDATA {
    RGNDATAHEADER rdh;
    char Buffer[1]; // the rectangles
};
struct XFORM;

// Null for a wrong version, for no entries and where memory is short.
HPALETTE CreatePalette(const LOGPALETTE* palette);
// Of a palette: writes the count of entries, 2 bytes. Gives the bytes written, or with a null out those
// needed.
int GetObjectA(HGDIOBJ object, int size, void* out);
// The entries copied, as many as there are from start; with a null out all that there are.
UINT GetPaletteEntries(HPALETTE palette, UINT start, UINT count, PALETTEENTRY* out);
UINT SetPaletteEntries(HPALETTE palette, UINT start, UINT count, const PALETTEENTRY* entries);
// The entry with the least sum of squared differences of red, green and blue, the first one of equals. The
// top byte of the colour plays no part. CLR_INVALID for a bad handle.
UINT GetNearestPaletteIndex(HPALETTE palette, COLORREF colour);
// Releases a palette or a region.
BOOL DeleteObject(HGDIOBJ object);

// A device context of the screen; window must be null. Without a screen surface the screen is one of 1024 x
// 768 pixels of 32 bits that nobody sees.
HDC GetDC(HWND window);
// Gives back what GetDC gave: 1, or 0 for another handle.
int ReleaseDC(HWND window, HDC context);
int GetDeviceCaps(HDC context, int index); // 0 for what is not known
// The display's palette; 0 on a device without one. With a null out the number of entries.
UINT GetSystemPaletteEntries(HDC context, UINT start, UINT count, PALETTEENTRY* out);

// A device context of its own on a bitmap of one pixel of one bit; context must be null or live.
HDC CreateCompatibleDC(HDC context);
BOOL DeleteDC(HDC context); // one of CreateCompatibleDC

// Regions. Sides in the wrong order are exchanged. A pixel belongs to a shape where its centre lies inside.
HRGN CreateRectRgn(int left, int top, int right, int bottom);
HRGN CreateRectRgnIndirect(const RECT* rect);
HRGN CreateEllipticRgnIndirect(const RECT* rect);
HRGN CreateRoundRectRgn(int left, int top, int right, int bottom, int cornerWidth, int cornerHeight);
HRGN CreatePolygonRgn(const POINT* points, int count, int fillMode);
// Only without a transform. The rectangles may stand in any order.
HRGN ExtCreateRegion(const XFORM* transform, DWORD bytes, const RGNDATA* data);
// The destination may be one of the sources; second plays no part in RGN_COPY.
int CombineRgn(HRGN destination, HRGN first, HRGN second, int mode);
int OffsetRgn(HRGN region, int dx, int dy); // ERROR where a coordinate would leave 32 bits
int GetRgnBox(HRGN region, RECT* box);
// The bytes of the header and the rectangles, which stand in bands; 0 where they do not fit.
DWORD GetRegionData(HRGN region, DWORD bytes, RGNDATA* data);

// A path of Bezier curves between BeginPath and EndPath; each call of PolyBezier is a figure of its own.
// PathToRegion takes the path from the context.
int SetPolyFillMode(HDC context, int mode); // the mode before, 0 for a failure
BOOL BeginPath(HDC context);
BOOL EndPath(HDC context);
BOOL PolyBezier(HDC context, const POINT* points, DWORD count);
HRGN PathToRegion(HDC context);

} // namespace zkr::platform
