// Counts the distinct colours of a bitmap: a bit for each colour that there can be, and the pixels of its
// region one after the other until the answer is known.
#include "colour/convert/stages.h"
#include "colour/gray/gray_window.h"
#include "colour/gray/level_table.h"
#include "colour/kernels/colour_set.h"
#include "colour/pixels/colour_value.h"
#include "core/predicates.h"
#include "core/region_rows.h"
#include "core/row_access.h"
#include "core/row_walk.h"
#include "kernels/family.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <cstring>

namespace zkr {

namespace {

// What pixels are counted by: bytes with an index, words with a gray value or a colour, colours of three and of
// four bytes.
enum class Unit { Index, Gray, Colour16, Colour24, Colour32 };

// A palette in which equal entries are folded to the first of them. Entries that are missing are black.
struct FoldedPalette {
    explicit FoldedPalette(const BitmapHandle& bitmap) {
        const uint32_t entries = Z_GetBitmapPaletteEntries(&bitmap, 0, 256, Entries);
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t first = 0;
            while (first < i && !IsSameColour(Entries[first], Entries[i]))
                ++first;
            First[i] = static_cast<uint8_t>(first);
            if (first == i && i < entries) ++Distinct;
        }
    }
    static bool IsSameColour(const RGBQUAD& a, const RGBQUAD& b) {
        return ColourValue::OfEntry(a).Value() == ColourValue::OfEntry(b).Value();
    }
    RGBQUAD Entries[256] = {};
    uint8_t First[256];
    uint32_t Distinct = 0;
};

// The colours found so far.
class Tally {
  public:
    Tally(RGBQUAD* palette, uint32_t room, uint64_t stop) : palette_(palette), room_(room), stop_(stop) {}

    uint32_t Count() const { return static_cast<uint32_t>(count_); }

    bool WantsColours() const { return palette_ != nullptr; }

    void Add(uint32_t colours) { count_ += colours; }

    // Whether the answer is known with this colour.
    bool Add(const RGBQUAD& colour) {
        if (palette_ != nullptr && count_ < room_) {
            palette_[count_] = {colour.rgbBlue, colour.rgbGreen, colour.rgbRed, 0};
        }
        return ++count_ >= stop_;
    }

  private:
    RGBQUAD* palette_;
    uint64_t room_;
    uint64_t stop_;
    uint64_t count_ = 0;
};

// Pieces of a row to units, and units into the set.
class ColourScan {
  public:
    ColourScan(const BitmapHandle& bitmap, const GrayWindow& window, const RGBQUAD* levels,
               const FoldedPalette& palette, Tally& tally)
        : isRgb_(IsRedFirst(bitmap.Order)), window_(window), palette_(palette), tally_(tally),
          stages_(bitmap.BitsPerPixel) {
        PlanStages(bitmap, levels);
        set_.emplace(SetWords());
        if (*set_) std::memset(set_->data(), 0, SetWords() * sizeof(uint32_t));
    }

    explicit operator bool() const { return static_cast<bool>(*set_); }

    // Counts the pixels of a segment; true when the answer is known.
    bool Count(const uint8_t* row, size_t begin, size_t end) {
        for (size_t piece = begin & ~size_t{7}; piece < end; piece += Stages::PiecePixels) {
            const size_t pixels = std::min(end - piece, Stages::PiecePixels);
            const size_t skipped = begin > piece ? begin - piece : 0;
            if (CountUnits(stages_.Read(row, piece, pixels), skipped, pixels)) return true;
        }
        return false;
    }

    // Tells the tally what was only put into the set.
    void Finish() {
        if (CountsAtEnd())
            tally_.Add(kernels::Chosen<kernels::CountKernels>().CountSet(set_->data(), SetWords()));
    }

