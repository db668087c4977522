// The command line: verbs and their options, and the one place where failures are printed. Whatever goes
// wrong is one line on standard error and exit status 1.
#include "failure.h"
#include "progress.h"
#include "verbs.h"

#include "zkr13n/color_spaces.h"
#include "zkr13n/dither.h"
#include "zkr13n/frame.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace zkr::app {

namespace {

// The words that an option takes, in the order in which they are listed.
template <class Value> using Words = std::vector<std::pair<const char*, Value>>;

const Words<int> OrderNames = {{"rgb", Z_ORDER_RGB}, {"bgr", Z_ORDER_BGR}, {"gray", Z_ORDER_GRAY}};
const Words<PaletteChoice> PaletteNames = {{"fixed", PaletteChoice::Fixed}, {"gray", PaletteChoice::Gray}};
const Words<StorageClass> StorageNames = {{"conventional", StorageClass::Conventional},
                                          {"user", StorageClass::User},
                                          {"tiled", StorageClass::Tiled},
                                          {"disk", StorageClass::Disk},
                                          {"rle", StorageClass::Runs},
                                          {"super", StorageClass::Strips}};

const Words<int> MethodNames = {{"none", DitherNone},          {"floyd-steinberg", DitherFloydSteinberg},
                                {"stucki", DitherStucki},      {"burkes", DitherBurkes},
                                {"sierra", DitherSierra},      {"stevenson-arce", DitherStevensonArce},
                                {"jarvis", DitherJarvis},      {"ordered", DitherOrdered},
                                {"clustered", DitherClustered}};
const Words<int> SpaceNames = {{"rgb", Z_SPACE_RGB}, {"luma", Z_SPACE_LUMA}, {"cmyk", Z_SPACE_CMYK},
                               {"hsv", Z_SPACE_HSV}, {"hls", Z_SPACE_HLS},   {"yiq", Z_SPACE_YIQ},
                               {"cmy", Z_SPACE_CMY}};

constexpr const char* About = "zkr takes pictures through the ZKR13N raster image kernel.\n";

constexpr const char* Notes =
    "Pictures are read from PNG, JPEG, PBM (P4), PGM (P5) and, where jbgtopbm is installed, JBIG files, each "
    "in\n"
    "the depth that the file has. They are written as PNG. Depths that PNG lacks take the next that holds "
    "them:\n"
    "  3, 5, 6, 7 bits   8-bit palette picture with the palette of the depth\n"
    "  12 bits           16-bit gray, marked as 12 significant bits, and read back as 12\n"
    "  16 bits, colour   24-bit colour, marked as 5 significant bits a channel\n"
    "The fourth channel of 32 and 64 bits is written as opaque where the picture had no alpha.\n\n"
    "Exit status: 0 when all went well, 1 after an error, which is told in one line on standard error.";

template <class Value> std::string ListOf(const Words<Value>& words) {
    std::string list;
    for (const auto& [word, value] : words)
        list += (list.empty() ? "" : "|") + std::string(word);
    return list;
}

template <class Value, class Target>
void AddWord(CLI::App* verb, const std::string& name, Target& target, const Words<Value>& words,
             const std::string& help) {
    const auto set = [&target, &words, name](const std::string& given) {
        for (const auto& [word, value] : words) {
            if (given != word) continue;
            target = value;
            return;
        }
        throw CLI::ValidationError(name, "'" + given + "' is not one of " + ListOf(words));
    };
    verb->add_option_function<std::string>(name, set, help)->type_name(ListOf(words));
}

CLI::App* AddVerb(CLI::App& app, const char* name, const char* help) {
    return app.add_subcommand(name, help)->group("Verbs");
}

// A verb that makes a picture file from another.
CLI::App* AddEditVerb(CLI::App& app, const char* name, const char* help, EditOptions& options) {
    CLI::App* verb = AddVerb(app, name, help);
    verb->add_option("IN", options.input, "the picture")->required()->type_name("");
    verb->add_option("OUT", options.output, "the PNG file to write")->required()->type_name("");
    return verb;
}

// The last option of all such verbs, and what they do.
template <class Options> void FinishEditVerb(CLI::App* verb, Options& options, void (*run)(const Options&)) {
    AddWord(verb, "--storage", options.storage, StorageNames,
            "where the bitmaps live on the way (default: conventional);\n"
            "rle is for 1 bit per pixel, super for 1 and 24");
    verb->callback([&options, run] { run(options); });
}

// A test of values whose limits the help tells in words.
CLI::Validator Untitled(CLI::Validator test) {
    return test.description("");
}

// Options of a rectangle; the size is required where the verb has no use without it.
void AddArea(CLI::App* verb, Rectangle& area, bool required) {
    verb->add_option("--left", area.left, "left side of the rectangle, pixels (default: 0)")->type_name("X");
    verb->add_option("--top", area.top, "its top (default: 0)")->type_name("Y");
    CLI::Option* width = verb->add_option("--width", area.width, "its width")->type_name("W");
    CLI::Option* height = verb->add_option("--height", area.height, "its height")->type_name("H");
    const CLI::Validator positive = Untitled(CLI::Range(1, INT32_MAX));
    width->required(required)->needs(height)->check(positive);
    height->required(required)->needs(width)->check(positive);
}

// "RRGGBB" as a colour value.
void SetColour(uint32_t& target, const std::string& given) {
    const bool valid = given.size() == 6 && given.find_first_not_of("0123456789abcdefABCDEF") == given.npos;
    if (!valid)
        throw CLI::ValidationError("--color",
                                   "'" + given + "' is not a colour of six hexadecimal digits, RRGGBB");
    const auto rgb = static_cast<uint32_t>(std::stoul(given, nullptr, 16));
    target = rgb >> 16 | (rgb & 0xFF00) | (rgb & 0xFF) << 16;
}

std::string Version() {
    VersionRecord record = {};
    Z_VersionInfo(&record);
    return "zkr, for ZKR13N " + std::to_string(record.VersionMajor) + "." +
           std::to_string(record.VersionMinor);
}

// Each verb with its options, which live until the command line has been read.
void AddInfo(CLI::App& app, InfoOptions& info) {
    CLI::App* verb = AddVerb(app, "info", "Tell what a picture file holds, from its header");
    verb->add_option("PICTURE", info.picture, "the file")->required()->type_name("");
    verb->callback([&] { RunInfo(info); });
}

void AddConvert(CLI::App& app, ConvertOptions& convert) {
    CLI::App* verb =
        AddEditVerb(app, "convert", "Convert a picture to another depth, order or palette", convert);
    verb->add_option("--bits", convert.bits,
                     "bits per pixel, must be given: 1 to 8 (palette),\n"
                     "0 (8-bit gray), 12 (gray), 16, 24, 32, 48 or 64")
        ->required()
        ->type_name("N");
    AddWord(verb, "--order", convert.order, OrderNames,
            "colour order from 12 bits on (default: gray for 12 bits\n"
            "and for 16 bits of a gray picture, else rgb)");
    AddWord(verb, "--palette", convert.palette, PaletteNames,
            "palette of 1 to 8 bits (default: the picture's own\n"
            "where the depth stays, else fixed)");
    FinishEditVerb(verb, convert, RunConvert);
}

void AddCrop(CLI::App& app, CropOptions& crop) {
    CLI::App* verb = AddEditVerb(app, "crop", "Cut a rectangle out of a picture", crop);
    AddArea(verb, crop.area, true);
    FinishEditVerb(verb, crop, RunCrop);
}

void AddFill(CLI::App& app, FillOptions& fill) {
    CLI::App* verb = AddEditVerb(app, "fill", "Fill a picture, or a rectangle of it, with a colour", fill);
    verb->add_option_function<std::string>(
            "--color", [&fill](const std::string& given) { SetColour(fill.colour, given); },
            "the colour, must be given; a palette's nearest is taken")
        ->required()
        ->type_name("RRGGBB");
    AddArea(verb, fill.area, false);
    FinishEditVerb(verb, fill, RunFill);
}

void AddColors(CLI::App& app, ColorsOptions& colors) {
    CLI::App* verb = AddEditVerb(app, "colors", "Reduce a picture to a palette of few colours", colors);
    verb->add_option("--bits", colors.bits, "bits per pixel, 1 to 8 (default: 8)")
        ->type_name("N")
        ->check(Untitled(CLI::Range(1, 8)));
    AddWord(verb, "--dither", colors.method, MethodNames, "the dithering method (default: floyd-steinberg)");
    verb->add_option("--palette", colors.palette,
                     "optimized (the default) is made for the picture;\n"
                     "cube is for 8 bits; a file gives its own")
        ->type_name("optimized|fixed|cube|FILE");
    FinishEditVerb(verb, colors, RunColors);
}

void AddGray(CLI::App& app, GrayOptions& gray) {
    CLI::App* verb = AddEditVerb(app, "gray", "Make a picture gray", gray);
    verb->add_option("--bits", gray.bits, "bits per pixel: 8 (the default), 12 or 16")
        ->type_name("N")
        ->check(Untitled(CLI::IsMember({8, 12, 16})));
    FinishEditVerb(verb, gray, RunGray);
}

void AddWindow(CLI::App& app, WindowOptions& window) {
    CLI::App* verb = AddEditVerb(app, "window", "Show the gray values between two limits", window);
    verb->add_option("--low", window.low, "the value that becomes black, must be given")
        ->required()
        ->type_name("V");
    verb->add_option("--high", window.high,
                     "the value that becomes white, must be given;\n"
                     "4095 is the largest of 12 bits, 65535 of all others")
        ->required()
        ->type_name("V");
    FinishEditVerb(verb, window, RunWindow);
}

void AddSpace(CLI::App& app, SpaceOptions& space) {
    CLI::App* verb =
        AddEditVerb(app, "space", "Show the channels of a colour space side by side, in gray", space);
    AddWord(verb, "--to", space.space, SpaceNames, "the colour space (default: rgb)");
    FinishEditVerb(verb, space, RunSpace);
}

void AddAlpha(CLI::App& app, AlphaOptions& alpha) {
    CLI::App* verb = AddEditVerb(app, "alpha", "Show the alpha of a picture, or give it one", alpha);
    verb->add_option("--set", alpha.mask, "the picture whose gray becomes the alpha of OUT")
        ->type_name("FILE");
    FinishEditVerb(verb, alpha, RunAlpha);
}

void AddTour(CLI::App& app, TourOptions& tour) {
    CLI::App* verb = AddVerb(app, "tour", "Take a picture through every storage class and depth");
    verb->add_option("PICTURE", tour.picture, "the picture (default: a photograph of a honey bee)")
        ->type_name("");
    verb->add_option("--out", tour.out,
                     "folder for the results, made where missing\n(default: " + tour.out + ")")
        ->type_name("DIR");
    verb->callback([&] { RunTour(tour); });
}

struct AllOptions {
    InfoOptions info;
    ConvertOptions convert;
    CropOptions crop;
    FillOptions fill;
    ColorsOptions colors;
    GrayOptions gray;
    WindowOptions window;
    SpaceOptions space;
    AlphaOptions alpha;
    TourOptions tour;
};

void AddVerbs(CLI::App& app, AllOptions& options) {
    AddInfo(app, options.info);
    AddConvert(app, options.convert);
    AddCrop(app, options.crop);
    AddFill(app, options.fill);
    AddColors(app, options.colors);
    AddGray(app, options.gray);
    AddWindow(app, options.window);
    AddSpace(app, options.space);
    AddAlpha(app, options.alpha);
    AddTour(app, options.tour);
}

int Run(int argc, char** argv) {
    CLI::App app(About, "zkr");
    app.footer(Notes);
    app.set_version_flag("--version", Version, "Print the version and exit");
    app.set_help_flag("-h,--help", "Print this help, or that of a verb, and exit");
    app.require_subcommand(1);
    app.get_formatter()->column_width(32);
    app.get_formatter()->label("REQUIRED", "");
    app.get_formatter()->label("SUBCOMMAND", "VERB");
    AllOptions options;
    AddVerbs(app, options);

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::Error& error) {
        if (argc > 1 && app.get_subcommands().empty())
            throw Failure(argv[1], "no verb of zkr (see zkr --help)");
        const char* cause = argc > 1 ? error.what() : "a verb is required";
        std::fprintf(stderr, "zkr: %s (see zkr --help)\n", cause);
        return 1;
    }
    return 0;
}

} // namespace

} // namespace zkr::app

int main(int argc, char** argv) {
    // A reader that goes away and a limit on file sizes become errors of the write that meets them.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    zkr::app::StatusBar::WatchInterrupts();
    try {
        return zkr::app::Run(argc, argv);
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "zkr: %s\n", Z_GetErrorText(Z_ERROR_MEMORY));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zkr: %s\n", error.what());
    }
    return 1;
}
