#include "platform/portable/pixel_rows.h"

#include "kernels/family.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zkr::platform {

namespace {

constexpr PALETTEENTRY BlackAndWhite[2] = {{0, 0, 0, 0}, {255, 255, 255, 0}};

ColourWord WordOf15(uint32_t pixel) {
    const uint32_t red = pixel >> 10 & 31, green = pixel >> 5 & 31, blue = pixel & 31;
    return (red << 3 | red >> 2) << 16 | (green << 3 | green >> 2) << 8 | (blue << 3 | blue >> 2);
}
uint32_t Pixel15Of(ColourWord colour) {
    return (colour >> 9 & 0x7C00) | (colour >> 6 & 0x03E0) | (colour >> 3 & 0x001F);
}

const PALETTEENTRY* TableOf(const Pixels& pixels) {
    return pixels.monochrome ? BlackAndWhite : pixels.colours;
}

bool SameColours(const Pixels& a, const Pixels& b) {
    if (a.monochrome || b.monochrome) return a.monochrome && b.monochrome;
    return std::equal(a.colours, a.colours + (size_t{1} << a.bitsPerPixel), b.colours,
                      [](const PALETTEENTRY& x, const PALETTEENTRY& y) { return WordOf(x) == WordOf(y); });
}

template <size_t bytes> void Copy(const uint8_t* from, int64_t count, uint8_t* out, const uint32_t*) {
    std::memcpy(out, from, static_cast<size_t>(count) * bytes);
}

} // namespace

uint32_t PixelOf(ColourWord colour, const Pixels& target) {
    if (target.bitsPerPixel > 16) return colour & 0xFFFFFF;
    if (target.bitsPerPixel == 16) return Pixel15Of(colour);
    return NearestEntry(colour, TableOf(target), 1 << target.bitsPerPixel);
}

ColourWord ColourOf(uint32_t pixel, const Pixels& source) {
    if (source.bitsPerPixel > 16) return pixel & 0xFFFFFF;
    return source.bitsPerPixel == 16 ? WordOf15(pixel) : WordOf(source.colours[pixel]);
}

RowConverter::RowConverter(const Pixels& source, const Pixels& target, const MonochromeColours& colours)
    : kernels_(kernels::Chosen<kernels::PixelWordKernels>()), target_(target),
      sourceBits_(source.bitsPerPixel) {
    same_ = sourceBits_ == target.bitsPerPixel && (sourceBits_ > 8 || SameColours(source, target));
    matches_ = !same_ && target.monochrome && colours.match;
    if (matches_) // as near as the source can come to it
        matched_ = sourceBits_ > 16 ? colours.matched : WordOf15(Pixel15Of(colours.matched));
    if (sourceBits_ <= 8)
        ChooseMap(source, colours);
    else if (target.bitsPerPixel <= 8 && !matches_)
        nearest_ = new (nearestRoom_.data()) NearestTable(TableOf(target), 1 << target.bitsPerPixel);
    ChooseWhole();
}

RowConverter::~RowConverter() {
    if (nearest_ != nullptr) nearest_->~NearestTable();
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

void RowConverter::ChooseWhole() {
    const int targetBits = target_.bitsPerPixel;
    if (same_ && sourceBits_ >= 8) {
        constexpr Whole Copies[] = {Copy<1>, Copy<2>, Copy<3>, Copy<4>};
        whole_ = Copies[sourceBits_ / 8 - 1];
    } else if (sourceBits_ == 24 && targetBits == 32) {
        whole_ = kernels_.Widen24;
    } else if (sourceBits_ == 32 && targetBits == 24) {
        whole_ = kernels_.Narrow32;
    } else if (sourceBits_ == 8) {
        whole_ = targetBits == 8    ? kernels_.Look8
                 : targetBits == 24 ? kernels_.Look24
                 : targetBits == 32 ? kernels_.Look32
                                    : nullptr;
    }
}

// Words of the source become pixels of the target; up to 8 bits the map has made them so already.
void RowConverter::Finish(uint32_t* words, int count, uint8_t* out, int firstBit) {
    if (!same_ && sourceBits_ > 8) {
        if (sourceBits_ == 16) kernels_.Expand15(words, count);
        if (sourceBits_ == 32) kernels_.DropFourth(words, count);
        if (matches_) {
            kernels_.Match(words, count, matched_);
        } else if (target_.bitsPerPixel == 16) {
            kernels_.Shorten15(words, count);
        } else if (nearest_ != nullptr) {
            // Neighbours are often alike.
            uint32_t colour = words[0], index = nearest_->Find(colour);
            for (int i = 0; i < count; ++i) {
                if (words[i] != colour) index = nearest_->Find(colour = words[i]);
                words[i] = index;
            }
        }
    }
    kernels_.Store[kernels::PlaceOfDepth(target_.bitsPerPixel)](words, count, out, firstBit);
}

void RowConverter::Convert(const uint8_t* row, int64_t x, int64_t count, uint8_t* out, int firstBit) {
    if (whole_ != nullptr) return whole_(row + x * (sourceBits_ / 8), count, out, map_.data());
    uint32_t words[Most];
    for (int64_t done = 0; done < count; done += Most) {
        const auto part = static_cast<int>(std::min<int64_t>(count - done, Most));
        kernels_.Load[kernels::PlaceOfDepth(sourceBits_)](row, x + done, part, map_.data(), words);
        Finish(words, part, out + done * target_.bitsPerPixel / 8, firstBit);
    }
}

void RowConverter::Pick(const uint8_t* row, const int32_t* columns, int64_t count, uint8_t* out,
                        int firstBit) {
    uint32_t words[Most];
    for (int64_t done = 0; done < count; done += Most) {
        const auto part = static_cast<int>(std::min<int64_t>(count - done, Most));
        kernels_.Pick[kernels::PlaceOfDepth(sourceBits_)](row, columns + done, part, map_.data(), words);
        Finish(words, part, out + done * target_.bitsPerPixel / 8, firstBit);
    }
}

} // namespace zkr::platform
