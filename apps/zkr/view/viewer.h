// Viewer: the pictures, what is done with them by keys and mouse, and what is shown; all but the window itself. Points are
// pixels of the window, times are milliseconds of any clock.
#pragma once

#include "commands.h"
#include "shown_picture.h"
#include "sliders.h"
#include "stage.h"
#include "viewport.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zkr::app {

enum class Button { Left, Right };

struct Modifiers {
    bool shift = false;
    bool control = false;
    bool alt = false;
};

class Viewer {
  public:
    Viewer(std::vector<std::string> paths, int displayBits, const Size& window);

    void Resize(const Size& window);
    void Do(Command command);

    // Dragging pans, with shift it selects, with the right button it changes how values are shown; a click with shift selects
    // what hangs together. With control the selection grows, with alt it shrinks.
    void Press(Button button, const Point& point, const Modifiers& modifiers);
    void MoveTo(const Point& point);
    void Release(const Point& point);
    void Wheel(int steps, const Point& point);

    // What happens by itself: the outline marches and animations play. Gives how long until the next time, -1 for never.
    int Pass(uint64_t now);
    // What the line tells instead of the picture, until the next command.
    void Tell(const std::string& message) { message_ = message; }

    // Gives the parts of the window that have changed.
    std::vector<Rectangle> Update();
    const Stage& Shown() const { return stage_; }
    bool IsDone() const { return done_; }
    std::string Title() const;

  private:
    enum class Drag { None, Pan, Select, Values, Slider };

    void Open(size_t index);
    void OpenNeighbour(int step);
    void DoWithView(Command command);
    void DoWithValues(Command command);
    void DoWithAnimation(Command command);
    void Turn(Command command);
    void Pan(Command command);
    void NextFrame();
    void Adjust(const Adjustments& adjustments);
    void DragValues(const Point& point);
    void Select(const Point& to);
    Rectangle Band(const Point& to) const;
    void ShowPanels();
    std::string Line();

    std::vector<std::string> paths_;
    size_t index_ = 0;
    std::unique_ptr<ShownPicture> picture_;
    Viewport viewport_;
    Stage stage_;
    Sliders sliders_;
    bool hasLine_ = true, hasSliders_ = false, hasHelp_ = false, done_ = false;
    std::string message_;

    Point cursor_ = {-1, -1};
    Drag drag_ = Drag::None;
    Point start_;
    Modifiers modifiers_;
    Adjustments valuesBefore_;
    GrayWindow windowBefore_;

    bool paused_ = false;
    double speed_ = 1;
    std::optional<uint64_t> frameDue_, marchDue_;
};

} // namespace zkr::app
