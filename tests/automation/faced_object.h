// A raster object behind the face that clients see here, with the members of the logic, so that one test tells the same of
// all faces.
#pragma once

#include "automation/plain_types.h"

#include <tested_face.h>

namespace zkr::test {

class RasterObject final : public TestedFace, private automation::PlainTypes {
    using ArrayIn = const Array&;
    using ArrayOut = Array*;

  public:
#define LIST(...) __VA_ARGS__
#define MEMBER(member, logic, parameters, arguments)                                                         \
    int32_t logic parameters {                                                                               \
        return Call(&Interface::member, LIST arguments);                                                     \
    }
#include "automation/members.inc"
#undef LIST
};

} // namespace zkr::test
