// Fresh memory: a bitmap made, filled and freed, against filling memory that has been touched before.
#include "pictures.h"
#include "work.h"

#include <cstring>
#include <vector>

namespace bench {

namespace {

constexpr size_t Bytes = PhotographPixels * 3;

const Adds adds([] {
    AddWork(FreshMemory, {"make, fill and free 36 MB", PhotographPixels, Bytes, [] {
                              BitmapHandle bitmap;
                              Z_CreateBitmap(&bitmap, MemoryConventional, PhotographWidth, PhotographHeight,
                                             24, Z_ORDER_BGR, nullptr, 2, nullptr, 0);
                              std::memset(bitmap.Addr, 0x55, bitmap.Size);
                              Touch(bitmap.Addr);
                              Z_FreeBitmap(&bitmap);
                          }});
    AddPeer(FreshMemory, {"memset of touched memory", 1.0 / 3, [] {
                              static std::vector<uint8_t> memory(Bytes, 1);
                              std::memset(memory.data(), 0x55, Bytes);
                              Touch(memory.data());
                          }});
});

} // namespace

} // namespace bench
