#include "platform/portable/shapes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zkr::platform {

namespace {

__extension__ using Wide = __int128;
__extension__ using UnsignedWide = unsigned __int128;

constexpr int64_t MaxBands = int64_t{1} << 22;
constexpr int64_t MaxRows = int64_t{1} << 23;
constexpr size_t MaxLines = size_t{1} << 22;

// How many cells at the near end of line k lie outside an ellipse in a box of width x height cells, up to the
// middle of the line. In half cells from the middle a centre is (u, v), and inside is u^2 h^2 + v^2 w^2 < w^2
// h^2: with whole numbers of the parities that u, v, w and h have both sides are never equal.
int64_t Outside(int64_t k, int64_t width, int64_t height) {
    const int64_t v = 2 * k + 1 - height;
    const auto w = static_cast<UnsignedWide>(width), h = static_cast<UnsignedWide>(height);
    const UnsignedWide room = w * w * (h * h - static_cast<UnsignedWide>(Wide{v} * v));
    const auto inside = [&](int64_t i) {
        const auto u = static_cast<UnsignedWide>(width - 2 * i - 1);
        return u * u * h * h < room;
    };
    const long double part = static_cast<long double>(v) / static_cast<long double>(height);
    const long double reach = static_cast<long double>(width) * std::sqrt(1 - part * part);
    const int64_t half = width / 2;
    auto i =
        std::clamp(static_cast<int64_t>((static_cast<long double>(width) - reach) / 2), int64_t{0}, half);
    while (i > 0 && inside(i - 1))
        --i;
    while (i < half && !inside(i))
        ++i;
    return i;
}

// Corners wider than high: row by row.
void AddByRows(const RECT& rect, int64_t cornerWidth, int64_t cornerHeight, BandWriter& writer) {
    const int64_t rows = cornerHeight / 2;
    const auto addRow = [&](int64_t k, int64_t y) {
        const int64_t inset = Outside(k, cornerWidth, cornerHeight);
        writer.StartBand(static_cast<int32_t>(y), static_cast<int32_t>(y + 1));
        writer.Add(static_cast<int32_t>(rect.left + inset), static_cast<int32_t>(rect.right - inset));
        writer.EndBand();
    };
    for (int64_t k = 0; k < rows; ++k)
        addRow(k, rect.top + k);
    // A band without rows would be a rectangle of the set for all that.
    if (rect.top + rows < rect.bottom - rows) {
        writer.StartBand(static_cast<int32_t>(rect.top + rows), static_cast<int32_t>(rect.bottom - rows));
        writer.Add(rect.left, rect.right);
        writer.EndBand();
    }
    for (int64_t k = rows - 1; k >= 0; --k)
        addRow(k, int64_t{rect.bottom} - 1 - k);
}

// Corners higher than wide: column by column, each of which begins a band at its first row, the middle ones
// first.
void AddByColumns(const RECT& rect, int64_t cornerWidth, int64_t cornerHeight, BandWriter& writer) {
    const int64_t columns = cornerWidth / 2;
    const auto firstRow = [&](int64_t k) { // in which column k is inside, counted from either end
        return k == columns ? int64_t{0} : Outside(k, cornerHeight, cornerWidth);
    };
    const auto addBand = [&](int64_t top, int64_t bottom, int64_t inset) {
        if (top >= bottom) return;
        writer.StartBand(static_cast<int32_t>(top), static_cast<int32_t>(bottom));
        writer.Add(static_cast<int32_t>(rect.left + inset), static_cast<int32_t>(rect.right - inset));
        writer.EndBand();
    };
    const bool straight = int64_t{rect.right} - rect.left > 2 * columns; // columns between the corners
    int64_t from = straight ? 0 : firstRow(columns - 1);
    for (int64_t k = straight ? columns : columns - 1; k > 0; --k) {
        const int64_t next = firstRow(k - 1);
        addBand(rect.top + from, rect.top + next, k);
        from = next;
    }
    addBand(rect.top + from, rect.bottom - from, 0);
    for (int64_t k = 1; k <= (straight ? columns : columns - 1); ++k) {
        const int64_t next = firstRow(k);
        addBand(rect.bottom - from, rect.bottom - next, k);
        from = next;
    }
}

} // namespace

