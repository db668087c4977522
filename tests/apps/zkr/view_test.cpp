// zkr view: what its window shows, by screenshots without one, and by keys and mouse in one on a virtual display.
#include "picture_files.h"
#include "run_program.h"

#include <cstdlib>
#include <functional>

namespace {

constexpr int Side = 40;

using Source = std::function<int(int x, int y)>; // the pixel of the picture, row by row, that is shown

class ViewTest : public ProgramTest {
  protected:
    // The window has just the picture's size and no line.
    Picture Shot(const std::vector<std::string>& pictures, const std::string& commands,
                 const std::vector<std::string>& options = {}, int width = Side, int height = Side) const {
        std::vector<std::string> words = {"view"};
        words.insert(words.end(), pictures.begin(), pictures.end());
        const std::vector<std::string> rest = {
            "--width", std::to_string(width), "--height",     std::to_string(height),
            "--do",    "line" + commands,     "--screenshot", Path("shot.png")};
        words.insert(words.end(), rest.begin(), rest.end());
        words.insert(words.end(), options.begin(), options.end());
        Succeeds(words);
        return ReadPng(Path("shot.png"));
    }
};

std::vector<uint16_t> ColourAt(const Picture& picture, int x, int y) {
    const auto first = picture.samples.begin() + (y * picture.width + x) * 3;
    return {first, first + 3};
}

const std::vector<uint16_t> White = {255, 255, 255}, Black = {0, 0, 0}, Red = {255, 0, 0},
                            Green = {0, 255, 0}, Blue = {0, 0, 255};

} // namespace

