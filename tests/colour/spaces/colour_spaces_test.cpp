// Colour spaces against the formulas in the plainest form, on a grid of colours with all borders.
#include "support/seeded.h"

#include "zkr13n/codes.h"
#include "zkr13n/color_spaces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace zkr::test {
namespace {

using Pixel = std::array<int64_t, 4>;

int64_t Clamped(int64_t value, int64_t full) {
    return std::clamp<int64_t>(value, 0, full);
}

struct Model {
    int64_t F; // the full value

    bool Is8() const { return F == 255; }
    int64_t To14(int64_t c) const { return c * 16384 / F; }
    int64_t From14(int64_t c) const { return Clamped(c * F / 16384, F); }

    Pixel Forward(int space, int64_t b, int64_t g, int64_t r) const {
        const int64_t b14 = To14(b), g14 = To14(g), r14 = To14(r);
        const int64_t y = (299 * r14 + 587 * g14 + 114 * b14) / 1000;
        const int64_t least = std::min({r, g, b}), most = std::max({r, g, b}), d = most - least;
        switch (space) {
        case 1: return {y, b14 - y, r14 - y};
        case 2: return {most - r, most - g, most - b, F - most};
        case 3: return {d == 0 ? 0 : Hue(b, g, r, least), most == 0 ? 0 : d * F / most, most};
        case 4: {
            const int64_t l = (most + least) / 2;
            const int64_t s = d == 0      ? 0
                              : 2 * l < F ? d * F / (most + least)
                                          : d * F / (2 * F - most - least);
            if (s == 0) return {0, l, 0};
            int64_t h = r == most   ? (g - b) * F / (6 * d)
                        : g == most ? (b - r) * F / (6 * d) + F / 3
                                    : (r - g) * F / (6 * d) + 2 * (F / 3);
            return {h < 0 ? h + F : h, l, s};
        }
        case 5:
            return {y, (596 * r14 - 275 * g14 - 321 * b14) / 1000,
                    (212 * r14 - 528 * g14 + 311 * b14) / 1000};
        default: return {F - r, F - g, F - b};
        }
    }

    int64_t Hue(int64_t b, int64_t g, int64_t r, int64_t m) const {
        const int64_t upper = b == m ? g - m : r == m ? b - m : r - m;
        const int64_t sum = r + g + b - 3 * m;
        if (Is8()) return (upper * 30720 / sum + (b == m ? 180 : r == m ? 30900 : 61620)) / 360 % 256;
        const long double thirds = (b == m   ? 0.0L
                                    : r == m ? 1.0L
                                             : 2.0L) +
                                   (long double)upper / (long double)sum;
        return (int64_t)(thirds * 65536.0L / 3.0L + 0.5L) % 65536;
    }

    Pixel Back(int space, const Pixel& p) const {
        const auto [x, y, z, k] = p;
        switch (space) {
        case 1:
            return {From14(x + y), From14((1000 * x - 114 * (x + y) - 299 * (x + z)) / 587), From14(x + z)};
        case 2: return {Clamped(F - z - k, F), Clamped(F - y - k, F), Clamped(F - x - k, F)};
        case 3: return FromHsv(x, y, z);
        case 4: {
            if (z == 0) return {y, y, y};
            const int64_t upper = 2 * y < F ? (F + z) * y / F : y - y * z / F + z, lower = 2 * y - upper;
            return {AtHue(x - F / 3, lower, upper), AtHue(x, lower, upper), AtHue(x + F / 3, lower, upper)};
        }
        case 5:
            return {From14((1008 * x - 1110 * y + 1700 * z) / 1000),
                    From14((997 * x - 271 * y - 645 * z) / 1000),
                    From14((1003 * x + 955 * y + 618 * z) / 1000)};
        default: return {F - z, F - y, F - x};
        }
    }

    // Blue, green, red.
    Pixel FromHsv(int64_t h, int64_t s, int64_t v) const {
        const int64_t u = Is8() ? 1 : 257, d = h * 360 / 256;
        if (s == 0) return {v, v, v};
        const int64_t lo = v * (F - s) / F, w = v - lo;
        if (d <= 60 * u) return {lo, lo + w * d / (120 * u - d), v};
        if (d <= 120 * u) return {lo, v, lo + w * (120 * u - d) / d};
        if (d <= 180 * u) return {lo + w * (d - 120 * u) / (240 * u - d), v, lo};
        if (d <= 240 * u) return {v, lo + w * (240 * u - d) / (d - 120 * u), lo};
        if (d <= 300 * u) return {v, lo, lo + w * (d - 240 * u) / (360 * u - d)};
        return {lo + w * (360 * u - d) / (d - 240 * u), lo, v};
    }

