// The raster object's logic: state and members, without the face that clients see. zkr13n/raster_object.h tells what each
// member does.
//
// The working record mirrors an item of the list: the item owns the data, and the record is a plain copy of it, stored
// back after each member that changed it. Without a list the record owns the data itself. Sinks that a notification
// reaches may call any member, so that members notify last, or look at the state anew.
#pragma once

#include "automation/array.h"
#include "automation/face.h"
#include "automation/plain_types.h"
#include "automation/scale.h"
#include "automation/token.h"
#include "automation/user_data.h"
#include "zkr13n/lists.h"
#include "zkr13n/raster_values.h"

namespace zkr::automation {

// What a member gives: 0, or 0x800A0000 | (20000 - code).
using Result = int32_t;

// A companion that shares the list. The two words are those of the notification; for CHANGE_UPDATELIST the record and
// its index in the list.
using ChangeCallback = void(Z_CALL*)(int32_t change, intptr_t first, intptr_t second);

class RasterObject : private PlainTypes {
    using ArrayIn = const Array&;
    using ArrayOut = Array*;

  public:
    explicit RasterObject(Face& face) : face_(face) {}
    ~RasterObject();
    RasterObject(const RasterObject&) = delete;
    RasterObject& operator=(const RasterObject&) = delete;

    // To be called once, before anything else.
    ReturnCode Make();

    // For what faces find out by themselves. A short result may be null; force overrides EnableMethodErrors.
    Result Map(ReturnCode status, int16_t* shortResult = nullptr, bool force = false);
    // The frame of a member that a face has by itself, which ended in this way.
    Result OwnMember(ReturnCode status) {
        return Member(Needs::Nothing, nullptr, [=] { return status; });
    }

    // Companions.
    bool HasCompanion() const { return changeCallback_ != nullptr; }
    ReturnCode Attach(ChangeCallback callback, BitmapList list);
    ReturnCode Detach(int32_t mode);
    ReturnCode ReplaceListOnly(BitmapList list);
    void ReloadFromList();

#define MEMBER(member, logic, parameters, arguments) Result logic parameters;
#include "automation/members.inc"

  private:
    enum class Needs { Nothing, NoContext, Bitmap };
    struct PixelPlace {
        int32_t Row;
        int32_t Column;
    };
    struct Point {
        float X;
        float Y;
    };

    // The frame of every member: outputs cleared, the list looked at, the object tested, the body run, its result
    // mapped. A body that fails leaves its output 0.
    template <typename Body> Result Member(Needs needs, int16_t* result, Body body) {
        if (result != nullptr) *result = 0;
        WatchList();
        ReturnCode status = Test(needs);
        if (status == Z_SUCCESS) status = body();
        return Map(status, result);
    }
    template <typename T, typename Body> Result Value(Needs needs, T* value, Body body) {
        if (value == nullptr) return Map(Z_ERROR_ARGUMENT);
        *value = T{};
        WatchList();
        ReturnCode status = Test(needs);
        if (status == Z_SUCCESS) status = body(*value);
        if (status != Z_SUCCESS) *value = T{};
        return Map(status);
    }
    // A field that plays no part in the bitmap.
    template <typename T> Result Field(T field, T* value) {
        return Value(Needs::Nothing, value, [&](T& out) { return out = field, Z_SUCCESS; });
    }

    // raster_object.cpp
    ReturnCode Test(Needs needs) const;
    bool HasBitmap() const {
        return (current_.Flags & Z_FLAG_ALLOCATED) != 0;
    }
    // The end of an edit: the record is stored whatever happened, a success told.
    ReturnCode Changed(ReturnCode status, int32_t change);
    ReturnCode RegionChanged(ReturnCode status);
    ReturnCode Translate(uint32_t colour, uint32_t* plain);
    ReturnCode Translate(uint32_t colour, RGBQUAD* entry);

