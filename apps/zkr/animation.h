// Animations: the frames of a GIF file as a list of bitmaps, composed one after the other by the library.
#pragma once

#include "bitmap.h"

#include "zkr13n/playback.h"

#include <string>
#include <vector>

namespace zkr::app {

class Animation {
  public:
    // Throws Failure for a file that is no GIF or is damaged.
    explicit Animation(const std::string& path);
    ~Animation();
    Animation(const Animation&) = delete;
    Animation& operator=(const Animation&) = delete;

    int Frames() const { return static_cast<int>(delays_.size()); }
    // Milliseconds that a frame stays.
    int DelayOf(int frame) const { return delays_[static_cast<size_t>(frame)]; }

    // The canvas with a frame drawn on it; frames come in turn, and begin anew behind the last one.
    Bitmap& Next();
    int Index() const;
    // The part of the canvas that has changed since this was last asked.
    RECT TakeChanged();

  private:
    std::string path_;
    std::vector<int> delays_;
    Bitmap canvas_;
    BitmapList list_ = nullptr;
    PlaybackHandle playback_ = nullptr;
};

} // namespace zkr::app
