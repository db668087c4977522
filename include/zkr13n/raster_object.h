/*
 * The raster object: one working bitmap and one list of bitmaps behind one object, with coordinates in scale units and
 * bitmaps as handles. On Windows it is an Automation object, which clients create as "ZIRCRaster.ZIRCRaster" and whose
 * members its type library tells; elsewhere it is the C++ class here, with the same members in the same order.
 *
 * What the members have in common:
 *
 *   - They return 0, or for a code c that is a failure 0x800A0000 | (20000 - c): -13 gives 0x800A4E2D. LastErrorText
 *     then has the message. With EnableMethodErrors false they return 0 whatever happens.
 *   - result, where there is one, gets 0 or the number 20000 - c. It may be null. Other outputs are 0 after a failure;
 *     a null one is -13.
 *   - Truth values are -1 for true and 0 for false; any other number is taken as true.
 *   - Places and lengths are in the units of ScaleMode, by the resolution of the screen. Places count from the upper
 *     left corner of the picture as the viewer sees it.
 *   - Members that read or change the bitmap fail with -2 while there is none, and between GetBitmapDC and
 *     ReleaseBitmapDC. Members that make one, or work on the list, fail with -2 in the latter case alone.
 *   - An index outside its range is -13. What is named Z_... fails with the codes of the function behind it.
 *   - A change of the bitmap is told to the sinks, but for failures.
 *
 * An object belongs to one thread at a time; different threads use different objects freely.
 */
#ifndef ZKR13N_RASTER_OBJECT_H
#define ZKR13N_RASTER_OBJECT_H

#include "raster_values.h"

#ifndef _WIN32

#ifdef __cplusplus

/* 0, or 0x800A0000 | (20000 - code). */
typedef int32_t ZResult;

/* Types of a ZVariant. */
enum {
    Z_VARIANT_EMPTY = 0,
    Z_VARIANT_FLOATS = 0x2004,
    Z_VARIANT_SIGNED_BYTES = 0x2010,
    Z_VARIANT_BYTES = 0x2011,
    Z_VARIANT_BY_REFERENCE = 0x4000 /* with one of the two above: bytes to be used where they lie */
};

/* An array. What the object gives out stays valid until its next call. */
typedef struct ZVariant {
    int32_t Type;  /* Z_VARIANT_... */
    int32_t Count; /* elements */
    void* Data;    /* the first of them */
} ZVariant;

/* What an object tells of its bitmap. A sink may take itself away, call the object and release it meanwhile. */
struct ZRasterEvents {
    /* The bitmap has changed: CHANGE_..., and two words, 0 unless NotifyChange told them. */
    virtual void Change(int32_t change, int32_t reserved1, int32_t reserved2) = 0;
    /* The bitmap's region has changed. */
    virtual void RgnChange() = 0;

  protected:
    ~ZRasterEvents() {}
};

/* The object. */
struct IZIRCRaster {
    /* Adds a reference, takes one; the number of those left. With the last one the object ends. */
    virtual uint32_t AddRef() = 0;
    virtual uint32_t Release() = 0;
    /* Adds a sink, which is to live until it is taken away; cookie tells it apart, 1 and more. -13 for null. */
    virtual ZResult AdviseSink(ZRasterEvents* sink, uint32_t* cookie) = 0;
    /* Takes a sink away. -13 for a cookie that is none. */
    virtual ZResult UnadviseSink(uint32_t cookie) = 0;
    /* The message of the last failure that a member returned, "" when there was none; valid until the next one. */
    virtual const char* LastErrorText() = 0;

    /* Bitmap and list */

