// The clipboard on systems other than Windows: one for the process. What is put there belongs to it and goes when the
// clipboard is emptied, or another thing takes its place. One thread at a time has it open; nobody waits for it.
#pragma once

#include "platform/portable/types.h"

namespace zkr {

inline constexpr uint32_t CF_BITMAP = 2;
inline constexpr uint32_t CF_DIB = 8;
inline constexpr uint32_t CF_PALETTE = 9;

} // namespace zkr

namespace zkr::platform {

BOOL OpenClipboard(HWND owner); // FALSE while it is open
BOOL CloseClipboard();
BOOL EmptyClipboard();                             // of the thread that has it open
HANDLE SetClipboardData(UINT format, HANDLE data); // the data, or null with it still the caller's
HANDLE GetClipboardData(UINT format);              // stays the clipboard's
BOOL IsClipboardFormatAvailable(UINT format);
UINT RegisterClipboardFormatA(const char* name); // 0 where no more are known

// No window is needed.
inline HWND CreateOwner() {
    return nullptr;
}
inline void DestroyOwner(HWND) {}

} // namespace zkr::platform
