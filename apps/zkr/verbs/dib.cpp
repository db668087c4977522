// zkr dib: a picture as a device-independent bitmap in a BMP file.
#include "apps/zkr/failure.h"
#include "apps/zkr/options.h"
#include "apps/zkr/picture_job.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/progress.h"
#include "apps/zkr/write_bmp.h"

#include "zkr13n/dib.h"

namespace zkr::app {

namespace {

struct DibOptions : EditOptions {
    int header = Z_DIB_INFO;
};

const Words<int> Headers = {{"info", Z_DIB_INFO}, {"v4", Z_DIB_V4}, {"v5", Z_DIB_V5}};

void Describe(CLI::App& verb, DibOptions& options) {
    AddInput(verb, "IN", options.input, "the picture");
    AddOutput(verb, options.output, "BMP");
    AddWord(verb, "--header", options.header, Headers, "the kind of header (default: info)");
    AddStorage(verb, options.storage);
}

void Run(const DibOptions& options) {
    if (!options.output.ends_with(".bmp")) throw Failure(options.output, "the name does not end in .bmp");
    const auto reader = OpenPicture(options.input);
    const auto read = [&] {
        const StatusBar bar("reading   ");
        return ReadUpright(*reader, options.input, {.kind = options.storage});
    };
    Bitmap picture = read();
    const StatusBar bar("writing   ");
    WriteBmp(picture, options.output, options.header);
}

} // namespace

constexpr Verb DibVerb = VerbOf<DibOptions, Describe, Run>("dib", "Write a picture as a BMP file",
                                                           "dib photo.png photo.bmp --header v5");

} // namespace zkr::app
