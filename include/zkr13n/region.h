/*
 * RegionHandle, the region of interest of one bitmap: for each row the runs of pixels that belong to it; and what can
 * be asked of it. A bitmap without a region counts as one whose pixels are all selected.
 */
#ifndef ZKR13N_REGION_H
#define ZKR13N_REGION_H

#include "bitmap.h"

Z_BEGIN_DECLS

/*
 * From the caller's coordinates to a bitmap's: the caller's view, a scale for each axis, and an offset in pixels. Both
 * denominators are other than 0. A null pointer stands for the bitmap's own view, unscaled and unmoved.
 */
typedef struct RegionXform {
    int32_t ViewPerspective; /* VIEW_... */
    int32_t XNumerator;      /* of the scale */
    int32_t XDenominator;    /* other than 0 */
    int32_t YNumerator;      /* likewise */
    int32_t YDenominator;    /* likewise */
    int32_t XOffset;         /* pixels, added after the scale */
    int32_t YOffset;         /* pixels */
} RegionXform;

/* One row of a region. */
typedef struct RegionRowEntry {
    uint32_t Count;  /* of the row's end points, two for each run; 0 for a row without runs */
    uint32_t Offset; /* bytes from Segments to the first of them; 0 without runs */
} RegionRowEntry;

/*
 * A region. A run is a pair of columns, the second not included; the runs of a row rise and do not touch. Rows outside
 * Top to Bottom have none. A record without rows selects nothing, which is not the same as no record. Its blocks come
 * from Z_OsAlloc and belong to it; the record belongs to the bitmap whose Region field points to it.
 */
typedef struct RegionHandle {
    HRGN PlatformRegion;       /* the region as the platform knows it, 0 until somebody needs it */
    RegionXform PlatformXform; /* that PlatformRegion was made for */
    int32_t PlatformView;      /* the bitmap's view then */
    HBITMAP MaskBitmap;        /* one bit for each pixel, 0 until somebody needs it */
    RegionXform MaskXform;     /* that MaskBitmap was made for */
    int32_t MaskView;          /* the bitmap's view then */
    int32_t Left;              /* bounds; all zero for an empty region */
    int32_t Top;               /* likewise */
    int32_t Right;             /* not included */
    int32_t Bottom;            /* not included */
    uint32_t RowTableBytes;    /* 8 for each row from Top to Bottom */
    RegionRowEntry* RowTable;  /* the rows */
    uint32_t SegmentBytes;     /* of all runs */
    int32_t* Segments;         /* the end points of all rows */
} RegionHandle;

/* How a new region is merged with the bitmap's present one, or without one with the whole bitmap. */
enum {
    Z_RGN_AND = 0,          /* what both hold */
    Z_RGN_SET = 1,          /* the new one */
    Z_RGN_ANDNOTBITMAP = 2, /* what the new one holds and the present one does not */
    Z_RGN_ANDNOTRGN = 3,    /* what the present one holds and the new one does not */
    Z_RGN_OR = 4,           /* what either holds */
    Z_RGN_XOR = 5,          /* what one of them holds alone */
    Z_RGN_SETNOT = 6        /* the whole bitmap without the new one */
};

/*
 * Says whether a bitmap has a region, which may be one that selects nothing.
 *
 * Returns 1 or 0; 0 for null.
 */
Z_API int32_t Z_CALL Z_BitmapHasRgn(const BitmapHandle* bitmap);

/*
 * Takes a bitmap's region away and releases it.
 *
 * bitmap    in, changed: with or without a region
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for null.
 */
Z_API ReturnCode Z_CALL Z_FreeBitmapRgn(BitmapHandle* bitmap);

/*
 * Copies a region.
 *
 * destination    out: the copy, overwritten without being freed. It ends with the bitmap that gets it.
 * source         in, may be null: null is copied as null
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null destination; Z_ERROR_MEMORY, with the destination as it was.
 */
Z_API ReturnCode Z_CALL Z_CopyZircRgn(RegionHandle** destination, const RegionHandle* source);

