// What a playback does to its canvas: frames drawn and disposed of, and the part that has changed. Records of frames are
// copies of those in the list; what a frame shares with the list stays as it is.
#pragma once

#include "core/rectangle.h"
#include "zkr13n/bitmap.h"

namespace zkr::playback {

class Canvas {
  public:
    explicit Canvas(BitmapHandle* target) : target_(target) {}
    ~Canvas() { DropSaved(); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // In the background colour.
    void Clear();

    // Draws a frame, as far as that is possible. What lies under one that is to be taken away again is kept.
    void Render(BitmapHandle& frame);
    void Dispose(BitmapHandle& frame);

    void DropSaved();

    RECT Update() const { return update_.AsRect(); }
    void ClearUpdate() { update_ = PixelRect{}; }

  private:
    // A frame's place in stored rows and columns; empty where the canvas has no view.
    PixelRect PlaceOf(const BitmapHandle& frame) const;
    bool IsInForm(const BitmapHandle& frame) const;
    void Draw(BitmapHandle& frame);
    void FillPlace(const PixelRect& place);
    void RestorePlace(const PixelRect& place);
    void Record(BitmapHandle& frame);
    void Add(const PixelRect& changed);

    BitmapHandle* target_;
    BitmapHandle saved_{};
    PixelRect savedPlace_{};
    PixelRect update_{};
};

} // namespace zkr::playback
