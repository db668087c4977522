/*
 * The file family. Every function that works on an open file takes a trailing user-data word and ignores it.
 */
#ifndef ZKR13N_FILES_H
#define ZKR13N_FILES_H

#include "codes.h"

Z_BEGIN_DECLS

/* Attribute bits of Z_OsCreat. */
enum { Z_CREATE_READ_ONLY = 1, Z_CREATE_HIDDEN = 2, Z_CREATE_SYSTEM = 4, Z_CREATE_DELETE_ON_CLOSE = 8 };

Z_API intptr_t Z_CALL Z_OsCreat(const char* name, int32_t attributes);
Z_API intptr_t Z_CALL Z_OsOpen(const char* name, int32_t flags, int32_t share, intptr_t userData);
Z_API int32_t Z_CALL Z_OsRead(intptr_t handle, void* buffer, uint32_t count, intptr_t userData);
Z_API int32_t Z_CALL Z_OsWrite(intptr_t handle, const void* buffer, uint32_t count, intptr_t userData);
Z_API intptr_t Z_CALL Z_OsSeek(intptr_t handle, intptr_t offset, int32_t origin, intptr_t userData);
Z_API int32_t Z_CALL Z_OsClose(intptr_t handle, intptr_t userData);
Z_API int32_t Z_CALL Z_OsDelete(const char* name);
Z_API int32_t Z_CALL Z_OsGetTempName(char* buffer);

Z_END_DECLS

#endif
