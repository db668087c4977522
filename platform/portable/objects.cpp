// What all kinds of graphics objects have in common.
#include "platform/portable/graphics.h"
#include "platform/portable/handle_table.h"
#include "zkr13n/surface.h"

namespace zkr::platform {

BOOL DeleteObject(HGDIOBJ object) {
    const ObjectKind kind = ClaimedKind(object);
    if (kind != ObjectKind::Palette && kind != ObjectKind::Region) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return CloseHandleOfKind(kind, object) ? TRUE : FALSE;
}

} // namespace zkr::platform

ReturnCode Z_CALL Z_DeleteObject(HANDLE object) {
    return zkr::platform::DeleteObject(object) ? Z_SUCCESS : Z_ERROR_ARGUMENT;
}
