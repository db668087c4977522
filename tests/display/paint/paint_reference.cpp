#include "display/paint/paint_reference.h"

#include "colour/dither/reference_dither.h"
#include "support/pixel_bits.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zkr::test {
namespace {

bool IsTurned(int view) {
    return view == 4 || view == 5 || view == 7 || view == 8;
}

unsigned Through(const Picture& p, unsigned level) {
    const bool active = (p.Record.Flags & Z_FLAG_PAINT_LUT_ACTIVE) != 0;
    return active ? p.Record.PaintLUT[level] : level;
}
Colour Through(const Picture& p, const Colour& c) {
    return {Through(p, c.red), Through(p, c.green), Through(p, c.blue)};
}

// Stored pixels, before the paint table. Levels of gray count whether they are active or not.
class StoredPixels {
  public:
    explicit StoredPixels(const Picture& p)
        : picture_(p), palette_(p.Palette), record_(RecordOf(p, palette_)), model_(record_) {}

    Colour At(int column, int row) const {
        const uint8_t* const bytes = picture_.Rows.data() + static_cast<size_t>(row) * record_.BytesPerLine;
        const uint64_t pixel = ReadPixel(bytes, record_.BitsPerPixel, column);
        return record_.BitsPerPixel <= 8 && palette_.empty() ? GrayColour(pixel) : model_.Shown(pixel);
    }

  private:
    static BitmapHandle RecordOf(const Picture& p, std::vector<RGBQUAD>& palette) {
        BitmapHandle b = p.Record;
        if ((b.Flags & Z_FLAG_LEVEL_LUT_ACTIVE) == 0) b.LowBit = b.LevelLowBit, b.HighBit = b.LevelHighBit;
        b.Flags |= Z_FLAG_PALETTE_IS_BLOCK | (b.LevelLUT != nullptr ? Z_FLAG_LEVEL_LUT_ACTIVE : 0);
        b.Palette = palette.data(), b.ColorsUsed = static_cast<uint32_t>(palette.size());
        return b;
    }

    const Picture& picture_;
    std::vector<RGBQUAD> palette_;
    BitmapHandle record_;
    PixelModel model_;
};

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

unsigned Index(const Colour& c, int deviceClass, uint32_t mode) {
    if (deviceClass == 1) return GrayOf(c) >> 7;
    if (deviceClass == 4) {
        const unsigned v = c.red >> 7 | c.green >> 7 << 1 | c.blue >> 7 << 2;
        return v != 0 ? v | 8 : 0;
    }
    if ((mode & 0x100) != 0) return c.red / 51 * 36 + c.green / 51 * 6 + c.blue / 51;
    return (c.red & 0xE0) | (c.green & 0xE0) >> 3 | (c.blue & 0xC0) >> 6;
}

unsigned OrderedIndex(const Picture& p, const Colour& stored, int deviceClass, uint32_t mode, int column,
                      int row) {
    const int t = ((mode & 0x20) != 0 ? Clustered : Dispersed)[(row & 7) * 8 + (column & 7)];
    const auto over = [t](unsigned level) { return t < static_cast<int>(level) ? 1u : 0u; };
    if (deviceClass == 1) return over(Through(p, GrayOf(stored)));
    const Colour c = Through(p, stored);
    if (deviceClass == 4) {
        const unsigned v = over(c.red) | over(c.green) << 1 | over(c.blue) << 2;
        return v != 0 ? v | 8 : 0;
    }
    const int move = (mode & 0x100) != 0 ? t / 6 - 21 : (t >> 3) - 16;
    const auto moved = [move](unsigned channel) {
        return static_cast<unsigned>(std::clamp(static_cast<int>(channel) + move, 0, 255));
    };
    return Index({moved(c.red), moved(c.green), moved(c.blue)}, deviceClass, mode);
}

class Diffusion {
  public:
    Diffusion(int columns, int rows)
        : columns_(columns), sums_(static_cast<size_t>((columns + 2) * (rows + 1) * 3)) {}

    // Of the next pixel in order; the table is applied before but to black and white.
    Colour Next(const Picture& p, Colour c, int x, int y, int deviceClass, uint32_t mode,
                const std::vector<RGBQUAD>& palette) {
        if (deviceClass != 1) c = Through(p, c);
        unsigned* channels[3] = {&c.red, &c.green, &c.blue};
        for (int i = 0; i < 3; ++i)
            *channels[i] =
                static_cast<unsigned>(std::clamp(static_cast<int>(*channels[i]) + Sum(x, y, i) / 16, 0, 255));
        const unsigned index = deviceClass == 1 ? Through(p, GrayOf(c)) >> 7 : Index(c, deviceClass, mode);
        const Colour chosen = ColourOf(palette[index]);
        const unsigned targets[3] = {chosen.red, chosen.green, chosen.blue};
        for (int i = 0; i < 3; ++i) {
            const int d = static_cast<int>(*channels[i]) - static_cast<int>(targets[i]);
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
    return Through(p, GrayColour(static_cast<uint64_t>((510 * white + total) / (2 * total))));
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
        if (std::memcmp(&p.Palette[i], &palette[i], 3) != 0) return false;
    }
    return true;
}

} // namespace

std::vector<RGBQUAD> DitheredPalette(int deviceClass, uint32_t mode) {
    std::vector<RGBQUAD> palette(size_t{1} << deviceClass);
    if (deviceClass == 8 && (mode & 0x100) != 0) {
        palette = Cube216();
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
    const StoredPixels pixels(p);
    Diffusion diffusion(part.right - part.left, part.bottom - part.top);
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x) {
            Colour colour;
            if (coverage) {
                colour = Coverage(p, grid, x, y, method);
            } else {
                const int column = grid.Columns.Nearest(x, false), row = grid.Rows.Nearest(y, true);
                const Colour stored = pixels.At(column, row);
                if (method == Method::Scale || method == Method::ScaleReversed) {
                    const uint8_t* bits = p.Rows.data() + static_cast<size_t>(row) * b.BytesPerLine;
                    colour = Through(
                        p,
                        GrayColour((ReadPixel(bits, 1, column) != 0) == (method == Method::Scale) ? 255 : 0));
                } else if (method != Method::Dithered) {
                    colour = Through(p, stored);
                } else if ((mode & 1) == 0) {
                    colour =
                        diffusion.Next(p, stored, x - part.left, y - part.top, deviceClass, mode, palette);
                } else {
                    colour = ColourOf(palette[OrderedIndex(p, stored, deviceClass, mode, x, y)]);
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