    /* The working bitmap as the handle of a BitmapToken, always the same one; 0 when there is none. A
       put frees the bitmap there is and then copies the other object's, or with RefBitmap takes it
       over; 0 leaves none. The object's own handle changes nothing. A bad handle fails whatever
       EnableMethodErrors says. */
    virtual ZResult get_Bitmap(intptr_t* value) = 0;
    virtual ZResult put_Bitmap(intptr_t value) = 0;
    /* The list behind the object as a BitmapList of lists.h. A put empties the object's own list and
       then copies the items of the other one, or with RefBitmapList moves them; 0 leaves an empty list.
       A read-only object takes the handle as it is. */
    virtual ZResult get_BitmapList(intptr_t* value) = 0;
    virtual ZResult put_BitmapList(intptr_t value) = 0;
    /* True, as at first: failures are results. False: members give 0, and only the short result tells. */
    virtual ZResult get_EnableMethodErrors(int16_t* value) = 0;
    virtual ZResult put_EnableMethodErrors(int16_t value) = 0;
    /* Whether a bitmap that is handed to the object is taken over, without a copy. False at first. */
    virtual ZResult get_RefBitmap(int16_t* value) = 0;
    virtual ZResult put_RefBitmap(int16_t value) = 0;
    /* Whether items of a list that is handed to the object are moved. True at first. */
    virtual ZResult get_RefBitmapList(int16_t* value) = 0;
    virtual ZResult put_RefBitmapList(int16_t value) = 0;
    /* Frees the working bitmap and takes it out of the list. */
    virtual ZResult Free(int16_t* result) = 0;

    /* Scale */

    /* What scale units are: SCALEMODE_..., SCALEMODE_PIXEL at first; all but SCALEMODE_MAX can be set.
       In SCALEMODE_USER ClientX pixels are ScaleWidth units from ScaleLeft on, and so with ClientY. */
    virtual ZResult get_ScaleMode(int32_t* value) = 0;
    virtual ZResult put_ScaleMode(int32_t value) = 0;
    /* The units of the first row; a put sets SCALEMODE_USER, as it does with the next three. */
    virtual ZResult get_ScaleTop(float* value) = 0;
    virtual ZResult put_ScaleTop(float value) = 0;
    /* The units of the first column. */
    virtual ZResult get_ScaleLeft(float* value) = 0;
    virtual ZResult put_ScaleLeft(float value) = 0;
    /* The units in ClientY rows. */
    virtual ZResult get_ScaleHeight(float* value) = 0;
    virtual ZResult put_ScaleHeight(float value) = 0;
    /* The units in ClientX columns. */
    virtual ZResult get_ScaleWidth(float* value) = 0;
    virtual ZResult put_ScaleWidth(float value) = 0;

    /* Bitmap facts */

    /* Width as the viewer sees it, scale units. */
    virtual ZResult get_BitmapWidth(float* value) = 0;
    /* Height as the viewer sees it, scale units. */
    virtual ZResult get_BitmapHeight(float* value) = 0;
    /* Bits per pixel. */
    virtual ZResult get_BitmapBits(int16_t* value) = 0;
    /* Dots per inch. */
    virtual ZResult get_BitmapXRes(int32_t* value) = 0;
    virtual ZResult put_BitmapXRes(int32_t value) = 0;
    /* Dots per inch. */
    virtual ZResult get_BitmapYRes(int32_t* value) = 0;
    virtual ZResult put_BitmapYRes(int32_t value) = 0;
    /* GRAY_..., as Z_IsGrayScaleBitmap tells. */
    virtual ZResult get_IsGrayscale(int32_t* value) = 0;
    /* A palette entry, index 0 and more. */
    virtual ZResult get_BitmapPalette(int16_t index, uint32_t* value) = 0;
    virtual ZResult put_BitmapPalette(int16_t index, uint32_t value) = 0;

    /* Region facts */

    /* Whether the bitmap has a region. */
    virtual ZResult get_HasRgn(int16_t* value) = 0;
    /* The region's bounds, scale units; without a region the bitmap's. */
    virtual ZResult get_RgnLeft(float* value) = 0;
    /* Likewise. */
    virtual ZResult get_RgnTop(float* value) = 0;
    /* Likewise. */
    virtual ZResult get_RgnWidth(float* value) = 0;
    /* Likewise. */
    virtual ZResult get_RgnHeight(float* value) = 0;

    /* List index */

    /* The item that is the working bitmap, 0 to BitmapListCount - 1. */
    virtual ZResult get_BitmapListIndex(int16_t* value) = 0;
    virtual ZResult put_BitmapListIndex(int16_t value) = 0;
    /* The number of items. */
    virtual ZResult get_BitmapListCount(int32_t* value) = 0;

    /* Transparency and alpha */

