// PictureSurface: a device context on the pixels of a picture, which lies in one block of memory and stands upright, for a
// scope. Up to 8 bits its colours are the picture's.
#pragma once

#include "bitmap.h"

#include "zkr13n/platform_types.h"

namespace zkr::app {

class PictureSurface {
  public:
    explicit PictureSurface(Bitmap& picture);
    ~PictureSurface();
    PictureSurface(const PictureSurface&) = delete;
    PictureSurface& operator=(const PictureSurface&) = delete;

    HDC Context() const { return context_; }

  private:
    HDC context_ = nullptr;
};

} // namespace zkr::app