  private:
    void PlanStages(const BitmapHandle& bitmap, const RGBQUAD* levels) {
        const int32_t bits = bitmap.BitsPerPixel;
        const auto toColour32 = [&](kernels::Source source, const kernels::RowParameters& parameters) {
            stages_.Add(source, kernels::Target::Colour32, parameters);
            unit_ = Unit::Colour32;
        };
        if (bits <= MostIndexedBits) {
            stages_.AddMap(bits, palette_.First);
            unit_ = Unit::Index;
            return;
        }
        stages_.AddUnpack(bits);
        if (bits <= 16) {
            unit_ = HasGrayWords(bitmap) ? Unit::Gray : Unit::Colour16;
            if (levels != nullptr)
                toColour32(kernels::Source::GrayLookup,
                           {.Table = levels, .Mask = window_.Mask, .Shift = window_.Shift});
            return;
        }
        if (bits == 24) {
            unit_ = Unit::Colour24;
            return;
        }
        toColour32(kernels::ColourForm(bits), {.SourceIsRgb = isRgb_});
    }

    size_t SetWords() const {
        switch (unit_) {
        case Unit::Index: return 256 / 32;
        case Unit::Gray: return (size_t{window_.Mask} + 32) / 32;
        case Unit::Colour16: return 0x8000 / 32;
        default: return kernels::ColourSetWords;
        }
    }

    bool CountsAtEnd() const { return unit_ >= Unit::Colour24 && !tally_.WantsColours(); }

    bool CountUnits(const uint8_t* units, size_t first, size_t end) {
        switch (unit_) {
        case Unit::Index: return CountKeys<uint8_t>(units, first, end, [](uint32_t index) { return index; });
        case Unit::Gray:
            return CountKeys<uint16_t>(units, first, end,
                                       [mask = window_.Mask, shift = window_.Shift](uint32_t pixel) {
                                           return pixel >> shift & mask;
                                       });
        case Unit::Colour16:
            return CountKeys<uint16_t>(units, first, end, [](uint32_t pixel) { return pixel & 0x7FFF; });
        default: return CountColours(units, first, end);
        }
    }

    template <typename T, typename KeyOf>
    bool CountKeys(const uint8_t* units, size_t first, size_t end, KeyOf keyOf) {
        for (size_t i = first; i < end; ++i) {
            T unit;
            std::memcpy(&unit, units + i * sizeof(T), sizeof(T));
            const uint32_t key = keyOf(unit);
            if (IsNew(key) && tally_.Add(ColourOf(key))) return true;
        }
        return false;
    }

    bool CountColours(const uint8_t* units, size_t first, size_t end) {
        const bool packed = unit_ == Unit::Colour24;
        const size_t bytes = packed ? 3 : 4;
        const kernels::CountKernels& kernels = kernels::Chosen<kernels::CountKernels>();
        const uint8_t* pixels = units + first * bytes;
        if (CountsAtEnd()) {
            (packed ? kernels.AddAll24 : kernels.AddAll32)(pixels, end - first, set_->data());
            return HasAllColours();
        }
        uint16_t places[Stages::PiecePixels];
        const size_t found =
            (packed ? kernels.FindNew24 : kernels.FindNew32)(pixels, end - first, set_->data(), places);
        for (size_t i = 0; i < found; ++i) {
            const uint8_t* pixel = pixels + places[i] * bytes;
            const auto key = static_cast<uint32_t>(pixel[0] | pixel[1] << 8 | pixel[2] << 16);
            if (IsNew(key) && tally_.Add(ColourOf(key))) return true;
        }
        return false;
    }

    bool HasAllColours() {
        while (firstOpenWord_ < kernels::ColourSetWords && (*set_)[firstOpenWord_] == ~0u)
            ++firstOpenWord_;
        return firstOpenWord_ == kernels::ColourSetWords;
    }

    bool IsNew(uint32_t key) {
        uint32_t& word = (*set_)[key >> 5];
        const uint32_t bit = 1u << (key & 31);
        if ((word & bit) != 0) return false;
        word |= bit;
        return true;
    }

