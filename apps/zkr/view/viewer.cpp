#include "viewer.h"

#include "apps/zkr/failure.h"

#include "zkr13n/region.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace zkr::app {

namespace {

constexpr uint64_t MarchTime = 120; // from one phase of the outline to the next
constexpr int ShortestDelay = 10, DelayWhereNone = 100;
constexpr int Tolerance = 32; // of the wand
constexpr int ClickReach = 3; // a mouse that moves no further has clicked
constexpr int ValueStep = 50; // thousandths, of brightness and contrast
constexpr double GammaStep = 1.1;
constexpr double Slowest = 1.0 / 16, Fastest = 16;

uint32_t ModeOf(const Modifiers& modifiers) {
    if (modifiers.control) return Z_RGN_OR;
    return modifiers.alt ? Z_RGN_ANDNOTRGN : Z_RGN_SET;
}

Point PointBetween(const Point& from, const Point& to) {
    return {to.x - from.x, to.y - from.y};
}

} // namespace

Viewer::Viewer(std::vector<std::string> paths, int displayBits, const Size& window)
    : paths_(std::move(paths)), stage_(displayBits) {
    Resize(window);
    Open(0);
}

void Viewer::Resize(const Size& window) {
    stage_.Resize(window, hasLine_);
    viewport_.SetWindow(stage_.PictureArea());
    if (picture_ != nullptr) ShowPanels();
}

void Viewer::Open(size_t index) {
    index_ = index;
    picture_ = std::make_unique<ShownPicture>(paths_[index]);
    viewport_.SetPicture(picture_->SizeSeen());
    stage_.Touch();
    frameDue_.reset();
    drag_ = Drag::None;
    ShowPanels();
}

// A file that cannot be shown keeps its place, so that the next one after it is reached.
void Viewer::OpenNeighbour(int step) {
    const size_t count = paths_.size();
    Open((index_ + (step > 0 ? 1 : count - 1)) % count);
}

void Viewer::Do(Command command) {
    message_.clear();
    switch (command) {
    case Command::Quit: done_ = true; break;
    case Command::Next: OpenNeighbour(1); break;
    case Command::Previous: OpenNeighbour(-1); break;
    case Command::Deselect:
        picture_->Deselect();
        stage_.March();
        break;
    case Command::Device: {
        const int bits = stage_.DisplayBits();
        stage_.SetDisplay(bits == 32 ? 1 : bits == 1 ? 4 : bits == 4 ? 8 : 32);
        break;
    }
    case Command::Line:
        hasLine_ = !hasLine_;
        Resize(stage_.Extent());
        break;
    case Command::Sliders:
        hasSliders_ = !hasSliders_;
        ShowPanels();
        break;
    case Command::Help:
        hasHelp_ = !hasHelp_;
        ShowPanels();
        break;
    default: DoWithView(command);
    }
}

void Viewer::DoWithView(Command command) {
    const bool isInside = cursor_.x >= 0 && viewport_.PictureAt(cursor_);
    const Point about = isInside ? cursor_ : viewport_.Middle();
    switch (command) {
    case Command::Fit: viewport_.Fit(); break;
    case Command::FullSize: viewport_.SetScale(1, about); break;
    case Command::ZoomIn: viewport_.Zoom(1, about); break;
    case Command::ZoomOut: viewport_.Zoom(-1, about); break;
    case Command::Left:
    case Command::Right:
    case Command::Up:
    case Command::Down: Pan(command); break;
    case Command::TurnRight:
    case Command::TurnLeft:
    case Command::Mirror:
    case Command::Flip: Turn(command); break;
    default: DoWithValues(command);
    }
}

void Viewer::Pan(Command command) {
    const int stepX = viewport_.Window().width / 8, stepY = viewport_.Window().height / 8;
    viewport_.Pan(command == Command::Left    ? stepX
                  : command == Command::Right ? -stepX
                                              : 0,
                  command == Command::Up     ? stepY
                  : command == Command::Down ? -stepY
                                             : 0);
}

