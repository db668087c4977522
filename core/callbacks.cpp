// The callbacks that a thread has set, and the one default that can only be read.
#include "core/return_codes.h"
#include "core/thread_settings.h"
#include "zkr13n/dither.h"
#include "zkr13n/frame.h"

#include <utility>

using namespace zkr;

StatusCallback Z_CALL Z_SetStatusCallBack(StatusCallback callback, intptr_t userData) {
    ThreadSettings& settings = CurrentThreadSettings();
    settings.StatusUserData = userData;
    return std::exchange(settings.StatusCallback, callback);
}

StatusCallback Z_CALL Z_GetStatusCallBack(intptr_t* userDataOut) {
    const ThreadSettings& settings = CurrentThreadSettings();
    if (userDataOut != nullptr) *userDataOut = settings.StatusUserData;
    return settings.StatusCallback;
}

StatusCallback Z_CALL Z_SetCopyStatusCallBack(StatusCallback callback, intptr_t userData) {
    ThreadSettings& settings = CurrentThreadSettings();
    settings.CopyStatusUserData = userData;
    return std::exchange(settings.CopyStatusCallback, callback);
}

StatusCallback Z_CALL Z_GetCopyStatusCallBack(intptr_t* userDataOut) {
    const ThreadSettings& settings = CurrentThreadSettings();
    if (userDataOut != nullptr) *userDataOut = settings.CopyStatusUserData;
    return settings.CopyStatusCallback;
}

ReturnCode Z_CALL Z_VecSetSubstituteFontCallback(SubstituteFontCallback callback, intptr_t userData) {
    ThreadSettings& settings = CurrentThreadSettings();
    settings.SubstituteFontCallback = callback;
    settings.SubstituteFontUserData = userData;
    return code::Success;
}

ReturnCode Z_CALL Z_VecGetSubstituteFontCallback(SubstituteFontCallback* callbackOut, intptr_t* userDataOut) {
    if (callbackOut == nullptr || userDataOut == nullptr) return code::InvalidArgument;
    const ThreadSettings& settings = CurrentThreadSettings();
    *callbackOut = settings.SubstituteFontCallback;
    *userDataOut = settings.SubstituteFontUserData;
    return code::Success;
}

int32_t Z_CALL Z_GetDefaultDithering(void) {
    return CurrentThreadSettings().DefaultDithering;
}
