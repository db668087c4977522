// Rotation as it is told, pixel by pixel: a slow model to hold the kernels against.
#pragma once

#include "geometry/picture.h"

#include <algorithm>
#include <cmath>

namespace zkr::test {

struct RotationCase {
    int32_t Bits, Order; // 16 bits are gray or colour by the order
    int32_t Angle;       // as given by the caller
    bool MirroredView, Resizes;
    enum { Nearest, Linear, Cubic } Method;
    uint64_t Fill; // a pixel
};

inline int64_t ModelSine(int64_t hundredths) {
    return std::llround(std::sin(static_cast<double>(hundredths) * (3.14159265358979323846 / 18000)) * 16384);
}

class RotationModel {
  public:
    RotationModel(const Picture& source, const RotationCase& given) : source_(source), case_(given) {}

    Picture Run() {
        int64_t a = (-int64_t{case_.Angle}) % 36000;
        if (a < 0) a += 36000;
        if (case_.MirroredView) a = 36000 - a;
        const int64_t sine = ModelSine(a), cosine = ModelSine(a + 9000);
        int64_t w = source_.Width, h = source_.Height;
        if (case_.Resizes) {
            const int64_t cx = (w + 1) / 2, cy = (h + 1) / 2;
            std::vector<int64_t> xs, ys;
            for (const int64_t x : {int64_t{0}, w - 1})
                for (const int64_t y : {int64_t{0}, h - 1}) {
                    xs.push_back(((x - cx) * cosine - (cy - y) * sine) / 16384 + cx);
                    ys.push_back(cy - ((x - cx) * sine + (cy - y) * cosine) / 16384);
                }
            w = *std::max_element(xs.begin(), xs.end()) + 1 - *std::min_element(xs.begin(), xs.end());
            h = *std::max_element(ys.begin(), ys.end()) + 1 - *std::min_element(ys.begin(), ys.end());
        }
        const int64_t u = -(w / 2) * cosine + (h / 2) * sine, v = -(w / 2) * sine - (h / 2) * cosine;
        Place row = {source_.Width / 2 + u / 16384, u % 16384, source_.Height / 2 + v / 16384, v % 16384};
        Picture result{static_cast<int>(w), static_cast<int>(h), {}};
        for (int64_t y = 0; y < h; ++y, row.Add(-sine, cosine)) {
            Place at = row;
            for (int64_t x = 0; x < w; ++x, at.Add(cosine, sine))
                result.Pixels.push_back(PixelAt(at));
        }
        return result;
    }

  private:
    struct Place {
        int64_t X, FX, Y, FY;
        void Add(int64_t dx, int64_t dy) {
            FX += dx, FY += dy;
            Correct(X, FX);
            Correct(Y, FY);
        }
        static void Correct(int64_t& whole, int64_t& fraction) {
            if (fraction >= 8192)
                fraction -= 16384, ++whole;
            else if (fraction < -8191)
                fraction += 16384, --whole;
        }
    };

    // Channels of a pixel, the lowest first.
    std::vector<int64_t> Channels(uint64_t pixel) const {
        if (case_.Bits == 16 && case_.Order != 2) {
            std::vector<int64_t> values;
            for (int i = 0; i < 3; ++i) {
                const auto five = static_cast<int64_t>(pixel >> (5 * i) & 31);
                values.push_back(five * 8 + (five >> 2));
            }
            return values;
        }
        const int width = case_.Bits == 12 ? 12 : case_.Bits == 16 || case_.Bits >= 48 ? 16 : 8;
        std::vector<int64_t> values;
        for (int bit = 0; bit < case_.Bits; bit += width)
            values.push_back(static_cast<int64_t>(pixel >> bit & ((uint64_t{1} << width) - 1)));
        return values;
    }
    uint64_t Pixel(const std::vector<int64_t>& v) const {
        if (case_.Bits == 16 && case_.Order != 2)
            return static_cast<uint64_t>((v[2] & 248) * 128 + (v[1] & 248) * 4 + (v[0] >> 3));
        const int width = case_.Bits == 12 ? 12 : case_.Bits == 16 || case_.Bits >= 48 ? 16 : 8;
        uint64_t pixel = 0;
        for (size_t i = 0; i < v.size(); ++i)
            pixel |= static_cast<uint64_t>(v[i]) << (width * static_cast<int>(i));
        return pixel;
    }
    bool Inside(int64_t x, int64_t y) const {
        return x >= 0 && y >= 0 && x < source_.Width && y < source_.Height;
    }
    uint64_t RawAt(int64_t x, int64_t y) const {
        return Inside(x, y) ? source_.At(static_cast<int>(x), static_cast<int>(y)) : case_.Fill;
    }

