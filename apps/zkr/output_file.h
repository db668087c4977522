// OutputFile: a file that appears whole or not at all. It is written under a temporary name beside its place
// and renamed by Commit(); without that it vanishes.
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
    std::string path_;
    std::string temporary_;
    File file_;
};

} // namespace zkr::app
