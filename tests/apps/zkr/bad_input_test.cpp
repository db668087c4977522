// Whatever is wrong with the input or the place of the output: one line on standard error that names the file
// and the cause, exit status 1, and no file left behind.
#include "picture_files.h"
#include "run_program.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

namespace {

class BadInputTest : public ProgramTest {
  protected:
    BadInputTest() {
        WritePng(Path("good.png"), PictureOf(64, 48, 8, PNG_COLOR_TYPE_RGB, Scattered));
        WriteFlatJpeg(Path("good.jpg"), 64, 48, 3, 90);
        std::filesystem::create_directory(Path("folder.png"));
    }

    void Fails(const std::vector<std::string>& words, const std::string& file, const std::string& cause,
               const RunLimits& limits = {}) const {
        SCOPED_TRACE(testing::PrintToString(words));
        const std::vector<std::string> before = FilesInFolder();
        const Outcome outcome = RunZkr(words, limits);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "");
        EXPECT_TRUE(outcome.errors.starts_with("zkr: " + file)) << outcome.errors;
        EXPECT_NE(outcome.errors.find(cause), std::string::npos) << outcome.errors;
        EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
        EXPECT_EQ(FilesInFolder(), before);
    }
    void FailsOnInput(const std::string& name, const std::string& cause) const {
        Fails({"convert", Path(name), Path("out.png"), "--bits", "24"}, Path(name) + ": ", cause);
    }
    void FailsOnOutput(const std::string& name, const std::string& cause,
                       const RunLimits& limits = {}) const {
        Fails({"convert", Path("good.png"), Path(name), "--bits", "24"}, Path(name) + ": ", cause, limits);
    }
    // Bytes of a good file, with some of them changed or cut away.
    void Damaged(const std::string& source, const std::string& name, size_t length, size_t place = 0,
                 const std::string& bytes = "") const {
        std::string content = ReadText(source).substr(0, length);
        content.replace(place, bytes.size(), bytes);
        WriteText(name, content);
    }
};

constexpr size_t whole = std::string::npos;
constexpr size_t sizeInPng = 16; // where width and height stand, four bytes each

} // namespace

TEST_F(BadInputTest, FilesThatAreNoPicturesOrOfNoSize) {
    const std::string invalidSize = "Invalid width/height";
    WriteFlatJpeg(Path("print.jpg"), 8, 8, 4, 90);
    Damaged("good.png", "flat.png", whole, sizeInPng + 4, std::string(4, '\0'));
    Damaged("good.png", "thin.png", whole, sizeInPng, std::string(4, '\0'));
    const struct {
        const char* name;
        std::string content; // none where the file is there, or is to be missing
        std::string cause;
    } cases[] = {
        {"missing.png", "", "No such file"},
        {"folder.png", "", "directory"},
        {"print.jpg", "", "four colours"},
        {"flat.png", "", invalidSize},
        {"thin.png", "", invalidSize},
        {"text.png", "This is a letter and not a picture.", "not a PNG"},
        {"short.pgm", "P5 10 10 255\n" + std::string(99, 'x'), "the file ends too early"},
        {"header.pgm", "P5 10 ten 255\n", "header"},
        {"noise.jbg", "this is no JBIG", ""},
        {"nothing.pgm", "P5 0 0 255\n", invalidSize},
        {"overflow.pgm", "P5 99999999999999999999 1 255\n", invalidSize},
        // No memory and no disk holds 2^62 pixels; the answer comes before anything is read.
        {"huge.pgm", "P5 2147483647 2147483647 65535\n", ""},
    };
    for (const auto& c : cases) {
        if (!c.content.empty()) WriteText(c.name, c.content);
        FailsOnInput(c.name, c.cause);
    }
    WriteText("empty.png", "");
    FailsOnInput("empty.png", "empty");
    Fails({"info", Path("missing.png")}, Path("missing.png") + ": ", "No such file");
    Fails({"tour", Path("text.png"), "--out", Path("out")}, Path("text.png") + ": ", "not a PNG");
}

TEST_F(BadInputTest, TruncatedAndDamagedPictures) {
    const size_t pngLength = ReadText("good.png").size(), jpegLength = ReadText("good.jpg").size();
    for (const size_t length : {size_t{8}, size_t{20}, size_t{33}, pngLength / 2, pngLength - 1}) {
        Damaged("good.png", "short.png", length);
        FailsOnInput("short.png", "the file ends too early");
    }
    Damaged("good.png", "bits.png", whole, pngLength / 2, "\x55\xAA");
    FailsOnInput("bits.png", "");
    for (const size_t length : {size_t{3}, size_t{100}, jpegLength - 20}) {
        Damaged("good.jpg", "short.jpg", length);
        FailsOnInput("short.jpg", "");
    }
}

