// By giflib. A frame is indexed with the palette that it has in the file; the canvas is of 24 bits.
#include "animation.h"

#include "failure.h"

#include "zkr13n/lists.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <gif_lib.h>

#include <algorithm>
#include <memory>

namespace zkr::app {

namespace {

struct GifCloser {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, GifCloser>;

std::string CauseOf(int error) {
    const char* text = GifErrorString(error);
    return text != nullptr ? text : "the file is damaged";
}

Gif ReadGif(const std::string& path) {
    int error = 0;
    Gif gif(DGifOpenFileName(path.c_str(), &error));
    if (gif == nullptr) throw Failure(path, CauseOf(error));
    if (DGifSlurp(gif.get()) != GIF_OK) throw Failure(path, CauseOf(gif->Error));
    if (gif->ImageCount < 1) throw Failure(path, "the file has no frame");
    if (gif->SWidth < 1 || gif->SHeight < 1) throw Failure(path, "Invalid width/height");
    return gif;
}

uint32_t ColourOf(const ColorMapObject* map, int index) {
    if (map == nullptr || index < 0 || index >= map->ColorCount) return 0x00FFFFFF;
    const GifColorType& colour = map->Colors[index];
    return static_cast<uint32_t>(colour.Red | colour.Green << 8 | colour.Blue << 16);
}

Palette PaletteOf(const ColorMapObject* map) {
    Palette palette(256);
    for (int i = 0; map != nullptr && i < std::min(map->ColorCount, 256); ++i) {
        const GifColorType& colour = map->Colors[i];
        palette[static_cast<size_t>(i)] = {colour.Blue, colour.Green, colour.Red, 0};
    }
    return palette;
}

// The record of a frame, which belongs to the list once it is there.
BitmapHandle MakeFrame(const std::string& path, const GifFileType& gif, int index) {
    const SavedImage& image = gif.SavedImages[index];
    const GifImageDesc& place = image.ImageDesc;
    const Palette palette = PaletteOf(place.ColorMap != nullptr ? place.ColorMap : gif.SColorMap);
    BitmapHandle frame;
    Check(Z_CreateBitmap(&frame, MemoryConventional, place.Width, place.Height, 8, Z_ORDER_RGB,
                         palette.data(), VIEW_TOP_LEFT, nullptr, 0),
          path);
    for (int32_t y = 0; y < frame.Height; ++y) {
        const uint8_t* row = image.RasterBits + static_cast<ptrdiff_t>(y) * place.Width;
        if (const ReturnCode put = Z_PutBitmapRow(&frame, row, y, static_cast<uint32_t>(place.Width));
            put < 0) {
            Z_FreeBitmap(&frame);
            Check(put, path);
        }
    }
    frame.PlaybackLeft = place.Left;
    frame.PlaybackTop = place.Top;
    GraphicsControlBlock control = {};
    control.TransparentColor = NO_TRANSPARENT_COLOR;
    DGifSavedExtensionToGCB(const_cast<GifFileType*>(&gif), index, &control);
    frame.PlaybackDelay = control.DelayTime * 10;
    frame.DisposalMethod = control.DisposalMode;
    if (control.TransparentColor != NO_TRANSPARENT_COLOR) {
        constexpr uint32_t index8 = 0x01000000;
        frame.Flags |= Z_FLAG_PLAYBACK_TRANSPARENCY;
        frame.TransparentColor = index8 | static_cast<uint32_t>(control.TransparentColor);
    }
    return frame;
}

} // namespace

Animation::Animation(const std::string& path)
    : path_(path), canvas_(path, {.bits = 24, .order = Z_ORDER_RGB}, 1, 1, Storage{}) {
    const Gif gif = ReadGif(path);
    canvas_ = Bitmap(path, {.bits = 24, .order = Z_ORDER_RGB}, gif->SWidth, gif->SHeight, Storage{});
    canvas_.Handle()->PlaybackBackColor = ColourOf(gif->SColorMap, gif->SBackGroundColor);
    Check(Z_CreatePlayback(&playback_, canvas_.Handle(), nullptr), path);
    for (int i = 0; i < gif->ImageCount; ++i) {
        BitmapHandle frame = MakeFrame(path, *gif, i);
        if (const ReturnCode result = Z_AppendPlayback(playback_, &frame); result != Z_SUCCESS) {
            Z_FreeBitmap(&frame);
            Check(result, path);
        }
        delays_.push_back(frame.PlaybackDelay);
        Check(Z_ValidatePlaybackLines(playback_, 0, frame.Height), path);
    }
}

Animation::~Animation() {
    if (playback_ != nullptr) Z_DestroyPlayback(playback_, &list_);
    if (list_ != nullptr) Z_DestroyBitmapList(list_);
}

Bitmap& Animation::Next() {
    uint32_t state = PlaybackClear;
    do {
        Check(Z_CancelPlaybackWait(playback_), path_);
        Check(Z_ProcessPlayback(playback_, &state), path_);
    } while (state != PlaybackRendered);
    return canvas_;
}

int Animation::Index() const {
    int32_t index = -1;
    Check(Z_GetPlaybackIndex(playback_, &index), path_);
    return index;
}

RECT Animation::TakeChanged() {
    RECT changed = {};
    Check(Z_GetPlaybackUpdateRect(playback_, &changed, 1), path_);
    return changed;
}

} // namespace zkr::app
