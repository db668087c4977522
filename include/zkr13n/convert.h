/*
 * Conversion of rows of pixels from any depth and colour order to any other.
 *
 * A row is converted in place: the buffer holds the pixels of one form before and of the other form after,
 * and must be large enough for the wider of the two (Z_CalcConvertSize). Bits behind the last pixel in its
 * last byte and bytes behind the target row stay as they were, and no byte beyond the two forms is touched.
 *
 * Depths are 1 to 8, 12, 16, 24, 32, 48 and 64 bits, and 0, which is 8-bit gray without a palette.
 *
 *   1 to 7    indices, packed from the most significant bit of each byte
 *   8         an index
 *   0         a gray level
 *   12        gray; of two pixels in three bytes the first is the low 12 bits of the little-endian word at
 *             byte 0, the second the high 12 bits of the little-endian word at byte 1
 *   16        colour: words of three fields of five bits, the first of the order in bits 0 to 4, and alpha in
 *             bit 15; in the order gray one gray word
 *   24, 32    bytes of red, green, blue (order RGB) or blue, green, red (order BGR); 32 bits with alpha
 *             behind
 *   48, 64    the same in little-endian words
 *
 * How pixels change:
 *
 *   - The gray of a colour is (2 red + 5 green + blue + 4) >> 3.
 *   - Channels widen from 5 bits by (c << 3) | (c >> 2) and from 8 to 16 by c * 257, and narrow by dropping
 *     bits.
 *   - A gray g of eight bits becomes n bits by g >> (8 - n), or ((g << n) - g) / 255 for n above 8.
 *   - Indices of a target are those that Z_FindPaletteIndex gives over 2^bits entries of its palette. Between
 *     palettes each index goes to the entry nearest to its colour; where the target palette begins with the
 *     very entries of the source palette (all four bytes), the indices stay.
 *   - New alpha is 0. Alpha of 32 and 64 bits passes between these two; bit 15 of 16-bit colour becomes full
 *     or no alpha, and is set from 32 bits where alpha is 128 or more; 64 bits do not set it. From gray of 12
 *     and 16 bits the alpha of the target stays as it was in the buffer.
 *
 * Gray of 12 and 16 bits may use a part of its bits, its window: low and high bit, as Z_GetGrayParams takes
 * them. The value of a source window is read from it; for a target window it is cut to the window's bits and
 * shifted there. Without a window on either side the upper bits are read, as many as the target can use; with
 * a table of levels all bits are, as the index into it. Without a table the value is stretched to the whole
 * range of depths 0, 48 and 64 and of a gray ramp for indices, but stands as it is in 24 and 32 bits and in
 * 16-bit colour.
 *
 * Some pairs have rules of their own:
 *
 *   - 16-bit colour to gray of 12 and 16 bits, and 16-bit gray through a table to 16-bit gray, without a
 *     window: the gray fills the upper eight bits, and those below are zero. Through a table at most the upper
 *     eight bits of a target window are used.
 *   - 16-bit gray through a table to 12 bits without a window: the weights of green and blue are exchanged.
 *   - Gray of 12 and 16 bits to depths 0 to 8 with a target window: the value, or the index into the table, is
 *     read from these bits of the source.
 *   - 16-bit gray through a table to depths 0 to 8 in the order gray, without a window: the index is as many
 *     low bits as the target has.
 *   - 12-bit gray to gray of 12 and 16 bits: a table plays no part.
 *   - Gray of 12 and 16 bits with a source window to gray of 12 and 16 bits: the value is stretched to the
 *     whole range, but stands as it is from 12 bits to 12 bits.
 *   - 48 and 64 bits to a target window without a high bit: the window ends at bit 15, also of 12 bits.
 *
 * Signs are not interpreted.
 */
#ifndef ZKR13N_CONVERT_H
#define ZKR13N_CONVERT_H

#include "codes.h"

Z_BEGIN_DECLS

