// The row kernels of the warp: where the pixels of a piece of a row lie in the source, and how they are drawn from
// there. All arithmetic is in doubles, each operation rounded by itself in the order written, so that every
// instruction set gives the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace zkr::kernels {

// The mapping of one row: for column x, w = (x * XFactor[2] + YPart[2]) + Constant[2], and u and v are the like
// of 0 and 1, divided by w.
struct WarpMapping {
    double XFactor[3];
    double YPart[3];
    double Constant[3];
};

// The source rectangle, its rows in memory.
struct WarpSource {
    const uint8_t* const* Rows; // whole rows of the bitmap, by row of the rectangle
    int32_t Left;
    int32_t Top;
    int32_t Width;
    int32_t Height;
    // Where pixels are whole bytes, and rows lie in memory at one distance and within 2^31 bytes; else Pitch is 0.
    const uint8_t* First = nullptr; // the corner's pixel
    int32_t PixelBytes = 0;
    int32_t Pitch = 0; // from row to row
};

inline constexpr size_t WarpPiecePixels = 64;

// Places of pixels in the source rectangle, counted from its corner.
struct WarpPiece {
    static constexpr int32_t Outside = std::numeric_limits<int32_t>::min();

    size_t Pixels;
    // What the piece was located by.
    const WarpMapping* Mapping;
    int32_t X;
    // Of a source with a pitch: a whole piece whose pixels all lie inside, with a column to the right, and when blending
    // two and the row below. Then Place and Rest take the place of what follows them.
    bool IsInner;
    int32_t Place[WarpPiecePixels]; // in bytes from the corner
    float Rest[2][WarpPiecePixels]; // when blending: of column and row, behind their whole numbers
    int32_t Row[WarpPiecePixels];   // Outside where the pixel stays as it is; when blending -1 and more
    int32_t Column[WarpPiecePixels];
    double Weight[4]
                 [WarpPiecePixels]; // when blending: of the sample, the one to the right, and the two below
};

// Fills the piece for its Pixels columns from x on; false where all lie outside.
using LocatePixels = bool (*)(const WarpMapping& mapping, const WarpSource& area, int32_t x,
                              WarpPiece& piece);

// Draws a piece into a row of the destination, from column x on.
using DrawPixels = void (*)(const WarpSource& area, const WarpPiece& piece, uint8_t* target, size_t x);

struct WarpKernels {
    LocatePixels Nearest;
    LocatePixels Around;      // the four samples that are blended
    LocatePixels AroundBytes; // likewise, for colours of 24 and 32 bits
    // By bits a pixel; null where there is no such depth, or it is not blended.
    DrawPixels Copy[65];
    DrawPixels Blend[65];
    DrawPixels BlendColour16;
};

} // namespace zkr::kernels
