// The target is made in tiles: bands of rows, each from left to right. So the part of the source that is at hand stays
// small, whatever the angle; where the source does not lie in memory, that part is read into a window.
#include "geometry/rotate/rotate_rows.h"

#include "colour/pixels/fill_row.h"
#include "core/exact_rows.h"
#include "core/predicates.h"
#include "core/row_access.h"
#include "core/scratch.h"
#include "kernels/family.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace zkr::geometry {

namespace {

using kernels::RotateForm;
using kernels::RotatePosition;
using kernels::RotateSource;

// Multiples of 8, so that tiles begin at whole bytes; of bits, more pixels fit into the cache.
constexpr int32_t TileSide = 256, TileSideOfBits = 512;

// How far around its place an interpolation looks, and one pixel for the rounding of the place.
constexpr int32_t Reach = 4;

RotateForm FormOf(const BitmapHandle& bitmap) {
    switch (bitmap.BitsPerPixel) {
    case 8: return RotateForm::Gray8;
    case 12: return RotateForm::Gray12;
    case 16: return bitmap.Order == Z_ORDER_GRAY ? RotateForm::Gray16 : RotateForm::Colour16;
    case 24: return RotateForm::Bytes3;
    case 32: return RotateForm::Bytes4;
    case 48: return RotateForm::Words3;
    case 64: return RotateForm::Words4;
    default: return RotateForm::Bits;
    }
}

// Puts pixels of a byte each into fields from the top bit down; the bits behind the last one become 0.
void PackBits(const uint8_t* pixels, int32_t count, int32_t bits, uint8_t* target) {
    for (; bits == 1 && count >= 8; count -= 8, pixels += 8) {
        // Each factor moves one of the eight bits to its place in the top byte.
        uint64_t eight;
        std::memcpy(&eight, pixels, 8);
        *target++ = static_cast<uint8_t>(eight * 0x8040201008040201u >> 56);
    }
    uint32_t held = 0;
    int32_t heldBits = 0;
    for (int32_t i = 0; i < count; ++i) {
        held = held << bits | pixels[i];
        heldBits += bits;
        if (heldBits < 8) continue;
        heldBits -= 8;
        *target++ = static_cast<uint8_t>(held >> heldBits);
    }
    if (heldBits > 0) *target = static_cast<uint8_t>(held << (8 - heldBits));
}

// Puts 12-bit values of a word each into triples of bytes.
void PackGray12(const uint8_t* pixels, int32_t count, uint8_t* target) {
    for (int32_t i = 0; i < count; i += 2, pixels += 4, target += 3) {
        uint16_t pair[2] = {};
        std::memcpy(pair, pixels, i + 1 < count ? 4 : 2);
        const uint32_t triple = pair[0] | static_cast<uint32_t>(pair[1]) << 12;
        std::memcpy(target, &triple, i + 1 < count ? 3 : 2);
    }
}

// A rectangle of the source: pixels, ends not included.
struct Box {
    int32_t Left, Top, Right, Bottom;
};

// The columns of a source row that a tile looks at: those between two pairs of parallel lines.
class TileColumns {
  public:
    TileColumns(const RotatePosition& first, double cosine, double sine, int32_t columns, int32_t rows)
        : x_(first.X), y_(first.Y) {
        Between(cosine, sine, columns - 1);
        Between(-sine, cosine, rows - 1);
    }

    // In whole bytes of any depth, within the box.
    Box InRow(int32_t row, const Box& box) const {
        double left = box.Left, right = box.Right;
        for (int i = 0; i < lines_; ++i) {
            const double middle = x_ + slope_[i] * (row - y_);
            left = std::max(left, middle + from_[i]);
            right = std::min(right, middle + to_[i]);
        }
        if (left >= right) return {box.Left, row, box.Left, row};
        return {static_cast<int32_t>(left) / 8 * 8, row,
                std::min(static_cast<int32_t>(right) / 8 * 8 + 8, box.Right), row + 1};
    }

  private:
    // 0 <= x * across + y * down <= most, for places that are counted from the tile's first one.
    void Between(double across, double down, int32_t most) {
        constexpr double beside = Reach + 4, steep = 1.0 / 64;
        if (std::abs(across) < steep) return;
        const double least = -beside / across, end = (most + beside) / across;
        slope_[lines_] = -down / across;
        from_[lines_] = std::min(least, end);
        to_[lines_++] = std::max(least, end);
    }

