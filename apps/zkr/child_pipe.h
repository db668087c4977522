// ChildPipe: another program whose standard output is read as a file.
#pragma once

#include <cstdio>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zkr::app {

class ChildPipe {
  public:
    // The program is looked for on the PATH. Its own messages are dropped. Throws Failure, naming the last
    // argument.
    explicit ChildPipe(const std::vector<std::string>& command);
    ~ChildPipe();
    ChildPipe(const ChildPipe&) = delete;
    ChildPipe& operator=(const ChildPipe&) = delete;

    std::FILE* Output() { return output_; }

  private:
    std::FILE* output_ = nullptr;
    pid_t child_ = -1;
};

} // namespace zkr::app
