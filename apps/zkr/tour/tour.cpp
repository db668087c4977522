// What all stations of the tour use: lines of the table, small pictures, files.
#include "tour.h"

#include "apps/zkr/progress.h"
#include "apps/zkr/write_png.h"

#include <cctype>
#include <cstdio>

namespace zkr::app {

void Tour::PrintHead(const char* title) const {
    std::printf("\n%s\n  %-24s %-19s %-32s %9s %9s  %s\n", title, "step", "pixels", "storage class", "bytes",
                "ms", "result");
}

void Tour::Print(const TourStep& step) {
    StatusBar::Wipe();
    std::printf("  %-24s %-19s %-32s %9zu %9.1f  %s\n", step.step.c_str(), step.pixels.c_str(),
                step.storage.c_str(), step.bytes, step.milliseconds, step.result.c_str());
    std::fflush(stdout);
    wrongSteps += step.wrong ? 1 : 0;
}

ContactSheet::Cell Tour::Cell(Bitmap& bitmap, std::string title, const std::string& text) {
    title[0] = static_cast<char>(std::toupper(title[0]));
    return {Thumbnail(bitmap, ContactSheet::CellWidth, ContactSheet::CellHeight), title, text};
}

void Tour::Write(Bitmap& bitmap, const std::string& fileName) {
    WritePng(bitmap, (out / fileName).string());
}

void Tour::ShowChanged(ContactSheet::Section& section, const std::string& step, const std::string& fileName,
                       const char* title, const std::function<void(Bitmap&)>& change) {
    const StatusBar bar(step);
    Bitmap picture = photo.Copy();
    const Stopwatch watch;
    change(picture);
    const double milliseconds = watch.Milliseconds();
    const std::string size = SizeOf(picture);
    Print({step, ShortName(picture.Format()), StorageOf(picture), picture.Bytes(), milliseconds, size});
    Write(picture, fileName);
    section.cells.push_back(Cell(picture, title, size));
}

} // namespace zkr::app
