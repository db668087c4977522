// Painting: which way suits, what is to be seen, and then bands.
#include "display/paint/paint.h"

#include "core/bitmap_lock.h"
#include "core/predicates.h"
#include "core/sizes.h"
#include "core/views.h"
#include "display/paint/bands.h"
#include "display/paint/classification.h"
#include "display/paint/converted_rows.h"
#include "display/paint/coverage_rows.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/locks.h"
#include "zkr13n/paint.h"

#include <algorithm>
#include <cstdlib>

namespace zkr {

namespace {

class Painting {
  public:
    Painting(const PaintRequest& request, const RowBuffer& buffer)
        : request_(request), buffer_(buffer), bitmap_(*request.Bitmap), state_(CurrentPaintState()),
          mode_(state_.Mode), class_(DeviceClassOf(request.Context)),
          method_(ClassifyPainting(bitmap_, class_, mode_)) {
        if (buffer.Rows.Data != nullptr && method_ > PaintMethod::Dithered) method_ = PaintMethod::AsStored;
    }

    ReturnCode Run();

  private:
    bool FindRectangles();
    bool FindDestination();
    Area WithinDevice(Area device) const;
    Area Needed(const Area& part, const Area& seen) const;
    ReturnCode PaintConverted(const Placement& placement);
    ReturnCode PaintCoverage(const Placement& placement);
    ReturnCode PaintPart(const Placement& placement, BandRows& rows, const Area& part);
    void CutToBuffer(const SourceRows& rows, Area& part) const;
    void FillColours();

    bool IsReversed() const {
        return method_ == PaintMethod::ScaleToGrayReversed || method_ == PaintMethod::CoarseGrayReversed;
    }
    bool ScalesToGray() const {
        return method_ == PaintMethod::ScaleToGray || method_ == PaintMethod::ScaleToGrayReversed;
    }

    const PaintRequest& request_;
    const RowBuffer& buffer_;
    BitmapHandle& bitmap_;
    PaintState& state_;
    const uint32_t mode_;
    const int32_t class_;
    PaintMethod method_;

