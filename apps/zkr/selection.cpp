// Tint and outline are drawn as on a screen: on a surface over the picture's own pixels.
#include "selection.h"

#include "failure.h"
#include "options.h"
#include "picture_reader.h"
#include "picture_surface.h"

#include "zkr13n/fill.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_paint.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/rows.h"

#include <algorithm>
#include <climits>
#include <sstream>
#include <utility>

namespace zkr::app {

namespace {

const Words<uint32_t> Modes = {{"set", Z_RGN_SET},         {"or", Z_RGN_OR},
                               {"and", Z_RGN_AND},         {"xor", Z_RGN_XOR},
                               {"minus", Z_RGN_ANDNOTRGN}, {"beyond", Z_RGN_ANDNOTBITMAP},
                               {"not", Z_RGN_SETNOT}};

using Points = std::vector<POINT>;
using ColourRange = std::pair<uint32_t, uint32_t>;

std::optional<Points> ParsePoints(const std::string& text) {
    std::istringstream words(text);
    Points points;
    for (std::string word; words >> word;) {
        const std::optional<Point> point = ParsePoint(word);
        if (!point) return {};
        points.push_back({point->x, point->y});
    }
    return points.size() >= 3 ? std::optional(points) : std::nullopt;
}

std::optional<ColourRange> ParseRange(const std::string& text) {
    const size_t dash = text.find('-');
    if (dash == std::string::npos) return {};
    const std::optional<uint32_t> lower = ParseColour(text.substr(0, dash)),
                                  upper = ParseColour(text.substr(dash + 1));
    return lower && upper ? std::optional(ColourRange(*lower, *upper)) : std::nullopt;
}

RECT RectOf(const Rectangle& area) {
    const auto end = [](int start, int length) {
        return static_cast<int>(std::min<int64_t>(int64_t{start} + length, INT_MAX));
    };
    return {area.left, area.top, end(area.left, area.width), end(area.top, area.height)};
}

// An option whose value selects by a call of the library.
template <class Parse, class Call>
void AddStep(CLI::App& verb, Selection& selection, const std::string& name, Parse parse,
             const std::string& form, const std::string& what, const std::string& help, Call call) {
    const auto add = [&selection, parse, name, what, call](const std::string& given) {
        const auto value = parse(given);
        if (!value) throw CLI::ValidationError(name, "'" + given + "' is not " + what);
        selection.steps.push_back({[call, value](Bitmap& picture, uint32_t mode, int tolerance) {
            Check(call(picture.Handle(), *value, mode, tolerance), picture.Name());
        }});
    };
    verb.add_option_function<std::string>(name, add, help)->type_name(form)->trigger_on_parse();
}

SelectionStep& LastOf(Selection& selection, const std::string& option) {
    if (selection.steps.empty())
        throw CLI::ValidationError(option, "stands before the first shape or colour");
    return selection.steps.back();
}

void SelectMask(Bitmap& picture, const std::string& path, uint32_t mode) {
    Bitmap mask = ReadUpright(*OpenPicture(path), path, Storage{});
    if (mask.Width() != picture.Width() || mask.Height() != picture.Height())
        throw Failure(path, "the mask is of " + SizeOf(mask) + ", the picture of " + SizeOf(picture));
    Check(Z_SetBitmapRgnFromMask(picture.Handle(), nullptr, mask.Handle(), mode), path);
}

} // namespace

void AddSelection(CLI::App& verb, Selection& selection) {
    const auto add = [&](const char* name, auto parse, const char* form, const char* what, const char* help,
                         auto call) { AddStep(verb, selection, name, parse, form, what, help, call); };
    const char* rectangle = "a rectangle LEFT,TOP,WIDTH,HEIGHT";
    add("--rect", ParseRectangle, "L,T,W,H", rectangle, "select a rectangle",
        [](BitmapHandle* bitmap, const Rectangle& area, uint32_t mode, int) {
            const RECT rect = RectOf(area);
            return Z_SetBitmapRgnRect(bitmap, nullptr, &rect, mode);
        });
    add("--ellipse", ParseRectangle, "L,T,W,H", rectangle, "select the ellipse in a rectangle",
        [](BitmapHandle* bitmap, const Rectangle& area, uint32_t mode, int) {
            const RECT rect = RectOf(area);
            return Z_SetBitmapRgnEllipse(bitmap, nullptr, &rect, mode);
        });
    const char* points = "three points X,Y or more, with blanks between them";
    add("--polygon", ParsePoints, "'X,Y X,Y ...'", points, "select a polygon",
        [](BitmapHandle* bitmap, const Points& corners, uint32_t mode, int) {
            return Z_SetBitmapRgnPolygon(bitmap, nullptr, corners.data(),
                                         static_cast<int32_t>(corners.size()), Z_POLY_ALTERNATE, mode);
        });
    add("--curve", ParsePoints, "'X,Y X,Y ...'", points, "select the inside of a smooth curve through points",
        [](BitmapHandle* bitmap, const Points& through, uint32_t mode, int) {
            const Curve curve = {sizeof curve,
                                 Z_CURVE_CARDINAL,
                                 static_cast<int32_t>(through.size()),
                                 through.data(),
                                 Z_POLY_ALTERNATE,
                                 0.5,
                                 Z_CURVE_CLOSED,
                                 0};
            return Z_SetBitmapRgnCurve(bitmap, nullptr, &curve, mode);
        });
    add("--color", ParseColour, "RRGGBB", "a colour of six hexadecimal digits",
        "select the pixels of one colour", [](BitmapHandle* bitmap, uint32_t colour, uint32_t mode, int) {
            return Z_SetBitmapRgnColor(bitmap, colour, mode);
        });
    const char* range = "two colours of six hexadecimal digits with a dash between them";
    add("--range", ParseRange, "RRGGBB-RRGGBB", range, "select red, green and blue between two colours",
        [](BitmapHandle* bitmap, const ColourRange& bounds, uint32_t mode, int) {
            return Z_SetBitmapRgnColorRGBRange(bitmap, bounds.first, bounds.second, mode);
        });
    add("--hsv", ParseRange, "HHSSVV-HHSSVV", range, "select hue, saturation and value between two triples",
        [](BitmapHandle* bitmap, const ColourRange& bounds, uint32_t mode, int) {
            return Z_SetBitmapRgnColorHSVRange(bitmap, bounds.first, bounds.second, mode);
        });
    add("--wand", ParsePoint, "X,Y", "a point X,Y",
        "select what hangs together around a pixel and has nearly its colour",
        [](BitmapHandle* bitmap, const Point& seed, uint32_t mode, int tolerance) {
            return Z_SetBitmapRgnMagicWand(bitmap, seed.x, seed.y, static_cast<uint32_t>(tolerance), mode);
        });
    const auto addMask = [&selection](const std::string& path) {
        selection.steps.push_back(
            {[path](Bitmap& picture, uint32_t mode, int) { SelectMask(picture, path, mode); }});
    };
    verb.add_option_function<std::string>("--mask", addMask,
                                          "select the white pixels of a picture of the same size")
        ->type_name("FILE")
        ->trigger_on_parse();

    const auto setMode = [&selection](const std::string& given) {
        for (const auto& [word, mode] : Modes)
            if (given == word) {
                LastOf(selection, "--mode").mode = mode;
                return;
            }
        throw CLI::ValidationError("--mode", "'" + given + "' is not one of " + ListOf(Modes));
    };
    verb.add_option_function<std::string>(
            "--mode", setMode,
            "how the step before it meets what is selected so far: or by default,\n"
            "minus takes it away, beyond leaves what it has more, not is all but it")
        ->type_name(ListOf(Modes))
        ->trigger_on_parse();
    const auto setTolerance = [&selection](const std::string& given) {
        const std::optional<int> number = NumberFrom(0, 255)(given);
        if (!number)
            throw CLI::ValidationError("--tolerance", "'" + given + "' is not a whole number from 0 to 255");
        LastOf(selection, "--tolerance").tolerance = *number;
    };
    verb.add_option_function<std::string>("--tolerance", setTolerance,
                                          "how far the wand before it may be off, 20 by default")
        ->type_name("T")
        ->trigger_on_parse();
}

void Select(Bitmap& picture, const Selection& selection) {
    uint32_t present = Z_RGN_SET;
    for (const SelectionStep& step : selection.steps) {
        step.select(picture, step.mode.value_or(present), step.tolerance);
        present = Z_RGN_OR;
    }
}

Bitmap MaskOf(Bitmap& picture) {
    BitmapHandle mask;
    Check(Z_CreateMaskFromBitmapRgn(picture.Handle(), &mask), picture.Name());
    return Bitmap(picture.Name(), mask);
}

Rectangle BoundsOfSelection(Bitmap& picture) {
    RECT bounds;
    Check(Z_GetBitmapRgnBoundsClip(picture.Handle(), nullptr, &bounds), picture.Name());
    return {bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top};
}

uint32_t AreaOfSelection(Bitmap& picture) {
    uint32_t area = 0;
    Check(Z_GetBitmapRgnArea(picture.Handle(), &area), picture.Name());
    return area;
}

void FillSelection(Bitmap& picture, uint32_t colour) {
    constexpr int32_t keepAlpha = 1;
    Bitmap row(picture.Name(), picture.Format(), picture.Width(), 1, Storage{});
    Check(Z_FillBitmap(row.Handle(), colour), picture.Name());
    std::vector<uint8_t> pixels(row.RowBytes());
    row.GetRow(0, pixels.data());

    uint32_t room = 0;
    Check(Z_GetBitmapClipSegmentsMax(picture.Handle(), &room), picture.Name());
    std::vector<int32_t> ends(room);
    const Rectangle bounds = BoundsOfSelection(picture);
    for (int y = bounds.top; y < bounds.top + bounds.height; ++y) {
        uint32_t count = 0;
        Check(Z_GetBitmapClipSegments(picture.Handle(), y, ends.data(), &count), picture.Name());
        const std::vector<uint32_t> columns(ends.begin(), ends.begin() + count);
        Check(Z_PutBitmapRowSegments(picture.Handle(), pixels.data(), y, 0, columns.data(), count, keepAlpha),
              picture.Name());
    }
}

void TintSelection(Bitmap& picture, uint32_t colour) {
    const PictureSurface surface(picture);
    Check(Z_ColorBitmapRgn(surface.Context(), picture.Handle(), nullptr, colour), picture.Name());
}

void OutlineSelection(Bitmap& picture) {
    const PictureSurface surface(picture);
    Check(Z_FrameBitmapRgn(surface.Context(), picture.Handle(), nullptr, 0), picture.Name());
}

} // namespace zkr::app
