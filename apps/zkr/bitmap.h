// Bitmap: a bitmap of the library that frees itself, and the storage class that it was asked to live in.
#pragma once

#include "pixel_format.h"

#include "zkr13n/bitmap.h"

#include <memory>
#include <string>

namespace zkr::app {

enum class StorageClass { Conventional, User, Tiled, Disk, Runs, Strips };

// Whether bitmaps of a depth can live in a class: runs hold 1 bit per pixel, compressed strips 1 and 24.
bool CanLiveIn(StorageClass kind, int bits);

// Where a bitmap shall live. A tiled one is cut into about `tiles` tiles, of which at most `memoryBudget` are
// in memory at one time and `views` of these are windows on file tiles; the rest stay tiles in memory for
// good.
struct Storage {
    StorageClass kind = StorageClass::Conventional;
    int tiles = 12;
    int memoryBudget = 5;
    int views = 2;
};

class Bitmap {
  public:
    // `name` is the file or step that messages name. Throws Failure with the library's message.
    Bitmap(const std::string& name, const PixelFormat& format, int width, int height, const Storage& storage,
           int32_t view = VIEW_TOP_LEFT);
    Bitmap(Bitmap&& other) noexcept;
    // Takes over what the library has made.
    Bitmap(const std::string& name, const BitmapHandle& made);
    // A copy with data of its own, in the same class where that is compressed or disk, else in memory.
    Bitmap Copy();
    Bitmap& operator=(Bitmap&& other) noexcept;
    ~Bitmap();

    const std::string& Name() const { return name_; }
    const PixelFormat& Format() const { return format_; }
    int Width() const { return handle_.Width; }
    int Height() const { return handle_.Height; }
    size_t Bytes() const { return handle_.Size; }
    uint32_t RowBytes() const { return handle_.BytesPerLine; }
    BitmapHandle* Handle() { return &handle_; }
    // Learns the format anew from the record, after the library has changed the bitmap.
    void ReadForm();
    // Brings the stored rows to the view from top left, so that rows and columns are those of the picture as seen.
    void StandUpright();
    // Says that the fourth channel is alpha.
    void MarkAlpha() { format_.alpha = format_.bits == 32 || format_.bits == 64; }

    // Whole rows: buffers hold RowBytes().
    void GetRow(int row, void* buffer);
    void PutRow(int row, const void* buffer);

  private:
    std::string name_;
    PixelFormat format_;
    BitmapHandle handle_ = {};
    std::unique_ptr<uint8_t[]> userData_;
};

// "conventional", "tiled: 3 memory, 2 views, 7 file": the class that a bitmap has in fact.
std::string StorageOf(Bitmap& bitmap);

// What makes a picture of a view stand upright: "turned by 90 degrees clockwise".
const char* NameOfView(int32_t view);

// "640 x 480 pixels".
std::string SizeOf(const Bitmap& bitmap);

} // namespace zkr::app
