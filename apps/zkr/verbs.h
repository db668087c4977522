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

enum class PaletteChoice { Fixed, Gray };

struct ConvertOptions {
    std::string input;
    std::string output;
    int bits = 24;
    std::optional<int> order; // Z_ORDER_...
    std::optional<PaletteChoice> palette;
    StorageClass storage = StorageClass::Conventional;
};

struct EditOptions {
    std::string input;
    std::string output;
    StorageClass storage = StorageClass::Conventional;
};

struct CropOptions : EditOptions {
    Rectangle area;
};

struct FillOptions : EditOptions {
    uint32_t colour = 0; // 0x00BBGGRR
    std::optional<Rectangle> area;
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
void RunTour(const TourOptions& options);

} // namespace zkr::app
