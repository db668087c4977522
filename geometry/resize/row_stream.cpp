// The rows of a stream: means where they shrink, and where they grow what the method makes of the source rows around.
#include "geometry/resize/row_stream.h"

#include "core/predicates.h"
#include "core/sizes.h"
#include "geometry/resize/columns.h"
#include "kernels/family.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <utility>

namespace zkr {

using kernels::ResampleKernels;

namespace {

const ResampleKernels& Resampling() {
    return kernels::Chosen<ResampleKernels>();
}

Interpolation MethodOf(const OutputRequest& request, const BitmapHandle& bitmap) {
    if ((request.Flags & RESIZE_LINEAR) != 0) return Interpolation::Linear;
    if ((request.Flags & RESIZE_SPLINE) == 0) return Interpolation::Nearest;
    const bool grows = request.Width > bitmap.Width || request.Height > bitmap.Height;
    return grows ? Interpolation::Spline : Interpolation::Linear;
}

} // namespace

RowStream::~RowStream() {
    if (locked_ != nullptr) Z_UnlockBitmap(locked_, lockedBefore_);
}

ReturnCode RowStream::Make(BitmapHandle* bitmap, const OutputRequest& request, RowReader reader) {
    method_ = MethodOf(request, *bitmap);
    oldHeight_ = bitmap->Height;
    newWidth_ = request.Width;
    newHeight_ = request.Height;
    enlargesRows_ = newHeight_ >= oldHeight_;
    const int32_t ends = method_ == Interpolation::Spline && newHeight_ > 1 ? 1 : 0;
    stepY_ = (oldHeight_ - ends) / (newHeight_ - ends);
    remainderY_ = (oldHeight_ - ends) % (newHeight_ - ends);
    ratio_ = SplineWindow::Ratio(oldHeight_, newHeight_);

    ReturnCode result = work_.Make(bitmap, reader, method_, newWidth_);
    if (result == code::Success) result = MakeRows(*bitmap);
    if (result == code::Success) result = output_.Make(*bitmap, work_, request);
    if (result != code::Success || !IsAllocated(bitmap)) return result;
    lockedBefore_ = Z_LockBitmap(bitmap);
    locked_ = bitmap;
    return code::Success;
}

ReturnCode RowStream::MakeRows(const BitmapHandle& bitmap) {
    const auto widest = static_cast<uint32_t>(std::max(work_.format().StoredBits(), bitmap.BitsPerPixel));
    const uint64_t bytes = (static_cast<uint64_t>(newWidth_) * widest + 7) / 8;
    const uint64_t samples =
        static_cast<uint64_t>(newWidth_) * static_cast<uint32_t>(work_.format().Samples.Channels);
    if (!FitsSize(bytes) || !FitsSize(samples)) return code::OutOfMemory;
    const bool blends = method_ != Interpolation::Nearest;
    const int count = !enlargesRows_ || !blends ? 1 : method_ == Interpolation::Linear ? 2 : MostRows;
    for (int i = 0; i < count; ++i) {
        rows_[i].emplace(static_cast<size_t>(bytes));
        if (!*rows_[i]) return code::OutOfMemory;
        row_[i] = rows_[i]->data();
    }
    if (!blends) return code::Success;
    made_.emplace(static_cast<size_t>(bytes));
    if (!*made_) return code::OutOfMemory;
    if (enlargesRows_) return code::Success;
    sums_.emplace(static_cast<size_t>(samples));
    return *sums_ ? code::Success : code::OutOfMemory;
}

size_t RowStream::SampleCount() const {
    return static_cast<size_t>(count_) * static_cast<size_t>(work_.format().Samples.Channels);
}

ReturnCode RowStream::Get(uint8_t* target, int32_t row, int32_t column, uint32_t bytes) {
    if (target == nullptr || column < 0 || column >= newWidth_ || bytes == 0) return code::InvalidArgument;
    const auto bits = static_cast<uint64_t>(output_.bits());
    const uint64_t offset = static_cast<uint64_t>(column) * bits % 8;
    const uint64_t fitting = (uint64_t{bytes} * 8 - offset) / bits;
    const auto count =
        static_cast<int32_t>(std::min<uint64_t>(fitting, static_cast<uint64_t>(newWidth_ - column)));
    if (count == 0) return output_.Write(nullptr, 0, target, bytes);

    row = Shifted(std::clamp(row, 0, newHeight_ - 1));
    const bool isNext = enlargesRows_ && isValid_ && column == column_ && bytes == bytes_ &&
                        row >= lastRow_ - 1 && row <= lastRow_ + 1;
    if (!isNext) {
        column_ = column;
        bytes_ = bytes;
        count_ = count;
        work_.Choose(column, count);
    }
    isValid_ = false;
    const ReturnCode result = !enlargesRows_                      ? Reduce(row)
                              : method_ == Interpolation::Nearest ? EnlargeNearest(row, isNext)
                              : method_ == Interpolation::Linear  ? EnlargeLinear(row, isNext)
                                                                  : EnlargeSpline(row, isNext);
    if (result != code::Success) return result;
    lastRow_ = row;
    isValid_ = enlargesRows_;
    return output_.Write(result_, count_, target, bytes);
}

// Rows as if the first one were not repeated to bring source rows to the middle of their stretches.
int32_t RowStream::Shifted(int32_t row) const {
    if (!enlargesRows_ || method_ == Interpolation::Nearest) return row;
    const int32_t repeats =
        method_ == Interpolation::Spline ? SplineWindow::Repeats(ratio_) : newHeight_ / oldHeight_ / 2;
    return std::max(row - repeats, 0);
}

ReturnCode RowStream::Reduce(int32_t row) {
    const uint64_t place = static_cast<uint64_t>(row) * static_cast<uint32_t>(oldHeight_);
    const auto height = static_cast<uint32_t>(newHeight_);
    sourceRow_ = static_cast<int32_t>(place / height);
    result_ = row_[0];
    if (method_ == Interpolation::Nearest) return work_.Fetch(sourceRow_, row_[0]);

    const uint64_t error = place % height + static_cast<uint32_t>(remainderY_);
    const int32_t span = stepY_ + (error >= height ? 1 : 0);
    const size_t type = work_.format().Samples.TypeIndex(), samples = SampleCount();
    std::fill_n(sums_->data(), samples, 0.0);
    for (int32_t i = 0; i < span; ++i) {
        if (sourceRow_ < oldHeight_) {
            const ReturnCode result = work_.Fetch(sourceRow_, row_[0]);
            if (result != code::Success) return result;
            ++sourceRow_;
        }
        Resampling().AddWeighted[type](row_[0], 1.0, sums_->data(), samples);
    }
    Resampling().DivideWeighted[type](sums_->data(), span, made_->data(), samples);
    result_ = made_->data();
    return code::Success;
}

ReturnCode RowStream::EnlargeNearest(int32_t row, bool isNext) {
    const auto source = static_cast<int32_t>((int64_t{row} * oldHeight_ + oldHeight_ - 1) / newHeight_);
    result_ = row_[0];
    if (isNext && source == sourceRow_) return code::Success;
    sourceRow_ = source;
    return work_.Fetch(source, row_[0]);
}

ReturnCode RowStream::EnlargeLinear(int32_t row, bool isNext) {
    const kernels::LinearColumn place = LinearAt(row + newHeight_ / oldHeight_ / 2, oldHeight_, newHeight_);
    const auto source = static_cast<int32_t>(place.First), next = static_cast<int32_t>(place.Second);
    const int32_t before = isNext ? sourceRow_ : source - 2;
    if (source == before + 1 || source == before - 1) std::swap(row_[0], row_[1]);
    ReturnCode result = code::Success;
    const bool hasFirst = source == before || source == before + 1;
    const bool hasSecond = isNext && (source == before || source == before - 1);
    if (!hasFirst) result = work_.Fetch(source, row_[0]);
    if (result == code::Success && !hasSecond && next != source) result = work_.Fetch(next, row_[1]);
    if (result != code::Success) return result;
    sourceRow_ = source;
    result_ = row_[0];
    if (place.Weight == 0 || next == source) return code::Success;
    Resampling().Blend[work_.format().Samples.TypeIndex()](row_[0], row_[1], place.Weight, place.Span,
                                                           made_->data(), SampleCount());
    result_ = made_->data();
    return code::Success;
}

ReturnCode RowStream::EnlargeSpline(int32_t row, bool isNext) {
    ReturnCode result = code::Success;
    if (!isNext) {
        const float place = static_cast<float>(row) * ratio_;
        sourceRow_ = std::min(static_cast<int32_t>(place), oldHeight_ - 1);
        fraction_ = place - static_cast<float>(sourceRow_);
        result = FetchAround();
    } else if (row == lastRow_) {
        return code::Success;
    } else if (row > lastRow_) {
        fraction_ += ratio_;
        if (fraction_ >= 1.0f) result = MoveDown();
    } else {
        fraction_ -= ratio_;
        if (fraction_ < 0) result = MoveUp();
    }
    if (result != code::Success) return result;
    result_ = row_[1];
    if (fraction_ <= 0) return code::Success;
    Resampling().SplineRows[work_.format().Samples.TypeIndex()](row_, fraction_, made_->data(),
                                                                SampleCount());
    result_ = made_->data();
    return code::Success;
}

// A row outside the bitmap is the same as its neighbour.
ReturnCode RowStream::FetchOrCopy(int32_t row, int index, int neighbour) {
    if (row >= 0 && row < oldHeight_) return work_.Fetch(row, row_[index]);
    std::copy_n(row_[neighbour], static_cast<size_t>(count_) * work_.format().Samples.PixelBytes(),
                row_[index]);
    return code::Success;
}

ReturnCode RowStream::FetchAround() {
    ReturnCode result = work_.Fetch(sourceRow_, row_[1]);
    if (result == code::Success) result = FetchOrCopy(sourceRow_ - 1, 0, 1);
    if (result == code::Success) result = FetchOrCopy(sourceRow_ + 1, 2, 1);
    if (result == code::Success) result = FetchOrCopy(sourceRow_ + 2, 3, 2);
    return result;
}

ReturnCode RowStream::MoveDown() {
    fraction_ -= 1.0f;
    ++sourceRow_;
    std::rotate(row_, row_ + 1, row_ + MostRows);
    return FetchOrCopy(sourceRow_ + 2, 3, 2);
}

ReturnCode RowStream::MoveUp() {
    fraction_ += 1.0f;
    --sourceRow_;
    std::rotate(row_, row_ + MostRows - 1, row_ + MostRows);
    return FetchOrCopy(sourceRow_ - 1, 0, 1);
}

} // namespace zkr
