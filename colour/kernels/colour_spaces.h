// What a pixel of one colour space is in another, for one pixel. A pixel is its channels in memory order, as
// whole numbers; RGB is blue, green, red. A class of pixels is told by the full value of its channels, 255 or
// 65535. All quotients are truncated towards zero.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace zkr::kernels::spaces {

struct SpacePixel {
    int32_t A, B, C, D; // D of CMYK alone
};

// Enough for a channel times a full value: what the steps of HSV and HLS count in.
template <int32_t full> using Wide = std::conditional_t<full == 255, int32_t, int64_t>;

static constexpr int32_t Least(int32_t a, int32_t b) {
    return a < b ? a : b;
}
static constexpr int32_t Greatest(int32_t a, int32_t b) {
    return a > b ? a : b;
}

// Either number without a branch, so that several are chosen at once.
static constexpr int32_t Select(bool first, int32_t a, int32_t b) {
    return b ^ ((a ^ b) & -static_cast<int32_t>(first));
}

// Of numbers that are not negative, which is faster.
static constexpr int32_t PositiveQuotient(int32_t dividend, uint32_t divisor) {
    return static_cast<int32_t>(static_cast<uint32_t>(dividend) / divisor);
}

// The quotient of whole numbers. In the 8-bit class it stays below 2^15 and the divisor below 1024, or below
// 2^8 and the divisor below 2048: a quotient in floating point, correctly rounded, cannot reach the next
// whole number then, and several are divided at once.
template <int32_t full> constexpr int32_t Quotient(Wide<full> dividend, Wide<full> divisor) {
    if constexpr (full == 255)
        return static_cast<int32_t>(static_cast<float>(dividend) / static_cast<float>(divisor));
    else
        return static_cast<int32_t>(dividend / divisor);
}

// a * b / full of numbers that are not negative and of a product below full * 257.
template <int32_t full> constexpr int32_t PartOf(int32_t a, int32_t b) {
    if constexpr (full == 255) {
        const int32_t product = a * b;
        return (product + 1 + (product >> 8)) >> 8;
    } else {
        return static_cast<int32_t>(int64_t{a} * b / full);
    }
}

// The scale of 14 bits, in which the sums of the television spaces are worked out.
constexpr int32_t Scale14 = 16384;

template <int32_t full> constexpr int32_t To14(int32_t channel) {
    if constexpr (full == 255)
        return channel * 64 + PartOf<255>(channel * 64, 1);
    else
        return channel * Scale14 / full;
}
// Of a quotient, cut to the scale: what lies outside it is cut off before the division.
template <int32_t full> constexpr int32_t From14(int32_t dividend, int32_t divisor) {
    const int32_t within = Least(Greatest(dividend, 0), Scale14 * divisor);
    return PositiveQuotient(within, static_cast<uint32_t>(divisor)) * full >> 14;
}
template <int32_t full> constexpr SpacePixel To14(SpacePixel rgb) {
    return {To14<full>(rgb.A), To14<full>(rgb.B), To14<full>(rgb.C), 0};
}
constexpr int32_t Luma(SpacePixel rgb) {
    return PositiveQuotient(299 * rgb.C + 587 * rgb.B + 114 * rgb.A, 1000);
}

template <int32_t full> struct LumaDifferences {
    static constexpr SpacePixel From(SpacePixel pixel) {
        const SpacePixel rgb = To14<full>(pixel);
        const int32_t luma = Luma(rgb);
        return {luma, rgb.A - luma, rgb.C - luma, 0};
    }
    static constexpr SpacePixel ToRgb(SpacePixel pixel) {
        const int32_t blue = pixel.A + pixel.B;
        const int32_t red = pixel.A + pixel.C;
        const int32_t green = 1000 * pixel.A - 114 * blue - 299 * red;
        return {From14<full>(blue, 1), From14<full>(green, 587), From14<full>(red, 1), 0};
    }
};

template <int32_t full> struct Yiq {
    static constexpr SpacePixel From(SpacePixel pixel) {
        const SpacePixel rgb = To14<full>(pixel);
        const auto [blue, green, red, none] = rgb;
        return {Luma(rgb), (596 * red - 275 * green - 321 * blue) / 1000,
                (212 * red - 528 * green + 311 * blue) / 1000, none};
    }
    // Not quite the inverse.
    static constexpr SpacePixel ToRgb(SpacePixel pixel) {
        const auto [y, i, q, none] = pixel;
        return {From14<full>(1008 * y - 1110 * i + 1700 * q, 1000),
                From14<full>(997 * y - 271 * i - 645 * q, 1000),
                From14<full>(1003 * y + 955 * i + 618 * q, 1000), none};
    }
};

template <int32_t full> struct Cmyk {
    static constexpr SpacePixel From(SpacePixel rgb) {
        const int32_t cyan = full - rgb.C, magenta = full - rgb.B, yellow = full - rgb.A;
        const int32_t black = Least(Least(cyan, magenta), yellow);
        return {cyan - black, magenta - black, yellow - black, black};
    }
    static constexpr SpacePixel ToRgb(SpacePixel pixel) {
        const int32_t rest = full - pixel.D;
        return {Greatest(rest - pixel.C, 0), Greatest(rest - pixel.B, 0), Greatest(rest - pixel.A, 0), 0};
    }
};

