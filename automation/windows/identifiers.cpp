// Defines the identifiers of the interfaces and classes.
// clang-format off
#include <ole2.h>
#include <ocidl.h>
#include <initguid.h>
#include <raster_interfaces.h>
// clang-format on
