// What the face of a raster object does for it: the component model's on Windows, a plain class elsewhere.
#pragma once

#include "zkr13n/bitmap.h"

namespace zkr::automation {

class Face {
  public:
    // A reference to the whole object, for the time of a call that may end it.
    virtual void Keep() = 0;
    virtual void Drop() = 0;
    // The text that goes with the result of the member that is running.
    virtual void ReportFailure(const char* text) = 0;
    virtual void FireChange(int32_t change, int32_t reserved1, int32_t reserved2) = 0;
    virtual void FireRegionChange() = 0;
    // A colour of a client, which may be one of the system's, as a colour value; false for one that is none.
    virtual bool TranslateColour(uint32_t colour, uint32_t* plain) = 0;
    // Picture objects of the system, where there are any. Making one takes bitmap and palette over whatever happens.
    virtual bool HasPictures() const { return false; }
    virtual ReturnCode MakePicture(HBITMAP, HPALETTE, intptr_t*) { return Z_ERROR_FEATURE; }
    virtual ReturnCode ReadPicture(intptr_t, BitmapHandle*) { return Z_ERROR_FEATURE; }

  protected:
    ~Face() = default;
};

// A reference to the whole object for the time of a call that may release the client's last one; none where there is no
// face.
class KeptFace {
  public:
    explicit KeptFace(Face* face) : face_(face) {
        if (face_ != nullptr) face_->Keep();
    }
    ~KeptFace() {
        if (face_ != nullptr) face_->Drop();
    }
    KeptFace(const KeptFace&) = delete;
    KeptFace& operator=(const KeptFace&) = delete;

  private:
    Face* face_;
};

} // namespace zkr::automation
