// Blended rows: means over rows weighted by the area that they cover, steps from row to row, or splines through four
// rows. All take rows of the source that have the target's width already.
#include "geometry/resize/columns.h"
#include "geometry/sizing/blended_format.h"
#include "geometry/sizing/sizing_work.h"
#include "kernels/family.h"

#include <algorithm>
#include <utility>

namespace zkr {

namespace {

using kernels::Chosen;
using kernels::ResampleKernels;

// Working rows as long as the target's.
struct WorkSize {
    size_t Bytes, Samples, Type;
};

// Few rows are kept until all of a target row are there, many are added up as they come. A row on the border of two
// target rows belongs to both.
class AreaRows {
  public:
    AreaRows(SampleRows& source, const WorkSize& size, int32_t oldHeight, int32_t newHeight)
        : source_(source), size_(size), steps_(oldHeight, newHeight),
          kept_(oldHeight / newHeight + 2 <= MostKept ? static_cast<size_t>(oldHeight / newHeight) + 2 : 1),
          fetched_(size.Bytes <= SIZE_MAX / kept_ ? size.Bytes * kept_ : SIZE_MAX), made_(size.Bytes),
          sums_(size.Samples) {
        for (size_t i = 0; i < kept_ && fetched_; ++i)
            rows_[i] = {fetched_.data() + i * size.Bytes, UINT32_MAX};
    }

    explicit operator bool() const { return fetched_ && made_ && sums_; }

    ReturnCode Make(int32_t, const uint8_t*& samples) {
        const kernels::AverageColumn rows = steps_.Next();
        const size_t count = size_t{rows.Whole} + (rows.LastWeight != 0 ? 2 : 1);
        samples = made_.data();
        return kept_ > 1 && count <= kept_ ? Average(rows, count) : AddUp(rows, count);
    }

  private:
    static constexpr int32_t MostKept = 10;

    struct Kept {
        uint8_t* Samples;
        uint32_t Row;
    };

    static double WeightOf(const kernels::AverageColumn& rows, size_t index) {
        return index == 0 ? rows.FirstWeight : index <= rows.Whole ? 1.0 : rows.LastWeight;
    }

    // A row into a place, unless it is there.
    ReturnCode Fetch(uint32_t row, Kept& place) {
        if (place.Row == row) return code::Success;
        place.Row = UINT32_MAX;
        const ReturnCode result = source_.Fetch(static_cast<int32_t>(row), place.Samples);
        if (result == code::Success) place.Row = row;
        return result;
    }

    ReturnCode Average(const kernels::AverageColumn& rows, size_t count) {
        for (size_t i = 1; i < kept_; ++i)
            if (rows_[i].Row == rows.First) std::swap(rows_[0], rows_[i]);
        const uint8_t* samples[MostKept];
        double weights[MostKept];
        for (size_t i = 0; i < count; ++i) {
            const ReturnCode result = Fetch(rows.First + static_cast<uint32_t>(i), rows_[i]);
            if (result != code::Success) return result;
            samples[i] = rows_[i].Samples;
            weights[i] = WeightOf(rows, i);
        }
        Chosen<ResampleKernels>().AverageRows[size_.Type](samples, weights, count, rows.Total, made_.data(),
                                                          size_.Samples);
        return code::Success;
    }

    ReturnCode AddUp(const kernels::AverageColumn& rows, size_t count) {
        const auto& kernels = Chosen<ResampleKernels>();
        std::fill_n(sums_.data(), size_.Samples, 0.0);
        for (size_t i = 0; i < count; ++i) {
            const ReturnCode result = Fetch(rows.First + static_cast<uint32_t>(i), rows_[0]);
            if (result != code::Success) return result;
            kernels.AddWeighted[size_.Type](rows_[0].Samples, WeightOf(rows, i), sums_.data(), size_.Samples);
        }
        kernels.DivideWeighted[size_.Type](sums_.data(), rows.Total, made_.data(), size_.Samples);
        return code::Success;
    }

    SampleRows& source_;
    WorkSize size_;
    AverageSteps steps_;
    size_t kept_;
    ScratchBuffer<uint8_t> fetched_, made_;
    ScratchBuffer<double> sums_; // where rows are added up
    Kept rows_[MostKept] = {};
};

class LinearRows {
  public:
    LinearRows(SampleRows& source, const WorkSize& size, int32_t oldHeight, int32_t newHeight)
        : source_(source), size_(size), oldHeight_(oldHeight), newHeight_(newHeight), upper_(size.Bytes),
          lower_(size.Bytes), made_(size.Bytes) {}

    explicit operator bool() const { return upper_ && lower_ && made_; }

    ReturnCode Make(int32_t row, const uint8_t*& samples) {
        const kernels::LinearColumn place = LinearAt(row, oldHeight_, newHeight_);
        const auto wanted = static_cast<int32_t>(place.First);
        if (row == 0) {
            const ReturnCode result = source_.Fetch(0, second_);
            if (result != code::Success) return result;
        }
        for (; firstRow_ < wanted; ++firstRow_) {
            std::swap(first_, second_);
            const int32_t next = firstRow_ + 2;
            if (next >= oldHeight_) continue;
            const ReturnCode result = source_.Fetch(next, second_);
            if (result != code::Success) return result;
        }
        samples = first_;
        if (place.Weight == 0 || place.Second == place.First) return code::Success;
        const auto& kernels = Chosen<ResampleKernels>();
        const auto blend = size_.Type == 0 ? kernels.Blend[0] : kernels.BlendFalling;
        blend(first_, second_, place.Weight, place.Span, made_.data(), size_.Samples);
        samples = made_.data();
        return code::Success;
    }