    double x_, y_;
    double slope_[2] = {}, from_[2] = {}, to_[2] = {};
    int lines_ = 0;
};

class RowRotation {
  public:
    RowRotation(BitmapHandle& target, BitmapHandle& source, const RotationPlan& plan)
        : target_(target), source_(source), plan_(plan), bits_(source.BitsPerPixel),
          tileSide_(source.BitsPerPixel < 8 ? TileSideOfBits : TileSide),
          kernel_(kernels::Chosen<kernels::RotateKernels>().Of(plan.Method, FormOf(source))),
          sourceFirst_(LiesInMemory(source) ? ReachRow(source, 0) : nullptr),
          targetFirst_(LiesInMemory(target) ? ReachRow(target, 0) : nullptr), usesWindow_(UsesWindow()),
          bandRows_(RowsOfBand()),
          band_(targetFirst_ != nullptr ? 1 : static_cast<size_t>(bandRows_) * target.BytesPerLine),
          window_(usesWindow_ ? WindowBytes() : 1), positions_(static_cast<size_t>(bandRows_)) {}

    explicit operator bool() const { return band_ && window_ && positions_; }

    ReturnCode Run(RowProgress& progress) {
        FillRowWithColor(target_, plan_.Fill, all_.Fill, 1);
        all_.StepX = plan_.Cosine;
        all_.StepY = plan_.Sine;
        all_.Bits = bits_;
        ReturnCode status = code::Success;
        RotatePosition first = plan_.First;
        for (int32_t row = 0; row < target_.Height && status == code::Success; row += rows_) {
            rows_ = std::min(bandRows_, target_.Height - row);
            for (int32_t i = 0; i < rows_; ++i, first.Step(-plan_.Sine, plan_.Cosine))
                positions_[static_cast<size_t>(i)] = first;
            if (targetFirst_ == nullptr)
                std::memset(band_.data(), 0, static_cast<size_t>(rows_) * target_.BytesPerLine);
            for (int32_t column = 0, columns; column < target_.Width && status == code::Success;
                 column += columns) {
                columns = std::min(tileSide_, target_.Width - column);
                status = RotateTile(row, column, columns);
            }
            for (int32_t i = 0; i < rows_ && status == code::Success; ++i) {
                if (targetFirst_ == nullptr)
                    status = WriteExactly(target_, RowAt(row, i), row + i, 0, target_.BytesPerLine);
                if (status == code::Success) status = progress.Visit();
            }
        }
        return status;
    }

  private:
    // A slanted line through memory meets new rows all the time, which cost more where they lie far apart than a copy
    // of them that lies close together.
    bool UsesWindow() const {
        constexpr int32_t slant = kernels::RotateUnit / 16;
        constexpr size_t small = size_t{1} << 18;
        return sourceFirst_ == nullptr || (std::abs(plan_.Sine) > slant && source_.Size > small);
    }
    int32_t RowsOfBand() const {
        constexpr uint32_t enough = 4u << 20;
        if (targetFirst_ != nullptr) return tileSide_;
        return std::clamp(static_cast<int32_t>(enough / std::max(target_.BytesPerLine, 1u)), 8, tileSide_);
    }

    // The longest side that a tile can have in the source.
    int32_t MostSide() const { return tileSide_ + bandRows_ + 2 * Reach + 8; }
    size_t WindowStride() const {
        return static_cast<size_t>(MostSide()) * static_cast<size_t>(bits_) / 8 + 8;
    }
    size_t WindowBytes() const { return WindowStride() * static_cast<size_t>(MostSide() + 1); }

    uint8_t* RowAt(int32_t row, int32_t index) {
        const auto bytes = static_cast<size_t>(target_.BytesPerLine);
        return targetFirst_ != nullptr ? targetFirst_ + static_cast<size_t>(row + index) * bytes
                                       : band_.data() + static_cast<size_t>(index) * bytes;
    }

    ReturnCode RotateTile(int32_t row, int32_t column, int32_t columns) {
        Box box = {0, 0, source_.Width, source_.Height};
        const ReturnCode status = usesWindow_ ? ReadWindow(columns, box) : code::Success;
        if (status != code::Success) return status;
        if (!usesWindow_) {
            all_.Source = sourceFirst_;
            all_.Stride = static_cast<ptrdiff_t>(source_.BytesPerLine);
        }
        all_.Left = -box.Left, all_.Right = source_.Width - box.Left;
        all_.Top = -box.Top, all_.Bottom = source_.Height - box.Top;
        const size_t offset = static_cast<size_t>(int64_t{column} * bits_ / 8);
        for (int32_t i = 0; i < rows_; ++i) {
            RotatePosition& at = positions_[static_cast<size_t>(i)];
            at.X -= box.Left, at.Y -= box.Top;
            RotatePart(at, RowAt(row, i) + offset, columns);
            at.X += box.Left, at.Y += box.Top;
        }
        return code::Success;
    }

