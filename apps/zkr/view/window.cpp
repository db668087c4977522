// By SDL. Only the parts of the window that have changed are sent to the display.
#include "window.h"

#include "viewer.h"

#include "apps/zkr/failure.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>

#include <memory>
#include <optional>

namespace zkr::app {

namespace {

[[noreturn]] void Fail() {
    throw Failure("the window", SDL_GetError());
}

class Session {
  public:
    Session() {
        SDL_SetMainReady();
        if (SDL_Init(SDL_INIT_VIDEO) != 0) Fail();
    }
    ~Session() { SDL_Quit(); }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
};

struct Closer {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
    void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
};

class Window {
  public:
    explicit Window(Viewer& viewer);
    void Run();

  private:
    void Handle(const SDL_Event& event);
    void HandleKey(const SDL_Keysym& key);
    void HandleText(const char* text);
    void HandleWindow(const SDL_WindowEvent& event);
    void HandleButton(const SDL_MouseButtonEvent& event);
    void Do(std::optional<Command> command);
    void Show();

    Viewer& viewer_;
    Session session_;
    std::unique_ptr<SDL_Window, Closer> window_;
    std::string title_;
    bool all_ = true; // the display has lost what it had

    // As they were when the event came that is looked at: the system's own state may be ahead of it.
    int held_ = 0; // KMOD_...
    Point pointer_ = {};
};

Window::Window(Viewer& viewer) : viewer_(viewer) {
    const Size& size = viewer.Shown().Extent();
    window_.reset(SDL_CreateWindow(viewer.Title().c_str(), SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED,
                                   size.width, size.height, SDL_WINDOW_RESIZABLE));
    if (window_ == nullptr) Fail();
    SDL_StartTextInput();
}

void Window::Do(std::optional<Command> command) {
    if (command) viewer_.Do(*command);
}

// Keys that make no character; those that do come as text, whatever the keyboard.
void Window::HandleKey(const SDL_Keysym& key) {
    if ((key.sym >= 33 && key.sym < 127) || (key.mod & (KMOD_CTRL | KMOD_ALT)) != 0) return;
    switch (key.sym) {
    case SDLK_PAGEDOWN: Do(Command::Next); return;
    case SDLK_PAGEUP: Do(Command::Previous); return;
    default: Do(CommandOfKey(SDL_GetKeyName(key.sym)));
    }
}

void Window::HandleText(const char* text) {
    if (text[0] != ' ') Do(CommandOfKey(text));
}

void Window::HandleWindow(const SDL_WindowEvent& event) {
    if (event.event == SDL_WINDOWEVENT_EXPOSED) all_ = true;
    if (event.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
        viewer_.Resize({event.data1, event.data2});
        all_ = true;
    }
}

void Window::HandleButton(const SDL_MouseButtonEvent& event) {
    const Point point = {event.x, event.y};
    if (event.type == SDL_MOUSEBUTTONUP) {
        viewer_.Release(point);
        return;
    }
    if (event.button != SDL_BUTTON_LEFT && event.button != SDL_BUTTON_RIGHT) return;
    viewer_.Press(event.button == SDL_BUTTON_LEFT ? Button::Left : Button::Right, point,
                  {(held_ & KMOD_SHIFT) != 0, (held_ & KMOD_CTRL) != 0, (held_ & KMOD_ALT) != 0});
}

void Window::Handle(const SDL_Event& event) {
    switch (event.type) {
    case SDL_QUIT: viewer_.Do(Command::Quit); break;
    case SDL_WINDOWEVENT: HandleWindow(event.window); break;
    case SDL_KEYDOWN:
        held_ = event.key.keysym.mod;
        HandleKey(event.key.keysym);
        break;
    case SDL_KEYUP: held_ = event.key.keysym.mod; break;
    case SDL_TEXTINPUT: HandleText(event.text.text); break;
    case SDL_MOUSEMOTION:
        pointer_ = {event.motion.x, event.motion.y};
        viewer_.MoveTo(pointer_);
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: HandleButton(event.button); break;
    case SDL_MOUSEWHEEL: viewer_.Wheel(event.wheel.y, pointer_); break;
    default: break;
    }
}

void Window::Show() {
    std::vector<Rectangle> changed = viewer_.Update();
    const Stage& stage = viewer_.Shown();
    const Size& size = stage.Extent();
    if (all_) changed = {{0, 0, size.width, size.height}};
    if (changed.empty()) return;
    SDL_Surface* target = SDL_GetWindowSurface(window_.get());
    if (target == nullptr) Fail();
    const std::unique_ptr<SDL_Surface, Closer> source(
        SDL_CreateRGBSurfaceWithFormatFrom(const_cast<uint32_t*>(stage.Pixels()), size.width, size.height, 32,
                                           size.width * 4, SDL_PIXELFORMAT_RGB888));
    if (source == nullptr) Fail();
    std::vector<SDL_Rect> parts;
    for (const Rectangle& part : changed) {
        SDL_Rect from = {part.left, part.top, part.width, part.height}, to = from;
        if (SDL_BlitSurface(source.get(), &from, target, &to) != 0) Fail();
        if (to.w > 0 && to.h > 0) parts.push_back(to);
    }
    if (SDL_UpdateWindowSurfaceRects(window_.get(), parts.data(), static_cast<int>(parts.size())) != 0)
        Fail();
    all_ = false;
    if (title_ != viewer_.Title()) {
        title_ = viewer_.Title();
        SDL_SetWindowTitle(window_.get(), title_.c_str());
    }
}

// All events that are there count before anything is painted. A picture that cannot be shown is told in the line.
void Window::Run() {
    while (!viewer_.IsDone()) {
        int wait = 0;
        try {
            wait = viewer_.Pass(SDL_GetTicks64());
            Show();
        } catch (const Failure& failure) {
            viewer_.Tell(failure.what());
        }
        SDL_Event event;
        for (bool isThere = SDL_WaitEventTimeout(&event, wait) != 0; isThere;
             isThere = SDL_PollEvent(&event) != 0) {
            try {
                Handle(event);
            } catch (const Failure& failure) {
                viewer_.Tell(failure.what());
            }
        }
    }
}

} // namespace

bool HasWindows() {
    return true;
}

void RunWindow(Viewer& viewer) {
    Window(viewer).Run();
}

} // namespace zkr::app
