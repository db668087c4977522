// The form of the file follows from the bitmap's format; the rows that PNG cannot hold as they are go through
// the library's own conversion.
#include "write_png.h"

#include "c_error_trap.h"
#include "convert.h"
#include "output_file.h"
#include "progress.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace zkr::app {

namespace {

constexpr int CompressionLevel =
    3; // pictures for the eye: three times as fast as the default and little larger

// The format of the rows that libpng is given.
PixelFormat FileFormat(const PixelFormat& format) {
    PixelFormat file = format;
    if (format.IsIndexed() && format.bits != 1 && format.bits != 2 && format.bits != 4) {
        file.bits = 8;
        file.palette.resize(256);
    } else if (format.bits == 12) {
        file.bits = 16;
    } else if (format.bits == 16 && !format.IsGray()) {
        file.bits = 24;
    }
    return file;
}

// Puts the largest value into the fourth channel of each pixel.
void MakeOpaque(uint8_t* row, int width, int bits) {
    const size_t channel = static_cast<size_t>(bits / 32);
    for (size_t x = 0; x < static_cast<size_t>(width); ++x)
        std::fill_n(row + (4 * x + 3) * channel, channel, 255);
}

class PngWriter {
  public:
    PngWriter(Bitmap& bitmap, const std::string& path)
        : bitmap_(bitmap), path_(path), file_(FileFormat(bitmap.Format())), output_(path), trap_(path_) {}
    ~PngWriter() { png_destroy_write_struct(&png_, &info_); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void Write() {
        trap_.Run([this] { WriteHeader(); });
        RowConverter converter(path_, bitmap_.Format(), file_, bitmap_.Width());
        RowProgress progress(path_, bitmap_.Height());
        for (int y = 0; y < bitmap_.Height(); ++y) {
            uint8_t* row = converter.RowBuffer();
            bitmap_.GetRow(y, row);
            if (file_.bits != bitmap_.Format().bits) converter.Convert();
            if (file_.bits % 32 == 0 && file_.bits > 0 && !file_.alpha)
                MakeOpaque(row, bitmap_.Width(), file_.bits);
            trap_.Run([this, row] { png_write_row(png_, row); });
            progress.RowDone();
        }
        trap_.Run([this] { png_write_end(png_, nullptr); });
        output_.Commit();
    }

  private:
    static CErrorTrap& TrapOf(png_structp png) { return *static_cast<CErrorTrap*>(png_get_error_ptr(png)); }
    static void OnError(png_structp png, const char* message) { TrapOf(png).Raise(message); }
    static void OnWarning(png_structp, const char*) {}
    static void OnWrite(png_structp png, png_bytep data, size_t bytes) {
        auto* stream = static_cast<std::FILE*>(png_get_io_ptr(png));
        if (std::fwrite(data, 1, bytes, stream) != bytes) TrapOf(png).Raise(std::strerror(errno));
    }
    static void OnFlush(png_structp) {}

    bool IsGray() const { return file_.IsGray() || (file_.IsIndexed() && IsGrayRamp(file_.palette)); }

    int ColourType() const {
        if (IsGray()) return PNG_COLOR_TYPE_GRAY;
        if (file_.IsIndexed()) return PNG_COLOR_TYPE_PALETTE;
        return file_.bits % 32 == 0 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
    }

    int ChannelBits() const {
        if (file_.IsIndexed() || file_.IsGray()) return file_.StoredBits();
        return file_.bits >= 48 ? 16 : 8;
    }

    void WriteHeader() {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &trap_, OnError, OnWarning);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
        if (info_ == nullptr) trap_.Raise(Z_GetErrorText(Z_ERROR_MEMORY));
        png_set_write_fn(png_, output_.Stream(), OnWrite, OnFlush);
        png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_set_compression_level(png_, CompressionLevel);
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(bitmap_.Width()),
                     static_cast<png_uint_32>(bitmap_.Height()), ChannelBits(), ColourType(),
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (ColourType() == PNG_COLOR_TYPE_PALETTE) WritePalette();
        // Without it some viewers take 16-bit samples for linear light.
        png_set_sRGB(png_, info_, PNG_sRGB_INTENT_PERCEPTUAL);
        WriteSignificantBits();
        png_write_info(png_, info_);
        if (ChannelBits() == 16) png_set_swap(png_);
        if (file_.order == Z_ORDER_BGR) png_set_bgr(png_);
    }

    void WritePalette() {
        png_color colours[PNG_MAX_PALETTE_LENGTH];
        const Palette& palette = bitmap_.Format().palette;
        const size_t count = std::min<size_t>(palette.size(), bitmap_.Handle()->ColorsUsed);
        for (size_t index = 0; index < count; ++index) {
            colours[index] = {palette[index].rgbRed, palette[index].rgbGreen, palette[index].rgbBlue};
        }
        png_set_PLTE(png_, info_, colours, static_cast<int>(count));
    }

    void WriteSignificantBits() {
        png_color_8 significant = {};
        if (bitmap_.Format().bits == 12) {
            significant.gray = 12;
        } else if (bitmap_.Format().bits == 16 && !bitmap_.Format().IsGray()) {
            significant.red = significant.green = significant.blue = 5;
        } else {
            return;
        }
        png_set_sBIT(png_, info_, &significant);
    }

    Bitmap& bitmap_;
    const std::string& path_;
    PixelFormat file_;
    OutputFile output_;
    CErrorTrap trap_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

} // namespace

void WritePng(Bitmap& bitmap, const std::string& path) {
    bitmap.StandUpright();
    PngWriter(bitmap, path).Write();
}

} // namespace zkr::app
