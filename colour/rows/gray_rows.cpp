#include "colour/rows/gray_rows.h"

#include "colour/rows/kernel_set.h"
#include "colour/rows/row_kernel.h"

namespace zkr::rows {

namespace {

constexpr size_t piecePixels = 512;

template <size_t sourceBits, size_t targetBits>
void ConvertGrayRow(size_t pixels, const RGBQUAD* table, const uint8_t* source, uint8_t* target,
                    uint32_t mask, uint32_t shift) {
    constexpr uint32_t limit = (1u << targetBits) - 1;
    const ConvertKernels& kernels = Kernels().Convert;
    const auto from = static_cast<size_t>(table != nullptr ? Source::GrayLookup : Source::GrayValue);
    const auto to = static_cast<size_t>(targetBits == 8 ? Target::Gray8 : Target::GrayWords);
    const GrayScale scale = table != nullptr ? MakeGrayScale(limit, 255) : StretchGray(limit, mask);
    const RowParameters parameters{.Table = table, .Mask = mask, .Shift = shift, .Scale = scale};
    uint8_t words[piecePixels * 2];
    while (pixels > 0) {
        const size_t piece = pixels < piecePixels ? pixels : piecePixels;
        if (sourceBits == 12) kernels.Unpack12(source, words, piece, {});
        kernels.Convert[from][to](sourceBits == 12 ? words : source, targetBits == 12 ? words : target, piece,
                                  parameters);
        if (targetBits == 12) kernels.Pack12(words, target, piece, {});
        source += piece * sourceBits / 8;
        target += piece * targetBits / 8;
        pixels -= piece;
    }
}

} // namespace

#define ZKR_GRAY_ROW(name, sourceBits, targetBits)                                                           \
    void name(size_t pixels, const RGBQUAD* table, const uint8_t* source, uint8_t* target, uint32_t mask,    \
              uint32_t shift) {                                                                              \
        ConvertGrayRow<sourceBits, targetBits>(pixels, table, source, target, mask, shift);                  \
    }
ZKR_GRAY_ROW(GrayRow12To8, 12, 8)
ZKR_GRAY_ROW(GrayRow12To12, 12, 12)
ZKR_GRAY_ROW(GrayRow12To16, 12, 16)
ZKR_GRAY_ROW(GrayRow16To8, 16, 8)
ZKR_GRAY_ROW(GrayRow16To12, 16, 12)
ZKR_GRAY_ROW(GrayRow16To16, 16, 16)
#undef ZKR_GRAY_ROW

} // namespace zkr::rows
