// Draws a rectangle of a bitmap into a quadrilateral of another: for each pixel of the quadrilateral's bounds the
// inverse mapping tells where in the rectangle it lies.
#include "zkr13n/warp.h"

#include "core/bitmap_lock.h"
#include "core/exact_rows.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/progress.h"
#include "core/return_codes.h"
#include "core/row_access.h"
#include "core/scratch.h"
#include "core/views.h"
#include "geometry/kernels/warp_kernels.h"
#include "geometry/warp/source_rows.h"
#include "geometry/warp/warp_matrix.h"
#include "kernels/family.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/views.h"

#include <algorithm>
#include <utility>

namespace zkr::warp {

namespace {

constexpr uint32_t UnknownFlags = ~0x3FFu;

// A rectangle of stored pixels.
struct StoredArea {
    int32_t Left;
    int32_t Top;
    int32_t Width;
    int32_t Height;
};

// Entries are compared by twos: those between them do not count, and an odd number of colours never matches.
bool HaveMatchingPalettes(const BitmapHandle& destination, const BitmapHandle& source) {
    RGBQUAD first[256], second[256];
    const uint32_t wanted = std::min<uint32_t>(static_cast<uint32_t>(source.ColorsUsed), 256);
    const uint32_t count = Z_GetBitmapPaletteEntries(&source, 0, wanted, first);
    if (Z_GetBitmapPaletteEntries(&destination, 0, wanted, second) != count || count % 2 != 0) return false;
    for (uint32_t i = 0; i < count; i += 2) {
        if (first[i].rgbRed != second[i].rgbRed || first[i].rgbGreen != second[i].rgbGreen ||
            first[i].rgbBlue != second[i].rgbBlue)
            return false;
    }
    return true;
}

ReturnCode CheckForms(const BitmapHandle& destination, const BitmapHandle& source) {
    const int32_t bits = source.BitsPerPixel;
    if (destination.BitsPerPixel != bits) return code::InvalidBitsPerPixel;
    if (bits < 9 && !HaveMatchingPalettes(destination, source)) return code::InvalidArgument;
    if (bits == 16 && (destination.Order == Z_ORDER_GRAY) != (source.Order == Z_ORDER_GRAY))
        return code::InvalidArgument;
    return code::Success;
}

bool IsBlended(const BitmapHandle& source, uint32_t flags) {
    if ((flags & WARP_BILINEAR) == 0) return false;
    if (source.Order == Z_ORDER_GRAY && source.LevelLUT != nullptr) return false;
    return source.BitsPerPixel != 8 || Z_IsGrayScaleBitmap(&source) == GRAY_ORDEREDNORMAL;
}

// The corners in the order in which they belong to the stored rectangle's corners.
void OrderByView(int32_t view, Corners& p) {
    switch (view) {
    case view::TopRight: std::swap(p[0], p[1]), std::swap(p[2], p[3]); break;
    case view::BottomLeft: std::swap(p[0], p[3]), std::swap(p[1], p[2]); break;
    case view::BottomRight: std::swap(p[0], p[2]), std::swap(p[1], p[3]); break;
    case view::RightTop: std::swap(p[0], p[1]), std::swap(p[2], p[3]), std::swap(p[1], p[3]); break;
    case view::LeftTop: std::swap(p[1], p[3]); break;
    case view::RightBottom: std::swap(p[0], p[2]); break;
    case view::LeftBottom: std::swap(p[0], p[1]), std::swap(p[2], p[3]), std::swap(p[0], p[2]); break;
    default: break;
    }
}

bool IsInView(const BitmapHandle& bitmap, int64_t x, int64_t y) {
    return x >= 0 && y >= 0 && x < ViewedWidth(bitmap) && y < ViewedHeight(bitmap);
}

// Brings the points to the destination's stored pixels.
ReturnCode StorePoints(BitmapHandle& destination, const BitmapHandle& source, Corners& corners) {
    if (!IsView(source.ViewPerspective) || !IsView(destination.ViewPerspective)) return code::InvalidArgument;
    OrderByView(source.ViewPerspective, corners);
    for (POINT& corner : corners) {
        if (!IsInView(destination, corner.x, corner.y)) return code::InvalidArgument;
        int32_t x = corner.x, y = corner.y;
        const ReturnCode status = Z_PointToBitmap(&destination, view::TopLeft, &x, &y);
        if (status != code::Success) return status;
        corner = {x, y};
    }
    return code::Success;
}

ReturnCode StoreArea(BitmapHandle& source, StoredArea& area) {
    if (area.Width < 1 || area.Height < 1) return code::InvalidArgument;
    const int64_t last = int64_t{area.Left} + area.Width - 1, lowest = int64_t{area.Top} + area.Height - 1;
    if (!IsInView(source, area.Left, area.Top) || !IsInView(source, last, lowest))
        return code::InvalidArgument;
    int32_t x0 = area.Left, y0 = area.Top, x1 = static_cast<int32_t>(last), y1 = static_cast<int32_t>(lowest);
    ReturnCode status = Z_PointToBitmap(&source, view::TopLeft, &x0, &y0);
    if (status == code::Success) status = Z_PointToBitmap(&source, view::TopLeft, &x1, &y1);
    area = {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1) - std::min(x0, x1) + 1,
            std::max(y0, y1) - std::min(y0, y1) + 1};
    return status;
}

// Whether two records are one, or copies of one.
bool ShareStorage(const BitmapHandle& a, const BitmapHandle& b) {
    return a.StorageHandle != nullptr ? a.StorageHandle == b.StorageHandle
                                      : a.Addr != nullptr && a.Addr == b.Addr;
}

class Warp {
  public:
    Warp(BitmapHandle& destination, BitmapHandle& source, const Corners& corners, const StoredArea& area,
         bool isBlended)
        : destination_(destination), matrix_(InverseMapping(corners)),
          rows_(source, area.Left, area.Top, area.Width, area.Height), buffer_(destination),
          sharesStorage_(ShareStorage(destination, source)) {
        const auto [left, right] = std::ranges::minmax(corners, {}, &POINT::x);
        const auto [top, bottom] = std::ranges::minmax(corners, {}, &POINT::y);
        left_ = left.x, right_ = right.x, top_ = top.y, bottom_ = bottom.y;

        const auto& kernels = kernels::Chosen<kernels::WarpKernels>();
        const auto bits = static_cast<size_t>(source.BitsPerPixel);
        const bool isColour16 = bits == 16 && source.Order != Z_ORDER_GRAY;
        if (isBlended) draw_ = isColour16 ? kernels.BlendColour16 : kernels.Blend[bits];
        isBlended_ = draw_ != nullptr;
        if (!isBlended_) draw_ = kernels.Copy[bits];
        locate_ = !isBlended_                ? kernels.Nearest
                  : bits == 24 || bits == 32 ? kernels.AroundBytes
                                             : kernels.Around;
    }