TEST_F(ViewTest, TurnsMirrorsZoomsAndPans) {
    const Picture picture = PictureOf(Side, Side, 8, PNG_COLOR_TYPE_RGB, Scattered);
    WritePng(Path("photo.png"), picture);
    constexpr int last = Side - 1;
    const auto at = [](int x, int y) { return y * Side + x; };
    const struct {
        const char* commands;
        Source source;
    } cases[] = {
        {"", [&](int x, int y) { return at(x, y); }},
        {",turn", [&](int x, int y) { return at(y, last - x); }},
        {",turn-back", [&](int x, int y) { return at(last - y, x); }},
        {",mirror", [&](int x, int y) { return at(last - x, y); }},
        {",flip", [&](int x, int y) { return at(x, last - y); }},
        {",turn,mirror", [&](int x, int y) { return at(y, x); }},
        {",zoom-in,zoom-in", [&](int x, int y) { return at((x + 20) / 2, (y + 20) / 2); }},
        {",zoom-in,zoom-in,right,down", [&](int x, int y) { return at((x + 25) / 2, (y + 25) / 2); }},
        {",zoom-in,zoom-in,turn,fit", [&](int x, int y) { return at(y, last - x); }},
        {",brighter,more-contrast,less-gamma,unadjusted", [&](int x, int y) { return at(x, y); }},
        {",sliders,help,sliders,help", [&](int x, int y) { return at(x, y); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.commands);
        const Picture shot = Shot({Path("photo.png")}, c.commands);
        ASSERT_EQ(shot.width, Side);
        Picture expected = shot;
        for (int y = 0; y < Side; ++y)
            for (int x = 0; x < Side; ++x)
                for (int channel = 0; channel < 3; ++channel)
                    expected.samples[static_cast<size_t>((y * Side + x) * 3 + channel)] =
                        picture.samples[static_cast<size_t>(c.source(x, y) * 3 + channel)];
        EXPECT_EQ(shot, expected);
    }
}

TEST_F(ViewTest, AdjustsAndShowsDevicesNeighboursAndFrames) {
    WritePng(Path("blue.png"),
             PictureOf(Side, Side, 8, PNG_COLOR_TYPE_RGB, [](size_t i) { return i % 3 == 2 ? 255u : 0u; }));
    WritePng(Path("gray.png"), PictureOf(Side, Side, 8, PNG_COLOR_TYPE_RGB, [](size_t) { return 128u; }));
    WriteGif(Path("walk.gif"), Side, Side);
    const std::string blue = Path("blue.png"), gray = Path("gray.png"), walk = Path("walk.gif");
    std::string brightest;
    for (int i = 0; i < 20; ++i)
        brightest += ",brighter";
    EXPECT_EQ(ColourAt(Shot({blue}, brightest), 3, 4), White);
    EXPECT_EQ(ColourAt(Shot({gray, blue}, ",next"), 3, 4), Blue);
    EXPECT_EQ(ColourAt(Shot({gray, blue}, ",previous,next,next"), 3, 4), Blue);
    EXPECT_EQ(ColourAt(Shot({walk}, ""), Side / 2, Side / 2), Red);
    EXPECT_EQ(ColourAt(Shot({walk}, ",step"), Side / 2, Side / 2), Green);
    EXPECT_EQ(ColourAt(Shot({walk}, ",step,step"), Side - 1, Side - 1), Blue);
    for (const char* bits : {"4", "8"})
        EXPECT_EQ(ColourAt(Shot({blue}, "", {"--display", bits}), 3, 4), Blue) << bits;
    const Picture dots = Shot({gray}, "", {"--display", "1"});
    int white = 0;
    for (int i = 0; i < Side * Side; ++i) {
        const std::vector<uint16_t> colour = ColourAt(dots, i % Side, i / Side);
        EXPECT_TRUE(colour == White || colour == Black);
        white += colour == White ? 1 : 0;
    }
    EXPECT_NEAR(white, Side * Side / 2, Side);
}

TEST_F(ViewTest, RefusesCommandsAndPicturesThatThereAreNot) {
    WritePng(Path("photo.png"), PictureOf(4, 4, 8, PNG_COLOR_TYPE_RGB, Scattered));
    WriteText("text.png", "This is a letter.");
    Refuses({"view", Path("photo.png"), "--screenshot", Path("s.png"), "--do", "dance"}, "", "--do");
    Refuses({"view", Path("text.png"), "--screenshot", Path("s.png")}, Path("text.png") + ": ", "not a PNG");
    Refuses({"view", Path("photo.png"), Path("text.png"), "--screenshot", Path("s.png"), "--do", "next"},
            Path("text.png") + ": ", "not a PNG");
}

namespace {

// The display's memory, which the server keeps in a file: a header of big-endian words, a table of colours, and the rows.
class DisplayDump {
  public:
    explicit DisplayDump(std::string content) : content_(std::move(content)) {}
    uint32_t At(size_t x, size_t y) const {
        const size_t place = Word(0) + Word(19) * 12 + y * Word(12) + x * 4;
        const auto byte = [&](size_t i) { return static_cast<uint8_t>(content_.at(place + i)); };
        return static_cast<uint32_t>(byte(0) | byte(1) << 8 | byte(2) << 16);
    }

  private:
    size_t Word(size_t index) const {
        size_t word = 0;
        for (size_t i = 0; i < 4; ++i)
            word = word << 8 | static_cast<uint8_t>(content_.at(index * 4 + i));
        return word;
    }
    std::string content_;
};

// Arguments: zkr, how long it may take to paint, the size of the window, the names of pictures. The window fills the display, of which `look` takes a picture;
// `drag` takes two points and a button, the left one by default, with the keys in $held pressed.
constexpr const char* Prologue = R"(
zkr=$1 pause=$2 width=$3 height=$4; shift 4
Xvfb -displayfd 3 -fbdir . -screen 0 ${width}x${height}x24 3>display 2>/dev/null & server=$!
trap 'kill $server' EXIT
for i in {1..100}; do [ -s display ] && break; sleep 0.1; done
export DISPLAY=:$(cat display)
look() { sleep $pause; cp Xvfb_screen0 "$1.xwd"; }
drag() {
  for key in $held; do xdotool keydown $key; done
  xdotool mousemove --window "$window" $1 $2 mousedown ${5:-1} \
    mousemove --window "$window" $((($1 + $3) / 2)) $((($2 + $4) / 2)) \
    mousemove --window "$window" $3 $4 mouseup ${5:-1}
  for key in $held; do xdotool keyup $key; done
}
timeout 60 "$zkr" view "$@" --width $width --height $height & viewer=$!
window=$(timeout 30 xdotool search --sync --onlyvisible --name "$1" | head -n 1)
xdotool windowfocus "$window" mousemove --window "$window" 20 50
)";
constexpr const char* Epilogue = R"(
xdotool type q
wait $viewer
)";

