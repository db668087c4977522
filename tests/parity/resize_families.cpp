// Parity cases of resizing: steppers and fed rows, streams, and whole bitmaps.
#include "parity/subject.h"

#include "zkr13n/resize.h"
#include "zkr13n/sizing.h"

#include <algorithm>
#include <vector>

namespace zkr::test {
namespace {

int NewSize(Seeded& seeded, int size) {
    return seeded.Below(8) == 0   ? size
           : seeded.Below(2) != 0 ? seeded.Between(1, size)
                                  : size * seeded.Between(1, 5);
}

void FedRowsCase(Seeded& seeded, Digest& digest) {
    const int bits = Pick(seeded, Depths), width = seeded.Between(1, 300), height = seeded.Between(1, 50);
    ResizeLineState* state = nullptr;
    digest.Add(Z_StartResize(width, height, NewSize(seeded, width), NewSize(seeded, height), &state));
    for (int i = 0; i < 20; ++i) {
        std::vector<uint8_t> row(static_cast<size_t>(width) * 5 * 8);
        FillRandom(seeded, row.data(), row.size());
        int32_t newWidth = 0, repeat = 0;
        digest.Add(Z_Resize(row.data(), static_cast<uint32_t>(seeded.Below(height)), bits, &newWidth, &repeat,
                            state));
        digest.Add(row.data(), static_cast<size_t>(newWidth) * static_cast<size_t>(bits) / 8);
    }
    Z_StopResize(state);
}

void StreamCase(Seeded& seeded, Digest& digest) {
    constexpr uint32_t methods[] = {0, RESIZE_LINEAR, RESIZE_SPLINE},
                       orders[] = {0, RESIZE_ORDER_BGR, RESIZE_ORDER_GRAY};
    Subject picture(seeded);
    std::vector<RGBQUAD> palette(256);
    FillRandom(seeded, palette.data(), palette.size() * sizeof(RGBQUAD));
    const int bits = Pick(seeded, Depths), width = NewSize(seeded, picture.Width),
              height = NewSize(seeded, picture.Height);
    const uint32_t flags = Pick(seeded, methods) | Pick(seeded, orders) |
                           static_cast<uint32_t>(seeded.Below(9)) << RESIZE_DITHER_SHIFT;
    ResizeRowContext* stream = nullptr;
    digest.Add(Z_StartResizeBitmap(&picture, width, height, bits, seeded.Below(2) ? palette.data() : nullptr,
                                   256, flags, nullptr, nullptr, &stream));
    int row = 0, column = 0;
    uint32_t bytes = 1;
    for (int i = 0; i < 12 && stream != nullptr; ++i) {
        if (i == 0 || seeded.Below(4) == 0) {
            row = seeded.Below(height);
            column = seeded.Below(width);
            bytes = static_cast<uint32_t>(seeded.Between(1, (width - column) * bits / 8 + 1));
        }
        std::vector<uint8_t> target(bytes);
        digest.Add(Z_GetResizedRowCol(stream, target.data(), row, column, bytes));
        digest.Add(target.data(), target.size());
        row = std::clamp(row + seeded.Between(-1, 1), 0, height - 1);
    }
    digest.Add(Z_StopResizeBitmap(stream));
}

void SizeCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    picture.Flags &= ~static_cast<uint32_t>(Z_FLAG_LEVEL_LUT_ACTIVE);
    const int width = NewSize(seeded, picture.Width), height = NewSize(seeded, picture.Height);
    digest.Add(Z_SizeBitmap(&picture, width, height, static_cast<uint32_t>(seeded.Below(8))));
    AddPixels(digest, picture);
    Subject target(seeded);
    digest.Add(Z_ResizeBitmapExt(&picture, &target, static_cast<uint32_t>(seeded.Below(8))));
    AddPixels(digest, target);
}

constexpr Family Families[] = {
    {"fed-rows", 400, FedRowsCase}, {"resized-stream", 1500, StreamCase}, {"size", 1200, SizeCase}};

} // namespace

std::span<const Family> ResizeFamilies() {
    return Families;
}

} // namespace zkr::test