  private:
    SampleRows& source_;
    WorkSize size_;
    int32_t oldHeight_, newHeight_;
    ScratchBuffer<uint8_t> upper_, lower_, made_;
    uint8_t* first_ = upper_.data();
    uint8_t* second_ = lower_.data();
    int32_t firstRow_ = -1;
};

class SplineRows {
  public:
    SplineRows(SampleRows& source, const WorkSize& size, int32_t oldHeight, int32_t newHeight)
        : source_(source), size_(size), oldHeight_(oldHeight),
          ratio_(SplineWindow::Ratio(oldHeight, newHeight)),
          repeats_(SplineWindow::Repeats(ratio_)), rows_{ScratchBuffer<uint8_t>(size.Bytes),
                                                         ScratchBuffer<uint8_t>(size.Bytes),
                                                         ScratchBuffer<uint8_t>(size.Bytes),
                                                         ScratchBuffer<uint8_t>(size.Bytes)},
          made_(size.Bytes) {
        for (int i = 0; i < 4; ++i)
            row_[i] = rows_[i].data();
    }

    explicit operator bool() const { return rows_[0] && rows_[1] && rows_[2] && rows_[3] && made_; }

    // Whether a row is the one before once more.
    bool Repeats(int32_t row) const { return row > 0 && row <= repeats_; }

    ReturnCode Make(int32_t row, const uint8_t*& samples) {
        ReturnCode result = code::Success;
        if (row == 0) {
            result = Begin();
        } else {
            t_ += ratio_;
            if (t_ >= 1.0f) result = Move();
        }
        if (result != code::Success) return result;
        samples = row_[1];
        if (t_ <= 0) return code::Success;
        Chosen<ResampleKernels>().SplineRows[size_.Type](row_, t_, made_.data(), size_.Samples);
        samples = made_.data();
        return code::Success;
    }

  private:
    // Where the source has no more rows the last one goes on.
    ReturnCode FetchNext(int index) {
        if (next_ < oldHeight_) return source_.Fetch(next_++, row_[index]);
        std::copy_n(row_[index - 1], size_.Bytes, row_[index]);
        return code::Success;
    }

    ReturnCode Begin() {
        ReturnCode result = source_.Fetch(next_++, row_[0]);
        if (result != code::Success) return result;
        std::copy_n(row_[0], size_.Bytes, row_[1]);
        result = FetchNext(2);
        return result == code::Success ? FetchNext(3) : result;
    }

    ReturnCode Move() {
        t_ -= 1.0f;
        std::rotate(row_, row_ + 1, row_ + 4);
        return FetchNext(3);
    }

    SampleRows& source_;
    WorkSize size_;
    int32_t oldHeight_;
    float ratio_;
    int32_t repeats_;
    ScratchBuffer<uint8_t> rows_[4];
    ScratchBuffer<uint8_t> made_;
    uint8_t* row_[4] = {};
    int32_t next_ = 0;
    float t_ = 0;
};

template <class Rows>
ReturnCode Fill(BitmapHandle& source, BitmapHandle& target, BlendedOutput& output, Rows&& rows) {
    if (!rows) return code::OutOfMemory;
    return FillRows(source, target, output.bytes(), [&](int32_t row) {
        if constexpr (requires { rows.Repeats(row); })
            if (rows.Repeats(row)) return code::Success;
        const uint8_t* samples = nullptr;
        const ReturnCode result = rows.Make(row, samples);
        return result == code::Success ? output.Take(samples) : result;
    });
}

} // namespace

ReturnCode FillBlended(BitmapHandle& source, BitmapHandle& target, bool isSpline) {
    const BlendFormat format = BlendFormat::Of(source, target, isSpline);
    SampleRows rows;
    ReturnCode result =
        rows.Make(source, format, isSpline ? Interpolation::Spline : Interpolation::Linear, target.Width);
    if (result != code::Success) return result;
    BlendedOutput output;
    result = output.Make(source, target, format);
    if (result != code::Success) return result;
    const uint64_t samples =
        static_cast<uint64_t>(target.Width) * static_cast<uint32_t>(format.Samples.Channels);
    const uint64_t bytes = samples * static_cast<uint32_t>(format.Samples.Bits / 8);
    if (bytes > SIZE_MAX) return code::OutOfMemory;
    const WorkSize size = {static_cast<size_t>(bytes), static_cast<size_t>(samples),
                           format.Samples.TypeIndex()};
    const int32_t from = source.Height, to = target.Height;
    if (from > to) return Fill(source, target, output, AreaRows(rows, size, from, to));
    if (isSpline) return Fill(source, target, output, SplineRows(rows, size, from, to));
    return Fill(source, target, output, LinearRows(rows, size, from, to));
}

} // namespace zkr
