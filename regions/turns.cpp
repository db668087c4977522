// Rotation and shear. A turned region is looked up pixel by pixel in a picture of its bits, along lines whose walk is
// that of a turning bitmap; a row is looked up only as far as it meets the region's bounds.
#include "regions/turns.h"

#include "core/flags.h"
#include "core/views.h"
#include "regions/bit_picture.h"
#include "regions/moves.h"
#include "zkr13n/rotate.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace zkr {

namespace {

using kernels::BitRowKernels;
using kernels::BitRowWords;
using kernels::TurnedCoordinate;

constexpr int64_t FullTurn = 36000; // hundredths of a degree
constexpr int64_t Unit = TurnedCoordinate::Unit;

// What a place of the turned bitmap was before: the old centre plus (dx cos - dy sin, dx sin + dy cos) / Unit.
struct Turn {
    Turn(const BitmapHandle& bitmap, int32_t oldWidth, int32_t oldHeight, int32_t angle)
        : Sine(Z_SinValue(angle)), Cosine(Z_CosValue(angle)), OldX(oldWidth / 2), OldY(oldHeight / 2),
          NewX(bitmap.Width / 2), NewY(bitmap.Height / 2) {}

    int32_t Sine, Cosine;
    int32_t OldX, OldY, NewX, NewY; // centres

    // Walks along a row from the first column of an area.
    TurnedCoordinate SourceX(int64_t column, int64_t row) const {
        return StartOf(OldX, (column - NewX) * Cosine - (row - NewY) * Sine, Cosine);
    }
    TurnedCoordinate SourceY(int64_t column, int64_t row) const {
        return StartOf(OldY, (column - NewX) * Sine + (row - NewY) * Cosine, Sine);
    }
    // Where the region's bounds come to lie, and two pixels more on each side.
    PixelRect AreaOf(const PixelRect& bounds) const;
    // Where the walks through an area come from, likewise.
    PixelRect SourceOf(const PixelRect& area) const;

  private:
    static TurnedCoordinate StartOf(int32_t centre, int64_t distance, int32_t step) {
        return {Saturated(centre + distance / Unit), static_cast<int32_t>(distance % Unit), step};
    }
};

// Around the places of a rectangle's corner pixels, with a margin for what walks and divisions leave out.
template <typename PlaceOf> PixelRect AroundCorners(const PixelRect& rectangle, PlaceOf placeOf) {
    constexpr int64_t margin = 2;
    int64_t left = INT64_MAX, top = INT64_MAX, right = INT64_MIN, bottom = INT64_MIN;
    for (const int64_t x : {int64_t{rectangle.Left}, int64_t{rectangle.Right} - 1}) {
        for (const int64_t y : {int64_t{rectangle.Top}, int64_t{rectangle.Bottom} - 1}) {
            const auto [column, row] = placeOf(x, y);
            left = std::min(left, column);
            right = std::max(right, column);
            top = std::min(top, row);
            bottom = std::max(bottom, row);
        }
    }
    return {Saturated(left - margin), Saturated(top - margin), Saturated(right + 1 + margin),
            Saturated(bottom + 1 + margin)};
}

PixelRect Turn::AreaOf(const PixelRect& bounds) const {
    return AroundCorners(bounds, [this](int64_t x, int64_t y) {
        const int64_t dx = x - OldX, dy = y - OldY;
        return std::pair{NewX + (dx * Cosine + dy * Sine) / Unit, NewY + (dy * Cosine - dx * Sine) / Unit};
    });
}

PixelRect Turn::SourceOf(const PixelRect& area) const {
    return AroundCorners(area, [this](int64_t column, int64_t row) {
        return std::pair{int64_t{SourceX(column, row).Whole}, int64_t{SourceY(column, row).Whole}};
    });
}

// The same walk, from row to row.
void StepToNextRow(TurnedCoordinate& coordinate, int32_t step) {
    const TurnedCoordinate down = TurnedCoordinate{coordinate.Whole, coordinate.Remainder, step}.From(1);
    coordinate.Whole = down.Whole;
    coordinate.Remainder = down.Remainder;
}

struct Steps {
    int64_t First, End;
};

// The first of some steps at which a coordinate that only rises, or only falls, has passed a line.
int64_t FirstBeyond(const TurnedCoordinate& coordinate, int64_t line, Steps steps) {
    while (steps.First < steps.End) {
        const int64_t middle = steps.First + (steps.End - steps.First) / 2;
        const int64_t at = coordinate.At(middle);
        if (coordinate.Step < 0 ? at < line : at >= line)
            steps.End = middle;
        else
            steps.First = middle + 1;
    }
    return steps.First;
}

// The steps at which a coordinate lies from `first` to before `end`.
Steps StepsWithin(const TurnedCoordinate& coordinate, int64_t first, int64_t end, Steps steps) {
    const bool falls = coordinate.Step < 0;
    const int64_t enters = FirstBeyond(coordinate, falls ? end : first, steps);
    return {enters, FirstBeyond(coordinate, falls ? first : end, {enters, steps.End})};
}

// Of a region with pixels.
class TurnedRegion {
  public:
    TurnedRegion(const RegionHandle& region, const Turn& turn, const PixelRect& area)
        : region_(region), turn_(turn), area_(area),
          seen_(Intersection(BoundsOf(region), turn.SourceOf(area))),
          picture_(BitRowWords(static_cast<size_t>(seen_.Width())), seen_.Height()),
          row_(BitRowWords(static_cast<size_t>(area.Width()))) {}

