// Each step has a status bar of its own.
#include "picture_job.h"

#include "failure.h"
#include "options.h"
#include "picture_reader.h"
#include "progress.h"
#include "write_png.h"

namespace zkr::app {

namespace {

const Words<StorageClass> StorageNames = {{"conventional", StorageClass::Conventional},
                                          {"user", StorageClass::User},
                                          {"tiled", StorageClass::Tiled},
                                          {"disk", StorageClass::Disk},
                                          {"runs", StorageClass::Runs},
                                          {"strips", StorageClass::Strips}};

} // namespace

void AddInAndOut(CLI::App& verb, EditOptions& options) {
    AddInput(verb, "IN", options.input, "the picture");
    AddOutput(verb, options.output);
}

void AddStorage(CLI::App& verb, StorageClass& storage) {
    AddWord(verb, "--storage", storage, StorageNames,
            "where the bitmaps live on the way (default: conventional);\n"
            "runs are for 1 bit per pixel, strips for 1 and 24");
}

void CheckOutputName(const std::string& path) {
    if (!path.ends_with(".png")) throw Failure(path, "the name does not end in .png");
}

Bitmap ReadInput(const std::string& path) {
    const auto reader = OpenPicture(path);
    const StatusBar bar("reading   ");
    return ReadUpright(*reader, path, Storage{});
}

void ChangePicture(const EditOptions& options, const char* doing,
                   const std::function<void(Bitmap&)>& change) {
    CheckOutputName(options.output);
    const auto reader = OpenPicture(options.input);
    const auto read = [&] {
        const StatusBar bar("reading   ");
        return ReadUpright(*reader, options.input, {.kind = options.storage});
    };
    Bitmap picture = read();
    {
        const StatusBar bar(doing);
        change(picture);
    }
    const StatusBar bar("writing   ");
    WritePng(picture, options.output);
}

} // namespace zkr::app
