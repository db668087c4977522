// Readers and writers of one pixel, for instruction sets without a version of their own. A reader gives, and
// a writer takes, one of three things: a colour of four bytes (blue, green, red, alpha from the lowest), a
// deep colour of four words in the same order, or a gray value. Both know the bits that a pixel takes.
#pragma once

#include "colour/kernels/row_kernel.h"

#include <cstring>

namespace zkr::kernels {
namespace {

struct Colour {
    uint32_t Bits;
};
struct DeepColour {
    uint64_t Bits;
};
struct GrayLevel {
    uint32_t Value;
};

inline uint32_t LoadWord(const uint8_t* place) {
    uint16_t word;
    std::memcpy(&word, place, 2);
    return word;
}
inline void StoreWord(uint8_t* place, uint32_t value) {
    const auto word = static_cast<uint16_t>(value);
    std::memcpy(place, &word, 2);
}
inline uint32_t Channel(Colour colour, uint32_t shift) {
    return (colour.Bits >> shift) & 0xFF;
}
inline uint32_t DeepChannel(DeepColour colour, uint32_t shift) {
    return static_cast<uint32_t>(colour.Bits >> shift) & 0xFFFF;
}
constexpr uint32_t Replicated(uint32_t byte) {
    return byte * 0x010101;
}

// The places of blue and red in a pixel, counted in channels.
struct ChannelOrder {
    size_t Blue;
    size_t Red;
    explicit ChannelOrder(bool isRgb) : Blue(isRgb ? 2 : 0), Red(isRgb ? 0 : 2) {}
};

// Readers

struct ReadBits1 {
    static constexpr size_t bits = 1;
    uint32_t entries[2];
    explicit ReadBits1(const RowParameters& p) { std::memcpy(entries, p.Table, sizeof entries); }
    Colour operator()(const uint8_t* source, size_t pixel) const {
        return {entries[(source[pixel / 8] >> (7 - pixel % 8)) & 1] & 0xFFFFFF};
    }
};

inline uint32_t PaletteEntry(const uint8_t* palette, uint32_t index) {
    uint32_t entry;
    std::memcpy(&entry, palette + index * size_t{4}, 4);
    return entry & 0xFFFFFF;
}

struct ReadIndex8 {
    static constexpr size_t bits = 8;
    const uint8_t* palette;
    explicit ReadIndex8(const RowParameters& p) : palette(static_cast<const uint8_t*>(p.Table)) {}
    Colour operator()(const uint8_t* source, size_t pixel) const {
        return {PaletteEntry(palette, source[pixel])};
    }
};

struct ReadGray8 {
    static constexpr size_t bits = 8;
    explicit ReadGray8(const RowParameters&) {}
    Colour operator()(const uint8_t* source, size_t pixel) const { return {Replicated(source[pixel])}; }
};

struct ReadGrayValue {
    static constexpr size_t bits = 16;
    uint32_t mask, shift;
    explicit ReadGrayValue(const RowParameters& p) : mask(p.Mask), shift(p.Shift) {}
    GrayLevel operator()(const uint8_t* source, size_t pixel) const {
        return {(LoadWord(source + pixel * 2) >> shift) & mask};
    }
};

// A gray value that stands for all three channels as it is.
struct ReadGrayColour : ReadGrayValue {
    using ReadGrayValue::ReadGrayValue;
    Colour operator()(const uint8_t* source, size_t pixel) const {
        return {Replicated(ReadGrayValue::operator()(source, pixel).Value & 0xFF)};
    }
};

struct ReadGrayLookup : ReadGrayValue {
    const uint8_t* palette;
    explicit ReadGrayLookup(const RowParameters& p)
        : ReadGrayValue(p), palette(static_cast<const uint8_t*>(p.Table)) {}
    Colour operator()(const uint8_t* source, size_t pixel) const {
        return {PaletteEntry(palette, ReadGrayValue::operator()(source, pixel).Value)};
    }
};

template <class...> struct ReadColour16 {
    static constexpr size_t bits = 16;
    uint32_t BlueShift, RedShift;
    explicit ReadColour16(const RowParameters& p)
        : BlueShift(p.SourceIsRgb ? 10 : 0), RedShift(p.SourceIsRgb ? 0 : 10) {}
    static uint32_t Widened(uint32_t channel) { return (channel << 3) | (channel >> 2); }
    Colour operator()(const uint8_t* source, size_t pixel) const {
        const uint32_t word = LoadWord(source + pixel * 2);
        return {Widened((word >> BlueShift) & 31) | Widened((word >> 5) & 31) << 8 |
                Widened((word >> RedShift) & 31) << 16 | ((word >> 15) * 0xFF) << 24};
    }
};

template <size_t channels> struct ReadColour {
    static constexpr size_t bits = channels * 8;
    ChannelOrder order;
    explicit ReadColour(const RowParameters& p) : order(p.SourceIsRgb) {}
    Colour operator()(const uint8_t* source, size_t pixel) const {
        const uint8_t* place = source + pixel * channels;
        const uint32_t alpha = channels == 4 ? place[3] : 0u;
        return {static_cast<uint32_t>(place[order.Blue]) | static_cast<uint32_t>(place[1]) << 8 |
                static_cast<uint32_t>(place[order.Red]) << 16 | alpha << 24};
    }
};

template <size_t channels> struct ReadDeep {
    static constexpr size_t bits = channels * 16;
    ChannelOrder order;
    explicit ReadDeep(const RowParameters& p) : order(p.SourceIsRgb) {}
    DeepColour operator()(const uint8_t* source, size_t pixel) const {
        const uint8_t* place = source + pixel * channels * 2;
        const uint64_t alpha = channels == 4 ? LoadWord(place + 6) : 0u;
        return {LoadWord(place + order.Blue * 2) | static_cast<uint64_t>(LoadWord(place + 2)) << 16 |
                static_cast<uint64_t>(LoadWord(place + order.Red * 2)) << 32 | alpha << 48};
    }
};

// The high bytes of a deep pixel.
template <size_t channels, Alpha alpha = Alpha::Used> struct ReadDeepHigh {
    static constexpr size_t bits = channels * 16;
    ChannelOrder order;
    explicit ReadDeepHigh(const RowParameters& p) : order(p.SourceIsRgb) {}
    Colour operator()(const uint8_t* source, size_t pixel) const {
        const uint8_t* place = source + pixel * channels * 2 + 1;
        const uint32_t alphaByte = channels == 4 && alpha == Alpha::Used ? place[6] : 0u;
        return {static_cast<uint32_t>(place[order.Blue * 2]) | static_cast<uint32_t>(place[2]) << 8 |
                static_cast<uint32_t>(place[order.Red * 2]) << 16 | alphaByte << 24};
    }
};

// Writers

inline uint32_t GrayOf(uint32_t red, uint32_t green, uint32_t blue) {
    return (2 * red + 5 * green + blue + 4) >> 3;
}
inline uint32_t GrayOf(Colour colour) {
    return GrayOf(Channel(colour, 16), Channel(colour, 8), Channel(colour, 0));
}

struct WriteGray8 {
    static constexpr size_t bits = 8;
    GrayScale scale;
    explicit WriteGray8(const RowParameters& p) : scale(p.Scale) {}
    void operator()(uint8_t* target, size_t pixel, Colour colour) const {
        target[pixel] = static_cast<uint8_t>(GrayOf(colour));
    }
    void operator()(uint8_t* target, size_t pixel, GrayLevel gray) const {
        target[pixel] = static_cast<uint8_t>(ApplyGrayScale(scale, gray.Value));
    }
};

struct WriteGrayWords {
    static constexpr size_t bits = 16;
    GrayScale scale;
    explicit WriteGrayWords(const RowParameters& p) : scale(p.Scale) {}
    void operator()(uint8_t* target, size_t pixel, GrayLevel gray) const {
        StoreWord(target + pixel * 2, ApplyGrayScale(scale, gray.Value));
    }
    void operator()(uint8_t* target, size_t pixel, Colour colour) const {
        (*this)(target, pixel, GrayLevel{GrayOf(colour)});
    }
    void operator()(uint8_t* target, size_t pixel, DeepColour colour) const {
        (*this)(target, pixel,
                GrayLevel{GrayOf(DeepChannel(colour, 32), DeepChannel(colour, 16), DeepChannel(colour, 0))});
    }
};

struct WriteSwappedGray : WriteGrayWords {
    using WriteGrayWords::WriteGrayWords;
    void operator()(uint8_t* target, size_t pixel, Colour colour) const {
        const uint32_t gray = GrayOf(Channel(colour, 16), Channel(colour, 0), Channel(colour, 8));
        WriteGrayWords::operator()(target, pixel, GrayLevel{gray});
    }
};

template <class...> struct WriteColour16 {
    static constexpr size_t bits = 16;
    uint32_t BlueShift, RedShift;
    explicit WriteColour16(const RowParameters& p)
        : BlueShift(p.TargetIsRgb ? 10 : 0), RedShift(p.TargetIsRgb ? 0 : 10) {}
    void operator()(uint8_t* target, size_t pixel, Colour colour) const {
        StoreWord(target + pixel * 2, Channel(colour, 0) >> 3 << BlueShift | Channel(colour, 8) >> 3 << 5 |
                                          Channel(colour, 16) >> 3 << RedShift | colour.Bits >> 31 << 15);
    }
};

template <size_t channels, Alpha alpha = Alpha::Used> struct WriteColour {
    static constexpr size_t bits = channels * 8;
    ChannelOrder order;
    explicit WriteColour(const RowParameters& p) : order(p.TargetIsRgb) {}
    void operator()(uint8_t* target, size_t pixel, Colour colour) const {
        uint8_t* place = target + pixel * channels;
        place[order.Blue] = static_cast<uint8_t>(Channel(colour, 0));
        place[1] = static_cast<uint8_t>(Channel(colour, 8));
        place[order.Red] = static_cast<uint8_t>(Channel(colour, 16));
        if constexpr (channels == 4 && alpha == Alpha::Used)
            place[3] = static_cast<uint8_t>(Channel(colour, 24));
    }
};

template <size_t channels, Alpha alpha = Alpha::Used> struct WriteDeep {
    static constexpr size_t bits = channels * 16;
    ChannelOrder order;
    GrayScale scale;
    explicit WriteDeep(const RowParameters& p) : order(p.TargetIsRgb), scale(p.Scale) {}
    void operator()(uint8_t* target, size_t pixel, DeepColour colour) const {
        uint8_t* place = target + pixel * channels * 2;
        StoreWord(place + order.Blue * 2, DeepChannel(colour, 0));
        StoreWord(place + 2, DeepChannel(colour, 16));
        StoreWord(place + order.Red * 2, DeepChannel(colour, 32));
        if constexpr (channels == 4 && alpha == Alpha::Used) StoreWord(place + 6, DeepChannel(colour, 48));
    }
    void operator()(uint8_t* target, size_t pixel, Colour colour) const {
        const uint64_t spread = Channel(colour, 0) | static_cast<uint64_t>(Channel(colour, 8)) << 16 |
                                static_cast<uint64_t>(Channel(colour, 16)) << 32 |
                                static_cast<uint64_t>(Channel(colour, 24)) << 48;
        (*this)(target, pixel, DeepColour{spread * 257});
    }
    void operator()(uint8_t* target, size_t pixel, GrayLevel gray) const {
        const uint64_t word = ApplyGrayScale(scale, gray.Value) & 0xFFFF;
        (*this)(target, pixel, DeepColour{word | word << 16 | word << 32});
    }
};

template <class Reader, class Writer>
void ConvertRow(const uint8_t* source, uint8_t* target, size_t pixels, const RowParameters& parameters) {
    const Reader read(parameters);
    const Writer write(parameters);
    for (size_t i = 0; i < pixels; ++i) {
        const size_t pixel = Writer::bits > Reader::bits ? pixels - 1 - i : i;
        write(target, pixel, read(source, pixel));
    }
}

} // namespace
} // namespace zkr::kernels
