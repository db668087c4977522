// The job of verbs that change one picture: read it, change it, write it.
#pragma once

#include "verbs.h"

#include <functional>

namespace zkr::app {

// `doing` is what the status bar says during the change, ten letters wide.
void ChangePicture(const EditOptions& options, const char* doing, const std::function<void(Bitmap&)>& change);

} // namespace zkr::app
