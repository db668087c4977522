// The temporary name holds the process number, so that two programs never share one.
#include "output_file.h"

#include "failure.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace zkr::app {

OutputFile::OutputFile(const std::string& path)
    : path_(path), temporary_(path + "." + std::to_string(getpid()) + ".part"),
      file_(std::fopen(temporary_.c_str(), "wbx")) {
    if (file_ == nullptr) throw Failure(path_, std::strerror(errno));
}

OutputFile::~OutputFile() {
    if (!temporary_.empty()) unlink(temporary_.c_str());
}

void OutputFile::Commit() {
    const bool whole = std::fflush(file_.get()) == 0 && std::ferror(file_.get()) == 0;
    if (!whole || std::fclose(file_.release()) != 0 || std::rename(temporary_.c_str(), path_.c_str()) != 0) {
        throw Failure(path_, std::strerror(errno));
    }
    temporary_.clear();
}

} // namespace zkr::app
