// The station of exchange: the photograph in several depths goes into a device-independent bitmap and back, and onto a
// bitmap of the screen and back.
#include "tour.h"

#include "apps/zkr/compare.h"
#include "apps/zkr/convert.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/progress.h"

#include "zkr13n/dib.h"
#include "zkr13n/storage.h"
#include "zkr13n/surface.h"

namespace zkr::app {

namespace {

Bitmap Upright(const std::string& name, const BitmapHandle& made) {
    Bitmap bitmap(name, made);
    bitmap.StandUpright();
    Z_AccessBitmap(bitmap.Handle()); // the block stays where it is as long as the bitmap lives
    return bitmap;
}

Bitmap ThroughBlock(Bitmap& picture) {
    BitmapHandle made = {};
    HGLOBAL block = Z_ConvertToDIB(picture.Handle());
    if (block == nullptr) throw Failure(picture.Name(), MessageOf(Z_ERROR_MEMORY));
    const ReturnCode result = Z_ChangeFromDIB(&made, block);
    if (result != Z_SUCCESS) Z_FreeGlobalBlock(block);
    Check(result, picture.Name());
    return Upright(picture.Name(), made);
}

Bitmap ThroughScreen(Bitmap& picture) {
    BitmapHandle made = {};
    HBITMAP onScreen = Z_ConvertToDDB(nullptr, picture.Handle());
    if (onScreen == nullptr) throw Failure(picture.Name(), MessageOf(Z_ERROR_MEMORY));
    const ReturnCode result = Z_ChangeFromDDB(nullptr, &made, onScreen, nullptr);
    if (result != Z_SUCCESS) Z_DeleteObject(onScreen);
    Check(result, picture.Name());
    return Upright(picture.Name(), made);
}

// Takes a picture there and back and tells whether it is the same.
void Show(Tour& tour, ContactSheet::Section& section, const std::string& step, Bitmap& picture,
          Bitmap (*through)(Bitmap&)) {
    const StatusBar bar(step);
    const Stopwatch watch;
    Bitmap back = through(picture);
    const double milliseconds = watch.Milliseconds();
    const bool isSame = SameRows(picture, back);
    const char* result = isSame ? "the same pixels" : "differs";
    tour.Print(
        {step, ShortName(back.Format()), StorageOf(back), back.Bytes(), milliseconds, result, !isSame});
    Bitmap shown = Converted(back, tour.photo.Format(), {});
    section.cells.push_back(Tour::Cell(shown, step, result));
}

void Run(Tour& tour) {
    ContactSheet::Section section = {"Exchange", "there and back, in the forms that other programs take"};
    const struct {
        const char* step;
        PixelFormat format;
    } forms[] = {{"block of 1 bit", {.bits = 1, .palette = GrayPalette(1)}},
                 {"block of 4 bits", {.bits = 4, .palette = FixedPalette(4)}},
                 {"block of 8 bits", {.bits = 8, .palette = FixedPalette(8)}},
                 {"block of 16 bits", {.bits = 16, .order = Z_ORDER_BGR}},
                 {"block of 24 bits", {.bits = 24, .order = Z_ORDER_BGR}}};
    for (const auto& [step, format] : forms) {
        Bitmap picture = Converted(tour.photo, format, {});
        Show(tour, section, step, picture, ThroughBlock);
    }
    Bitmap picture = Converted(tour.photo, {.bits = 24, .order = Z_ORDER_BGR}, {});
    Show(tour, section, "bitmap of the screen", picture, ThroughScreen);
    tour.sheet.Add(std::move(section));
}

} // namespace

constexpr Station ExchangeStation = {"Exchange: device-independent bitmaps and bitmaps of the screen", Run};

} // namespace zkr::app