    int64_t AtHue(int64_t h, int64_t lower, int64_t upper) const {
        const int64_t sixth = Is8() ? 43 : 10923, half = Is8() ? 128 : 32768, twoThirds = Is8() ? 170 : 43690;
        h = h > F ? h - F : h < 0 ? h + F : h;
        if (h < sixth) return (upper - lower) * h * 6 / F + lower;
        if (h < half) return upper;
        return h > twoThirds ? lower : (upper - lower) * 6 * (twoThirds - h) / F + lower;
    }
};

constexpr int Formats[2][7] = {{0, 1, 2, 3, 4, 5, 6}, {0x10, 0x20, 0x70, 0x40, 0x50, 0x30, 0x60}};

struct Channels {
    int Count;
    bool Bytes;

    Channels(int depthClass, int space)
        : Count(space == 2 ? 4 : 3), Bytes(depthClass == 0 && space != 1 && space != 5) {}
    size_t PixelBytes() const { return size_t(Count) * (Bytes ? 1 : 2); }
    void Write(std::vector<uint8_t>& row, const Pixel& pixel) const {
        for (int i = 0; i < Count; ++i) {
            row.push_back(uint8_t(pixel[size_t(i)]));
            if (!Bytes) row.push_back(uint8_t(pixel[size_t(i)] >> 8));
        }
    }
};

std::string Print(const std::vector<uint8_t>& row, size_t start, size_t bytes) {
    std::string text;
    for (size_t i = start; i < start + bytes; ++i)
        text += std::to_string(row[i]) + " ";
    return text;
}

void ExpectRow(int from, int to, const std::vector<uint8_t>& source, const std::vector<uint8_t>& expected,
               size_t width) {
    std::vector<uint8_t> target(expected.size() + 64, 0xA5);
    ASSERT_EQ(Z_ConvertColorSpace(source.data(), target.data(), int32_t(width), from, to), 1);
    for (size_t i = 0; i < expected.size(); ++i) {
        const size_t a = source.size() / width, b = expected.size() / width, pixel = i / b;
        ASSERT_EQ(target[i], expected[i])
            << "format " << from << " to " << to << ": " << Print(source, pixel * a, a) << "gives "
            << Print(target, pixel * b, b);
    }
    for (size_t i = expected.size(); i < target.size(); ++i)
        ASSERT_EQ(target[i], 0xA5) << "behind the row";
}

// Rows of all triples of some levels, and of every width up to 70.
std::vector<std::vector<Pixel>> Rows(const std::vector<int64_t>& levels, uint64_t seed, int64_t low,
                                     int64_t high) {
    std::vector<std::vector<Pixel>> rows;
    for (const int64_t a : levels) {
        rows.emplace_back();
        for (const int64_t b : levels)
            for (const int64_t c : levels)
                rows.back().push_back({a, b, c, (a ^ c) < low ? 0 : (a ^ c) & high});
    }
    Seeded seeded(seed);
    const auto any = [&] { return low + int64_t(seeded.Next() % uint64_t(high - low + 1)); };
    for (size_t width = 1; width <= 70; ++width) {
        rows.emplace_back(width);
        for (Pixel& pixel : rows.back())
            pixel = {any(), any(), any(), any()};
    }
    return rows;
}

std::vector<int64_t> Levels(int64_t low, int64_t high, int count) {
    std::vector<int64_t> levels;
    for (int i = 0; i < count; ++i)
        levels.push_back(low + (high - low) * i / (count - 1));
    for (const int64_t border : {low + 1, high - 1})
        levels.push_back(border);
    return levels;
}

class Spaces : public testing::TestWithParam<int> {
  protected:
    const int Class = GetParam();
    const Model model{Class == 0 ? 255 : 65535};
    const Channels rgb{Class, 0};
};

TEST_P(Spaces, FollowTheFormulas) {
    for (int space = 1; space <= 6; ++space) {
        const Channels channels(Class, space);
        for (const std::vector<Pixel>& row : Rows(Levels(0, model.F, 34), 1, 0, model.F)) {
            std::vector<uint8_t> source, expected;
            for (const Pixel& p : row) {
                rgb.Write(source, p);
                channels.Write(expected, model.Forward(space, p[0], p[1], p[2]));
            }
            ExpectRow(Formats[Class][0], Formats[Class][space], source, expected, row.size());
            if (HasFatalFailure()) return;
        }
        const bool isSigned = space == 1 || space == 5;
        const int64_t low = isSigned ? -32768 : 0, high = isSigned ? 32767 : model.F;
        std::vector<int64_t> levels = Levels(low, high, 34);
        if (isSigned)
            for (const int64_t inside : {-16384, -9000, -1, 0, 1, 3000, 16383, 16384})
                levels.push_back(inside);
        for (const std::vector<Pixel>& row : Rows(levels, 2, low, high)) {
            std::vector<uint8_t> source, expected;
            for (const Pixel& p : row) {
                channels.Write(source, p);
                rgb.Write(expected, model.Back(space, p));
            }
            ExpectRow(Formats[Class][space], Formats[Class][0], source, expected, row.size());
            if (HasFatalFailure()) return;
        }
    }
}

// From one space to another by way of RGB, also in the same buffer.
TEST_P(Spaces, MeetInRgb) {
    const std::vector<Pixel> row = Rows({0, 7, model.F / 2, model.F}, 3, 0, model.F).back();
    for (int from = 1; from <= 6; ++from) {
        for (int to = 0; to <= 6; ++to) {
            const Channels source(Class, from), target(Class, to);
            std::vector<uint8_t> pixels, expected;
            for (const Pixel& p : row) {
                const Pixel in = model.Forward(from, p[0], p[1], p[2]);
                const Pixel middle = model.Back(from, in);
                source.Write(pixels, in);
                target.Write(expected, to == 0 ? middle : model.Forward(to, middle[0], middle[1], middle[2]));
            }
            ExpectRow(Formats[Class][from], Formats[Class][to], pixels, expected, row.size());
            pixels.resize(std::max(pixels.size(), expected.size()));
            ASSERT_EQ(Z_ConvertColorSpace(pixels.data(), pixels.data(), int32_t(row.size()),
                                          Formats[Class][from], Formats[Class][to]),
                      1);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), pixels.begin())) << from << ' ' << to;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Classes, Spaces, testing::Values(0, 1));

