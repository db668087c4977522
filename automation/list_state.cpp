// The working record and the list behind it: how they are kept alike, and how a bitmap is replaced.
#include "automation/raster_object.h"

#include "zkr13n/copy.h"
#include "zkr13n/gray.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace zkr::automation {

namespace {

constexpr uint32_t ToEnd = UINT32_MAX;

// The bits in which the words from First to End differ, in line: the system's memcmp takes longer than a pixel does.
template <size_t First, size_t End> uint32_t Difference(const BitmapHandle& one, const BitmapHandle& other) {
    uint32_t difference = 0;
    const auto compare = [&](size_t from, size_t to) {
        for (size_t byte = from; byte < to; byte += sizeof(uint32_t)) {
            uint32_t words[2];
            std::memcpy(&words[0], reinterpret_cast<const char*>(&one) + byte, sizeof words[0]);
            std::memcpy(&words[1], reinterpret_cast<const char*>(&other) + byte, sizeof words[1]);
            difference |= words[0] ^ words[1];
        }
    };
    constexpr size_t vectors = First + (End - First) / 16 * 16; // of which a compiler makes vectors
    compare(First, vectors);
    compare(vectors, End);
    return difference;
}

} // namespace

// 0 without a list, and for a shared list that is gone.
uint32_t RasterObject::CountItems() const {
    uint32_t count = 0;
    if (list_ != nullptr && Z_GetBitmapListCount(list_, &count) != Z_SUCCESS) count = 0;
    return count;
}

void RasterObject::ClampIndex(uint32_t count) {
    const uint32_t last = count == 0 ? 0 : count - 1;
    listIndex_ = static_cast<int16_t>(std::min({Index(), last, uint32_t{INT16_MAX}}));
}

// Others may have changed the list, where they know its handle: its length tells.
void RasterObject::WatchList() {
    if (!IsSecret()) LookAtList();
}

void RasterObject::LookAtList() {
    const uint32_t count = CountItems();
    if (count == listCount_) return;
    listCount_ = count;
    ClampIndex(count);
    Reload();
    Notify(CHANGE_ALL);
}

void RasterObject::StorePlainly() {
    if (list_ != nullptr) Z_SetBitmapListItem(list_, Index(), &current_);
    stored_ = current_;
}

// Only what has changed is stored. Where the data is one block of memory, the row last reached is nobody's business.
void RasterObject::StoreRecord() {
    if (!HasBitmap()) return;
    constexpr uint32_t elsewhere = Z_FLAG_DISK | Z_FLAG_TILED | Z_FLAG_COMPRESSED | Z_FLAG_SUPER_COMPRESSED;
    constexpr size_t row = offsetof(BitmapHandle, CurrentRowOffset), behind = offsetof(BitmapHandle, Flags);
    uint32_t difference =
        Difference<0, row>(stored_, current_) | Difference<behind, sizeof(BitmapHandle)>(stored_, current_);
    if ((current_.Flags & elsewhere) != 0) difference |= Difference<row, behind>(stored_, current_);
    if (difference != 0) StorePlainly();
}

void RasterObject::Reload() {
    if (list_ == nullptr) return;
    current_ = {};
    if (Z_GetBitmapListItem(list_, Index(), &current_) != Z_SUCCESS) return;
    stored_ = current_;
    if ((current_.Flags & Z_FLAG_SIGNED) != 0) Z_ClearNegativePixels(&current_);
    StoreRecord();
}

void RasterObject::StoreInList() {
    if (list_ == nullptr || !HasBitmap()) return;
    StorePlainly();
    if (changeCallback_ != nullptr)
        changeCallback_(CHANGE_UPDATELIST, reinterpret_cast<intptr_t>(&current_), listIndex_);
}

void RasterObject::ShowFirst() {
    listIndex_ = 0;
    Reload();
    listCount_ = CountItems();
    Notify(CHANGE_ALL | CHANGE_NEW_BITMAP);
}

void RasterObject::EmptyList() {
    if (readOnlyList_) return;
    if (list_ == nullptr) {
        FreeBitmap();
        current_ = {};
    } else {
        StoreInList();
        DeleteItems(0, ToEnd);
        listCount_ = 0;
        listIndex_ = 0;
        Reload();
    }
    Z_FreeBitmap(&alpha_);
}