    RGBQUAD ColourOf(uint32_t key) const {
        if (unit_ == Unit::Index) return palette_.Entries[key];
        if (unit_ >= Unit::Colour24) {
            const ColourValue colour(key);
            const bool redFirst = unit_ == Unit::Colour24 && isRgb_;
            return {redFirst ? colour.Blue() : colour.Red(), colour.Green(),
                    redFirst ? colour.Red() : colour.Blue(), 0};
        }
        const auto level = static_cast<uint8_t>(key);
        if (unit_ == Unit::Gray) return {level, level, level, 0};
        const auto widened = [key](uint32_t shift) {
            const uint32_t channel = key >> shift & 31;
            return static_cast<uint8_t>(channel << 3 | channel >> 2);
        };
        return {widened(isRgb_ ? 10 : 0), widened(5), widened(isRgb_ ? 0 : 10), 0};
    }

    bool isRgb_;
    const GrayWindow& window_;
    const FoldedPalette& palette_;
    Tally& tally_;
    Unit unit_ = Unit::Index;
    Stages stages_;
    std::optional<ScratchBuffer<uint32_t>> set_;
    size_t firstOpenWord_ = 0; // words before it are full
};

// The count with which the answer is known. Nothing but the number of its pixels bounds the colours of a
// 16-bit colour bitmap, and colours of 24 bits that are counted at the end.
uint64_t StopCount(const BitmapHandle& bitmap, const FoldedPalette& palette, bool withPalette,
                   uint32_t room) {
    const uint64_t beyond = uint64_t{room} + 1;
    if (bitmap.BitsPerPixel <= 8) return withPalette && room < palette.Distinct ? beyond : palette.Distinct;
    if (withPalette) return beyond;
    if (bitmap.BitsPerPixel == 12) return 1u << 12;
    return HasGrayWords(bitmap) ? 1u << 16 : ~uint64_t{0};
}

ReturnCode WalkRegion(BitmapHandle& bitmap, ColourScan& scan) {
    RegionRows region(bitmap);
    const ReturnCode begun = region.Begin();
    if (begun != code::Success) return begun;
    ScratchRow row(bitmap);
    if (!row) return code::OutOfMemory;

    return RowWalk(bitmap)
        .Reporting(StatusReceiver::Status())
        .Run(region.rows(), [&](int32_t index) -> Visited {
            const int32_t y = region.top() + index;
            std::span<const uint32_t> segments;
            ReturnCode result = region.SegmentsOf(y, segments);
            const uint8_t* data = nullptr;
            if (result == code::Success) result = FetchRow(bitmap, y, row.data(), data);
            if (result != code::Success) return result;
            for (size_t i = 0; i < segments.size(); i += 2)
                if (scan.Count(data, segments[i], segments[i + 1])) return Visited::Last();
            return code::Success;
        });
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_GetBitmapColorCountExt(BitmapHandle* bitmap, uint32_t* colors, RGBQUAD* palette) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    if (colors == nullptr) return code::InvalidArgument;
    const int32_t bits = bitmap->BitsPerPixel;
    const uint32_t room = palette != nullptr ? *colors : 0;
    const bool throughTable = HasGrayWords(*bitmap) && HasActiveLevelTable(*bitmap);
    const GrayWindow window =
        MakeGrayWindow(bits, palette != nullptr && !throughTable ? 8 : bits, bitmap->LowBit, bitmap->HighBit);
    const LevelTable levels(*bitmap, window.Mask);
    if (!levels) return code::OutOfMemory;
    const FoldedPalette folded(*bitmap);
    Tally tally(palette, room, StopCount(*bitmap, folded, palette != nullptr, room));
    ColourScan scan(*bitmap, window, levels.Entries(), folded, tally);
    if (!scan) return code::OutOfMemory;
    const ReturnCode status = WalkRegion(*bitmap, scan);
    if (status != code::Success) return status;
    scan.Finish();
    *colors = tally.Count();
    return code::Success;
}