    ReturnCode Run() {
        if (!buffer_) return code::OutOfMemory;
        ReturnCode status = rows_.Begin();
        if (status != code::Success) return status;
        // One row more than there are parts: it reports nothing beyond 100.
        Progress progress(StatusReceiver::Status(), bottom_ - top_);
        status = progress.Begin();
        for (int32_t y = top_; y <= bottom_ && status == code::Success; ++y) {
            status = DrawRow(y);
            if (status == code::Success && y < bottom_) status = progress.Step();
        }
        return status;
    }

  private:
    // The row is worked on where it stands if nobody samples it there.
    ReturnCode DrawRow(int32_t y) {
        uint8_t* place = ReachRow(destination_, y);
        if (place != nullptr && !sharesStorage_ && !rows_.Overlaps(place, destination_.BytesPerLine))
            return DrawPieces(y, place);
        ReturnCode status = ReadExactly(destination_, buffer_.data(), y, 0, destination_.BytesPerLine);
        if (status == code::Success) status = DrawPieces(y, buffer_.data());
        if (status == code::Success)
            status = WriteExactly(destination_, buffer_.data(), y, 0, destination_.BytesPerLine);
        if (sharesStorage_) rows_.Forget(y);
        return status;
    }

    ReturnCode DrawPieces(int32_t y, uint8_t* row) {
        const double line = y;
        const kernels::WarpMapping mapping = {
            .XFactor = {matrix_[0], matrix_[3], matrix_[6]},
            .YPart = {line * matrix_[1], line * matrix_[4], line * matrix_[7]},
            .Constant = {matrix_[2], matrix_[5], matrix_[8]}};
        for (int64_t x = left_; x <= right_; x += kernels::WarpPiecePixels) {
            piece_.Pixels = std::min(kernels::WarpPiecePixels, static_cast<size_t>(right_ - x + 1));
            if (!locate_(mapping, rows_.Area(), static_cast<int32_t>(x), piece_)) continue;
            const ReturnCode status = rows_.Prepare(piece_, isBlended_);
            if (status != code::Success) return status;
            draw_(rows_.Area(), piece_, row, static_cast<size_t>(x));
        }
        return code::Success;
    }

    BitmapHandle& destination_;
    std::array<double, 9> matrix_;
    SourceRows rows_;
    ScratchRow buffer_;
    bool sharesStorage_;
    int32_t left_, right_, top_, bottom_; // of the points; all four belong to them
    bool isBlended_ = false;
    kernels::LocatePixels locate_ = nullptr;
    kernels::DrawPixels draw_ = nullptr;
    kernels::WarpPiece piece_;
};

} // namespace

} // namespace zkr::warp

using namespace zkr;
using namespace zkr::warp;

ReturnCode Z_CALL Z_CombineBitmapWarp(BitmapHandle* destination, const WarpPoints* points,
                                      BitmapHandle* source, int32_t left, int32_t top, int32_t width,
                                      int32_t height, uint32_t flags) {
    if ((flags & WARP_REQUIRED) == 0) return code::FeatureMissing;
    if (!IsAllocated(destination) || !IsAllocated(source)) return code::InvalidBitmap;
    if ((flags & UnknownFlags) != 0 || points == nullptr) return code::InvalidArgument;
    Corners corners = {points->TopLeft, points->TopRight, points->BottomRight, points->BottomLeft};
    if (!IsStrictlyConvex(corners)) return code::InvalidArgument;
    ReturnCode status = CheckForms(*destination, *source);
    if (status == code::Success) status = StorePoints(*destination, *source, corners);
    StoredArea area = {left, top, width, height};
    if (status == code::Success) status = StoreArea(*source, area);
    if (status != code::Success) return status;

    const BitmapLock sourceLock(source);
    const BitmapLock destinationLock(destination);
    return Warp(*destination, *source, corners, area, IsBlended(*source, flags)).Run();
}
