/*
 * Conversion of rows of pixels from any depth and colour order to any other.
 */
#ifndef ZKR13N_CONVERT_H
#define ZKR13N_CONVERT_H

#include "codes.h"

Z_BEGIN_DECLS

/* Bits of the flags argument of Z_ConvertBufferExt. */
enum {
    Z_CONVERT_SOURCE_GRAY = 1,
    Z_CONVERT_TARGET_GRAY = 2,
    Z_CONVERT_SOURCE_WINDOW = 4,
    Z_CONVERT_TARGET_WINDOW = 8
};

Z_API ReturnCode Z_CALL Z_ConvertBuffer(void* row, int32_t width, int32_t sourceBits, int32_t targetBits,
                                        int32_t sourceOrder, int32_t targetOrder,
                                        const RGBQUAD* sourcePalette, const RGBQUAD* targetPalette);
Z_API ReturnCode Z_CALL Z_ConvertBufferExt(void* row, int32_t width, int32_t sourceBits, int32_t targetBits,
                                           int32_t sourceOrder, int32_t targetOrder,
                                           const RGBQUAD* sourcePalette, const RGBQUAD* targetPalette,
                                           uint32_t flags, int32_t lowBit, int32_t highBit);
Z_API size_t Z_CALL Z_CalcConvertSize(int32_t firstWidth, int32_t firstBits, int32_t secondWidth,
                                      int32_t secondBits);
Z_API ReturnCode Z_CALL Z_MirrorLine(void* row, int32_t width, int32_t bits);

Z_END_DECLS

#endif
