/*
 * The values that go through the members of the raster object (raster_object.h), and the block that a bitmap's
 * handle stands for between objects.
 */
#ifndef ZKR13N_RASTER_VALUES_H
#define ZKR13N_RASTER_VALUES_H

#include "clipboard.h"

Z_BEGIN_DECLS

/* RasterPasteConstants. */
enum {
    PASTE_DOPASTE = 0,
    PASTE_ISREADY = 16384 /* only asks */
};

/* RasterScaleModeConstants: what scale units are. */
enum {
    SCALEMODE_USER = 0,  /* of the object's own system of coordinates */
    SCALEMODE_TWIP = 1,  /* 1440 to the inch */
    SCALEMODE_POINT = 2, /* 72 to the inch */
    SCALEMODE_PIXEL = 3,
    SCALEMODE_CHAR = 4, /* 12 to the inch across, 6 down */
    SCALEMODE_INCH = 5,
    SCALEMODE_MM = 6,
    SCALEMODE_CM = 7,
    SCALEMODE_MAX = 8 /* cannot be set */
};

/* AnimationDisposalConstants. */
enum {
    ANIMATIONDISPOSAL_NONE = 0,
    ANIMATIONDISPOSAL_LEAVE = 1,
    ANIMATIONDISPOSAL_RESTOREBACKGROUND = 2,
    ANIMATIONDISPOSAL_RESTOREPREVIOUS = 3
};

/* DIBTypeConstants. */
enum { DIB_BITMAPINFOHEADER = 0, DIB_BITMAPV4HEADER = 1, DIB_BITMAPV5HEADER = 2 };

/* ProcessConstants, for programs around the object; no member takes them. */
enum {
    PROCESS_ROTATE = 1,
    PROCESS_SIZE = 2,
    PROCESS_FLIP = 3,
    PROCESS_REVERSE = 4,
    PROCESS_DESKEW = 5,
    PROCESS_RESERVED6 = 6,
    PROCESS_RESERVED7 = 7,
    PROCESS_RESERVED8 = 8,
    PROCESS_RESERVED9 = 9,
    PROCESS_RESERVED10 = 10
};

/* CurveTypeConstants. */
enum { CURVE_BEZIER = 0, CURVE_STANDAR = 1 };

/* CurveCloseConstants. */
enum { CURVE_NO_CLOSE = 0, CURVE_CLOSE = 1, CURVE_PARTIAL_CLOSE = 2 };

/* ResizeRgnConstants. */
enum { RGN_EXPAND = 1, RGN_CONTRACT = 2 };

/* RasterChangeFlags: what has changed. */
enum {
    CHANGE_NONE = 0,
    CHANGE_DIM = 1,
    CHANGE_DATA = 2,
    CHANGE_SIZE = 3,
    CHANGE_PALETTE = 4,
    CHANGE_COLOR = 6,
    CHANGE_BACKGROUND = 8,
    CHANGE_ALL = 15,
    CHANGE_ZOOM = 16,
    CHANGE_BITMAPDATAPATHDONE = 32,
    CHANGE_ANIMATION_PALETTE = 64,
    CHANGE_LIST = 128,
    CHANGE_NEW_BITMAP = 256,
    CHANGE_DESTROY = 512,
    CHANGE_UPDATELIST = 1024
};

/* RasterEventFlags: what an object is told of its bitmap. */
enum { RASTEREVENT_CHANGED = 3, RASTEREVENT_RGNCHANGED = 4 };

/*
 * What the handle of a bitmap stands for: a movable global block that begins with this record. It belongs to the
 * object that gave it out, which has one such block and frees it at its end.
 */
typedef struct BitmapToken {
    char Magic[4];        /* "zirc" */
    uint32_t BlockSize;   /* sizeof(BitmapToken): 24, or 40 with pointers of 64 bits */
    BitmapHandle* Record; /* the owner's record */
    /* Tells the owner that another object has taken the bitmap out of the record (kind 1), or that somebody has
       changed it (RASTEREVENT_...); the token may be null. May be null. */
    ReturnCode(Z_CALL* OwnerNotify)(uint32_t kind, struct BitmapToken* token, void* owner);
    void* Owner;         /* handed to OwnerNotify */
    uintptr_t OwnerUser; /* a word of the caller's: of RASTEREVENT_CHANGED what has changed */
} BitmapToken;

Z_END_DECLS

#endif
