// The bytes that a fuzz target is given, taken as numbers; and how a target says that something is wrong.
#pragma once

#include "support/pixel_bits.h"
#include "zkr13n.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <memory>

// Ends the process, which is what the fuzzer looks for.
#define FUZZ_EXPECT(condition)                                                                               \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "%s:%d: %s does not hold\n", __FILE__, __LINE__, #condition);               \
            std::abort();                                                                                    \
        }                                                                                                    \
    } while (false)

namespace fuzz {

class Input {
  public:
    Input(const uint8_t* data, size_t size) : next_(data), end_(data + size) {}

    bool IsEmpty() const { return next_ == end_; }
    uint8_t Byte() { return IsEmpty() ? uint8_t{0} : *next_++; }
    uint32_t Word() {
        uint32_t word = 0;
        for (int i = 0; i < 4; ++i)
            word = word << 8 | Byte();
        return word;
    }
    bool Flip() { return (Byte() & 1) != 0; }
    int32_t Below(int32_t limit) {
        const uint32_t value = limit > 256 ? Byte() | uint32_t{Byte()} << 8 : Byte();
        return static_cast<int32_t>(value % static_cast<uint32_t>(limit));
    }
    // Mostly a number from the lowest up to the limit, and often one that nobody should pass.
    int32_t Near(int32_t limit, int32_t lowest = 0) {
        return Byte() < 200 ? lowest + Below(limit - lowest) : Hostile();
    }
    int32_t Hostile() {
        constexpr int32_t borders[] = {
            0,          -1,      1,       INT32_MIN,     INT32_MAX,     INT32_MIN + 1,
            -100,       -101,    255,     256,           257,           300,
            0x7FFF,     0x8000,  0xFFFF,  0x10000,       INT32_MAX - 1, INT32_MAX / 2,
            0x10000000, 1 << 30, 9999999, INT32_MAX - 31};
        const size_t choice = Byte() % (std::size(borders) + 1);
        return choice < std::size(borders) ? borders[choice] : static_cast<int32_t>(Word());
    }
    int32_t Depth() {
        constexpr int32_t depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};
        return depths[Byte() % std::size(depths)];
    }
    int32_t Order(int32_t bits) { return bits == 12 ? 2 : Below(bits == 16 ? 3 : 2); }
    // One number below each limit, one after another: compilers differ in the order of a call's arguments.
    template <typename... Limits> auto Each(Limits... limits) {
        return std::array<int32_t, sizeof...(limits)>{Below(static_cast<int32_t>(limits))...};
    }
    // A part of the input, which is left for what comes after, and noise where that ends.
    void Fill(void* bytes, size_t count) {
        uint32_t state = Word() | 1;
        const uint8_t* const until = next_ + (end_ - next_) / 4;
        for (size_t i = 0; i < count; ++i) {
            state ^= state << 13, state ^= state >> 17, state ^= state << 5;
            static_cast<uint8_t*>(bytes)[i] = static_cast<uint8_t>(state >> 8 ^ (next_ < until ? Byte() : 0));
        }
    }

  private:
    const uint8_t* next_;
    const uint8_t* end_;
};

// Exactly so many bytes, so that one more is found out.
struct Exact {
    explicit Exact(size_t count) : Count(count), Bytes(new uint8_t[count]) {
        std::fill_n(Bytes.get(), count, uint8_t{0}); // what nobody writes is noted, too
    }
    Exact(size_t count, Input& input) : Exact(count) { input.Fill(Bytes.get(), count); }
    Exact(const Exact& other) : Exact(other.Count) {
        if (Count != 0) std::memcpy(Bytes.get(), other.Bytes.get(), Count);
    }
    Exact& operator=(const Exact&) = delete;
    uint8_t* Get() const { return Bytes.get(); }
    RGBQUAD* Colours() const { return reinterpret_cast<RGBQUAD*>(Get()); }

    const size_t Count;
    const std::unique_ptr<uint8_t[]> Bytes;
};

// What the library gives back, for those who compare one run with another: parity on two platforms. Nothing that
// depends on the platform is noted: no addresses, no handles, no memory figures.
inline thread_local void (*Listener)(const void* bytes, size_t count) = nullptr;
inline void Note(const void* bytes, size_t count) {
    if (Listener != nullptr) Listener(bytes, count);
}
inline int64_t Note(int64_t number) {
    uint8_t bytes[8];
    for (int i = 0; i < 8; ++i)
        bytes[i] = static_cast<uint8_t>(number >> 8 * i);
    Note(bytes, sizeof bytes);
    return number;
}
inline void NoteEach(std::initializer_list<int64_t> numbers) {
    for (const int64_t number : numbers)
        Note(number);
}
// Every field of a record, pointers and handles only as null or not; how long compressed strips are does not count.
inline void NoteRecord(const BitmapHandle& b) {
    NoteEach({b.StorageHandle != nullptr,
              b.Addr != nullptr,
              b.Palette != nullptr,
              b.DitherData != nullptr,
              b.Region != nullptr,
              b.LevelLUT != nullptr,
              b.PaintLUT != nullptr,
              b.BytesPerLine,
              b.CurrentRow,
              b.Flags,
              b.ColorsUsed,
              b.PlaybackBackColor,
              b.TransparentColor,
              b.LevelLUTLength,
              b.Reserved,
              b.Width,
              b.Height,
              b.BitsPerPixel,
              b.ViewPerspective,
              b.Order,
              b.DitheringMethod,
              b.XResolution,
              b.YResolution,
              b.PlaybackLeft,
              b.PlaybackTop,
              b.PlaybackDelay,
              b.DisposalMethod,
              b.LowBit,
              b.HighBit,
              b.MinVal,
              b.MaxVal,
              b.LevelLowBit,
              b.LevelHighBit,
              b.PaintGamma,
              b.PaintContrast,
              b.PaintIntensity,
              (b.Flags & Z_FLAG_SUPER_COMPRESSED) != 0 ? 0 : static_cast<int64_t>(b.Size),
              static_cast<int64_t>(b.CurrentRowOffset)});
}
// What lies behind the last pixel of a row is nobody's.
inline void NotePixels(BitmapHandle& b) {
    NoteEach({b.Width, b.Height, b.BitsPerPixel, b.Order, b.LowBit, b.HighBit, b.MaxVal});
    if (Listener == nullptr || (b.Flags & Z_FLAG_ALLOCATED) == 0) return;
    Z_AccessBitmap(&b);
    const Exact row(b.BytesPerLine);
    for (int32_t y = 0; y < b.Height; ++y) {
        Note(Z_GetBitmapRow(&b, row.Get(), y, b.BytesPerLine));
        Note(row.Get(), static_cast<size_t>(b.Width) * static_cast<size_t>(b.BitsPerPixel) / 8);
    }
    Z_ReleaseBitmap(&b);
}