TEST(ColourSpaces, RefuseWhatTheyDoNotKnow) {
    uint8_t source[8] = {1, 2, 3, 4, 5, 6, 7, 8}, target[8] = {};
    for (const auto& [from, to] : {std::pair{0, 0x10},
                                   {0x10, 0},
                                   {7, 0},
                                   {0, 7},
                                   {0x11, 0x10},
                                   {0x10, 0x80},
                                   {-1, 0},
                                   {0x100, 0x10},
                                   {3, 0x40}})
        for (const int32_t width : {1, 0, -5})
            EXPECT_EQ(Z_ConvertColorSpace(source, target, width, from, to), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_ConvertColorSpace(nullptr, target, 1, 0, 3), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_ConvertColorSpace(nullptr, nullptr, 0, 0, 3), Z_SUCCESS);
    EXPECT_EQ(target[0], 0);
    EXPECT_EQ(Z_ConvertColorSpace(source, target, 1, 0x10, 0x10), Z_SUCCESS);
    EXPECT_EQ(std::memcmp(target, "\1\2\3\4\5\6\0\0", 8), 0);
}

TEST(ColourSpaces, OfSingleColours) {
    const struct {
        uint32_t Rgb, Hsv;
    } cases[] = {{0x0000FF, 0xFFFF00},    {0x00FF00, 0xFFFF55}, {0xFF0000, 0xFFFFAB},
                 {0x00FFFF, 0xFFFF2B},    {0x777777, 0x770000}, {0, 0},
                 {0xAB000001, 0xAB01FF00}};
    for (const auto& [rgb, hsv] : cases)
        EXPECT_EQ(Z_RGBtoHSV(rgb), hsv) << rgb;
    for (const uint32_t hue : {0u, 85u, 255u})
        EXPECT_EQ(Z_HSVtoRGB(0x99640000 | hue), 0x646464u);
    const Model model{255};
    for (uint32_t i = 0; i < 1u << 24; i += 1021) {
        const Pixel hsv = model.Forward(3, i >> 16, i >> 8 & 255, i & 255);
        ASSERT_EQ(Z_RGBtoHSV(i), uint32_t(hsv[0] | hsv[1] << 8 | hsv[2] << 16));
        const Pixel bgr = model.FromHsv(i & 255, i >> 8 & 255, i >> 16);
        ASSERT_EQ(Z_HSVtoRGB(i), uint32_t(bgr[2] | bgr[1] << 8 | bgr[0] << 16));
    }
}

} // namespace
} // namespace zkr::test
