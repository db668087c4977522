/*
 * The few types of the operating system that cross the interface of the library, and how its functions are
 * called and exported. On Windows they are the system's own; elsewhere they are declared here under the same
 * names, with the same sizes for everything that lies in memory.
 */
#ifndef ZKR13N_PLATFORM_TYPES_H
#define ZKR13N_PLATFORM_TYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

/* The calling convention of every exported function and callback. */
#define Z_CALL __stdcall
/* Marks an exported function. The names of the DLL come from its definition file. */
#define Z_API

#else

#define Z_CALL
#define Z_API __attribute__((visibility("default")))

/* A palette entry: four bytes, blue first. */
typedef struct tagRGBQUAD {
    uint8_t rgbBlue;     /* 0 to 255 */
    uint8_t rgbGreen;    /* likewise */
    uint8_t rgbRed;      /* likewise */
    uint8_t rgbReserved; /* travels with the entry */
} RGBQUAD;

/* A pixel's place. */
typedef struct tagPOINT {
    int32_t x; /* column */
    int32_t y; /* row */
} POINT;

/* A rectangle; right and bottom are not part of it. */
typedef struct tagRECT {
    int32_t left;   /* the first column */
    int32_t top;    /* the first row */
    int32_t right;  /* behind the last column */
    int32_t bottom; /* behind the last row */
} RECT;

/* The form of a bitmap outside the library; negative heights count rows from the top down. */
typedef struct tagBITMAPINFOHEADER {
    uint32_t biSize;         /* bytes of this record: 40 */
    int32_t biWidth;         /* pixels */
    int32_t biHeight;        /* rows */
    uint16_t biPlanes;       /* 1 */
    uint16_t biBitCount;     /* bits of a pixel */
    uint32_t biCompression;  /* how rows are stored, 0 for plain ones */
    uint32_t biSizeImage;    /* bytes of all rows, may be 0 where they are plain */
    int32_t biXPelsPerMeter; /* resolution across */
    int32_t biYPelsPerMeter; /* resolution down */
    uint32_t biClrUsed;      /* colours, 0 for all that the depth can have */
    uint32_t biClrImportant; /* not looked at */
} BITMAPINFOHEADER;

/* Handles are opaque and pointer-sized; a handle is never an address that a caller may follow. */
typedef void* HANDLE;
typedef HANDLE HGLOBAL;
typedef struct HPALETTE__* HPALETTE;
typedef struct HDC__* HDC;
typedef struct HRGN__* HRGN;
typedef struct HBITMAP__* HBITMAP;
typedef struct HWND__* HWND;

#endif

/* Around the declarations of functions, which have C linkage. */
#ifdef __cplusplus
#define Z_BEGIN_DECLS extern "C" {
#define Z_END_DECLS }
#else
#define Z_BEGIN_DECLS
#define Z_END_DECLS
#endif

#endif
