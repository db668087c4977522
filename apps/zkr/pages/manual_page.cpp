// The man page, in the macros of man(7).
#include "pages.h"

#include <sstream>

namespace zkr::app {

namespace {

// Text as it stands: no character of it is a command of the formatter.
std::string Plain(const std::string& text) {
    std::string plain;
    bool startsLine = true;
    for (const char letter : text) {
        if (startsLine && (letter == '.' || letter == '\'')) plain += "\\&";
        if (letter == '\\') {
            plain += "\\e";
        } else if (letter == '-') {
            plain += "\\-";
        } else {
            plain += letter;
        }
        startsLine = letter == '\n';
    }
    return plain;
}

std::string Bold(const std::string& text) {
    return "\\fB" + Plain(text) + "\\fR";
}

std::string Italic(const std::string& text) {
    return "\\fI" + Plain(text) + "\\fR";
}

// Words that stand for themselves are bold, those that stand for others italic.
std::string Form(const ToldOption& option) {
    std::string told;
    std::istringstream parts(option.form);
    for (std::string part; std::getline(parts, part, '|');) {
        bool stands = false;
        for (const std::string& value : option.values)
            stands = stands || value == part;
        told += (told.empty() ? "" : " | ") + (stands ? Bold(part) : Italic(part));
    }
    return told;
}

// Paragraphs, of which lines that begin with two blanks stay lines of their own.
std::string Paragraphs(const std::string& text) {
    std::string page;
    std::istringstream lines(text);
    bool asItIs = false;
    for (std::string line; std::getline(lines, line);) {
        const bool indented = line.starts_with("  ");
        if (indented != asItIs) page += indented ? ".nf\n" : ".fi\n";
        asItIs = indented;
        page += line.empty() ? ".PP\n" : Plain(line) + "\n";
    }
    return page + (asItIs ? ".fi\n" : "");
}

std::string Synopsis(const ToldVerb& verb) {
    std::string line = Bold("zkr " + verb.name);
    for (const ToldOption& word : verb.words) {
        const std::string told = Italic(word.word) + (word.takesMany ? " ..." : "");
        line += word.isRequired ? " " + told : " [" + told + "]";
    }
    return line + " [" + Italic("options") + "]\n";
}

std::string Entry(const ToldOption& option) {
    std::string names;
    for (const std::string& name : option.names)
        names += (names.empty() ? "" : ", ") + Bold(name);
    if (option.names.empty()) names = Italic(option.word);
    if (!option.form.empty()) names += " " + Form(option);
    return ".TP\n" + names + "\n" + Plain(option.help) + "\n";
}

} // namespace

std::string ManualPage(const ToldProgram& program) {
    const std::string about = program.about.substr(0, program.about.find_last_not_of(".\n") + 1);
    const size_t status = program.notes.find("Exit status: ");
    std::string page = ".TH ZKR 1 \"\" \"ZKR13N " + program.version + "\" \"User Commands\"\n";
    page += ".SH NAME\nzkr \\- command line of the ZKR13N raster image kernel\n";
    page += ".SH SYNOPSIS\n.B zkr\n.I VERB\n.RI [ options ]\n.br\n.B zkr\n.I VERB\n.B \\-\\-help\n.br\n";
    page += ".B zkr \\-\\-help\n|\n.B \\-\\-version\n";
    page += ".SH DESCRIPTION\n" + Plain(about) + ".\n.PP\n";
    page += Paragraphs(program.notes.substr(0, program.notes.find_last_not_of("\n", status - 1) + 1));
    page += ".SH VERBS\nEach takes " + Bold("-h") + " and " + Bold("--help") + ".\n";
    for (const ToldVerb& verb : program.verbs) {
        page += ".SS " + Plain(verb.name) + "\n" + Plain(verb.help) + ".\n.PP\n" + Synopsis(verb);
        for (const ToldOption& word : verb.words)
            page += Entry(word);
        for (const ToldOption& option : verb.options)
            if (option.names.back() != "--help") page += Entry(option);
        page += ".PP\nExample:\n.PP\n.RS\n.nf\n" + Plain(verb.example) + "\n.fi\n.RE\n";
    }
    page +=
        ".SH EXIT STATUS\n" + Paragraphs(program.notes.substr(status + std::string("Exit status: ").size()));
    return page;
}

} // namespace zkr::app
