// The raster object's bitmap and list: what replaces what, what is told, what is shared and taken over.
#include "automation/raster_host.h"
#include "zkr13n/copy.h"
#include "zkr13n/locks.h"

#include <cstring>

namespace zkr::test {
namespace {

using Tells = std::vector<int>;

TEST_F(RasterTest, NewBitmapReplacesTheList) {
    Raster raster;
    EXPECT_EQ(raster.Bitmap(), 0);
    EXPECT_EQ(raster.object.GetBitmapBits(&raster.result), Failure(Z_ERROR_BITMAP));
    EXPECT_EQ(raster.object.LastText(), "ZIRC Error: Invalid bitmap handle");
    EXPECT_EQ(raster.object.CreateBitmap(10, 5, 12, &raster.result), 0);
    EXPECT_EQ(raster.Changes(), Tells{NewBitmap});
    EXPECT_EQ(raster.Items(), std::vector<int>{10});
    EXPECT_EQ(raster.Record().Order, Z_ORDER_GRAY);
    EXPECT_EQ(raster.Record().ViewPerspective, VIEW_BOTTOM_LEFT);
    raster.Append({20, 30});
    EXPECT_EQ(raster.object.PutBitmapListIndex(2), 0);
    EXPECT_EQ(raster.object.CreateBitmap(7, 5, 24, nullptr), 0);
    EXPECT_EQ(raster.Record().Order, Z_ORDER_BGR);
    EXPECT_EQ(raster.Items(), std::vector<int>{7});
    // A failure leaves an empty object, and with errors off the short result alone tells.
    raster.Changes();
    EXPECT_EQ(raster.object.PutEnableMethodErrors(0), 0);
    EXPECT_EQ(raster.object.CreateBitmap(7, 5, 9, &raster.result), 0);
    EXPECT_EQ(raster.result, 20027);
    EXPECT_EQ(raster.Changes(), Tells{});
    EXPECT_EQ(raster.Count(), 0);
    EXPECT_EQ(raster.Width(), 0);
    EXPECT_EQ(raster.status, 0);
}

TEST_F(RasterTest, EveryCodeHasItsText) {
    BareRaster raster;
    for (ReturnCode code = 3; code >= -910; --code) {
        int16_t number = 7;
        const int32_t mapped = raster.object.Map(code, &number);
        if (code == 1) {
            EXPECT_EQ(mapped | number, 0);
            continue;
        }
        EXPECT_EQ(mapped, Failure(code));
        EXPECT_EQ(number, 20000 - code);
        const char* text = Z_GetErrorText(code);
        EXPECT_EQ(raster.object.LastText(),
                  text != nullptr
                      ? "ZIRC Error: " + std::string(text)
                      : "ZIRC Error: Internal Error " + std::to_string(20000 - code) + " - call ZIRC");
    }
    EXPECT_EQ(static_cast<uint32_t>(raster.object.Map(0)), 0x800A4E20u);
}

TEST_F(RasterTest, BitmapsAreCopiedOrTakenOver) {
    Raster source(6, 4, 8), target(3, 3, 1);
    EXPECT_EQ(source.object.PutPixel(1, 1, 0xFFFFFF), 0);
    const void* pixels = source.Record().Addr;
    EXPECT_EQ(target.object.PutBitmap(source.Bitmap()), 0);
    EXPECT_EQ(target.Changes(), (Tells{0xF, NewBitmap}));
    EXPECT_NE(target.Record().Addr, pixels);
    EXPECT_EQ(target.Pixel(1, 1), 0xFFFFFFu);
    EXPECT_EQ(source.Width(), 6);
    source.Changes();
    // Taken over: no pixel moves, and the source, which is told, has lost its item.
    EXPECT_EQ(target.object.PutRefBitmap(1), 0);
    EXPECT_EQ(target.object.PutBitmap(source.Bitmap()), 0);
    EXPECT_EQ(target.Record().Addr, pixels);
    EXPECT_EQ(target.Items(), std::vector<int>{6});
    EXPECT_EQ(source.Bitmap(), 0);
    EXPECT_EQ(source.Count(), 0);
    EXPECT_EQ(source.Changes(), Tells{NewBitmap});
    // Its own handle changes nothing; 0 empties.
    EXPECT_EQ(target.object.PutBitmap(target.Bitmap()), 0);
    EXPECT_EQ(target.Record().Addr, pixels);
    target.Changes();
    EXPECT_EQ(target.object.PutBitmap(0), 0);
    EXPECT_EQ(target.Changes(), (Tells{0xF, NewBitmap}));
    EXPECT_EQ(target.Items(), std::vector<int>{});
    EXPECT_EQ(target.object.Free(nullptr), 0);
    EXPECT_EQ(target.Changes(), Tells{NewBitmap});
}

TEST_F(RasterTest, TakingOneOfManyLeavesTheOthers) {
    Raster source, target;
    source.Append({1, 2, 3});
    EXPECT_EQ(source.object.PutBitmapListIndex(2), 0);
    EXPECT_EQ(target.object.PutRefBitmap(1), 0);
    EXPECT_EQ(target.object.InsertBitmapListItem(0, source.Bitmap(), nullptr), 0);
    EXPECT_EQ(source.Items(), (std::vector<int>{1, 2}));
    EXPECT_EQ(source.Index(), 1);
    EXPECT_EQ(target.Items(), std::vector<int>{3});
    // An object may take its own bitmap: the item moves.
    EXPECT_EQ(source.object.PutRefBitmap(1), 0);
    EXPECT_EQ(source.object.InsertBitmapListItem(0, source.Bitmap(), nullptr), 0);
    EXPECT_EQ(source.Items(), (std::vector<int>{2, 1}));
}

TEST_F(RasterTest, BadHandlesAreNeverFollowed) {
    struct {
        char Magic[4] = {'z', 'i', 'r', 'c'};
        char Rest[60] = {};
    } block;
    intptr_t gone;
    {
        Raster other(2, 2, 8);
        gone = other.Bitmap();
    }
    HGLOBAL small = platform::GlobalAlloc(GMEM_MOVEABLE, 8),
            strange = platform::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 64);
    std::memcpy(platform::GlobalLock(small), "zirc", 4);
    Raster list(2, 2, 8);
    const intptr_t bad[] = {1,
                            -1,
                            0x1234,
                            reinterpret_cast<intptr_t>(&block),
                            gone,
                            reinterpret_cast<intptr_t>(small),
                            reinterpret_cast<intptr_t>(strange),
                            reinterpret_cast<intptr_t>(list.List())};
    for (const intptr_t handle : bad) {
        Raster raster;
        raster.Append({4, 5});
        EXPECT_EQ(raster.object.PutEnableMethodErrors(0), 0);
        EXPECT_EQ(raster.object.InsertBitmapListItem(0, handle, &raster.result), 0);
        EXPECT_EQ(raster.result, 20013);
        EXPECT_EQ(static_cast<uint32_t>(raster.object.PutBitmap(handle)), 0x800A4E22u);
        EXPECT_EQ(raster.Items(), std::vector<int>{5}); // freed, and its item taken out
        EXPECT_EQ(raster.object.PutBitmapAlpha(handle), 0);
        EXPECT_EQ(raster.object.PutBitmapList(handle == bad[7] ? 1 : handle), 0);
        EXPECT_EQ(raster.Items(), std::vector<int>{});
    }
    platform::GlobalUnlock(small);
    platform::GlobalFree(small);
    platform::GlobalFree(strange);
}

TEST_F(RasterTest, ListsMoveAndCopy) {
    Raster source, target;
    source.Append({1, 2, 3});
    EXPECT_EQ(source.object.PutBitmapListIndex(1), 0);
    target.Append({9});
    EXPECT_EQ(target.object.PutRefBitmapList(0), 0);
    EXPECT_EQ(target.object.PutBitmapList(reinterpret_cast<intptr_t>(source.List())), 0);
    EXPECT_EQ(target.Changes(), Tells{NewBitmap});
    EXPECT_EQ(target.Items(), (std::vector<int>{1, 2, 3}));
    source.Changes();
    EXPECT_EQ(target.object.PutRefBitmapList(-1), 0);
    EXPECT_EQ(target.object.PutBitmapList(reinterpret_cast<intptr_t>(source.List())), 0);
    EXPECT_EQ(target.Items(), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(source.Changes(), Tells{});
    EXPECT_EQ(source.Count(), 0); // the source looks at its list with the next call
    EXPECT_EQ(source.Changes(), Tells{0xF});
    EXPECT_EQ(source.Bitmap(), 0);
    // A failure leaves an empty list.
    EXPECT_EQ(target.object.PutBitmapList(77), Failure(Z_ERROR_ARGUMENT));
    EXPECT_EQ(target.Items(), std::vector<int>{});
}

TEST_F(RasterTest, ItemsComeAndGo) {
    {
        Raster raster(2, 2, 8), other(3, 3, 8);
        EXPECT_EQ(raster.object.PutBitmapList(other.Bitmap()), Failure(Z_ERROR_ARGUMENT));
        EXPECT_EQ(raster.Width(), 2);
    }
    Raster raster, other(8, 1, 8);
    EXPECT_EQ(raster.object.InsertBitmapListItem(5, other.Bitmap(), nullptr), 0);
    EXPECT_EQ(raster.Changes(), (Tells{NewBitmap, 0xF}));
    raster.Append({2, 3});
    EXPECT_EQ(raster.object.PutBitmapListIndex(1), 0);
    EXPECT_EQ(raster.Changes(), Tells{NewBitmap});
    EXPECT_EQ(raster.object.InsertBitmapListItem(0, other.Bitmap(), nullptr), 0);
    EXPECT_EQ(raster.Changes(), Tells{0xF}); // another item has come to stand at the index
    EXPECT_EQ(raster.Items(), (std::vector<int>{8, 8, 2, 3}));
    EXPECT_EQ(raster.Width(), 8);
    EXPECT_EQ(raster.object.PutBitmapListIndex(3), 0);
    raster.Changes();
    EXPECT_EQ(raster.object.DeleteBitmapListItems(1, 99, nullptr), 0);
    EXPECT_EQ(raster.Changes(), Tells{0xF});
    EXPECT_EQ(raster.Items(), std::vector<int>{8});
    EXPECT_EQ(raster.Index(), 0);
    const ReturnCode argument = Z_ERROR_ARGUMENT;
    EXPECT_EQ(raster.object.DeleteBitmapListItems(-1, 1, nullptr), Failure(argument));
    EXPECT_EQ(raster.object.DeleteBitmapListItems(0, 0, nullptr), Failure(argument));
    for (const int16_t index : {int16_t{-1}, int16_t{1}, int16_t{32767}})
        EXPECT_EQ(raster.object.PutBitmapListIndex(index), Failure(argument));
    EXPECT_EQ(raster.object.PutReadOnlyBitmapList(1), 0);
    EXPECT_EQ(raster.object.InsertBitmapListItem(0, other.Bitmap(), nullptr), Failure(Z_ERROR_BITMAP));
    EXPECT_EQ(raster.object.FreeList(nullptr), 0); // not its own
    EXPECT_EQ(raster.Items(), std::vector<int>{8});
    EXPECT_EQ(raster.object.PutReadOnlyBitmapList(0), 0);
    EXPECT_EQ(raster.object.FreeList(nullptr), 0);
    EXPECT_EQ(raster.Items(), std::vector<int>{});
}

TEST_F(RasterTest, ChangesOfTheRecordReachTheItem) {
    Raster raster;
    raster.Append({4, 5});
    EXPECT_EQ(raster.object.PutBitmapXRes(301), 0);
    EXPECT_EQ(raster.object.SetRgnRect(1, 0, 2, 1, 1, nullptr), 0);
    EXPECT_EQ(raster.object.PutBitmapPalette(3, 0x112233), 0);
    EXPECT_EQ(raster.object.PutBitmapDelay(250), 0);
    EXPECT_EQ(raster.Changes(), (Tells{3, RegionChange, 6}));
    EXPECT_EQ(raster.object.PutBitmapListIndex(1), 0);
    EXPECT_EQ(raster.object.PutBitmapListIndex(0), 0);
    EXPECT_EQ(raster.Get(&RasterObject::GetBitmapXRes), 301);
    EXPECT_EQ(raster.Get(&RasterObject::GetRgnWidth), 2);
    EXPECT_EQ(raster.Get(&RasterObject::GetBitmapDelay), 250);
    uint32_t colour = 0;
    EXPECT_EQ(raster.object.GetBitmapPalette(3, &colour), 0);
    EXPECT_EQ(colour, 0x112233u);
    // A companion changes the record behind the object's back and says so.
    raster.Record().PlaybackTop = 77;
    raster.Changes();
    EXPECT_EQ(raster.object.NotifyChange(3, 0x42, 5, 6), 0);
    EXPECT_EQ(raster.Changes(), Tells{0x42});
    EXPECT_EQ(raster.Get(&RasterObject::GetBitmapTop), 77);
    raster.Record().PlaybackTop = 78;
    EXPECT_EQ(raster.object.NotifyChange(3, 0x82, 0, 0), 0); // the list has the newer record
    EXPECT_EQ(raster.Get(&RasterObject::GetBitmapTop), 77);
    EXPECT_EQ(raster.object.NotifyChange(4, 0, 0, 0), 0);
    EXPECT_EQ(raster.object.NotifyChange(2, 0, 0, 0), Failure(Z_ERROR_FEATURE));
    EXPECT_EQ(raster.Changes(), (Tells{0x82, RegionChange}));
    EXPECT_EQ(raster.object.NotifyChange(1, 0, 0, 0), 0); // the bitmap is gone
    EXPECT_EQ(raster.Items(), std::vector<int>{5});
    // Signed data becomes unsigned when its item is read.
    EXPECT_EQ(raster.object.PutIsSigned(1), 0);
    EXPECT_EQ(raster.object.PutBitmapListIndex(0), 0);
    EXPECT_EQ(raster.Get(&RasterObject::GetIsSigned), 0);
}

std::vector<int> calledBack;
void Z_CALL Record(int32_t change, intptr_t, intptr_t) {
    calledBack.push_back(change);
}

TEST_F(RasterTest, CompanionsShareTheList) {
    BareRaster owner, guest(9, 9, 8);
    owner.Append({1, 2});
    calledBack.clear();
    EXPECT_EQ(guest.object.Attach(nullptr, owner.List()), Z_ERROR_ARGUMENT);
    EXPECT_EQ(guest.object.Attach(Record, owner.List()), Z_SUCCESS);
    EXPECT_EQ(guest.object.Attach(Record, owner.List()), Z_ERROR_ARGUMENT);
    EXPECT_EQ(guest.Items(), (std::vector<int>{1, 2}));
    // Events off, the callback goes on.
    EXPECT_EQ(guest.object.EnableChangeEvents(1, &guest.result), 0);
    EXPECT_EQ(guest.result, 1);
    guest.Changes(), calledBack.clear();
    EXPECT_EQ(guest.object.PutBitmapXRes(10), 0);
    EXPECT_EQ(guest.object.PutBitmapListIndex(1), 0);
    EXPECT_EQ(calledBack, (std::vector<int>{3, 0x400, NewBitmap}));
    EXPECT_EQ(guest.Changes(), Tells{});
    EXPECT_EQ(guest.object.EnableChangeEvents(0, &guest.result), 0);
    EXPECT_EQ(guest.result, 0);
    // What replaces the bitmap of a shared list is given up; the item stays.
    EXPECT_EQ(guest.object.CreateBitmap(30, 30, 24, nullptr), 0);
    EXPECT_EQ(guest.object.PutBitmap(0), 0);
    EXPECT_EQ(guest.Items(), (std::vector<int>{1, 2}));
    // Both work on one item: its own bitmap handed over is no change.
    EXPECT_EQ(owner.object.PutBitmapListIndex(1), 0);
    EXPECT_EQ(owner.object.PutBitmap(guest.Bitmap()), 0);
    EXPECT_EQ(guest.Items(), (std::vector<int>{1, 2}));
    EXPECT_EQ(guest.object.Detach(3), Z_ERROR_ARGUMENT);
    EXPECT_EQ(guest.object.Detach(1), Z_SUCCESS);
    EXPECT_EQ(guest.Count(), 0);
    EXPECT_EQ(guest.object.Detach(2), Z_SUCCESS);
    EXPECT_EQ(guest.object.Detach(0), Z_ERROR_ARGUMENT);
    EXPECT_EQ(owner.Items(), (std::vector<int>{1, 2}));
}

TEST_F(RasterTest, SharedListsLoseNothing) {
    // An object takes over what a companion shows of the list that both work on.
    const struct {
        int16_t Owner, Guest; // the items that they show
        bool Inserts;
        std::vector<int> Left;
        int16_t Shown;
    } cases[] = {{1, 1, true, {2, 1, 3}, 1}, {2, 0, true, {1, 2, 3}, 1}, {0, 2, true, {3, 1, 2}, 0},
                 {1, 0, false, {1, 3}, 0},   {1, 2, false, {1, 3}, 1},   {2, 0, false, {2, 1}, 1},
                 {1, 1, false, {1, 2, 3}, 1}};
    for (const auto& c : cases) {
        BareRaster owner, guest;
        owner.Append({1, 2, 3});
        EXPECT_EQ(guest.object.Attach(Record, owner.List()), Z_SUCCESS);
        EXPECT_EQ(owner.object.PutBitmapListIndex(c.Owner), 0);
        EXPECT_EQ(guest.object.PutBitmapListIndex(c.Guest), 0);
        EXPECT_EQ(owner.object.PutRefBitmap(1), 0);
        EXPECT_EQ(c.Inserts ? owner.object.InsertBitmapListItem(0, guest.Bitmap(), nullptr)
                            : owner.object.PutBitmap(guest.Bitmap()),
                  0);
        EXPECT_EQ(owner.Items(), c.Left);
        EXPECT_EQ(owner.Index(), c.Shown);
    }
    // A client changes the list behind the object's back: what is taken is found, and what is no longer there is not
    // stored.
    Raster taker;
    taker.object.PutRefBitmap(1);
    BitmapHandle removed;
    {
        Raster raster, other(9, 1, 8);
        raster.Append({1, 2, 3});
        const intptr_t handle = raster.Bitmap();
        const BitmapList list = raster.List();
        EXPECT_EQ(Z_CopyBitmap(&removed, &other.Record()), Z_SUCCESS);
        EXPECT_EQ(Z_InsertBitmapListItem(list, 0, &removed), Z_SUCCESS);
        EXPECT_EQ(taker.object.PutBitmap(handle), 0);
        EXPECT_EQ(raster.Items(), (std::vector<int>{9, 2, 3}));
        BitmapHandle& record = raster.Record();
        EXPECT_EQ(Z_RemoveBitmapListItem(list, 0, &removed), Z_SUCCESS);
        record.PlaybackTop = 7;
    }
    EXPECT_EQ(taker.Items(), std::vector<int>{1});
    Z_FreeBitmap(&removed);
    // Lists that nobody else knows end with their objects.
    BareRaster known, secret(4, 4, 8);
    known.Append({1});
    EXPECT_EQ(secret.object.ReplaceListOnly(known.List()), Z_SUCCESS);
    EXPECT_EQ(secret.Items(), std::vector<int>{1});
    EXPECT_EQ(secret.object.ReplaceListOnly(secret.List()), Z_SUCCESS);
    EXPECT_EQ(secret.Items(), std::vector<int>{1});
    EXPECT_EQ(secret.object.Attach(Record, reinterpret_cast<BitmapList>(&known)), Z_ERROR_ARGUMENT);
    EXPECT_EQ(secret.Items(), std::vector<int>{1});
    EXPECT_EQ(secret.Get(&BareObject::GetBitmapDC) != 0, true);
    EXPECT_EQ(secret.object.Attach(Record, nullptr), Z_ERROR_BITMAP);
    EXPECT_EQ(secret.object.ReplaceListOnly(known.List()), Z_ERROR_BITMAP);
}

TEST_F(RasterTest, TokensTellTheObject) {
    Raster raster(2, 2, 8);
    for (int round = 0; round < 2; ++round) {
        const automation::LockedToken token(raster.Bitmap());
        ASSERT_TRUE(token);
        EXPECT_EQ(std::memcmp(token->Magic, "zirc", 4), 0);
        EXPECT_EQ(token->BlockSize, 8 + 4 * sizeof(void*));
        EXPECT_EQ(token->Record->Width, 2);
        EXPECT_EQ(token->OwnerUser, 0u);
        // A change that a client tells of by the token.
        raster.Changes();
        token->OwnerUser = CHANGE_DATA;
        EXPECT_EQ(token->OwnerNotify(RASTEREVENT_CHANGED, token.get(), token->Owner), Z_SUCCESS);
        EXPECT_EQ(token->OwnerNotify(RASTEREVENT_CHANGED, nullptr, token->Owner), Z_SUCCESS);
        EXPECT_EQ(token->OwnerNotify(RASTEREVENT_RGNCHANGED, nullptr, token->Owner), Z_SUCCESS);
        EXPECT_EQ(token->OwnerNotify(2, nullptr, token->Owner), Z_ERROR_FEATURE);
        EXPECT_EQ(raster.Changes(), (Tells{CHANGE_DATA, 7, RegionChange}));
        token->OwnerNotify = nullptr, token->BlockSize = 1; // which the next get mends
    }
}

TEST_F(RasterTest, AReadOnlyObjectWithoutAListOwnsItsBitmap) {
    Raster owner, guest(9, 9, 8);
    owner.Append({1, 2});
    EXPECT_EQ(guest.object.PutReadOnlyBitmapList(1), 0);
    EXPECT_EQ(guest.object.PutBitmapList(reinterpret_cast<intptr_t>(owner.List())), 0);
    EXPECT_EQ(guest.Width(), 1);
    EXPECT_EQ(guest.object.PutBitmapList(0), 0);
    EXPECT_EQ(guest.List(), nullptr);
    EXPECT_EQ(guest.Bitmap(), 0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(guest.object.CreateBitmap(5, 5, 8, nullptr), 0);
        EXPECT_EQ(guest.object.PutBitmap(owner.Bitmap()), 0);
        EXPECT_EQ(guest.Width(), 1);
    }
    EXPECT_EQ(guest.object.PutReadOnlyBitmapList(0), 0);
    EXPECT_EQ(guest.object.PutRefBitmapList(0), 0);
    EXPECT_EQ(guest.object.PutBitmapList(reinterpret_cast<intptr_t>(owner.List())), 0);
    EXPECT_EQ(guest.Items(), owner.Items());
}

TEST_F(RasterTest, SinksMayCallBack) {
    Raster raster, other(6, 6, 8);
    raster.Append({1, 2, 3});
    int depth = 0;
    raster.object.OnChange = [&](int change) {
        if (++depth > 3) return;
        if (change == 0xF) raster.object.PutBitmap(other.Bitmap());
        if (change == NewBitmap) raster.object.DeleteBitmapListItems(0, 1, nullptr);
    };
    EXPECT_EQ(raster.object.PutBitmap(other.Bitmap()), 0);
    raster.Items();
    depth = 0;
    raster.object.OnChange = [&](int) {
        if (++depth <= 3) raster.object.FreeList(nullptr);
    };
    raster.object.CreateBitmap(4, 4, 8, nullptr);
    raster.object.PutPixel(0, 0, 0);
}

TEST_F(RasterTest, UserBytesAreUsedOrCopied) {
    uint8_t bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const Array copied{Array::Kind::Bytes, 8, bytes, false}, used{Array::Kind::SignedBytes, 8, bytes, true},
        floats{Array::Kind::Floats, 2, bytes, true}, none{};
    Raster raster(5, 5, 8);
    const ReturnCode argument = Z_ERROR_ARGUMENT;
    EXPECT_EQ(raster.object.CreateUserBitmap(4, 2, 8, copied, 9, nullptr), Failure(argument));
    EXPECT_EQ(raster.object.CreateUserBitmap(4, 2, 8, floats, 0, nullptr), Failure(argument));
    EXPECT_EQ(raster.Width(), 5); // found before anything is freed
    EXPECT_EQ(raster.object.CreateUserBitmap(4, 2, 8, copied, 7, nullptr), Failure(argument));
    EXPECT_EQ(raster.Bitmap(), 0);
    EXPECT_EQ(raster.object.CreateUserBitmap(4, 2, 8, used, 0, nullptr), 0);
    EXPECT_EQ(raster.object.PutPixel(0, 1, 0x01000063), 0);
    EXPECT_EQ(bytes[0], 99);
    EXPECT_EQ(raster.object.CreateUserBitmap(4, 2, 8, copied, 8, nullptr), 0);
    bytes[0] = 1;
    Array pixel;
    EXPECT_EQ(raster.object.GetPixelData(0, 1, &pixel), 0);
    EXPECT_EQ(*static_cast<uint8_t*>(pixel.Data), 99);
    // The copy follows the bitmap into another object, and out of it.
    {
        Raster taker;
        taker.object.PutRefBitmap(1);
        EXPECT_EQ(taker.object.PutBitmap(raster.Bitmap()), 0);
        EXPECT_EQ(raster.object.FreeList(nullptr), 0);
        EXPECT_EQ(taker.object.GetPixelData(0, 1, &pixel), 0);
        EXPECT_EQ(*static_cast<uint8_t*>(pixel.Data), 99);
        EXPECT_EQ(taker.object.SetBitmapDataPointer(copied, 0, nullptr), 0);
        EXPECT_EQ(raster.object.PutBitmapList(reinterpret_cast<intptr_t>(taker.List())), 0);
    }
    EXPECT_EQ(raster.object.GetPixelData(0, 1, &pixel), 0);
    EXPECT_EQ(*static_cast<uint8_t*>(pixel.Data), 1);
    EXPECT_EQ(raster.object.SetBitmapDataPointer(none, 0, nullptr), 0);
    EXPECT_EQ(raster.object.SetBitmapDataPointer(copied, 3, nullptr), Failure(argument));
    EXPECT_EQ(raster.object.CreateUserBitmap(4, 2, 8, none, 0, nullptr), 0);
}

TEST_F(RasterTest, ChangeInformationIsKeptByType) {
    Raster raster;
    unsigned char told[48], back[48];
    for (int byte = 0; byte < 48; ++byte)
        told[byte] = static_cast<unsigned char>(byte + 1);
    const struct {
        int32_t Type;
        int16_t Result;
        size_t From, To;
    } cases[] = {{1, 1, 8, 28}, {5, 1, 8, 28}, {2, 1, 28, 44}, {3, 1, 0, 0},
                 {4, 1, 0, 0},  {0, 0, 0, 0},  {6, 0, 0, 0}};
    for (const auto& c : cases) {
        std::memset(back, 0, sizeof back);
        int16_t set = -1, get = -1;
        EXPECT_EQ(raster.object.SetChangeInfo(c.Type, reinterpret_cast<intptr_t>(told), &set), 0);
        EXPECT_EQ(raster.object.GetChangeInfo(c.Type, reinterpret_cast<intptr_t>(back), &get), 0);
        EXPECT_EQ(set, c.Result);
        EXPECT_EQ(get, c.Result);
        for (size_t byte = 0; byte < sizeof back; ++byte)
            EXPECT_EQ(back[byte], byte >= c.From && byte < c.To ? told[byte] : 0);
        EXPECT_EQ(raster.object.SetChangeInfo(c.Type, 0, &set), 0);
        EXPECT_EQ(set, 0);
    }
}

// Every call of the system fails once, in a run through whatever allocates.
TEST_F(RasterTest, FailuresLeaveNothingBehind) {
    Raster source(12, 3, 8);
    const int64_t live = platform::fault::Live();
    bool fired = true;
    for (uint32_t nth = 1; fired && nth < 2000; ++nth) {
        {
            Raster raster, other;
            platform::fault::Arm(platform::fault::All, nth);
            uint8_t bytes[8] = {};
            const Array data{Array::Kind::Bytes, 8, bytes, false};
            raster.object.CreateUserBitmap(4, 2, 8, data, 8, nullptr);
            raster.object.InsertBitmapListItem(-1, source.Bitmap(), nullptr);
            raster.object.PutBitmap(source.Bitmap());
            raster.object.SetRgnEllipse(0, 0, 9, 3, 1, nullptr);
            raster.object.ResizeRgn(1, 1, nullptr);
            intptr_t alpha = 0;
            raster.object.GetBitmapAlpha(&alpha);
            raster.object.CreateBitmap(9, 9, 12, nullptr);
            raster.object.PutLevelLUT(5, 0x102030);
            raster.object.GetMinMaxVal(nullptr);
            other.object.PutRefBitmapList(0);
            other.object.PutBitmapList(reinterpret_cast<intptr_t>(raster.List()));
            other.object.PutPolygonSize(100);
            fired = platform::fault::Fired();
            platform::fault::Disarm();
        }
        EXPECT_EQ(platform::fault::Live(), live) << nth;
    }
    EXPECT_FALSE(fired);
}

} // namespace
} // namespace zkr::test
