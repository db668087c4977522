/*
 * Selects what hangs together with a pixel and is nearly of its colour, and fills it.
 *
 *     wand_fill PICTURE.ppm X Y TOLERANCE RRGGBB FILLED.ppm
 */
#include "portable_picture.h"

#include <stdlib.h>

int main(int argc, char** argv) {
    BitmapHandle picture;
    uint32_t area = 0;
    unsigned long colour;
    if (argc != 7) Fail("usage", "wand_fill PICTURE.ppm X Y TOLERANCE RRGGBB FILLED.ppm");
    picture = ReadPicture(argv[1], '6', MemoryConventional);
    colour = strtoul(argv[5], NULL, 16);
    Check(Z_SetBitmapRgnMagicWand(&picture, atoi(argv[2]), atoi(argv[3]), (uint32_t)atoi(argv[4]), Z_RGN_SET),
          "the wand");
    Check(Z_GetBitmapRgnArea(&picture, &area), "the selection");
    /* A colour value has red in its low byte. What works on pixels keeps to the selection by itself. */
    Check(
        Z_FillBitmap(&picture, (uint32_t)((colour & 0xFF) << 16 | (colour & 0xFF00) | (colour >> 16 & 0xFF))),
        "filling");
    printf("%u of %d pixels filled\n", (unsigned)area, picture.Width * picture.Height);
    WritePicture(argv[6], &picture);
    return Z_FreeBitmap(&picture) == Z_SUCCESS ? 0 : 1;
}
