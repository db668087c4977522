/*
 * Hands a picture to the window of a toolkit as a DIB: SDL shows the block's pixels where they lie. Any toolkit that takes
 * rows of blue, green and red bytes can be served in this way.
 *
 *     toolkit_window PICTURE.ppm [MILLISECONDS]          shows it until a key is pressed, or for a time
 */
#include "portable_picture.h"

#include <SDL.h>
#include <stdlib.h>

int main(int argc, char** argv) {
    BitmapHandle picture;
    HGLOBAL block;
    void* bytes;
    const BITMAPINFOHEADER* header;
    unsigned char* bits;
    SDL_Window* window;
    SDL_Surface* surface;
    SDL_Event event;
    int stride;
    if (argc < 2) Fail("usage", "toolkit_window PICTURE.ppm [MILLISECONDS]");
    picture = ReadPicture(argv[1], '6', MemoryConventional);
    block = Z_ChangeToDIB(&picture); /* the picture's memory goes over to the block where that is possible */
    if (block == NULL) Fail(argv[1], "no DIB can be made");
    Check(Z_LockGlobalBlock(block, &bytes), argv[1]);
    header = bytes;
    stride = (header->biWidth * 3 + 3) / 4 * 4;
    bits = (unsigned char*)(header + 1);
    if (SDL_Init(SDL_INIT_VIDEO) != 0) Fail("SDL", SDL_GetError());
    window = SDL_CreateWindow(argv[1], SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, header->biWidth,
                              header->biHeight, 0);
    /* Blue comes first, and the lowest row of the picture: the surface goes through the rows from their end. */
    surface = SDL_CreateRGBSurfaceFrom(bits, header->biWidth, header->biHeight, 24, stride, 0xFF0000, 0xFF00,
                                       0xFF, 0);
    if (window == NULL || surface == NULL) Fail("SDL", SDL_GetError());
    {
        SDL_Surface* screen = SDL_GetWindowSurface(window);
        int y;
        for (y = 0; y < header->biHeight; y++) {
            SDL_Rect from = {0, 0, 0, 1}, to = {0, 0, 0, 1};
            from.y = header->biHeight - 1 - y;
            from.w = to.w = header->biWidth;
            to.y = y;
            SDL_BlitSurface(surface, &from, screen, &to);
        }
        SDL_UpdateWindowSurface(window);
    }
    if (argc > 2)
        SDL_Delay((Uint32)atoi(argv[2]));
    else
        while (SDL_WaitEvent(&event) && event.type != SDL_KEYDOWN && event.type != SDL_QUIT)
            continue;
    printf("%d x %d pixels shown\n", (int)header->biWidth, (int)header->biHeight);
    SDL_FreeSurface(surface);
    SDL_Quit();
    Z_UnlockGlobalBlock(block);
    Z_FreeGlobalBlock(block);
    return 0;
}
