/*
 * The two allocators of the library. Z_Malloc and its relatives serve working buffers; the Z_Os family serves
 * blocks that cross the interface. A block is released by the family that made it.
 */
#ifndef ZKR13N_ALLOCATION_H
#define ZKR13N_ALLOCATION_H

#include "codes.h"

Z_BEGIN_DECLS

Z_API void* Z_CALL Z_Malloc(size_t size);
Z_API void Z_CALL Z_Free(void* pointer);
Z_API void* Z_CALL Z_Realloc(void* pointer, size_t size);
Z_API void* Z_CALL Z_Calloc(size_t count, size_t size);
Z_API char* Z_CALL Z_Strtok(char* string, const char* delimiters);

Z_API void* Z_CALL Z_OsAlloc(size_t size);
Z_API void* Z_CALL Z_OsAllocInit(size_t size, int32_t clear);
Z_API void* Z_CALL Z_OsReAlloc(void* pointer, size_t size);
Z_API void* Z_CALL Z_OsReAllocInit(void* pointer, size_t size);
Z_API int32_t Z_CALL Z_OsFree(void* pointer);

Z_END_DECLS

#endif
