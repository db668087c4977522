/*
 * The file family. Every function that works on an open file takes a trailing user-data word and ignores it,
 * so that a host can put functions of its own in their place. An open file is a handle of the platform; -1 is
 * none.
 */
#ifndef ZKR13N_FILES_H
#define ZKR13N_FILES_H

#include "codes.h"

Z_BEGIN_DECLS

/* Attribute bits of Z_OsCreat. */
enum {
    Z_CREATE_READ_ONLY = 1,      /* open for reading only, and mark the file as read-only */
    Z_CREATE_HIDDEN = 2,         /* mark as hidden, where the platform knows that */
    Z_CREATE_SYSTEM = 4,         /* mark as a file of the system, where the platform knows that */
    Z_CREATE_DELETE_ON_CLOSE = 8 /* the file goes when it is closed */
};

/* The flags argument of Z_OsOpen: an access, and what happens to what the file holds. */
enum {
    Z_OPEN_READ = 0,
    Z_OPEN_WRITE = 1,
    Z_OPEN_READ_WRITE = 2,
    Z_OPEN_ACCESS = 3,    /* the bits that hold the access */
    Z_OPEN_CREATE = 256,  /* create the file, or empty it */
    Z_OPEN_TRUNCATE = 512 /* empty the file, which must exist */
};

/* The share argument of Z_OsOpen: what others may do meanwhile. */
enum {
    Z_SHARE_NONE = 0,
    Z_SHARE_READ = 256,
    Z_SHARE_READ_WRITE = 384 /* 128 and 256 */
};

/*
 * Creates a file, or empties an existing one, and opens it for reading and writing. Others may read and write
 * it meanwhile.
 *
 * name          in: path
 * attributes    in: Z_CREATE_... bits
 *
 * Returns the open file, or -1 on failure.
 */
Z_API intptr_t Z_CALL Z_OsCreat(const char* name, int32_t attributes);

/*
 * Opens a file.
 *
 * name        in: path
 * flags       in: an access of Z_OPEN_..., and at most one of Z_OPEN_CREATE and Z_OPEN_TRUNCATE, of which the
 * first wins. Without either the file must exist. A file that is created for reading is marked as read-only.
 * share       in: Z_SHARE_...; any other value shares nothing
 * userData    ignored
 *
 * Returns the open file, or -1 on failure.
 */
Z_API intptr_t Z_CALL Z_OsOpen(const char* name, int32_t flags, int32_t share, intptr_t userData);

/*
 * Reads from the position of an open file.
 *
 * handle      in: open file
 * buffer      out: count bytes
 * count       in, bytes; more than 0x7FFFFFFF are taken as that many
 * userData    ignored
 *
 * Returns the bytes read, fewer than count where the file ends, or -1 on failure.
 */
Z_API int32_t Z_CALL Z_OsRead(intptr_t handle, void* buffer, uint32_t count, intptr_t userData);

/*
 * Writes at the position of an open file. With a count of 0 the file ends at the position: it is cut or
 * extended.
 *
 * handle      in: open file
 * buffer      in: count bytes
 * count       in, bytes; more than 0x7FFFFFFF are taken as that many
 * userData    ignored
 *
 * Returns the bytes written, or -1 on failure.
 */
Z_API int32_t Z_CALL Z_OsWrite(intptr_t handle, const void* buffer, uint32_t count, intptr_t userData);

/*
 * Sets the position of an open file, which may lie behind its end.
 *
 * handle      in: open file
 * offset      in, bytes
 * origin      in: 0 counts from the start, 1 from the position, any other value from the end
 * userData    ignored
 *
 * Returns the new position in bytes from the start, or -1 on failure.
 */
Z_API intptr_t Z_CALL Z_OsSeek(intptr_t handle, intptr_t offset, int32_t origin, intptr_t userData);

/*
 * Closes an open file.
 *
 * handle      in: open file
 * userData    ignored
 *
 * Returns 0, or -1 on failure.
 */
Z_API int32_t Z_CALL Z_OsClose(intptr_t handle, intptr_t userData);

/*
 * Deletes a file.
 *
 * name    in: path
 *
 * Returns 0, or -1 on failure.
 */
Z_API int32_t Z_CALL Z_OsDelete(const char* name);

/*
 * Makes an empty file with a fresh name, which begins with "ZD", in the calling thread's directory for
 * temporary files (Z_SetTempDirectory).
 *
 * buffer    out: 260 bytes for the path with its zero; an empty path when the file could not be made
 *
 * Returns 0 in every case.
 */
Z_API int32_t Z_CALL Z_OsGetTempName(char* buffer);

Z_END_DECLS

#endif
