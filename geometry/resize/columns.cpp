// The rules of resampling, one target pixel at a time.
#include "geometry/resize/columns.h"

#include <algorithm>

namespace zkr {

using kernels::AverageColumn;
using kernels::LinearColumn;
using kernels::SplineColumn;

LinearColumn LinearAt(int32_t column, int32_t oldSize, int32_t newSize) {
    const int64_t from = oldSize, to = newSize;
    const int64_t place = std::max<int64_t>(column - to / from / 2, 0);
    const int64_t pixel = (place * from + from - 1) / to;
    const int64_t begin = pixel * to / from, end = (pixel + 1) * to / from;
    return {.First = static_cast<uint32_t>(pixel),
            .Second = static_cast<uint32_t>(std::min(pixel + 1, from - 1)),
            .Weight = static_cast<uint32_t>(place - begin),
            .Span = static_cast<uint32_t>(end - begin)};
}

AverageColumn AverageSteps::Next() {
    double end = begin_ + ratio_;
    if (end >= oldSize_) end = oldSize_ - 1;
    const auto first = static_cast<int64_t>(begin_), last = static_cast<int64_t>(end);
    AverageColumn column = {};
    column.First = static_cast<uint32_t>(first);
    column.Whole = static_cast<uint32_t>(std::max<int64_t>(last - (first + 1), 0));
    column.FirstWeight = static_cast<double>(first + 1) - begin_;
    column.LastWeight = end - static_cast<double>(last);
    column.Total = column.FirstWeight;
    for (uint32_t i = 0; i < column.Whole; ++i)
        column.Total += 1.0;
    column.Total += column.LastWeight;
    begin_ = end;
    return column;
}

SplineWindow::SplineWindow(int32_t oldSize, int32_t newSize, int32_t first, int32_t count)
    : target_(first), count_(count), ratio_(Ratio(oldSize, newSize)) {
    constexpr int32_t marginBefore = 5, marginBehind = 6;
    start_ = std::max(first - Repeats(ratio_), 0);
    startPixel_ = std::min(static_cast<int32_t>(static_cast<float>(start_) * ratio_), oldSize - 1);
    First = std::max(startPixel_ - marginBefore, 0);
    const int64_t end = ((int64_t{start_} + count) * oldSize + oldSize - 1) / newSize + marginBehind;
    End = static_cast<int32_t>(std::min<int64_t>(end, oldSize));
}

void SplineWindow::Fill(SplineColumn* columns) const {
    // A window at the row's start begins there with the repeated pixel, wherever the stretch begins.
    const bool atStart = startPixel_ == 0;
    const int32_t repeats = atStart ? Repeats(ratio_) : target_;
    const float place = static_cast<float>(start_) * ratio_;
    float t = atStart ? 0.0f : place - static_cast<float>(startPixel_);
    int32_t pixel = startPixel_;
    for (int64_t column = atStart ? 0 : target_; column < int64_t{target_} + count_; ++column) {
        if (column > repeats) {
            t += ratio_;
            if (t >= 1.0f) {
                t -= 1.0f;
                pixel = std::min(pixel + 1, End - 1);
            }
        }
        if (column < target_) continue;
        const float a = 1.0f - t;
        *columns++ = {.First = static_cast<uint32_t>(pixel),
                      .Second = static_cast<uint32_t>(std::min(pixel + 1, End - 1)),
                      .A = a,
                      .T = t,
                      .FirstM = (a * a * a - a) / 6.0f,
                      .SecondM = (t * t * t - t) / 6.0f};
    }
}

} // namespace zkr
