// Numbers are read by std::from_chars, which knows neither blanks nor the language of the user.
#include "options.h"

#include <array>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <span>

namespace zkr::app {

namespace {

template <class Number, class... Base>
std::optional<Number> WholeText(const std::string& text, Base... base) {
    Number number = {};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base...);
    if (error != std::errc() || stop != end) return {};
    return number;
}

// As many numbers, with commas between them, as there is room for.
bool ParseNumbers(const std::string& text, std::span<int> numbers) {
    size_t start = 0;
    for (size_t i = 0; i < numbers.size(); ++i) {
        const bool last = i + 1 == numbers.size();
        const size_t comma = last ? text.size() : text.find(',', start);
        if (comma == text.npos) return false;
        const std::optional<int> number = ParseNumber(text.substr(start, comma - start));
        if (!number) return false;
        numbers[i] = *number;
        start = comma + 1;
    }
    return true;
}

constexpr const char* PointForm = "a point of two whole numbers, X,Y";

std::string Brief(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

// A parser that knows the limits of its values.
template <class Number>
auto Within(std::optional<Number> (*parse)(const std::string&), Number low, Number high) {
    return [=](const std::string& given) -> std::optional<Number> {
        const std::optional<Number> number = parse(given);
        if (!number || !(*number >= low && *number <= high)) return {};
        return number;
    };
}

} // namespace

std::optional<int> ParseNumber(const std::string& text) {
    return WholeText<int>(text, 10);
}

std::optional<double> ParseDecimal(const std::string& text) {
    const std::optional<double> number = WholeText<double>(text, std::chars_format::fixed);
    if (number && !std::isfinite(*number)) return {};
    return number;
}

std::optional<uint32_t> ParseColour(const std::string& text) {
    const std::optional<uint32_t> rgb = WholeText<uint32_t>(text, 16);
    if (!rgb || text.size() != 6) return {};
    return *rgb >> 16 | (*rgb & 0xFF00) | (*rgb & 0xFF) << 16;
}

std::optional<Point> ParsePoint(const std::string& text) {
    std::array<int, 2> numbers;
    if (!ParseNumbers(text, numbers)) return {};
    return Point{numbers[0], numbers[1]};
}

std::optional<Rectangle> ParseRectangle(const std::string& text) {
    std::array<int, 4> numbers;
    if (!ParseNumbers(text, numbers) || numbers[2] < 1 || numbers[3] < 1) return {};
    return Rectangle{numbers[0], numbers[1], numbers[2], numbers[3]};
}

CLI::Option* AddNumber(CLI::App& verb, const std::string& name, int& target, int low, int high,
                       const std::string& form, const std::string& help) {
    const std::string limits = high == INT_MAX
                                   ? " of at least " + std::to_string(low)
                                   : " from " + std::to_string(low) + " to " + std::to_string(high);
    return AddValue(verb, name, target, Within(ParseNumber, low, high), form, "a whole number" + limits,
                    help);
}

CLI::Option* AddDecimal(CLI::App& verb, const std::string& name, double& target, double low, double high,
                        const std::string& form, const std::string& help) {
    return AddValue(verb, name, target, Within(ParseDecimal, low, high), form,
                    "a number from " + Brief(low) + " to " + Brief(high), help);
}

CLI::Option* AddAngle(CLI::App& verb, const std::string& name, int& hundredths, const std::string& help) {
    const auto parse = [](const std::string& given) -> std::optional<int> {
        constexpr double most = 360;
        const std::optional<double> degrees = Within(ParseDecimal, -most, most)(given);
        if (!degrees) return {};
        return static_cast<int>(std::lround(*degrees * 100));
    };
    return AddValue(verb, name, hundredths, parse, "DEGREES", "an angle from -360 to 360 degrees", help);
}

CLI::Option* AddColour(CLI::App& verb, const std::string& name, uint32_t& target, const std::string& help) {
    return AddValue(verb, name, target, ParseColour, "RRGGBB", "a colour of six hexadecimal digits, RRGGBB",
                    help);
}

CLI::Option* AddPoint(CLI::App& verb, const std::string& name, Point& target, const std::string& help) {
    return AddValue(verb, name, target, ParsePoint, "X,Y", PointForm, help);
}

CLI::Option* AddPoints(CLI::App& verb, const std::string& name, std::span<Point> targets,
                       const std::string& help) {
    const auto set = [targets, name](const std::vector<std::string>& given) {
        for (size_t i = 0; i < given.size(); ++i) {
            const std::optional<Point> point = ParsePoint(given[i]);
            if (!point) throw CLI::ValidationError(name, "'" + given[i] + "' is not " + PointForm);
            targets[i] = *point;
        }
    };
    return verb.add_option_function<std::vector<std::string>>(name, set, help)
        ->expected(static_cast<int>(targets.size()))
        ->type_name("X,Y");
}

void AddSize(CLI::App& verb, int& width, int& height, bool required, const std::string& of) {
    CLI::Option* across = AddNumber(verb, "--width", width, 1, INT_MAX, "W", of + " width, pixels");
    CLI::Option* down = AddNumber(verb, "--height", height, 1, INT_MAX, "H", of + " height");
    across->required(required)->needs(down);
    down->required(required)->needs(across);
}

void AddRectangle(CLI::App& verb, Rectangle& target, bool required) {
    AddNumber(verb, "--left", target.left, 0, INT_MAX, "X",
              "left side of the rectangle, pixels (default: 0)");
    AddNumber(verb, "--top", target.top, 0, INT_MAX, "Y", "its top (default: 0)");
    AddSize(verb, target.width, target.height, required, "its");
}

CLI::Option* AddInput(CLI::App& verb, const std::string& name, std::string& target, const std::string& help) {
    return verb.add_option(name, target, help)->required()->type_name("");
}

CLI::Option* AddOutput(CLI::App& verb, std::string& target, const char* kind) {
    const std::string help = "the " + std::string(kind) + " file to write";
    return verb.add_option("OUT", target, help)->required()->type_name("");
}

} // namespace zkr::app