    /* Whether BitmapTransparentColor applies. */
    virtual ZResult get_BitmapEnableTransparency(int16_t* value) = 0;
    virtual ZResult put_BitmapEnableTransparency(int16_t value) = 0;
    /* The transparent colour. */
    virtual ZResult get_BitmapTransparentColor(uint32_t* value) = 0;
    virtual ZResult put_BitmapTransparentColor(uint32_t value) = 0;
    /* The bitmap's alpha as the handle of a gray bitmap, which stays the object's and good until the
       next get or put; put takes the handle of a gray bitmap, as Z_SetBitmapAlpha does. */
    virtual ZResult get_BitmapAlpha(intptr_t* value) = 0;
    virtual ZResult put_BitmapAlpha(intptr_t value) = 0;

    /* Value range */

    /* The smallest value that the last GetMinMaxVal found. */
    virtual ZResult get_MinVal(int32_t* value) = 0;
    /* The largest value that the last GetMinMaxVal found. */
    virtual ZResult get_MaxVal(int32_t* value) = 0;
    /* The lowest bit that the last GetMinMaxBits found. */
    virtual ZResult get_MinBit(int16_t* value) = 0;
    /* The highest bit that the last GetMinMaxBits found. */
    virtual ZResult get_MaxBit(int16_t* value) = 0;

    /* Pixel */

    /* The colour at a place as the viewer sees it, Z_NO_COLOR outside the bitmap. A value with bit 26
       set is a gray value of 16 bits (pixels.h). */
    virtual ZResult get_Pixel(float x, float y, uint32_t* value) = 0;
    virtual ZResult put_Pixel(float x, float y, uint32_t value) = 0;

    /* Polygon */

    /* The corners for SetRgnPolygon, 0 and more; new ones are at 0, 0. */
    virtual ZResult get_PolygonSize(int32_t* value) = 0;
    virtual ZResult put_PolygonSize(int32_t value) = 0;
    /* A corner, scale units. */
    virtual ZResult get_PolygonX(int32_t index, float* value) = 0;
    virtual ZResult put_PolygonX(int32_t index, float value) = 0;
    /* Likewise. */
    virtual ZResult get_PolygonY(int32_t index, float* value) = 0;
    virtual ZResult put_PolygonY(int32_t index, float value) = 0;

    /* Capability */

    /* Unlocks a capability, Z_SUPPORT_... of locks.h, by any text but the empty one. */
    virtual ZResult UnlockSupport(int32_t support, const char* key, int16_t* result) = 0;
    /* Whether a capability is locked; true for a number above 31. */
    virtual ZResult IsSupportLocked(int32_t support, int16_t* locked) = 0;

    /* Region edits */

    /* Takes the region away. */
    virtual ZResult FreeRgn(int16_t* result) = 0;

    /* List edits */

    /* Removes items and frees them. */
    virtual ZResult DeleteBitmapListItems(int16_t index, int32_t count, int16_t* result) = 0;

    /* Pictures */

    /* Makes a picture object of the system. */
    virtual ZResult GetPicture(intptr_t context, intptr_t* picture) = 0;
    /* Replaces the list by the bitmap of a picture object. */
    virtual ZResult SetPicture(intptr_t picture, int16_t* result) = 0;

    /* Creation */

    /* Replaces the list by a blank bitmap, view VIEW_BOTTOM_LEFT. */
    virtual ZResult CreateBitmap(float width, float height, int16_t bits, int16_t* result) = 0;

    /* Device context */

    /* Gives a device context that draws into the bitmap. Until each call is answered by ReleaseBitmapDC
       the members of the bitmap fail with -2. */
    virtual ZResult GetBitmapDC(intptr_t* context) = 0;
    /* Takes one GetBitmapDC back. */
    virtual ZResult ReleaseBitmapDC(int16_t* result) = 0;

    /* Clipboard */

    /* Copies the bitmap to the clipboard in the forms that flags name, COPY_.... */
    virtual ZResult Copy(intptr_t window, int16_t flags, int16_t* result) = 0;
    /* Replaces the list by what the clipboard holds; with PASTE_ISREADY only tells whether it holds
       something, by success or 20000. */
    virtual ZResult Paste(intptr_t window, int16_t flags, int16_t* result) = 0;

    /* Exchange */

