// Rows slide by whole pixels: one that is written holds fill, the pixels of a row of the source, and fill. Columns are
// rows of the turned bitmap. A negative angle is a positive one between two mirrorings, left and right of the picture,
// which need no pass of their own: rows slide by what is left of the whole way or, in views that exchange the axes,
// are taken from the other end.
#include "zkr13n/shear.h"

#include "colour/pixels/fill_row.h"
#include "core/attachments.h"
#include "core/bit_merge.h"
#include "core/bitmap_lock.h"
#include "core/depth.h"
#include "core/dispatch.h"
#include "core/predicates.h"
#include "core/replacement.h"
#include "core/return_codes.h"
#include "core/row_access.h"
#include "core/scratch.h"
#include "core/storage/compressed.h"
#include "core/views.h"
#include "geometry/rotate/quarter_turn.h"
#include "geometry/row_progress.h"
#include "zkr13n/rotate.h"

#include <cstdlib>
#include <cstring>

namespace zkr::geometry {

namespace {

constexpr int32_t RightAngle = 9000;
constexpr int64_t MostRowBytes = 32768;

// Percentages that the parts of the work are told to take.
constexpr uint32_t TurnPart = 20;
constexpr uint32_t MirrorPart = 5;

// How far the rows slide, one after the other: as far as a line of the angle goes aside, in whole pixels.
class Slide {
  public:
    explicit Slide(int32_t angle)
        : sine_(Z_SinValue(std::abs(angle))), cosine_(Z_SinValue(RightAngle - std::abs(angle))) {}

    int64_t Total(int32_t rows) const { return int64_t{sine_} * rows / cosine_; }

    int64_t Offset() const { return offset_; }
    void Step() {
        offset_ += sine_ / cosine_;
        error_ += sine_ % cosine_;
        if (error_ <= cosine_) return;
        error_ -= cosine_;
        ++offset_;
    }

  private:
    int32_t sine_, cosine_; // from the table
    int64_t offset_ = 0;
    int32_t error_ = 0;
};

struct Shear {
    int32_t Angle;
    uint32_t Fill;
    uint32_t Start; // of the reports
    uint32_t End;
};

class RowShear {
  public:
    RowShear(BitmapHandle& result, BitmapHandle& source, uint32_t fill)
        : result_(result), source_(source), filled_(result), sourceRow_(source), resultRow_(result) {
        if (!*this) return;
        std::memset(filled_.data(), 0, result.BytesPerLine);
        FillRowWithColor(result, fill, filled_.data(), result.Width);
        isInk_ = filled_[0] != 0;
    }
    explicit operator bool() const { return filled_ && sourceRow_ && resultRow_; }

    ReturnCode Place(int32_t row, uint32_t offset) {
        if (storage::IsCompressed(result_) && storage::IsCompressed(source_)) return PlaceRuns(row, offset);
        const uint8_t* pixels = nullptr;
        const ReturnCode status = FetchRow(source_, row, sourceRow_.data(), pixels);
        if (status != code::Success) return status;
        return StoreRow(result_, row, resultRow_.data(),
                        [&](uint8_t* target) { PlacePixels(target, pixels, offset); });
    }

  private:
    void PlacePixels(uint8_t* target, const uint8_t* pixels, uint32_t offset) {
        const auto bits = static_cast<uint64_t>(source_.BitsPerPixel),
                   count = bits * static_cast<uint64_t>(source_.Width);
        std::memcpy(target, filled_.data(), result_.BytesPerLine);
        if (DepthOf(source_.BitsPerPixel).Packed == Packing::Pairs)
            BitMerge<false>({target, offset * bits}, {pixels, 0}, count).Run();
        else
            BitMerge<true>({target, offset * bits}, {pixels, 0}, count).Run();
    }

    ReturnCode PlaceRuns(int32_t row, uint32_t offset) {
        runs::RunWriter writer(storage::CompressedBlockOf(result_)->ScratchRow, false);
        runs::RunReader reader = storage::RunsOf(source_, row).Reader();
        const auto width = static_cast<uint32_t>(source_.Width);
        writer.Append(offset, isInk_);
        writer.AppendRuns(reader, width);
        writer.Append(static_cast<uint32_t>(result_.Width) - width - offset, isInk_);
        const storage::RunList list = {storage::CompressedBlockOf(result_)->ScratchRow, writer.Words()};
        return storage::StoreRunList(result_, row, list) ? code::Success : code::OutOfMemory;
    }

