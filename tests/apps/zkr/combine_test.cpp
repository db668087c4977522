// The verbs combine and underlay, on pictures whose results follow from their formulas.
#include "picture_files.h"
#include "run_program.h"

#include <algorithm>

namespace {

constexpr int width = 23, height = 17;

class CombineTest : public ProgramTest {
  protected:
    const Picture a = PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, Scattered);
    const Picture b =
        PictureOf(width, height, 8, PNG_COLOR_TYPE_RGB, [](size_t i) { return Scattered(i * 7 + 3); });

    Picture Made(std::vector<std::string> words) const {
        WritePng(Path("a.png"), a);
        WritePng(Path("b.png"), b);
        words.insert(words.begin() + 1, {Path("a.png"), Path("b.png"), Path("out.png")});
        Succeeds(words);
        return ReadPng(Path("out.png"));
    }
};

} // namespace

TEST_F(CombineTest, Operators) {
    const struct {
        const char* word;
        int (*result)(int a, int b);
    } operators[] = {{"copy", [](int, int y) { return y; }},
                     {"xor", [](int x, int y) { return x ^ y; }},
                     {"subtract", [](int x, int y) { return std::max(x - y, 0); }},
                     {"subtract-from", [](int x, int y) { return std::max(y - x, 0); }},
                     {"multiply", [](int x, int y) { return x * y / 255; }},
                     {"divide", [](int x, int y) { return y == 0 ? 255 : std::min(x * 255 / y, 255); }},
                     {"average", [](int x, int y) { return (x + y) / 2; }}};
    for (const auto& [word, result] : operators) {
        const Picture made = Made({"combine", "--op", word, "--at", "5,-3"});
        for (size_t i = 0; i < a.samples.size(); ++i) {
            const size_t x = i / 3 % width, y = i / 3 / width;
            const bool isCombined = x >= 5 && y < height - 3;
            const int expected =
                isCombined ? result(a.samples[i], b.samples[i + (3 * width - 5) * 3]) : a.samples[i];
            ASSERT_EQ(made.samples[i], expected) << word << ' ' << i;
        }
    }
}

TEST_F(CombineTest, Inverted) {
    const Picture made = Made({"combine", "--op", "and", "--invert", "b"});
    for (size_t i = 0; i < a.samples.size(); ++i)
        ASSERT_EQ(made.samples[i], a.samples[i] & ~b.samples[i]);
}

TEST_F(CombineTest, UnderlaysGray) {
    const Picture made = Made({"underlay"});
    for (size_t i = 0; i < a.samples.size(); i += 3) {
        const uint16_t* rgb = b.samples.data() + i;
        const int gray = (2 * rgb[0] + 5 * rgb[1] + rgb[2] + 4) >> 3;
        for (size_t k = i; k < i + 3; ++k)
            ASSERT_EQ(made.samples[k], std::clamp(a.samples[k] + gray - 128, 0, 255));
    }
}
