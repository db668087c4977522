// Palette objects and device contexts on systems other than Windows. A device context shows a surface: pixels
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
// Releases a palette.
BOOL DeleteObject(HGDIOBJ object);

// A device context of the screen; window must be null. Without a screen surface the screen is one of 1024 x
// 768 pixels of 32 bits that nobody sees.
HDC GetDC(HWND window);
// Gives back what GetDC gave: 1, or 0 for another handle.
int ReleaseDC(HWND window, HDC context);
int GetDeviceCaps(HDC context, int index); // 0 for what is not known
// The display's palette; 0 on a device without one. With a null out the number of entries.
UINT GetSystemPaletteEntries(HDC context, UINT start, UINT count, PALETTEENTRY* out);

} // namespace zkr::platform
