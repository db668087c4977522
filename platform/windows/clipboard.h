// What the library asks of Windows: the clipboard.
#pragma once

#include "platform/windows/guarded.h"

namespace zkr::platform {

using ::CloseClipboard;
using ::EmptyClipboard;
using ::GetClipboardData;
using ::IsClipboardFormatAvailable;
using ::OpenClipboard;
using ::RegisterClipboardFormatA;
ZKR_FAULTABLE(SetClipboardData, Device, nullptr, ERROR_NOT_ENOUGH_MEMORY);

// A window without a picture, for who has none: what is put on the clipboard needs an owner.
inline HWND CreateOwner() {
    return CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
}
inline void DestroyOwner(HWND window) {
    DestroyWindow(window);
}

} // namespace zkr::platform
