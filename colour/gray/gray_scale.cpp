// Brings a bitmap to gray of 8, 12 or 16 bits: what each source form needs is chosen once as a chain of row
// kernels, through which the rows go into a new bitmap.
#include "colour/convert/stages.h"
#include "colour/gray/gray_window.h"
#include "colour/gray/level_table.h"
#include "colour/pixels/colour_value.h"
#include "core/predicates.h"
#include "core/record_like.h"
#include "core/replacement.h"
#include "core/row_access.h"
#include "core/row_walk.h"
#include "core/scratch.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"
#include "zkr13n/playback.h"
#include "zkr13n/storage.h"

#include <cstring>

namespace zkr {

namespace {

using kernels::ColourForm;
using kernels::MakeGrayScale;
using kernels::RowParameters;
using kernels::Source;
using kernels::StretchGray;
using kernels::Target;

ReturnCode CheckBits(int32_t bits) {
    if (bits > 16) return code::InvalidBitsPerPixel;
    if (bits > 8 && Z_IsSupportLocked(Z_SUPPORT_EXTGRAY) != 0) return code::ExtendedGrayLocked;
    return bits == 8 || bits == 12 || bits == 16 ? code::Success : code::InvalidArgument;
}

bool IsInForm(const BitmapHandle& bitmap, int32_t bits) {
    return bitmap.Order == Z_ORDER_GRAY && bitmap.BitsPerPixel == bits && !HasActiveLevelTable(bitmap) &&
           bitmap.LowBit < 1 && (bitmap.HighBit < 0 || bitmap.HighBit == bits - 1);
}

// The gray of each index. Entries that a palette lacks are black, but it has all that the record counts.
ReturnCode MakeGrayMap(const BitmapHandle& bitmap, uint8_t (&map)[256]) {
    RGBQUAD entries[256] = {};
    if (Z_GetBitmapPaletteEntries(&bitmap, 0, 256, entries) < bitmap.ColorsUsed) return code::InvalidBitmap;
    for (size_t i = 0; i < 256; ++i)
        map[i] = GrayOf(entries[i]);
    return code::Success;
}

// The kernels from a source to gray of a target's bits.
class GrayStages {
  public:
    GrayStages(const BitmapHandle& source, int32_t targetBits, const uint8_t* map, const GrayWindow& window,
               const RGBQUAD* levels)
        : stages(source.BitsPerPixel), targetBits_(targetBits) {
        const int32_t bits = source.BitsPerPixel;
        const bool isRgb = IsRedFirst(source.Order);
        if (bits <= MostIndexedBits) {
            stages.AddMap(bits, map);
            if (targetBits != 8) FromColour(Source::Gray8, isRgb);
        } else if (HasGrayWords(source)) {
            stages.AddUnpack(bits);
            FromGray(window, levels);
        } else {
            IsDeep(bits) ? FromDeep(ColourForm(bits), isRgb) : FromColour(ColourForm(bits), isRgb);
        }
        stages.AddPack(targetBits);
    }

    Stages stages;

  private:
    uint32_t Limit() const { return (1u << targetBits_) - 1; }
    Target GrayTarget() const { return targetBits_ == 8 ? Target::Gray8 : Target::GrayWords; }

    void FromColour(Source source, bool isRgb) {
        stages.Add(source, GrayTarget(), {.Scale = MakeGrayScale(Limit(), 255), .SourceIsRgb = isRgb});
    }
    void FromGray(const GrayWindow& window, const RGBQUAD* levels) {
        const kernels::GrayScale scale =
            levels != nullptr ? MakeGrayScale(Limit(), 255) : StretchGray(Limit(), window.Mask);
        stages.Add(levels != nullptr ? Source::GrayLookup : Source::GrayValue, GrayTarget(),
                   {.Table = levels, .Mask = window.Mask, .Shift = window.Shift, .Scale = scale});
    }
    // The gray of whole words, of which a narrower target takes the upper bits.
    void FromDeep(Source source, bool isRgb) {
        stages.Add(source, Target::GrayWords, {.SourceIsRgb = isRgb});
        if (targetBits_ != 16)
            stages.Add(Source::GrayValue, GrayTarget(),
                       {.Mask = Limit(), .Shift = 16 - static_cast<uint32_t>(targetBits_)});
    }

    int32_t targetBits_;
};

ReturnCode MakeGrayRecord(BitmapHandle& gray, const BitmapHandle& source, int32_t bits) {
    static_cast<void>(InitRecordLike(gray, source, source.Width, source.Height, bits,
                                     carry::RegionUnclipped | carry::Playback));
    if (bits > 8) {
        gray.Order = Z_ORDER_GRAY;
        Z_InitGrayParams(&gray);
    }
    const ReturnCode result = AllocatePlainLike(gray, source);
    return result == code::Success && bits == 8 ? Z_CreateBitmapGrayPalette(&gray) : result;
}

ReturnCode RunRows(BitmapHandle& source, BitmapHandle& gray, Stages& stages) {
    ScratchRow from(source), to(gray);
    if (!from || !to) return code::OutOfMemory;
    std::memset(to.data(), 0, gray.BytesPerLine);
    const auto pixels = static_cast<size_t>(source.Width);
    return RowWalk(source).Reporting(StatusReceiver::Status()).Run(source.Height, [&](int32_t row) {
        const uint8_t* data;
        const ReturnCode fetched = FetchRow(source, row, from.data(), data);
        if (fetched != code::Success) return fetched;
        return StoreRow(gray, row, to.data(),
                        [&](uint8_t* target) { stages.RunRow(data, target, gray.BitsPerPixel, pixels); });
    });
}

ReturnCode ReplaceByGray(BitmapHandle& bitmap, int32_t bits) {
    uint8_t map[256];
    if (bitmap.BitsPerPixel <= 8) {
        const ReturnCode result = MakeGrayMap(bitmap, map);
        if (result != code::Success) return result;
    }
    const int32_t maximumBits = HasActiveLevelTable(bitmap) ? bitmap.BitsPerPixel : bits;
    const GrayWindow window = MakeGrayWindow(bitmap.BitsPerPixel, maximumBits, bitmap.LowBit, bitmap.HighBit);
    const LevelTable levels(bitmap, window.Mask);
    if (!levels) return code::OutOfMemory;

    BitmapReplacement replacement(&bitmap, Z_DUP_DATA | Z_DUP_PALETTE);
    ReturnCode result = MakeGrayRecord(replacement.record(), bitmap, bits);
    if (result != code::Success) return result;
    GrayStages gray(bitmap, bits, map, window, levels.Entries());
    result = RunRows(bitmap, replacement.record(), gray.stages);
    if (result != code::Success) return result;
    replacement.record().Region = bitmap.Region;
    replacement.Commit();
    return code::Success;
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_GrayScaleBitmap(BitmapHandle* bitmap, int32_t bits) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const ReturnCode checked = CheckBits(bits);
    if (checked != code::Success) return checked;
    if (!IsInForm(*bitmap, bits)) return ReplaceByGray(*bitmap, bits);
    ReportDone(StatusReceiver::Status());
    return code::Success;
}