#ifdef __SANITIZE_ADDRESS__
constexpr const char* Pause = " 2 "; // seconds
#else
constexpr const char* Pause = " 0.7 ";
#endif
constexpr int LineHeight = 22; // of the line below the picture

// Runs zkr view on a display of its own.
class WindowTest : public ViewTest {
  protected:
    void SetUp() override {
        ViewTest::SetUp();
        if (std::system("command -v Xvfb >/dev/null && command -v xdotool >/dev/null") != 0)
            GTEST_SKIP() << "needs Xvfb and xdotool";
        if (RunZkr({"view", Path("missing.png")}).errors.find("SDL2") != std::string::npos)
            GTEST_SKIP() << "zkr was built without windows";
    }
    void Drive(int width, int height, const std::string& pictures, const std::string& steps) {
        WriteText("drive.sh", Prologue + steps + Epilogue);
        // The libraries of windows leak at their end.
        const std::string command = "cd " + Path("") + " && ASAN_OPTIONS=detect_leaks=0 bash drive.sh " +
                                    ZKR_PROGRAM + Pause + std::to_string(width) + " " +
                                    std::to_string(height + LineHeight) + " " + pictures + " >told 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << ReadText("told");
    }
    DisplayDump Look(const std::string& name) const { return DisplayDump(ReadText(name + ".xwd")); }
};

constexpr uint32_t WhiteShown = 0xFFFFFF, BlackShown = 0;

// How many pixels of a rectangle are black, and how many white.
std::pair<int, int> Stripes(const DisplayDump& dump, size_t left, size_t top, size_t right, size_t bottom) {
    int black = 0, white = 0;
    for (size_t y = top; y < bottom; ++y)
        for (size_t x = left; x < right; ++x) {
            black += dump.At(x, y) == BlackShown ? 1 : 0;
            white += dump.At(x, y) == WhiteShown ? 1 : 0;
        }
    return {black, white};
}

} // namespace

TEST_F(WindowTest, TakesKeysAndMouse) {
    WritePng(Path("red.png"),
             PictureOf(100, 100, 8, PNG_COLOR_TYPE_RGB, [](size_t i) { return i % 3 == 0 ? 255u : 0u; }));
    WritePng(Path("halves.png"), PictureOf(100, 100, 8, PNG_COLOR_TYPE_RGB, [](size_t i) {
                 return i % 3 == (i / 3 % 100 < 50 ? 1 : 2) ? 255u : 0u;
             }));
    ASSERT_NO_FATAL_FAILURE(Drive(100, 100, "red.png halves.png", R"(
look first
xdotool key Next; look next
xdotool type m; look mirrored
xdotool click 4 click 4 click 4 click 4; look larger
drag 80 50 20 50; look moved
xdotool type f; xdotool keydown Shift mousemove --window "$window" 20 50 click 1 keyup Shift; look selected
)"));
    constexpr uint32_t red = 0xFF0000, green = 0x00FF00, blue = 0x0000FF;
    const struct {
        const char* name;
        uint32_t left, right; // at 10 and 90 of 100 columns
    } cases[] = {
        {"first", red, red},    {"next", green, blue},  {"mirrored", blue, green},
        {"larger", blue, blue}, {"moved", blue, green}, {"selected", blue, green},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Look(c.name).At(10, 50), c.left);
        EXPECT_EQ(Look(c.name).At(90, 50), c.right);
    }
    // The stripes of the outline along the border between the halves.
    const auto [black, white] = Stripes(Look("selected"), 46, 0, 54, 100);
    EXPECT_GT(black, 30);
    EXPECT_GT(white, 30);
}

