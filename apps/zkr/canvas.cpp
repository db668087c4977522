// Drawing on a canvas, and the box filter of thumbnails.
#include "canvas.h"

#include <algorithm>
#include <cstring>

namespace zkr::app {

Canvas::Canvas(int width, int height, Colour background)
    : width_(width), height_(height), rgb_(3 * static_cast<size_t>(width) * static_cast<size_t>(height)) {
    for (size_t i = 0; i < rgb_.size(); i += 3) {
        rgb_[i] = background.red;
        rgb_[i + 1] = background.green;
        rgb_[i + 2] = background.blue;
    }
}

void Canvas::Blend(int x, int y, Colour colour, int coverage) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
    uint8_t* target = Pixel(x, y);
    const uint8_t channels[] = {colour.red, colour.green, colour.blue};
    for (int c = 0; c < 3; ++c) {
        target[c] = static_cast<uint8_t>((target[c] * (255 - coverage) + channels[c] * coverage + 127) / 255);
    }
}

void Canvas::Frame(int x, int y, int width, int height, Colour colour) {
    for (int i = 0; i < width; ++i) {
        Blend(x + i, y, colour, 255);
        Blend(x + i, y + height - 1, colour, 255);
    }
    for (int i = 0; i < height; ++i) {
        Blend(x, y + i, colour, 255);
        Blend(x + width - 1, y + i, colour, 255);
    }
}

void Canvas::Put(int x, int y, const Canvas& picture) {
    const auto rowBytes = static_cast<size_t>(picture.width_) * 3;
    for (int row = 0; row < picture.height_; ++row) {
        std::memcpy(Pixel(x, y + row), &picture.rgb_[static_cast<size_t>(row) * rowBytes], rowBytes);
    }
}

namespace {

// The pixels of the source that make pixel `i` of `n`: at least one.
struct Span {
    int first, last;
    Span(int i, int n, int source)
        : first(static_cast<int>(int64_t{i} * source / n)),
          last(std::max(first + 1, static_cast<int>((int64_t{i} + 1) * source / n))) {}
};

// Width and height of the largest picture of the given proportions in a box, at least one pixel each.
Canvas Fitted(int width, int height, int boxWidth, int boxHeight) {
    const double scale =
        std::min({1.0, static_cast<double>(boxWidth) / width, static_cast<double>(boxHeight) / height});
    return Canvas(std::max(1, static_cast<int>(width * scale + 0.5)),
                  std::max(1, static_cast<int>(height * scale + 0.5)), {});
}

} // namespace

Canvas Thumbnail(Bitmap& bitmap, int boxWidth, int boxHeight) {
    Canvas small = Fitted(bitmap.Width(), bitmap.Height(), boxWidth, boxHeight);
    std::vector<uint8_t> row(bitmap.RowBytes());
    std::vector<uint64_t> sums(3 * static_cast<size_t>(small.Width()));
    for (int y = 0; y < small.Height(); ++y) {
        std::fill(sums.begin(), sums.end(), 0);
        const Span rows(y, small.Height(), bitmap.Height());
        for (int sourceY = rows.first; sourceY < rows.last; ++sourceY) {
            bitmap.GetRow(sourceY, row.data());
            for (int x = 0; x < small.Width(); ++x) {
                const Span columns(x, small.Width(), bitmap.Width());
                uint64_t* sum = &sums[3 * static_cast<size_t>(x)];
                const uint8_t* source = &row[3 * static_cast<size_t>(columns.first)];
                for (int i = 0; i < 3 * (columns.last - columns.first); ++i)
                    sum[i % 3] += source[i];
            }
        }
        for (int x = 0; x < small.Width(); ++x) {
            const Span columns(x, small.Width(), bitmap.Width());
            const uint64_t count = static_cast<uint64_t>(rows.last - rows.first) *
                                   static_cast<uint64_t>(columns.last - columns.first);
            for (size_t c = 0; c < 3; ++c) {
                small.Pixel(x, y)[c] =
                    static_cast<uint8_t>((sums[3 * static_cast<size_t>(x) + c] + count / 2) / count);
            }
        }
    }
    return small;
}

} // namespace zkr::app
