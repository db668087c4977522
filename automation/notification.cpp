// What an object tells of its bitmap, and what it is told.
#include "automation/raster_object.h"

#include <cstring>

namespace zkr::automation {

namespace {

// In OwnerUser: the record is not to be stored, the list has the newer one.
constexpr uintptr_t ListIsNewer = 0x80;

// Where a client's record of a change has what is kept of it.
constexpr size_t PairOffset = 8;
constexpr size_t WordsOffset = 28;

} // namespace

void RasterObject::Notify(int32_t change, intptr_t first, intptr_t second) {
    if (changeCallback_ != nullptr) changeCallback_(change, first, second);
    if (eventsCounter_ == 0)
        face_.FireChange(change, static_cast<int32_t>(first), static_cast<int32_t>(second));
}

void RasterObject::NotifyRegion() {
    if (eventsCounter_ == 0) face_.FireRegionChange();
}

ReturnCode Z_CALL RasterObject::OwnerNotified(uint32_t kind, BitmapToken* token, void* owner) {
    if (owner == nullptr) return Z_ERROR_ARGUMENT;
    auto& object = *static_cast<RasterObject*>(owner);
    const KeptFace kept(&object.face_);
    return object.Hear(kind, token);
}

// The item that the record was stored in, wherever others have moved it; the count when it is gone.
uint32_t RasterObject::FindItem() const {
    const uint32_t count = CountItems();
    const auto isIt = [&](uint32_t index) {
        BitmapHandle item;
        return Z_GetBitmapListItem(list_, index, &item) == Z_SUCCESS && item.Addr == stored_.Addr &&
               item.StorageHandle == stored_.StorageHandle;
    };
    if (isIt(Index())) return Index();
    uint32_t index = 0;
    while (index < count && !isIt(index))
        ++index;
    return index;
}

// Another object has taken the bitmap out of the record. The item still has it and must not free it.
ReturnCode RasterObject::BitmapTaken() {
    if (HasBitmap()) Z_FreeBitmap(&current_);
    const ReturnCode status =
        Z_CreateBitmap(&current_, 1, 1, 1, 1, Z_ORDER_RGB, nullptr, VIEW_BOTTOM_LEFT, nullptr, 0);
    if (list_ == nullptr) {
        Z_FreeBitmap(&current_);
        current_ = {};
    } else {
        const uint32_t item = FindItem();
        if (Z_SetBitmapListItem(list_, item, &current_) != Z_SUCCESS) Z_FreeBitmap(&current_);
        Z_DeleteBitmapListItems(list_, item, 1);
        listCount_ = CountItems();
        ClampIndex(listCount_);
        Reload();
    }
    Notify(CHANGE_ALL | CHANGE_NEW_BITMAP);
    return status;
}

ReturnCode RasterObject::Hear(uint32_t kind, BitmapToken* token) {
    if (kind == RASTEREVENT_CHANGED || kind == RASTEREVENT_RGNCHANGED) WatchList();
    switch (kind) {
    case 1: return BitmapTaken();
    case RASTEREVENT_CHANGED:
        if (token == nullptr || (token->OwnerUser & ListIsNewer) == 0) StoreInList();
        Reload();
        if (token == nullptr) {
            Notify(CHANGE_SIZE | CHANGE_PALETTE);
        } else {
            Notify(static_cast<int32_t>(token->OwnerUser), notifyReserved1_, notifyReserved2_);
        }
        return Z_SUCCESS;
    case RASTEREVENT_RGNCHANGED:
        StoreInList();
        Reload();
        NotifyRegion();
        return Z_SUCCESS;
    default: return Z_ERROR_FEATURE;
    }
}

Result RasterObject::EnableChangeEvents(int16_t enable, int16_t* result) {
    WatchList();
    const uint16_t step = enable != 0 ? 1 : UINT16_MAX;
    eventsCounter_ = static_cast<int16_t>(static_cast<uint16_t>(eventsCounter_) + step);
    if (result != nullptr) *result = eventsCounter_;
    return 0;
}

Result RasterObject::NotifyChange(int32_t notification, int32_t modifyFlags, int32_t reserved1,
                                  int32_t reserved2) {
    return Member(Needs::Nothing, nullptr, [&] {
        notifyReserved1_ = reserved1;
        notifyReserved2_ = reserved2;
        BitmapToken* token = token_.Token();
        token->OwnerUser = static_cast<uint32_t>(modifyFlags);
        return Hear(static_cast<uint32_t>(notification),
                    notification == RASTEREVENT_CHANGED ? token : nullptr);
    });
}

Result RasterObject::SetChangeInfo(int32_t type, intptr_t info, int16_t* result) {
    WatchList();
    const auto* record = reinterpret_cast<const unsigned char*>(info);
    const bool known = record != nullptr && type >= 1 && type <= 5;
    if (known) {
        changeInfoType_ = type;
        if (type == 1 || type == 5) std::memcpy(changeInfoPair_, record + PairOffset, sizeof changeInfoPair_);
        if (type == 2) std::memcpy(changeInfoWords_, record + WordsOffset, sizeof changeInfoWords_);
    }
    if (result != nullptr) *result = known ? 1 : 0;
    return 0;
}

Result RasterObject::GetChangeInfo(int32_t type, intptr_t info, int16_t* result) {
    WatchList();
    auto* record = reinterpret_cast<unsigned char*>(info);
    const bool known = record != nullptr && type >= 1 && type <= 5;
    if (known) {
        if (type == 1 || type == 5) std::memcpy(record + PairOffset, changeInfoPair_, sizeof changeInfoPair_);
        if (type == 2) std::memcpy(record + WordsOffset, changeInfoWords_, sizeof changeInfoWords_);
    }
    if (result != nullptr) *result = known ? 1 : 0;
    return 0;
}

ReturnCode RasterObject::Attach(ChangeCallback callback, BitmapList list) {
    if (callback == nullptr || changeCallback_ != nullptr) return Z_ERROR_ARGUMENT;
    WatchList();
    uint32_t count;
    ReturnCode status = Test(Needs::NoContext);
    if (status == Z_SUCCESS && list != nullptr) status = Z_GetBitmapListCount(list, &count);
    if (status != Z_SUCCESS) return status;
    EmptyList();
    if (!readOnlyList_ && list != list_) listShown_ = false; // the empty list ends with the change
    changeCallback_ = callback;
    readOnlyList_ = true;
    return ReplaceList(list, true);
}

ReturnCode RasterObject::Detach(int32_t mode) {
    if (changeCallback_ == nullptr) return mode == 2 ? Z_SUCCESS : Z_ERROR_ARGUMENT;
    if (mode < 0 || mode > 2) return Z_ERROR_ARGUMENT;
    changeCallback_ = nullptr;
    readOnlyList_ = false;
    if (list_ == nullptr) Z_FreeBitmap(&current_);
    current_ = {};
    list_ = nullptr;
    const ReturnCode status = FreshList();
    Commit();
    if (mode == 1) refBitmapList_ = true; // to put the object's own list, which changes nothing else
    return status;
}

ReturnCode RasterObject::ReplaceListOnly(BitmapList list) {
    WatchList();
    const ReturnCode status = Test(Needs::NoContext);
    const bool isOwn = list != nullptr && list == list_ && !readOnlyList_;
    return status == Z_SUCCESS && !isOwn ? ReplaceList(list, false) : status;
}

void RasterObject::ReloadFromList() {
    listCount_ = CountItems();
    ClampIndex(listCount_);
    Reload();
}

} // namespace zkr::automation
