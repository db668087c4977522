/*
 * Dithering: rows of pixels of any depth to packed indices of a palette of at most 256 colours.
 *
 * A run belongs to one bitmap, whose rows, from the first to the last, are given one by one in the bitmap's
 * format; the rows need not come out of its storage. A run is used by one thread at a time.
 *
 *     Z_StartDithering(&bitmap, palette, 16);
 *     for (y = 0; y < bitmap.Height; ++y) {
 *         Z_GetBitmapRow(&bitmap, source, y, bitmap.BytesPerLine);
 *         Z_DitherLine(&bitmap, source, target);
 *         ... four bits for each pixel are now in target ...
 *     }
 *     Z_StopDithering(&bitmap);
 */
#ifndef ZKR13N_DITHER_H
#define ZKR13N_DITHER_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * Values of BitmapHandle.DitheringMethod. Those from DitherFloydSteinberg to DitherJarvis diffuse the error
 * of each pixel over pixels that are still to come, in rows that all go from left to right; the last two
 * compare with a matrix of 8 x 8 thresholds.
 */
enum {
    DitherNone = 0,           /* the nearest colour */
    DitherFloydSteinberg = 1, /* Floyd and Steinberg, 1976 */
    DitherStucki = 2,         /* Stucki, 1981 */
    DitherBurkes = 3,         /* Burkes, 1988 */
    DitherSierra = 4,         /* Sierra, 1989: the form of three rows */
    DitherStevensonArce = 5,  /* Stevenson and Arce, 1985 */
    DitherJarvis = 6,         /* Jarvis, Judice and Ninke, 1976 */
    DitherOrdered = 7,        /* dispersed dots, after Bayer, 1973 */
    DitherClustered = 8       /* clustered dots, as halftone screens have them */
};

/*
 * Begins a run with as many bits a pixel as the colours need: 1, 2, 3, ... 8 for up to 2, 4, 8, ... 256
 * colours.
 *
 * bitmap   in, changed: as for Z_StartDitheringExt
 * palette  in, may be null: as for Z_StartDitheringExt
 * colors   in: 1 to 256
 *
 * Returns Z_ERROR_ARGUMENT for another number of colours, and what Z_StartDitheringExt returns.
 */
Z_API ReturnCode Z_CALL Z_StartDithering(BitmapHandle* bitmap, const RGBQUAD* palette, uint32_t colors);

/*
 * Begins a run.
 *
 * bitmap          in, changed: DitherData becomes the run. Depth, DitheringMethod, Width, the palette up to 8
 *                 bits and the gray window are taken as they are now and stay so for the run. A bitmap of 12
 *                 bits is gray whatever its order. A run that was under way is forgotten, not freed: stop it
 *                 first.
 * palette         in, may be null: the target's colours. Null stands for the fixed palette of the smallest
 *                 number of bits that has so many colours.
 * colors          in: 1 to 256
 * targetBits      in, bits of a target pixel: 1 to 8; with any other value rows are not written. An index
 *                 that is wider is cut to its lowest bits.
 * userMatchTable  in, may be null: a table of the palette by Z_CreateUserMatchTable, or 32768 cells which are
 *                 0 where the run is to look up and store. A cell counts from 1 the entries that may be
 *                 chosen. It stays the caller's, and lives until the run has stopped.
 *
 * With a match table, and for any palette that is not one of those below, a pixel gets the entry nearest to
 * its colour with the three lower bits of each channel left out; colours of the palette get the first entry
 * that shares their five upper bits. Entries whose fourth byte has bit 0 or bit 1 set are never chosen; when
 * that leaves none all pixels get index 0.
 *
 * A palette that begins like the fixed one of its size, in all four bytes of its entries, needs no search:
 * indices are cut out of the upper bits of gray (1 and 2 bits) or of the channels. At 4 bits that leaves only
 * black and the bright colours 9 to 15. From 129 colours on the same goes for the cube of 6 x 6 x 6 levels,
 * where a channel c has level c / 51.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT for a depth other than 1 to 8, 12,
 * 16, 24, 32, 48 and 64 bits, another number of colours, or a method that there is not; Z_ERROR_MEMORY where
 * memory is short. On failure DitherData is unchanged.
 */
Z_API ReturnCode Z_CALL Z_StartDitheringExt(BitmapHandle* bitmap, const RGBQUAD* palette, uint32_t colors,
                                            int32_t targetBits, uint32_t* userMatchTable);

/*
 * Dithers the next row of a run.
 *
 * bitmap     in: with a run. Width may have become smaller, for this row or for good; with a method that
 *            diffuses a width beyond that at the start counts as that. Order, LevelLUT and its flag are
 *            looked at for each row; levels beyond LevelLUTLength are black, and no levels are no table.
 * sourceRow  in: Width pixels in the bitmap's format
 * targetRow  out: Width indices of the run's target bits, packed from the uppermost bit of the first byte on.
 *            Bits of the last byte that belong to no pixel stay as they were. The two rows must not overlap.
 *
 * What a channel misses of its colour is kept as a sum of error times weight, and divided, truncating towards
 * zero, when the pixel comes that it is for; channels with their errors are cut to 0 to 255. Thresholds are
 * compared with gray at 1 bit and with the channels at 4; else they move the channels before these are
 * matched.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT when bitmap or a row is null, or the bitmap has no run.
 */
Z_API ReturnCode Z_CALL Z_DitherLine(BitmapHandle* bitmap, const void* sourceRow, void* targetRow);

/*
 * Ends a run and releases it; a caller's match table stays.
 *
 * bitmap  in, changed: DitherData becomes null
 *
 * Returns Z_SUCCESS, also without a run; Z_ERROR_BITMAP for null.
 */
Z_API ReturnCode Z_CALL Z_StopDithering(BitmapHandle* bitmap);

/*
 * The dithering method that a new bitmap of the calling thread gets.
 *
 * Returns DitherOrdered, or DitherNone where the thread could not be given settings of its own for want of
 * memory.
 */
Z_API int32_t Z_CALL Z_GetDefaultDithering(void);

Z_END_DECLS

#endif
