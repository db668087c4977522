// Dithering written out plainly: errors are kept for every pixel of the picture, undivided, and nothing is
// carried from pixel to pixel. Shares nothing with the library.
#pragma once

#include "colour/pixels/pixel_model.h"

#include "support/pixel_bits.h"

#include "zkr13n/dither.h"

#include <algorithm>
#include <vector>

namespace zkr::test {

// A run as it is asked for.
struct DitherRequest {
    BitmapHandle Bitmap = {};
    std::vector<RGBQUAD> SourcePalette; // up to 8 bits: 2^bits entries
    std::vector<RGBQUAD> Levels;        // the level table, if there is one
    std::vector<RGBQUAD> Palette;       // empty for none
    uint32_t Colors = 2;
    int TargetBits = 1;
    std::vector<uint32_t> MatchTable; // the user's, if there is one
};

// Weights in rows of seven, the pixel itself in the middle of the first; by method, from 1 on.
struct DitherTaps {
    int divisor;
    std::vector<int> weights;
};
inline const DitherTaps PrintedTaps[] = {
    {16, {0, 0, 0, 0, 7, 0, 0, 0, 0, 3, 5, 1, 0, 0}},
    {42, {0, 0, 0, 0, 8, 4, 0, 0, 2, 4, 8, 4, 2, 0, 0, 1, 2, 4, 2, 1, 0}},
    {32, {0, 0, 0, 0, 8, 4, 0, 0, 2, 4, 8, 4, 2, 0}},
    {32, {0, 0, 0, 0, 5, 3, 0, 0, 2, 4, 5, 4, 2, 0, 0, 0, 2, 3, 2, 0, 0}},
    {200, {0, 0, 0, 0, 0, 32, 0, 12, 0, 26, 0, 30, 0, 16, 0, 12, 0, 26, 0, 12, 0, 5, 0, 12, 0, 12, 0, 5}},
    {48, {0, 0, 0, 0, 7, 5, 0, 0, 3, 5, 7, 5, 3, 0, 0, 1, 3, 5, 3, 1, 0}}};

inline constexpr int Dispersed[64] = {0,   128, 32,  160, 8,   136, 40,  168, 192, 64,  224, 96,  200,
                                      72,  232, 104, 48,  176, 16,  144, 56,  184, 24,  152, 236, 112,
                                      208, 80,  244, 120, 216, 88,  12,  140, 44,  172, 4,   132, 36,
                                      164, 204, 76,  232, 108, 196, 68,  228, 100, 60,  188, 28,  156,
                                      52,  180, 20,  148, 248, 124, 220, 92,  240, 116, 212, 84};
inline constexpr int Clustered[64] = {112, 40,  72,  104, 144, 176, 208, 136, 88,  8,   16,  48,  192,
                                      232, 240, 168, 56,  24,  0,   80,  160, 224, 248, 200, 96,  64,
                                      32,  120, 128, 216, 184, 152, 148, 180, 212, 140, 116, 44,  76,
                                      108, 196, 236, 244, 172, 92,  12,  20,  52,  164, 228, 252, 204,
                                      60,  28,  4,   84,  132, 220, 188, 156, 100, 68,  36,  124};

inline int Gray(const std::vector<int>& c) {
    return (2 * c[0] + 5 * c[1] + c[2] + 4) >> 3;
}

inline int BitsFor(uint32_t colors) {
    int bits = 1;
    while ((1u << bits) < colors)
        ++bits;
    return bits;
}

inline std::vector<RGBQUAD> Cube216() {
    std::vector<RGBQUAD> cube(256);
    for (unsigned i = 0; i < 216; ++i)
        cube[i] = EntryOf(i / 36 * 51, i / 6 % 6 * 51, i % 6 * 51);
    return cube;
}

inline int Offset(int m, int bits) {
    const int offsets[] = {0,          m - 128,    m / 2 - 64, m / 3 - 42, m / 4 - 32,
                           m / 5 - 25, m / 6 - 21, m / 7 - 18, m / 8 - 16};
    return offsets[bits];
}

class ReferenceDither {
    using Triple = std::vector<int>; // red, green, blue
    enum Kind { Matched, Fixed1 = 2, Fixed2, Fixed3, Fixed4, Fixed5, Fixed6, Fixed7, Fixed8, Cube };

  public:
    explicit ReferenceDither(const DitherRequest& request)
        : request_(request), record_(RecordOf(request_)), model_(record_), table_(request.MatchTable) {
        const int bits = BitsFor(request.Colors);
        const std::vector<RGBQUAD> fixed = ReferenceFixedPalette(bits);
        const std::vector<RGBQUAD>& palette = request.Palette.empty() ? fixed : request.Palette;
        std::copy_n(palette.begin(), request.Colors, target_.begin());
        const auto beginsLike = [&](const std::vector<RGBQUAD>& fixedOne) {
            return std::memcmp(palette.data(), fixedOne.data(), request.Colors * 4) == 0;
        };
        kind_ = !table_.empty()                      ? Matched
                : beginsLike(fixed)                  ? Fixed1 + bits - 1
                : bits == 8 && beginsLike(Cube216()) ? Cube
                                                     : Matched;
        if (kind_ == Matched) MakeMatchPalette();
        sums_.assign(4, std::vector<Triple>(static_cast<size_t>(request.Bitmap.Width), Triple(3)));
    }

