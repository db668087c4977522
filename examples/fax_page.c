/*
 * Keeps a page of 1 bit as runs, and reduces it as runs to a quarter so that thin strokes stay. At no time is there a packed
 * picture in memory.
 *
 *     fax_page PAGE.pbm QUARTER.pbm
 */
#include "portable_picture.h"

int main(int argc, char** argv) {
    BitmapHandle page;
    size_t packed;
    if (argc != 3) Fail("usage", "fax_page PAGE.pbm QUARTER.pbm");
    page = ReadPicture(argv[1], '4', MemoryCompressed | MemoryConventional);
    packed = (size_t)page.BytesPerLine * (size_t)page.Height;
    Check(Z_SizeBitmap(&page, (page.Width + 3) / 4, (page.Height + 3) / 4, SIZE_KEEP_BLACK), "reducing");
    printf("%d x %d pixels, %s; the page took %.1f MB when packed\n", page.Width, page.Height,
           (page.Flags & Z_FLAG_COMPRESSED) != 0 ? "still runs" : "no runs", (double)packed / 1e6);
    WritePicture(argv[2], &page);
    return Z_FreeBitmap(&page) == Z_SUCCESS ? 0 : 1;
}