/* Bits of the flags argument of Z_ConvertBufferExt. */
enum {
    Z_CONVERT_SOURCE_GRAY = 1,   /* the source is gray; set or cleared by its order */
    Z_CONVERT_TARGET_GRAY = 2,   /* the target is gray; set or cleared by its order */
    Z_CONVERT_SOURCE_WINDOW = 4, /* low and high bit are a window of the source */
    Z_CONVERT_TARGET_WINDOW = 8  /* low and high bit are a window of the target */
};

/*
 * Converts one row in place; Z_ConvertBufferExt without a window.
 *
 * row             in, out: the pixels
 * width           in: their number, 1 or more
 * sourceBits      in: depth of the pixels before
 * targetBits      in: depth of the pixels after
 * sourceOrder     in: Z_ORDER_RGB, Z_ORDER_BGR or, for 12 and 16 bits, Z_ORDER_GRAY; up to 8 bits any
 * targetOrder     in: likewise
 * sourcePalette   in: up to 8 bits 2^sourceBits entries, null for the fixed palette of the depth; for gray of
 *                 12 and 16 bits the table of its levels, with an entry for every value that can be read,
 *                 null for none; else unused
 * targetPalette   in: up to 8 bits 2^targetBits entries, null for the fixed palette; else unused
 *
 * Z_SUCCESS, or Z_ERROR_ARGUMENT for a null row, a width below 1, a depth that does not exist, an order that
 * a depth cannot have, and 12 bits in another order than gray. The buffer is then as it was.
 */
Z_API ReturnCode Z_CALL Z_ConvertBuffer(void* row, int32_t width, int32_t sourceBits, int32_t targetBits,
                                        int32_t sourceOrder, int32_t targetOrder,
                                        const RGBQUAD* sourcePalette, const RGBQUAD* targetPalette);

/*
 * Converts one row in place, with a gray window on one side.
 *
 * row ... targetPalette   as for Z_ConvertBuffer
 * flags                   in: Z_CONVERT_...; the two gray flags follow from the orders, whatever is given
 * lowBit, highBit         in: the window, with at least one bit; -1 for the lowest or highest bit of the
 *                         pixel. A window that is the whole pixel counts as none
 *
 * Z_SUCCESS, or Z_ERROR_ARGUMENT for the causes told at Z_ConvertBuffer, for windows on both sides, and for a
 * window on a side that is not gray. The buffer is then as it was.
 */
Z_API ReturnCode Z_CALL Z_ConvertBufferExt(void* row, int32_t width, int32_t sourceBits, int32_t targetBits,
                                           int32_t sourceOrder, int32_t targetOrder,
                                           const RGBQUAD* sourcePalette, const RGBQUAD* targetPalette,
                                           uint32_t flags, int32_t lowBit, int32_t highBit);

/*
 * The bytes that a buffer must have so that a row can be changed in size and depth in it.
 *
 * firstWidth    in: pixels before
 * firstBits     in: depth before; 0 counts as 8
 * secondWidth   in: pixels after
 * secondBits    in: depth after; 0 counts as 8
 *
 * The largest of the rows of firstWidth at firstBits, secondWidth at firstBits and secondWidth at secondBits,
 * each rounded up to a multiple of four bytes; a negative width or depth counts as nothing. The largest
 * size_t where the number does not fit.
 */
Z_API size_t Z_CALL Z_CalcConvertSize(int32_t firstWidth, int32_t firstBits, int32_t secondWidth,
                                      int32_t secondBits);

/*
 * Reverses the order of the pixels of one row in place.
 *
 * row     in, out: the pixels
 * width   in: their number
 * bits    in: their depth, 1 to 8, 12, 16, 24, 32, 48 or 64
 *
 * Bits behind the last pixel in the last byte become zero at 1, 2 and 4 bits and stay as they were at other
 * depths.
 *
 * Always Z_SUCCESS; a null row, a width below 1 and any other depth leave everything as it was.
 */
Z_API ReturnCode Z_CALL Z_MirrorLine(void* row, int32_t width, int32_t bits);

Z_END_DECLS

#endif
