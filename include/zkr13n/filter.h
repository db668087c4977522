/*
 * The two modules that compress the strips of super-compressed bitmaps, for who wants to replace them. The
 * library loads a module from its own folder when the first bitmap needs it:
 *
 * ZFCMP13S.DLL    24-bit strips; elsewhere than on Windows libZFCMP13S.so
 * ZFFAX13S.DLL    1-bit strips; elsewhere than on Windows libZFFAX13S.so
 *
 * Each exports two functions under the plain names fltLoadBuffer and fltSaveBuffer. They may be called from
 * several threads at once. What fltSaveBuffer makes is given to fltLoadBuffer of the same process alone.
 */
#ifndef ZKR13N_FILTER_H
#define ZKR13N_FILTER_H

#include "platform_types.h"

Z_BEGIN_DECLS

/* What the two functions return when they have done their work; anything else is a failure. */
enum { Z_FILTER_SUCCESS = 1 };

/*
 * fltLoadBuffer: restores the rows of a strip.
 *
 * data            in: what fltSaveBuffer has made of the strip
 * bytes           in, bytes in data
 * pixels          out: rows from the top down, each (width * bitsPerPixel + 31) / 32 * 4 bytes long, padding
 *                 included
 * quality         in: 20 for colour strips, 68 for 1-bit strips
 * width           in, pixels
 * rows            in: as many as were saved
 * bitsPerPixel    in: 24 or 1
 * reserved1, reserved2    in: 0
 *
 * Returns Z_FILTER_SUCCESS. Otherwise the rows may be partly written.
 */
typedef int32_t(Z_CALL FilterLoadBuffer)(const void* data, uint32_t bytes, void* pixels, int32_t quality,
                                         int32_t width, int32_t rows, int32_t bitsPerPixel, int32_t reserved1,
                                         int32_t reserved2);

/*
 * fltSaveBuffer: compresses the rows of a strip.
 *
 * pixels          in: rows as fltLoadBuffer restores them
 * header          in: biSize, biWidth, biBitCount, and biHeight, which is minus the number of rows
 * output          out: the compressed strip
 * outputBytes     in, out, bytes: the room in output, twice what 16 rows take; then what has been written
 * parameter       in: -1 for colour strips, 0 for 1-bit strips
 * reserved1       in: 0
 * quality         in: 20 for colour strips, 68 for 1-bit strips
 * reserved2, reserved3    in: 0
 *
 * Returns Z_FILTER_SUCCESS. Otherwise the library keeps the rows as they are and tries again later.
 */
typedef int32_t(Z_CALL FilterSaveBuffer)(const void* pixels, const BITMAPINFOHEADER* header, void* output,
                                         uint32_t* outputBytes, int32_t parameter, int32_t reserved1,
                                         int32_t quality, int32_t reserved2, int32_t reserved3);

Z_END_DECLS

#endif
