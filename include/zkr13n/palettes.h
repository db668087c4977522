/*
 * Palettes: the tables of colours of bitmaps of 1 to 8 bits per pixel, and the search for the nearest colour.
 * A palette is an array of RGBQUADs, or a palette object of the platform; a bitmap holds either.
 */
#ifndef ZKR13N_PALETTES_H
#define ZKR13N_PALETTES_H

#include "bitmap.h"

Z_BEGIN_DECLS

Z_API int32_t Z_CALL Z_FindPaletteIndex(const RGBQUAD* palette, int32_t entries, int32_t red, int32_t green,
                                        int32_t blue);
Z_API uint32_t Z_CALL Z_GetNearestPaletteIndex(const BitmapHandle* bitmap, uint32_t colour);
Z_API HPALETTE Z_CALL Z_CreatePalette(const RGBQUAD* palette, uint32_t entries);
Z_API uint32_t Z_CALL Z_GetPaletteSize(HPALETTE palette);
Z_API uint32_t Z_CALL Z_GetPaletteEntries(HPALETTE palette, uint32_t start, uint32_t count,
                                          RGBQUAD* destination);
Z_API uint32_t Z_CALL Z_SetPaletteEntries(HPALETTE palette, uint32_t start, uint32_t count,
                                          const RGBQUAD* source);
Z_API uint32_t Z_CALL Z_GetBitmapPaletteEntries(const BitmapHandle* bitmap, uint32_t start, uint32_t count,
                                                RGBQUAD* destination);
Z_API ReturnCode Z_CALL Z_CreateBitmapPalette(BitmapHandle* bitmap, const RGBQUAD* palette, uint32_t entries);
Z_API ReturnCode Z_CALL Z_GetBitmapColors(const BitmapHandle* bitmap, int32_t start, int32_t count,
                                          RGBQUAD* destination);
Z_API ReturnCode Z_CALL Z_PutBitmapColors(BitmapHandle* bitmap, int32_t start, int32_t count,
                                          const RGBQUAD* source);
Z_API HPALETTE Z_CALL Z_CreateGrayPalette(int32_t bitsPerPixel);
Z_API ReturnCode Z_CALL Z_CreateBitmapGrayPalette(BitmapHandle* bitmap);
Z_API HPALETTE Z_CALL Z_CreateFixedPalette(int32_t bitsPerPixel);
Z_API ReturnCode Z_CALL Z_CreateBitmapFixedPalette(BitmapHandle* bitmap);
Z_API ReturnCode Z_CALL Z_GetFixedPalette(RGBQUAD* destination, int32_t bitsPerPixel);
Z_API const RGBQUAD* Z_CALL Z_IntGetFixedPalette(int32_t bitsPerPixel);
Z_API HPALETTE Z_CALL Z_DupPalette(HPALETTE palette);
Z_API ReturnCode Z_CALL Z_CopyBitmapPalette(BitmapHandle* destination, const BitmapHandle* source);
Z_API HPALETTE Z_CALL Z_DupBitmapPalette(const BitmapHandle* bitmap);
Z_API int32_t Z_CALL Z_CompareBitmapToPalette(const BitmapHandle* bitmap, const RGBQUAD* palette,
                                              uint32_t entries);
Z_API ReturnCode Z_CALL Z_SetBitmapPalette(BitmapHandle* bitmap, HPALETTE palette);
Z_API ReturnCode Z_CALL Z_SetPaletteType(BitmapHandle* bitmap, int32_t type);
Z_API HPALETTE Z_CALL Z_CreateSystemPalette(void);
Z_API uint32_t* Z_CALL Z_CreateUserMatchTable(const RGBQUAD* palette, int32_t entries);
Z_API ReturnCode Z_CALL Z_FreeUserMatchTable(uint32_t* table);

Z_END_DECLS

#endif
