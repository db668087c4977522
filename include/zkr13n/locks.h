/*
 * Capability locks: one process-wide table of 32 capabilities, all unlocked at start.
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

Z_API void Z_CALL Z_SetSupportLocks(uint32_t mask);
Z_API const uint8_t* Z_CALL Z_GetSupportLocks(void);
Z_API int32_t Z_CALL Z_IsSupportLocked(uint32_t capability);
Z_API ReturnCode Z_CALL Z_UnlockSupport(uint32_t capability, const char* key);
Z_API ReturnCode Z_CALL Z_IntShutdown(void);

Z_END_DECLS

#endif
