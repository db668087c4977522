// Keeps the library usable in a child that the process makes of itself by fork.
#pragma once

#ifdef _WIN32
#include "platform/windows/fork.h"
#else
#include "platform/portable/fork.h"
#endif
