// Selections: the region of a picture, made step by step from shapes and colours, and what can be done with it. Pictures
// stand upright.
#pragma once

#include "bitmap.h"
#include "shapes.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zkr::app {

// One step: something that selects, and how it meets what is selected before.
struct SelectionStep {
    std::function<void(Bitmap&, uint32_t mode, int tolerance)> select;
    std::optional<uint32_t> mode = {}; // Z_RGN_...
    int tolerance = 20;                // of a wand
};

struct Selection {
    std::vector<SelectionStep> steps;
};

// The options that select. --mode and --tolerance belong to the step before them.
void AddSelection(CLI::App& verb, Selection& selection);

// Gives the picture the region; the first step sets it, others add to it unless they say otherwise.
void Select(Bitmap& picture, const Selection& selection);

Bitmap MaskOf(Bitmap& picture);

// The bounds, empty where nothing is selected, and how many pixels are.
Rectangle BoundsOfSelection(Bitmap& picture);
uint32_t AreaOfSelection(Bitmap& picture);

// Alpha stays as it is.
void FillSelection(Bitmap& picture, uint32_t colour);

// These paint on the picture, which is of 24 bits with blue first and lies in memory.
void TintSelection(Bitmap& picture, uint32_t colour);
void OutlineSelection(Bitmap& picture);

} // namespace zkr::app
