// Chooses the kernel of a width and makes its columns.
#include "geometry/resize/row_resampler.h"

#include "core/assertion.h"
#include "geometry/resize/columns.h"
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
    switch (rule_) {
    case Rule::Nearest: return nearest_.Make(format.Bits * format.Channels, oldWidth, newWidth);
    case Rule::Linear: return MakeLinear();
    case Rule::Average: return MakeAverage();
    case Rule::Spline: return MakeSpline();
    default: return code::Success;
    }
}

ReturnCode RowResampler::MakeLinear() {
    const auto count = static_cast<size_t>(newWidth_);
    linear_.emplace(count);
    if (!*linear_) return code::OutOfMemory;
    linearColumns_.At = linear_->data();
    const auto longest = static_cast<uint32_t>((newWidth_ - 1) / oldWidth_ + 1);
    const bool isShort = longest <= kernels::LongestShortSpan;
    if (isShort) {
        pairs_.emplace(count <= SIZE_MAX / 2 ? count * 2 : SIZE_MAX);
        inverses_.emplace(count);
        if (!*pairs_ || !*inverses_) return code::OutOfMemory;
        linearColumns_ = {linear_->data(), pairs_->data(), pairs_->data() + count, inverses_->data(),
                          Doubles()};
    }
    for (size_t i = 0; i < count; ++i) {
        const kernels::LinearColumn column = LinearAt(static_cast<int32_t>(i), oldWidth_, newWidth_);
        (*linear_)[i] = column;
        if (!isShort) continue;
        // A span of 1 counts double, for its reciprocal would not fit.
        const uint32_t scale = column.Span == 1 ? 2 : 1, span = column.Span * scale;
        (*pairs_)[i] = (column.Span - column.Weight) * scale | column.Weight << 16;
        (*pairs_)[count + i] = 65536 / span + 1;
        (*inverses_)[i] = 1.0f / static_cast<float>(span);
    }
    return code::Success;
}

ReturnCode RowResampler::MakeAverage() {
    const auto count = static_cast<size_t>(newWidth_);
    average_.emplace(count);
    weights_.emplace(count <= SIZE_MAX / 4 ? count * 4 : SIZE_MAX);
    places_.emplace(count);
    if (!*average_ || !*weights_ || !*places_) return code::OutOfMemory;
    double* const first = weights_->data();
    double* const middle = first + count;
    double* const last = middle + count;
    double* const total = last + count;
    const auto whole = static_cast<uint32_t>(oldWidth_ / newWidth_ - 1);
    AverageSteps steps(oldWidth_, newWidth_);
    size_t steady = count;
    for (size_t i = 0; i < count; ++i) {
        const kernels::AverageColumn column = steps.Next();
        (*average_)[i] = column;
        (*places_)[i] = column.First;
        const bool isLonger = column.Whole > whole;
        first[i] = column.FirstWeight;
        middle[i] = isLonger ? 1.0 : column.LastWeight;
        last[i] = isLonger ? column.LastWeight : 0.0;
        total[i] = column.Total;
        if (column.Whole < whole || column.Whole > whole + 1) steady = std::min(steady, i);
    }
    averageColumns_ = {average_->data(), places_->data(), first, middle, last, total, whole, steady};
    return code::Success;
}

ReturnCode RowResampler::MakeSpline() {
    const uint64_t values = 2 * static_cast<uint64_t>(oldWidth_) * kernels::DerivativePlaces;
    if (values > SIZE_MAX) return code::OutOfMemory;
    spline_.emplace(static_cast<size_t>(newWidth_));
    derivatives_.emplace(static_cast<size_t>(values));
    return *spline_ && *derivatives_ ? code::Success : code::OutOfMemory;
}

SourceSpan RowResampler::Choose(int32_t first, int32_t count) {
    ZKR_ASSERT(first >= 0 && count >= 1 && first <= newWidth_ - count);
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
    ZKR_ASSERT(base <= span_.First && span_.End <= oldWidth_);
    const auto& all = kernels::Chosen<ResampleKernels>();
    const size_t type = format_.TypeIndex(), layout = format_.LayoutIndex();
    const auto from = static_cast<uint32_t>(base);
    const auto first = static_cast<size_t>(first_), count = static_cast<size_t>(count_);
    const uint8_t* span = source + static_cast<size_t>(span_.First - base) * format_.PixelBytes();
    switch (rule_) {
    case Rule::Copy: std::memcpy(target, span, count * format_.PixelBytes()); break;
    case Rule::Nearest: {
        const auto bits = static_cast<uint32_t>(format_.Bits * format_.Channels);
        const size_t bytes = static_cast<size_t>(static_cast<uint64_t>(span_.End - base) * bits / 8);
        nearest_.Run(source, base, bytes, first_, count_, target);
        break;
    }
    case Rule::Linear:
        all.Linear[type][layout](source, from, linearColumns_.From(first), count, target);
        break;
    case Rule::Average:
        all.Average[type][layout](source, from, averageColumns_.From(first), count, target);
        break;
    case Rule::Spline: {
        const auto pixels = static_cast<size_t>(span_.End - span_.First);
        float* const derivatives = derivatives_->data();
        const kernels::SplineRow& spline = all.Spline[type][layout];
        spline.Solve(span, pixels, derivatives, derivatives + pixels * kernels::DerivativePlaces);
        spline.Evaluate(span, derivatives, static_cast<uint32_t>(span_.First), {spline_->data(), Doubles()},
                        count, target);
        break;
    }
    }
}

} // namespace zkr
