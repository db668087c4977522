#include "portable_picture.h"

#include <stdlib.h>

void Check(ReturnCode code, const char* what) {
    if (code == Z_SUCCESS) return;
    fprintf(stderr, "%s: %s\n", what, Z_GetErrorText(code));
    exit(1);
}

void Fail(const char* path, const char* why) {
    fprintf(stderr, "%s: %s\n", path, why);
    exit(1);
}

/* The next number of a header, over white space and comments. */
static int ReadNumber(FILE* file, const char* path) {
    int number = 0, c;
    while ((c = fgetc(file)) == '#' || c == ' ' || c == '\t' || c == '\r' || c == '\n') {
        while (c == '#' && (c = fgetc(file)) != '\n' && c != EOF)
            c = '#';
    }
    if (c < '0' || c > '9') Fail(path, "no portable picture");
    for (; c >= '0' && c <= '9' && number < 1000000; c = fgetc(file))
        number = number * 10 + (c - '0');
    return number;
}

FILE* OpenPicture(const char* path, char kind, int* width, int* height, int* maximum) {
    FILE* file = fopen(path, "rb");
    if (file == NULL) Fail(path, "cannot be opened");
    if (fgetc(file) != 'P' || fgetc(file) != kind) Fail(path, "another kind of picture is needed here");
    *width = ReadNumber(file, path);
    *height = ReadNumber(file, path);
    *maximum = kind == '4' ? 1 : ReadNumber(file, path);
    return file;
}

BitmapHandle ReadPicture(const char* path, char kind, int memoryType) {
    RGBQUAD whiteAndBlack[2] = {{255, 255, 255, 0}, {0, 0, 0, 0}};
    const int bits = kind == '4' ? 1 : kind == '5' ? 8 : 24;
    int width, height, maximum, y;
    FILE* file = OpenPicture(path, kind, &width, &height, &maximum);
    BitmapHandle bitmap;
    if (kind != '4' && maximum != 255) Fail(path, "samples of 8 bits are needed here");
    Check(Z_CreateBitmap(&bitmap, memoryType, width, height, bits, Z_ORDER_RGB,
                         kind == '4' ? whiteAndBlack : NULL, VIEW_TOP_LEFT, NULL, 0),
          path);
    {
        const size_t bytes = ((size_t)width * (size_t)bits + 7) / 8;
        unsigned char* row = calloc(bitmap.BytesPerLine, 1);
        if (row == NULL) Fail(path, "no memory for a row");
        for (y = 0; y < height; y++) {
            if (fread(row, 1, bytes, file) != bytes) Fail(path, "ends too early");
            if (Z_PutBitmapRow(&bitmap, row, y, bitmap.BytesPerLine) <= 0) Fail(path, "a row cannot be kept");
        }
        free(row);
    }
    fclose(file);
    return bitmap;
}

void WritePicture(const char* path, BitmapHandle* bitmap) {
    const size_t bytes = ((size_t)bitmap->Width * (size_t)bitmap->BitsPerPixel + 7) / 8;
    unsigned char* row = calloc(bitmap->BytesPerLine, 1);
    FILE* file = fopen(path, "wb");
    int y;
    if (file == NULL || row == NULL) Fail(path, "cannot be written");
    fprintf(file, "P%d %d %d%s\n",
            bitmap->BitsPerPixel == 1   ? 4
            : bitmap->BitsPerPixel == 8 ? 5
                                        : 6,
            bitmap->Width, bitmap->Height, bitmap->BitsPerPixel == 1 ? "" : " 255");
    for (y = 0; y < bitmap->Height; y++) {
        if (Z_GetBitmapRow(bitmap, row, y, bitmap->BytesPerLine) <= 0) Fail(path, "a row cannot be read");
        if (fwrite(row, 1, bytes, file) != bytes) Fail(path, "cannot be written");
    }
    free(row);
    if (fclose(file) != 0) Fail(path, "cannot be written");
}
