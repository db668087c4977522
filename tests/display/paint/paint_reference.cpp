#include "display/paint/paint_reference.h"

#include "support/pixel_bits.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zkr::test {
namespace {

constexpr int Dispersed[8][8] = {
    {0, 128, 32, 160, 8, 136, 40, 168},   {192, 64, 224, 96, 200, 72, 232, 104},
    {48, 176, 16, 144, 56, 184, 24, 152}, {236, 112, 208, 80, 244, 120, 216, 88},
    {12, 140, 44, 172, 4, 132, 36, 164},  {204, 76, 232, 108, 196, 68, 228, 100},
    {60, 188, 28, 156, 52, 180, 20, 148}, {248, 124, 220, 92, 240, 116, 212, 84}};
constexpr int Clustered[8][8] = {
    {112, 40, 72, 104, 144, 176, 208, 136}, {88, 8, 16, 48, 192, 232, 240, 168},
    {56, 24, 0, 80, 160, 224, 248, 200},    {96, 64, 32, 120, 128, 216, 184, 152},
    {148, 180, 212, 140, 116, 44, 76, 108}, {196, 236, 244, 172, 92, 12, 20, 52},
    {164, 228, 252, 204, 60, 28, 4, 84},    {132, 220, 188, 156, 100, 68, 36, 124}};

bool IsTurned(int view) {
    return view == 4 || view == 5 || view == 7 || view == 8;
}

int GrayOf(const Colour& c) {
    return (2 * c.Red + 5 * c.Green + c.Blue + 4) >> 3;
}

Colour ColourOf(const RGBQUAD& entry) {
    return {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
}

int Through(const Picture& p, int level) {
    const bool active = (p.Record.Flags & Z_FLAG_PAINT_LUT_ACTIVE) != 0;
    return active ? p.Record.PaintLUT[level] : level;
}
Colour Through(const Picture& p, const Colour& c) {
    return {Through(p, c.Red), Through(p, c.Green), Through(p, c.Blue)};
}

Colour GrayPixel(const BitmapHandle& b, uint32_t value) {
    const bool active = (b.Flags & Z_FLAG_LEVEL_LUT_ACTIVE) != 0, table = b.LevelLUT != nullptr;
    const int low = active ? b.LowBit : b.LevelLowBit, high = active ? b.HighBit : b.LevelHighBit;
    uint32_t mask;
    int shift, bits;
    Z_GetGrayParams(b.BitsPerPixel, table ? b.BitsPerPixel : 8, low, high, &bits, &mask, &shift);
    const uint32_t level = value >> shift & mask;
    if (table) return level < b.LevelLUTLength ? ColourOf(b.LevelLUT[level]) : Colour::Gray(0);
    return Colour::Gray(static_cast<int>(mask < 255 ? level * 255 / mask : level));
}

// A stored pixel, before the paint table.
Colour Stored(const Picture& p, int column, int row) {
    const BitmapHandle& b = p.Record;
    const auto value =
        ReadPixel(p.Rows.data() + static_cast<size_t>(row) * b.BytesPerLine, b.BitsPerPixel, column);
    const auto byte = [&](int place) { return static_cast<int>(value >> place & 255); };
    const bool redFirst = b.Order == Z_ORDER_RGB;
    const auto ordered = [&](int first, int second, int third) {
        return redFirst ? Colour{first, second, third} : Colour{third, second, first};
    };
    switch (b.BitsPerPixel) {
    case 12: return GrayPixel(b, static_cast<uint32_t>(value));
    case 16: {
        if (b.Order == Z_ORDER_GRAY) return GrayPixel(b, static_cast<uint32_t>(value));
        const auto wide = [&](int place) {
            const int c = static_cast<int>(value >> place & 31);
            return c << 3 | c >> 2;
        };
        return ordered(wide(0), wide(5), wide(10));
    }
    case 24:
    case 32: return ordered(byte(0), byte(8), byte(16));
    case 48:
    case 64: return ordered(byte(8), byte(24), byte(40));
    default: break;
    }
    const auto index = static_cast<size_t>(value);
    if (p.Palette.empty()) return Colour::Gray(static_cast<int>(index));
    return index < p.Palette.size() ? ColourOf(p.Palette[index]) : Colour::Gray(0);
}

int CeilDiv(long long a, long long b) {
    return static_cast<int>((a + b - 1) / b);
}

// One axis of storage: which scaled places are painted, what they show, and where on the device.
struct Axis {
    int Old, SourceFrom, SourceLength, New;
    int First, End; // scaled, or counted from the source for coverage

    long long Total() const { return std::max(1ll, (2ll * Old * New + SourceLength) / (2ll * SourceLength)); }
    int Nearest(int place, bool isRow) const {
        if (SourceLength == New) return place;
        const long long total = Total();
        const long long carry = isRow && total >= Old ? Old - 1 : 0;
        return static_cast<int>(std::min<long long>((1ll * place * Old + carry) / total, Old - 1));
    }
    // How much of a pixel a place covers.
    long long Covered(int place, int pixel, bool exact) const {
        const long long from = 1ll * place * SourceLength, to = from + SourceLength;
        const long long at = 1ll * (pixel - SourceFrom) * New;
        if (exact) return std::max(0ll, std::min(to, at + New) - std::max(from, at));
        const long long first = from / New, end = std::max(to / New, first + 1);
        return pixel - SourceFrom >= first && pixel - SourceFrom < end;
    }
};

struct Grid {
    Axis Columns, Rows;
    int View;
    RECT Destination; // upright
    bool UpsideDown;

    // Of scaled places counted from the source's.
    POINT OnDevice(int column, int row) const {
        const bool turned = IsTurned(View);
        const int width = Destination.right - Destination.left, height = Destination.bottom - Destination.top;
        int x = turned ? row : column, y = turned ? column : row;
        if (View == 1 || View == 3 || View == 4 || View == 7) x = width - 1 - x;
        if ((View == 2 || View == 3 || View == 7 || View == 8) != UpsideDown) y = height - 1 - y;
        return {Destination.left + x, Destination.top + y};
    }
};

int Index(const Colour& c, int deviceClass, uint32_t mode) {
    if (deviceClass == 1) return GrayOf(c) >> 7;
    if (deviceClass == 4) {
        const int v = c.Red >> 7 | c.Green >> 7 << 1 | c.Blue >> 7 << 2;
        return v != 0 ? v | 8 : 0;
    }
    if ((mode & 0x100) != 0) return c.Red / 51 * 36 + c.Green / 51 * 6 + c.Blue / 51;
    return (c.Red & 0xE0) | (c.Green & 0xE0) >> 3 | (c.Blue & 0xC0) >> 6;
}

int OrderedIndex(const Picture& p, const Colour& stored, int deviceClass, uint32_t mode, int column,
                 int row) {
    const int t = ((mode & 0x20) != 0 ? Clustered : Dispersed)[row & 7][column & 7];
    if (deviceClass == 1) return t < Through(p, GrayOf(stored));
    const Colour c = Through(p, stored);
    if (deviceClass == 4) {
        const int v = (t < c.Red) | (t < c.Green) << 1 | (t < c.Blue) << 2;
        return v != 0 ? v | 8 : 0;
    }
    const int move = (mode & 0x100) != 0 ? t / 6 - 21 : (t >> 3) - 16;
    const auto moved = [move](int channel) { return std::clamp(channel + move, 0, 255); };
    return Index({moved(c.Red), moved(c.Green), moved(c.Blue)}, deviceClass, mode);
}

class Diffusion {
  public:
    Diffusion(int columns, int rows)
        : columns_(columns), sums_(static_cast<size_t>((columns + 2) * (rows + 1) * 3)) {}

    // Of the next pixel in order; the table is applied before but to black and white.
    Colour Next(const Picture& p, Colour c, int x, int y, int deviceClass, uint32_t mode,
                const std::vector<RGBQUAD>& palette) {
        if (deviceClass != 1) c = Through(p, c);
        int* channels[3] = {&c.Red, &c.Green, &c.Blue};
        for (int i = 0; i < 3; ++i)
            *channels[i] = std::clamp(*channels[i] + Sum(x, y, i) / 16, 0, 255);
        const int index = deviceClass == 1 ? Through(p, GrayOf(c)) >> 7 : Index(c, deviceClass, mode);
        const Colour chosen = ColourOf(palette[static_cast<size_t>(index)]);
        const int targets[3] = {chosen.Red, chosen.Green, chosen.Blue};
        for (int i = 0; i < 3; ++i) {
            const int d = *channels[i] - targets[i];
            if (x + 1 < columns_) Sum(x + 1, y, i) += 7 * d;
            Sum(x - 1, y + 1, i) += 3 * d;
            Sum(x, y + 1, i) += 5 * d;
            Sum(x + 1, y + 1, i) += d;
        }
        return chosen;
    }

  private:
    int& Sum(int x, int y, int channel) {
        return sums_[static_cast<size_t>((y * (columns_ + 2) + x + 1) * 3 + channel)];
    }

    int columns_;
    std::vector<int> sums_;
};

Colour Coverage(const Picture& p, const Grid& grid, int column, int row, Method method) {
    const bool exact = method == Method::Scale || method == Method::ScaleReversed;
    const bool reversed = method == Method::ScaleReversed || method == Method::CoarseReversed;
    const auto reach = [&](const Axis& axis, int place) {
        const int from = axis.SourceFrom + static_cast<int>(1ll * place * axis.SourceLength / axis.New);
        const int to = axis.SourceFrom + static_cast<int>((place + 1ll) * axis.SourceLength / axis.New) + 1;
        return std::pair(std::max(from, 0), std::min(to, axis.Old - 1));
    };
    long long white = 0, total = 0;
    const auto [left, right] = reach(grid.Columns, column);
    const auto [top, bottom] = reach(grid.Rows, row);
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            const long long area = grid.Columns.Covered(column, x, exact) * grid.Rows.Covered(row, y, exact);
            total += area;
            const uint8_t* bits = p.Rows.data() + static_cast<size_t>(y) * p.Record.BytesPerLine;
            if ((ReadPixel(bits, 1, x) != 0) != reversed) white += area;
        }
    }
    return Through(p, Colour::Gray(static_cast<int>((510 * white + total) / (2 * total))));
}

