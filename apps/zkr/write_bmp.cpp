#include "write_bmp.h"

#include "failure.h"
#include "output_file.h"

#include "zkr13n/dib.h"
#include "zkr13n/surface.h"

#include <cerrno>
#include <cstring>

namespace zkr::app {

namespace {

class DibBlock {
  public:
    DibBlock(Bitmap& bitmap, const std::string& path, int32_t dibType)
        : handle_(Z_ConvertToDIB2(bitmap.Handle(), dibType)) {
        if (handle_ == nullptr) throw Failure(path, "the picture cannot be made a device-independent bitmap");
        void* data = nullptr;
        Z_LockGlobalBlock(handle_, &data);
        Z_GetGlobalBlockSize(handle_, &bytes_);
        data_ = static_cast<const uint8_t*>(data);
    }
    ~DibBlock() { Z_FreeGlobalBlock(handle_); }
    DibBlock(const DibBlock&) = delete;
    DibBlock& operator=(const DibBlock&) = delete;

    const uint8_t* Data() const { return data_; }
    size_t Bytes() const { return bytes_; }
    // Where the pixels begin.
    uint32_t HeadBytes() const {
        BITMAPINFOHEADER header;
        std::memcpy(&header, data_, sizeof header);
        return header.biSize + header.biClrUsed * static_cast<uint32_t>(sizeof(RGBQUAD));
    }

  private:
    HGLOBAL handle_;
    const uint8_t* data_ = nullptr;
    size_t bytes_ = 0;
};

void Put(std::FILE* file, const std::string& path, const void* bytes, size_t count) {
    if (std::fwrite(bytes, 1, count, file) != count) throw Failure(path, std::strerror(errno));
}

} // namespace

void WriteBmp(Bitmap& bitmap, const std::string& path, int32_t dibType) {
    const DibBlock block(bitmap, path, dibType);
    uint8_t head[14] = {'B', 'M'};
    const uint64_t fileBytes = sizeof head + uint64_t{block.Bytes()};
    if (fileBytes > UINT32_MAX) throw Failure(path, "the picture is too large for a BMP file");
    const auto bytes = static_cast<uint32_t>(fileBytes), bitsAt = uint32_t{sizeof head} + block.HeadBytes();
    std::memcpy(head + 2, &bytes, sizeof bytes);
    std::memcpy(head + 10, &bitsAt, sizeof bitsAt);
    OutputFile output(path);
    Put(output.Stream(), path, head, sizeof head);
    Put(output.Stream(), path, block.Data(), block.Bytes());
    output.Commit();
}

} // namespace zkr::app
