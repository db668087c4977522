// What holds for every verb, those of the list: help with an example that works as it stands, and a word about
// options that there are not.
#include "picture_files.h"
#include "run_program.h"

#include <algorithm>
#include <cctype>

namespace {

using VerbsTest = ProgramTest;

std::vector<std::string> Verbs() {
    std::vector<std::string> verbs = {
#define ZKR_VERB(Name) #Name,
#include "apps/zkr/verbs/verbs.list"
#undef ZKR_VERB
    };
    for (std::string& verb : verbs)
        verb[0] = static_cast<char>(std::tolower(verb[0]));
    return verbs;
}

} // namespace

TEST_F(VerbsTest, HaveHelpWithAnExampleThatWorks) {
    WritePng(Path("photo.png"), PictureOf(64, 48, 8, PNG_COLOR_TYPE_RGB_ALPHA, Scattered));
    WriteGif(Path("walk.gif"), 64, 48);
    const std::string list = Succeeds({"--help"});
    for (const std::string& verb : Verbs()) {
        SCOPED_TRACE(verb);
        EXPECT_NE(list.find("\n  " + verb + " "), std::string::npos);
        const std::string help = Succeeds({verb, "--help"});
        const std::string mark = "Example:\n  zkr ";
        const size_t example = help.find(mark);
        ASSERT_NE(example, std::string::npos) << help;
        const size_t start = example + mark.size();
        const std::vector<std::string> words = Split(help.substr(start, help.find('\n', start) - start));
        ASSERT_EQ(words.front(), verb);
        Succeeds(words);
        if (words.size() > 2 && words[2].ends_with(".png")) {
            EXPECT_GT(ReadPng(Path(words[2])).width, 0);
        }
    }
    EXPECT_NE(list.find("Exit status"), std::string::npos);
    EXPECT_NE(Succeeds({"--version"}).find("13.0"), std::string::npos);
}

TEST_F(VerbsTest, NameOptionsThatThereAreNot) {
    for (const std::string& verb : Verbs())
        Refuses({verb, "a.png", "--bogus", "1"}, "", "no option --bogus (see zkr " + verb + " --help)");
}
