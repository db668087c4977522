// Errors of libpng and libjpeg end the test program: the files here are always good ones.
#include "picture_files.h"

#include <cstdio>
#include <ostream>

#include <gif_lib.h>
#include <gtest/gtest.h>
#include <jpeglib.h>

int Picture::Channels() const {
    const int colours = (type & PNG_COLOR_MASK_COLOR) != 0 && type != PNG_COLOR_TYPE_PALETTE ? 3 : 1;
    return colours + ((type & PNG_COLOR_MASK_ALPHA) != 0 ? 1 : 0);
}

bool Picture::operator==(const Picture& other) const {
    const auto same = [](const png_color& a, const png_color& b) {
        return a.red == b.red && a.green == b.green && a.blue == b.blue;
    };
    return width == other.width && height == other.height && depth == other.depth && type == other.type &&
           samples == other.samples && significantBits == other.significantBits &&
           std::equal(palette.begin(), palette.end(), other.palette.begin(), other.palette.end(), same);
}

void PrintTo(const Picture& picture, std::ostream* stream) {
    *stream << picture.width << " x " << picture.height << ", " << picture.depth << " bits, colour type "
            << picture.type << ", " << picture.palette.size() << " colours, " << picture.significantBits
            << " significant bits, samples";
    for (size_t i = 0; i < 12 && i < picture.samples.size(); ++i)
        *stream << ' ' << picture.samples[i];
}

Picture PictureOf(int width, int height, int depth, int type, const std::function<uint32_t(size_t)>& sample) {
    Picture picture = {width, height, depth, type, {}};
    const int count = width * height * picture.Channels();
    const uint32_t mask = (1u << depth) - 1;
    for (int i = 0; i < count; ++i) {
        picture.samples.push_back(static_cast<uint16_t>(sample(static_cast<size_t>(i)) & mask));
    }
    return picture;
}

uint32_t Scattered(size_t index) {
    uint32_t mixed = static_cast<uint32_t>(index) * 2654435761u + 12345;
    mixed = (mixed ^ mixed >> 15) * 2246822519u;
    mixed = (mixed ^ mixed >> 13) * 3266489917u;
    return mixed ^ mixed >> 16;
}

