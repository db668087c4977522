#include "display/paint/bands.h"

#include "core/scratch.h"
#include "core/sizes.h"
#include "geometry/kernels/turn_kernels.h"
#include "kernels/family.h"
#include "zkr13n/convert.h"

#include <algorithm>
#include <optional>

namespace zkr {

namespace {

// Rows as a device takes them.
struct Block {
    const uint8_t* Bits;
    int64_t Width;      // pixels, which with their depth tell how far apart rows are
    bool TopDown;       // which row comes first in memory
    int64_t SkipPixels; // at the left, that belong to no picture
};

class BandPainter {
  public:
    BandPainter(const BandTarget& target, BandRows& rows, const Area& part)
        : target_(target), rows_(rows), part_(part), skip_(part.Columns.From - rows.FirstColumn()),
          rowBytes_(RowBytes(rows.Pixels())) {}

    ReturnCode Paint();

  private:
    size_t RowBytes(size_t pixels) const {
        return (pixels * static_cast<size_t>(rows_.Bits()) + 31) / 32 * 4;
    }
    int64_t MostRows() const;
    bool PaintInPlace(ReturnCode& status);
    ReturnCode PaintBand(const Range& rows);
    void MirrorRows(int64_t count);
    Block Turned(int64_t count);
    ReturnCode Show(const Block& block, const Range& rows);

    const BandTarget& target_;
    BandRows& rows_;
    const Area part_;
    const int64_t skip_; // columns in front of the part
    const size_t rowBytes_;
    std::optional<ScratchBuffer<uint8_t>> band_;
    std::optional<ScratchBuffer<uint8_t>> turned_;
};

// Whole groups of eight rows where there are several bands.
int64_t BandPainter::MostRows() const {
    const int64_t all = part_.Rows.Length();
    int64_t most = std::max<int64_t>(static_cast<int64_t>(MostBandBytes / rowBytes_), 1);
    if (target_.Placed.Turned) {
        // Turned rows are padded too.
        const size_t bitsAcross = rows_.Pixels() * static_cast<size_t>(rows_.Bits());
        const int64_t turned = static_cast<int64_t>(MostBandBytes * 8 / bitsAcross) - 31;
        most = std::clamp<int64_t>(turned, 1, most);
    }
    if (most >= all) return all;
    return most > 8 ? most / 8 * 8 : most;
}

// What stands in memory as a device takes it goes there in one piece.
bool BandPainter::PaintInPlace(ReturnCode& status) {
    const Placement& placed = target_.Placed;
    if (placed.Turned || placed.Columns.Reversed) return false;
    const uint8_t* first = rows_.InPlace(part_.Rows.From);
    if (first == nullptr) return false;
    status = Show({first, placed.Columns.Size, !placed.Rows.Reversed, part_.Columns.From}, part_.Rows);
    return true;
}

ReturnCode BandPainter::Paint() {
    ReturnCode status = code::Success;
    if (PaintInPlace(status)) return status;
    const Placement& placed = target_.Placed;
    const int64_t height = MostRows(), count = part_.Rows.Length();
    const auto most = static_cast<size_t>(height);
    if (rowBytes_ > SIZE_MAX / 2 / most) return code::OutOfMemory;
    if (!band_.emplace(rowBytes_ * most)) return code::OutOfMemory;
    if (placed.Turned && !turned_.emplace(RowBytes(most) * rows_.Pixels())) return code::OutOfMemory;

    // From the bottom of the device up, unless rows have to come in their order.
    const bool backwards = !placed.Turned && !placed.Rows.Reversed && !rows_.RunsForwards();
    for (int64_t done = 0; done < count && status == code::Success; done += height) {
        const int64_t length = std::min(height, count - done);
        const int64_t first = backwards ? part_.Rows.To - done - length : part_.Rows.From + done;
        status = PaintBand({first, first + length});
    }
    return status;
}

ReturnCode BandPainter::PaintBand(const Range& rows) {
    const ReturnCode status =
        rows_.Make(rows.From, static_cast<size_t>(rows.Length()), band_->data(), rowBytes_);
    if (status != code::Success) return status;
    const Placement& placed = target_.Placed;
    const auto pixels = static_cast<int64_t>(rows_.Pixels());
    if (placed.Turned) return Show(Turned(rows.Length()), rows);
    if (placed.Columns.Reversed) MirrorRows(rows.Length());
    return Show({band_->data(), pixels, !placed.Rows.Reversed, placed.Columns.Reversed ? 0 : skip_}, rows);
}

void BandPainter::MirrorRows(int64_t count) {
    for (int64_t row = 0; row < count; ++row)
        Z_MirrorLine(band_->data() + static_cast<size_t>(row) * rowBytes_,
                     static_cast<int32_t>(rows_.Pixels()), rows_.Bits());
}

// Columns become rows, the lowest first.
Block BandPainter::Turned(int64_t count) {
    const Placement& placed = target_.Placed;
    const auto height = static_cast<ptrdiff_t>(rows_.Pixels());
    const auto stride = static_cast<ptrdiff_t>(RowBytes(static_cast<size_t>(count)));
    kernels::TurnBlock block = {.Source = band_->data(),
                                .SourceStride = static_cast<ptrdiff_t>(rowBytes_),
                                .Target = turned_->data(),
                                .TargetStride = stride,
                                .Columns = rows_.Pixels(),
                                .Rows = static_cast<size_t>(count),
                                .Bits = rows_.Bits()};
    if (placed.Rows.Reversed) {
        block.Source += (count - 1) * block.SourceStride;
        block.SourceStride = -block.SourceStride;
    }
    if (!placed.Columns.Reversed) {
        block.Target += (height - 1) * stride;
        block.TargetStride = -stride;
    }
    kernels::Chosen<kernels::TurnKernels>().Of(block.Bits)(block);
    return {turned_->data() + (placed.Columns.Reversed ? skip_ * stride : 0), count, false, 0};
}

ReturnCode BandPainter::Show(const Block& block, const Range& rows) {
    const Area place = target_.Placed.OnDevice({part_.Columns, rows});
    if (place.And(target_.Seen).IsEmpty()) return code::Success;
    const auto width = static_cast<int>(place.Columns.Length()),
               height = static_cast<int>(place.Rows.Length());
    PaintState& state = target_.State;
    BITMAPINFOHEADER& header = state.Block.Header;
    header.biSize = sizeof header;
    header.biWidth = static_cast<int32_t>(block.Width);
    header.biHeight = block.TopDown ? -height : height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<uint16_t>(rows_.Bits());
    header.biCompression = BI_RGB;
    header.biSizeImage = 0;
    header.biClrUsed = header.biClrImportant = 0;
    const BlockHeader* shown = &state.Block;
    if (platform::GetDeviceCaps(target_.Context, TECHNOLOGY) == DT_RASPRINTER) {
        state.PrinterBlock = state.Block;
        shown = &state.PrinterBlock;
    }
    const int done = platform::StretchDIBits(
        target_.Context, static_cast<int>(place.Columns.From), static_cast<int>(place.Rows.From), width,
        height, static_cast<int>(block.SkipPixels), 0, width, height, block.Bits, shown->AsInfo(),
        target_.ByIndex && rows_.Bits() <= 8 ? DIB_PAL_COLORS : DIB_RGB_COLORS, target_.Operation);
    return done == 0 ? code::OutOfMemory : code::Success;
}

} // namespace

ReturnCode PaintBands(const BandTarget& target, BandRows& rows, const Area& part) {
    return BandPainter(target, rows, part).Paint();
}

} // namespace zkr
