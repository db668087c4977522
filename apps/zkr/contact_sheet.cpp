// The layout: a grid of equal Columns between margins. It is walked twice, first to learn the height of the
// page and then to draw.
#include "contact_sheet.h"

#include <algorithm>
#include <cstring>

namespace zkr::app {

namespace {

constexpr int Columns = 9;
constexpr int Margin = 56;
constexpr int Gap = 20;
constexpr int PageWidth = 2 * Margin + Columns * ContactSheet::CellWidth + (Columns - 1) * Gap;
constexpr int LabelHeight = 44; // two lines under a picture
constexpr int NoteLine = 24;
constexpr size_t NoteColumns = 3;

constexpr Colour Paper = {244, 244, 242};
constexpr Colour Ink = {34, 36, 38};
constexpr Colour SoftInk = {106, 110, 114};
constexpr Colour Line = {205, 205, 202};

int ColumnX(size_t column) {
    return Margin + static_cast<int>(column) * (ContactSheet::CellWidth + Gap);
}

class Painter {
  public:
    // Without a canvas only the places are worked out.
    Painter(Canvas* canvas, Lettering& lettering) : canvas_(canvas), lettering_(lettering) {}

    int Bottom() const { return y_ + Margin; }

    void Heading(const std::string& title, const std::string& text) {
        y_ += 26;
        Letters(Margin, y_, 34, true, Ink, title);
        y_ += 32;
        Letters(Margin, y_, 17, false, SoftInk, text);
        y_ += 18;
    }

    void Section(const ContactSheet::Section& section) {
        y_ += 18;
        Rule();
        y_ += 36;
        Letters(Margin, y_, 20, true, Ink, section.title);
        const int titleWidth = lettering_.Width(20, true, section.title);
        Letters(Margin + titleWidth + 16, y_, 16, false, SoftInk, section.text);
        y_ += 22;
        for (size_t first = 0; first < section.cells.size(); first += Columns) {
            const size_t last = std::min(first + Columns, section.cells.size());
            DrawRow(section, first, last);
        }
    }

  private:
    void Letters(int x, int baseline, int size, bool bold, Colour colour, const std::string& text) {
        if (canvas_ != nullptr) lettering_.Draw(*canvas_, x, baseline, size, bold, colour, text);
    }

    void Rule() {
        if (canvas_ != nullptr) canvas_->Frame(Margin, y_, PageWidth - 2 * Margin, 1, Line);
    }

    void DrawRow(const ContactSheet::Section& section, size_t first, size_t last) {
        int height = 0;
        for (size_t i = first; i < last; ++i)
            height = std::max(height, section.cells[i].picture.Height());
        if (last == section.cells.size()) {
            size_t column = last - first;
            for (const ContactSheet::Note& note : section.notes) {
                DrawNote(note, ColumnX(column));
                height = std::max(height, static_cast<int>(note.lines.size() + 2) * NoteLine - LabelHeight);
                column += NoteColumns;
            }
        }
        for (size_t i = first; i < last; ++i)
            DrawCell(section.cells[i], ColumnX(i - first), height);
        y_ += height + LabelHeight + Gap;
    }

    void DrawCell(const ContactSheet::Cell& cell, int x, int height) {
        if (canvas_ != nullptr) {
            const int left = x + (ContactSheet::CellWidth - cell.picture.Width()) / 2;
            const int top = y_ + (height - cell.picture.Height()) / 2;
            canvas_->Put(left, top, cell.picture);
            canvas_->Frame(left - 1, top - 1, cell.picture.Width() + 2, cell.picture.Height() + 2, Line);
        }
        Letters(x, y_ + height + 22, 16, true, Ink, cell.title);
        Letters(x, y_ + height + 41, 14, false, SoftInk, cell.text);
    }

    void DrawNote(const ContactSheet::Note& note, int x) {
        int baseline = y_ + 16;
        Letters(x, baseline, 16, true, Ink, note.title);
        baseline += 4;
        for (const std::string& text : note.lines) {
            baseline += NoteLine;
            Letters(x, baseline, 14, false, SoftInk, text);
        }
    }

    Canvas* canvas_;
    Lettering& lettering_;
    int y_ = Margin;
};

} // namespace

Bitmap ContactSheet::Drawn(const std::string& name) const {
    Lettering lettering;
    const auto walk = [&](Canvas* canvas) {
        Painter painter(canvas, lettering);
        painter.Heading(title_, text_);
        for (const Section& section : sections_)
            painter.Section(section);
        return painter.Bottom() - Gap;
    };
    Canvas page(PageWidth, walk(nullptr), Paper);
    walk(&page);

    Bitmap bitmap(name, PixelFormat{}, page.Width(), page.Height(), Storage{});
    std::vector<uint8_t> row(bitmap.RowBytes());
    for (int y = 0; y < page.Height(); ++y) {
        std::memcpy(row.data(), page.Pixel(0, y), static_cast<size_t>(page.Width()) * 3);
        bitmap.PutRow(y, row.data());
    }
    return bitmap;
}

} // namespace zkr::app
