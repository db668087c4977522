/*
 * Brings a list of pictures to 64 colours that fit all of them, so that they can stand side by side on a display with a palette,
 * and writes each as it then looks, PICTURE.ppm as PICTURE.ppm.64.ppm.
 *
 *     shared_palette PICTURE.ppm...
 */
#include "portable_picture.h"

int main(int argc, char** argv) {
    RGBQUAD palette[64] = {{0, 0, 0, 0}};
    BitmapList list;
    int i;
    if (argc < 2) Fail("usage", "shared_palette PICTURE.ppm...");
    Check(Z_CreateBitmapList(&list), "the list");
    for (i = 0; i < 64; i++)
        palette[i].rgbReserved = 2; /* free to be chosen */
    for (i = 1; i < argc; i++) {
        BitmapHandle picture = ReadPicture(argv[i], '6', MemoryConventional);
        Check(Z_InsertBitmapListItem(list, UINT32_MAX, &picture), argv[i]); /* the list owns it now */
    }
    Check(Z_ColorResBitmapList(list, 8, COLORRES_OPTIMIZED_PALETTE, palette, NULL, 64),
          "one palette for all");
    for (i = 1; i < argc; i++) {
        BitmapHandle item, picture;
        char path[1024];
        Check(Z_GetBitmapListItem(list, (uint32_t)(i - 1), &item), argv[i]);
        printf("%s: %u colours\n", argv[i], (unsigned)item.ColorsUsed);
        Check(Z_ColorResBitmap(&item, &picture, 24, COLORRES_FIXED_PALETTE, NULL, NULL, 0, NULL, 0), argv[i]);
        snprintf(path, sizeof path, "%s.64.ppm", argv[i]);
        WritePicture(path, &picture);
        Z_FreeBitmap(&picture);
    }
    return Z_DestroyBitmapList(list) == Z_SUCCESS ? 0 : 1;
}