bool SetOfRoundRect(const RECT& rect, int64_t cornerWidth, int64_t cornerHeight, PixelSet& out) {
    const int64_t width = int64_t{rect.right} - rect.left, height = int64_t{rect.bottom} - rect.top;
    cornerWidth = std::min(std::abs(cornerWidth), width);
    cornerHeight = std::min(std::abs(cornerHeight), height);
    if (cornerWidth < 2 || cornerHeight < 2) return SetOfRect(rect, out);
    if (std::min(cornerWidth, cornerHeight) > MaxBands) return false;
    BandWriter writer;
    if (cornerWidth >= cornerHeight)
        AddByRows(rect, cornerWidth, cornerHeight, writer);
    else
        AddByColumns(rect, cornerWidth, cornerHeight, writer);
    return writer.Finish(out);
}

// A line as it is met row by row: the first column whose centre is not left of it, and how that moves on.
struct Outline::Edge {
    int64_t firstRow, endRow;
    int64_t column, remainder; // of a division by divisor
    int64_t columnStep, remainderStep, divisor;
    int winding;

    void Step() {
        column += columnStep;
        remainder += remainderStep;
        if (remainder < divisor) return;
        remainder -= divisor;
        ++column;
    }
};

namespace {

Wide FloorDivide(Wide a, Wide b) {
    return a / b - (a % b < 0 ? 1 : 0);
}
// The first row or column whose centre does not lie before a coordinate.
int64_t FirstFrom(int64_t coordinate) {
    constexpr int64_t One = Outline::One;
    return static_cast<int64_t>(FloorDivide(Wide{coordinate} - One / 2 + One - 1, One));
}

} // namespace

Outline::~Outline() {
    Clear();
}

void Outline::Clear() {
    std::free(lines_);
    lines_ = nullptr;
    count_ = room_ = 0;
    first_ = last_ = {};
}

bool Outline::AddLine(Point from, Point to) {
    if (count_ == room_) {
        const size_t room = room_ == 0 ? 16 : room_ * 2;
        auto* grown =
            room > MaxLines ? nullptr : static_cast<Line*>(std::realloc(lines_, room * sizeof(Line)));
        if (grown == nullptr) return false;
        lines_ = grown;
        room_ = room;
    }
    lines_[count_++] = {from, to};
    return true;
}

bool Outline::MoveTo(Point point) {
    if (!Close()) return false;
    first_ = last_ = point;
    return true;
}

bool Outline::LineTo(Point point) {
    const Point from = last_;
    last_ = point;
    return from.y == point.y || AddLine(from, point); // a level line bounds nothing
}

bool Outline::Close() {
    return LineTo(first_);
}

bool Outline::CurveTo(Point control1, Point control2, Point end) {
    // n chords lie within max|B''| / (8 n^2) of the curve, and |B''| within 6 times the second difference of
    // the control points; a 32nd of a pixel is enough.
    const Point points[4] = {last_, control1, control2, end};
    double bend = 0;
    for (int i = 0; i < 2; ++i) {
        const auto x = static_cast<double>(points[i].x - 2 * points[i + 1].x + points[i + 2].x);
        const auto y = static_cast<double>(points[i].y - 2 * points[i + 1].y + points[i + 2].y);
        bend = std::max(bend, std::abs(x) + std::abs(y));
    }
    const auto chords = static_cast<int64_t>(std::ceil(std::sqrt(bend * 6 / 8 / (One / 32)))) + 1;
    for (int64_t i = 1; i < chords; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(chords), s = 1 - t;
        const double weights[4] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
        double x = 0, y = 0;
        for (int k = 0; k < 4; ++k) {
            x += weights[k] * static_cast<double>(points[k].x);
            y += weights[k] * static_cast<double>(points[k].y);
        }
        if (!LineTo({std::llround(x), std::llround(y)})) return false;
    }
    return LineTo(end);
}

