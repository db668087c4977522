// zkr view: pictures in a window, or a picture of it.
#include "apps/zkr/convert.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/verb.h"
#include "apps/zkr/view/viewer.h"
#include "apps/zkr/view/window.h"
#include "apps/zkr/write_png.h"

#include <sstream>
#include <string>
#include <vector>

namespace zkr::app {

namespace {

struct ViewOptions {
    std::vector<std::string> pictures;
    int display = 32;
    std::string screenshot;
    std::vector<Command> commands;
    int width = 1000, height = 700;
};

const Words<int> Displays = {{"1", 1}, {"4", 4}, {"8", 8}, {"32", 32}};

std::optional<std::vector<Command>> ParseCommands(const std::string& text) {
    std::vector<Command> commands;
    std::istringstream words(text);
    for (std::string word; std::getline(words, word, ',');) {
        const std::optional<Command> command = CommandOfWord(word);
        if (!command) return {};
        commands.push_back(*command);
    }
    return commands;
}

std::string WordsOfCommands() {
    std::string list;
    for (const CommandEntry& entry : Commands())
        list += (list.empty()                          ? "\n"
                 : list.size() - list.rfind('\n') > 55 ? ",\n"
                                                       : ", ") +
                std::string(entry.word);
    return list;
}

void Describe(CLI::App& verb, ViewOptions& options) {
    verb.add_option("PICTURE", options.pictures, "the pictures or animations (GIF)")
        ->required()
        ->type_name("FILE");
    AddWord(verb, "--display", options.display, Displays, "bits of the display that is shown (default: 32)");
    verb.add_option("--screenshot", options.screenshot,
                    "write what the window would show to a PNG file, without a window")
        ->type_name("FILE");
    AddValue(verb, "--do", options.commands, ParseCommands, "WORD,...",
             "a list of commands with commas between them (see zkr view --help)",
             "what is done before the first look, any of" + WordsOfCommands());
    AddNumber(verb, "--width", options.width, 1, 16384, "W", "of the window in pixels (default: 1000)");
    AddNumber(verb, "--height", options.height, 1, 16384, "H", "likewise (default: 700)");
}

void WriteScreenshot(Viewer& viewer, const std::string& path) {
    viewer.Update();
    const Size& size = viewer.Shown().Extent();
    Bitmap shot(path, {.bits = 24, .order = Z_ORDER_BGR}, size.width, size.height, Storage{});
    std::vector<uint8_t> row(shot.RowBytes());
    const uint32_t* pixel = viewer.Shown().Pixels();
    for (int y = 0; y < size.height; ++y) {
        for (size_t x = 0; x < 3 * static_cast<size_t>(size.width); x += 3, ++pixel) {
            row[x] = static_cast<uint8_t>(*pixel);
            row[x + 1] = static_cast<uint8_t>(*pixel >> 8);
            row[x + 2] = static_cast<uint8_t>(*pixel >> 16);
        }
        shot.PutRow(y, row.data());
    }
    WritePng(shot, path);
}

void Run(const ViewOptions& options) {
    if (options.screenshot.empty() && !HasWindows())
        throw UsageFailure("this zkr was built without SDL2 and has no window; give --screenshot FILE");
    Viewer viewer(options.pictures, options.display, {options.width, options.height});
    for (const Command command : options.commands)
        viewer.Do(command);
    if (options.screenshot.empty()) {
        RunWindow(viewer);
    } else {
        WriteScreenshot(viewer, options.screenshot);
    }
}

} // namespace

constexpr Verb ViewVerb =
    VerbOf<ViewOptions, Describe, Run>("view", "Show pictures and animations in a window (h there for keys)",
                                       "view photo.png walk.gif --screenshot shown.png --do turn,brighter");

} // namespace zkr::app
