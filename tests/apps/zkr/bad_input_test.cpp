// Whatever is wrong with the input or the place of the output: one line on standard error that names the file
// and the cause, exit status 1, and no file left behind.
#include "picture_files.h"
#include "run_program.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <zlib.h>

namespace {

class BadInputTest : public ProgramTest {
  protected:
    BadInputTest() {
        WritePng(Path("good.png"), PictureOf(64, 48, 8, PNG_COLOR_TYPE_RGB, Scattered));
        WriteFlatJpeg(Path("good.jpg"), 64, 48, 3, 90);
        std::filesystem::create_directory(Path("folder.png"));
    }

    void FailsOnInput(const std::string& name, const std::string& cause) const {
        Refuses({"convert", Path(name), Path("out.png"), "--bits", "24"}, Path(name) + ": ", cause);
    }
    void FailsOnOutput(const std::string& name, const std::string& cause,
                       const RunLimits& limits = {}) const {
        Refuses({"convert", Path("good.png"), Path(name), "--bits", "24"}, Path(name) + ": ", cause, limits);
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
    Refuses({"info", Path("missing.png")}, Path("missing.png") + ": ", "No such file");
    Refuses({"tour", Path("text.png"), "--out", Path("out")}, Path("text.png") + ": ", "not a PNG");
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

// Files are named as they stand on the command line, so that the names here are relative.
TEST_F(BadInputTest, WishesThatCannotBeMet) {
    const struct {
        std::string words; // what stands behind `zkr VERB good.png out.png`, the verb first
        std::string file;  // what the message begins with
        std::string cause;
    } wishes[] = {
        {"convert --bits 9", "--bits: ", "'9' is not one of 0|1|2|3|4|5|6|7|8|12|16|24|32|48|64"},
        {"convert --bits -1", "--bits: ", "'-1' is not one of"},
        {"convert --bits many", "--bits: ", "'many' is not one of"},
        {"convert --bits", "--bits ", "needs a value"},
        {"convert --bits 8 --bits 8", "--bits ", "too often"},
        {"convert", "--bits ", "is required (see zkr convert --help)"},
        {"convert --bits 24 --order gray", "--order ", "12 and 16"},
        {"convert --bits 8 --order bgr", "--order ", "12 bits per pixel and more"},
        {"convert --bits 12 --order rgb", "--order: ", "always gray"},
        {"convert --bits 24 --palette fixed", "--palette ", "1 to 8"},
        {"convert --bits 24 --order grb", "--order: ", "'grb' is not one of rgb|bgr|gray"},
        {"convert --bits 24 --storage runs", "good.png: ", "only 1 bit"},
        {"convert --bits 8 --storage strips", "good.png: ", "only 1 and 24 bits"},
        {"crop --height 1 --width 1 --left 64", "good.png: ", "64 x 48"},
        {"crop --height 1 --width 0", "--width: ", "'0' is not a whole number of at least 1"},
        {"crop --height 1", "--width ", "is required"},
        {"crop --height 1 --width 8 --storage runs", "good.png: ", "only 1 bit"},
        {"fill --color 123456 --width 3", "--width ", "requires --height"},
        {"fill --color red", "--color: ", "'red' is not a colour of six hexadecimal digits"},
        {"resize", "--width ", "--height is required"},
        {"resize --width 0", "--width: ", "'0' is not"},
        {"resize --width 4 --method strokes", "good.png: ", "1 bit per pixel only"},
        {"resize --width 3 --method best", "--method: ", "one of nearest|linear|spline|strokes"},
        {"rotate", "--angle ", "is required"},
        {"rotate --angle 361", "--angle: ", "'361' is not"},
        {"rotate --angle 5 --method best", "--method: ", "one of nearest|linear|cubic"},
        {"shear --angle 90", "--angle: ", "between -90 and 90"},
        {"shear --angle 89.9 --vertical", "good.png: ", "too large"},
        {"warp good.png", "--points ", "is required"},
        {"combine more.png", "--op ", "is required"},
        {"combine more.png --op blend", "--op: ", "one of copy|and|or"},
        {"combine more.png --op copy --invert a", "--invert a: ", "nothing of A"},
        {"play --out frames", "'out.png' ", "too many"},
        {"select", "", "nothing selects"},
        {"select --mode or", "--mode: ", "before the first"},
        {"select --rect 1,1,2,2 --mode nand", "--mode: ", "set|or|and"},
        {"select --polygon 1,1 --outline", "--polygon: ", "three points"},
        {"select --range 112233", "--range: ", "with a dash"},
        {"select --mask small.png", "small.png: ", "64 x 47"},
        {"fill --color 1234567", "--color: ", "is not a colour"},
        {"colors --bits 4 --palette cube", "--palette: ", "8 bits"},
        {"colors --palette good.png", "good.png: ", "no palette"},
        {"colors --bits 9", "--bits: ", "'9' is not a whole number from 1 to 8"},
        {"colors --colors 257", "--colors: ", "from 1 to 256"},
        {"colors --colors 5 --bits 2", "--colors: ", "too many for 2 bits"},
        {"colors --colors 5 --palette fixed", "--colors: ", "optimized"},
        {"gray --bits 10", "--bits: ", "8|12|16"},
        {"window --low 9 --high 8", "good.png: ", "0 to 65535"},
        {"paint --width 300000 --height 300000", "good.png: ", ""},
        {"alpha --set missing.png", "missing.png: ", "No such file"},
        {"alpha --set small.png", "small.png: ", "64 x 48"},
        {"gray more.png", "'more.png' ", "too many"},
    };
    WritePng(Path("small.png"), PictureOf(64, 47, 8, PNG_COLOR_TYPE_GRAY, Scattered));
    for (const auto& wish : wishes) {
        std::vector<std::string> words = Split(wish.words);
        words.insert(words.begin() + 1, {"good.png", "out.png"});
        Refuses(words, wish.file, wish.cause);
    }
    Refuses({}, "", "a verb is required (see zkr --help)");
    Refuses({"frame", "good.png"}, "frame: ", "no verb");
    Refuses({"--frame"}, "", "no option --frame");
}

TEST_F(BadInputTest, PlacesThatTakeNoOutput) {
    FailsOnOutput("missing/out.png", "No such file or directory");
    FailsOnOutput("good.png/out.png", "Not a directory");
    FailsOnOutput("folder.png", "directory");
    FailsOnOutput("out.jpg", ".png");
    Refuses({"tour", Path("good.png"), "--out", Path("good.png")}, Path("good.png") + ": ", "");
}

TEST_F(BadInputTest, WhatIsPrintedAndCannotBeWritten) {
    const std::string cause = "what is printed cannot be written";
    for (const char* place : {"/dev/full", ""}) {
        Refuses({"info", Path("good.png")}, "", cause, {.printsTo = place});
        Refuses({"--help"}, "", cause, {.printsTo = place});
        // The file of the bitmap does not become standard output.
        EXPECT_EQ(
            RunZkr({"flip", Path("good.png"), Path("out.png"), "--storage", "disk"}, {.printsTo = place})
                .status,
            0);
    }
}

TEST_F(BadInputTest, APipeIsWrittenAndReadAndNotReplaced) {
    ASSERT_EQ(mkfifo(Path("pipe.png").c_str(), 0600), 0);
    std::string got;
    std::thread reader([&] { got = ReadText("pipe.png"); });
    Succeeds({"convert", Path("good.png"), Path("pipe.png"), "--bits", "24"});
    EXPECT_TRUE(std::filesystem::is_fifo(Path("pipe.png")));
    reader.join();
    WriteText("again.png", got);
    EXPECT_EQ(ReadPng(Path("again.png")).width, 64);

    // Nobody writes to it: an interrupt ends the wait.
    const pid_t child = fork();
    if (child == 0) {
        const int quiet = open("/dev/null", O_WRONLY);
        dup2(quiet, STDERR_FILENO);
        execl(ZKR_PROGRAM, "zkr", "info", Path("pipe.png").c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        kill(child, SIGTERM);
        usleep(20000);
    }
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 1) << status;
}

TEST_F(BadInputTest, ADiskThatIsFull) {
    // The bitmap itself lies in a file here, and its 9216 bytes do not fit.
    Refuses({"convert", Path("good.png"), Path("out.png"), "--bits", "24", "--storage", "disk"},
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
    const std::vector<std::string> words = {"convert", Path("big.pgm"), Path("out.png"), "--bits", "64"};
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        Refuses(words, Path("out.png") + ": ", "user aborted", {.signalWriting = signal});
    // A program that is ended at once has no time for anything.
    const std::vector<std::string> before = FilesInFolder();
    EXPECT_EQ(RunZkr(words, {.signalWriting = SIGKILL}).status, 128 + SIGKILL);
    EXPECT_EQ(FilesInFolder(), before);
}

TEST_F(BadInputTest, DimensionsThatTheBytesCannotHold) {
    // 2097151 x 2097151 pixels of 32 bits, 17.6 TB; and one row of 2 GB.
    const std::string huge("\x00\x1F\xFF\xFF\x00\x1F\xFF\xFF", 8);
    WritePng(Path("small.png"), PictureOf(2, 2, 8, PNG_COLOR_TYPE_RGB_ALPHA, Scattered));
    std::string header = ReadText("small.png").substr(12, 17); // from the chunk's name to its sum
    header.replace(4, huge.size(), huge);
    const auto sum =
        crc32(0, reinterpret_cast<const Bytef*>(header.data()), static_cast<uInt>(header.size()));
    for (int shift = 24; shift >= 0; shift -= 8)
        header += static_cast<char>(sum >> shift);
    Damaged("small.png", "huge.png", whole, 12, header);
    WriteText("wide.pgm", "P5 2147483647 1 255\n1234");
    Damaged("good.jpg", "vast.jpg", whole, ReadText("good.jpg").find("\xFF\xC0") + 5, "\xFF\xDC\xFF\xDC");
    for (const char* name : {"huge.png", "wide.pgm", "vast.jpg"}) {
        Refuses({"convert", name, "out.png", "--bits", "24", "--storage", "disk"}, std::string(name) + ": ",
                "ends too early for the size", {.memoryBytes = 1l << 28});
    }
}