void RasterObject::FreeBitmap() {
    ReleaseUserData(current_);
    Z_FreeBitmap(&current_);
}

ReturnCode RasterObject::DeleteItems(uint32_t index, uint32_t count) {
    BitmapHandle item;
    for (uint32_t step = 0; step < count && Z_GetBitmapListItem(list_, index + step, &item) == Z_SUCCESS;
         ++step)
        ReleaseUserData(item);
    return Z_DeleteBitmapListItems(list_, index, count);
}

void RasterObject::FreeForReplacement() {
    if (readOnlyList_ || !HasBitmap()) return;
    FreeBitmap();
    StorePlainly();
    Notify(CHANGE_ALL);
}

// After the record was replaced, or emptied, in a list of the object's own.
ReturnCode RasterObject::Commit() {
    ReturnCode status = Z_SUCCESS;
    if (list_ != nullptr && !readOnlyList_) {
        const uint32_t count = CountItems();
        if (!HasBitmap()) {
            StorePlainly(); // so that the item owns no more than the record
            Z_DeleteBitmapListItems(list_, Index(), 1);
            if (CountItems() == 0) {
                EmptyList();
            } else {
                ClampIndex(CountItems());
            }
        } else if (count != 0) {
            StorePlainly();
        } else {
            status = Z_InsertBitmapListItem(list_, ToEnd, &current_);
            if (status != Z_SUCCESS) Z_FreeBitmap(&current_);
        }
        listCount_ = CountItems();
    }
    Reload();
    if (status == Z_SUCCESS) Notify(CHANGE_ALL | CHANGE_NEW_BITMAP);
    return status;
}

// Makes a new bitmap the working one, and takes it over whatever happens.
ReturnCode RasterObject::Install(BitmapHandle& made) {
    if (list_ != nullptr && readOnlyList_) {
        Z_FreeBitmap(&made); // the item that is shared stays
    } else {
        if (HasBitmap()) FreeBitmap();
        current_ = made;
    }
    return Commit();
}

ReturnCode RasterObject::FreshList() {
    BitmapList list = nullptr;
    const ReturnCode status = Z_CreateBitmapList(&list);
    if (status != Z_SUCCESS) return status;
    list_ = list;
    ownList_ = true;
    listShown_ = false;
    listCount_ = 0;
    listIndex_ = 0;
    return status;
}

// Takes somebody else's list as it is; null for none.
ReturnCode RasterObject::AdoptList(BitmapList list) {
    uint32_t count = 0;
    if (list != nullptr) {
        const ReturnCode status = Z_GetBitmapListCount(list, &count);
        if (status != Z_SUCCESS) return status;
    }
    if (list_ == nullptr) {
        Z_FreeBitmap(&current_);
    } else if (IsSecret() && list != list_) {
        StoreRecord();
        Z_DestroyBitmapList(list_); // nobody else could
    }
    current_ = {};
    ownList_ = ownList_ && list == list_;
    list_ = list;
    return Z_SUCCESS;
}

ReturnCode RasterObject::ReplaceList(BitmapList list, bool freeFirst) {
    if (freeFirst) EmptyList();
    ReturnCode status = Z_SUCCESS;
    if (readOnlyList_) {
        status = AdoptList(list);
    } else if (list != nullptr) {
        BitmapList made = nullptr;
        status = refBitmapList_ ? Z_MoveBitmapListItems(&made, list, 0, ToEnd)
                                : Z_CopyBitmapListItems(&made, list, 0, ToEnd);
        if (status == Z_SUCCESS) {
            if (list_ == nullptr) Z_FreeBitmap(&current_);
            if (list_ != nullptr && (freeFirst || IsSecret())) Z_DestroyBitmapList(list_);
            list_ = made;
            ownList_ = true;
            listShown_ = false;
            ClaimUserData(this, made);
        }
    }
    if (status == Z_SUCCESS) ShowFirst();
    return status;
}

