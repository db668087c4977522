/*
 * ReturnCode, the result of nearly every function, and its messages.
 */
#ifndef ZKR13N_CODES_H
#define ZKR13N_CODES_H

#include "platform_types.h"

Z_BEGIN_DECLS

/*
 * Signed result: 1 is success, 0 and negative values are failures. The row functions return a count of bytes
 * on success. A code that a callback returns to stop an operation is passed through unchanged.
 */
typedef int32_t ReturnCode;

/* The codes that this library itself returns. Z_GetErrorText knows the whole family's. */
enum {
    Z_SUCCESS = 1,
    Z_ERROR_GENERAL = 0,
    Z_ERROR_MEMORY = -1,
    Z_ERROR_BITMAP = -2,
    Z_ERROR_SEEK = -4,
    Z_ERROR_WRITE = -5,
    Z_ERROR_READ = -7,
    Z_ERROR_DIMENSIONS = -11,
    Z_ERROR_ARGUMENT = -13,
    Z_ERROR_FEATURE = -16,
    Z_ERROR_BITS_PER_PIXEL = -27,
    Z_ERROR_DOCUMENT_LOCKED = -143,
    Z_ERROR_DISK_SPACE = -295,
    Z_ERROR_CLIPBOARD_COPY = -298,
    Z_ERROR_COLOUR_FILTER = -356,
    Z_ERROR_FAX_FILTER = -357,
    Z_ERROR_CLIPBOARD = -514,
    Z_ERROR_CLIPBOARD_EMPTY = -515,
    Z_ERROR_EXTENDED_GRAY_LOCKED = -804
};

/*
 * The message of a code.
 *
 * code    a ReturnCode
 *
 * Returns a constant text, or null for a code without a message (code 1 and every positive value among them).
 * The text belongs to the library.
 */
Z_API const char* Z_CALL Z_GetErrorText(ReturnCode code);

Z_END_DECLS

#endif