void Viewer::Turn(Command command) {
    if (command == Command::Mirror) picture_->Mirror();
    if (command == Command::Flip) picture_->Flip();
    if (command == Command::TurnRight) picture_->Turn(90);
    if (command == Command::TurnLeft) picture_->Turn(-90);
    viewport_.Turned(picture_->SizeSeen());
    stage_.Touch();
}

void Viewer::DoWithValues(Command command) {
    Adjustments wanted = picture_->Adjusted();
    const auto gamma = [&](double factor) {
        return static_cast<int>(std::lround(picture_->Adjusted().gamma * factor));
    };
    switch (command) {
    case Command::Brighter: wanted.brightness += ValueStep; break;
    case Command::Darker: wanted.brightness -= ValueStep; break;
    case Command::MoreContrast: wanted.contrast += ValueStep; break;
    case Command::LessContrast: wanted.contrast -= ValueStep; break;
    case Command::MoreGamma: wanted.gamma = gamma(GammaStep); break;
    case Command::LessGamma: wanted.gamma = gamma(1 / GammaStep); break;
    case Command::Unadjusted:
        wanted = {};
        if (picture_->IsDeepGray()) picture_->ShowWindow({0, picture_->LargestGray()});
        break;
    default: DoWithAnimation(command); return;
    }
    Adjust(wanted);
}

void Viewer::Adjust(const Adjustments& wanted) {
    picture_->Adjust(wanted);
    stage_.Touch();
    if (hasSliders_) ShowPanels();
}

void Viewer::DoWithAnimation(Command command) {
    if (!picture_->IsAnimation()) return;
    if (command == Command::Pause) paused_ = !paused_;
    if (command == Command::Faster) speed_ = std::min(speed_ * 2, Fastest);
    if (command == Command::Slower) speed_ = std::max(speed_ / 2, Slowest);
    if (command == Command::Step) {
        paused_ = true;
        NextFrame();
    }
    frameDue_.reset();
}

void Viewer::NextFrame() {
    stage_.Touch(viewport_.InWindow(picture_->NextFrame()));
}

void Viewer::ShowPanels() {
    std::vector<Panel> panels;
    if (hasSliders_) panels.push_back(sliders_.Draw(*picture_, stage_.Letters(), stage_.PictureArea()));
    if (hasHelp_) panels.push_back(DrawKeys(stage_.Letters()));
    stage_.SetPanels(std::move(panels));
}

void Viewer::Press(Button button, const Point& point, const Modifiers& modifiers) {
    message_.clear();
    cursor_ = start_ = point;
    modifiers_ = modifiers;
    if (button == Button::Right) {
        drag_ = Drag::Values;
        valuesBefore_ = picture_->Adjusted();
        windowBefore_ = picture_->Window();
        return;
    }
    const auto slider =
        hasSliders_ ? sliders_.At(*picture_, stage_.PictureArea(), point) : std::optional<int>();
    drag_ = slider ? Drag::Slider : modifiers.shift ? Drag::Select : Drag::Pan;
    if (slider) sliders_.held = *slider;
    MoveTo(point);
}

void Viewer::MoveTo(const Point& point) {
    const Point by = PointBetween(cursor_, point);
    cursor_ = point;
    switch (drag_) {
    case Drag::Pan: viewport_.Pan(by.x, by.y); break;
    case Drag::Select: stage_.SetBand(Band(point)); break;
    case Drag::Values: DragValues(point); break;
    case Drag::Slider:
        sliders_.Move(*picture_, stage_.PictureArea(), sliders_.held, point);
        Adjust(picture_->Adjusted());
        break;
    case Drag::None: break;
    }
}

// To the right for more contrast, which is a narrower window of gray; down for darker, which is a higher one.
void Viewer::DragValues(const Point& point) {
    const Point by = PointBetween(start_, point);
    if (!picture_->IsDeepGray()) {
        Adjust({valuesBefore_.brightness - by.y * 4, valuesBefore_.contrast + by.x * 4, valuesBefore_.gamma});
        return;
    }
    const double step = picture_->LargestGray() / 512.0;
    const double middle = (windowBefore_.low + windowBefore_.high) / 2.0 + by.y * step;
    const double half = std::max(1.0, windowBefore_.high - windowBefore_.low - by.x * step) / 2;
    picture_->ShowWindow(
        {static_cast<int>(std::lround(middle - half)), static_cast<int>(std::lround(middle + half))});
    Adjust(picture_->Adjusted());
}