    BitmapHandle& result_;
    BitmapHandle& source_;
    ScratchRow filled_, sourceRow_, resultRow_;
    bool isInk_ = false; // the fill of runs
};

// Rows are counted from the lowest one of the picture; where columns of the picture are stored as rows, from
// that side where the slide begins.
ReturnCode SlideRows(BitmapHandle& result, BitmapHandle& source, const Shear& shear) {
    const BitmapLock sourceLock(&source), resultLock(&result);
    RowShear rows(result, source, shear.Fill);
    if (!rows) return code::OutOfMemory;
    const int32_t view = source.ViewPerspective;
    const bool isMirrored = shear.Angle < 0, mirrorsRows = isMirrored && !ExchangesAxes(view);
    const bool isUpward = view == view::BottomLeft || view == view::BottomRight || view == view::LeftTop ||
                          view == view::RightBottom;
    const bool startsAtFirst = isUpward != (isMirrored && !mirrorsRows);
    const int64_t total = int64_t{result.Width} - source.Width;
    Slide slide(shear.Angle);
    RowProgress progress(shear.Start, shear.End, source.Height);
    ReturnCode status = progress.Begin();
    for (int32_t i = 0; i < source.Height && status == code::Success; ++i, slide.Step()) {
        const int64_t offset = mirrorsRows ? total - slide.Offset() : slide.Offset();
        status = rows.Place(startsAtFirst ? i : source.Height - 1 - i, static_cast<uint32_t>(offset));
        if (status == code::Success) status = progress.Visit();
    }
    return status;
}

// As Z_ReverseBitmap does, which exchanges rows where these are columns of the picture.
ReturnCode MirrorRegion(BitmapHandle& bitmap) {
    return ExchangesAxes(bitmap.ViewPerspective) ? Dispatch().FlipBitmapRegion(&bitmap)
                                                 : Dispatch().ReverseRegion(&bitmap);
}

// The region goes the long way that pixels are spared: it is mirrored before and after for a negative angle.
ReturnCode ShearRegionInto(BitmapHandle& result, BitmapHandle& source, int32_t angle) {
    BitmapHandle mirrored = source;
    mirrored.Region = nullptr;
    ReturnCode status = CopyRegion(mirrored, source, 0, 0);
    if (status == code::Success && angle < 0) status = MirrorRegion(mirrored);
    if (status == code::Success) status = CopyRegion(result, mirrored, 0, 0);
    ReleaseRegion(mirrored);
    if (status == code::Success) status = Dispatch().ShearRegion(&result, angle);
    if (status == code::Success && angle < 0) status = MirrorRegion(result);
    return status;
}

ReturnCode Sheared(BitmapHandle& result, BitmapHandle& source, const Shear& shear) {
    const int64_t width = source.Width + Slide(shear.Angle).Total(source.Height);
    ReturnCode status = Z_DupBitmapNewDim(&result, &source, static_cast<int32_t>(width), source.Height,
                                          source.BitsPerPixel, Z_DUP_DATA);
    result.Region = nullptr;
    if (status == code::Success) status = SlideRows(result, source, shear);
    if (status == code::Success) status = ShearRegionInto(result, source, shear.Angle);
    return status;
}

bool FitsRow(int32_t width, int32_t height, int32_t bits, int32_t angle) {
    return (width + Slide(angle).Total(height)) * bits / 8 <= MostRowBytes;
}

ReturnCode ShearRows(BitmapHandle& bitmap, int32_t angle, uint32_t fill) {
    if (!FitsRow(bitmap.Width, bitmap.Height, bitmap.BitsPerPixel, angle)) return code::InvalidArgument;
    const uint32_t mirrorPart = angle < 0 ? MirrorPart : 0;
    BitmapReplacement replacement(&bitmap, Z_DUP_DATA | Z_DUP_REGION);
    const ReturnCode status =
        Sheared(replacement.record(), bitmap, {angle, fill, mirrorPart, 100 - mirrorPart});
    if (status == code::Success) replacement.Commit();
    return status;
}

ReturnCode ShearColumns(BitmapHandle& bitmap, int32_t angle, uint32_t fill) {
    if (!FitsRow(bitmap.Height, bitmap.Width, bitmap.BitsPerPixel, angle)) return code::InvalidArgument;
    const uint32_t start = TurnPart + (angle < 0 ? MirrorPart : 0), end = 100 - start;
    BitmapReplacement replacement(&bitmap, Z_DUP_DATA | Z_DUP_REGION);
    BitmapHandle& result = replacement.record();
    {
        BitmapReplacement beside(&bitmap, Z_DUP_DATA | Z_DUP_REGION); // never takes the bitmap's place
        BitmapHandle& turned = beside.record();
        ReturnCode status = MakeQuarterTurn(turned, bitmap, 1, Z_DUP_DATA | Z_DUP_REGION, 0, TurnPart);
        if (status == code::Success)
            status = Dispatch().RotateRegion(&turned, bitmap.Width, bitmap.Height, RightAngle);
        if (status == code::Success) status = Sheared(result, turned, {angle, fill, start, end});
        if (status != code::Success) return status;
    }
    const ReturnCode status = Z_RotateBitmap90(&result, 0, end, 100);
    if (status == code::Success) replacement.Commit();
    return status;
}

} // namespace

} // namespace zkr::geometry

using namespace zkr;

ReturnCode Z_CALL Z_ShearBitmap(BitmapHandle* bitmap, int32_t angle, int32_t horizontal, uint32_t fill) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (angle <= -geometry::RightAngle || angle >= geometry::RightAngle) return code::InvalidArgument;
    const bool slidesRows = (horizontal != 0) != ExchangesAxes(bitmap->ViewPerspective);
    return slidesRows ? geometry::ShearRows(*bitmap, angle, fill)
                      : geometry::ShearColumns(*bitmap, angle, fill);
}
