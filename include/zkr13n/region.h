/*
 * RegionHandle, the region of interest of one bitmap: for each row the runs of pixels that belong to it.
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
    int32_t XNumerator;
    int32_t XDenominator;
    int32_t YNumerator;
    int32_t YDenominator;
    int32_t XOffset;
    int32_t YOffset;
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
    int32_t Top;
    int32_t Right;          /* not included */
    int32_t Bottom;         /* not included */
    uint32_t RowTableBytes; /* 8 for each row from Top to Bottom */
    RegionRowEntry* RowTable;
    uint32_t SegmentBytes;
    int32_t* Segments; /* the end points of all rows */
} RegionHandle;

Z_END_DECLS

#endif
