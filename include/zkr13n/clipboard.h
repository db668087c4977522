/*
 * Bitmaps on the clipboard, and from the screen. On Windows they are the system's own; elsewhere the process has one
 * clipboard, and its screen is that of surface.h.
 */
#ifndef ZKR13N_CLIPBOARD_H
#define ZKR13N_CLIPBOARD_H

#include "bitmap.h"

Z_BEGIN_DECLS

/* The forms that a bitmap is put on the clipboard in. */
enum {
    COPY_EMPTY = 1,   /* empties the clipboard first */
    COPY_DIB = 2,     /* a device-independent bitmap, CF_DIB */
    COPY_DDB = 4,     /* a platform bitmap, CF_BITMAP */
    COPY_PALETTE = 8, /* the palette, CF_PALETTE, where there is one */
    COPY_RGN = 16     /* the region, "ZIRCONKIT 8.0 Region", where there is one */
};

/*
 * Copies a bitmap to the clipboard.
 *
 * owner     in, may be null: the window that is to own the clipboard; null for one that lives as long as the call
 * bitmap    in: an allocated bitmap; its row cache is changed. With COPY_EMPTY alone it is not looked at.
 * flags     in: COPY_...
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for other bits and where neither a form nor COPY_EMPTY is told; Z_ERROR_BITMAP for
 * a bitmap that is null or not allocated; Z_ERROR_CLIPBOARD_COPY where the clipboard cannot be opened or a form cannot be
 * made or put there. The forms before it are there then.
 */
Z_API ReturnCode Z_CALL Z_CopyToClipboardExt(HWND owner, BitmapHandle* bitmap, uint32_t flags);

/* As Z_CopyToClipboardExt in all forms. */
Z_API ReturnCode Z_CALL Z_CopyToClipboard(HWND owner, BitmapHandle* bitmap);

/*
 * Makes a bitmap of what the clipboard holds: of its device-independent bitmap, or else its platform bitmap with the
 * palette; and gives it the region that is there. A region that cannot be had is left out.
 *
 * owner     in, may be null: as for Z_CopyToClipboardExt
 * bitmap    out: whatever the record held is overwritten without being freed
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null bitmap; Z_ERROR_CLIPBOARD when the clipboard cannot be opened;
 * Z_ERROR_CLIPBOARD_EMPTY when it holds nothing of the kind; the failures of Z_ChangeFromDIB, Z_CopyBitmap and
 * Z_ConvertFromDDB. On failure the record is cleared.
 */
Z_API ReturnCode Z_CALL Z_CopyFromClipboard(HWND owner, BitmapHandle* bitmap);

/* 1 where the clipboard holds a bitmap of either kind, else 0. */
Z_API int32_t Z_CALL Z_ClipboardReady(void);

/*
 * Makes a bitmap of 24 bits of what a device shows.
 *
 * deviceContext    in: null for the screen
 * bitmap           out: whatever the record held is overwritten without being freed. Its view is VIEW_BOTTOM_LEFT.
 * rectangle        in: the part, pixels of the device; null for all of it. What lies outside the device
 *                  has the first of its colours, which is black on most.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null bitmap and for what is no device context; Z_ERROR_DIMENSIONS for a
 * rectangle without pixels or too large; Z_ERROR_MEMORY. On failure the record is cleared.
 */
Z_API ReturnCode Z_CALL Z_ScreenCaptureBitmap(HDC deviceContext, BitmapHandle* bitmap, const RECT* rectangle);

Z_END_DECLS

#endif
