#include "stage.h"

#include "apps/zkr/failure.h"

#include "zkr13n/region_paint.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace zkr::app {

namespace {

constexpr Colour LineBackground = {24, 24, 24}, LineText = {220, 220, 220};
constexpr int LetterSize = 13;
constexpr int OutlineReach = 2; // pixels that an outline may lie outside its region

Rectangle PlaceOf(const Panel& panel) {
    return {panel.place.x, panel.place.y, panel.picture.Width(), panel.picture.Height()};
}

Rectangle Grown(const Rectangle& area, int by) {
    return {area.left - by, area.top - by, area.width + 2 * by, area.height + 2 * by};
}

} // namespace

Stage::Stage(int displayBits) : bits_(displayBits) {}

Stage::~Stage() {
    ReleaseContext();
}

void Stage::ReleaseContext() {
    if (context_ != nullptr) Z_DeleteSurface(context_);
    context_ = nullptr;
}

void Stage::Resize(const Size& whole, bool withLine) {
    ReleaseContext();
    const int lineHeight = withLine ? LineHeight : 0;
    whole_ = {std::max(whole.width, 1), std::max(whole.height, lineHeight + 1)};
    area_ = {whole_.width, whole_.height - lineHeight};
    frame_.assign(static_cast<size_t>(whole_.width) * static_cast<size_t>(whole_.height), 0);
    SurfaceDescription description = {};
    description.StructSize = sizeof description;
    description.Width = area_.width;
    description.Height = area_.height;
    description.BitsPerPixel = 32;
    description.Pitch = area_.width * 4;
    description.TopDown = 1;
    description.Bits = frame_.data();
    Check(Z_CreateSurface(&description, &context_), "the window");
    SetDisplay(bits_);
    lineChanged_ = true;
}

void Stage::SetDisplay(int bits) {
    bits_ = bits;
    device_ = std::make_unique<DisplayDevice>(bits);
    device_->Resize(area_);
    Touch();
}

void Stage::Touch(const Rectangle& inWindow) {
    unpainted_ = Around(unpainted_, Common(inWindow, {0, 0, area_.width, area_.height}));
}

void Stage::Change(const Rectangle& part) {
    const Rectangle inside = Common(part, {0, 0, area_.width, area_.height});
    if (!IsEmpty(inside)) changed_.push_back(inside);
}

void Stage::SetLine(const std::string& text) {
    if (text == line_) return;
    line_ = text;
    lineChanged_ = true;
}

void Stage::SetPanels(std::vector<Panel> panels) {
    for (const Panel& panel : panels_)
        Change(PlaceOf(panel));
    panels_ = std::move(panels);
    for (const Panel& panel : panels_)
        Change(PlaceOf(panel));
}

void Stage::SetBand(const std::optional<Rectangle>& band) {
    if (band_) Change(*band_);
    band_ = band;
    if (band_) Change(*band_);
}

// What is on the device already moves with the picture; the strips that come in are painted.
void Stage::PaintPicture(ShownPicture& picture, const Rectangle& destination) {
    const Rectangle whole = {0, 0, area_.width, area_.height};
    const int dx = destination.left - shownAt_.left, dy = destination.top - shownAt_.top;
    const bool sameSize = destination.width == shownAt_.width && destination.height == shownAt_.height;
    const bool isMoved = dx != 0 || dy != 0;
    shownAt_ = destination;
    if (!sameSize ||
        (isMoved && (!IsEmpty(unpainted_) || std::abs(dx) >= area_.width || std::abs(dy) >= area_.height)))
        unpainted_ = whole;
    if (IsEmpty(unpainted_) && isMoved) {
        device_->Scroll(dx, dy);
        const Rectangle columns = {dx > 0 ? 0 : area_.width + dx, 0, std::abs(dx), area_.height};
        const Rectangle rows = {0, dy > 0 ? 0 : area_.height + dy, area_.width, std::abs(dy)};
        for (const Rectangle& strip : {columns, rows})
            if (!IsEmpty(strip)) device_->Paint(picture.Pixels(), destination, strip);
        Change(whole);
    }
    if (IsEmpty(unpainted_)) return;
    device_->TakePaletteOf(picture.Pixels());
    device_->Paint(picture.Pixels(), destination, unpainted_);
    Change(unpainted_);
    unpainted_ = {};
}

