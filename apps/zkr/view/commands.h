// What a viewer can be told to do, by keys and by words.
#pragma once

#include <optional>
#include <span>
#include <string>

namespace zkr::app {

enum class Command {
    Fit,
    FullSize,
    ZoomIn,
    ZoomOut,
    Left,
    Right,
    Up,
    Down,
    TurnRight,
    TurnLeft,
    Mirror,
    Flip,
    Next,
    Previous,
    Brighter,
    Darker,
    MoreContrast,
    LessContrast,
    MoreGamma,
    LessGamma,
    Unadjusted,
    Sliders,
    Device,
    Deselect,
    Pause,
    Step,
    Faster,
    Slower,
    Line,
    Help,
    Quit
};

struct CommandEntry {
    Command command;
    const char* word;
    const char* key; // a character, or the name of a key as "Page Down"
    const char* help;
};

std::span<const CommandEntry> Commands();
std::optional<Command> CommandOfWord(const std::string& word);
std::optional<Command> CommandOfKey(const std::string& key);

} // namespace zkr::app
