/*
 * Regions from shapes: rectangles, ellipses, polygons, curves, and regions of the platform. A pixel belongs to a shape
 * where its centre lies inside; a shape without a pixel is an empty region.
 *
 * What the functions that set a region have in common:
 *
 * bitmap    in, changed: its region becomes what mode makes of the present one and the new one. Its storage is not
 *           looked at.
 * xform     in, may be null: the coordinates in which the shape is given
 * mode      in: Z_RGN_...
 *
 * Without RegionUnclipped the result is cut to the bitmap. On failure the present region stays, and Z_ERROR_ARGUMENT is
 * returned for another mode and for a transform without a view or with a zero denominator, and where a shape that is
 * moved or flipped would leave 32 bits; Z_ERROR_MEMORY when memory is short or the platform makes no such region.
 */
#ifndef ZKR13N_REGION_SHAPES_H
#define ZKR13N_REGION_SHAPES_H

#include "region.h"

Z_BEGIN_DECLS

/* Which parts of a polygon that crosses itself are inside. */
enum {
    Z_POLY_WINDING = 0,  /* those that the outline goes round, counted with their direction */
    Z_POLY_ALTERNATE = 1 /* those that an odd number of edges separates from the outside */
};

/* What the points of a curve are. */
enum {
    Z_CURVE_BEZIER = 0,  /* control points: an end, then two controls and an end for each segment */
    Z_CURVE_CARDINAL = 1 /* points of a spline that goes through them */
};

/* The ends of a cardinal spline. */
enum {
    Z_CURVE_OPEN = 0,          /* from the second point to the last but one */
    Z_CURVE_CLOSED = 1,        /* through all points back to the one where it began */
    Z_CURVE_CLOSED_ON_LAST = 2 /* from the first point through all others to the last */
};

#pragma pack(push, 1)
/* A curve; the fields follow each other without gaps. */
typedef struct Curve {
    uint32_t StructSize; /* sizeof(Curve): 36, or 40 with pointers of 64 bits */
    uint32_t CurveType;  /* Z_CURVE_BEZIER or Z_CURVE_CARDINAL */
    int32_t PointCount;  /* in Points */
    const POINT* Points; /* the ends and controls, or the points that it goes through */
    uint32_t FillMode;   /* Z_POLY_... */
    double Tension;      /* 0 to 1: how far a spline swings out; 0 gives straight lines */
    uint32_t Close;      /* Z_CURVE_OPEN, Z_CURVE_CLOSED or Z_CURVE_CLOSED_ON_LAST */
    uint32_t Reserved;   /* not read */
} Curve;
#pragma pack(pop)

/*
 * Sets the region by a rectangle.
 *
 * rectangle    in: an inverted one is empty
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null rectangle and as told above; Z_ERROR_BITMAP for a null bitmap;
 * Z_ERROR_MEMORY.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnRect(BitmapHandle* bitmap, const RegionXform* xform,
                                           const RECT* rectangle, uint32_t mode);

/*
 * Sets the region by the ellipse in a rectangle.
 *
 * rectangle    in: an inverted one is empty
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null rectangle or bitmap and as told above; Z_ERROR_MEMORY.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnEllipse(BitmapHandle* bitmap, const RegionXform* xform,
                                              const RECT* rectangle, uint32_t mode);

/*
 * Sets the region by a rectangle with round corners.
 *
 * rectangle                      in: an inverted one is empty
 * ellipseWidth, ellipseHeight    in, pixels: of the ellipse whose quarters the corners are
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null rectangle or bitmap and as told above; Z_ERROR_MEMORY.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnRoundRect(BitmapHandle* bitmap, const RegionXform* xform,
                                                const RECT* rectangle, int32_t ellipseWidth,
                                                int32_t ellipseHeight, uint32_t mode);

/*
 * Sets the region by a polygon, which is closed from the last point to the first. One whose edges run along rows and
 * columns holds exactly the pixels between them.
 *
 * points        in: pointCount corners
 * pointCount    in: 3 and more
 * fillMode      in: Z_POLY_...
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for null points or bitmap, another fill mode, and as told above; Z_ERROR_MEMORY,
 * also for fewer points.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnPolygon(BitmapHandle* bitmap, const RegionXform* xform,
                                              const POINT* points, int32_t pointCount, uint32_t fillMode,
                                              uint32_t mode);

/*
 * Sets the region by the inside of a curve, which is closed by a straight line.
 *
 * curve    in: of Bezier form with 4 points and 3 for each further segment, where Tension and Close play no part; or a
 *          cardinal spline with 1 point and more
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null curve or bitmap, another StructSize, CurveType, FillMode, PointCount,
 * Tension or Close, null Points, a spline that leaves 32 bits, and as told above; Z_ERROR_MEMORY, also for a spline
 * without a segment.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnCurve(BitmapHandle* bitmap, const RegionXform* xform,
                                            const Curve* curve, uint32_t mode);

/*
 * Brings a cardinal spline into Bezier form. The curve goes through its points; between p1 and p2, which lie between p0
 * and p3, its controls are p1 + Tension / 3 (p2 - p0) and p2 - Tension / 3 (p3 - p1), in double precision, with
 * coordinates truncated towards zero. (E. Catmull and R. Rom, 1974, with tension.)
 *
 * curve         in: CurveType and FillMode are not looked at. PointCount is 4 and more for an open spline, else 3 and
 *               more.
 * pointCount    out: points of the Bezier form: for n points 3n - 8 if the spline is open, 3n + 1 closed, 3n - 2 closed
 *               on the last point
 * points        out, may be null: so many points
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null curve or pointCount, another StructSize or Close, fewer points, a
 * tension that is not finite, a count that leaves 32 bits, and with points for null Points and a coordinate that leaves
 * 32 bits. Nothing is written then.
 */
Z_API ReturnCode Z_CALL Z_CurveToBezier(const Curve* curve, int32_t* pointCount, POINT* points);

/*
 * Sets the region by a region of the platform.
 *
 * platformRegion    in: it stays the caller's. Null removes the bitmap's region under any mode.
 *
 * Returns Z_SUCCESS; Z_ERROR_ARGUMENT for a null bitmap, a handle that is no region, rectangles that do not lie in
 * bands, and as told above; Z_ERROR_MEMORY.
 */
Z_API ReturnCode Z_CALL Z_SetBitmapRgnHandle(BitmapHandle* bitmap, const RegionXform* xform,
                                             HRGN platformRegion, uint32_t mode);

Z_END_DECLS

#endif
