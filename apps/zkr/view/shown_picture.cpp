#include "shown_picture.h"

#include "apps/zkr/failure.h"
#include "apps/zkr/picture_reader.h"
#include "apps/zkr/progress.h"

#include "zkr13n/levels.h"
#include "zkr13n/paint.h"
#include "zkr13n/pixels.h"
#include "zkr13n/region_colours.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/views.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <utility>
#include <vector>

namespace zkr::app {

namespace {

bool IsGif(const std::string& path) {
    char head[4] = {};
    std::ifstream(path, std::ios::binary).read(head, sizeof head);
    return std::string(head, sizeof head) == "GIF8";
}

RECT RectOf(const Rectangle& area) {
    return {area.left, area.top, area.left + area.width, area.top + area.height};
}

} // namespace

ShownPicture::ShownPicture(const std::string& path) : path_(path) {
    const StatusBar bar("reading   ");
    if (IsGif(path)) {
        animation_ = std::make_unique<Animation>(path);
        canvas_ = &animation_->Next();
    } else {
        picture_.emplace(ReadPicture(*OpenPicture(path), path, Storage{}));
    }
    if (IsDeepGray()) window_ = {0, LargestGray()};
}

Size ShownPicture::SizeSeen() {
    const BitmapHandle& bitmap = *Pixels().Handle();
    RECT seen = {0, 0, bitmap.Width, bitmap.Height};
    Check(Z_RectFromBitmap(Pixels().Handle(), VIEW_TOP_LEFT, &seen), path_);
    return {seen.right - seen.left, seen.bottom - seen.top};
}

void ShownPicture::Turn(int degrees) {
    Check(Z_RotateBitmapViewPerspective(Pixels().Handle(), degrees), path_);
}

void ShownPicture::Mirror() {
    Check(Z_ReverseBitmapViewPerspective(Pixels().Handle()), path_);
}

void ShownPicture::Flip() {
    Check(Z_FlipBitmapViewPerspective(Pixels().Handle()), path_);
}

void ShownPicture::Adjust(const Adjustments& wanted) {
    adjustments_ = {std::clamp(wanted.brightness, -1000, 1000), std::clamp(wanted.contrast, -1000, 1000),
                    std::clamp(wanted.gamma, 10, 1000)};
    BitmapHandle* bitmap = Pixels().Handle();
    Check(Z_SetPaintIntensity(bitmap, adjustments_.brightness), path_);
    Check(Z_SetPaintContrast(bitmap, adjustments_.contrast), path_);
    if (Z_GetPaintGamma(bitmap) != static_cast<uint32_t>(adjustments_.gamma))
        Check(Z_SetPaintGamma(bitmap, static_cast<uint32_t>(adjustments_.gamma)), path_);
}

bool ShownPicture::IsDeepGray() {
    const PixelFormat& format = Pixels().Format();
    return format.bits == 12 || (format.bits == 16 && format.IsGray());
}

int ShownPicture::LargestGray() {
    const BitmapHandle& bitmap = *Pixels().Handle();
    return (1 << (bitmap.HighBit - bitmap.LowBit + 1)) - 1;
}

void ShownPicture::ShowWindow(GrayWindow window) {
    const int largest = LargestGray();
    window_.low = std::clamp(window.low, 0, largest - 1);
    window_.high = std::clamp(window.high, window_.low + 1, largest);
    BitmapHandle* bitmap = Pixels().Handle();
    const int low = bitmap->LowBit, high = bitmap->HighBit;
    std::vector<RGBQUAD> table(static_cast<size_t>(largest) + 1, RGBQUAD{255, 255, 255, 0});
    Check(Z_WindowLevelFillLUT(table.data(), static_cast<uint32_t>(table.size()), 0, 0x00FFFFFF,
                               window_.low << low, window_.high << low, low, high, 0, largest << low, 1),
          path_);
    if (window_.low > 0) table[static_cast<size_t>(window_.low) - 1] = {};
    Check(Z_WindowLevel(bitmap, low, high, table.data(), static_cast<uint32_t>(table.size()), Z_LEVEL_APPLY),
          path_);
}

// A pixel as a rectangle of one, which turns into any view.
Point ShownPicture::Stored(const Point& pixel) {
    const Size seen = SizeSeen();
    RECT area = {pixel.x, pixel.y, pixel.x + 1, pixel.y + 1};
    Check(Z_ChangeRectViewPerspective(VIEW_TOP_LEFT, static_cast<uint32_t>(seen.width),
                                      static_cast<uint32_t>(seen.height),
                                      static_cast<uint32_t>(Pixels().Handle()->ViewPerspective), &area),
          path_);
    return {area.left, area.top};
}

Rectangle ShownPicture::Seen(RECT stored) {
    Check(Z_RectFromBitmap(Pixels().Handle(), VIEW_TOP_LEFT, &stored), path_);
    return {stored.left, stored.top, stored.right - stored.left, stored.bottom - stored.top};
}

bool ShownPicture::HasSelection() {
    return Z_BitmapHasRgn(Pixels().Handle()) != 0;
}

void ShownPicture::SelectNear(const Point& pixel, int tolerance, uint32_t mode) {
    const Point seed = Stored(pixel);
    Check(Z_SetBitmapRgnMagicWand(Pixels().Handle(), seed.x, seed.y, static_cast<uint32_t>(tolerance), mode),
          path_);
}

void ShownPicture::SelectRectangle(const Rectangle& area, uint32_t mode) {
    const Size seen = SizeSeen();
    RECT stored = RectOf(area);
    Check(Z_ChangeRectViewPerspective(VIEW_TOP_LEFT, static_cast<uint32_t>(seen.width),
                                      static_cast<uint32_t>(seen.height),
                                      static_cast<uint32_t>(Pixels().Handle()->ViewPerspective), &stored),
          path_);
    Check(Z_SetBitmapRgnRect(Pixels().Handle(), nullptr, &stored, mode), path_);
}

void ShownPicture::Deselect() {
    Check(Z_FreeBitmapRgn(Pixels().Handle()), path_);
}

Rectangle ShownPicture::SelectionBounds() {
    RECT bounds = {};
    Check(Z_GetBitmapRgnBoundsClip(Pixels().Handle(), nullptr, &bounds), path_);
    return Seen(bounds);
}

uint32_t ShownPicture::SelectionArea() {
    uint32_t area = 0;
    Check(Z_GetBitmapRgnArea(Pixels().Handle(), &area), path_);
    return area;
}

std::string ShownPicture::Tell(const Point& pixel) {
    BitmapHandle* bitmap = Pixels().Handle();
    const Point stored = Stored(pixel);
    const uint32_t colour = Z_GetPixelColor(bitmap, stored.y, stored.x);
    uint8_t bytes[8] = {};
    char text[120];
    int length = std::snprintf(text, sizeof text, "%d,%d", pixel.x, pixel.y);
    const auto add = [&](const char* form, auto... values) {
        length += std::snprintf(text + length, sizeof text - static_cast<size_t>(length), form, values...);
    };
    if (IsDeepGray()) {
        Check(Z_GetPixelData(bitmap, bytes, stored.y, stored.x, 2), path_);
        uint32_t value = static_cast<uint32_t>(bytes[0] | bytes[1] << 8);
        if (bitmap->BitsPerPixel == 12) value = stored.x % 2 == 0 ? value & 0xFFF : value >> 4;
        add("  gray %u", (value >> bitmap->LowBit) & static_cast<uint32_t>(LargestGray()));
        return text;
    }
    const uint32_t red = colour & 255, green = colour >> 8 & 255, blue = colour >> 16 & 255;
    add("  #%02X%02X%02X  %u %u %u", red, green, blue, red, green, blue);
    const int bits = bitmap->BitsPerPixel;
    if (bits == 1 || bits == 2 || bits == 4 || bits == 8) {
        Check(Z_GetPixelData(bitmap, bytes, stored.y, stored.x, 1), path_);
        add("  index %d", bytes[0] >> (8 - bits - stored.x * bits % 8) & ((1 << bits) - 1));
    }
    return text;
}

// Frames are composed on a canvas that stands upright, and on all of it.
Rectangle ShownPicture::NextFrame() {
    BitmapHandle* bitmap = canvas_->Handle();
    const int32_t view = std::exchange(bitmap->ViewPerspective, VIEW_TOP_LEFT);
    void* region = std::exchange(bitmap->Region, nullptr);
    animation_->Next();
    const RECT changed = animation_->TakeChanged();
    bitmap->ViewPerspective = view;
    bitmap->Region = region;
    return Seen(changed);
}

} // namespace zkr::app