TEST_F(BadInputTest, WishesThatCannotBeMet) {
    const auto wish = [this](const std::vector<std::string>& options, const std::string& cause) {
        std::vector<std::string> words = {"convert", Path("good.png"), Path("out.png"), "--bits"};
        words.insert(words.end(), options.begin(), options.end());
        Fails(words, Path("out.png") + ": ", cause);
    };
    for (const char* bits : {"9", "-1", "1000000"})
        wish({bits}, std::string(bits) + " bits per pixel: Invalid bits/pixel");
    wish({"24", "--order", "gray"}, "12 and 16");
    wish({"8", "--order", "bgr"}, "12 bits per pixel and more");
    wish({"12", "--order", "rgb"}, "always gray");
    wish({"24", "--palette", "fixed"}, "1 to 8");

    for (const auto& [bits, storage, cause] :
         {std::tuple("24", "rle", "only 1 bit"), {"8", "super", "only 1 and 24 bits"}})
        Fails({"convert", Path("good.png"), Path("out.png"), "--bits", bits, "--storage", storage},
              Path("good.png") + ": ", cause);

    const std::vector<std::string> crop = {"crop", Path("good.png"), Path("out.png"), "--height", "1"};
    const auto crops = [&](std::vector<std::string> words, const std::string& file,
                           const std::string& cause) {
        words.insert(words.begin(), crop.begin(), crop.end());
        Fails(words, file, cause);
    };
    crops({"--width", "1", "--left", "64"}, Path("good.png") + ": ", "holds no pixel");
    crops({"--width", "0"}, "", "--width");
    crops({}, "", "--width");
    crops({"--width", "8", "--storage", "rle"}, Path("good.png") + ": ", "only 1 bit");
    const auto fails = [this](const std::string& verb, std::vector<std::string> words,
                              const std::string& file, const std::string& cause) {
        words.insert(words.begin(), {verb, Path("good.png"), Path("out.png")});
        Fails(words, file, cause);
    };
    fails("colors", {"--bits", "4", "--palette", "cube"}, Path("good.png") + ": ", "8 bits");
    fails("colors", {"--palette", Path("good.png")}, Path("good.png") + ": ", "no palette");
    fails("colors", {"--bits", "9"}, "", "--bits");
    fails("gray", {"--bits", "10"}, "", "--bits");
    fails("window", {"--low", "9", "--high", "8"}, Path("good.png") + ": ", "0 to 65535");
    fails("alpha", {"--set", Path("missing.png")}, Path("missing.png") + ": ", "No such file");
    Fails({"fill", Path("good.png"), Path("out.png"), "--color", "red"}, "", "'red' is not a colour");
    for (const auto& [option, word] :
         {std::pair("--order", "grb"), {"--palette", "best"}, {"--storage", "attic"}})
        Fails({"convert", Path("good.png"), Path("out.png"), "--bits", "24", option, word}, "",
              std::string("'") + word + "' is not one of ");
    Fails({}, "", "a verb is required");
    Fails({"paint", Path("good.png")}, "paint: ", "no verb");
    Fails({"convert", Path("good.png"), Path("out.png")}, "", "--bits");
    Fails({"convert", Path("good.png"), Path("out.png"), "--bits", "many"}, "", "many");
}

TEST_F(BadInputTest, PlacesThatTakeNoOutput) {
    FailsOnOutput("missing/out.png", "No such file or directory");
    FailsOnOutput("good.png/out.png", "Not a directory");
    FailsOnOutput("folder.png", "directory");
    FailsOnOutput("out.jpg", ".png");
    Fails({"tour", Path("good.png"), "--out", Path("good.png")}, Path("good.png") + ": ", "");
}

TEST_F(BadInputTest, ADiskThatIsFull) {
    // The bitmap itself lies in a file here, and its 9216 bytes do not fit.
    Fails({"convert", Path("good.png"), Path("out.png"), "--bits", "24", "--storage", "disk"},
          Path("good.png"), "", {.fileBytes = 2000});
    // An older picture at the place stays as it was.
    const std::string older = ReadText("good.png");
    WriteText("out.png", older);
    FailsOnOutput("out.png", "File too large", {.fileBytes = 2000});
    EXPECT_TRUE(ReadText("out.png") == older);
}

TEST_F(BadInputTest, AnInterruptLeavesNothingBehind) {
    std::string page = "P5 3000 3000 255\n";
    for (size_t i = 0; i < 3000 * 3000; ++i)
        page += static_cast<char>(Scattered(i));
    WriteText("big.pgm", page);
    Fails({"convert", Path("big.pgm"), Path("out.png"), "--bits", "64"}, Path("out.png") + ": ",
          "user aborted", {.interruptWriting = true});
}
