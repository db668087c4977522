// Raster objects against the functions behind them: single pixels, a bitmap handed from one object to another, and changes
// of a long list.
#include "pictures.h"
#include "work.h"

#include "zkr13n/copy.h"
#include "zkr13n/lists.h"
#include "zkr13n/pixels.h"
#include "zkr13n/raster_object.h"

#include <cstring>
#include <utility>
#include <vector>

namespace bench {

namespace {

enum { ObjectPixels = 8500, HandOver, ListChanges };

constexpr int Side = 64, Items = 1000;

IZIRCRaster* MakeObject(float width, float height, int16_t bits) {
    IZIRCRaster* raster = nullptr;
    Z_CreateRasterObject(&raster);
    raster->CreateBitmap(width, height, bits, nullptr);
    return raster;
}

IZIRCRaster* LongList() {
    IZIRCRaster *list = MakeObject(1, 1, 8), *item = MakeObject(1, 1, 8);
    intptr_t handle = 0;
    item->get_Bitmap(&handle);
    for (int index = 1; index < Items; ++index)
        list->InsertBitmapListItem(-1, handle, nullptr);
    item->Release();
    return list;
}

// Puts and gets every pixel.
template <typename Put, typename Get> uint32_t Walk(Put put, Get get) {
    uint32_t sum = 0;
    for (int y = 0; y < Side; ++y)
        for (int x = 0; x < Side; ++x) {
            put(x, y);
            sum += get(x, y);
        }
    return sum;
}

const Adds adds([] {
    AddWork(ObjectPixels, {"put and get pixels, object", size_t{Side} * Side, size_t{Side} * Side * 2, [] {
                               static IZIRCRaster* const raster = MakeObject(Side, Side, 8);
                               const uint32_t sum = Walk(
                                   [](int x, int y) { raster->put_Pixel(float(x), float(y), 0x01000001); },
                                   [](int x, int y) {
                                       uint32_t colour = 0;
                                       raster->get_Pixel(float(x), float(y), &colour);
                                       return colour;
                                   });
                               Touch(&sum);
                           }});
    AddPeer(ObjectPixels, {"the flat calls", 1.0 / 3, [] {
                               static BitmapHandle* const bitmap = EmptyBitmap(Side, Side, 8, 0);
                               const uint32_t sum =
                                   Walk([](int x, int y) { Z_PutPixelColor(bitmap, y, x, 0x01000001); },
                                        [](int x, int y) { return Z_GetPixelColor(bitmap, y, x); });
                               Touch(&sum);
                           }});
    AddWork(HandOver, {"hand over 36 MB, objects", PhotographPixels, PhotographPixels * 6, [] {
                           static IZIRCRaster *from = MakeObject(PhotographWidth, PhotographHeight, 24),
                                              *to = MakeObject(1, 1, 8);
                           intptr_t handle = 0;
                           from->get_Bitmap(&handle);
                           to->put_RefBitmap(-1);
                           to->put_Bitmap(handle);
                           std::swap(from, to);
                       }});
    AddPeer(HandOver, {"memcpy", 1000, [] {
                           static std::vector<uint8_t> from(PhotographPixels * 3, 1),
                               to(PhotographPixels * 3);
                           std::memcpy(to.data(), from.data(), from.size());
                           Touch(to.data());
                       }});
    AddWork(ListChanges, {"1000 changes of a list of 1000", Items, size_t{Items} * 2, [] {
                              static IZIRCRaster *const list = LongList(), *const item = MakeObject(1, 1, 8);
                              intptr_t handle = 0;
                              item->get_Bitmap(&handle);
                              for (int16_t change = 0; change < Items / 2; ++change) {
                                  list->InsertBitmapListItem(change, handle, nullptr);
                                  list->DeleteBitmapListItems(static_cast<int16_t>(Items - change), 1,
                                                              nullptr);
                              }
                          }});
    AddPeer(ListChanges, {"the flat calls", 1.0 / 3, [] {
                              static BitmapHandle* const item = EmptyBitmap(1, 1, 8, 0);
                              static BitmapList list = nullptr;
                              if (list == nullptr) {
                                  Z_CreateBitmapList(&list);
                                  BitmapHandle copy;
                                  for (int index = 0; index < Items && Z_CopyBitmap(&copy, item) == 1;
                                       ++index)
                                      Z_InsertBitmapListItem(list, UINT32_MAX, &copy);
                              }
                              for (uint32_t change = 0; change < Items / 2; ++change) {
                                  BitmapHandle copy;
                                  Z_CopyBitmap(&copy, item);
                                  Z_InsertBitmapListItem(list, change, &copy);
                                  Z_DeleteBitmapListItems(list, Items - change, 1);
                              }
                          }});
});

} // namespace

} // namespace bench