    // list_state.cpp
    // A list of the object's own whose handle nobody else has.
    bool IsSecret() const {
        return ownList_ && !listShown_;
    }
    bool OwnsList() const {
        return list_ != nullptr && (!readOnlyList_ || IsSecret());
    }
    uint32_t CountItems() const;
    uint32_t Index() const {
        return static_cast<uint32_t>(listIndex_);
    }
    void ClampIndex(uint32_t count);
    void WatchList();
    void LookAtList();
    void StoreRecord();
    void StorePlainly();
    void Reload();
    void StoreInList();
    void ShowFirst();
    void EmptyList();
    void FreeBitmap();
    ReturnCode DeleteItems(uint32_t index, uint32_t count);
    void FreeForReplacement();
    ReturnCode Commit();
    ReturnCode Install(BitmapHandle& made);
    ReturnCode FreshList();
    ReturnCode AdoptList(BitmapList list);
    ReturnCode ReplaceList(BitmapList list, bool freeFirst);
    ReturnCode Fetch(LockedToken& source, BitmapHandle* made);
    void FollowEmptyItem();
    bool IsSameBitmap(intptr_t handle) const;
    ReturnCode InsertFetched(int16_t index, BitmapHandle& made);

    // notification.cpp
    void Notify(int32_t change, intptr_t first = 0, intptr_t second = 0);
    void NotifyRegion();
    static ReturnCode Z_CALL OwnerNotified(uint32_t kind, BitmapToken* token, void* owner);
    ReturnCode Hear(uint32_t kind, BitmapToken* token);
    uint32_t FindItem() const;
    ReturnCode BitmapTaken();

    // scale_members.cpp
    int32_t ToPixel(float pixels);
    int32_t PositionToPixel(Axis axis, float units);
    int32_t LengthToPixel(Axis axis, float units);
    RECT ToRect(float left, float top, float width, float height, HDC device);
    PixelPlace PlaceOf(float x, float y);
    Result PutScale(float* field, float value);

    // Members' own.
    bool LiesOnItsSide() const;
    Result MakeBitmap(float width, float height, int16_t bits, int32_t memoryType, const Array* data,
                      int32_t size, int16_t* result);
    ReturnCode RecordBounds(RECT* bounds);
    template <typename T> Result PutField(T BitmapHandle::*field, T value, int32_t change);
    Result PutFlag(uint32_t flag, int16_t value, int32_t change);
    Result GetPoint(Values<Point>& points, int32_t index, float Point::*coordinate, float* value);
    Result PutPoint(Values<Point>& points, int32_t index, float Point::*coordinate, float value);
    Result PutCount(Values<Point>& points, int32_t count);
    bool ToPixels(Values<Point>& points, Values<POINT>* pixels);
    template <typename T, typename Body> Result LevelValue(T* value, Body body);
    template <typename Body> Result LevelEdit(int16_t* result, Body body);
    ReturnCode PutLevelWindow(int32_t lowBit, int32_t highBit);
    ReturnCode PutLevel(int32_t index, const RGBQUAD& entry);
    ReturnCode ScanValues(int32_t* smallest, int32_t* largest);
    ReturnCode ScanBits(uint32_t* bits);
    void ReleaseContext();
    template <typename Body> Result ReplaceAll(int16_t* result, Body body);
    ReturnCode UserBytes(const Array& data, int32_t size, void** bytes, size_t* count);

    Face& face_;
    BitmapHandle current_{};
    BitmapHandle stored_{}; // the record as it was last stored in its item, or read from there
    TokenBlock token_;
    int16_t eventsCounter_ = 0;
    BitmapList list_ = nullptr;
    bool ownList_ = false;   // the object made the list
    bool listShown_ = false; // and has given its handle away
    int16_t listIndex_ = 0;
    HDC bitmapContext_ = nullptr;
    int16_t contextCount_ = 0;
    BitmapHandle alpha_{};
    TokenBlock alphaToken_;
    uint32_t listCount_ = 0;
    bool enableMethodErrors_ = true;
    bool refBitmap_ = false;
    bool refBitmapList_ = true;
    Scale scale_;
    int32_t minVal_ = 0;
    int32_t maxVal_ = 0;
    int16_t minBit_ = 0;
    int16_t maxBit_ = 0;
    Values<Point> polygon_;
    Values<Point> curve_;
    Values<POINT> bezier_; // pixels
    int32_t curveType_ = CURVE_BEZIER;
    double curveTension_ = 0;
    int32_t curveClose_ = CURVE_NO_CLOSE;
    int32_t notifyReserved1_ = 0;
    int32_t notifyReserved2_ = 0;
    int32_t changeInfoType_ = 0;
    unsigned char changeInfoPair_[20] = {};  // of types 1 and 5
    unsigned char changeInfoWords_[16] = {}; // of type 2
    ChangeCallback changeCallback_ = nullptr;
    bool readOnlyList_ = false; // the list is somebody else's
    Values<float> segments_;    // that the last member gave out
    unsigned char pixelBytes_[8] = {};
};

} // namespace zkr::automation
