// Picture files of the tests: pictures as plain samples, written and read with libpng and libjpeg alone.
#pragma once

#include <cstdint>
#include <functional>
#include <png.h>
#include <string>
#include <vector>

struct Picture {
    int width = 0;
    int height = 0;
    int depth = 8;                 // bits of a sample: 1, 2, 4, 8, 16
    int type = PNG_COLOR_TYPE_RGB; // PNG_COLOR_TYPE_...
    std::vector<uint16_t> samples; // channels of a pixel side by side, rows from the top
    std::vector<png_color> palette = {};
    int significantBits = 0; // of a gray picture, 0 for not told

    int Channels() const;
    bool operator==(const Picture& other) const;
};

// For test messages: the form, and the first samples.
void PrintTo(const Picture& picture, std::ostream* stream);

// A picture whose samples come from sample(index of the sample).
Picture PictureOf(int width, int height, int depth, int type, const std::function<uint32_t(size_t)>& sample);

// Samples of all sizes without visible order.
uint32_t Scattered(size_t index);

struct PngForm {
    bool interlaced = false;
    int transparentIndex = -1; // palette index that is wholly transparent
};
void WritePng(const std::string& path, const Picture& picture, const PngForm& form = {});
Picture ReadPng(const std::string& path);

// A JPEG of one value in all samples, of 1 (gray), 3 (colour) or 4 channels.
void WriteFlatJpeg(const std::string& path, int width, int height, int channels, uint8_t value);

// A gray JPEG of four flat quarters, 16 x 8 pixels each, rows from the top, and EXIF data that note an orientation.
void WriteJpegOfQuarters(const std::string& path, const uint8_t (&quarters)[4], int orientation,
                         bool bigEndian);

// A GIF of three frames in black, red, green and blue: all of it red, then for 50 ms in the middle half of it columns of
// green with nothing between them, which go away again, then for 20 ms a blue square of 4 pixels in the lower right corner.
void WriteGif(const std::string& path, int width, int height);