template <int32_t full> struct Cmy {
    static constexpr SpacePixel From(SpacePixel rgb) { return {full - rgb.C, full - rgb.B, full - rgb.A, 0}; }
    static constexpr SpacePixel ToRgb(SpacePixel pixel) { return From(pixel); }
};

// The hue is a ratio of the two larger channels, in thirds of a turn.
template <int32_t full> struct Hsv {
    static constexpr SpacePixel From(SpacePixel rgb) {
        const auto [blue, green, red, none] = rgb;
        const int32_t least = Least(Least(red, green), blue);
        const int32_t most = Greatest(Greatest(red, green), blue);
        const bool withoutBlue = blue == least, withoutRed = red == least;
        const int32_t upper = Select(withoutBlue, green, Select(withoutRed, blue, red)) - least;
        const int32_t third = Select(withoutBlue, 0, Select(withoutRed, 1, 2));
        const int32_t both = Greatest(red + green + blue - 3 * least, 1); // 0 where all are equal
        const int32_t saturation = Quotient<full>(Wide<full>{most - least} * full, Greatest(most, 1));
        const int32_t hue = Hue(upper, both, third);
        return {Select(most == least, 0, hue), saturation, most, none};
    }

    static constexpr SpacePixel ToRgb(SpacePixel pixel) {
        const auto [hue, saturation, value, none] = pixel;
        // Degrees of a turn, each of `degree` parts. Within its third of a turn a hue rises and falls.
        constexpr int32_t degree = full == 255 ? 1 : 257;
        constexpr int32_t third = 120 * degree;
        const int32_t parts = hue * 360 >> 8;
        const int32_t which = parts <= third ? 0 : parts <= 2 * third ? 1 : 2;
        const int32_t risen = parts - which * third;
        const bool rises = risen <= third / 2;
        const int32_t distance = Least(risen, third - risen);
        const int32_t low = PartOf<full>(value, full - saturation);
        const int32_t between = low + Quotient<full>(Wide<full>{value - low} * distance, third - distance);
        const int32_t first = rises ? value : between;
        const int32_t second = rises ? between : value;
        return {which == 0   ? low
                : which == 1 ? second
                             : first,
                which == 0   ? second
                : which == 1 ? first
                             : low,
                which == 0   ? first
                : which == 1 ? low
                             : second,
                none};
    }

  private:
    // Rounded: 180 is half of the 360 that a unit of the result has; a full turn is 0 again.
    static constexpr int32_t Hue(int32_t upper, int32_t both, int32_t third) {
        if constexpr (full == 255)
            return PositiveQuotient(Quotient<full>(upper * 30720, both) + 30720 * third + 180, 360) & 0xFF;
        else
            return static_cast<int32_t>(
                (int64_t{131072} * (int64_t{upper} + int64_t{third} * both) + int64_t{3} * both) /
                    (int64_t{6} * both) &
                0xFFFF);
    }
};

template <int32_t full> struct Hls {
    static constexpr int32_t half = full / 2 + 1, third = full / 3, sixth = full / 6 + 1;

    static constexpr SpacePixel From(SpacePixel rgb) {
        const auto [blue, green, red, none] = rgb;
        const int32_t least = Least(Least(red, green), blue);
        const int32_t most = Greatest(Greatest(red, green), blue);
        const int32_t range = most - least, lightness = (most + least) >> 1;
        const int32_t sum = most + least, reach = Greatest(lightness < half ? sum : 2 * full - sum, 1);
        const int32_t saturation = Quotient<full>(Wide<full>{range} * full, reach);
        const int32_t difference = red == most ? green - blue : green == most ? blue - red : red - green;
        const int32_t start = red == most ? 0 : green == most ? third : 2 * third;
        const int32_t hue = Quotient<full>(Wide<full>{difference} * full, Greatest(6 * range, 1)) + start;
        return {hue < 0 ? hue + full : hue, lightness, saturation, none};
    }

    static constexpr SpacePixel ToRgb(SpacePixel pixel) {
        const auto [hue, lightness, saturation, none] = pixel;
        const int32_t scaled = PartOf<full>(full + saturation, lightness);
        const int32_t upper =
            lightness < half ? scaled : lightness - PartOf<full>(lightness, saturation) + saturation;
        const int32_t lower = 2 * lightness - upper;
        return {At(hue - third, lower, upper), At(hue, lower, upper), At(hue + third, lower, upper), none};
    }

  private:
    static constexpr int32_t At(int32_t hue, int32_t lower, int32_t upper) {
        const int32_t h = hue > full ? hue - full : hue < 0 ? hue + full : hue;
        const int32_t slope = Select(h < sixth, h, 2 * third - h);
        const int32_t ramp = PartOf<full>(upper - lower, 6 * slope) + lower; // where it counts
        const int32_t below = Select(h < sixth, ramp, upper);
        return Select(h < half, below, Select(h > 2 * third, lower, ramp));
    }
};

} // namespace zkr::kernels::spaces
