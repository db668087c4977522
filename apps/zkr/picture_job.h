// The job of verbs that change one picture: read it, change it, write it.
#pragma once

#include "bitmap.h"
#include "verb.h"

#include <functional>
#include <string>

namespace zkr::app {

// What all such verbs take.
struct EditOptions {
    std::string input;
    std::string output;
    StorageClass storage = StorageClass::Conventional;
};

void AddInAndOut(CLI::App& verb, EditOptions& options);
void AddStorage(CLI::App& verb, StorageClass& storage);

// `doing` is what the status bar says during the change, ten letters wide.
void ChangePicture(const EditOptions& options, const char* doing, const std::function<void(Bitmap&)>& change);

// A picture of a file, upright and in memory, for verbs that take more than one.
Bitmap ReadInput(const std::string& path);

// A name that a picture cannot be written to is refused before any work is done.
void CheckOutputName(const std::string& path);

template <class Options, void (*Describe)(CLI::App&, Options&)>
void DescribeEdit(CLI::App& verb, Options& options) {
    AddInAndOut(verb, options);
    Describe(verb, options);
    AddStorage(verb, options.storage);
}

// A verb `zkr NAME IN OUT` with the options that its own function describes, and --storage.
template <class Options, void (*Describe)(CLI::App&, Options&), void (*Run)(const Options&)>
constexpr Verb EditVerbOf(const char* name, const char* help, const char* example) {
    return VerbOf<Options, DescribeEdit<Options, Describe>, Run>(name, help, example);
}

} // namespace zkr::app