    void RotatePart(RotatePosition& at, uint8_t* target, int32_t columns) {
        if (bits_ < 8) {
            kernel_(all_, at, unpacked_, columns);
            PackBits(unpacked_, columns, bits_, target);
        } else if (bits_ == 12) {
            kernel_(all_, at, unpacked_, columns);
            PackGray12(unpacked_, columns, target);
        } else {
            kernel_(all_, at, target, columns);
        }
    }

    // The part of the source that a tile of the band looks at; the window then begins at its corner.
    ReturnCode ReadWindow(int32_t columns, Box& box) {
        box = BoxOfTile(columns);
        all_.Source = window_.data();
        all_.Stride = static_cast<ptrdiff_t>(WindowStride());
        if (box.Left >= box.Right || box.Top >= box.Bottom) {
            box = {0, 0, 0, 0};
            return code::Success;
        }
        uint8_t* to = window_.data();
        if (sourceFirst_ != nullptr) {
            CopyWindow(columns, box);
            return code::Success;
        }
        const auto bytes = static_cast<uint32_t>((int64_t{box.Right - box.Left} * bits_ + 7) / 8);
        ReturnCode status = code::Success;
        for (int32_t row = box.Top; row < box.Bottom && status == code::Success; ++row, to += all_.Stride)
            status = ReadExactly(source_, to, row, box.Left, bytes);
        return status;
    }

    // Of the corners that the tile leaves empty nothing.
    void CopyWindow(int32_t columns, const Box& box) {
        constexpr double unit = kernels::RotateUnit;
        const TileColumns wanted(positions_[0], plan_.Cosine / unit, plan_.Sine / unit, columns, rows_);
        const auto bytesTo = [this](int32_t pixels) {
            return static_cast<size_t>((int64_t{pixels} * bits_ + 7) / 8);
        };
        const uint8_t* from = sourceFirst_ + static_cast<size_t>(box.Top) * source_.BytesPerLine;
        uint8_t* to = window_.data();
        for (int32_t row = box.Top; row < box.Bottom;
             ++row, to += all_.Stride, from += source_.BytesPerLine) {
            const Box part = wanted.InRow(row, box);
            std::memcpy(to + bytesTo(part.Left - box.Left), from + bytesTo(part.Left),
                        bytesTo(part.Right - part.Left));
        }
    }

    Box BoxOfTile(int32_t columns) {
        const RotatePosition& top = positions_[0];
        const RotatePosition& bottom = positions_[static_cast<size_t>(rows_ - 1)];
        const auto along = [columns](int32_t step) {
            return static_cast<int32_t>(int64_t{columns - 1} * step / kernels::RotateUnit);
        };
        const int32_t dx = along(plan_.Cosine), dy = along(plan_.Sine);
        const auto [left, right] = std::minmax({top.X, bottom.X, top.X + dx, bottom.X + dx});
        const auto [first, last] = std::minmax({top.Y, bottom.Y, top.Y + dy, bottom.Y + dy});
        return {std::max(left - Reach, 0) / 8 * 8, std::max(first - Reach, 0),
                std::min(right + Reach + 1, source_.Width), std::min(last + Reach + 1, source_.Height)};
    }

    BitmapHandle& target_;
    BitmapHandle& source_;
    const RotationPlan& plan_;
    int32_t bits_, tileSide_;
    kernels::RotateKernel kernel_;
    uint8_t *sourceFirst_, *targetFirst_; // null where rows do not lie in one piece
    bool usesWindow_;
    int32_t bandRows_;
    int32_t rows_ = 0; // of the band at hand
    RotateSource all_{};
    ScratchBuffer<uint8_t> band_, window_;
    ScratchBuffer<RotatePosition> positions_; // of each row of the band, at the tile at hand
    uint8_t unpacked_[TileSideOfBits];
};

} // namespace

ReturnCode RotateRows(BitmapHandle& target, BitmapHandle& source, const RotationPlan& plan,
                      RowProgress& progress) {
    RowRotation rotation(target, source, plan);
    return rotation ? rotation.Run(progress) : code::OutOfMemory;
}

} // namespace zkr::geometry
