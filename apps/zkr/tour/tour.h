// The tour: stations that take a picture through the library one after the other. A station adds lines to the
// table on the terminal, writes pictures into the folder and puts small ones on the contact sheet.
#pragma once

#include "apps/zkr/bitmap.h"
#include "apps/zkr/contact_sheet.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

namespace zkr::app {

// One line of the table.
struct TourStep {
    std::string step = {};
    std::string pixels = {};
    std::string storage = {};
    size_t bytes = 0;
    double milliseconds = 0;
    std::string result = {};
    bool wrong = false; // the result is not what the library promises
};

struct Tour {
    Bitmap photo;          // 24 bits, rgb
    std::string page;      // file of a bitonal page
    std::string animation; // file of an animation
    std::filesystem::path out;
    ContactSheet sheet;
    std::vector<std::string> storageLines = {}; // of the photograph, for the sheet
    int wrongSteps = 0;

    void PrintHead(const char* title) const;
    void Print(const TourStep& step);
    // A cell with a small copy of a bitmap of the photograph's format.
    static ContactSheet::Cell Cell(Bitmap& bitmap, std::string title, const std::string& text);
    void Write(Bitmap& bitmap, const std::string& fileName);
    // A copy of the photograph that is changed: its line, its file and its cell.
    void ShowChanged(ContactSheet::Section& section, const std::string& step, const std::string& fileName,
                     const char* title, const std::function<void(Bitmap&)>& change);
};

class Stopwatch {
  public:
    double Milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count();
    }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Takes rows of `source` into each storage class and compares what comes back. Gives a line of text for each.
std::vector<std::string> ThroughStorageClasses(Tour& tour, Bitmap& source);

// A station is a file beside this one and a line in stations.list.
struct Station {
    const char* title;
    void (*run)(Tour&);
};

#define ZKR_STATION(Name) extern const Station Name##Station;
#include "apps/zkr/tour/stations.list"
#undef ZKR_STATION

} // namespace zkr::app