    uint64_t PixelAt(const Place& at) const {
        if (!Inside(at.X, at.Y)) return case_.Fill;
        if (case_.Method == RotationCase::Linear) return LinearAt(at);
        if (case_.Method == RotationCase::Cubic) return CubicAt(at);
        return RawAt(at.X, at.Y);
    }
    uint64_t LinearAt(const Place& at) const {
        std::vector<int64_t> p = Channels(RawAt(at.X, at.Y));
        const auto blend = [&](int64_t fraction, uint64_t after, uint64_t before) {
            const std::vector<int64_t> n = Channels(fraction > 0 ? after : before);
            for (size_t i = 0; i < p.size(); ++i)
                p[i] += (fraction > 0 ? n[i] - p[i] : p[i] - n[i]) * fraction / 16384;
        };
        blend(at.FX, RawAt(at.X + 1, at.Y), RawAt(at.X - 1, at.Y));
        blend(at.FY, RawAt(at.X, at.Y + 1), RawAt(at.X, at.Y - 1));
        return Pixel(p);
    }
    static int64_t Spline(const int64_t (&s)[4], float t, int64_t most) {
        float m1 = static_cast<float>(s[0] + s[2] - 2 * s[1]) * 1.5f, m2 = 0;
        const int64_t e = s[1] + s[3] - 2 * s[2];
        if (e != 0) {
            m2 = static_cast<float>(6 * e - s[1]) * 0.266667f;
            m1 = m1 - m2 / 4.0f;
        }
        const float a = 1.0f - t;
        const float value = a * static_cast<float>(s[1]) + t * static_cast<float>(s[2]) +
                            (a * a * a - a) / 6.0f * m1 + (t * t * t - t) / 6.0f * m2 + 0.5f;
        return std::clamp<int64_t>(static_cast<int64_t>(value), 0, most);
    }
    uint64_t CubicAt(Place at) const {
        if (at.FX < 0) --at.X, at.FX += 16384;
        if (at.FY < 0) --at.Y, at.FY += 16384;
        const float tx = static_cast<float>(at.FX) / 16384.0f, ty = static_cast<float>(at.FY) / 16384.0f;
        const int64_t most = case_.Bits == 12 || case_.Bits >= 48 || case_.Order == 2 ? 65535 : 255;
        const int64_t scale = case_.Bits == 12 ? 16 : 1;
        std::vector<int64_t> result;
        for (size_t c = 0; c < Channels(0).size(); ++c) {
            int64_t down[4];
            for (int64_t y = 0; y < 4; ++y) {
                int64_t across[4];
                for (int64_t x = 0; x < 4; ++x)
                    across[x] = Channels(RawAt(at.X - 1 + x, at.Y - 1 + y))[c] * scale;
                down[y] = Spline(across, tx, case_.Bits == 8 ? 255 : most);
            }
            result.push_back(Spline(down, ty, case_.Bits == 8 ? 255 : most) / scale);
        }
        uint64_t pixel = Pixel(result);
        if (case_.Bits == 16 && case_.Order != 2)
            pixel |= (RawAt(at.X, at.Y) | RawAt(at.X + 1, at.Y) | RawAt(at.X, at.Y + 1) |
                      RawAt(at.X + 1, at.Y + 1)) &
                     0x8000;
        return pixel;
    }

    const Picture& source_;
    RotationCase case_;
};

} // namespace zkr::test
