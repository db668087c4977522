#include "viewport.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace zkr::app {

namespace {

constexpr double Ladder[] = {1.0 / 64, 1.0 / 48, 1.0 / 32, 1.0 / 24, 1.0 / 16, 1.0 / 12, 1.0 / 8,
                             1.0 / 6,  1.0 / 4,  1.0 / 3,  1.0 / 2,  2.0 / 3,  1,        1.5,
                             2,        3,        4,        6,        8,        12,       16,
                             24,       32,       48,       64};
constexpr double Near = 1e-9; // a scale so near to a rung stands on it
constexpr double LongestSide = 1 << 30;

int Scaled(int size, double scale) {
    return std::max(1, static_cast<int>(std::lround(size * scale)));
}

// The first pixel of `to` pixels that shows pixel `edge` of `from` pixels, or a later one.
int ScaledEdge(int edge, int from, int to) {
    const int64_t product = int64_t{edge} * to;
    return static_cast<int>(product / from + (product % from > 0 ? 1 : 0));
}

// One axis: in the middle where there is room, else without a gap at either end.
double Placed(double start, int size, int window) {
    if (size <= window) return (window - size) / 2;
    return std::clamp(start, static_cast<double>(window - size), 0.0);
}

} // namespace

bool IsEmpty(const Rectangle& area) {
    return area.width <= 0 || area.height <= 0;
}

bool Contains(const Rectangle& area, const Point& point) {
    return point.x >= area.left && point.y >= area.top && point.x - area.left < area.width &&
           point.y - area.top < area.height;
}

Rectangle Common(const Rectangle& one, const Rectangle& other) {
    const int left = std::max(one.left, other.left), top = std::max(one.top, other.top);
    const int right = std::min(one.left + one.width, other.left + other.width);
    const int bottom = std::min(one.top + one.height, other.top + other.height);
    return {left, top, std::max(0, right - left), std::max(0, bottom - top)};
}

Rectangle Around(const Rectangle& one, const Rectangle& other) {
    if (IsEmpty(one)) return other;
    if (IsEmpty(other)) return one;
    const int left = std::min(one.left, other.left), top = std::min(one.top, other.top);
    return {left, top, std::max(one.left + one.width, other.left + other.width) - left,
            std::max(one.top + one.height, other.top + other.height) - top};
}

double Viewport::FittingScale() const {
    return std::min({1.0, static_cast<double>(window_.width) / picture_.width,
                     static_cast<double>(window_.height) / picture_.height});
}

void Viewport::Settle() {
    if (fitted_) scale_ = FittingScale();
    left_ = Placed(left_, Scaled(picture_.width, scale_), window_.width);
    top_ = Placed(top_, Scaled(picture_.height, scale_), window_.height);
}

void Viewport::SetWindow(const Size& window) {
    left_ += (window.width - window_.width) / 2;
    top_ += (window.height - window_.height) / 2;
    window_ = {std::max(1, window.width), std::max(1, window.height)};
    Settle();
}

void Viewport::SetPicture(const Size& picture) {
    picture_ = picture;
    Fit();
}

void Viewport::Turned(const Size& picture) {
    picture_ = picture;
    left_ = (window_.width - Scaled(picture.width, scale_)) / 2;
    top_ = (window_.height - Scaled(picture.height, scale_)) / 2;
    Settle();
}

void Viewport::Fit() {
    fitted_ = true;
    Settle();
}

void Viewport::SetScale(double scale, const Point& about) {
    const double largest =
        std::min(*std::rbegin(Ladder), LongestSide / std::max(picture_.width, picture_.height));
    const double wanted = std::clamp(scale, std::min(Ladder[0], FittingScale()), largest);
    const auto start = [&](double before, int at, int size) {
        const double ratio = static_cast<double>(Scaled(size, wanted)) / Scaled(size, scale_);
        return at + 0.5 - (at + 0.5 - before) * ratio;
    };
    left_ = start(left_, about.x, picture_.width);
    top_ = start(top_, about.y, picture_.height);
    scale_ = wanted;
    fitted_ = false;
    Settle();
}

void Viewport::Zoom(int steps, const Point& about) {
    double scale = scale_;
    for (; steps > 0; --steps) {
        const auto* rung = std::upper_bound(std::begin(Ladder), std::end(Ladder), scale * (1 + Near));
        if (rung != std::end(Ladder)) scale = *rung;
    }
    for (; steps < 0; ++steps) {
        const auto* rung = std::lower_bound(std::begin(Ladder), std::end(Ladder), scale * (1 - Near));
        if (rung != std::begin(Ladder)) scale = *(rung - 1);
    }
    if (scale != scale_) SetScale(scale, about);
}

void Viewport::Pan(int dx, int dy) {
    left_ += dx;
    top_ += dy;
    Settle();
}

Rectangle Viewport::Destination() const {
    return {static_cast<int>(std::floor(left_ + 0.5)), static_cast<int>(std::floor(top_ + 0.5)),
            Scaled(picture_.width, scale_), Scaled(picture_.height, scale_)};
}

Rectangle Viewport::Visible() const {
    return Common(Destination(), {0, 0, window_.width, window_.height});
}

Point Viewport::NearestPictureAt(const Point& inWindow) const {
    const Rectangle place = Destination();
    const auto at = [](int point, int start, int size, int pixels) {
        const int64_t inside = std::clamp(int64_t{point} - start, int64_t{0}, int64_t{size} - 1);
        return static_cast<int>(inside * pixels / size);
    };
    return {at(inWindow.x, place.left, place.width, picture_.width),
            at(inWindow.y, place.top, place.height, picture_.height)};
}

std::optional<Point> Viewport::PictureAt(const Point& inWindow) const {
    if (!Contains(Visible(), inWindow)) return {};
    return NearestPictureAt(inWindow);
}

Rectangle Viewport::InWindow(const Rectangle& ofPicture) const {
    const Rectangle place = Destination();
    const int left = ScaledEdge(ofPicture.left, picture_.width, place.width);
    const int top = ScaledEdge(ofPicture.top, picture_.height, place.height);
    return {place.left + left, place.top + top,
            ScaledEdge(ofPicture.left + ofPicture.width, picture_.width, place.width) - left,
            ScaledEdge(ofPicture.top + ofPicture.height, picture_.height, place.height) - top};
}

} // namespace zkr::app
