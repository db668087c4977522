// The command line: verbs and their options, and the one place where failures are printed. Whatever goes
// wrong is one line on standard error and exit status 1.
#include "failure.h"
#include "pages/pages.h"
#include "progress.h"
#include "verb.h"

#include "zkr13n/frame.h"

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <new>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace zkr::app {

namespace {

constexpr const char* About = "zkr takes pictures through the ZKR13N raster image kernel.\n";

constexpr const char* Notes =
    "Pictures are read from PNG, JPEG, BMP, PBM (P4), PGM (P5), PPM (P6) and, where jbgtopbm is\n"
    "installed, JBIG files, each in the depth that the file has, and upright where a camera noted how it\n"
    "was held. They are written as PNG, by zkr dib as BMP. Depths that PNG lacks take the next that holds "
    "them:\n"
    "  3, 5, 6, 7 bits   8-bit palette picture with the palette of the depth\n"
    "  12 bits           16-bit gray, marked as 12 significant bits, and read back as 12\n"
    "  16 bits, colour   24-bit colour, marked as 5 significant bits a channel\n"
    "The fourth channel of 32 and 64 bits is written as opaque where the picture had no alpha.\n\n"
    "Exit status: 0 when all went well, 1 after an error, which is told in one line on standard error.";

std::string Version() {
    VersionRecord record = {};
    Z_VersionInfo(&record);
    return "zkr, for ZKR13N " + std::to_string(record.VersionMajor) + "." +
           std::to_string(record.VersionMinor);
}

constexpr const Verb* Verbs[] = {
#define ZKR_VERB(Name) &Name##Verb,
#include "apps/zkr/verbs/verbs.list"
#undef ZKR_VERB
};

void AddVerbs(CLI::App& app) {
    for (const Verb* verb : Verbs) {
        CLI::App* line = app.add_subcommand(verb->name, verb->help)->group("Verbs");
        line->footer(std::string("Example:\n  zkr ") + verb->example);
        verb->add(*line);
    }
}

// What CLI11 found wrong, in words of this program. An option that there is not is the cause, whatever is
// missing for it.
std::string Told(const CLI::App& verb, const CLI::ParseError& error) {
    const std::vector<std::string> rest = verb.remaining(true);
    for (const std::string& word : rest) {
        if (word.size() > 1 && word.starts_with('-')) return "there is no option " + word;
    }
    if (!rest.empty()) return "'" + rest.front() + "' is one word too many";
    const std::string told = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) == nullptr) return told;
    const auto has = [&told](const char* part) { return told.find(part) != told.npos; };
    return told.substr(0, told.find(':')) + (has("At Most")    ? " is given too often"
                                             : has("At least") ? " needs more values"
                                                               : " needs a value");
}

// What is wrong where no verb was found.
std::string ToldWithoutVerb(int argc, char** argv) {
    if (argc < 2) return "a verb is required";
    const std::string word = argv[1];
    return word.starts_with('-') ? "there is no option " + word : word + ": no verb of zkr";
}

// One line about the command line, and where to read on.
void PrintUsageFault(const CLI::App& app, const std::string& fault) {
    std::string page = "zkr";
    for (const CLI::App* verb : app.get_subcommands())
        page += " " + verb->get_name();
    std::fprintf(stderr, "zkr: %s (see %s --help)\n", fault.c_str(), page.c_str());
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
    AddVerbs(app);
    try {
        // For who makes packages; help says nothing of it.
        if (argc == 3 && std::string(argv[1]) == "--print") {
            const std::optional<std::string> page = PageOf(argv[2], app);
            if (!page) throw UsageFailure(std::string(argv[2]) + ": no page of zkr: man, bash, zsh, fish");
            std::fputs(page->c_str(), stdout);
            return 0;
        }
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        const auto verbs = app.get_subcommands();
        PrintUsageFault(app, verbs.empty() ? ToldWithoutVerb(argc, argv) : Told(*verbs.front(), error));
    } catch (const UsageFailure& error) {
        PrintUsageFault(app, error.what());
    }
    return 1;
}

// The numbers of standard streams that are closed would go to pictures, and what is printed into these. Such streams
// come to take nothing and give nothing.
void HoldStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) (void)open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

int AfterPrinting(int status) {
    const bool isWritten = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (isWritten || status != 0) return status;
    std::fputs("zkr: what is printed cannot be written\n", stderr);
    return 1;
}

} // namespace

} // namespace zkr::app

int main(int argc, char** argv) {
    // A reader that goes away and a limit on file sizes become errors of the write that meets them.
    zkr::app::HoldStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    zkr::app::StatusBar::WatchInterrupts();
    try {
        return zkr::app::AfterPrinting(zkr::app::Run(argc, argv));
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "zkr: %s\n", Z_GetErrorText(Z_ERROR_MEMORY));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zkr: %s\n", error.what());
    }
    return 1;
}