    ReturnCode Make(OwnedRegion& result) {
        // Places in the picture are counted in 32 bits.
        if (!picture_ || !row_ || seen_.Width() > INT32_MAX || seen_.Height() > INT32_MAX)
            return code::OutOfMemory;
        RegionBuilder builder;
        ReturnCode status = builder.Begin(area_, EntriesOf(region_));
        if (status != code::Success) return status;
        DrawPicture();
        TurnedCoordinate x = turn_.SourceX(area_.Left, area_.Top), y = turn_.SourceY(area_.Left, area_.Top);
        for (int64_t row = area_.Top; row < area_.Bottom && status == code::Success; ++row) {
            status = builder.EndRow(MakeRow(x, y, builder.Room()));
            StepToNextRow(x, -turn_.Sine);
            StepToNextRow(y, turn_.Cosine);
        }
        if (status == code::Success) builder.Finish(result);
        return status;
    }

  private:
    void DrawPicture() {
        for (int64_t row = seen_.Top; row < seen_.Bottom; ++row) {
            const Runs runs = RowRuns(region_, row);
            kernels_.BitsOfRuns(runs.data(), runs.size(), seen_.Left, picture_.Row(row - seen_.Top),
                                static_cast<size_t>(seen_.Width()));
        }
    }

    size_t MakeRow(const TurnedCoordinate& x, const TurnedCoordinate& y, int32_t* ends) {
        Steps steps = StepsWithin(x, seen_.Left, seen_.Right, {0, area_.Width()});
        steps = StepsWithin(y, seen_.Top, seen_.Bottom, steps);
        if (steps.First >= steps.End) return 0;
        constexpr int64_t most = BitRowKernels::TurnedPixels;
        for (int64_t done = steps.First; done < steps.End; done += most) {
            TurnedCoordinate column = x.From(done), row = y.From(done);
            column.Whole -= seen_.Left;
            row.Whole -= seen_.Top;
            kernels_.TurnedBits(picture_.Picture(), column, row,
                                static_cast<size_t>(std::min(most, steps.End - done)),
                                row_.data() + (done - steps.First) / 64);
        }
        return kernels_.RunsOfBits(row_.data(), static_cast<size_t>(steps.End - steps.First),
                                   static_cast<int32_t>(area_.Left + steps.First), ends);
    }

