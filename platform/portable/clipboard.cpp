#include "platform/portable/clipboard.h"

#include "platform/faults.h"
#include "platform/portable/fork.h"
#include "platform/portable/graphics.h"
#include "platform/portable/latch.h"
#include "platform/portable/memory.h"
#include "platform/portable/threads.h"

#include <cstring>
#include <mutex>

namespace zkr::platform {

namespace {

constexpr UINT FirstRegistered = 0xC000;
constexpr size_t MostForms = 16;

struct Form {
    UINT Format; // 0 for a free place
    HANDLE Data;
};

// The latch guards the words; the forms are those of the thread that has the clipboard open.
constinit Latch latch;
constinit DWORD openedBy = 0;
constinit Form forms[MostForms] = {};
constinit char names[MostForms][64] = {};

Form* Find(UINT format) {
    for (Form& form : forms)
        if (form.Format == format) return &form;
    return nullptr;
}

void Free(Form& form) {
    if (form.Format == CF_BITMAP || form.Format == CF_PALETTE) {
        DeleteObject(form.Data);
    } else if (form.Format != 0) {
        GlobalFree(form.Data);
    }
    form = {};
}

// What lies on the clipboard goes with the library where that is unloaded.
struct Owner {
    ~Owner() {
        if (OthersMayWorkOn()) return;
        for (Form& form : forms)
            Free(form);
    }
};
const Owner owner;

bool IsMine() {
    return openedBy != 0 && openedBy == GetCurrentThreadId();
}

// In a child nobody has the clipboard open but the thread that forked, which has a number of its own there.
constinit bool forksWithIt = false;
const ForkPart forkPart(
    ForkOrder::Outer,
    [] {
        latch.lock();
        forksWithIt = IsMine();
    },
    [](bool inChild) {
        if (inChild) openedBy = forksWithIt ? GetCurrentThreadId() : 0;
        latch.unlock();
    });

} // namespace

BOOL OpenClipboard(HWND) {
    const std::lock_guard lock(latch);
    if (openedBy != 0) return FALSE;
    openedBy = GetCurrentThreadId();
    return TRUE;
}

BOOL CloseClipboard() {
    const std::lock_guard lock(latch);
    if (!IsMine()) return FALSE;
    openedBy = 0;
    return TRUE;
}

BOOL EmptyClipboard() {
    const std::lock_guard lock(latch);
    if (!IsMine()) return FALSE;
    for (Form& form : forms)
        Free(form);
    return TRUE;
}

HANDLE SetClipboardData(UINT format, HANDLE data) {
    const std::lock_guard lock(latch);
    if (!IsMine() || format == 0 || data == nullptr || fault::Due(fault::Device)) return nullptr;
    Form* place = Find(format);
    if (place == nullptr) place = Find(0);
    if (place == nullptr) return nullptr;
    Free(*place);
    *place = {format, data};
    return data;
}

HANDLE GetClipboardData(UINT format) {
    const std::lock_guard lock(latch);
    const Form* form = IsMine() && format != 0 ? Find(format) : nullptr;
    return form != nullptr ? form->Data : nullptr;
}

BOOL IsClipboardFormatAvailable(UINT format) {
    const std::lock_guard lock(latch);
    return format != 0 && Find(format) != nullptr;
}

UINT RegisterClipboardFormatA(const char* name) {
    const std::lock_guard lock(latch);
    const size_t length = std::strlen(name);
    for (size_t index = 0; index < MostForms && length != 0 && length < sizeof names[0]; ++index) {
        if (names[index][0] == 0) std::memcpy(names[index], name, length + 1);
        if (std::strcmp(names[index], name) == 0) return FirstRegistered + static_cast<UINT>(index);
    }
    return 0;
}

} // namespace zkr::platform
