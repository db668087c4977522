/*
 * Capability locks: one process-wide table of 32 capabilities, all unlocked at start. A function that needs a
 * locked capability fails with the code that its description names. And the end of the library's work in a
 * process.
 */
#ifndef ZKR13N_LOCKS_H
#define ZKR13N_LOCKS_H

#include "codes.h"

Z_BEGIN_DECLS

/* Capability numbers. */
enum {
    Z_SUPPORT_DOCUMENT = 0,
    Z_SUPPORT_GIFLZW = 1,
    Z_SUPPORT_TIFLZW = 2,
    Z_SUPPORT_FPXEXTENSIONS = 3,
    Z_SUPPORT_OCR = 4,
    Z_SUPPORT_MULTIMEDIA = 5,
    Z_SUPPORT_MEDICAL = 6,
    Z_SUPPORT_VECTOR = 7,
    Z_SUPPORT_MEDICAL_NET = 8,
    Z_SUPPORT_BARCODES_1D = 9,
    Z_SUPPORT_BARCODES_2D_READ = 10,
    Z_SUPPORT_BARCODES_2D_WRITE = 11,
    Z_SUPPORT_BARCODES_PDF_READ = 12,
    Z_SUPPORT_BARCODES_PDF_WRITE = 13,
    Z_SUPPORT_INTERNET = 14,
    Z_SUPPORT_VECTOR_DWG = 15,
    Z_SUPPORT_VECTOR_DXF = 16,
    Z_SUPPORT_VECTOR_MISC = 17,
    Z_SUPPORT_VECTOR_ALL = 18,
    Z_SUPPORT_VECTOR_DWF = 19,
    Z_SUPPORT_MRC = 20,
    Z_SUPPORT_PDF = 21,
    Z_SUPPORT_VECTOR_VIEW = 22,
    Z_SUPPORT_DIGITALPAINT = 23,
    Z_SUPPORT_J2K = 24,
    Z_SUPPORT_CMW = 25,
    Z_SUPPORT_DICOM = 26,
    Z_SUPPORT_EXTGRAY = 27,
    Z_SUPPORT_BITONAL = 28,
    Z_SUPPORT_MEDICAL_SECURITY = 29,
    Z_SUPPORT_PDF_SAVE = 30,
    Z_SUPPORT_OCR_PDF_OUTPUT = 31
};

/*
 * Locks and unlocks all capabilities at once.
 *
 * mask    in: bit n set locks capability n, clear unlocks it
 */
Z_API void Z_CALL Z_SetSupportLocks(uint32_t mask);

/*
 * The capability table.
 *
 * Returns 32 bytes, 1 for a locked capability and 0 for an unlocked one. The table belongs to the library and
 * follows later changes.
 */
Z_API const uint8_t* Z_CALL Z_GetSupportLocks(void);

/*
 * Tells whether a capability is locked.
 *
 * capability    in: Z_SUPPORT_..., 0 to 31
 *
 * Returns 1 for a locked capability and for a number above 31, else 0.
 */
Z_API int32_t Z_CALL Z_IsSupportLocked(uint32_t capability);

/*
 * Unlocks a capability.
 *
 * capability    in: Z_SUPPORT_..., 0 to 31
 * key           in: any text but the empty one
 *
 * Returns Z_SUCCESS, also for a capability that was not locked, or Z_ERROR_ARGUMENT for a number above 31 and
 * for a null or empty key; the table then stays as it was.
 */
Z_API ReturnCode Z_CALL Z_UnlockSupport(uint32_t capability, const char* key);

/*
 * Shuts the library down: what it keeps for the process and for the calling thread is released. Bitmaps and
 * lists stay, so do the settings of other threads and the capability table. May be called in any state and
 * any number of times; the next function that is called starts the library again, with fresh settings for the
 * calling thread.
 *
 * Returns Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_IntShutdown(void);

Z_END_DECLS

#endif
