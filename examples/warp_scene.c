/*
 * Hangs a picture into a scene: its corners go to four points of the scene.
 *
 *     warp_scene PICTURE.ppm SCENE.ppm X1 Y1 X2 Y2 X3 Y3 X4 Y4 RESULT.ppm
 *
 * The points are those of the top left, top right, bottom right and bottom left corner.
 */
#include "portable_picture.h"

#include <stdlib.h>

int main(int argc, char** argv) {
    BitmapHandle picture, scene;
    WarpPoints points;
    if (argc != 12) Fail("usage", "warp_scene PICTURE.ppm SCENE.ppm X1 Y1 X2 Y2 X3 Y3 X4 Y4 RESULT.ppm");
    picture = ReadPicture(argv[1], '6', MemoryConventional);
    scene = ReadPicture(argv[2], '6', MemoryConventional);
    points.TopLeft.x = atoi(argv[3]);
    points.TopLeft.y = atoi(argv[4]);
    points.TopRight.x = atoi(argv[5]);
    points.TopRight.y = atoi(argv[6]);
    points.BottomRight.x = atoi(argv[7]);
    points.BottomRight.y = atoi(argv[8]);
    points.BottomLeft.x = atoi(argv[9]);
    points.BottomLeft.y = atoi(argv[10]);
    Check(Z_CombineBitmapWarp(&scene, &points, &picture, 0, 0, picture.Width, picture.Height,
                              WARP_REQUIRED | WARP_BILINEAR),
          "warping");
    WritePicture(argv[11], &scene);
    Z_FreeBitmap(&picture);
    return Z_FreeBitmap(&scene) == Z_SUCCESS ? 0 : 1;
}
