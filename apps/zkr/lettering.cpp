// Text by FreeType in DejaVu Sans. The folder of the fonts is found when the program is configured; a system
// that has none gets pictures without text.
#include "canvas.h"

#include <ft2build.h>
#include FT_FREETYPE_H

namespace zkr::app {

struct Lettering::Fonts {
    FT_Library library = nullptr;
    FT_Face plain = nullptr;
    FT_Face bold = nullptr;

    FT_Face Face(bool wantBold) const { return wantBold ? bold : plain; }

    ~Fonts() {
        FT_Done_Face(plain);
        FT_Done_Face(bold);
        FT_Done_FreeType(library);
    }
};

Lettering::Lettering() : fonts_(std::make_unique<Fonts>()) {
    if (FT_Init_FreeType(&fonts_->library) != 0) return;
    FT_New_Face(fonts_->library, ZKR_FONT_FOLDER "/DejaVuSans.ttf", 0, &fonts_->plain);
    FT_New_Face(fonts_->library, ZKR_FONT_FOLDER "/DejaVuSans-Bold.ttf", 0, &fonts_->bold);
    if (fonts_->bold == nullptr && fonts_->plain != nullptr) {
        FT_Reference_Face(fonts_->plain);
        fonts_->bold = fonts_->plain;
    }
}

Lettering::~Lettering() = default;

bool Lettering::Available() const {
    return fonts_->plain != nullptr;
}

namespace {

// Calls visit(glyph slot, pen position) for each letter and returns the width of all.
template <class Visit> int EachLetter(FT_Face face, int size, const std::string& text, Visit&& visit) {
    if (face == nullptr || FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size)) != 0) return 0;
    int pen = 0;
    for (const char letter : text) {
        if (FT_Load_Char(face, static_cast<unsigned char>(letter), FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT) !=
            0)
            continue;
        visit(face->glyph, pen);
        pen += static_cast<int>(face->glyph->advance.x >> 6);
    }
    return pen;
}

} // namespace

void Lettering::Draw(Canvas& canvas, int x, int baseline, int size, bool bold, Colour colour,
                     const std::string& text) {
    EachLetter(fonts_->Face(bold), size, text, [&](FT_GlyphSlot glyph, int pen) {
        const FT_Bitmap& shape = glyph->bitmap;
        for (unsigned row = 0; row < shape.rows; ++row) {
            for (unsigned column = 0; column < shape.width; ++column) {
                const int coverage = shape.buffer[row * static_cast<unsigned>(shape.pitch) + column];
                canvas.Blend(x + pen + glyph->bitmap_left + static_cast<int>(column),
                             baseline - glyph->bitmap_top + static_cast<int>(row), colour, coverage);
            }
        }
    });
}

int Lettering::Width(int size, bool bold, const std::string& text) {
    return EachLetter(fonts_->Face(bold), size, text, [](FT_GlyphSlot, int) {});
}

} // namespace zkr::app
