// zkr crop and zkr fill: a picture changed where it stands and written in its own depth.
#include "edit.h"
#include "picture_job.h"

namespace zkr::app {

void RunCrop(const CropOptions& options) {
    ChangePicture(options, "cropping  ", [&](Bitmap& picture) { Crop(picture, options.area); });
}

void RunFill(const FillOptions& options) {
    ChangePicture(options, "filling   ", [&](Bitmap& picture) {
        if (options.area.width > 0)
            Fill(picture, options.colour, options.area);
        else
            Fill(picture, options.colour);
    });
}

} // namespace zkr::app