// Whether a handle is the object's own, or that of an object which shares its list and works on the same item.
bool RasterObject::IsSameBitmap(intptr_t handle) const {
    if (handle == token_.Handle()) return true;
    const LockedToken other(handle);
    if (!other || !HasBitmap()) return false;
    const BitmapHandle& record = *other->Record;
    const auto isOne = [](const void* one, const void* another) { return one != nullptr && one == another; };
    // Bytes of the user's may lie below several bitmaps.
    return (record.Flags & Z_FLAG_ALLOCATED) != 0 &&
           (isOne(record.StorageHandle, current_.StorageHandle) ||
            isOne(record.PaintLUT, current_.PaintLUT) || isOne(record.Palette, current_.Palette) ||
            isOne(record.Region, current_.Region) ||
            ((record.Flags & Z_FLAG_USER_DATA) == 0 && isOne(record.Addr, current_.Addr)));
}

// A copy of another object's bitmap, or the bitmap itself.
ReturnCode RasterObject::Fetch(LockedToken& source, BitmapHandle* made) {
    BitmapHandle& record = *source->Record;
    if ((record.Flags & Z_FLAG_ALLOCATED) == 0) return Z_ERROR_ARGUMENT;
    if (!refBitmap_) return Z_CopyBitmap(made, &record);
    *made = std::exchange(record, BitmapHandle{});
    ClaimUserData(this, *made);
    if (source->OwnerNotify != nullptr) source->OwnerNotify(1, source.get(), source->Owner);
    return Z_SUCCESS;
}

// Finds the item that waits for a bitmap, when others before it may have been taken out of a list that is shared.
void RasterObject::FollowEmptyItem() {
    BitmapHandle item;
    while (listIndex_ > 0 &&
           (Z_GetBitmapListItem(list_, Index(), &item) != Z_SUCCESS || (item.Flags & Z_FLAG_ALLOCATED) != 0))
        --listIndex_;
}

Result RasterObject::GetBitmap(intptr_t* value) {
    if (value == nullptr) return Map(Z_ERROR_ARGUMENT);
    WatchList();
    *value = Test(Needs::Bitmap) == Z_SUCCESS ? token_.Handle() : 0;
    if (*value != 0) {
        StoreRecord();
        token_.Fill(&current_, OwnerNotified, this); // clients can write to it
    }
    return 0;
}

Result RasterObject::PutBitmap(intptr_t value) {
    WatchList();
    ReturnCode status = Test(Needs::NoContext);
    if (status != Z_SUCCESS) return Map(status);
    if (value != 0 && IsSameBitmap(value)) return 0;
    FreeForReplacement();
    bool badHandle = false;
    BitmapHandle made{};
    if (value != 0) {
        const uint32_t count = CountItems();
        LockedToken source(value);
        badHandle = !source;
        status = badHandle ? Z_ERROR_BITMAP : Fetch(source, &made);
        if (CountItems() < count && !readOnlyList_) FollowEmptyItem();
    }
    if (value != 0 && status == Z_SUCCESS) {
        status = Install(made);
    } else {
        Commit();
    }
    return Map(status, nullptr, badHandle);
}

Result RasterObject::Free(int16_t* result) {
    return Member(Needs::NoContext, result, [&] {
        FreeForReplacement();
        return Commit();
    });
}

Result RasterObject::GetBitmapList(intptr_t* value) {
    return Value(Needs::Nothing, value, [&](intptr_t& out) {
        StoreRecord();
        listShown_ = list_ != nullptr;
        out = reinterpret_cast<intptr_t>(list_);
        return Z_SUCCESS;
    });
}

Result RasterObject::PutBitmapList(intptr_t value) {
    return Member(Needs::NoContext, nullptr, [&]() -> ReturnCode {
        const BitmapList list = reinterpret_cast<BitmapList>(value);
        if (list != nullptr && list == list_) return Z_SUCCESS;
        if (LockedToken(value)) return Z_ERROR_ARGUMENT; // which lists cannot be told from
        return ReplaceList(list, true);
    });
}

Result RasterObject::GetBitmapListIndex(int16_t* value) {
    return Value(Needs::Nothing, value, [&](int16_t& out) { return out = listIndex_, Z_SUCCESS; });
}

