// Where the program is built without SDL.
#include "window.h"

#include "apps/zkr/failure.h"

namespace zkr::app {

bool HasWindows() {
    return false;
}

void RunWindow(Viewer&) {
    throw Failure("the window", "zkr was built without SDL2; --screenshot works");
}

} // namespace zkr::app
