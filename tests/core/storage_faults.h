// Failures on purpose: the N-th call of the system fails, a disk fills up, and a temporary directory of the
// test's own shows whether files are left behind.
#pragma once

#include "core/test_bitmaps.h"
#include "platform/faults.h"

#include <filesystem>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace zkr::test {

namespace fault = platform::fault;

class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        Z_GetTempDirectory(before_, sizeof before_);
        path_ = std::filesystem::temp_directory_path() /
                ("zkr13n-storage-test-" + std::to_string(std::random_device{}()));
        std::filesystem::create_directory(path_);
        EXPECT_EQ(Z_SetTempDirectory(path_.string().c_str()), 1);
    }
    ~TemporaryDirectory() {
        Z_SetTempDirectory(before_);
        EXPECT_TRUE(IsEmpty()) << "files left in " << path_;
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::filesystem::path& Path() const { return path_; }
    bool IsEmpty() const { return std::filesystem::is_empty(path_); }

  private:
    char before_[260];
    std::filesystem::path path_;
};

class Fault {
  public:
    Fault(uint32_t kinds, uint32_t nth, bool sticky = false) { fault::Arm(kinds, nth, sticky); }
    ~Fault() { fault::Disarm(); }
};

#ifndef _WIN32
// No file can grow beyond a limit while this lives; to write past it would be a signal by default.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(uint64_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

  private:
    rlimit before_;
};
#endif

} // namespace zkr::test