Result RasterObject::PutBitmapListIndex(int16_t value) {
    return Member(Needs::NoContext, nullptr, [&]() -> ReturnCode {
        if (value < 0 || static_cast<uint32_t>(value) >= CountItems()) return Z_ERROR_ARGUMENT;
        StoreInList();
        listIndex_ = value;
        Reload();
        Notify(CHANGE_ALL | CHANGE_NEW_BITMAP);
        return Z_SUCCESS;
    });
}

Result RasterObject::GetBitmapListCount(int32_t* value) {
    return Value(Needs::Nothing, value, [&](int32_t& out) {
        out = static_cast<int32_t>(std::min(CountItems(), uint32_t{INT32_MAX}));
        return Z_SUCCESS;
    });
}

Result RasterObject::DeleteBitmapListItems(int16_t index, int32_t count, int16_t* result) {
    const Result mapped = Member(Needs::NoContext, result, [&] {
        StoreRecord();
        // Negative numbers are beyond every list's end.
        return DeleteItems(static_cast<uint32_t>(int32_t{index}), static_cast<uint32_t>(count));
    });
    LookAtList();
    return mapped;
}

ReturnCode RasterObject::InsertFetched(int16_t index, BitmapHandle& made) {
    if (list_ == nullptr) return Install(made);
    LookAtList(); // what was taken may have been an item of this list
    StoreInList();
    const uint32_t count = CountItems();
    const uint32_t place = index < 0 ? count : std::min(static_cast<uint32_t>(index), count);
    const ReturnCode status = Z_InsertBitmapListItem(list_, place, &made);
    if (status != Z_SUCCESS) {
        Z_FreeBitmap(&made);
    } else if (place == Index()) {
        Reload();
        Notify(CHANGE_ALL | CHANGE_NEW_BITMAP);
    }
    return status;
}

Result RasterObject::InsertBitmapListItem(int16_t index, intptr_t bitmap, int16_t* result) {
    const Result mapped = Member(Needs::NoContext, result, [&]() -> ReturnCode {
        if (readOnlyList_) return Z_ERROR_BITMAP;
        LockedToken source(bitmap);
        if (!source) return Z_ERROR_ARGUMENT;
        BitmapHandle made{};
        const ReturnCode status = Fetch(source, &made);
        return status == Z_SUCCESS ? InsertFetched(index, made) : status;
    });
    LookAtList();
    return mapped;
}

Result RasterObject::FreeList(int16_t* result) {
    return Member(Needs::NoContext, result, [&] {
        EmptyList();
        return Z_SUCCESS;
    });
}

Result RasterObject::NewList(int16_t* result) {
    return Member(Needs::NoContext, result, [&] {
        StoreRecord();
        ShowFirst();
        return Z_SUCCESS;
    });
}

Result RasterObject::PutInList(int16_t* result) {
    return Member(Needs::Nothing, result, [&] {
        StoreInList();
        return Z_SUCCESS;
    });
}

Result RasterObject::GetReadOnlyBitmapList(int16_t* value) {
    return Field<int16_t>(readOnlyList_ ? -1 : 0, value);
}

Result RasterObject::PutReadOnlyBitmapList(int16_t value) {
    return Member(Needs::Nothing, nullptr, [&] { return readOnlyList_ = value != 0, Z_SUCCESS; });
}

Result RasterObject::GetRefBitmap(int16_t* value) {
    return Field<int16_t>(refBitmap_ ? -1 : 0, value);
}

Result RasterObject::PutRefBitmap(int16_t value) {
    return Member(Needs::Nothing, nullptr, [&] { return refBitmap_ = value != 0, Z_SUCCESS; });
}

Result RasterObject::GetRefBitmapList(int16_t* value) {
    return Field<int16_t>(refBitmapList_ ? -1 : 0, value);
}

Result RasterObject::PutRefBitmapList(int16_t value) {
    return Member(Needs::Nothing, nullptr, [&] { return refBitmapList_ = value != 0, Z_SUCCESS; });
}

Result RasterObject::GetEnableMethodErrors(int16_t* value) {
    return Field<int16_t>(enableMethodErrors_ ? -1 : 0, value);
}

Result RasterObject::PutEnableMethodErrors(int16_t value) {
    return Member(Needs::Nothing, nullptr, [&] { return enableMethodErrors_ = value != 0, Z_SUCCESS; });
}

} // namespace zkr::automation
