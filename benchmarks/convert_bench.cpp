// Whole pictures from one depth to another: rows out of one conventional bitmap, converted, into another.
#include "pictures.h"
#include "work.h"

#include <vector>

namespace bench {

namespace {

struct Form {
    int32_t Bits; // 0 is 8-bit gray
    int32_t Order;
    const RGBQUAD* Palette = nullptr;
};

int32_t StoredBits(const Form& form) {
    return form.Bits == 0 ? 8 : form.Bits;
}

void ConvertAll(BitmapHandle* source, const Form& from, BitmapHandle* target, const Form& to) {
    static std::vector<uint8_t> row(size_t{PageWidth} * 8);
    for (int32_t y = 0; y < source->Height; ++y) {
        Z_GetBitmapRow(source, row.data(), y, source->BytesPerLine);
        Z_ConvertBuffer(row.data(), source->Width, from.Bits, to.Bits, from.Order, to.Order, from.Palette,
                        to.Palette);
        Z_PutBitmapRow(target, row.data(), y, target->BytesPerLine);
    }
    Touch(target->Addr);
}

void AddConversion(int number, const std::string& name, BitmapHandle* (*source)(), const Form& from,
                   const Form& to, size_t pixels = PhotographPixels) {
    const auto run = [=] {
        BitmapHandle* bitmap = source();
        ConvertAll(bitmap, from, EmptyBitmap(bitmap->Width, bitmap->Height, StoredBits(to), to.Order), to);
    };
    const size_t bits = static_cast<size_t>(StoredBits(from) + StoredBits(to));
    AddWork(number, {name, pixels, pixels * bits / 8, run});
}

constexpr Form Bgr24{24, Z_ORDER_BGR};
constexpr Form Gray16{16, Z_ORDER_GRAY};

template <int32_t bits, int32_t order> BitmapHandle* Photo() {
    return PhotographBitmap(bits, order);
}

// Depths that no peer knows compete with 4 bits (indexed) or 16 bits (gray) of our own.
template <int32_t bits, int32_t order> void AddOddDepth(const char* name) {
    constexpr bool gray = order == Z_ORDER_GRAY;
    constexpr int32_t peerBits = gray ? 16 : 4;
    const Form form{bits, order};
    const Form peer{peerBits, order};
    const std::string peerName = gray ? "16-bit gray of ours" : "4 bits of ours";
    const int number = 1000 + bits * 2;
    AddConversion(number, std::string(name) + " to 24", Photo<bits, order>, form, Bgr24);
    AddPeer(number, {peerName, 1.0 / 3, [=] {
                         ConvertAll(Photo<peerBits, order>(), peer,
                                    EmptyBitmap(PhotographWidth, PhotographHeight, 24, 1), Bgr24);
                     }});
    AddConversion(number + 1, std::string("24 to ") + name, Photo<24, 1>, Bgr24, form);
    AddPeer(number + 1, {peerName, 1.0 / 3, [=] {
                             ConvertAll(Photo<24, 1>(), Bgr24,
                                        EmptyBitmap(PhotographWidth, PhotographHeight, peerBits, order),
                                        peer);
                         }});
}

const Adds adds([] {
    const Form indexed{8, Z_ORDER_RGB, Palette256().data()};
    AddConversion(Swap24, "24 order swap", Photo<24, 1>, Bgr24, {24, Z_ORDER_RGB});
    AddConversion(From24To32, "24 to 32", Photo<24, 1>, Bgr24, {32, Z_ORDER_BGR});
    AddConversion(From32To24, "32 to 24", Photo<32, 1>, {32, Z_ORDER_BGR}, Bgr24);
    AddConversion(From24ToGray, "24 to gray", Photo<24, 1>, Bgr24, {0, Z_ORDER_RGB});
    AddConversion(From24To16, "24 to 16 colour", Photo<24, 1>, Bgr24, {16, Z_ORDER_BGR});
    AddConversion(From16To24, "16 colour to 24", Photo<16, 1>, {16, Z_ORDER_BGR}, Bgr24);
    AddConversion(FromGrayTo24, "gray 8 to 24", Photo<8, 0>, {0, Z_ORDER_RGB}, Bgr24);
    AddConversion(FromGray16To8, "gray 16 to 8", Photo<16, 2>, Gray16, {0, Z_ORDER_RGB});
    AddConversion(From24To48, "24 to 48", Photo<24, 1>, Bgr24, {48, Z_ORDER_BGR});
    AddConversion(From48To24, "48 to 24", Photo<48, 1>, {48, Z_ORDER_BGR}, Bgr24);
    AddConversion(FromPaletteTo24, "8-bit palette to 24", Photo<8, 0>, indexed, Bgr24);
    AddConversion(FromPaletteTo32, "8-bit palette to 32", Photo<8, 0>, indexed, {32, Z_ORDER_BGR});
    AddConversion(From1To8, "1 bit to 8-bit gray, page", PageBitmap, {1, Z_ORDER_RGB}, {0, Z_ORDER_RGB},
                  PagePixels);
    AddConversion(From1To24, "1 bit to 24, page", PageBitmap, {1, Z_ORDER_RGB}, Bgr24, PagePixels);
    AddConversion(From24ToPalette, "24 to 256 colours, exact", Photo<24, 1>, Bgr24, indexed);
    AddOddDepth<3, 0>("3 bits");
    AddOddDepth<5, 0>("5 bits");
    AddOddDepth<6, 0>("6 bits");
    AddOddDepth<7, 0>("7 bits");
    AddOddDepth<12, 2>("12-bit gray");
});

} // namespace

} // namespace bench