void Stage::DrawOutline(ShownPicture& picture, const Viewport& viewport) {
    const Size seen = picture.SizeSeen();
    const Rectangle place = viewport.Destination();
    const RegionXform xform = {VIEW_TOP_LEFT, place.width, seen.width, place.height,
                               seen.height,   place.left,  place.top};
    Z_FrameBitmapRgn(context_, picture.Pixels().Handle(), &xform, drawnPhase_);
}

void Stage::DrawBand() {
    const Rectangle inside = Common(*band_, {0, 0, area_.width, area_.height});
    for (int y = inside.top; y < inside.top + inside.height; ++y)
        for (int x = inside.left; x < inside.left + inside.width; ++x) {
            const bool isEdge = x == band_->left || x == band_->left + band_->width - 1 || y == band_->top ||
                                y == band_->top + band_->height - 1;
            if (isEdge) Row(y)[x] = (x + y) / 4 % 2 == 0 ? 0x00FFFFFF : 0;
        }
}

void Stage::Put(const Point& place, const Canvas& canvas) {
    const Rectangle inside =
        Common({place.x, place.y, canvas.Width(), canvas.Height()}, {0, 0, whole_.width, whole_.height});
    Canvas& source = const_cast<Canvas&>(canvas);
    for (int y = inside.top; y < inside.top + inside.height; ++y)
        for (int x = inside.left; x < inside.left + inside.width; ++x) {
            const uint8_t* pixel = source.Pixel(x - place.x, y - place.y);
            Row(y)[x] = static_cast<uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
        }
}

// A panel that something was drawn over is drawn again as a whole.
void Stage::DrawPanels() {
    for (const Panel& panel : panels_) {
        const Rectangle place = PlaceOf(panel);
        const bool isHit = std::any_of(changed_.begin(), changed_.end(),
                                       [&](const Rectangle& part) { return !IsEmpty(Common(part, place)); });
        if (!isHit) continue;
        Put(panel.place, panel.picture);
        Change(place);
    }
}

void Stage::DrawLine() {
    lineChanged_ = false;
    const Rectangle place = {0, area_.height, whole_.width, whole_.height - area_.height};
    if (IsEmpty(place)) return;
    Canvas canvas(place.width, place.height, LineBackground);
    lettering_.Draw(canvas, 8, place.height - 7, LetterSize, false, LineText, line_);
    Put({place.left, place.top}, canvas);
    changed_.push_back(place);
}

void Stage::Compose(ShownPicture& picture, const Viewport& viewport) {
    const Rectangle before = outline_;
    outline_ = picture.HasSelection() ? Grown(viewport.InWindow(picture.SelectionBounds()), OutlineReach)
                                      : Rectangle{};
    if (phase_ != drawnPhase_ || !changed_.empty() || IsEmpty(before) != IsEmpty(outline_)) {
        Change(before);
        Change(outline_);
    }
    drawnPhase_ = phase_;
    if (changed_.empty()) return;
    for (const Rectangle& part : changed_)
        for (int y = part.top; y < part.top + part.height; ++y)
            std::copy_n(device_->Row(y) + part.left, part.width, Row(y) + part.left);
    if (!IsEmpty(outline_)) DrawOutline(picture, viewport);
    if (band_) DrawBand();
    DrawPanels();
}

std::vector<Rectangle> Stage::Update(ShownPicture& picture, const Viewport& viewport) {
    PaintPicture(picture, viewport.Destination());
    Compose(picture, viewport);
    if (lineChanged_) DrawLine();
    return std::exchange(changed_, {});
}

} // namespace zkr::app
