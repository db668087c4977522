/*
 * Shows a gray picture of 12 bits through a window: the values from LOW to HIGH become black to white, as on the screen of a
 * radiologist. The pixels themselves stay as they are.
 *
 *     xray PICTURE.pgm LOW HIGH SHOWN.ppm          a PGM of values up to 4095
 */
#include "portable_picture.h"

#include <stdlib.h>

/* Two pixels take three bytes. */
static void Pack(unsigned char* row, int x, unsigned value) {
    unsigned char* pair = row + x / 2 * 3;
    if (x % 2 == 0) {
        pair[0] = (unsigned char)value;
        pair[1] = (unsigned char)(value >> 8);
    } else {
        pair[1] = (unsigned char)(pair[1] | value << 4);
        pair[2] = (unsigned char)(value >> 4);
    }
}

static BitmapHandle ReadXray(const char* path) {
    int width, height, maximum, x, y;
    FILE* file = OpenPicture(path, '5', &width, &height, &maximum);
    BitmapHandle bitmap;
    unsigned char* row;
    if (maximum < 256 || maximum > 4095) Fail(path, "values of 12 bits are needed here");
    Check(Z_CreateBitmap(&bitmap, MemoryConventional, width, height, 12, Z_ORDER_GRAY, NULL, VIEW_TOP_LEFT,
                         NULL, 0),
          path);
    row = malloc(bitmap.BytesPerLine);
    if (row == NULL) Fail(path, "no memory for a row");
    for (y = 0; y < height; y++) {
        for (x = 0; x < width; x++) {
            const int high = fgetc(file), low = fgetc(file);
            if (low == EOF) Fail(path, "ends too early");
            Pack(row, x, (unsigned)(high << 8 | low) & 0xFFF);
        }
        Z_PutBitmapRow(&bitmap, row, y, bitmap.BytesPerLine);
    }
    free(row);
    fclose(file);
    return bitmap;
}

int main(int argc, char** argv) {
    BitmapHandle xray, shown;
    RGBQUAD levels[4096] = {{0, 0, 0, 0}};
    if (argc != 5) Fail("usage", "xray PICTURE.pgm LOW HIGH SHOWN.ppm");
    xray = ReadXray(argv[1]);
    Check(Z_WindowLevelFillLUT(levels, 4096, 0x000000, 0xFFFFFF, atoi(argv[2]), atoi(argv[3]), 0, 11, 0, 4095,
                               1),
          "window");
    levels[4095].rgbRed = levels[4095].rgbGreen = levels[4095].rgbBlue =
        255; /* the last one is left to the caller */
    Check(Z_WindowLevel(&xray, 0, 11, levels, 4096, Z_LEVEL_APPLY), "window");
    Check(Z_ColorResBitmap(&xray, &shown, 24, COLORRES_FIXED_PALETTE, NULL, NULL, 0, NULL, 0), "to colours");
    WritePicture(argv[4], &shown);
    Z_FreeBitmap(&shown);
    return Z_FreeBitmap(&xray) == Z_SUCCESS ? 0 : 1;
}
