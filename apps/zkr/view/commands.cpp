#include "commands.h"

namespace zkr::app {

namespace {

constexpr CommandEntry Table[] = {
    {Command::Fit, "fit", "f", "fit into the window"},
    {Command::FullSize, "full-size", "1", "pixel for pixel"},
    {Command::ZoomIn, "zoom-in", "+", "larger (or the wheel)"},
    {Command::ZoomOut, "zoom-out", "-", "smaller"},
    {Command::Left, "left", "Left", "look to the left (or drag)"},
    {Command::Right, "right", "Right", "look to the right"},
    {Command::Up, "up", "Up", "look up"},
    {Command::Down, "down", "Down", "look down"},
    {Command::TurnRight, "turn", "r", "turn clockwise"},
    {Command::TurnLeft, "turn-back", "R", "turn counterclockwise"},
    {Command::Mirror, "mirror", "m", "exchange left and right"},
    {Command::Flip, "flip", "v", "exchange top and bottom"},
    {Command::Next, "next", "Page Down", "next picture (or n)"},
    {Command::Previous, "previous", "Page Up", "previous picture (or p)"},
    {Command::Brighter, "brighter", "B", "more brightness"},
    {Command::Darker, "darker", "b", "less brightness"},
    {Command::MoreContrast, "more-contrast", "C", "more contrast"},
    {Command::LessContrast, "less-contrast", "c", "less contrast"},
    {Command::MoreGamma, "more-gamma", "G", "more gamma"},
    {Command::LessGamma, "less-gamma", "g", "less gamma"},
    {Command::Unadjusted, "unadjusted", "0", "as the picture is"},
    {Command::Sliders, "sliders", "s", "sliders on and off"},
    {Command::Device, "device", "d", "a display of 1, 4, 8, 32 bits"},
    {Command::Deselect, "deselect", "Escape", "select nothing"},
    {Command::Pause, "pause", "Space", "pause and play on"},
    {Command::Step, "step", ".", "next frame, and pause"},
    {Command::Faster, "faster", ">", "play faster"},
    {Command::Slower, "slower", "<", "play slower"},
    {Command::Line, "line", "i", "the line below on and off"},
    {Command::Help, "help", "h", "this list on and off"},
    {Command::Quit, "quit", "q", "leave"},
};

struct OtherKey {
    const char* key;
    Command command;
};
constexpr OtherKey OtherKeys[] = {{"n", Command::Next},   {"p", Command::Previous},
                                  {"=", Command::ZoomIn}, {"?", Command::Help},
                                  {"Home", Command::Fit}, {"Backspace", Command::Previous}};

} // namespace

std::span<const CommandEntry> Commands() {
    return Table;
}

std::optional<Command> CommandOfWord(const std::string& word) {
    for (const CommandEntry& entry : Table)
        if (word == entry.word) return entry.command;
    return {};
}

std::optional<Command> CommandOfKey(const std::string& key) {
    for (const CommandEntry& entry : Table)
        if (key == entry.key) return entry.command;
    for (const OtherKey& other : OtherKeys)
        if (key == other.key) return other.command;
    return {};
}

} // namespace zkr::app
