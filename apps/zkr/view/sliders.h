// The sliders of a picture's adjustments, and the list of keys: panels over the picture.
#pragma once

#include "shown_picture.h"
#include "stage.h"

#include <optional>

namespace zkr::app {

class Sliders {
  public:
    // The panel, in the lower left corner of the area.
    Panel Draw(ShownPicture& picture, Lettering& letters, const Size& area) const;
    // The slider under a point of the area.
    std::optional<int> At(ShownPicture& picture, const Size& area, const Point& point) const;
    // Moves a slider to where a point is.
    void Move(ShownPicture& picture, const Size& area, int slider, const Point& point) const;
    // The slider that is held.
    int held = 0;
};

Panel DrawKeys(Lettering& letters);

} // namespace zkr::app