    /* Replaces the list by a device-independent bitmap in a global block, which stays the caller's. */
    virtual ZResult SetDIB(intptr_t dib, int16_t* result) = 0;
    /* Replaces the list by a bitmap of the platform; all handles stay the caller's. */
    virtual ZResult SetDDB(intptr_t context, intptr_t bitmap, intptr_t palette, int16_t* result) = 0;
    /* Gives a device-independent bitmap in a global block that is the caller's to free. */
    virtual ZResult GetDIB(intptr_t* dib) = 0;
    /* Gives a bitmap of the platform that is the caller's to delete. */
    virtual ZResult GetDDB(intptr_t context, intptr_t* bitmap) = 0;
    /* Replaces the list by a part of what a device shows, in scale units by that device's resolution; 0
       is the screen. */
    virtual ZResult Capture(intptr_t context, float left, float top, float width, float height,
                            int16_t* result) = 0;

    /* List insert */

    /* Inserts a copy of another object's bitmap, or with RefBitmap that bitmap itself. A negative
       index, or one beyond the end, appends. */
    virtual ZResult InsertBitmapListItem(int16_t index, intptr_t bitmap, int16_t* result) = 0;

    /* Ranges */

    /* Finds MinVal and MaxVal: of gray order the values in the window, of other pixels their gray, of
       16 bits for 48 and 64 bits per pixel. A range that a gray bitmap's record tells already is taken. */
    virtual ZResult GetMinMaxVal(int16_t* result) = 0;
    /* Finds MinBit and MaxBit, the lowest and the highest bit that any pixel of a gray bitmap of 12 or
       16 bits has set. */
    virtual ZResult GetMinMaxBits(int16_t* result) = 0;

    /* Regions */

    /* Deletes a region of the platform. */
    virtual ZResult DeleteRgnHandle(intptr_t region, int16_t* result) = 0;
    /* Counts the region's pixels. */
    virtual ZResult GetRgnArea(int32_t* area) = 0;
    /* Gives the region as a region of the platform that is the caller's to delete. */
    virtual ZResult GetRgnHandle(intptr_t* region) = 0;
    /* Whether a place lies in the region. */
    virtual ZResult IsPtInRgn(float x, float y, int16_t* inside) = 0;
    /* Moves the region to the right and down, as the viewer sees it. */
    virtual ZResult OffsetRgn(float x, float y, int16_t* result) = 0;
    /* Sets the region by the pixels of one colour. All members that set it merge it with the present
       one as mode tells, Z_RGN_... of region.h. */
    virtual ZResult SetRgnColor(uint32_t value, int32_t mode, int16_t* result) = 0;
    /* Sets the region by a region of the platform, which stays the caller's; 0 takes the region away. */
    virtual ZResult SetRgnHandle(intptr_t region, int32_t mode, int16_t* result) = 0;
    /* Sets the region by the ellipse in a rectangle. */
    virtual ZResult SetRgnEllipse(float left, float top, float width, float height, int32_t mode,
                                  int16_t* result) = 0;
    /* Sets the region by a rectangle. */
    virtual ZResult SetRgnRect(float left, float top, float width, float height, int32_t mode,
                               int16_t* result) = 0;
    /* Sets the region by a rectangle with round corners. */
    virtual ZResult SetRgnRoundRect(float left, float top, float width, float height, float ellipseWidth,
                                    float ellipseHeight, int32_t mode, int16_t* result) = 0;
    /* Sets the region by the polygon of PolygonX and PolygonY, Z_POLY_.... */
    virtual ZResult SetRgnPolygon(int32_t fillMode, int32_t mode, int16_t* result) = 0;
    /* Sets the region by the pixels of nearly one colour that hang together around a place. */
    virtual ZResult SetRgnMagicWand(float x, float y, int16_t tolerance, int32_t mode, int16_t* result) = 0;

    /* Client extent */

    /* The columns that ScaleWidth units stand for, 100 at first. */
    virtual ZResult get_ClientX(int32_t* value) = 0;
    virtual ZResult put_ClientX(int32_t value) = 0;
    /* The rows that ScaleHeight units stand for, 100 at first. */
    virtual ZResult get_ClientY(int32_t* value) = 0;
    virtual ZResult put_ClientY(int32_t value) = 0;

    /* List ownership */

