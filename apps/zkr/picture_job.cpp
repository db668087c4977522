// Each step has a status bar of its own.
#include "picture_job.h"

#include "failure.h"
#include "picture_reader.h"
#include "progress.h"
#include "write_png.h"

namespace zkr::app {

void ChangePicture(const EditOptions& options, const char* doing,
                   const std::function<void(Bitmap&)>& change) {
    const auto reader = OpenPicture(options.input);
    if (!options.output.ends_with(".png")) throw Failure(options.output, "the name does not end in .png");
    const auto read = [&] {
        const StatusBar bar("reading   ");
        return ReadPicture(*reader, options.input, {.kind = options.storage});
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
