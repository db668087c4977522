/* Keeps a colour gradient in a bitmap, turns its rows to gray and writes them as gray.pgm. */
#include <stdio.h>
#include <zkr13n.h>

int main(void) {
    BitmapHandle picture;
    unsigned char row[320 * 3];
    FILE* file = fopen("gray.pgm", "wb");
    ReturnCode code =
        Z_CreateBitmap(&picture, MemoryConventional, 320, 200, 24, Z_ORDER_RGB, NULL, 0, NULL, 0);
    if (file == NULL || code != Z_SUCCESS) {
        fprintf(stderr, "cannot begin: %s\n", code == Z_SUCCESS ? "no gray.pgm" : Z_GetErrorText(code));
        return 1;
    }
    fprintf(file, "P5 320 200 255\n");
    for (int y = 0; y < 200; y++) {
        for (int i = 0; i < 320 * 3; i++)
            row[i] = (unsigned char)(i % 3 == 0 ? i / 4 : y);
        Z_PutBitmapRow(&picture, row, y, sizeof row);
        Z_GetBitmapRow(&picture, row, y, sizeof row);
        Z_ConvertBuffer(row, 320, 24, 0, Z_ORDER_RGB, Z_ORDER_GRAY, NULL, NULL);
        fwrite(row, 1, 320, file);
    }
    Z_FreeBitmap(&picture);
    return fclose(file) == 0 ? 0 : 1;
}
