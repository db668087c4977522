// What the command line knows of itself.
#include "pages.h"

#include "zkr13n/frame.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace zkr::app {

namespace {

// The parts of a form that stand for themselves: all of a|b|c, none of N, and of a|b|FILE the first two.
std::vector<std::string> ValuesOf(const std::string& form) {
    std::vector<std::string> values;
    if (form.find('|') == form.npos) return values;
    std::istringstream parts(form);
    for (std::string part; std::getline(parts, part, '|');) {
        const auto isCapital = [](unsigned char letter) { return std::isupper(letter) != 0; };
        if (std::none_of(part.begin(), part.end(), isCapital)) values.push_back(part);
    }
    return values;
}

ToldOption Told(const CLI::Option& option) {
    ToldOption told;
    for (const std::string& name : option.get_snames())
        told.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        told.names.push_back("--" + name);
    told.isFlag = option.get_items_expected_max() == 0;
    told.isRequired = option.get_required();
    told.takesMany = option.get_items_expected_max() > 1;
    told.help = option.get_description();
    if (option.get_positional() && told.names.empty()) {
        told.word = option.get_name();
        told.takesFiles = true; // no verb takes other words
        return told;
    }
    if (told.isFlag) return told;
    told.form = option.get_type_name();
    told.values = ValuesOf(told.form);
    told.takesFiles = told.form.find("FILE") != told.form.npos;
    told.takesFolders = told.form == "DIR";
    return told;
}

ToldVerb Told(CLI::App& verb) {
    ToldVerb told{verb.get_name(), verb.get_description(), {}, {}, {}};
    const std::string footer = verb.get_footer();
    const size_t line = footer.find("zkr ");
    told.example = footer.substr(line, footer.find('\n', line) - line);
    for (const CLI::Option* option : verb.get_options({})) {
        ToldOption one = Told(*option);
        (one.names.empty() ? told.words : told.options).push_back(std::move(one));
    }
    return told;
}

} // namespace

ToldProgram Tell(CLI::App& app) {
    VersionRecord version = {};
    Z_VersionInfo(&version);
    ToldProgram program{app.get_description(),
                        app.get_footer(),
                        std::to_string(version.VersionMajor) + "." + std::to_string(version.VersionMinor),
                        {}};
    for (CLI::App* verb : app.get_subcommands({}))
        program.verbs.push_back(Told(*verb));
    return program;
}

std::optional<std::string> PageOf(const std::string& kind, CLI::App& app) {
    if (kind == "man") return ManualPage(Tell(app));
    if (kind == "bash") return BashCompletion(Tell(app));
    if (kind == "zsh") return ZshCompletion(Tell(app));
    if (kind == "fish") return FishCompletion(Tell(app));
    return {};
}

} // namespace zkr::app
