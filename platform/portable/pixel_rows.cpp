#include "platform/portable/pixel_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace zkr::platform {

namespace {

static_assert(std::endian::native == std::endian::little);

constexpr uint32_t NoKey = 0xFFFFFFFFu; // no colour word has a fourth byte

int Square(int difference) {
    return difference * difference;
}

ColourWord WordOf15(uint32_t pixel) {
    const uint32_t red = pixel >> 10 & 31, green = pixel >> 5 & 31, blue = pixel & 31;
    return (red << 3 | red >> 2) << 16 | (green << 3 | green >> 2) << 8 | (blue << 3 | blue >> 2);
}
uint32_t Pixel15Of(ColourWord colour) {
    return (colour >> 9 & 0x7C00) | (colour >> 6 & 0x03E0) | (colour >> 3 & 0x001F);
}

uint32_t NearestIndex(ColourWord colour, const PALETTEENTRY* entries, int count) {
    const int red = colour >> 16 & 255, green = colour >> 8 & 255, blue = colour & 255;
    int best = 0, bestDistance = std::numeric_limits<int>::max();
    for (int i = 0; i < count && bestDistance > 0; ++i) {
        const PALETTEENTRY& entry = entries[i];
        const int distance =
            Square(entry.peRed - red) + Square(entry.peGreen - green) + Square(entry.peBlue - blue);
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return static_cast<uint32_t>(best);
}

bool SameColours(const Pixels& a, const Pixels& b) {
    if (a.monochrome || b.monochrome) return a.monochrome && b.monochrome;
    const size_t bytes = (size_t{1} << a.bitsPerPixel) * sizeof(PALETTEENTRY);
    if (a.colours == b.colours) return true;
    for (size_t i = 0; i < bytes / sizeof(PALETTEENTRY); ++i) {
        if (WordOf(a.colours[i]) != WordOf(b.colours[i])) return false;
    }
    return true;
}

template <int Bits> uint32_t Load(const uint8_t* row, int64_t x) {
    if constexpr (Bits == 1) return row[x >> 3] >> (~x & 7) & 1u;
    if constexpr (Bits == 4) return row[x >> 1] >> ((~x & 1) * 4) & 15u;
    if constexpr (Bits == 8) return row[x];
    if constexpr (Bits == 16) return static_cast<uint32_t>(row[2 * x] | row[2 * x + 1] << 8);
    if constexpr (Bits == 24)
        return static_cast<uint32_t>(row[3 * x] | row[3 * x + 1] << 8 | row[3 * x + 2] << 16);
    if constexpr (Bits == 32) {
        uint32_t word;
        std::memcpy(&word, row + 4 * x, sizeof word);
        return word;
    }
}

// Runs a row function for a count of bits per pixel.
template <typename Function> void WithBits(int bits, Function function) {
    switch (bits) {
    case 1: return function.template operator()<1>();
    case 4: return function.template operator()<4>();
    case 8: return function.template operator()<8>();
    case 16: return function.template operator()<16>();
    case 24: return function.template operator()<24>();
    default: return function.template operator()<32>();
    }
}

template <int Bits> void Store(const uint32_t* pixels, int count, uint8_t* out, int firstBit) {
    if constexpr (Bits < 8) {
        const int end = firstBit + count * Bits;
        std::memset(out, 0, static_cast<size_t>(end + 7) / 8);
        for (int i = 0, bit = firstBit; i < count; ++i, bit += Bits)
            out[bit >> 3] = static_cast<uint8_t>(out[bit >> 3] | pixels[i] << (8 - Bits - (bit & 7)));
    } else {
        for (int i = 0; i < count; ++i) {
            if constexpr (Bits == 8) out[i] = static_cast<uint8_t>(pixels[i]);
            if constexpr (Bits == 16) {
                const auto pixel = static_cast<uint16_t>(pixels[i]);
                std::memcpy(out + 2 * i, &pixel, sizeof pixel);
            }
            if constexpr (Bits == 24) {
                out[3 * i] = static_cast<uint8_t>(pixels[i]);
                out[3 * i + 1] = static_cast<uint8_t>(pixels[i] >> 8);
                out[3 * i + 2] = static_cast<uint8_t>(pixels[i] >> 16);
            }
            if constexpr (Bits == 32) std::memcpy(out + 4 * i, pixels + i, sizeof *pixels);
        }
    }
}

// Rows from whole bytes to whole bytes.

template <int Bytes> void Copy(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t*) {
    std::memcpy(out, from, static_cast<size_t>(count) * Bytes);
}

// Four pixels are three words.
void Widen24To32(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t*) {
    int64_t i = 0;
    for (; i + 4 <= count; i += 4, from += 12, out += 16) {
        uint32_t words[3];
        std::memcpy(words, from, sizeof words);
        const uint32_t pixels[4] = {words[0] & 0xFFFFFF, (words[0] >> 24 | words[1] << 8) & 0xFFFFFF,
                                    (words[1] >> 16 | words[2] << 16) & 0xFFFFFF, words[2] >> 8};
        std::memcpy(out, pixels, sizeof pixels);
    }
    for (; i < count; ++i, from += 3, out += 4) {
        const uint32_t pixel = Load<24>(from, 0);
        std::memcpy(out, &pixel, sizeof pixel);
    }
}
void Narrow32To24(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t*) {
    int64_t i = 0;
    for (; i + 4 <= count; i += 4, from += 16, out += 12) {
        uint32_t pixels[4];
        std::memcpy(pixels, from, sizeof pixels);
        const uint32_t words[3] = {(pixels[0] & 0xFFFFFF) | pixels[1] << 24,
                                   (pixels[1] >> 8 & 0xFFFF) | pixels[2] << 16,
                                   (pixels[2] >> 16 & 0xFF) | pixels[3] << 8};
        std::memcpy(out, words, sizeof words);
    }
    for (; i < count; ++i, from += 4, out += 3)
        std::memcpy(out, from, 3);
}
void Look8To8(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map) {
    for (int64_t i = 0; i < count; ++i)
        out[i] = static_cast<uint8_t>(map[from[i]]);
}
void Look8To32(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map) {
    for (int64_t i = 0; i < count; ++i)
        std::memcpy(out + 4 * i, &map[from[i]], 4);
}
// The fourth byte of each store is the next pixel's, but for the last one.
void Look8To24(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t* map) {
    for (int64_t i = 0; i + 1 < count; ++i)
        std::memcpy(out + 3 * i, &map[from[i]], 4);
    if (count > 0) std::memcpy(out + 3 * (count - 1), &map[from[count - 1]], 3);
}

} // namespace

uint32_t PixelOf(ColourWord colour, const Pixels& target) {
    if (target.bitsPerPixel > 16) return colour & 0xFFFFFF;
    if (target.bitsPerPixel == 16) return Pixel15Of(colour);
    constexpr PALETTEENTRY BlackAndWhite[2] = {{0, 0, 0, 0}, {255, 255, 255, 0}};
    if (target.monochrome) return NearestIndex(colour, BlackAndWhite, 2);
    return NearestIndex(colour, target.colours, 1 << target.bitsPerPixel);
}

ColourWord ColourOf(uint32_t pixel, const Pixels& source) {
    if (source.bitsPerPixel > 16) return pixel & 0xFFFFFF;
    return source.bitsPerPixel == 16 ? WordOf15(pixel) : WordOf(source.colours[pixel]);
}

void StorePixels(const uint32_t* pixels, int count, int bitsPerPixel, uint8_t* out, int firstBit) {
    WithBits(bitsPerPixel, [&]<int Bits>() { Store<Bits>(pixels, count, out, firstBit); });
}

RowConverter::RowConverter(const Pixels& source, const Pixels& target, const MonochromeColours& colours)
    : target_(target), sourceBits_(source.bitsPerPixel) {
    const int targetBits = target.bitsPerPixel;
    same_ = sourceBits_ == targetBits && (sourceBits_ > 8 || SameColours(source, target));
    matches_ = !same_ && target.monochrome && colours.match;
    if (matches_) // as near as the source can come to it
        matched_ = sourceBits_ > 16 ? colours.matched : WordOf15(Pixel15Of(colours.matched));
    if (sourceBits_ <= 8) ChooseMap(source, colours);
    nearestKeys_.fill(NoKey);

    if (same_ && sourceBits_ >= 8) {
        constexpr Whole Copies[] = {Copy<1>, Copy<2>, Copy<3>, Copy<4>};
        whole_ = Copies[sourceBits_ / 8 - 1];
    } else if (sourceBits_ == 24 && targetBits == 32) {
        whole_ = Widen24To32;
    } else if (sourceBits_ == 32 && targetBits == 24) {
        whole_ = Narrow32To24;
    } else if (sourceBits_ == 8) {
        whole_ = targetBits == 8    ? Look8To8
                 : targetBits == 24 ? Look8To24
                 : targetBits == 32 ? Look8To32
                                    : nullptr;
    }
}

void RowConverter::ChooseMap(const Pixels& source, const MonochromeColours& colours) {
    const uint32_t matched = matches_ ? PixelOf(colours.matched, source) : 0;
    for (uint32_t i = 0; i < 1u << sourceBits_; ++i) {
        const ColourWord colour = !source.monochrome ? ColourOf(i, source)
                                  : i == 0           ? colours.zero
                                                     : colours.one;
        map_[i] = same_ ? i : matches_ ? (i == matched ? 1u : 0u) : PixelOf(colour, target_);
    }
}

uint32_t RowConverter::Nearest(ColourWord colour) {
    const uint32_t place = (colour ^ colour >> 7 ^ colour >> 14) & 1023;
    if (nearestKeys_[place] != colour) {
        nearestKeys_[place] = colour;
        nearestValues_[place] = PixelOf(colour, target_);
    }
    return nearestValues_[place];
}

// Values of a source above 8 bits become pixels of the target.
void RowConverter::Translate(uint32_t* pixels, int count) {
    if (same_ || sourceBits_ <= 8) return;
    for (int i = 0; i < count; ++i)
        pixels[i] = sourceBits_ == 16 ? WordOf15(pixels[i]) : pixels[i] & 0xFFFFFF;
    if (matches_) {
        for (int i = 0; i < count; ++i)
            pixels[i] = pixels[i] == matched_ ? 1 : 0;
    } else if (target_.bitsPerPixel == 16) {
        for (int i = 0; i < count; ++i)
            pixels[i] = Pixel15Of(pixels[i]);
    } else if (target_.bitsPerPixel < 16) {
        for (int i = 0; i < count; ++i)
            pixels[i] = Nearest(pixels[i]);
    }
}

void RowConverter::Convert(const uint8_t* row, int64_t x, int64_t count, uint8_t* out, int firstBit) {
    if (whole_ != nullptr) return whole_(row + x * (sourceBits_ / 8), count, out, map_.data());
    uint32_t pixels[Most];
    for (int64_t done = 0; done < count; done += Most) {
        const auto part = static_cast<int>(std::min<int64_t>(count - done, Most));
        WithBits(sourceBits_, [&]<int Bits>() {
            for (int i = 0; i < part; ++i) {
                const uint32_t value = Load<Bits>(row, x + done + i);
                pixels[i] = Bits <= 8 ? map_[value & 255] : value;
            }
        });
        Translate(pixels, part);
        StorePixels(pixels, part, target_.bitsPerPixel, out + done * target_.bitsPerPixel / 8, firstBit);
    }
}

void RowConverter::Pick(const uint8_t* row, const int32_t* columns, int64_t count, uint8_t* out,
                        int firstBit) {
    uint32_t pixels[Most];
    for (int64_t done = 0; done < count; done += Most, columns += Most) {
        const auto part = static_cast<int>(std::min<int64_t>(count - done, Most));
        WithBits(sourceBits_, [&]<int Bits>() {
            for (int i = 0; i < part; ++i) {
                const uint32_t value = Load<Bits>(row, columns[i]);
                pixels[i] = Bits <= 8 ? map_[value & 255] : value;
            }
        });
        Translate(pixels, part);
        StorePixels(pixels, part, target_.bitsPerPixel, out + done * target_.bitsPerPixel / 8, firstBit);
    }
}

} // namespace zkr::platform
