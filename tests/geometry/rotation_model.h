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
    struct Values {
        int64_t V[4];
    };
    bool IsColour16() const { return case_.Bits == 16 && case_.Order != 2; }
    int ChannelBits() const { return case_.Bits == 12 ? 12 : case_.Bits == 16 || case_.Bits >= 48 ? 16 : 8; }
    int Channels() const { return IsColour16() ? 3 : case_.Bits / ChannelBits(); }
    Values ValuesOf(uint64_t pixel) const {
        Values values{};
        for (int i = 0; i < Channels(); ++i) {
            const auto five = static_cast<int64_t>(pixel >> (5 * i) & 31);
            values.V[i] = IsColour16() ? five * 8 + (five >> 2)
                                       : static_cast<int64_t>(pixel >> (i * ChannelBits()) &
                                                              ((uint64_t{1} << ChannelBits()) - 1));
        }
        return values;
    }
    uint64_t PixelOf(const Values& values) const {
        const auto& v = values.V;
        if (IsColour16()) return static_cast<uint64_t>((v[2] & 248) * 128 + (v[1] & 248) * 4 + (v[0] >> 3));
        uint64_t pixel = 0;
        for (int i = 0; i < Channels(); ++i)
            pixel |= static_cast<uint64_t>(v[i]) << (ChannelBits() * i);
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
        Values p = ValuesOf(RawAt(at.X, at.Y));
        const auto blend = [&](int64_t fraction, uint64_t after, uint64_t before) {
            const Values n = ValuesOf(fraction > 0 ? after : before);
            for (int i = 0; i < Channels(); ++i)
                p.V[i] += (fraction > 0 ? n.V[i] - p.V[i] : p.V[i] - n.V[i]) * fraction / 16384;
        };
        blend(at.FX, RawAt(at.X + 1, at.Y), RawAt(at.X - 1, at.Y));
        blend(at.FY, RawAt(at.X, at.Y + 1), RawAt(at.X, at.Y - 1));
        return PixelOf(p);
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
        const int64_t most = ChannelBits() == 8 || IsColour16() ? 255 : 65535;
        const int64_t scale = case_.Bits == 12 ? 16 : 1;
        Values around[4][4], result{};
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                around[y][x] = ValuesOf(RawAt(at.X - 1 + x, at.Y - 1 + y));
        for (int c = 0; c < Channels(); ++c) {
            int64_t down[4];
            for (int y = 0; y < 4; ++y) {
                int64_t across[4];
                for (int x = 0; x < 4; ++x)
                    across[x] = around[y][x].V[c] * scale;
                down[y] = Spline(across, tx, most);
            }
            result.V[c] = Spline(down, ty, most) / scale;
        }
        uint64_t pixel = PixelOf(result);
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
