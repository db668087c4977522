// A file without a name is linked into its folder when it is whole. A link cannot replace an older file, so that it then
// takes a temporary name, which is renamed at once; no signal comes between. Where the file system has no files without a
// name, the temporary name is there from the beginning. It holds the process number, so that two programs never share one.
// Devices and pipes are written as they are: nothing is put in their place.
#include "output_file.h"

#include "failure.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace zkr::app {

namespace {

constexpr mode_t Mode = 0666;

std::string FolderOf(const std::string& path) {
    const std::string folder = std::filesystem::path(path).parent_path().string();
    return folder.empty() ? "." : folder;
}

std::string BesideOf(const std::string& path) {
    return path + "." + std::to_string(getpid()) + ".part";
}

bool IsDeviceOrPipe(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

class SignalsHeld {
  public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        sigprocmask(SIG_BLOCK, &all, &before_);
    }
    ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

  private:
    sigset_t before_;
};

// -1 where there are no such files, or no way to link them.
int OpenNameless(const std::string& folder) {
    if (access("/proc/self/fd", X_OK) != 0) return -1;
    return open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, Mode);
}

} // namespace

OutputFile::OutputFile(const std::string& path) : path_(path), isDirect_(IsDeviceOrPipe(path)) {
    int file = isDirect_ ? open(path.c_str(), O_WRONLY | O_CLOEXEC) : OpenNameless(FolderOf(path));
    if (file < 0 && isDirect_) Fail();
    if (file < 0) {
        temporary_ = BesideOf(path);
        file = open(temporary_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, Mode);
        if (file < 0) {
            temporary_.clear();
            Fail();
        }
    }
    file_.reset(fdopen(file, "wb"));
    if (file_ == nullptr) Fail();
}

OutputFile::~OutputFile() {
    if (!temporary_.empty()) unlink(temporary_.c_str());
}

void OutputFile::Fail() const {
    throw Failure(path_, std::strerror(errno));
}

void OutputFile::Commit() {
    if (std::fflush(file_.get()) != 0 || std::ferror(file_.get()) != 0) Fail();
    const SignalsHeld held;
    if (temporary_.empty() && !isDirect_) {
        const std::string nameless = "/proc/self/fd/" + std::to_string(fileno(file_.get()));
        const auto link = [&](const std::string& name) {
            return linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
        };
        if (!link(path_)) {
            if (errno != EEXIST || !link(BesideOf(path_))) Fail();
            temporary_ = BesideOf(path_);
        }
    }
    if (std::fclose(file_.release()) != 0) {
        if (temporary_.empty() && !isDirect_) unlink(path_.c_str());
        Fail();
    }
    if (!temporary_.empty() && std::rename(temporary_.c_str(), path_.c_str()) != 0) Fail();
    temporary_.clear();
}

} // namespace zkr::app
