// The table of operations on regions that the rooms below reach through core/dispatch.h.
#include "core/dispatch.h"
#include "zkr13n/display_modes.h"

using namespace zkr;

namespace {

// A slot that is not named here knows no region.
constinit const DispatchTable regionOperations = {};

} // namespace

void Z_CALL SetDisplayDispatch(void) {
    ExchangeDispatch(&regionOperations);
}
