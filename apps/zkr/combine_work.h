// Two pictures combined pixel by pixel, and a texture laid under one, for verbs and the tour. All stand upright.
#pragma once

#include "bitmap.h"
#include "shapes.h"

#include "zkr13n/combine.h"

namespace zkr::app {

// The operators with the words that name them in options, file names and titles. The first picture is the one that is
// changed.
struct CombineOperator {
    const char* word;
    const char* title;
    uint32_t flags;
};
constexpr CombineOperator CombineOperators[] = {
    {"copy", "Copy", COMBINE_DST_ZERO | COMBINE_OP_OR},
    {"and", "And", COMBINE_OP_AND},
    {"or", "Or", COMBINE_OP_OR},
    {"xor", "Exclusive or", COMBINE_OP_XOR},
    {"add", "Add", COMBINE_OP_ADD},
    {"subtract", "Subtract", COMBINE_OP_SUB_SRC},
    {"subtract-from", "Subtract from", COMBINE_OP_SUB_DST},
    {"multiply", "Multiply", COMBINE_OP_MUL},
    {"divide", "Divide", COMBINE_OP_DIV_SRC},
    {"divide-into", "Divide into", COMBINE_OP_DIV_DST},
    {"average", "Average", COMBINE_OP_AVG},
    {"minimum", "Minimum", COMBINE_OP_MIN},
    {"maximum", "Maximum", COMBINE_OP_MAX},
};

struct Combination {
    uint32_t flags = COMBINE_OP_AND; // COMBINE_...
    Point at = {};                   // where the other's top left corner lies; it may be outside
};

// The other picture comes in the same format. Some of it must lie on the picture.
void Combine(Bitmap& picture, Bitmap& other, const Combination& combination);

// Gray 128 of the texture leaves a pixel as it is, darker gray darkens, lighter gray lightens.
void Underlay(Bitmap& picture, Bitmap& texture, bool stretch);

// A gray tile of woven canvas.
Bitmap CanvasTexture(const std::string& name);

} // namespace zkr::app