    /* Frees all items of the list. */
    virtual ZResult FreeList(int16_t* result) = 0;
    /* Makes the first item of the list the working bitmap, after the list was changed from outside. */
    virtual ZResult NewList(int16_t* result) = 0;
    /* Stores the working bitmap's record in the list, after it was changed from outside. */
    virtual ZResult PutInList(int16_t* result) = 0;

    /* Events */

    /* True adds 1 to a counter and false subtracts 1; the result is its value. Events go out while it
       is 0, so that true comes before a batch of changes and false after it. */
    virtual ZResult EnableChangeEvents(int16_t enable, int16_t* result) = 0;
    /* Tells the object that its bitmap was changed from outside: RASTEREVENT_.... With
       RASTEREVENT_CHANGED events get the other three values, and without bit 7 of modifyFlags the
       record is stored in the list. */
    virtual ZResult NotifyChange(int32_t notification, int32_t modifyFlags, int32_t reserved1,
                                 int32_t reserved2) = 0;

    /* Level table */

    /* Entries of the level table (levels.h). Its members fail with -143 while the document capability
       is locked. */
    virtual ZResult get_LevelLUTLength(int32_t* value) = 0;
    /* An entry; the first put makes a table for the bits from LevelLowBit to LevelHighBit and activates
       it. */
    virtual ZResult get_LevelLUT(int32_t index, uint32_t* value) = 0;
    virtual ZResult put_LevelLUT(int32_t index, uint32_t value) = 0;
    /* The lowest bit that the table is for. */
    virtual ZResult get_LevelLowBit(int16_t* value) = 0;
    virtual ZResult put_LevelLowBit(int16_t value) = 0;
    /* The highest bit that the table is for. */
    virtual ZResult get_LevelHighBit(int16_t* value) = 0;
    virtual ZResult put_LevelHighBit(int16_t value) = 0;
    /* Fills the level table, as the function of that name does. */
    virtual ZResult WindowLevelFillLUT(uint32_t first, uint32_t second, int32_t low, int32_t high,
                                       int16_t lowBit, int16_t highBit, int32_t minimum, int32_t maximum,
                                       int16_t inside, int16_t* result) = 0;

    /* Animation frame */

    /* The frame's place on the canvas, scale units. */
    virtual ZResult get_BitmapLeft(float* value) = 0;
    virtual ZResult put_BitmapLeft(float value) = 0;
    /* Likewise. */
    virtual ZResult get_BitmapTop(float* value) = 0;
    virtual ZResult put_BitmapTop(float value) = 0;
    /* Milliseconds that the frame stays. */
    virtual ZResult get_BitmapDelay(int32_t* value) = 0;
    virtual ZResult put_BitmapDelay(int32_t value) = 0;
    /* What happens to the frame when the next one comes: ANIMATIONDISPOSAL_.... */
    virtual ZResult get_BitmapDisposalMethod(int32_t* value) = 0;
    virtual ZResult put_BitmapDisposalMethod(int32_t value) = 0;

    /* More exchange and regions */

    /* As GetDIB, with the header that DIB_... names. */
    virtual ZResult GetDIB2(int32_t type, intptr_t* dib) = 0;
    /* Sets the region by the pixels whose red, green and blue each lie between two bounds. */
    virtual ZResult SetRgnColorRGBRange(uint32_t lower, uint32_t upper, int32_t mode, int16_t* result) = 0;
    /* Likewise for hue, saturation and value, 0x00VVSSHH. */
    virtual ZResult SetRgnColorHSVRange(int32_t lower, int32_t upper, int32_t mode, int16_t* result) = 0;

    /* Change information */

    /* Keeps what a change is about: of types 1 and 5 bytes 8 to 27 of the record at an address, of type
       2 bytes 28 to 43, of 3 and 4 the type alone. The result is 1, or 0 for another type and for no
       record. */
    virtual ZResult SetChangeInfo(int32_t type, intptr_t info, int16_t* result) = 0;
    /* Writes these bytes back. The result is likewise 1 or 0. */
    virtual ZResult GetChangeInfo(int32_t type, intptr_t info, int16_t* result) = 0;

    /* Curve */

