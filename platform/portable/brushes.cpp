#include "platform/portable/brushes.h"

#include "kernels/family.h"
#include "platform/faults.h"
#include "platform/portable/bitmaps.h"
#include "platform/portable/device.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace zkr::platform {

namespace {

template <typename Describe> HBRUSH MakeBrush(Describe describe) {
    auto* brush = fault::Due(fault::Device) ? nullptr : new (std::nothrow) Brush;
    if (brush != nullptr && describe(*brush)) {
        if (HANDLE handle = InsertHandle(Brush::kind, *brush)) return static_cast<HBRUSH>(handle);
    }
    if (brush != nullptr) brush->Drop();
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

int64_t Modulo(int64_t value, int64_t by) {
    const int64_t rest = value % by;
    return rest < 0 ? rest + by : rest;
}

} // namespace

HBRUSH CreateSolidBrush(COLORREF colour) {
    return MakeBrush([&](Brush& brush) {
        brush.colour = colour;
        return true;
    });
}

// The pattern is a copy: the bitmap may change and go.
HBRUSH CreatePatternBrush(HBITMAP handle) {
    const Pin<Bitmap> bitmap(handle);
    if (!bitmap) return nullptr;
    return MakeBrush([&](Brush& brush) {
        Surface& from = *bitmap->surface;
        Surface* copy = MakeSurface(from.width, from.height, from.bitsPerPixel);
        if (copy == nullptr) return false;
        const std::scoped_lock lock(from.mutex);
        copy->monochrome = from.monochrome;
        copy->table = from.table;
        const size_t rowBytes =
            (static_cast<size_t>(from.width) * static_cast<size_t>(from.bitsPerPixel) + 7) / 8;
        for (int y = 0; y < from.height && from.topRow != nullptr; ++y)
            std::memcpy(copy->Row(y), from.Row(y), rowBytes);
        brush.pattern = Ref<Surface>(copy);
        copy->Drop();
        return true;
    });
}

PreparedBrush::~PreparedBrush() {
    if (values_ != &one_) std::free(values_);
}

bool PreparedBrush::Prepare(const ContextState& state, const Pixels& target) {
    const Brush* brush = state.brush.Get();
    if (brush == nullptr || !brush->pattern) {
        const ColourWord colour = brush == nullptr ? 0xFFFFFF : ResolveColour(brush->colour, state);
        one_ = PixelOf(colour, target);
        return true;
    }
    const Surface& pattern = *brush->pattern;
    const auto count = static_cast<size_t>(pattern.width) * static_cast<size_t>(pattern.height);
    auto* values = static_cast<uint32_t*>(std::calloc(count, sizeof(uint32_t)));
    if (values == nullptr) return false;
    values_ = values;
    width_ = pattern.width;
    height_ = pattern.height;
    origin_ = state.brushOrigin;

    // By way of words of colour, whatever the pattern's own pixels are.
    const MonochromeColours colours{ResolveColour(state.textColour, state),
                                    ResolveColour(state.backgroundColour, state), false, 0};
    Pixels words;
    words.bitsPerPixel = 32;
    RowConverter converter(pattern, words, colours);
    for (int y = 0; y < height_; ++y) {
        uint32_t* row = values_ + static_cast<size_t>(y) * static_cast<size_t>(width_);
        converter.Convert(pattern.Row(y), 0, width_, reinterpret_cast<uint8_t*>(row), 0);
        std::transform(row, row + width_, row,
                       [&](uint32_t word) { return PixelOf(word & 0xFFFFFF, target); });
    }
    return true;
}

void PreparedBrush::Store(int64_t x, int64_t y, int count, int bitsPerPixel, uint8_t* out,
                          int firstBit) const {
    uint32_t pixels[RowConverter::Most];
    const uint32_t* row = values_ + Modulo(y - origin_.y, height_) * width_;
    int64_t column = Modulo(x - origin_.x, width_);
    for (int i = 0; i < count; ++i) {
        pixels[i] = row[column];
        if (++column == width_) column = 0;
    }
    const auto& kernels = kernels::Chosen<kernels::PixelWordKernels>();
    kernels.Store[kernels::PlaceOfDepth(bitsPerPixel)](pixels, count, out, firstBit);
}

} // namespace zkr::platform
