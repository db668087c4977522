// JPEG pictures, by libjpeg: 8-bit gray or 24-bit colour. Damaged data is an error and not a warning.
#include "picture_reader.h"

#include "c_error_trap.h"
#include "exif_view.h"

#include <jpeglib.h>

#include <jerror.h>
#include <string_view>

namespace zkr::app {

namespace {

struct JpegHandle {
    jpeg_error_mgr errors = {};
    jpeg_decompress_struct jpeg = {};
    ~JpegHandle() { jpeg_destroy_decompress(&jpeg); }
};

class JpegReader : public PictureReader {
  public:
    JpegReader(const std::string& path, File file) : path_(path), file_(std::move(file)), trap_(path_) {
        jpeg_.err = jpeg_std_error(&handle_.errors);
        jpeg_.client_data = &trap_;
        handle_.errors.error_exit = OnError;
        handle_.errors.emit_message = OnMessage;
        trap_.Run([this] {
            jpeg_create_decompress(&jpeg_);
            jpeg_stdio_src(&jpeg_, file_.get());
            jpeg_save_markers(&jpeg_, ExifMarker, 0xFFFF);
            jpeg_read_header(&jpeg_, TRUE);
        });
        Describe();
    }

    void Start() override {
        trap_.Run([this] { jpeg_start_decompress(&jpeg_); });
    }
    void ReadRow(uint8_t* row) override {
        trap_.Run([this, row] {
            JSAMPROW rows[] = {row};
            jpeg_read_scanlines(&jpeg_, rows, 1);
        });
    }
    void Finish() override {
        trap_.Run([this] { jpeg_finish_decompress(&jpeg_); });
    }

  private:
    static void OnError(j_common_ptr jpeg) {
        char message[JMSG_LENGTH_MAX];
        jpeg->err->format_message(jpeg, message);
        static_cast<CErrorTrap*>(jpeg->client_data)->Raise(message);
    }
    static void OnMessage(j_common_ptr jpeg, int level) {
        const bool harmless = jpeg->err->msg_code == JWRN_EXTRANEOUS_DATA;
        if (level < 0 && !harmless) OnError(jpeg);
    }

    void Describe() {
        RefuseShortFile();
        info_.view = View();
        info_.kind = jpeg_.progressive_mode ? "JPEG, progressive" : "JPEG";
        info_.width = static_cast<int>(jpeg_.image_width);
        info_.height = static_cast<int>(jpeg_.image_height);
        if (jpeg_.num_components > 3) throw Failure(path_, "a JPEG of four colours is not supported");
        if (jpeg_.num_components == 1) {
            info_.format.bits = 0;
        } else {
            jpeg_.out_color_space = JCS_RGB;
        }
    }

    // Each block of 8 x 8 samples takes a bit of the file at least; a sample covers at most 4 x 4 pixels.
    void RefuseShortFile() const {
        constexpr uint64_t mostPixelsOfByte = 8 * 8 * 8 * 4 * 4;
        RefuseMissingBytes(file_.get(), path_, jpeg_.image_width, jpeg_.image_height, mostPixelsOfByte);
    }

    int32_t View() const {
        for (jpeg_saved_marker_ptr marker = jpeg_.marker_list; marker != nullptr; marker = marker->next) {
            const std::string_view content(reinterpret_cast<const char*>(marker->data), marker->data_length);
            if (content.starts_with("Exif")) return ViewOfExif(marker->data, marker->data_length);
        }
        return VIEW_TOP_LEFT;
    }

    static constexpr int ExifMarker = JPEG_APP0 + 1;

    std::string path_;
    File file_;
    CErrorTrap trap_;
    JpegHandle handle_;
    jpeg_decompress_struct& jpeg_ = handle_.jpeg;
};

} // namespace

std::unique_ptr<PictureReader> OpenJpeg(const std::string& path, File file) {
    return std::make_unique<JpegReader>(path, std::move(file));
}

} // namespace zkr::app
