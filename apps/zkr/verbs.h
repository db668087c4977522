// The verbs of the program and what the command line gives them. Each does its work or throws Failure.
#pragma once

#include "bitmap.h"
#include "edit.h"

#include <optional>
#include <string>

namespace zkr::app {

struct InfoOptions {
    std::string picture;
};

// What all verbs take that make a picture file from another.
struct EditOptions {
    std::string input;
    std::string output;
    StorageClass storage = StorageClass::Conventional;
};

enum class PaletteChoice { Fixed, Gray };

struct ConvertOptions : EditOptions {
    int bits = 24;
    std::optional<int> order; // Z_ORDER_...
    std::optional<PaletteChoice> palette;
};

struct CropOptions : EditOptions {
    Rectangle area;
};

struct FillOptions : EditOptions {
    uint32_t colour = 0; // 0x00BBGGRR
    Rectangle area;      // without a width the whole picture
};

struct ColorsOptions : EditOptions {
    int bits = 8;
    int method = 1;                    // Dither...
    std::string palette = "optimized"; // or "fixed", "cube", the name of a picture file
};

struct GrayOptions : EditOptions {
    int bits = 8;
};

struct WindowOptions : EditOptions {
    int low = 0;
    int high = 0;
};

struct SpaceOptions : EditOptions {
    int space = 0; // Z_SPACE_...
};

struct AlphaOptions : EditOptions {
    std::string mask; // the file of the picture that becomes alpha; none to show what there is
};

struct TourOptions {
    std::string picture = "/usr/share/palapeli/collection/european-honey-bee.jpg";
    std::string page = "/usr/share/jbigkit-testdata/ccitt1.jbg";
    std::string out = "out/tour";
};

void RunInfo(const InfoOptions& options);
void RunConvert(const ConvertOptions& options);
void RunCrop(const CropOptions& options);
void RunFill(const FillOptions& options);
void RunColors(const ColorsOptions& options);
void RunGray(const GrayOptions& options);
void RunWindow(const WindowOptions& options);
void RunSpace(const SpaceOptions& options);
void RunAlpha(const AlphaOptions& options);
void RunTour(const TourOptions& options);

} // namespace zkr::app
