// A verb of the program. Each is a file in verbs/ and a line in verbs/verbs.list; docs/adding-a-verb.md shows how.
#pragma once

#include <CLI/CLI.hpp>

#include <memory>

namespace zkr::app {

struct Verb {
    const char* name;
    const char* help;    // one line, for the list of verbs
    const char* example; // a command line that works, from the verb on
    // Adds the options, and what is to be done once the command line has been read.
    void (*add)(CLI::App& verb);
};

// A verb whose options, which live as long as the command line, are described and used by two functions.
template <class Options, void (*Describe)(CLI::App&, Options&), void (*Run)(const Options&)>
constexpr Verb VerbOf(const char* name, const char* help, const char* example) {
    return {name, help, example, [](CLI::App& verb) {
                const auto options = std::make_shared<Options>();
                Describe(verb, *options);
                verb.callback([options] { Run(*options); });
            }};
}

// The verbs, <Name>Verb each.
#define ZKR_VERB(Name) extern const Verb Name##Verb;
#include "apps/zkr/verbs/verbs.list"
#undef ZKR_VERB

} // namespace zkr::app