Rectangle Viewer::Band(const Point& to) const {
    const int left = std::min(start_.x, to.x), top = std::min(start_.y, to.y);
    return {left, top, std::abs(to.x - start_.x) + 1, std::abs(to.y - start_.y) + 1};
}

void Viewer::Select(const Point& to) {
    const uint32_t mode = picture_->HasSelection() ? ModeOf(modifiers_) : uint32_t{Z_RGN_SET};
    const Rectangle band = Band(to);
    if (std::max(band.width, band.height) <= ClickReach) {
        if (const auto pixel = viewport_.PictureAt(to)) picture_->SelectNear(*pixel, Tolerance, mode);
    } else {
        const Point first = viewport_.NearestPictureAt({band.left, band.top});
        const Point last =
            viewport_.NearestPictureAt({band.left + band.width - 1, band.top + band.height - 1});
        picture_->SelectRectangle({first.x, first.y, last.x - first.x + 1, last.y - first.y + 1}, mode);
    }
    stage_.March();
}

void Viewer::Release(const Point& point) {
    if (drag_ == Drag::None) return;
    MoveTo(point);
    stage_.SetBand({});
    if (std::exchange(drag_, Drag::None) == Drag::Select) Select(point);
}

void Viewer::Wheel(int steps, const Point& point) {
    cursor_ = point;
    viewport_.Zoom(steps, point);
}

int Viewer::Pass(uint64_t now) {
    int wait = -1;
    const auto until = [&](uint64_t due) {
        const int time = static_cast<int>(due > now ? due - now : 0);
        wait = wait < 0 ? time : std::min(wait, time);
    };
    if (picture_->HasSelection()) {
        if (marchDue_ && now >= *marchDue_) stage_.March();
        if (!marchDue_ || now >= *marchDue_) marchDue_ = now + MarchTime;
        until(*marchDue_);
    }
    if (picture_->IsAnimation() && !paused_) {
        if (frameDue_ && now >= *frameDue_) NextFrame();
        if (!frameDue_ || now >= *frameDue_) {
            const int told = picture_->DelayOfFrame();
            const double delay = (told > 0 ? told : DelayWhereNone) / speed_;
            frameDue_ = now + static_cast<uint64_t>(std::max<double>(delay, ShortestDelay));
        }
        until(*frameDue_);
    }
    return wait;
}

std::string Viewer::Line() {
    if (!message_.empty()) return message_;
    std::string line = Title();
    char text[120];
    const Size seen = picture_->SizeSeen();
    std::snprintf(text, sizeof text, "   %d x %d   %d bits   %.4g %%", seen.width, seen.height,
                  picture_->Pixels().Format().StoredBits(), viewport_.Scale() * 100);
    line += text;
    if (stage_.DisplayBits() < 32) line += "   display " + std::to_string(stage_.DisplayBits());
    if (picture_->IsAnimation()) {
        std::snprintf(text, sizeof text, "   frame %d/%d   x%g%s", picture_->Frame() + 1, picture_->Frames(),
                      speed_, paused_ ? " paused" : "");
        line += text;
    }
    if (picture_->HasSelection()) line += "   " + std::to_string(picture_->SelectionArea()) + " selected";
    if (const auto pixel = viewport_.PictureAt(cursor_)) line += "   " + picture_->Tell(*pixel);
    return line;
}

std::string Viewer::Title() const {
    std::string title = std::filesystem::path(paths_[index_]).filename().string();
    if (paths_.size() > 1)
        title += " (" + std::to_string(index_ + 1) + "/" + std::to_string(paths_.size()) + ")";
    return title;
}

std::vector<Rectangle> Viewer::Update() {
    if (hasLine_) stage_.SetLine(Line());
    return stage_.Update(*picture_, viewport_);
}

} // namespace zkr::app
