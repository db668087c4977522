// ContactSheet: many small pictures on one page, in sections, each picture with two lines of text below it.
#pragma once

#include "canvas.h"

#include <string>
#include <vector>

namespace zkr::app {

class ContactSheet {
  public:
    static constexpr int CellWidth = 200;
    static constexpr int CellHeight = 280; // at most; a row is as high as its highest picture

    struct Cell {
        Canvas picture;
        std::string title;
        std::string text;
    };
    // Lines of text beside the pictures of a row that is not full, three columns wide.
    struct Note {
        std::string title;
        std::vector<std::string> lines;
    };
    struct Section {
        std::string title;
        std::string text;
        std::vector<Cell> cells = {};
        std::vector<Note> notes = {};
    };

    ContactSheet(std::string title, std::string text) : title_(std::move(title)), text_(std::move(text)) {}

    void Add(Section section) { sections_.push_back(std::move(section)); }
    // The whole page as a 24-bit bitmap.
    Bitmap Drawn(const std::string& name) const;

  private:
    std::string title_;
    std::string text_;
    std::vector<Section> sections_;
};

} // namespace zkr::app
