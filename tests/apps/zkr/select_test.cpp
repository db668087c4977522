// zkr select: shapes and colours in the order in which they stand, and what is made of the selection.
#include "picture_files.h"
#include "run_program.h"

namespace {

constexpr int width = 23;
constexpr int height = 17;

class SelectTest : public ProgramTest {
  protected:
    // What is made of a flat gray picture in whose upper left quarter there is a brighter square.
    Picture Made(std::vector<std::string> words) const {
        WritePng(Path("in.png"), PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, [](size_t sample) {
                     const size_t pixel = sample / 3;
                     return pixel % width < 8 && pixel / width < 6 ? 100u + sample % 3 : 10u;
                 }));
        words.insert(words.begin(), {"select", Path("in.png"), Path("out.png")});
        Succeeds(words);
        return ReadPng(Path("out.png"));
    }

    // The first sample of each pixel against what holds(x, y) says.
    template <typename Holds>
    static void Expect(const Picture& picture, unsigned inside, Holds holds, const std::string& what) {
        const size_t channels = picture.samples.size() / (width * height);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(picture.samples[static_cast<size_t>(y * width + x) * channels] == inside,
                          holds(x, y))
                    << what << ": " << x << ',' << y;
    }
};

bool InSquare(int x, int y) {
    return x < 8 && y < 6;
}
bool InRectangle(int x, int y) {
    return x >= 4 && x < 14 && y >= 3 && y < 12;
}

} // namespace

TEST_F(SelectTest, ModesCombineWhatStandsBefore) {
    const struct {
        const char* mode;
        bool (*combined)(bool, bool);
    } modes[] = {
        {"or", [](bool a, bool b) { return a || b; }},     {"and", [](bool a, bool b) { return a && b; }},
        {"xor", [](bool a, bool b) { return a != b; }},    {"set", [](bool, bool b) { return b; }},
        {"minus", [](bool a, bool b) { return a && !b; }}, {"beyond", [](bool a, bool b) { return b && !a; }},
        {"not", [](bool, bool b) { return !b; }}};
    for (const auto& [mode, combined] : modes) {
        const Picture mask = Made({"--color", "646566", "--rect", "4,3,10,9", "--mode", mode});
        Expect(
            mask, 1, [&, of = combined](int x, int y) { return of(InSquare(x, y), InRectangle(x, y)); },
            mode);
    }
}

TEST_F(SelectTest, EachWaySelects) {
    Made({"--rect", "4,3,10,9"}); // the next mask
    std::filesystem::copy_file(Path("out.png"), Path("mask.png"));
    const struct {
        std::vector<std::string> words;
        bool (*holds)(int, int);
    } ways[] = {{{"--polygon", "4,3 14,3 14,12 4,12"}, InRectangle},
                {{"--range", "600000-70FFFF"}, InSquare},
                {{"--hsv", "000050-FFFFFF"}, InSquare},
                {{"--wand", "2,2", "--tolerance", "5"}, InSquare},
                {{"--wand", "20,10", "--tolerance", "0", "--mode", "not"}, InSquare},
                {{"--mask", Path("mask.png")}, InRectangle},
                {{"--rect", "0,0,23,17", "--wand", "2,2", "--tolerance", "200", "--mode", "minus"},
                 [](int, int) { return false; }}};
    for (const auto& [words, holds] : ways)
        Expect(Made(words), 1, holds, words[0]);
    Expect(Made({"--rect", "4,3,10,9", "--fill", "FF0000"}), 255, InRectangle, "fill");
    Expect(
        Made({"--rect", "4,3,10,9", "--tint", "FF0000", "--outline"}), 10,
        [](int x, int y) { return !InRectangle(x, y) && !InSquare(x, y); }, "tint");
}
