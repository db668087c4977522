/*
 * What every family shares: progress callbacks, the version record, the per-thread defaults.
 */
#ifndef ZKR13N_FRAME_H
#define ZKR13N_FRAME_H

#include "codes.h"

Z_BEGIN_DECLS

/* Called by long operations with 0 to 100; any result but 1 stops the operation, which returns that result.
 */
typedef ReturnCode(Z_CALL* StatusCallback)(int32_t percent, intptr_t userData);

/* A callback that is kept for the family's vector module, which alone knows how to call it. */
typedef void(Z_CALL* SubstituteFontCallback)(void);

/* What Z_VersionInfo fills: 104 bytes on every platform. */
typedef struct VersionRecord {
    char Product[60];     /* zero-padded */
    int32_t ProductLevel; /* 2 medical, 0 document, 1 neither */
    int32_t VersionMajor;
    int32_t VersionMinor;
    char Date[16]; /* zero-padded */
    char Time[16]; /* zero-padded */
} VersionRecord;

Z_API StatusCallback Z_CALL Z_SetStatusCallBack(StatusCallback callback, intptr_t userData);
Z_API StatusCallback Z_CALL Z_GetStatusCallBack(intptr_t* userDataOut);
Z_API StatusCallback Z_CALL Z_SetCopyStatusCallBack(StatusCallback callback, intptr_t userData);
Z_API StatusCallback Z_CALL Z_GetCopyStatusCallBack(intptr_t* userDataOut);
Z_API ReturnCode Z_CALL Z_VecSetSubstituteFontCallback(SubstituteFontCallback callback, intptr_t userData);
Z_API ReturnCode Z_CALL Z_VecGetSubstituteFontCallback(SubstituteFontCallback* callbackOut,
                                                       intptr_t* userDataOut);
Z_API ReturnCode Z_CALL Z_VersionInfo(VersionRecord* record);
Z_API int32_t Z_CALL Z_GetDefaultDithering(void);

Z_END_DECLS

#endif
