// Creation of bitmaps in each storage class. Thresholds of the thread are set for the creation alone.
#include "bitmap.h"

#include "failure.h"

#include "zkr13n/copy.h"
#include "zkr13n/flip.h"
#include "zkr13n/palettes.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <new>
#include <utility>

namespace zkr::app {

namespace {

constexpr uint32_t TileFlags =
    Z_THRESHOLD_TILE_SIZE | Z_THRESHOLD_CONVENTIONAL_TILES | Z_THRESHOLD_MAPPED_TILES;

// Makes bitmaps of any size tiled while it lives.
class TileThresholds {
  public:
    TileThresholds(size_t bitmapBytes, const Storage& storage) {
        Z_GetMemoryThresholds(nullptr, nullptr, &tileSize_, &conventional_, &mapped_);
        const size_t tileBytes = bitmapBytes / static_cast<size_t>(storage.tiles);
        const auto tileSize = static_cast<int32_t>(std::clamp<size_t>(tileBytes, 1, INT32_MAX));
        Z_SetMemoryThresholds(0, 0, tileSize, storage.memoryBudget, storage.views, TileFlags);
    }
    ~TileThresholds() { Z_SetMemoryThresholds(0, 0, tileSize_, conventional_, mapped_, TileFlags); }
    TileThresholds(const TileThresholds&) = delete;
    TileThresholds& operator=(const TileThresholds&) = delete;

  private:
    int32_t tileSize_ = 0;
    int32_t conventional_ = 0;
    int32_t mapped_ = 0;
};

} // namespace

bool CanLiveIn(StorageClass kind, int bits) {
    switch (kind) {
    case StorageClass::Runs: return bits == 1;
    case StorageClass::Strips: return bits == 1 || bits == 24;
    default: return true;
    }
}

Bitmap::Bitmap(const std::string& name, const PixelFormat& format, int width, int height,
               const Storage& storage, int32_t view)
    : name_(name), format_(format) {
    const auto create = [&](int32_t type, void* data, size_t dataSize) {
        Check(Z_CreateBitmap(&handle_, type, width, height, format_.bits, format_.order,
                             format_.PaletteOrNull(), view, data, dataSize),
              name_);
    };
    if (!CanLiveIn(storage.kind, format_.bits)) {
        const bool runs = storage.kind == StorageClass::Runs;
        throw Failure(name_, runs ? "only 1 bit per pixel can be kept as runs"
                                  : "only 1 and 24 bits per pixel can be kept as compressed strips");
    }
    // The size of the data must be known before there is any.
    BitmapHandle plan;
    Check(Z_InitBitmap(&plan, width, height, format_.StoredBits()), name_);
    switch (storage.kind) {
    case StorageClass::Conventional: create(MemoryConventional, nullptr, 0); break;
    case StorageClass::Disk: create(MemoryDisk, nullptr, 0); break;
    case StorageClass::Runs: create(MemoryCompressed, nullptr, 0); break;
    case StorageClass::Strips: create(MemorySuperCompressed, nullptr, 0); break;
    case StorageClass::Tiled: {
        const TileThresholds thresholds(plan.Size, storage);
        create(MemoryTiled, nullptr, 0);
        break;
    }
    case StorageClass::User:
        userData_.reset(new (std::nothrow) uint8_t[plan.Size]);
        if (userData_ == nullptr) throw Failure(name_, MessageOf(Z_ERROR_MEMORY));
        create(MemoryUser, userData_.get(), plan.Size);
        break;
    }
}

Bitmap::Bitmap(const std::string& name, const BitmapHandle& made) : name_(name), handle_(made) {
    ReadForm();
}

Bitmap::Bitmap(Bitmap&& other) noexcept
    : name_(std::move(other.name_)), format_(std::move(other.format_)),
      handle_(std::exchange(other.handle_, BitmapHandle{})), userData_(std::move(other.userData_)) {}

Bitmap& Bitmap::operator=(Bitmap&& other) noexcept {
    std::swap(name_, other.name_);
    std::swap(format_, other.format_);
    std::swap(handle_, other.handle_);
    std::swap(userData_, other.userData_);
    return *this;
}

Bitmap Bitmap::Copy() {
    BitmapHandle made = {};
    Check(Z_CopyBitmap(&made, &handle_), name_);
    Bitmap copy(name_, made);
    copy.format_ = format_;
    return copy;
}

void Bitmap::ReadForm() {
    format_ = {.bits = handle_.BitsPerPixel, .order = handle_.Order};
    if (!format_.IsIndexed()) return;
    format_.palette.resize(size_t{1} << format_.bits);
    Z_GetBitmapPaletteEntries(&handle_, 0, handle_.ColorsUsed, format_.palette.data());
}

void Bitmap::StandUpright() {
    Check(Z_ChangeBitmapViewPerspective(nullptr, &handle_, VIEW_TOP_LEFT), name_);
}

Bitmap::~Bitmap() {
    Z_FreeBitmap(&handle_);
}

void Bitmap::GetRow(int row, void* buffer) {
    Check(Z_GetBitmapRow(&handle_, buffer, row, RowBytes()), name_);
}

void Bitmap::PutRow(int row, const void* buffer) {
    Check(Z_PutBitmapRow(&handle_, buffer, row, RowBytes()), name_);
}

const char* NameOfView(int32_t view) {
    switch (view) {
    case VIEW_TOP_RIGHT: return "mirrored";
    case VIEW_BOTTOM_LEFT: return "flipped";
    case VIEW_BOTTOM_RIGHT: return "turned by 180 degrees";
    case VIEW_RIGHT_TOP: return "turned by 90 degrees clockwise";
    case VIEW_LEFT_TOP: return "flipped, then turned by 90 degrees clockwise";
    case VIEW_RIGHT_BOTTOM: return "flipped, then turned by 270 degrees clockwise";
    case VIEW_LEFT_BOTTOM: return "turned by 270 degrees clockwise";
    default: return "as it is stored";
    }
}

std::string SizeOf(const Bitmap& bitmap) {
    return std::to_string(bitmap.Width()) + " x " + std::to_string(bitmap.Height()) + " pixels";
}

std::string StorageOf(Bitmap& bitmap) {
    int32_t type = 0, count = 0, conventional = 0, maximumMapped = 0, mapped = 0;
    Check(Z_GetBitmapMemoryInfo(bitmap.Handle(), &type, nullptr, &count, &conventional, &maximumMapped,
                                &mapped),
          bitmap.Name());
    switch (type) {
    case MemoryDisk: return "disk";
    case MemoryCompressed: return "runs";
    case MemorySuperCompressed: return "strips";
    case MemoryTiled: {
        std::string text = "tiled:";
        const auto add = [&](int32_t number, const char* what, bool plural = false) {
            if (number > 0)
                text += (text.back() == ':' ? " " : ", ") + std::to_string(number) + " " + what +
                        (number > 1 && plural ? "s" : "");
        };
        add(conventional, "memory");
        add(mapped, "view", true);
        add(count - conventional - mapped, "file");
        return text;
    }
    default: return (bitmap.Handle()->Flags & Z_FLAG_USER_DATA) != 0 ? "user" : "conventional";
    }
}

} // namespace zkr::app