TEST_F(WindowTest, DragsSlidersValuesAndSelections) {
    constexpr uint32_t level = 128;
    WritePng(Path("gray.png"), PictureOf(400, 200, 8, PNG_COLOR_TYPE_GRAY, [](size_t) { return level; }));
    WritePng(Path("deep.png"), PictureOf(400, 200, 16, PNG_COLOR_TYPE_GRAY,
                                         [](size_t i) { return i % 400 < 200 ? 16000u : 49000u; }));
    ASSERT_NO_FATAL_FAILURE(Drive(400, 200, "gray.png deep.png", R"(
look plain
xdotool type s; drag 202 117 300 117; look brightest
drag 291 117 100 117; look darkest
xdotool type 0s; drag 200 80 200 30 3; look brighter
xdotool type 0; held=Shift drag 50 50 100 100; look one
held='Shift Control_L' drag 250 50 300 100; look both
held='Shift Alt_L' drag 40 40 120 120; look other
held=Shift drag 50 50 100 100; look again
xdotool key Next; look deep
drag 50 100 306 100 3; look narrow
)"));
    const struct {
        const char* name;
        uint32_t level;
    } cases[] = {{"plain", level}, {"brightest", 255}, {"darkest", 0}, {"brighter", level + 51}}; // 255 * 0.2
    for (const auto& c : cases)
        EXPECT_EQ(Look(c.name).At(10, 10), c.level * 0x010101) << c.name;
    const struct {
        const char* name;
        bool left, right; // what is selected
    } selections[] = {
        {"one", true, false}, {"both", true, true}, {"other", false, true}, {"again", true, false}};
    for (const auto& c : selections) {
        SCOPED_TRACE(c.name);
        for (const auto& [isThere, from] : {std::pair(c.left, size_t{40}), std::pair(c.right, size_t{240})}) {
            const auto [black, white] = Stripes(Look(c.name), from, 40, from + 80, 120);
            EXPECT_EQ(black > 30, isThere);
            EXPECT_EQ(white > 30, isThere);
        }
    }
    EXPECT_EQ(Look("deep").At(10, 10), 16000u / 256 * 0x010101);
    EXPECT_EQ(Look("deep").At(390, 10), 49000u / 256 * 0x010101);
    // The window of half the width, 16384 to 49152.
    EXPECT_EQ(Look("narrow").At(10, 10), BlackShown);
    EXPECT_NEAR(Look("narrow").At(390, 10) & 255, 255 * (49000 - 16384) / 32768, 1);
}

// How often the display changes at the slowest speed, in a pause, and at the highest; then pictures of single frames.
TEST_F(WindowTest, PlaysPausesAndSteps) {
    WriteGif(Path("walk.gif"), 100, 100);
    ASSERT_NO_FATAL_FAILURE(Drive(100, 100, "walk.gif", R"(
changes() { sleep 0.3; for i in {1..50}; do cksum <Xvfb_screen0; sleep 0.01; done | uniq | wc -l >"$1"; }
xdotool type '<<<<'; changes slow
xdotool key space; changes paused
xdotool key space; xdotool type '>>>>>>>>'; changes fast
for i in 0 1 2 3; do xdotool key period; look step$i; done
)"));
    const auto changes = [&](const char* name) { return std::stoi(ReadText(name)); };
    EXPECT_EQ(changes("paused"), 1);
    EXPECT_LE(changes("slow"), 5);
    EXPECT_GT(changes("fast"), 10);
    int frames[4];
    for (int i = 0; i < 4; ++i) {
        const DisplayDump dump = Look("step" + std::to_string(i));
        frames[i] = dump.At(98, 98) == 0x0000FF ? 2 : dump.At(51, 50) == 0x00FF00 ? 1 : 0;
        EXPECT_EQ(frames[i], (frames[0] + i) % 3) << i;
    }
}
