// Objects that copy, take over and share bitmaps and lists in any order: nothing has two owners, no record stands for what
// is gone, and nothing is left behind. The address sanitizer sees the rest.
#include "automation/raster_host.h"

#include <array>
#include <memory>
#include <random>
#include <set>

namespace zkr::test {
namespace {

void Z_CALL Ignore(int32_t, intptr_t, intptr_t) {}

class Family {
  public:
    // Companions ask for lists, which then are no secret of their objects any more.
    Family(unsigned seed, bool hasCompanions, bool hasFaults)
        : random_(seed), hasCompanions_(hasCompanions), hasFaults_(hasFaults) {
        for (auto& member : members_) {
            member = std::make_unique<BareRaster>();
            member->Append({1, 2, 3});
        }
        Tell();
    }
    ~Family() {
        for (auto& member : members_)
            member.reset();
        for (const BitmapList list : lists_)
            Z_DestroyBitmapList(list); // if it is left
    }
    Family(const Family&) = delete;
    Family& operator=(const Family&) = delete;

    void Step() {
        const auto chosen = static_cast<size_t>(Below(Count));
        BareRaster& raster = *members_[chosen];
        BareRaster& other = *members_[static_cast<size_t>(Below(Count))];
        if (Below(40) == 0) return Replace(chosen);
        if (hasFaults_) platform::fault::Arm(platform::fault::All, static_cast<uint32_t>(1 + Below(12)));
        if (Below(3) != 0 && raster.Bitmap() != 0) {
            Edit(raster, other);
        } else {
            Exchange(raster, other);
        }
        platform::fault::Disarm();
        Tell();
    }

  private:
    static constexpr int Count = 4;

    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    float Near(int limit) { return static_cast<float>(Below(limit)); }

    void Replace(size_t chosen) {
        members_[chosen].reset();
        members_[chosen] = std::make_unique<BareRaster>();
        Tell();
    }

    // What replaces bitmaps and lists.
    void Exchange(BareRaster& raster, BareRaster& other) {
        BareObject& object = raster.object;
        const auto bits =
            static_cast<int16_t>(std::array{1, 4, 8, 12, 16, 24, 32}[static_cast<size_t>(Below(7))]);
        const auto index = static_cast<int16_t>(Below(6) - 1);
        // Copies end with the object that made them, whatever companions have kept.
        static uint8_t bytes[40];
        const Array data{Array::Kind::Bytes, 40, bytes, hasCompanions_};
        object.PutRefBitmap(Below(2) != 0);
        object.PutRefBitmapList(Below(2) != 0);
        switch (Below(hasCompanions_ ? 18 : 13)) {
        case 0: object.CreateBitmap(1 + Near(9), 1 + Near(9), bits, nullptr); break;
        case 1: object.CreateUserBitmap(8, 5, 8, data, 0, nullptr); break;
        case 2:
        case 3: object.PutBitmap(other.Bitmap()); break;
        case 4:
        case 5:
        case 6: object.InsertBitmapListItem(index, other.Bitmap(), nullptr); break;
        case 7: object.DeleteBitmapListItems(index, 1 + Below(2), nullptr); break;
        case 8:
        case 9: object.PutBitmapListIndex(index); break;
        case 10: object.Free(nullptr); break;
        case 11: object.FreeList(nullptr); break;
        case 12: object.NewList(nullptr); break;
        case 13: object.PutBitmapList(reinterpret_cast<intptr_t>(other.List())); break;
        case 14: object.Detach(Below(3)); break;
        case 15:
            if (&raster != &other) object.Attach(Ignore, other.List());
            break;
        case 16: object.NotifyChange(1, 0, 0, 0); break;
        default: object.ReplaceListOnly(other.List()); break;
        }
    }

