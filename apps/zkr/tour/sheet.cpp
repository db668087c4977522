// The last station: the contact sheet with what the others have put on it.
#include "tour.h"

#include "apps/zkr/canvas.h"

namespace zkr::app {

namespace {

void Run(Tour& tour) {
    const Stopwatch watch;
    Bitmap page = tour.sheet.Drawn((tour.out / "contact-sheet.png").string());
    tour.Write(page, "contact-sheet.png");
    std::string result = SizeOf(page);
    if (!Lettering().Available()) result += ", without labels: no DejaVu Sans here";
    tour.Print({"contact-sheet.png", ShortName(page.Format()), StorageOf(page), page.Bytes(),
                watch.Milliseconds(), result});
}

} // namespace

constexpr Station SheetStation = {"Contact sheet", Run};

} // namespace zkr::app