    const RegionHandle& region_;
    const Turn& turn_;
    const PixelRect area_;
    const PixelRect seen_; // the part of the region that the area can show
    const BitRowKernels& kernels_ = kernels::Chosen<BitRowKernels>();
    BitPictureBuffer picture_;
    ScratchBuffer<uint64_t> row_;
};

// Moves the rows of a region by distances that grow from row to row.
class Slide {
  public:
    Slide(int64_t firstRow, int32_t sine, int32_t cosine)
        : cosine_(cosine), whole_(sine / cosine), part_(sine % cosine) {
        shift_ = firstRow * whole_ + firstRow * part_ / cosine_;
        remainder_ = firstRow * part_ % cosine_;
        if (remainder_ < 0) {
            remainder_ += cosine_;
            --shift_;
        }
    }
    int64_t shift() const { return shift_; }
    void Step() {
        shift_ += whole_;
        remainder_ += part_;
        if (remainder_ > cosine_) {
            ++shift_;
            remainder_ -= cosine_;
        }
    }

  private:
    int64_t cosine_, whole_, part_, shift_, remainder_;
};

// Calls visit(row, shift) for each row of a bitmap's region, in the order in which shifts grow, while it gives true.
template <typename Visitor> bool SlideRows(const BitmapHandle& bitmap, int32_t angle, Visitor visit) {
    const RegionHandle& region = *RegionOf(bitmap);
    const bool downwards = IsMirroredView(bitmap.ViewPerspective);
    const int64_t first = downwards ? region.Top : int64_t{bitmap.Height} - region.Bottom;
    Slide slide(first, Z_SinValue(angle), Z_CosValue(angle));
    for (int32_t i = 0; i < region.Bottom - region.Top; ++i, slide.Step())
        if (!visit(downwards ? region.Top + i : region.Bottom - 1 - i, slide.shift())) return false;
    return true;
}

} // namespace

ReturnCode RotateRegion(BitmapHandle* bitmap, int32_t oldWidth, int32_t oldHeight, int32_t angleHundredths) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    RegionHandle* const region = RegionOf(*bitmap);
    if (region == nullptr) return code::Success;
    int64_t angle = (FullTurn - angleHundredths % FullTurn) % FullTurn;
    if (angle == 0 || IsEmpty(*region)) return code::Success;
    if (IsMirroredView(bitmap->ViewPerspective)) angle = FullTurn - angle;

    const Turn turn(*bitmap, oldWidth, oldHeight, static_cast<int32_t>(angle));
    PixelRect area = PixelRect::Whole(*bitmap);
    if (HasFlag(*bitmap, flag::RegionUnclipped)) area = Union(area, turn.AreaOf(BoundsOf(*region)));
    OwnedRegion turned;
    const ReturnCode status = TurnedRegion(*region, turn, area).Make(turned);
    if (status == code::Success) ReplaceRuns(*region, turned);
    return status;
}

ReturnCode ShearRegion(BitmapHandle* bitmap, int32_t angleHundredths) {
    if (bitmap == nullptr) return code::InvalidBitmap;
    RegionHandle* const region = RegionOf(*bitmap);
    if (region == nullptr || IsEmpty(*region)) return code::Success;
    const auto angle = static_cast<int32_t>(std::abs(int64_t{angleHundredths}) % FullTurn);
    if (Z_CosValue(angle) == 0) return code::InvalidArgument;

    int64_t left = INT64_MAX, right = INT64_MIN;
    const bool fits = SlideRows(*bitmap, angle, [&](int32_t row, int64_t shift) {
        const Runs runs = RowRuns(*region, row);
        if (runs.empty()) return true;
        left = std::min(left, runs.front() + shift);
        right = std::max(right, runs.back() + shift);
        return FitsInt32(left) && FitsInt32(right);
    });
    if (!fits) return code::InvalidArgument;
    SlideRows(*bitmap, angle, [&](int32_t row, int64_t shift) {
        const RegionRowEntry& entry = region->RowTable[row - region->Top];
        int32_t* const ends = region->Segments + entry.Offset / sizeof(int32_t);
        for (uint32_t i = 0; i < entry.Count; ++i)
            ends[i] = static_cast<int32_t>(ends[i] + shift);
        return true;
    });
    region->Left = static_cast<int32_t>(left);
    region->Right = static_cast<int32_t>(right);
    DropRegionCaches(*region);
    return ClipToBitmap(*bitmap, *region);
}

} // namespace zkr