// Lets a target leave out what the platform decides: which pixels belong to an ellipse, what it knows of handles.
inline bool IsExactOnly = false;

// What is wanted of a bitmap; the rest is any.
struct Wanted {
    int32_t Widest = 200, Tallest = 40;
    int32_t Type = 0; // any but the caller's memory, which has exactly the bytes of the pixels
    int32_t Bits = 0, Order = 0;
};

// With a palette, pixels of many or few values, and for gray a window and a level table.
struct AnyBitmap : BitmapHandle {
    explicit AnyBitmap(Input& input, const Wanted& wanted = {}) : BitmapHandle{} {
        constexpr int32_t types[] = {MemoryConventional, MemoryTiled, MemoryDisk, MemorySuperCompressed | 1,
                                     MemoryCompressed | 1};
        constexpr int32_t views[] = {0, 1, 2, 3, 4, 5, 7, 8};
        constexpr uint8_t masks[] = {0xFF, 0xFF, 0xC3, 0x81, 0x11};
        const int32_t bits = wanted.Bits != 0 ? wanted.Bits : input.Depth();
        const int32_t order = wanted.Bits != 0 ? wanted.Order : input.Order(bits);
        const auto [type, view, mask, tile] =
            input.Each(std::size(types), std::size(views), std::size(masks), 3000);
        const auto [width, height] = input.Each(wanted.Widest, wanted.Tallest);
        const Exact palette(256 * sizeof(RGBQUAD), input);
        Z_SetMemoryThresholds(0, 0, tile + 30, 1, 1, 28);
        FUZZ_EXPECT(Z_CreateBitmap(this, wanted.Type != 0 ? wanted.Type : types[type], 1 + width, 1 + height,
                                   bits, order, palette.Colours(), views[view], nullptr, 0) == 1);
        if (wanted.Type == MemoryUser) {
            data_ = std::make_unique<Exact>(Size);
            Z_SetBitmapDataPointer(this, data_->Get(), Size);
        }
        const Exact rows(size_t{BytesPerLine} * static_cast<size_t>(Height), input);
        for (size_t i = 0; i < rows.Count; ++i)
            rows.Get()[i] &= masks[mask];
        for (int32_t y = 0; y < Height; ++y)
            Z_PutBitmapRow(this, rows.Get() + static_cast<size_t>(y) * BytesPerLine, y, BytesPerLine);
        if (bits == 12 || bits == 16) MakeWindow(input);
    }
    ~AnyBitmap() { Z_FreeBitmap(this); }
    AnyBitmap(const AnyBitmap&) = delete;
    AnyBitmap& operator=(const AnyBitmap&) = delete;

    // All that it owns is somebody else's now.
    void Forget() { static_cast<BitmapHandle&>(*this) = {}; }
    const Exact& Data() const { return *data_; }
    // Pixels that must be as they were, in the caller's memory.
    template <typename IsKept> void ExpectKept(const Exact& before, IsKept isKept) const {
        for (int32_t y = 0; y < Height; ++y)
            for (int32_t x = 0; x < Width; ++x) {
                const size_t row = static_cast<size_t>(y) * BytesPerLine;
                FUZZ_EXPECT(!isKept(x, y) || zkr::test::ReadPixel(before.Get() + row, BitsPerPixel, x) ==
                                                 zkr::test::ReadPixel(data_->Get() + row, BitsPerPixel, x));
            }
    }

  private:
    void MakeWindow(Input& input) {
        LowBit = input.Below(BitsPerPixel + 1) - 1;
        HighBit = LowBit + input.Below(BitsPerPixel - LowBit);
        if (input.Flip()) return;
        LevelLUTLength = static_cast<uint32_t>(1 + input.Below(5000));
        LevelLUT = static_cast<RGBQUAD*>(Z_OsAlloc(LevelLUTLength * sizeof(RGBQUAD)));
        input.Fill(LevelLUT, LevelLUTLength * sizeof(RGBQUAD));
        Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
    }

    std::unique_ptr<Exact> data_;
};

// For a test that sees the inside of the library: looks the bitmap through after each step of the attack on rows.
inline void (*AfterStep)(BitmapHandle& bitmap) = nullptr;

} // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