Axis MakeAxis(int old, int from, int to, int clipFrom, int clipTo, int target, bool coverage) {
    Axis axis{old, from, to - from, target, 0, 0};
    clipFrom = std::max({clipFrom, from, 0});
    clipTo = std::min({clipTo, to, old});
    if (coverage) clipFrom -= from, clipTo -= from;
    axis.First = CeilDiv(1ll * clipFrom * target, axis.SourceLength);
    axis.End = CeilDiv(1ll * clipTo * target, axis.SourceLength);
    return axis;
}

bool HasEntries(const Picture& p, const std::vector<RGBQUAD>& palette) {
    for (size_t i = 0; i < p.Palette.size(); ++i) {
        if (ColourOf(p.Palette[i]).Word() != ColourOf(palette[i]).Word()) return false;
    }
    return true;
}

} // namespace

std::vector<RGBQUAD> DitheredPalette(int deviceClass, uint32_t mode) {
    std::vector<RGBQUAD> palette(size_t{1} << deviceClass);
    if (deviceClass == 8 && (mode & 0x100) != 0) {
        for (unsigned i = 0; i < 216; ++i)
            palette[i] = {static_cast<uint8_t>(i % 6 * 51), static_cast<uint8_t>(i / 6 % 6 * 51),
                          static_cast<uint8_t>(i / 36 * 51), 0};
    } else {
        Z_GetFixedPalette(palette.data(), deviceClass);
    }
    return palette;
}