    std::vector<unsigned> Line(const uint8_t* row, int width) {
        const int method = request_.Bitmap.DitheringMethod;
        std::vector<unsigned> indices;
        for (int x = 0; x < width; ++x) {
            Triple c = Read(row, x);
            if (method == DitherNone) {
                indices.push_back(IndexOf(c));
            } else if (method >= DitherOrdered) {
                const int* matrix = method == DitherOrdered ? Dispersed : Clustered;
                indices.push_back(OrderedIndex(c, matrix[y_ % 8 * 8 + x % 8]));
            } else {
                const DitherTaps& kernel = PrintedTaps[method - 1];
                for (size_t i = 0; i < 3; ++i)
                    c[i] = std::clamp(c[i] + sums_[0][static_cast<size_t>(x)][i] / kernel.divisor, 0, 255);
                indices.push_back(IndexOf(c));
                const RGBQUAD& chosen = target_[indices.back()];
                const Triple colour = {chosen.rgbRed, chosen.rgbGreen, chosen.rgbBlue};
                for (size_t tap = 0; tap < kernel.weights.size(); ++tap) {
                    const int to = x + static_cast<int>(tap % 7) - 3;
                    if (to < 0 || to >= width) continue;
                    for (size_t i = 0; i < 3; ++i)
                        sums_[tap / 7][static_cast<size_t>(to)][i] +=
                            (c[i] - colour[i]) * kernel.weights[tap];
                }
            }
            indices.back() &= (1u << request_.TargetBits) - 1;
        }
        ++y_;
        sums_.erase(sums_.begin());
        sums_.emplace_back(static_cast<size_t>(request_.Bitmap.Width), Triple(3));
        return indices;
    }
    const std::vector<uint32_t>& MatchTable() const { return table_; }

  private:
    void MakeMatchPalette() {
        table_.resize(32768);
        for (uint32_t i = 0; i < request_.Colors; ++i) {
            if (target_[i].rgbReserved & 3) continue;
            match_.push_back(target_[i]);
            matchIndex_.push_back(i);
        }
        const std::vector<RGBQUAD>& known = match_.empty() ? target_ : match_;
        for (uint32_t i = 0; i < (match_.empty() ? request_.Colors : match_.size()); ++i) {
            uint32_t& cell = CellOf(known[i].rgbRed, known[i].rgbGreen, known[i].rgbBlue);
            if (cell == 0) cell = i + 1;
        }
    }

    uint32_t& CellOf(int red, int green, int blue) {
        return table_[static_cast<size_t>(red / 8 * 1024 + green / 8 * 32 + blue / 8)];
    }

    Triple Read(const uint8_t* row, int x) const {
        const Colour c = model_.Shown(ReadPixel(row, model_.Bits(), x));
        return {static_cast<int>(c.red), static_cast<int>(c.green), static_cast<int>(c.blue)};
    }

    unsigned MatchedIndex(const Triple& c) {
        uint32_t& cell = CellOf(c[0], c[1], c[2]);
        if (cell == 0)
            cell = static_cast<uint32_t>(
                1 + ReferenceFindPaletteIndex(match_.data(), static_cast<int>(match_.size()), c[0] & 0xF8,
                                              c[1] & 0xF8, c[2] & 0xF8));
        return cell - 1 < matchIndex_.size() ? matchIndex_[cell - 1] : 0;
    }

    unsigned IndexOf(const Triple& c) {
        const int r = c[0], g = c[1], b = c[2];
        const auto found = [&] {
            switch (kind_) {
            case Fixed1: return Gray(c) / 128;
            case Fixed2: return Gray(c) / 64;
            case Fixed3: return r / 128 * 4 + g / 128 * 2 + b / 128;
            case Fixed4:
                return r + g + b < 128 || (r < 128 && g < 128 && b < 128)
                           ? 0
                           : 8 + r / 128 + g / 128 * 2 + b / 128 * 4;
            case Fixed5: return r / 64 * 8 + g / 64 * 2 + b / 128;
            case Fixed6: return r / 64 * 16 + g / 64 * 4 + b / 64;
            case Fixed7: return r / 64 * 32 + g / 32 * 4 + b / 64;
            case Fixed8: return r / 32 * 32 + g / 32 * 4 + b / 64;
            default: return r / 51 * 36 + g / 51 * 6 + b / 51;
            }
        };
        return kind_ == Matched ? MatchedIndex(c) : static_cast<unsigned>(found());
    }

    unsigned OrderedIndex(const Triple& c, int m) {
        if (kind_ == Fixed1) return m < Gray(c);
        if (kind_ == Fixed4) {
            const unsigned index = (m < c[0] ? 1u : 0) + (m < c[1] ? 2u : 0) + (m < c[2] ? 4u : 0);
            return index ? index + 8 : 0;
        }
        const int bits = kind_ == Matched ? request_.TargetBits : kind_ == Cube ? 6 : kind_ - Fixed1 + 1;
        Triple moved;
        for (const int channel : c)
            moved.push_back(std::clamp(channel + Offset(m, bits), 0, 255));
        return IndexOf(moved);
    }

    static BitmapHandle RecordOf(DitherRequest& request) {
        BitmapHandle record = request.Bitmap;
        record.Palette = request.SourcePalette.data();
        record.ColorsUsed = static_cast<uint32_t>(request.SourcePalette.size());
        record.Flags |= Z_FLAG_PALETTE_IS_BLOCK;
        record.LevelLUT = request.Levels.data();
        record.LevelLUTLength = static_cast<uint32_t>(request.Levels.size());
        return record;
    }

    DitherRequest request_;
    BitmapHandle record_;
    PixelModel model_;
    int kind_;
    std::vector<RGBQUAD> target_ = std::vector<RGBQUAD>(256);
    std::vector<RGBQUAD> match_;
    std::vector<unsigned> matchIndex_;
    std::vector<uint32_t> table_;
    int y_ = 0;
    std::vector<std::vector<Triple>> sums_; // by row from the present one, then by column
};

} // namespace zkr::test
