// Options of the command line. All values are read here, so that a colour or a point is written in one way in every
// verb, and a value that is none is told in one way: --color: 'red' is not a colour of six hexadecimal digits.
// Each function gives the option, so that ->required() and the like can follow.
#pragma once

#include "shapes.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zkr::app {

// Values from text; nothing where the text, as a whole, is none.
std::optional<int> ParseNumber(const std::string& text);          // 12, -3
std::optional<double> ParseDecimal(const std::string& text);      // 12, -3, 0.25
std::optional<uint32_t> ParseColour(const std::string& text);     // RRGGBB, as 0x00BBGGRR
std::optional<Point> ParsePoint(const std::string& text);         // X,Y
std::optional<Rectangle> ParseRectangle(const std::string& text); // LEFT,TOP,WIDTH,HEIGHT; sizes from 1

// The words that an option takes, in the order in which they are listed.
template <class Value> using Words = std::vector<std::pair<const char*, Value>>;

template <class Value> std::string ListOf(const Words<Value>& words) {
    std::string list;
    for (const auto& [word, value] : words)
        list += (list.empty() ? "" : "|") + std::string(word);
    return list;
}

// Any option with one value: parse(text) gives an optional, and `what` completes "'text' is not ...".
template <class Target, class Parse>
CLI::Option* AddValue(CLI::App& verb, const std::string& name, Target& target, Parse parse,
                      const std::string& form, const std::string& what, const std::string& help) {
    const auto set = [&target, parse, name, what](const std::string& given) {
        const auto value = parse(given);
        if (!value) throw CLI::ValidationError(name, "'" + given + "' is not " + what);
        target = *value;
    };
    return verb.add_option_function<std::string>(name, set, help)->type_name(form);
}

// One of some words.
template <class Value, class Target>
CLI::Option* AddWord(CLI::App& verb, const std::string& name, Target& target, const Words<Value>& words,
                     const std::string& help) {
    const auto parse = [&words](const std::string& given) -> std::optional<Value> {
        for (const auto& [word, value] : words)
            if (given == word) return value;
        return {};
    };
    return AddValue(verb, name, target, parse, ListOf(words), "one of " + ListOf(words), help);
}

// A parser of numbers that knows their limits.
inline auto NumberFrom(int low, int high) {
    return [=](const std::string& given) {
        const std::optional<int> number = ParseNumber(given);
        return number && *number >= low && *number <= high ? number : std::nullopt;
    };
}

// Numbers from `low` to `high`. An angle is told in degrees and kept in hundredths of them.
CLI::Option* AddNumber(CLI::App& verb, const std::string& name, int& target, int low, int high,
                       const std::string& form, const std::string& help);
CLI::Option* AddDecimal(CLI::App& verb, const std::string& name, double& target, double low, double high,
                        const std::string& form, const std::string& help);
CLI::Option* AddAngle(CLI::App& verb, const std::string& name, int& hundredths, const std::string& help);

CLI::Option* AddColour(CLI::App& verb, const std::string& name, uint32_t& target, const std::string& help);
CLI::Option* AddPoint(CLI::App& verb, const std::string& name, Point& target, const std::string& help);
// Several points behind one option, as many as there are targets: --points 0,0 10,0 10,10 0,10.
CLI::Option* AddPoints(CLI::App& verb, const std::string& name, std::span<Point> targets,
                       const std::string& help);

// --width and --height, both or none of them; `of` is whose they are.
void AddSize(CLI::App& verb, int& width, int& height, bool required, const std::string& of);
// --left and --top beside them.
void AddRectangle(CLI::App& verb, Rectangle& target, bool required);

// Files that are read, and the file that is written, as words without a dash.
CLI::Option* AddInput(CLI::App& verb, const std::string& name, std::string& target, const std::string& help);
CLI::Option* AddOutput(CLI::App& verb, std::string& target, const char* kind = "PNG");

} // namespace zkr::app