bool Outline::Fill(bool alternate, PixelSet& out) const {
    Edge* edges = count_ == 0 ? nullptr : static_cast<Edge*>(std::malloc(count_ * sizeof(Edge)));
    if (count_ != 0 && edges == nullptr) return false;
    size_t used = 0;
    bool slanted = false;
    for (const Line* line = lines_; line != lines_ + count_; ++line) {
        const bool down = line->from.y < line->to.y;
        const Point &top = down ? line->from : line->to, &bottom = down ? line->to : line->from;
        Edge edge{};
        edge.firstRow = FirstFrom(top.y);
        edge.endRow = FirstFrom(bottom.y);
        if (edge.firstRow >= edge.endRow) continue;
        const int64_t dx = bottom.x - top.x, dy = bottom.y - top.y;
        // The line at a row's centre, less half a pixel, in pixels: its numerator over the divisor.
        edge.divisor = One * dy;
        const Wide numerator = Wide{top.x - One / 2} * dy +
                               (Wide{edge.firstRow} * One + One / 2 - top.y) * dx + edge.divisor - 1;
        edge.column = static_cast<int64_t>(FloorDivide(numerator, edge.divisor));
        edge.remainder = static_cast<int64_t>(numerator - Wide{edge.column} * edge.divisor);
        edge.columnStep = static_cast<int64_t>(FloorDivide(dx, dy));
        edge.remainderStep = (dx - edge.columnStep * dy) * One;
        edge.winding = down ? 1 : -1;
        slanted |= dx != 0;
        edges[used++] = edge;
    }
    std::sort(edges, edges + used, [](const Edge& a, const Edge& b) { return a.firstRow < b.firstRow; });
    int64_t rows = 0;
    for (size_t i = 0; i < used; ++i)
        rows = std::max(rows, edges[i].endRow - edges[0].firstRow);
    const bool filled = (!slanted || rows <= MaxRows) && Sweep(edges, used, alternate, out);
    std::free(edges);
    return filled;
}

// Row by row with the edges that cross it, in the order of their columns; many rows at once where all of these
// run straight down.
bool Outline::Sweep(Edge* edges, size_t count, bool alternate, PixelSet& out) {
    auto** active = count == 0 ? nullptr : static_cast<Edge**>(std::malloc(count * sizeof(Edge*)));
    if (count != 0 && active == nullptr) return false;
    const auto byColumn = [](const Edge* a, const Edge* b) { return a->column < b->column; };
    BandWriter writer;
    size_t next = 0, live = 0;
    int64_t y = 0;
    while ((next < count || live > 0) && !writer.Failed()) {
        if (live == 0) y = edges[next].firstRow;
        while (next < count && edges[next].firstRow == y)
            active[live++] = &edges[next++];
        if (!std::is_sorted(active, active + live, byColumn)) std::sort(active, active + live, byColumn);

        int64_t end = next < count ? edges[next].firstRow : INT64_MAX;
        for (size_t i = 0; i < live; ++i) {
            const bool straight = active[i]->columnStep == 0 && active[i]->remainderStep == 0;
            end = straight ? std::min(end, active[i]->endRow) : y + 1;
            if (end == y + 1) break;
        }
        writer.StartBand(static_cast<int32_t>(y), static_cast<int32_t>(end));
        int winding = 0;
        int64_t start = 0;
        for (size_t i = 0; i < live; ++i) {
            const bool wasInside = alternate ? i % 2 == 1 : winding != 0;
            winding += active[i]->winding;
            const bool isInside = alternate ? i % 2 == 0 : winding != 0;
            if (isInside && !wasInside) start = active[i]->column;
            if (wasInside && !isInside)
                writer.Add(static_cast<int32_t>(start), static_cast<int32_t>(active[i]->column));
        }
        writer.EndBand();

        y = end;
        size_t kept = 0;
        for (size_t i = 0; i < live; ++i) {
            if (active[i]->endRow <= y) continue;
            active[i]->Step();
            active[kept++] = active[i];
        }
        live = kept;
    }
    std::free(active);
    return writer.Finish(out);
}

} // namespace zkr::platform