    /* The points for SetRgnCurve, 0 and more; new ones are at 0, 0. */
    virtual ZResult get_CurveSize(int32_t* value) = 0;
    virtual ZResult put_CurveSize(int32_t value) = 0;
    /* What the points are: CURVE_.... */
    virtual ZResult get_CurveType(int32_t* value) = 0;
    virtual ZResult put_CurveType(int32_t value) = 0;
    /* How far a spline swings out, 0 to 1. */
    virtual ZResult get_CurveTension(double* value) = 0;
    virtual ZResult put_CurveTension(double value) = 0;
    /* The ends of a spline: CURVE_NO_CLOSE and following. */
    virtual ZResult get_CurveClose(int32_t* value) = 0;
    virtual ZResult put_CurveClose(int32_t value) = 0;
    /* The points that the last CurveToBezier made. */
    virtual ZResult get_BezierSize(int32_t* value) = 0;
    /* A point, scale units. */
    virtual ZResult get_CurveX(int32_t index, float* value) = 0;
    virtual ZResult put_CurveX(int32_t index, float value) = 0;
    /* Likewise. */
    virtual ZResult get_CurveY(int32_t index, float* value) = 0;
    virtual ZResult put_CurveY(int32_t index, float value) = 0;
    /* A point that CurveToBezier made, scale units. */
    virtual ZResult get_BezierX(int32_t index, float* value) = 0;
    /* Likewise. */
    virtual ZResult get_BezierY(int32_t index, float* value) = 0;
    /* Sets the region by the inside of the curve. */
    virtual ZResult SetRgnCurve(int32_t fillMode, int32_t mode, int16_t* result) = 0;
    /* Brings the curve into Bezier form. */
    virtual ZResult CurveToBezier(int16_t* result) = 0;

    /* Misc */

    /* Whether pixel values are signed. */
    virtual ZResult get_IsSigned(int16_t* value) = 0;
    virtual ZResult put_IsSigned(int16_t value) = 0;
    /* Bytes of the bitmap's data. */
    virtual ZResult get_BitmapSize(int32_t* value) = 0;
    /* Gives the runs of the region in one row: floats, start and end of each. A bitmap that is neither
       in VIEW_TOP_LEFT nor VIEW_BOTTOM_LEFT is brought to the former. */
    virtual ZResult GetBitmapClipSegments(float y, ZVariant* segments) = 0;
    /* The bytes that hold the pixel at a place (Z_GetPixelData); a put may have more. */
    virtual ZResult get_PixelData(float x, float y, ZVariant* value) = 0;
    virtual ZResult put_PixelData(float x, float y, const ZVariant& value) = 0;
    /* RGN_EXPAND adds all pixels within size columns and rows of the region; RGN_CONTRACT keeps those
       whose whole such neighbourhood lies in region and bitmap. */
    virtual ZResult ResizeRgn(int32_t mode, float size, int16_t* result) = 0;
    /* How the data is held: COMP_... of compressed_rows.h. */
    virtual ZResult get_BitmapCompression(int32_t* value) = 0;
    /* Whether the list is somebody else's, who frees it. */
    virtual ZResult get_ReadOnlyBitmapList(int16_t* value) = 0;
    virtual ZResult put_ReadOnlyBitmapList(int16_t value) = 0;
    /* The object itself, with a reference added. */
    virtual ZResult GetInterfacePointer(IZIRCRaster** raster) = 0;
    /* Replaces the list by a bitmap on bytes of the caller's, or on none. An array by reference is used
       where it lies; one by value is copied. A size of 0 is the array's. */
    virtual ZResult CreateUserBitmap(float width, float height, int16_t bits, const ZVariant& data,
                                     int32_t size, int16_t* result) = 0;
    /* Points a bitmap of CreateUserBitmap at other bytes, likewise. */
    virtual ZResult SetBitmapDataPointer(const ZVariant& data, int32_t size, int16_t* result) = 0;

  protected:
    ~IZIRCRaster() {}
};

#else
struct IZIRCRaster;
#endif

Z_BEGIN_DECLS

/*
 * Makes a raster object.
 *
 * raster    out: the object, with one reference
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for null; Z_ERROR_MEMORY, with raster null.
 */
Z_API ReturnCode Z_CALL Z_CreateRasterObject(struct IZIRCRaster** raster);

Z_END_DECLS

#endif

#endif
