// The magic wand: a flood from the neighbours of a seed over pixels near its colour. Rows are tested when the flood
// first reaches them, and then the flood goes from run to run of bits.
#include "colour/gray/gray_window.h"
#include "colour/pixels/colour_value.h"
#include "core/bitmap_lock.h"
#include "core/predicates.h"
#include "core/row_access.h"
#include "core/scratch.h"
#include "core/sizes.h"
#include "regions/bit_picture.h"
#include "regions/combine.h"
#include "regions/pixel_test.h"
#include "zkr13n/palettes.h"
#include "zkr13n/pixels.h"
#include "zkr13n/region_colours.h"

#include <algorithm>
#include <bit>

using namespace zkr;

namespace {

// Channels within a tolerance of the seed's.
ColourRange WindowAround(uint32_t colour, int32_t tolerance) {
    ColourRange window{};
    for (uint32_t shift = 0; shift < 24; shift += 8) {
        const auto channel = static_cast<int32_t>(colour >> shift & 0xFF);
        window.Lower |= static_cast<uint32_t>(std::max(channel - tolerance, 0)) << shift;
        window.Upper |= static_cast<uint32_t>(std::min(channel + tolerance, 255)) << shift;
    }
    return window;
}

// An index that the palette lacks is black.
kernels::ByteSet IndicesWithin(const BitmapHandle& bitmap, const ColourRange& window) {
    RGBQUAD palette[MostEntries] = {};
    Z_GetBitmapPaletteEntries(&bitmap, 0, std::min(bitmap.ColorsUsed, MostEntries), palette);
    kernels::ByteSet set{};
    for (uint32_t i = 0; i < MostEntries; ++i)
        if (window.Takes(palette[i])) set.Include(i);
    return set;
}

// A word as Z_GetPixelColor packs it: a deep gray value lies in red and green, its low byte first.
class WordColours {
  public:
    explicit WordColours(const BitmapHandle& bitmap)
        : bitmap_(bitmap),
          window_(MakeGrayWindow(bitmap.BitsPerPixel, bitmap.BitsPerPixel, bitmap.LowBit, bitmap.HighBit)) {}

    RGBQUAD Of(uint32_t word) const {
        if (!HasGrayWords(bitmap_)) {
            const uint8_t first = Widened(word), second = Widened(word >> 5), third = Widened(word >> 10);
            return bitmap_.Order == Z_ORDER_BGR ? RGBQUAD{first, second, third, 0}
                                                : RGBQUAD{third, second, first, 0};
        }
        const uint32_t value = word >> window_.Shift & window_.Mask;
        if (HasActiveLevelTable(bitmap_))
            return value < bitmap_.LevelLUTLength ? bitmap_.LevelLUT[value] : RGBQUAD{};
        const uint32_t gray = window_.Mask == 0 ? 0 : ((value << 16) - value) / window_.Mask;
        return {0, static_cast<uint8_t>(gray >> 8), static_cast<uint8_t>(gray), 0};
    }

  private:
    static uint8_t Widened(uint32_t fiveBits) {
        fiveBits &= 31;
        return static_cast<uint8_t>(fiveBits << 3 | fiveBits >> 2);
    }

    const BitmapHandle& bitmap_;
    GrayWindow window_;
};

// Places that wait for the flood.
class PlaceStack {
  public:
    struct Place {
        int32_t Row, Column;
    };

    PlaceStack() = default;
    ~PlaceStack() { Z_Free(places_); }
    PlaceStack(const PlaceStack&) = delete;
    PlaceStack& operator=(const PlaceStack&) = delete;

    bool Push(int32_t row, int32_t column) {
        if (count_ == room_ && !Grow()) return false;
        places_[count_++] = {row, column};
        return true;
    }
    bool Pop(Place& place) {
        if (count_ == 0) return false;
        place = places_[--count_];
        return true;
    }

  private:
    static constexpr size_t FirstRoom = 4096;

    bool Grow() {
        const size_t room = std::max(FirstRoom, room_ * 2);
        if (room > std::numeric_limits<size_t>::max() / sizeof(Place)) return false;
        void* const places = Z_Realloc(places_, room * sizeof(Place));
        if (places == nullptr) return false;
        places_ = static_cast<Place*>(places);
        room_ = room;
        return true;
    }

    Place* places_ = nullptr;
    size_t count_ = 0, room_ = 0;
};

class Flood {
  public:
    Flood(BitmapHandle& bitmap, PixelTest& test)
        : bitmap_(bitmap), test_(test), width_(bitmap.Width),
          pitch_(kernels::BitRowWords(static_cast<size_t>(bitmap.Width))), open_(pitch_, bitmap.Height),
          taken_(pitch_, bitmap.Height), isTested_(static_cast<size_t>(bitmap.Height)), buffer_(bitmap) {}

    ReturnCode Run(int32_t seedRow, int32_t seedColumn) {
        if (!open_ || !taken_ || !isTested_ || !buffer_) return code::OutOfMemory;
        std::fill_n(isTested_.data(), static_cast<size_t>(bitmap_.Height), uint8_t{0});
        const BitmapLock lock(&bitmap_);
        const PlaceStack::Place neighbours[] = {{seedRow, seedColumn - 1},
                                                {seedRow - 1, seedColumn},
                                                {seedRow, seedColumn + 1},
                                                {seedRow + 1, seedColumn}};
        ReturnCode status = code::Success;
        for (const auto [row, column] : neighbours)
            if (status == code::Success && column >= 0 && column < width_)
                status = PushRuns(row, column, column + 1);
        PlaceStack::Place place;
        while (status == code::Success && stack_.Pop(place))
            status = TakeRun(place);
        return status;
    }

