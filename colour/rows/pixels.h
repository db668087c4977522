// The readers and writers of pixels for the instruction set that the file is compiled for.
#pragma once

#include "colour/rows/pixels_plain.h"
