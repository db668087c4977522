/*
 * Plays a GIF and writes each frame as it is seen: the library composes, giflib only reads the file.
 *
 *     gif_frames ANIMATION.gif FOLDER          FOLDER/000.ppm, 001.ppm...
 */
#include "portable_picture.h"

#include <gif_lib.h>

/* A frame of the file as a bitmap that says by itself where it stands, how long, and what happens to it then. */
static BitmapHandle FrameOf(GifFileType* gif, int index) {
    const SavedImage* image = &gif->SavedImages[index];
    const GifImageDesc* place = &image->ImageDesc;
    const ColorMapObject* map = place->ColorMap != NULL ? place->ColorMap : gif->SColorMap;
    RGBQUAD palette[256] = {{0, 0, 0, 0}};
    GraphicsControlBlock control = {0, false, 0, NO_TRANSPARENT_COLOR};
    BitmapHandle frame;
    int i;
    for (i = 0; map != NULL && i < map->ColorCount && i < 256; i++) {
        palette[i].rgbRed = map->Colors[i].Red;
        palette[i].rgbGreen = map->Colors[i].Green;
        palette[i].rgbBlue = map->Colors[i].Blue;
    }
    Check(Z_CreateBitmap(&frame, MemoryConventional, place->Width, place->Height, 8, Z_ORDER_RGB, palette,
                         VIEW_TOP_LEFT, NULL, 0),
          "a frame");
    for (i = 0; i < place->Height; i++)
        Z_PutBitmapRow(&frame, image->RasterBits + (size_t)i * (size_t)place->Width, i,
                       (uint32_t)place->Width);
    DGifSavedExtensionToGCB(gif, index, &control);
    frame.PlaybackLeft = place->Left;
    frame.PlaybackTop = place->Top;
    frame.PlaybackDelay = control.DelayTime * 10;
    frame.DisposalMethod = control.DisposalMode;
    if (control.TransparentColor != NO_TRANSPARENT_COLOR) {
        frame.Flags |= Z_FLAG_PLAYBACK_TRANSPARENCY;
        frame.TransparentColor =
            0x01000000u | (uint32_t)control.TransparentColor; /* an index of the palette */
    }
    return frame;
}

int main(int argc, char** argv) {
    int error = 0, i;
    GifFileType* gif;
    BitmapHandle canvas;
    BitmapList frames;
    PlaybackHandle playback;
    if (argc != 3) Fail("usage", "gif_frames ANIMATION.gif FOLDER");
    gif = DGifOpenFileName(argv[1], &error);
    if (gif == NULL || DGifSlurp(gif) != GIF_OK || gif->ImageCount < 1) Fail(argv[1], "cannot be read");
    Check(Z_CreateBitmap(&canvas, MemoryConventional, gif->SWidth, gif->SHeight, 24, Z_ORDER_RGB, NULL,
                         VIEW_TOP_LEFT, NULL, 0),
          argv[1]);
    Check(Z_CreateBitmapList(&frames), argv[1]);
    for (i = 0; i < gif->ImageCount; i++) {
        BitmapHandle frame = FrameOf(gif, i);
        Check(Z_InsertBitmapListItem(frames, UINT32_MAX, &frame), argv[1]);
    }
    Check(Z_CreatePlayback(&playback, &canvas, frames), argv[1]);
    for (i = 0; i < gif->ImageCount; i++) {
        uint32_t state = PlaybackClear;
        char path[1024];
        while (state !=
               PlaybackRendered) { /* who shows the animation sleeps through the delays; here nobody waits */
            Check(Z_CancelPlaybackWait(playback), argv[1]);
            Check(Z_ProcessPlayback(playback, &state), argv[1]);
        }
        snprintf(path, sizeof path, "%s/%03d.ppm", argv[2], i);
        WritePicture(path, &canvas);
        printf("%s\n", path);
    }
    Z_DestroyPlayback(playback, &frames);
    Z_DestroyBitmapList(frames);
    Z_FreeBitmap(&canvas);
    DGifCloseFile(gif, NULL);
    return 0;
}