    ReturnCode Build(OwnedRegion& result) {
        RegionBuilder builder;
        ReturnCode status = builder.Begin(PixelRect::Whole(bitmap_));
        const auto runsOfBits = kernels::Chosen<kernels::BitRowKernels>().RunsOfBits;
        for (int32_t row = 0; row < bitmap_.Height && status == code::Success; ++row)
            status = builder.EndRow(
                isTested_[static_cast<size_t>(row)] == 0
                    ? 0
                    : runsOfBits(taken_.Row(row), static_cast<size_t>(width_), 0, builder.Room()));
        if (status == code::Success) builder.Finish(result);
        return status;
    }

  private:
    ReturnCode TestRow(int32_t row) {
        uint8_t& isTested = isTested_[static_cast<size_t>(row)];
        if (isTested != 0) return code::Success;
        const uint8_t* pixels = nullptr;
        const ReturnCode status = FetchRow(bitmap_, row, buffer_.data(), pixels);
        if (status != code::Success) return status;
        test_.Run(pixels, open_.Row(row));
        std::fill_n(taken_.Row(row), pitch_, uint64_t{0});
        isTested = 1;
        return code::Success;
    }

    // Pushes each run of open pixels in a row that has some between two columns.
    ReturnCode PushRuns(int32_t row, int32_t first, int32_t end) {
        if (row < 0 || row >= bitmap_.Height) return code::Success;
        const ReturnCode status = TestRow(row);
        if (status != code::Success) return status;
        const uint64_t* const bits = open_.Row(row);
        for (int32_t column = FindBit(bits, first, end, true); column < end;) {
            if (!stack_.Push(row, column)) return code::OutOfMemory;
            column = FindBit(bits, FindBit(bits, column, end, false), end, true);
        }
        return code::Success;
    }

    ReturnCode TakeRun(PlaceStack::Place place) {
        uint64_t* const bits = open_.Row(place.Row);
        if (!HasBit(bits, place.Column)) return code::Success;
        const int32_t first = FindBitBefore(bits, place.Column, false) + 1;
        const int32_t end = FindBit(bits, place.Column, width_, false);
        ChangeBits(bits, taken_.Row(place.Row), first, end);
        const ReturnCode status = PushRuns(place.Row - 1, first, end);
        return status == code::Success ? PushRuns(place.Row + 1, first, end) : status;
    }

    BitmapHandle& bitmap_;
    PixelTest& test_;
    int32_t width_;
    size_t pitch_;
    BitPictureBuffer open_;  // pixels in the window that the flood has not reached
    BitPictureBuffer taken_; // those that it has
    ScratchBuffer<uint8_t> isTested_;
    ScratchRow buffer_;
    PlaceStack stack_;
};

ReturnCode FloodAndCombine(BitmapHandle& bitmap, PixelTest& test, int32_t x, int32_t y, uint32_t mode) {
    OwnedRegion found;
    Flood flood(bitmap, test);
    ReturnCode status = flood.Run(y, x);
    if (status == code::Success) status = flood.Build(found);
    return status == code::Success ? CombineRegion(&bitmap, nullptr, found.Release(), mode) : status;
}

} // namespace

ReturnCode Z_CALL Z_SetBitmapRgnMagicWand(BitmapHandle* bitmap, int32_t x, int32_t y, uint32_t tolerance,
                                          uint32_t mode) {
    if (!IsAllocated(bitmap)) return code::InvalidBitmap;
    const uint32_t colour = Z_GetPixelColor(bitmap, y, x);
    if (colour == Z_NO_COLOR) return code::InvalidArgument;
    const ColourRange window = WindowAround(colour, static_cast<int32_t>(tolerance & 0xFF));

    PixelTest test(*bitmap);
    if (bitmap->BitsPerPixel <= MostIndexedBits) {
        test.TakeIndices(IndicesWithin(*bitmap, window));
        return FloodAndCombine(*bitmap, test, x, y, mode);
    }
    if (bitmap->BitsPerPixel > 16) {
        const ReturnCode status = test.TakeColours(*bitmap, window, nullptr);
        return status == code::Success ? FloodAndCombine(*bitmap, test, x, y, mode) : status;
    }
    ScratchBuffer<uint64_t> words(65536 / 64);
    if (!words) return code::OutOfMemory;
    std::fill_n(words.data(), 65536 / 64, uint64_t{0});
    const WordColours colours(*bitmap);
    const kernels::ChannelTest channels = window.ChannelTest();
    for (uint32_t word = 0; word < 65536; ++word) {
        const RGBQUAD colourOfWord = colours.Of(word);
        if (channels.Takes(0, colourOfWord.rgbBlue) && channels.Takes(1, colourOfWord.rgbGreen) &&
            channels.Takes(2, colourOfWord.rgbRed))
            words[word / 64] |= uint64_t{1} << (word % 64);
    }
    test.TakeWords(words.data());
    return FloodAndCombine(*bitmap, test, x, y, mode);
}