/*
 * Gives the room that Z_GetBitmapClipSegments wants.
 *
 * bitmap     in
 * maximum    out: the most end points that a row has: width of the bounds + 1, rounded down to an even number, or 2
 *            without a region
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT for a null maximum.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapClipSegmentsMax(BitmapHandle* bitmap, uint32_t* maximum);

/*
 * Gives the runs of one row.
 *
 * bitmap      in
 * row         in: any row; one outside the region has no runs
 * segments    out: pairs of columns, the second not included, from left to right. With Z_FLAG_REGION_UNCLIPPED they are
 *             cut to the bitmap. Without a region one run of the bitmap's width, for any row.
 * count       out: end points written, two for each run
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT for null segments or count.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapClipSegments(BitmapHandle* bitmap, int32_t row, int32_t* segments,
                                                uint32_t* count);

/*
 * Gives the bounds of a bitmap's region, or without one the bitmap's own rectangle.
 *
 * bitmap       in
 * xform        in, may be null: the coordinates wanted. Edges are scaled up to the next whole number (top and bottom
 *              down, but in view 2, and in view 0 of a bitmap in view 4), after the change of view and before the
 *              offsets; what leaves 32 bits stands at their end.
 * rectangle    out: all zero for an empty region without a transform
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT for a null rectangle, and for a transform
 * without a view or with a zero denominator. On failure the rectangle is not written.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapRgnBounds(BitmapHandle* bitmap, const RegionXform* xform, RECT* rectangle);

/*
 * As Z_GetBitmapRgnBounds, cut to the rectangle (0, 0, Width, Height), which is not transformed; all zero where nothing
 * is left.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapRgnBoundsClip(BitmapHandle* bitmap, const RegionXform* xform,
                                                 RECT* rectangle);

/*
 * Counts the pixels of a bitmap's region, or without one the bitmap's.
 *
 * bitmap    in
 * area      out, pixels: also those outside the bitmap; the largest number where there are more
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT for a null area.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapRgnArea(const BitmapHandle* bitmap, uint32_t* area);

/*
 * Says whether a bitmap's region, or without one the bitmap, holds a pixel.
 *
 * bitmap         in
 * row, column    in: any
 *
 * Returns 1 or 0; 0 for a null bitmap.
 */
Z_API int32_t Z_CALL Z_IsPtInBitmapRgn(BitmapHandle* bitmap, int32_t row, int32_t column);

/*
 * Gives a bitmap's region, or without one the bitmap's rectangle, as a region of the platform. It is made once and kept
 * with the region; when only the offsets of the transform change, what is kept is moved.
 *
 * bitmap            in, changed
 * xform             in, may be null: the coordinates wanted, as for Z_GetBitmapRgnBounds
 * platformRegion    out
 * owned             out: 1 where the caller has to delete it, 0 where it stays the bitmap's
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT for null outputs and a bad transform;
 * Z_ERROR_MEMORY when memory is short or the platform makes no region. On failure nothing is written.
 */
Z_API ReturnCode Z_CALL Z_IntGetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform,
                                                HRGN* platformRegion, int32_t* owned);

/*
 * As Z_IntGetBitmapRgnHandle; the region is always the caller's to delete.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null platformRegion; 0 for every failure of Z_IntGetBitmapRgnHandle;
 * Z_ERROR_MEMORY when the region cannot be copied.
 */
Z_API ReturnCode Z_CALL Z_GetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform,
                                             HRGN* platformRegion);

/*
 * Gives a bitmap's region as a region of the platform, as it falls when a part of the bitmap is drawn into a rectangle.
 *
 * bitmap                  in, changed: its storage is not looked at
 * sourceRectangle         in, may be null: the part, in rows and columns of storage; null is the whole bitmap
 * destinationRectangle    in: in a picture whose first row is the upper one; a mirrored one gives an empty region
 * platformRegion          out
 * owned                   out: 1 where the caller has to delete it, 0 where it stays the bitmap's
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT for other nulls, and a part or bitmap without
 * width or height; Z_ERROR_MEMORY. On failure nothing is written.
 */
Z_API ReturnCode Z_CALL Z_GetResizedRgnHandle(BitmapHandle* bitmap, const RECT* sourceRectangle,
                                              const RECT* destinationRectangle, HRGN* platformRegion,
                                              int32_t* owned);

/*
 * Moves a bitmap's region; a bitmap without one gets its own rectangle, moved.
 *
 * bitmap                     in, changed
 * rowOffset, columnOffset    in, pixels: down and to the right. Without Z_FLAG_REGION_UNCLIPPED the result is cut to
 *                            the bitmap.
 *
 * Returns Z_SUCCESS; Z_ERROR_BITMAP for a null bitmap; Z_ERROR_ARGUMENT when a coordinate would leave 32 bits, with the
 * region as it was; Z_ERROR_MEMORY, with the region moved but not cut.
 */
Z_API ReturnCode Z_CALL Z_OffsetBitmapRgn(BitmapHandle* bitmap, int32_t rowOffset, int32_t columnOffset);

Z_END_DECLS

#endif
