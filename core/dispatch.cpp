// The table starts empty, and is empty again after the library has been shut down.
#include "core/dispatch.h"

namespace zkr {

constinit DispatchTable dispatch{};

void ClearDispatch() {
    dispatch = DispatchTable{};
}

} // namespace zkr
