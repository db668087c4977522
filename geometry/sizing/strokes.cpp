// Sizing of bitonal pictures that keeps thin black strokes: a target pixel is black when enough of the source pixels
// that fall into its cell are. Rows that are held as runs are worked on as runs, of which the black ones alone are looked
// at; so are the widths that stroke_bits.h leaves.
#include "core/runs/exchanged_row.h"
#include "core/runs/run_list.h"
#include "core/scratch.h"
#include "core/sizes.h"
#include "geometry/resize/stepping.h"
#include "geometry/sizing/sizing_work.h"
#include "geometry/sizing/stroke_bits.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/gray.h"
#include "zkr13n/numeric.h"

#include <algorithm>

namespace zkr {

namespace {

// How many black pixels of a cell make it black: the square root of its area, less one where cells are small.
uint32_t ThresholdOf(const BitmapHandle& source, const BitmapHandle& target) {
    const uint64_t area = static_cast<uint64_t>(std::max(source.Width / target.Width, 1)) *
                          static_cast<uint64_t>(std::max(source.Height / target.Height, 1));
    uint64_t root = Z_SQRT(static_cast<uint32_t>(std::min<uint64_t>(area, UINT32_MAX)));
    if (area > UINT32_MAX)
        while ((root + 1) * (root + 1) <= area)
            ++root;
    return static_cast<uint32_t>(root < 5 ? std::max<uint64_t>(root, 2) - 1 : root);
}

bool HasBlackOnes(const BitmapHandle& source) {
    return Z_IsGrayScaleBitmap(&source) == GRAY_ORDEREDREVERSE;
}

uint64_t MostRowBytes(int32_t width) {
    return runs::CountWords * 2 + runs::MostWords(width) * 2;
}

class StrokeRows {
  public:
    StrokeRows(BitmapHandle& source, BitmapHandle& target)
        : source_(source), target_(target), steps_(Stepping::Between(source.Height, target.Height)),
          threshold_(ThresholdOf(source, target)), blackIsOne_(HasBlackOnes(source)),
          sourceRow_(static_cast<size_t>(MostRowBytes(source.Width) / 2)),
          targetRow_(static_cast<size_t>(MostRowBytes(target.Width) / 2)), sourceWork_(source),
          targetWork_(target), bounds_(static_cast<size_t>(target.Width) + 1),
          counts_(static_cast<size_t>(target.Width)) {}

    explicit operator bool() const {
        return sourceRow_ && targetRow_ && sourceWork_ && targetWork_ && bounds_ && counts_;
    }

    void Begin() {
        Stepping columns = Stepping::Between(source_.Width, target_.Width);
        for (size_t i = 0; i <= static_cast<size_t>(target_.Width); ++i, columns.Next())
            bounds_[i] = static_cast<uint32_t>(columns.Index);
    }

    ReturnCode Pass(int32_t row) {
        const auto first = static_cast<int64_t>(steps_.Index);
        steps_.Next();
        if (first != counted_) {
            counted_ = first;
            const int64_t end = std::max(static_cast<int64_t>(steps_.Index), first + 1);
            std::fill_n(counts_.data(), static_cast<size_t>(target_.Width), 0u);
            for (int64_t i = first; i < end; ++i) {
                const ReturnCode result = Count(static_cast<int32_t>(i));
                if (result != code::Success) return result;
            }
            MakeRow();
        }
        return Z_PutBitmapRowCompressed(&target_, targetWork_.data(), targetRow_.data(),
                                        StoredRow(target_, row), 1);
    }

  private:
    ReturnCode Count(int32_t row) {
        const ReturnCode result = Z_GetBitmapRowCompressed(&source_, sourceWork_.data(), sourceRow_.data(),
                                                           StoredRow(source_, row), 1);
        if (result != code::Success) return result;
        const bool shrinks = target_.Width < source_.Width;
        runs::RunReader reader(sourceRow_.data() + runs::CountWords, runs::RunCountOf(sourceRow_.data()));
        for (uint32_t x = 0; !reader.IsAtEnd();) {
            const uint32_t end = x + reader.Left();
            if (reader.Ones() == blackIsOne_) shrinks ? CountCells(x, end) : CountColumns(x, end);
            x = end;
            reader.Skip(reader.Left());
        }
        return code::Success;
    }

    // The cells that source pixels from x to end lie in.
    void CountCells(uint32_t x, uint32_t end) {
        for (size_t cell = FirstColumnAt(x, target_.Width - 1); x < end; ++cell) {
            const uint32_t border = std::min(bounds_[cell + 1], end);
            counts_[cell] += border - x;
            x = border;
        }
    }

    // The columns that become of source pixels from x to end.
    void CountColumns(uint32_t x, uint32_t end) {
        const size_t behind = FirstColumnAt(end, source_.Width - 1);
        for (size_t column = FirstColumnAt(x, source_.Width - 1); column < behind; ++column)
            ++counts_[column];
    }

    // Where rows shrink the cell of a source pixel, where they grow the first column of it.
    size_t FirstColumnAt(uint32_t x, int32_t carried) const {
        const auto width = static_cast<uint64_t>(source_.Width);
        return static_cast<size_t>(
            (uint64_t{x} * static_cast<uint64_t>(target_.Width) + static_cast<uint64_t>(carried)) / width);
    }

    void MakeRow() {
        runs::RunWriter writer(targetRow_.data() + runs::CountWords, false);
        const auto width = static_cast<uint32_t>(target_.Width);
        for (uint32_t x = 0, begin = 0; x < width; begin = x) {
            const bool isBlack = counts_[x] >= threshold_;
            do
                ++x;
            while (x < width && (counts_[x] >= threshold_) == isBlack);
            writer.Append(x - begin, isBlack == blackIsOne_);
        }
        runs::SetRunCount(targetRow_.data(), writer.Words());
    }

    BitmapHandle& source_;
    BitmapHandle& target_;
    Stepping steps_;
    uint32_t threshold_;
    bool blackIsOne_;
    ScratchBuffer<uint16_t> sourceRow_, targetRow_;
    ScratchRow sourceWork_, targetWork_;
    ScratchBuffer<uint32_t> bounds_; // the first source pixel of each column's cell
    ScratchBuffer<uint32_t> counts_; // black pixels in each column's cell
    int64_t counted_ = -1;           // the source row that the cells begin with
};

template <class Rows> ReturnCode Fill(BitmapHandle& source, BitmapHandle& target, Rows& rows) {
    if (!rows) return code::OutOfMemory;
    rows.Begin();
    return RowWalk(target)
        .With(source)
        .Reporting(StatusReceiver::Status())
        .Run(target.Height, [&](int32_t row) { return rows.Pass(row); });
}

} // namespace

ReturnCode FillKeepingStrokes(BitmapHandle& source, BitmapHandle& target) {
    if (StrokeBits::Suits(source, target)) {
        StrokeBits rows(source, target, ThresholdOf(source, target), HasBlackOnes(source));
        return Fill(source, target, rows);
    }
    StrokeRows rows(source, target);
    return Fill(source, target, rows);
}

} // namespace zkr