    // What changes the record, or its storage.
    void Edit(BareRaster& raster, BareRaster& other) {
        BareObject& object = raster.object;
        Array data;
        intptr_t handle = 0;
        switch (Below(15)) {
        case 0: object.PutPixel(Near(9), Near(9), static_cast<uint32_t>(random_()) & 0xFFFFFF); break;
        case 1: object.SetRgnRect(Near(5), Near(5), 1 + Near(4), 1 + Near(4), Below(7), nullptr); break;
        case 2: object.FreeRgn(nullptr); break;
        case 3: object.ResizeRgn(1 + Below(2), Near(3), nullptr); break;
        case 4: object.PutBitmapPalette(static_cast<int16_t>(Below(4)), 0x123456); break;
        case 5: object.PutLevelLUT(Below(20), 0x102030); break;
        case 6: object.PutLevelHighBit(static_cast<int16_t>(Below(12))); break;
        case 7: object.GetBitmapAlpha(&handle); break;
        case 8:
            object.PutBitmapAlpha(Below(2) != 0 ? other.Bitmap() : other.Get(&BareObject::GetBitmapAlpha));
            break;
        case 9:
            raster.Record().ViewPerspective =
                std::array{0, 1, 2, 3, 4, 5, 7, 8}[static_cast<size_t>(Below(8))];
            object.PutInList(nullptr);
            object.GetBitmapClipSegments(Near(9), &data);
            break;
        case 10: object.GetPixelData(Near(9), Near(9), &data); break;
        case 11: object.NotifyChange(3 + Below(2), 0x80 * Below(2), 0, 0); break;
        case 12:
            object.GetDIB(&handle);
            other.object.SetDIB(handle, nullptr);
            platform::GlobalFree(reinterpret_cast<HGLOBAL>(handle));
            break;
        case 13:
            object.GetBitmapDC(&handle);
            Tell();
            Exchange(raster, other);
            object.ReleaseBitmapDC(nullptr);
            break;
        default: object.PutIsSigned(-1); break;
        }
    }

    // As companions do, which know what they share.
    void Tell() {
        for (auto& member : members_)
            member->object.ReloadFromList();
        if (hasCompanions_) Check();
    }

    void Check() {
        std::set<BitmapList> lists;
        std::set<const void*> owned;
        const auto own = [&](const BitmapHandle& bitmap) {
            const bool isUsers = (bitmap.Flags & Z_FLAG_USER_DATA) != 0;
            const void* things[] = {isUsers ? nullptr : bitmap.Addr,
                                    bitmap.StorageHandle,
                                    bitmap.Palette,
                                    bitmap.Region,
                                    bitmap.LevelLUT,
                                    bitmap.PaintLUT};
            for (const void* thing : things)
                EXPECT_TRUE(thing == nullptr || owned.insert(thing).second);
        };
        for (auto& member : members_) {
            const BitmapList list = member->List();
            if (list == nullptr && member->Bitmap() != 0) own(member->Record());
            if (list == nullptr || !lists.insert(list).second) continue;
            BitmapHandle item;
            for (uint32_t index = 0; Z_GetBitmapListItem(list, index, &item) == Z_SUCCESS; ++index)
                own(item);
            member->Items();
        }
        // What an object has been told to forget is its companion's to destroy.
        for (const BitmapList list : lists_)
            if (lists.count(list) == 0) Z_DestroyBitmapList(list);
        lists_ = lists;
        lists_.erase(nullptr);
    }

    std::mt19937 random_;
    const bool hasCompanions_, hasFaults_;
    std::set<BitmapList> lists_;
    std::unique_ptr<BareRaster> members_[Count];
};

TEST_F(RasterTest, NothingHasTwoOwnersWhateverFails) {
    for (unsigned seed = 0; seed < 200 && !HasFailure(); ++seed) {
        const int64_t live = platform::fault::Live();
        {
            Family family(seed, seed % 2 == 0, seed % 4 > 1);
            for (int step = 0; step < 150 && !HasFailure(); ++step) {
                SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
                family.Step();
            }
        }
        EXPECT_EQ(platform::fault::Live(), live) << seed;
    }
}

} // namespace
} // namespace zkr::test