void WritePng(const std::string& path, const Picture& picture, const PngForm& form) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
                 picture.depth, picture.type, form.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!picture.palette.empty()) {
        png_set_PLTE(png, info, picture.palette.data(), static_cast<int>(picture.palette.size()));
    }
    if (form.transparentIndex >= 0) {
        std::vector<png_byte> alpha(static_cast<size_t>(form.transparentIndex) + 1, 255);
        alpha.back() = 0;
        png_set_tRNS(png, info, alpha.data(), static_cast<int>(alpha.size()), nullptr);
    }
    if (picture.significantBits > 0) {
        png_color_8 significant = {};
        significant.gray = static_cast<png_byte>(picture.significantBits);
        png_set_sBIT(png, info, &significant);
    }
    // A byte a sample where a sample has fewer bits, two in the machine's order where it has more.
    const size_t sampleBytes = picture.depth == 16 ? 2 : 1;
    const size_t rowSamples = static_cast<size_t>(picture.width * picture.Channels());
    std::vector<uint8_t> bytes(picture.samples.begin(), picture.samples.end());
    std::vector<uint16_t> words = picture.samples;
    std::vector<png_bytep> rows;
    for (size_t y = 0; y < static_cast<size_t>(picture.height); ++y)
        rows.push_back(sampleBytes == 2 ? reinterpret_cast<png_bytep>(&words[y * rowSamples])
                                        : &bytes[y * rowSamples]);
    png_set_rows(png, info, rows.data());
    png_write_png(png, info, PNG_TRANSFORM_PACKING | PNG_TRANSFORM_SWAP_ENDIAN, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

Picture ReadPng(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return {};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_info(png, info);
    Picture picture;
    picture.width = static_cast<int>(png_get_image_width(png, info));
    picture.height = static_cast<int>(png_get_image_height(png, info));
    picture.depth = png_get_bit_depth(png, info);
    picture.type = png_get_color_type(png, info);
    png_colorp colours = nullptr;
    int count = 0;
    if (png_get_PLTE(png, info, &colours, &count) != 0) picture.palette.assign(colours, colours + count);
    png_color_8p significant = nullptr;
    if (png_get_sBIT(png, info, &significant) != 0) picture.significantBits = significant->gray;
    png_set_packing(png);
    png_set_swap(png);
    png_read_update_info(png, info);
    std::vector<uint8_t> row(png_get_rowbytes(png, info));
    const auto* words = reinterpret_cast<const uint16_t*>(row.data());
    for (int y = 0; y < picture.height; ++y) {
        png_read_row(png, row.data(), nullptr);
        for (size_t i = 0; i < static_cast<size_t>(picture.width * picture.Channels()); ++i)
            picture.samples.push_back(picture.depth == 16 ? words[i] : row[i]);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return picture;
}

namespace {

using JpegSample = std::function<uint8_t(int x, int y)>;

void WriteJpeg(const std::string& path, int width, int height, int channels, const JpegSample& sample,
               const std::string& exif) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    jpeg_error_mgr errors;
    jpeg_compress_struct jpeg;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = channels;
    jpeg.in_color_space = channels == 1 ? JCS_GRAYSCALE : channels == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    if (!exif.empty())
        jpeg_write_marker(&jpeg, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(exif.data()),
                          static_cast<unsigned>(exif.size()));
    std::vector<JSAMPLE> samples(static_cast<size_t>(width * channels));
    JSAMPROW row = samples.data();
    for (int y = 0; y < height; ++y) {
        for (size_t i = 0; i < samples.size(); ++i)
            samples[i] = sample(static_cast<int>(i) / channels, y);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    std::fclose(file);
}

// Numbers of two or four bytes in an order of bytes.
std::string Number(size_t bytes, unsigned value, bool bigEndian) {
    std::string text;
    for (size_t i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> 8 * (bigEndian ? bytes - 1 - i : i));
    return text;
}

} // namespace

void WriteFlatJpeg(const std::string& path, int width, int height, int channels, uint8_t value) {
    WriteJpeg(
        path, width, height, channels, [value](int, int) { return value; }, "");
}

void WriteJpegOfQuarters(const std::string& path, const uint8_t (&quarters)[4], int orientation,
                         bool bigEndian) {
    const auto number = [bigEndian](size_t bytes, unsigned value) { return Number(bytes, value, bigEndian); };
    // One directory, at 8, with one entry: tag, type (a short), count, value.
    const std::string exif = std::string("Exif\0\0", 6) + (bigEndian ? "MM" : "II") + number(2, 42) +
                             number(4, 8) + number(2, 1) + number(2, 0x112) + number(2, 3) + number(4, 1) +
                             number(2, static_cast<unsigned>(orientation)) + number(2, 0) + number(4, 0);
    WriteJpeg(
        path, 32, 16, 1, [&](int x, int y) { return quarters[y / 8 * 2 + x / 16]; }, exif);
}

void WriteGif(const std::string& path, int width, int height) {
    GifFileType* gif = EGifOpenFileName(path.c_str(), false, nullptr);
    ASSERT_NE(gif, nullptr);
    EGifSetGifVersion(gif, true);
    GifColorType colours[4] = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
    ColorMapObject* map = GifMakeMapObject(4, colours);
    EXPECT_EQ(EGifPutScreenDesc(gif, width, height, 2, 0, map), GIF_OK);
    const auto frame = [&](int left, int top, int w, int h, int delay, int disposal, int transparent,
                           auto index) {
        const GraphicsControlBlock control = {disposal, false, delay, transparent};
        GifByteType bytes[4];
        EXPECT_EQ(EGifGCBToExtension(&control, bytes), 4u);
        EXPECT_EQ(EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, bytes), GIF_OK);
        EXPECT_EQ(EGifPutImageDesc(gif, left, top, w, h, false, nullptr), GIF_OK);
        for (int i = 0; i < w * h; ++i)
            EXPECT_EQ(EGifPutPixel(gif, static_cast<GifPixelType>(index(i % w))), GIF_OK);
    };
    frame(0, 0, width, height, 10, DISPOSE_DO_NOT, NO_TRANSPARENT_COLOR, [](int) { return 1; });
    frame(width / 4, height / 4, width / 2, height / 2, 5, DISPOSE_PREVIOUS, 3,
          [](int x) { return x % 2 == 0 ? 2 : 3; });
    frame(width - 4, height - 4, 4, 4, 2, DISPOSE_BACKGROUND, NO_TRANSPARENT_COLOR, [](int) { return 3; });
    GifFreeMapObject(map);
    EXPECT_EQ(EGifCloseFile(gif, nullptr), GIF_OK);
}
