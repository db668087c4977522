/*
 * What every family shares: progress callbacks, the version record, the per-thread defaults.
 */
#ifndef ZKR13N_FRAME_H
#define ZKR13N_FRAME_H

#include "codes.h"

Z_BEGIN_DECLS

/*
 * Called by long operations, on the thread that called the operation.
 *
 * percent     0 before the first row, then rising; 100 after the last row
 * userData    what was given with the callback
 *
 * Returns Z_SUCCESS to go on. Any other result stops the operation, which then cleans up and returns that
 * result.
 */
typedef ReturnCode(Z_CALL* StatusCallback)(int32_t percent, intptr_t userData);

/* A callback that is kept for the family's vector module, which alone knows how to call it. */
typedef void(Z_CALL* SubstituteFontCallback)(void);

/* Values of VersionRecord.ProductLevel. */
enum { Z_PRODUCT_DOCUMENT = 0, Z_PRODUCT_STANDARD = 1, Z_PRODUCT_MEDICAL = 2 };

/* What Z_VersionInfo fills: 104 bytes on every platform. */
typedef struct VersionRecord {
    char Product[60];     /* zero-padded text */
    int32_t ProductLevel; /* Z_PRODUCT_..., by the capabilities that are unlocked at the moment of the call */
    int32_t VersionMajor; /* 13 */
    int32_t VersionMinor; /* from 0 */
    char Date[16];        /* zero-padded text */
    char Time[16];        /* zero-padded text */
} VersionRecord;

/*
 * Sets the status callback of the calling thread, which long operations report to.
 *
 * callback    in: null turns reports off
 * userData    in: handed to the callback
 *
 * Returns the callback that stood there before, null for none. An operation reads the callback once, when it
 * starts.
 */
Z_API StatusCallback Z_CALL Z_SetStatusCallBack(StatusCallback callback, intptr_t userData);

/*
 * Reads the status callback of the calling thread.
 *
 * userDataOut    out, may be null: what was given with the callback
 *
 * Returns the callback, null for none.
 */
Z_API StatusCallback Z_CALL Z_GetStatusCallBack(intptr_t* userDataOut);

/*
 * Sets the copy status callback of the calling thread, which copies of bitmaps report to in place of the
 * status callback.
 *
 * callback    in: null turns reports off
 * userData    in: handed to the callback
 *
 * Returns the callback that stood there before, null for none.
 */
Z_API StatusCallback Z_CALL Z_SetCopyStatusCallBack(StatusCallback callback, intptr_t userData);

/*
 * Reads the copy status callback of the calling thread.
 *
 * userDataOut    out, may be null: what was given with the callback
 *
 * Returns the callback, null for none.
 */
Z_API StatusCallback Z_CALL Z_GetCopyStatusCallBack(intptr_t* userDataOut);

/*
 * Stores a callback of the calling thread for the vector module. This library never calls it.
 *
 * callback    in: may be null
 * userData    in: kept with the callback
 *
 * Returns Z_SUCCESS.
 */
Z_API ReturnCode Z_CALL Z_VecSetSubstituteFontCallback(SubstituteFontCallback callback, intptr_t userData);

/*
 * Reads what Z_VecSetSubstituteFontCallback has stored for the calling thread.
 *
 * callbackOut    out: the callback, null for none
 * userDataOut    out: what was given with it
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT when either pointer is null; nothing is written then.
 */
Z_API ReturnCode Z_CALL Z_VecGetSubstituteFontCallback(SubstituteFontCallback* callbackOut,
                                                       intptr_t* userDataOut);

/*
 * Tells which library this is.
 *
 * record    out: the version record
 *
 * Returns Z_SUCCESS, or Z_ERROR_ARGUMENT when record is null.
 */
Z_API ReturnCode Z_CALL Z_VersionInfo(VersionRecord* record);

Z_END_DECLS

#endif
