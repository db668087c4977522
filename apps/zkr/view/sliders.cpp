#include "sliders.h"

#include "commands.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace zkr::app {

namespace {

constexpr Colour Paper = {40, 40, 40}, Ink = {230, 230, 230}, Dim = {110, 110, 110}, Knob = {255, 190, 80};
constexpr int LetterSize = 13, Margin = 12, RowHeight = 26, BarLeft = 100, BarLength = 180, PanelWidth = 350;

// A value that a slider shows, brought to 0 at its left end to 1 at its right end.
struct Slider {
    const char* name;
    double (*place)(ShownPicture&);
    void (*set)(ShownPicture&, double);
    std::string (*text)(ShownPicture&);
};

std::string Percent(int thousandths) {
    char text[16];
    std::snprintf(text, sizeof text, "%+d %%", thousandths / 10);
    return text;
}

int Thousandths(double place) {
    return static_cast<int>(std::lround(place * 200 - 100)) * 10;
}

constexpr double LargestGamma = 5; // and the smallest is its reciprocal

int GrayAt(ShownPicture& picture, double place) {
    return static_cast<int>(std::lround(place * picture.LargestGray()));
}

const Slider All[] = {
    {"brightness", [](ShownPicture& p) { return (p.Adjusted().brightness + 1000) / 2000.0; },
     [](ShownPicture& p, double place) {
         Adjustments adjusted = p.Adjusted();
         adjusted.brightness = Thousandths(place);
         p.Adjust(adjusted);
     },
     [](ShownPicture& p) { return Percent(p.Adjusted().brightness); }},
    {"contrast", [](ShownPicture& p) { return (p.Adjusted().contrast + 1000) / 2000.0; },
     [](ShownPicture& p, double place) {
         Adjustments adjusted = p.Adjusted();
         adjusted.contrast = Thousandths(place);
         p.Adjust(adjusted);
     },
     [](ShownPicture& p) { return Percent(p.Adjusted().contrast); }},
    {"gamma",
     [](ShownPicture& p) { return std::log(p.Adjusted().gamma / 100.0) / std::log(LargestGamma) / 2 + 0.5; },
     [](ShownPicture& p, double place) {
         Adjustments adjusted = p.Adjusted();
         adjusted.gamma = static_cast<int>(std::lround(100 * std::pow(LargestGamma, 2 * place - 1)));
         p.Adjust(adjusted);
     },
     [](ShownPicture& p) {
         char text[16];
         std::snprintf(text, sizeof text, "%.2f", p.Adjusted().gamma / 100.0);
         return std::string(text);
     }},
    {"black from", [](ShownPicture& p) { return static_cast<double>(p.Window().low) / p.LargestGray(); },
     [](ShownPicture& p, double place) {
         p.ShowWindow({std::min(GrayAt(p, place), p.Window().high - 1), p.Window().high});
     },
     [](ShownPicture& p) { return std::to_string(p.Window().low); }},
    {"white to", [](ShownPicture& p) { return static_cast<double>(p.Window().high) / p.LargestGray(); },
     [](ShownPicture& p, double place) {
         p.ShowWindow({p.Window().low, GrayAt(p, place)});
     },
     [](ShownPicture& p) { return std::to_string(p.Window().high); }},
};
constexpr int OfEveryPicture = 3;

int CountOf(ShownPicture& picture) {
    return picture.IsDeepGray() ? static_cast<int>(std::size(All)) : OfEveryPicture;
}

Rectangle PlaceOf(ShownPicture& picture, const Size& area) {
    const int height = CountOf(picture) * RowHeight + Margin;
    return {Margin, std::max(0, area.height - height - Margin), PanelWidth, height};
}

void FillBox(Canvas& canvas, const Rectangle& box, Colour colour) {
    for (int y = 0; y < box.height; ++y)
        for (int x = 0; x < box.width; ++x)
            canvas.Blend(box.left + x, box.top + y, colour, 255);
}

} // namespace

Panel Sliders::Draw(ShownPicture& picture, Lettering& letters, const Size& area) const {
    const Rectangle place = PlaceOf(picture, area);
    Panel panel = {{place.left, place.top}, Canvas(place.width, place.height, Paper)};
    for (int i = 0; i < CountOf(picture); ++i) {
        const Slider& slider = All[i];
        const int middle = Margin / 2 + i * RowHeight + RowHeight / 2;
        const double at = std::clamp(slider.place(picture), 0.0, 1.0);
        letters.Draw(panel.picture, Margin, middle + 5, LetterSize, false, Ink, slider.name);
        FillBox(panel.picture, {BarLeft, middle - 1, BarLength, 3}, Dim);
        FillBox(panel.picture, {BarLeft + static_cast<int>(at * (BarLength - 1)) - 3, middle - 8, 7, 17},
                Knob);
        letters.Draw(panel.picture, BarLeft + BarLength + 12, middle + 5, LetterSize, false, Ink,
                     slider.text(picture));
    }
    return panel;
}

std::optional<int> Sliders::At(ShownPicture& picture, const Size& area, const Point& point) const {
    const Rectangle place = PlaceOf(picture, area);
    if (!Contains(place, point)) return {};
    return std::clamp((point.y - place.top - Margin / 2) / RowHeight, 0, CountOf(picture) - 1);
}

void Sliders::Move(ShownPicture& picture, const Size& area, int slider, const Point& point) const {
    const int x = point.x - PlaceOf(picture, area).left - BarLeft;
    All[slider].set(picture, std::clamp(static_cast<double>(x) / (BarLength - 1), 0.0, 1.0));
}

Panel DrawKeys(Lettering& letters) {
    constexpr int lineHeight = 18, keyWidth = 90, columnWidth = 330, rows = 16;
    const auto commands = Commands();
    const int columns = (static_cast<int>(commands.size()) + rows - 1) / rows;
    Panel panel = {{Margin, Margin}, Canvas(columns * columnWidth, (rows + 3) * lineHeight, Paper)};
    for (size_t i = 0; i < commands.size(); ++i) {
        const int left = Margin + static_cast<int>(i) / rows * columnWidth;
        const int baseline = (static_cast<int>(i) % rows + 1) * lineHeight;
        letters.Draw(panel.picture, left, baseline, LetterSize, true, Knob, commands[i].key);
        letters.Draw(panel.picture, left + keyWidth, baseline, LetterSize, false, Ink, commands[i].help);
    }
    letters.Draw(panel.picture, Margin, (rows + 1) * lineHeight + 4, LetterSize, false, Ink,
                 "Shift and click or drag: select; with Control more, with Alt less.");
    letters.Draw(panel.picture, Margin, (rows + 2) * lineHeight + 4, LetterSize, false, Ink,
                 "Right button: values of deep gray, else brightness and contrast.");
    return panel;
}

} // namespace zkr::app
