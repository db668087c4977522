/*
 * Colour spaces: runs of pixels from one into another, and single colours to HSV and back.
 */
#ifndef ZKR13N_COLOR_SPACES_H
#define ZKR13N_COLOR_SPACES_H

#include "codes.h"

Z_BEGIN_DECLS

/*
 * Formats of pixels, which lie side by side. In the 8-bit class channels are bytes with a full value of 255,
 * in the 16-bit class words with a full value of 65535; in both, luma and YIQ have signed words in a scale of
 * 16384. A full turn of hue is 256, or 65536.
 */
enum {
    Z_SPACE_RGB = 0x00,   /* blue, green, red */
    Z_SPACE_LUMA = 0x01,  /* Y, B - Y, R - Y: luma and colour differences */
    Z_SPACE_CMYK = 0x02,  /* cyan, magenta, yellow, black */
    Z_SPACE_HSV = 0x03,   /* hue, saturation, value */
    Z_SPACE_HLS = 0x04,   /* hue, lightness, saturation */
    Z_SPACE_YIQ = 0x05,   /* Y, I, Q */
    Z_SPACE_CMY = 0x06,   /* cyan, magenta, yellow */
    Z_SPACE_RGB16 = 0x10, /* the same in 16 bits */
    Z_SPACE_LUMA16 = 0x20,
    Z_SPACE_YIQ16 = 0x30,
    Z_SPACE_HSV16 = 0x40,
    Z_SPACE_HLS16 = 0x50,
    Z_SPACE_CMY16 = 0x60,
    Z_SPACE_CMYK16 = 0x70
};

/*
 * Converts a run of pixels from one colour space to another, always through RGB.
 *
 * source        in: pixels in sourceFormat
 * target        out: room for the pixels in targetFormat. It may be the source, unless that is RGB and the
 *               target's pixels are wider.
 * width         in, pixels: below 1 nothing is done
 * sourceFormat  in: Z_SPACE_...
 * targetFormat  in: Z_SPACE_... of the same class
 *
 * All quotients are truncated towards zero. F is the full value.
 *
 * Luma and YIQ: a channel c counts as c * 16384 / F, and comes back as c * F / 16384, cut to 0 to F.
 *     Y = (299 R + 587 G + 114 B) / 1000
 *     I = (596 R - 275 G - 321 B) / 1000           Q = (212 R - 528 G + 311 B) / 1000
 *   Back, from luma B = Y + (B - Y), R = Y + (R - Y), G = (1000 Y - 114 B - 299 R) / 587; from YIQ, not quite
 *   the inverse (the television weights of the NTSC, 1953):
 *     R = (1003 Y + 955 I + 618 Q) / 1000          G = (997 Y - 271 I - 645 Q) / 1000
 *     B = (1008 Y - 1110 I + 1700 Q) / 1000
 *
 * CMYK: the complements of R, G, B less the least of them, and that. Back R = F - C - K, at least 0.
 *
 * HSV (after Smith, 1978, with a hue that is a ratio): V is the greatest channel, S = (V - m) * F / V with
 * m the least. x is green where m is blue, else blue where m is red, else red; n = 0, 1, 2 in the same order.
 *     8 bits   H = ((x - m) * 30720 / (R + G + B - 3 m) + 30720 n + 180) / 360, modulo 256
 *     16 bits  H = 65536 / 3 * (n + (x - m) / (R + G + B - 3 m)) + 1 / 2, exact and then truncated, modulo
 *              65536
 *   Where all channels are equal H = S = 0. Back with d = H * 360 / 256, u = 1 in 8 and 257 in 16 bits,
 *   L = V * (F - S) / F and w = V - L:
 *     d <= 60 u    R = V, G = L + w d / (120 u - d), B = L
 *     d <= 120 u   R = L + w (120 u - d) / d, G = V, B = L
 *   and likewise over the next 120 u of d for G, B, R in place of R, G, B, and over the rest for B, R, G.
 *
 * HLS (Joblove and Greenberg, 1978), with d = max - min and a half of 128, or 32768:
 *     L = (max + min) / 2
 *     S = d F / (max + min) for L below half, else d F / (2 F - max - min)
 *     H = (G - B) F / (6 d) where red is max, else (B - R) F / (6 d) + F / 3 where green is max, else
 *         (R - G) F / (6 d) + 2 F / 3; F is added to an H below 0
 *   Where all channels are equal H = S = 0. Back with M = (F + S) L / F for L below half, else
 *   L - L S / F + S, and m = 2 L - M: B = f(H - F / 3), G = f(H), R = f(H + F / 3), where f first takes F
 *   from an h above F, and adds F to one below 0. A sixth is 43, or 10923.
 *     h < sixth    (M - m) * 6 h / F + m
 *     h < half     M
 *     h > 2 F / 3  m
 *     else         (M - m) * 6 (2 F / 3 - h) / F + m
 *
 * CMY: the complements of red, green and blue.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for unknown formats, formats of different classes, and null pointers
 * where there are pixels; Z_ERROR_MEMORY when the row of RGB between is missing. On failure the target is
 * unchanged.
 */
Z_API ReturnCode Z_CALL Z_ConvertColorSpace(const void* source, void* target, int32_t width,
                                            int32_t sourceFormat, int32_t targetFormat);

/*
 * Converts a colour to HSV, by the 8-bit formula above.
 *
 * color  in: 0x00BBGGRR; its top byte stays
 *
 * Returns hue in place of red, saturation in place of green, value in place of blue.
 */
Z_API uint32_t Z_CALL Z_RGBtoHSV(uint32_t color);

/*
 * Converts a colour from HSV, by the 8-bit formula above.
 *
 * color  in: hue, saturation and value from the lowest byte on; the top byte plays no part
 *
 * Returns 0x00BBGGRR.
 */
Z_API uint32_t Z_CALL Z_HSVtoRGB(uint32_t color);

Z_END_DECLS

#endif
