// The station of selections: a flower by the wand and by its hue, two shapes combined in each mode, a selection framed
// and tinted, and one that follows its picture.
#include "tour.h"

#include "apps/zkr/convert.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/selection.h"
#include "apps/zkr/turn_work.h"

#include "zkr13n/region_colours.h"
#include "zkr13n/region_shapes.h"

#include <algorithm>

namespace zkr::app {

namespace {

constexpr uint32_t Mark = 0x0000FFFF; // yellow

RECT Part(const Bitmap& picture, int left, int top, int right, int bottom) {
    const int w = picture.Width(), h = picture.Height(); // in hundredths of these
    return {w * left / 100, h * top / 100, w * right / 100, h * bottom / 100};
}

// A copy of the photograph on which something is selected and then shown.
template <typename Choose, typename Show>
void Add(Tour& tour, ContactSheet::Section& section, const std::string& step, const std::string& file,
         const std::string& title, Choose choose, Show show) {
    const StatusBar bar(step);
    Bitmap picture = Converted(tour.photo, {.bits = 24, .order = Z_ORDER_BGR}, Storage{});
    const Stopwatch watch;
    choose(picture.Handle());
    const double milliseconds = watch.Milliseconds();
    const std::string area = std::to_string(AreaOfSelection(picture)) + " pixels";
    show(picture);
    Bitmap shown = Converted(picture, tour.photo.Format(), Storage{});
    tour.Print({step, ShortName(shown.Format()), StorageOf(shown), shown.Bytes(), milliseconds, area});
    tour.Write(shown, file);
    section.cells.push_back(Tour::Cell(shown, title, area));
}

void Fill(Bitmap& picture) {
    FillSelection(picture, Mark);
}

void ShowColours(Tour& tour) {
    ContactSheet::Section section = {"Selections by colour",
                                     "filled: a magic wand at three tolerances, and a range of hues"};
    for (const int tolerance : {20, 40, 70}) {
        const std::string number = std::to_string(tolerance);
        Add(
            tour, section, "wand, tolerance " + number, "select-wand-" + number + ".png",
            "Wand, tolerance " + number,
            [&](BitmapHandle* bitmap) {
                Z_SetBitmapRgnMagicWand(bitmap, bitmap->Width * 7 / 10, bitmap->Height * 55 / 100,
                                        static_cast<uint32_t>(tolerance), Z_RGN_SET);
            },
            Fill);
    }
    Add(
        tour, section, "hues of violet", "select-hues.png", "Hues",
        [](BitmapHandle* bitmap) { Z_SetBitmapRgnColorHSVRange(bitmap, 0x004030B0, 0x00FFFFE0, Z_RGN_SET); },
        Fill);
    tour.sheet.Add(std::move(section));
}

void ShowModes(Tour& tour) {
    ContactSheet::Section section = {"Selections by shapes",
                                     "tinted: an ellipse and then a rectangle, in each mode"};
    const struct {
        uint32_t mode;
        const char* name;
    } modes[] = {{Z_RGN_SET, "set"},   {Z_RGN_OR, "or"},           {Z_RGN_AND, "and"},
                 {Z_RGN_XOR, "xor"},   {Z_RGN_ANDNOTRGN, "minus"}, {Z_RGN_ANDNOTBITMAP, "beyond"},
                 {Z_RGN_SETNOT, "not"}};
    for (const auto& [mode, name] : modes) {
        Add(
            tour, section, std::string("shapes, ") + name, std::string("select-") + name + ".png", name,
            [&, mode = mode](BitmapHandle* bitmap) {
                const RECT ellipse = Part(tour.photo, 10, 10, 70, 70),
                           square = Part(tour.photo, 40, 40, 90, 90);
                Z_SetBitmapRgnEllipse(bitmap, nullptr, &ellipse, Z_RGN_SET);
                Z_SetBitmapRgnRect(bitmap, nullptr, &square, mode);
            },
            [](Bitmap& picture) { TintSelection(picture, 0x00808080); });
    }
    tour.sheet.Add(std::move(section));
}

void ShowFollowing(Tour& tour) {
    ContactSheet::Section section = {"Selections that follow",
                                     "framed and tinted: as made, turned, and sheared with the picture"};
    const auto choose = [&](BitmapHandle* bitmap) {
        const RECT ellipse = Part(tour.photo, 20, 15, 65, 85);
        Z_SetBitmapRgnEllipse(bitmap, nullptr, &ellipse, Z_RGN_SET);
    };
    const auto show = [](Bitmap& picture) {
        TintSelection(picture, 0x00404040);
        OutlineSelection(picture);
    };
    Add(tour, section, "framed", "select-framed.png", "Framed", choose, show);
    Add(tour, section, "turned with the picture", "select-turned.png", "Turned", choose,
        [&](Bitmap& picture) {
            Rotate(picture, {.hundredths = 2000, .grow = true});
            show(picture);
        });
    Add(tour, section, "sheared with the picture", "select-sheared.png", "Sheared", choose,
        [&](Bitmap& picture) {
            Shear(picture, {.hundredths = 1500});
            show(picture);
        });
    tour.sheet.Add(std::move(section));
}

void Run(Tour& tour) {
    ShowColours(tour);
    ShowModes(tour);
    ShowFollowing(tour);
}

} // namespace

constexpr Station SelectionsStation = {"Selections: by colour, by shapes, and on the move", Run};

} // namespace zkr::app
