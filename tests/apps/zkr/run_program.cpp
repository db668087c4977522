// Both outputs go to files outside the test's folder, so that they count neither as the program's output
// files nor against its limits.
#include "run_program.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

[[noreturn]] void BecomeProgram(const std::string& folder, const std::vector<std::string>& arguments,
                                const RunLimits& limits, int out, int err) {
    if (chdir(folder.c_str()) != 0) _exit(126);
    const auto limit = [](__rlimit_resource resource, long most) {
        const rlimit bounds = {static_cast<rlim_t>(most), static_cast<rlim_t>(most)};
        if (most >= 0) setrlimit(resource, &bounds);
    };
    limit(RLIMIT_FSIZE, limits.fileBytes);
#if !defined(__SANITIZE_ADDRESS__) // which reserves more than there is
    limit(RLIMIT_AS, limits.memoryBytes);
#endif
    std::vector<char*> words = {const_cast<char*>("zkr")};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    if (limits.printsTo != nullptr) {
        close(STDOUT_FILENO);
        if (*limits.printsTo != 0 && open(limits.printsTo, O_WRONLY) != STDOUT_FILENO) _exit(126);
    }
    execv(ZKR_PROGRAM, words.data());
    _exit(127);
}

} // namespace

std::vector<std::string> Split(const std::string& line) {
    std::istringstream stream(line);
    return {std::istream_iterator<std::string>(stream), {}};
}

ProgramTest::ProgramTest() {
    std::string name = (std::filesystem::temp_directory_path() / "zkr-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    folder_ = name;
}

ProgramTest::~ProgramTest() {
    std::filesystem::remove_all(folder_);
    std::filesystem::remove(folder_.string() + ".out");
    std::filesystem::remove(folder_.string() + ".err");
}

// A file that is being written has no name yet, which its link in the process's folder shows.
bool ProgramTest::IsWriting(pid_t child) const {
    std::error_code gone;
    for (const auto& file :
         std::filesystem::directory_iterator("/proc/" + std::to_string(child) + "/fd", gone)) {
        const std::string target = std::filesystem::read_symlink(file.path(), gone).string();
        if (target.starts_with(folder_.string() + "/") && target.ends_with(" (deleted)")) return true;
    }
    return false;
}

std::vector<std::string> ProgramTest::FilesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_)) {
        names.push_back(std::filesystem::relative(entry.path(), folder_).string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

Outcome ProgramTest::RunZkr(const std::vector<std::string>& arguments, const RunLimits& limits) const {
    const std::string outName = folder_.string() + ".out";
    const std::string errName = folder_.string() + ".err";
    constexpr int create = O_CREAT | O_TRUNC | O_RDWR | O_CLOEXEC;
    const int out = open(outName.c_str(), create, 0600);
    const int err = open(errName.c_str(), create, 0600);
    const pid_t child = fork();
    if (child == 0) BecomeProgram(folder_.string(), arguments, limits, out, err);
    int status = 0;
    if (limits.signalWriting != 0) {
        // The child is not yet waited for, so its number is safe to signal even when it has ended.
        const auto ended = [child] {
            siginfo_t what = {};
            return waitid(P_PID, static_cast<id_t>(child), &what, WEXITED | WNOHANG | WNOWAIT) != 0 ||
                   what.si_pid != 0;
        };
        while (!ended() && !IsWriting(child))
            usleep(1000);
        kill(child, limits.signalWriting);
    }
    waitpid(child, &status, 0);
    close(out);
    close(err);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), ContentOf(outName),
            ContentOf(errName)};
}

void ProgramTest::Refuses(const std::vector<std::string>& words, const std::string& file,
                          const std::string& cause, const RunLimits& limits) const {
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

void ProgramTest::WriteText(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
}

std::string ProgramTest::ReadText(const std::string& name) const {
    return ContentOf(Path(name));
}

std::string ProgramTest::Succeeds(const std::vector<std::string>& arguments) const {
    const Outcome outcome = RunZkr(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    return outcome.output;
}
