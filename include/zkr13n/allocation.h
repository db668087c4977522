/*
 * The two allocators of the library. Z_Malloc and its relatives serve working buffers; the Z_Os family serves
 * blocks that cross the interface: palette blocks, level tables, paint tables. A block is resized and
 * released by the family that made it.
 */
#ifndef ZKR13N_ALLOCATION_H
#define ZKR13N_ALLOCATION_H

#include "codes.h"

Z_BEGIN_DECLS

/*
 * Allocates a working buffer from the run-time heap.
 *
 * size    in, bytes
 *
 * Returns the buffer, its content undefined, or null when memory is short. Release it with Z_Free.
 */
Z_API void* Z_CALL Z_Malloc(size_t size);

/*
 * Releases a working buffer.
 *
 * pointer    in: from Z_Malloc, Z_Calloc or Z_Realloc; null does nothing
 */
Z_API void Z_CALL Z_Free(void* pointer);

/*
 * Resizes a working buffer. Its content is kept up to the smaller of both sizes.
 *
 * pointer    in: from Z_Malloc, Z_Calloc or Z_Realloc; null behaves as Z_Malloc
 * size       in, bytes; 0 releases the buffer
 *
 * Returns the buffer, which may have moved. Null when memory is short, with the old buffer still valid, and
 * for a size of 0.
 */
Z_API void* Z_CALL Z_Realloc(void* pointer, size_t size);

/*
 * Allocates a working buffer of zeros.
 *
 * count    in: elements
 * size     in, bytes of an element
 *
 * Returns the buffer, or null when memory is short or count * size does not fit in a size_t.
 */
Z_API void* Z_CALL Z_Calloc(size_t count, size_t size);

/*
 * Cuts a text into tokens, one a call. Each thread has its own place in its own text.
 *
 * string        in, changed: the text for the first token; null goes on in the text of the call before. The
 *               delimiter behind a token is overwritten with a zero.
 * delimiters    in: the characters that part tokens; may differ from call to call
 *
 * Returns the token, which lies in the text, or null when there is none left.
 */
Z_API char* Z_CALL Z_Strtok(char* string, const char* delimiters);

/*
 * Allocates a block of global memory and locks it.
 *
 * size    in, bytes; 0 gives a block of one byte
 *
 * Returns the block, its content undefined, or null when memory is short. Release it with Z_OsFree.
 */
Z_API void* Z_CALL Z_OsAlloc(size_t size);

/*
 * Allocates a block of global memory and locks it, cleared on demand.
 *
 * size     in, bytes; 0 gives a block of one byte
 * clear    in: anything but 0 fills the block with zeros
 *
 * Returns the block, or null when memory is short.
 */
Z_API void* Z_CALL Z_OsAllocInit(size_t size, int32_t clear);

/*
 * Resizes a block. Its content is kept up to the smaller of both sizes; new bytes are undefined.
 *
 * pointer    in: from the Z_Os family; null behaves as Z_OsAlloc
 * size       in, bytes; 0 leaves a block of one byte
 *
 * Returns the block, which may have moved, or null when memory is short or pointer is no block; an old block
 * then stays valid.
 */
Z_API void* Z_CALL Z_OsReAlloc(void* pointer, size_t size);

/*
 * Resizes a block like Z_OsReAlloc; new bytes are zero.
 *
 * pointer    in: from the Z_Os family; null behaves as Z_OsAllocInit(size, 1)
 * size       in, bytes; 0 leaves a block of one byte
 *
 * Returns the block, which may have moved, or null when memory is short or pointer is no block; an old block
 * then stays valid.
 */
Z_API void* Z_CALL Z_OsReAllocInit(void* pointer, size_t size);

/*
 * Releases a block.
 *
 * pointer    in: from the Z_Os family; null does nothing
 *
 * Returns 0.
 */
Z_API int32_t Z_CALL Z_OsFree(void* pointer);

Z_END_DECLS

#endif
