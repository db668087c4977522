// The interfaces of the type library, as the interface compiler declares them, behind what they need of the system.
#pragma once

#include <ole2.h>

#include <ocidl.h>

#include <raster_interfaces.h>