    Area source_{};     // what the destination shows
    Area sourceClip_{}; // of it what is painted, in the bitmap
    Area device_{};     // the destination, from its lowest edges on
    Area deviceClip_{}; // of it what is painted on
    bool upsideDown_ = false;
};

// False where nothing is to be painted.
bool Painting::FindRectangles() {
    source_ =
        Area::Of(request_.Source != nullptr ? PixelRect::Of(*request_.Source) : PixelRect::Whole(bitmap_));
    if (source_.IsEmpty()) return false;
    sourceClip_ = source_.And(Area::Of(PixelRect::Whole(bitmap_)));
    if (request_.SourceClip != nullptr)
        sourceClip_ = sourceClip_.And(Area::Of(PixelRect::Of(*request_.SourceClip)));
    return FindDestination() && !sourceClip_.IsEmpty();
}

bool Painting::FindDestination() {
    device_ = Area::Of(PixelRect::Of(*request_.Destination));
    upsideDown_ = device_.Rows.IsEmpty();
    if (upsideDown_) std::swap(device_.Rows.From, device_.Rows.To);
    if (device_.IsEmpty()) return false;
    deviceClip_ = device_;
    if (request_.DestinationClip != nullptr)
        deviceClip_ = deviceClip_.And(Area::Of(PixelRect::Of(*request_.DestinationClip)));
    return !deviceClip_.IsEmpty();
}

// What of a part of a display's context can be seen.
Area Painting::WithinDevice(Area device) const {
    RECT box;
    if (platform::GetDeviceCaps(request_.Context, TECHNOLOGY) != DT_RASDISPLAY) return device;
    const int seen = platform::GetClipBox(request_.Context, &box);
    if (seen == NULLREGION) return {};
    return seen == ERROR ? device : device.And(Area::Of(PixelRect::Of(box)));
}

ReturnCode Painting::Run() {
    if (!IsSupportedDepth(bitmap_.BitsPerPixel)) return code::InvalidBitsPerPixel;
    if (!FindRectangles()) return code::Success;
    const bool keepsView =
        bitmap_.ViewPerspective == view::BottomLeft || Z_IsSupportLocked(Z_SUPPORT_DOCUMENT) == 0;
    const Placement placement(bitmap_, source_, device_, keepsView ? bitmap_.ViewPerspective : view::TopLeft,
                              upsideDown_);
    const BitmapLock lock(&bitmap_);
    if (method_ > PaintMethod::Dithered && placement.IsScaled()) return PaintCoverage(placement);
    if (method_ > PaintMethod::ScaleToGrayReversed) method_ = PaintMethod::AsStored;
    return PaintConverted(placement);
}

// What has to be made of a part for what is seen of it. Errors come from all that lies before it, unless that is far more
// than anybody can wait for.
Area Painting::Needed(const Area& part, const Area& seen) const {
    constexpr int64_t mostUnseen = int64_t{1} << 24; // pixels
    const bool diffuses = method_ == PaintMethod::Dithered && (mode_ & DISPLAY_ORDERED) == 0;
    const Area needed = {part.Columns, {part.Rows.From, seen.Rows.To}};
    const bool isNear = needed.Columns.Length() <= mostUnseen / needed.Rows.Length();
    return diffuses && isNear ? needed : seen;
}

ReturnCode Painting::PaintConverted(const Placement& placement) {
    if (placement.Columns.ScaledSize() > INT32_MAX || placement.Rows.ScaledSize() > INT32_MAX)
        return code::InvalidArgument;
    const Area clip = {placement.Columns.Scaled(sourceClip_.Columns),
                       placement.Rows.Scaled(sourceClip_.Rows)};
    Area part = clip.And(placement.FromDevice(deviceClip_));
    if (part.IsEmpty()) return code::Success;
    const Area seen = placement.FromDevice(WithinDevice(placement.OnDevice(part)));
    if (part.And(seen).IsEmpty()) return code::Success;

    part = Needed(part, part.And(seen));
    SourceRows source(bitmap_, buffer_.Rows, placement, part.Columns);
    CutToBuffer(source, part);
    if (part.IsEmpty()) return code::Success;
    ReturnCode status = source.Prepare();
    if (status != code::Success) return status;
    const auto lead = static_cast<size_t>(part.Columns.From - source.FirstColumn());
    RowConversion conversion({bitmap_, method_, class_, mode_, source.Pixels(), lead, part.Rows.Length()});
    status = conversion.Prepare();
    if (status != code::Success) return status;
    ConvertedRows rows(source, conversion);
    return PaintPart(placement, rows, part);
}

// Rows that show one of the buffer's.
void Painting::CutToBuffer(const SourceRows& rows, Area& part) const {
    if (buffer_.Rows.Data == nullptr) return;
    const int64_t end = buffer_.Rows.First + buffer_.Count;
    const auto firstFrom = [&](int64_t row) {
        Range left = part.Rows; // where the first row may be that shows this one or one behind it
        while (!left.IsEmpty()) {
            const int64_t middle = left.From + left.Length() / 2;
            (rows.RowShown(middle) < row ? left.From : left.To) =
                rows.RowShown(middle) < row ? middle + 1 : middle;
        }
        return left.From;
    };
    part.Rows = {firstFrom(buffer_.Rows.First), firstFrom(end)};
}

// Pixels of the destination count from its own edge.
ReturnCode Painting::PaintCoverage(const Placement& placement) {
    Placement fromZero = placement;
    for (PaintAxis* axis : {&fromZero.Columns, &fromZero.Rows})
        axis->Source = {0, axis->Source.Length()};
    const Area clip = {
        {sourceClip_.Columns.From - source_.Columns.From, sourceClip_.Columns.To - source_.Columns.From},
        {sourceClip_.Rows.From - source_.Rows.From, sourceClip_.Rows.To - source_.Rows.From}};
    const Area scaled = {fromZero.Columns.Scaled(clip.Columns), fromZero.Rows.Scaled(clip.Rows)};
    Area part = scaled.And(fromZero.FromDevice(deviceClip_));
    if (part.IsEmpty()) return code::Success;
    part = part.And(fromZero.FromDevice(WithinDevice(fromZero.OnDevice(part))));
    if (part.IsEmpty()) return code::Success;
    CoverageRows rows(bitmap_, {source_, placement.Columns.DeviceSize, placement.Rows.DeviceSize, part,
                                IsReversed(), ScalesToGray()});
    const ReturnCode status = rows.Prepare();
    return status == code::Success ? PaintPart(fromZero, rows, part) : status;
}

ReturnCode Painting::PaintPart(const Placement& placement, BandRows& rows, const Area& part) {
    const bool byIndex = (mode_ & DISPLAY_INDEXED) != 0 && rows.Bits() <= 8;
    if (rows.Bits() <= 8) byIndex ? state_.WriteIdentityWords() : FillColours();
    const BandTarget target = {request_.Context,   placement, WithinDevice(placement.OnDevice(part)),
                               request_.Operation, state_,    byIndex};
    return PaintBands(target, rows, part);
}

// What the indices of a band of up to 8 bits mean.
void Painting::FillColours() {
    RGBQUAD(&colours)[BlockHeader::Colours] = state_.Block.Table;
    if (method_ == PaintMethod::Dithered) {
        const std::span<const RGBQUAD> palette = DitheringPalette(class_, mode_);
        std::copy(palette.begin(), palette.end(), colours);
        return;
    }
    BitmapHandle withoutPalette{};
    ReadPalette(method_ == PaintMethod::AsStored || method_ == PaintMethod::Widened ? bitmap_
                                                                                    : withoutPalette,
                colours);
    if (const uint8_t* table = PaintTableOf(bitmap_)) {
        for (RGBQUAD& colour : colours)
            colour = {table[colour.rgbBlue], table[colour.rgbGreen], table[colour.rgbRed], 0};
    }
}

} // namespace

ReturnCode Paint(const PaintRequest& request, const RowBuffer& buffer) {
    return Painting(request, buffer).Run();
}

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_PaintDC(HDC deviceContext, BitmapHandle* bitmap, const RECT* source,
                            const RECT* sourceClip, const RECT* destination, const RECT* destinationClip,
                            uint32_t rasterOperation) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (destination == nullptr || deviceContext == nullptr) return code::InvalidArgument;
    return Paint({deviceContext, bitmap, source, sourceClip, destination, destinationClip, rasterOperation},
                 {});
}