Method MethodOf(const Picture& p, int d, uint32_t m) {
    const bool m8 = (m & 8) != 0, m80 = (m & 0x80) != 0;
    const auto if2 = [](bool two, Method other) { return two ? Method::Dithered : other; };
    const int bits = p.Record.BitsPerPixel;
    if (bits == 1) {
        const bool path10 = (m & 0x10) != 0 && d > 1;
        const int gray = Z_IsGrayScaleBitmap(&p.Record);
        if (path10 && gray == 1) return Method::Scale;
        if (path10 && gray == 2) return Method::ScaleReversed;
        if (!path10 && (m & 0x40) != 0 && gray == 1) return Method::Coarse;
        if (!path10 && (m & 0x40) != 0 && gray == 2) return Method::CoarseReversed;
        return if2(m8 && m80 && d <= 8 && (path10 || d == 8), Method::AsStored);
    }
    if (bits == 4) {
        if (d == 4) return if2(m8 && !HasEntries(p, DitheredPalette(4, 0)), Method::AsStored);
        return if2(m8 && (m80 ? d <= 8 : d < 4), Method::AsStored);
    }
    if (bits < 8) return if2(m8 && (m80 ? d <= 8 : d < 8), Method::Widened);
    if (bits == 8)
        return if2(m8 && (d < 8 || (m80 && d == 8 && !HasEntries(p, DitheredPalette(8, 0)))),
                   Method::AsStored);
    if (bits == 24) return if2(m8 && d <= 8, Method::AsStored);
    bool gray = (bits == 12 || bits == 16) && p.Record.Order == 2;
    if (gray && p.Record.LevelLUT != nullptr) {
        BitmapHandle record = p.Record;
        if ((record.Flags & Z_FLAG_LEVEL_LUT_ACTIVE) == 0)
            record.LowBit = record.LevelLowBit, record.HighBit = record.LevelHighBit;
        record.Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
        gray = Z_IsGrayScaleBitmap(&record) != 0;
    }
    if (gray) return if2(m8 && (d < 8 || (d == 8 && m80)), Method::Widened);
    return if2(m8 && d <= 8, Method::Widened);
}

