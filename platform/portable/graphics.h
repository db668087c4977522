// Palettes, regions and device contexts on systems other than Windows. A device context shows a surface: pixels
// in memory that the host provides through zkr13n/surface.h.
#pragma once

#include "platform/portable/types.h"

namespace zkr {

inline constexpr uint32_t CLR_INVALID = 0xFFFFFFFFu;

// What GetDeviceCaps tells.
inline constexpr int TECHNOLOGY = 2;
inline constexpr int HORZSIZE = 4; // millimetres
inline constexpr int VERTSIZE = 6;
inline constexpr int HORZRES = 8;
inline constexpr int VERTRES = 10;
inline constexpr int BITSPIXEL = 12;
inline constexpr int PLANES = 14;
inline constexpr int NUMCOLORS = 24;
inline constexpr int RASTERCAPS = 38;
inline constexpr int LOGPIXELSX = 88; // to the inch
inline constexpr int LOGPIXELSY = 90;
inline constexpr int SIZEPALETTE = 104;
inline constexpr int NUMRESERVED = 106;
inline constexpr int COLORRES = 108;

inline constexpr int DT_RASDISPLAY = 1;
inline constexpr int DT_RASPRINTER = 2;
inline constexpr int DT_METAFILE = 5;

inline constexpr int RC_BITBLT = 0x0001;
inline constexpr int RC_BITMAP64 = 0x0008;
inline constexpr int RC_DI_BITMAP = 0x0080;
inline constexpr int RC_PALETTE = 0x0100;
inline constexpr int RC_STRETCHDIB = 0x2000;

inline constexpr uint32_t BI_RGB = 0;
inline constexpr uint32_t DIB_RGB_COLORS = 0;
inline constexpr uint32_t DIB_PAL_COLORS = 1;

inline constexpr int BLACKONWHITE = 1;
inline constexpr int COLORONCOLOR = 3;
inline constexpr int HALFTONE = 4;

// Raster operations; every other code of this form works too.
inline constexpr uint32_t SRCCOPY = 0x00CC0020;
inline constexpr uint32_t PATCOPY = 0x00F00021;
inline constexpr uint32_t BLACKNESS = 0x00000042;
inline constexpr uint32_t WHITENESS = 0x00FF0062;

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

using HBRUSH = struct HBRUSH__*;

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

struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};
struct BITMAP {
    LONG bmType; // 0
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes; // of a row
    WORD bmPlanes;
    WORD bmBitsPixel;
    void* bmBits; // of a DIB section; null for others
};
struct DIBSECTION {
    BITMAP dsBm;
    BITMAPINFOHEADER dsBmih;
    DWORD dsBitfields[3];
    HANDLE dshSection; // the mapping that the pixels lie in; null for memory of its own
    DWORD dsOffset;
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
// Of a palette the count of entries, 2 bytes; of a bitmap a BITMAP, and of a DIB section a DIBSECTION where
// there is room for it. Gives the bytes written, or with a null out those needed.
int GetObjectA(HGDIOBJ object, int size, void* out);
// The entries copied, as many as there are from start; with a null out all that there are.
UINT GetPaletteEntries(HPALETTE palette, UINT start, UINT count, PALETTEENTRY* out);
UINT SetPaletteEntries(HPALETTE palette, UINT start, UINT count, const PALETTEENTRY* entries);
// The entry with the least sum of squared differences of red, green and blue, the first one of equals. The
// top byte of the colour plays no part. CLR_INVALID for a bad handle.
UINT GetNearestPaletteIndex(HPALETTE palette, COLORREF colour);
// Releases a palette, region, bitmap or brush. What is selected into a context stays there.
BOOL DeleteObject(HGDIOBJ object);

// A device context of the screen; window must be null. Without a screen surface the screen is one of 1024 x
// 768 pixels of 32 bits that nobody sees.
HDC GetDC(HWND window);
// Gives back what GetDC gave: 1, or 0 for another handle.
int ReleaseDC(HWND window, HDC context);
int GetDeviceCaps(HDC context, int index); // 0 for what is not known
// The display's palette; 0 on a device without one. With a null out the number of entries.
UINT GetSystemPaletteEntries(HDC context, UINT start, UINT count, PALETTEENTRY* out);

// A palette takes its place in a context, whatever the display; gives the one before.
HPALETTE SelectPalette(HDC context, HPALETTE palette, BOOL background);
// On a palette display brings the selected palette's colours into the system palette, where there is room; on
// other devices does nothing. Gives how many of its entries have changed.
UINT RealizePalette(HDC context);

// A memory context: it shows a bitmap of one pixel of one bit until another is selected. context must be null
// or live.
HDC CreateCompatibleDC(HDC context);
BOOL DeleteDC(HDC context);             // one of CreateCompatibleDC
int SaveDC(HDC context);                // the level to restore, from 1
BOOL RestoreDC(HDC context, int level); // a level, or -1 for the last one
// Selects a bitmap or brush and gives the one before, or a region as the clip and gives its complexity.
HGDIOBJ SelectObject(HDC context, HGDIOBJ object);
COLORREF SetTextColor(HDC context, COLORREF colour); // the one before, or CLR_INVALID
COLORREF SetBkColor(HDC context, COLORREF colour);
BOOL SetBrushOrgEx(HDC context, int x, int y, POINT* before);
int SetStretchBltMode(HDC context, int mode); // the mode before; pixels are never mixed whatever it is
// The clip is a copy of the region; a null region takes it away.
int SelectClipRgn(HDC context, HRGN region);
int IntersectClipRect(HDC context, int left, int top, int right, int bottom);
int GetClipBox(HDC context, RECT* box);

// Bitmaps of a device's kind. With 1 bit they are monochrome: their bits stand for the text colour and the
// background colour of the context that they are drawn on, and of colours that are drawn on them the source's
// background colour becomes 1.
HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bitsPerPixel, const void* bits);
HBITMAP CreateCompatibleBitmap(HDC context, int width, int height);
// A bitmap on pixels that the caller reaches too, in a mapping from an offset of a multiple of 4 on or, with a
// null section, in memory of its own.
HBITMAP CreateDIBSection(HDC context, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                         DWORD offset);
HBRUSH CreateSolidBrush(COLORREF colour);
HBRUSH CreatePatternBrush(HBITMAP bitmap);

// Drawing. Every ternary raster operation works on the target's pixels as they lie in memory; colours are
// shown by the nearest one that the target has.
BOOL PatBlt(HDC context, int x, int y, int width, int height, DWORD operation);
BOOL BitBlt(HDC context, int x, int y, int width, int height, HDC source, int sourceX, int sourceY,
            DWORD operation);
BOOL PaintRgn(HDC context, HRGN region);
// Plain rows of 1, 4, 8, 16, 24 and 32 bits; stretched, the source's pixel under a middle shows. sourceY counts
// from the picture's bottom to that of the part, whichever way the rows stand. A negative extent runs backwards.
// Gives the rows of the block, or 0 for a failure.
int StretchDIBits(HDC context, int x, int y, int width, int height, int sourceX, int sourceY, int sourceWidth,
                  int sourceHeight, const void* bits, const BITMAPINFO* info, UINT usage, DWORD operation);
// Rows of a bitmap, counted from its bottom, in the form that the header asks for; with a bit count of 0 only
// the header is filled.
int GetDIBits(HDC context, HBITMAP bitmap, UINT first, UINT count, void* bits, BITMAPINFO* info, UINT usage);
BOOL GdiFlush(); // waits for what has been drawn: nothing here

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
