// OutputFile: a file that appears whole or not at all. It has no name while it is written; Commit() gives it its own.
// A device or a pipe at the path takes the bytes as they come.
#pragma once

#include "picture_reader.h"

#include <string>

namespace zkr::app {

class OutputFile {
  public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    std::FILE* Stream() { return file_.get(); }
    void Commit();

  private:
    [[noreturn]] void Fail() const;

    std::string path_;
    bool isDirect_;         // what stands at the path is written to, and not replaced
    std::string temporary_; // the name of a file that has one already, else empty
    File file_;
};

} // namespace zkr::app
