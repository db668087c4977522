// Flips and half turns in place, quarter turns, rotation and shear into new bitmaps, of the photograph and of the page.
#include "turn_work.h"

#include "pictures.h"
#include "work.h"

#include <functional>

namespace bench {

namespace {

// Runs an operation that replaces a bitmap, on a bitmap of its own that has the pixels of another.
void OnPixelsOf(BitmapHandle* pixels, const std::function<void(BitmapHandle&)>& operation) {
    BitmapHandle bitmap;
    Z_CreateBitmap(&bitmap, MemoryUser, pixels->Width, pixels->Height, pixels->BitsPerPixel, pixels->Order,
                   nullptr, VIEW_TOP_LEFT, Data(pixels), pixels->Size);
    operation(bitmap);
    Touch(bitmap.Addr);
    Z_FreeBitmap(&bitmap);
}

size_t BytesOf(size_t pixels, int32_t bits) {
    return pixels * static_cast<size_t>(bits) / 4; // read and written
}

void AddTurn(int number, const char* name, BitmapHandle* (*source)(), int32_t bits, size_t pixels) {
    AddWork(number, {name, pixels, BytesOf(pixels, bits), [source] {
                         OnPixelsOf(source(),
                                    [](BitmapHandle& bitmap) { Z_RotateBitmap90(&bitmap, 1, 0, 100); });
                     }});
}

void AddRotation(int number, const char* name, BitmapHandle* (*source)(), int32_t bits, size_t pixels,
                 uint32_t flags) {
    AddWork(number, {name, pixels, BytesOf(pixels, bits), [source, flags] {
                         OnPixelsOf(source(), [flags](BitmapHandle& bitmap) {
                             Z_RotateBitmap(&bitmap, RotationDegrees * 100, flags, 0xFFFFFF);
                         });
                     }});
}

void AddShear(int number, const char* name, BitmapHandle* (*source)(), int32_t bits, size_t pixels,
              int32_t horizontal) {
    AddWork(number, {name, pixels, BytesOf(pixels, bits), [source, horizontal] {
                         OnPixelsOf(source(), [horizontal](BitmapHandle& bitmap) {
                             Z_ShearBitmap(&bitmap, ShearDegrees * 100, horizontal, 0xFFFFFF);
                         });
                     }});
}

// In place, which leaves the pixels of the copies that all works share in another order.
void AddInPlace(int number, const char* name, BitmapHandle* (*source)(), int32_t bits, size_t pixels,
                ReturnCode(Z_CALL* move)(BitmapHandle*)) {
    AddWork(number, {name, pixels, BytesOf(pixels, bits), [source, move] {
                         static BitmapHandle copy;
                         static const BitmapHandle* copied = nullptr;
                         BitmapHandle* bitmap = source();
                         if (copied != bitmap) {
                             if (copied != nullptr) Z_FreeBitmap(&copy);
                             Z_CopyBitmap(&copy, bitmap);
                             copied = bitmap;
                         }
                         move(&copy);
                         Touch(copy.Addr);
                     }});
}

ReturnCode Z_CALL HalfTurn(BitmapHandle* bitmap) {
    return Z_RotateBitmap(bitmap, 18000, 0, 0);
}

template <int32_t bits, int32_t order> BitmapHandle* Photo() {
    return PhotographBitmap(bits, order);
}

BitmapHandle* PageOfRuns() {
    static BitmapHandle page = [] {
        BitmapHandle made;
        Z_CopyBitmap2(&made, PageBitmap(), MemoryCompressed);
        return made;
    }();
    return &page;
}

void TurnRunsThereAndBack() {
    static int32_t direction = 0;
    direction = 1 - direction;
    Z_RotateBitmap90(PageOfRuns(), direction, 0, 100);
    Touch(PageOfRuns());
}

const Adds adds([] {
    AddTurn(Turn8, "turn by 90: 8", Photo<8, 0>, 8, PhotographPixels);
    AddTurn(Turn24, "turn by 90: 24", Photo<24, 1>, 24, PhotographPixels);
    AddTurn(Turn32, "turn by 90: 32", Photo<32, 1>, 32, PhotographPixels);
    AddTurn(Turn48, "turn by 90: 48", Photo<48, 1>, 48, PhotographPixels);
    AddTurn(TurnPage, "turn by 90: page", PageBitmap, 1, PagePixels);
    AddWork(TurnRunsOfPage, {"turn by 90: page of runs", PagePixels, PagePixels / 4, TurnRunsThereAndBack});
    AddInPlace(HalfTurnPage, "turn by 180: page", PageBitmap, 1, PagePixels, HalfTurn);
    AddInPlace(MirrorPage, "mirror: page", PageBitmap, 1, PagePixels, Z_ReverseBitmap);
    AddInPlace(FlipRows24, "flip: 24", Photo<24, 1>, 24, PhotographPixels, Z_FlipBitmap);
    AddInPlace(MirrorRows24, "mirror: 24", Photo<24, 1>, 24, PhotographPixels, Z_ReverseBitmap);
    AddInPlace(HalfTurn24, "turn by 180: 24", Photo<24, 1>, 24, PhotographPixels, HalfTurn);
    AddRotation(Rotate24Nearest, "rotate by 30: 24, nearest", Photo<24, 1>, 24, PhotographPixels, 0);
    AddRotation(Rotate24Linear, "rotate by 30: 24, linear", Photo<24, 1>, 24, PhotographPixels,
                ROTATE_LINEAR);
    AddRotation(Rotate24Cubic, "rotate by 30: 24, cubic", Photo<24, 1>, 24, PhotographPixels, ROTATE_CUBIC);
    AddRotation(Rotate48Linear, "rotate by 30: 48, linear", Photo<48, 1>, 48, PhotographPixels,
                ROTATE_LINEAR);
    AddRotation(RotatePage, "rotate by 30: page", PageBitmap, 1, PagePixels, 0);
    AddShear(ShearRowsPage, "shear by 10: page, rows", PageBitmap, 1, PagePixels, 1);
    AddShear(ShearColumnsPage, "shear by 10: page, columns", PageBitmap, 1, PagePixels, 0);
    AddShear(ShearRows24, "shear by 10: 24, rows", Photo<24, 1>, 24, PhotographPixels, 1);
});

} // namespace

} // namespace bench
