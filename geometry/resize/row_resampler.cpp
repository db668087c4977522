// Chooses the kernel of a width and makes its columns.
#include "geometry/resize/row_resampler.h"

#include "geometry/resize/columns.h"
#include "geometry/resize/stepping.h"
#include "kernels/family.h"

#include <algorithm>
#include <cstring>

namespace zkr {

using kernels::ResampleKernels;

ReturnCode RowResampler::Make(Interpolation method, SampleFormat format, int32_t oldWidth, int32_t newWidth) {
    format_ = format;
    oldWidth_ = oldWidth;
    newWidth_ = newWidth;
    rule_ = method == Interpolation::Nearest  ? Rule::Nearest
            : oldWidth == newWidth            ? Rule::Copy
            : newWidth < oldWidth             ? Rule::Average
            : method == Interpolation::Linear ? Rule::Linear
                                              : Rule::Spline;
    const auto columns = static_cast<size_t>(newWidth);
    if (rule_ == Rule::Linear) {
        linear_.emplace(columns);
        if (!*linear_) return code::OutOfMemory;
        for (int32_t i = 0; i < newWidth; ++i)
            (*linear_)[static_cast<size_t>(i)] = LinearAt(i, oldWidth, newWidth);
    } else if (rule_ == Rule::Average) {
        average_.emplace(columns);
        if (!*average_) return code::OutOfMemory;
        AverageSteps steps(oldWidth, newWidth);
        for (size_t i = 0; i < columns; ++i)
            (*average_)[i] = steps.Next();
    } else if (rule_ == Rule::Spline) {
        const uint64_t values = 2 * static_cast<uint64_t>(oldWidth) * static_cast<uint32_t>(format.Channels);
        if (values > SIZE_MAX) return code::OutOfMemory;
        spline_.emplace(columns);
        derivatives_.emplace(static_cast<size_t>(values));
        if (!*spline_ || !*derivatives_) return code::OutOfMemory;
    }
    return code::Success;
}

SourceSpan RowResampler::Choose(int32_t first, int32_t count) {
    first_ = first;
    count_ = count;
    if (rule_ == Rule::Spline) {
        const SplineWindow window(oldWidth_, newWidth_, first, count);
        window.Fill(spline_->data());
        span_ = {window.First, window.End};
    } else {
        span_ = SpanOfStretch();
    }
    return span_;
}

SourceSpan RowResampler::SpanOfStretch() {
    const int64_t from = oldWidth_, to = newWidth_, end = int64_t{first_} + count_;
    int64_t first = first_ * from / to, behind = (end * from + to - 1) / to;
    const auto column = static_cast<size_t>(first_), last = static_cast<size_t>(end - 1);
    if (rule_ == Rule::Linear) {
        const kernels::LinearColumn* columns = linear_->data();
        const int64_t place = std::max<int64_t>(first_ - to / from / 2, 0) + count_;
        first = columns[column].First;
        behind = std::max<int64_t>((place * from + from - 1) / to + 1, int64_t{columns[last].Second} + 1);
    } else if (rule_ == Rule::Average) {
        // Positions that add up may lie beside the exact ones.
        const kernels::AverageColumn* columns = average_->data();
        const kernels::AverageColumn& at = columns[last];
        first = std::min<int64_t>(first, columns[column].First);
        behind = std::max<int64_t>(behind, int64_t{at.First} + at.Whole + (at.LastWeight != 0 ? 2 : 1));
    }
    return {static_cast<int32_t>(first), static_cast<int32_t>(std::min(behind, from))};
}

void RowResampler::Run(const uint8_t* source, int32_t base, uint8_t* target) {
    const auto& all = kernels::Chosen<ResampleKernels>();
    const size_t type = format_.TypeIndex(), layout = format_.LayoutIndex();
    const auto from = static_cast<uint32_t>(base);
    const auto first = static_cast<size_t>(first_), count = static_cast<size_t>(count_);
    const uint8_t* span = source + static_cast<size_t>(span_.First - base) * format_.PixelBytes();
    switch (rule_) {
    case Rule::Copy: std::memcpy(target, span, count * format_.PixelBytes()); break;
    case Rule::Nearest: {
        Stepping at = Stepping::Between(oldWidth_, newWidth_, first_);
        at.Index -= from;
        StepRow(format_.Bits * format_.Channels, at, source, target, count);
        break;
    }
    case Rule::Linear: all.Linear[type][layout](source, from, linear_->data() + first, count, target); break;
    case Rule::Average:
        all.Average[type][layout](source, from, average_->data() + first, count, target);
        break;
    case Rule::Spline: {
        const auto pixels = static_cast<size_t>(span_.End - span_.First);
        float* const derivatives = derivatives_->data();
        const kernels::SplineRow& spline = all.Spline[type][layout];
        spline.Solve(span, pixels, derivatives, derivatives + pixels * static_cast<size_t>(format_.Channels));
        spline.Evaluate(span, derivatives, static_cast<uint32_t>(span_.First), spline_->data(), count,
                        target);
        break;
    }
    }
}

} // namespace zkr
