// BMP pictures: a file header of 14 bytes in front of a device-independent bitmap, which the library takes as it is. The
// pixels may stand apart from the colours, and the colours may be fewer than the header tells; the block that the library
// gets has them side by side.
#include "picture_reader.h"

#include "failure.h"

#include "zkr13n/dib.h"
#include "zkr13n/palettes.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"
#include "zkr13n/surface.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zkr::app {

namespace {

constexpr uint64_t FileHeaderBytes = 14;
constexpr size_t BitsOffsetPlace = 10;
constexpr uint32_t BitFields = 3;
constexpr uint64_t MostMissing = 1024; // bytes of colours

template <typename T> T Field(const uint8_t* bytes, size_t offset) {
    T value;
    std::memcpy(&value, bytes + offset, sizeof value);
    return value;
}

// Header, masks and colours.
uint64_t HeadBytes(const uint8_t* header) {
    const auto size = Field<uint32_t>(header, 0);
    const bool isCore = size == 12;
    const uint32_t bits = Field<uint16_t>(header, isCore ? 10 : 14);
    const uint64_t masks = size == 40 && Field<uint32_t>(header, 16) == BitFields ? 12 : 0;
    uint64_t colours = isCore ? 0 : Field<uint32_t>(header, 32);
    if (colours == 0 && bits <= 8) colours = uint64_t{1} << bits;
    return size + masks + colours * (isCore ? 3 : 4);
}

// A block of global memory that is being filled.
class Block {
  public:
    Block(const std::string& path, uint64_t bytes) {
        Check(Z_AllocGlobalBlock(static_cast<size_t>(bytes), &handle_), path);
        void* data = nullptr;
        Z_LockGlobalBlock(handle_, &data);
        data_ = static_cast<uint8_t*>(data);
    }
    ~Block() {
        if (handle_ != nullptr) Z_FreeGlobalBlock(handle_);
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    uint8_t* Data() const { return data_; }

    void GiveTo(BitmapHandle& bitmap, const std::string& path) {
        Z_UnlockGlobalBlock(handle_);
        const ReturnCode result = Z_ChangeFromDIB(&bitmap, handle_);
        if (result == Z_ERROR_ARGUMENT)
            throw Failure(path, "the file ends too early, or the header of the picture is damaged");
        Check(result, path);
        handle_ = nullptr;
    }

  private:
    HGLOBAL handle_ = nullptr;
    uint8_t* data_ = nullptr;
};

class BmpReader : public PictureReader {
  public:
    BmpReader(const std::string& path, File file) : path_(path), file_(std::move(file)) {
        ReadBlock();
        Z_AccessBitmap(&bitmap_);
        info_.kind = "BMP";
        info_.width = bitmap_.Width;
        info_.height = bitmap_.Height;
        info_.format = {.bits = bitmap_.BitsPerPixel, .order = bitmap_.Order};
        if (!info_.format.IsIndexed()) return;
        info_.colours = static_cast<int>(bitmap_.ColorsUsed);
        info_.format.palette.resize(size_t{1} << bitmap_.BitsPerPixel);
        Z_GetBitmapPaletteEntries(&bitmap_, 0, bitmap_.ColorsUsed, info_.format.palette.data());
    }
    ~BmpReader() override { Z_FreeBitmap(&bitmap_); }
    BmpReader(const BmpReader&) = delete;
    BmpReader& operator=(const BmpReader&) = delete;

    void ReadRow(uint8_t* row) override {
        const int32_t y = next_++;
        const bool isBottomUp = bitmap_.ViewPerspective == VIEW_BOTTOM_LEFT;
        Check(Z_GetBitmapRow(&bitmap_, row, isBottomUp ? bitmap_.Height - 1 - y : y, bitmap_.BytesPerLine),
              path_);
    }

  private:
    uint64_t FileBytes() const {
        if (std::fseek(file_.get(), 0, SEEK_END) != 0) throw Failure(path_, std::strerror(errno));
        const long bytes = std::ftell(file_.get());
        std::rewind(file_.get());
        return bytes < 0 ? 0 : static_cast<uint64_t>(bytes);
    }

    void ReadBlock() {
        std::array<uint8_t, FileHeaderBytes + 40> start = {};
        const uint64_t fileBytes = FileBytes();
        ReadExactly(file_.get(), path_, start.data(),
                    static_cast<size_t>(std::clamp<uint64_t>(fileBytes, FileHeaderBytes + 12, start.size())));
        const uint64_t headBytes = HeadBytes(start.data() + FileHeaderBytes);
        uint64_t bitsAt = Field<uint32_t>(start.data(), BitsOffsetPlace);
        if (bitsAt <= FileHeaderBytes) bitsAt = FileHeaderBytes + headBytes;
        const uint64_t headInFile = std::min(headBytes, bitsAt - FileHeaderBytes);
        if (bitsAt > fileBytes || headBytes > headInFile + MostMissing)
            throw Failure(path_, "the file ends too early for the header that it has");

        Block block(path_, headBytes + fileBytes - bitsAt);
        std::fseek(file_.get(), static_cast<long>(FileHeaderBytes), SEEK_SET);
        ReadExactly(file_.get(), path_, block.Data(), static_cast<size_t>(headInFile));
        std::fseek(file_.get(), static_cast<long>(bitsAt), SEEK_SET);
        ReadExactly(file_.get(), path_, block.Data() + headBytes, static_cast<size_t>(fileBytes - bitsAt));
        block.GiveTo(bitmap_, path_);
    }

    std::string path_;
    File file_;
    BitmapHandle bitmap_ = {};
    int32_t next_ = 0;
};

} // namespace

std::unique_ptr<PictureReader> OpenBmp(const std::string& path, File file) {
    return std::make_unique<BmpReader>(path, std::move(file));
}

} // namespace zkr::app
