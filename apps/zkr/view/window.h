// The window of a viewer.
#pragma once

#include <string>
#include <vector>

namespace zkr::app {

class Viewer;

// Whether the program was built with what makes windows.
bool HasWindows();

// Shows the viewer in a window until it is done. Throws Failure where there is no display.
void RunWindow(Viewer& viewer);

} // namespace zkr::app