ReturnCode Z_CALL Z_PaintDCBuffer(HDC deviceContext, BitmapHandle* bitmap, const RECT* source,
                                  const RECT* sourceClip, const RECT* destination,
                                  const RECT* destinationClip, uint32_t rasterOperation, const void* rowData,
                                  int32_t firstRow, int32_t rowCount) {
    if (!IsAllocated(bitmap) || rowData == nullptr) return code::InvalidBitmap;
    if (destination == nullptr || deviceContext == nullptr) return code::InvalidArgument;
    const PaintRequest request = {deviceContext, bitmap,          source,         sourceClip,
                                  destination,   destinationClip, rasterOperation};
    if (rowCount >= 0) {
        const HeldRows rows = {static_cast<const uint8_t*>(rowData), firstRow, bitmap->BytesPerLine};
        return Paint(request, {rows, rowCount});
    }
    if (bitmap->BitsPerPixel != 1) return code::InvalidArgument;

    // Rows behind the bitmap's last are not expanded.
    const int64_t count = std::min<int64_t>(-int64_t{rowCount}, int64_t{bitmap->Height} - firstRow);
    if (count <= 0) return code::Success;
    const uint64_t rowBytes = StorageRowBytes(bitmap->Width, 1),
                   bytes = rowBytes * static_cast<uint64_t>(count);
    ScratchBuffer<uint8_t> expanded(FitsSize(bytes) ? static_cast<size_t>(bytes) : SIZE_MAX);
    if (!expanded) return code::OutOfMemory;
    Z_ExpandRows(static_cast<const uint16_t*>(rowData), expanded.data(), bitmap->Width,
                 static_cast<int32_t>(count));
    return Paint(request, {{expanded.data(), firstRow, static_cast<size_t>(rowBytes)}, count});
}