std::vector<std::optional<Colour>> Painted(const Picture& p, const Shown& shown, Method method,
                                           int deviceClass, uint32_t mode, int width, int height) {
    std::vector<std::optional<Colour>> device(static_cast<size_t>(width * height));
    const BitmapHandle& b = p.Record;
    int view = b.ViewPerspective;
    if (shown.DocumentLocked && view != 2) view = 0;
    RECT to = shown.Destination;
    const bool upsideDown = to.bottom < to.top;
    if (upsideDown) std::swap(to.top, to.bottom);
    if (to.right <= to.left || to.bottom == to.top) return device;
    const RECT &s = shown.Source, &c = shown.SourceClip;
    if (s.right <= s.left || s.bottom <= s.top) return device;
    const int across = to.right - to.left, down = to.bottom - to.top;
    const int alongColumns = IsTurned(view) ? down : across, alongRows = IsTurned(view) ? across : down;
    const bool scaled = alongColumns != s.right - s.left || alongRows != s.bottom - s.top;
    const bool coverage = scaled && method >= Method::Scale;
    const Grid grid = {MakeAxis(b.Width, s.left, s.right, c.left, c.right, alongColumns, coverage),
                       MakeAxis(b.Height, s.top, s.bottom, c.top, c.bottom, alongRows, coverage), view, to,
                       upsideDown};

    // The part that lies in the clip of the destination.
    const int originX = coverage ? 0 : CeilDiv(1ll * s.left * alongColumns, s.right - s.left);
    const int originY = coverage ? 0 : CeilDiv(1ll * s.top * alongRows, s.bottom - s.top);
    RECT part = {INT32_MAX, INT32_MAX, 0, 0};
    for (int y = grid.Rows.First; y < grid.Rows.End; ++y) {
        for (int x = grid.Columns.First; x < grid.Columns.End; ++x) {
            const POINT at = grid.OnDevice(x - originX, y - originY);
            const RECT& clip = shown.DestinationClip;
            if (at.x < clip.left || at.x >= clip.right || at.y < clip.top || at.y >= clip.bottom) continue;
            part = {std::min<int>(part.left, x), std::min<int>(part.top, y), std::max<int>(part.right, x + 1),
                    std::max<int>(part.bottom, y + 1)};
        }
    }
    if (part.right == 0) return device;
    const std::vector<RGBQUAD> palette =
        method == Method::Dithered ? DitheredPalette(deviceClass, mode) : std::vector<RGBQUAD>();
    Diffusion diffusion(part.right - part.left, part.bottom - part.top);
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) {
            Colour colour;
            if (coverage) {
                colour = Coverage(p, grid, x, y, method);
            } else {
                const int column = grid.Columns.Nearest(x, false), row = grid.Rows.Nearest(y, true);
                const Colour stored = Stored(p, column, row);
                if (method == Method::Scale || method == Method::ScaleReversed) {
                    const uint8_t* bits = p.Rows.data() + static_cast<size_t>(row) * b.BytesPerLine;
                    colour = Through(
                        p, Colour::Gray((ReadPixel(bits, 1, column) != 0) == (method == Method::Scale) ? 255
                                                                                                       : 0));
                } else if (method != Method::Dithered) {
                    colour = Through(p, stored);
                } else if ((mode & 1) == 0) {
                    colour =
                        diffusion.Next(p, stored, x - part.left, y - part.top, deviceClass, mode, palette);
                } else {
                    colour = ColourOf(
                        palette[static_cast<size_t>(OrderedIndex(p, stored, deviceClass, mode, x, y))]);
                }
            }
            const POINT at = grid.OnDevice(x - originX, y - originY);
            if (at.x >= 0 && at.y >= 0 && at.x < width && at.y < height)
                device[static_cast<size_t>(at.y * width + at.x)] = colour;
        }
    }
    return device;
}

} // namespace zkr::test
