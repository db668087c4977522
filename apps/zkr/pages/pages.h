// The man page and the shell completions of the program, made from the verbs and options as its command line
// has them. Packages are built with what `zkr --print man|bash|zsh|fish` prints.
#pragma once

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

namespace zkr::app {

// An option, or a word without a dash, as pages tell of it.
struct ToldOption {
    std::vector<std::string> names;  // with their dashes; none for a word without one
    std::string word;                // what such a word is called: IN
    std::string form;                // of the value: N, a|b|c, FILE; empty for flags and for such words
    std::vector<std::string> values; // those that the form lists
    bool isFlag = false;
    bool isRequired = false;
    bool takesFiles = false;
    bool takesFolders = false;
    bool takesMany = false;
    std::string help;
};

struct ToldVerb {
    std::string name;
    std::string help;
    std::string example; // as it is typed
    std::vector<ToldOption> options;
    std::vector<ToldOption> words;
};

struct ToldProgram {
    std::string about;
    std::string notes;
    std::string version;
    std::vector<ToldVerb> verbs;
};

ToldProgram Tell(CLI::App& app);

std::string ManualPage(const ToldProgram& program);
std::string BashCompletion(const ToldProgram& program);
std::string ZshCompletion(const ToldProgram& program);
std::string FishCompletion(const ToldProgram& program);

// The page of a kind: man, bash, zsh or fish. Nothing for another kind.
std::optional<std::string> PageOf(const std::string& kind, CLI::App& app);

} // namespace zkr::app
