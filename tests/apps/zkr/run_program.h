// Runs the program zkr inside a folder of its own and gives what it printed and how it ended.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/types.h>
#include <vector>

// The words of a command line, which blanks part.
std::vector<std::string> Split(const std::string& line);

struct Outcome {
    int status = -1; // exit status; 128 + the signal's number after a signal
    std::string output;
    std::string errors;
};

struct RunLimits {
    long fileBytes = -1;            // the largest file that the program may write
    long memoryBytes = -1;          // that it may take up
    int signalWriting = 0;          // sent as soon as the program has begun to write a file
    const char* printsTo = nullptr; // the file that standard output is; "" where it is closed
};

// A test with an empty folder, which is gone afterwards.
class ProgramTest : public testing::Test {
  protected:
    ProgramTest();
    ~ProgramTest() override;

    std::string Path(const std::string& name) const { return (folder_ / name).string(); }
    std::vector<std::string> FilesInFolder() const;
    Outcome RunZkr(const std::vector<std::string>& arguments, const RunLimits& limits = {}) const;
    void WriteText(const std::string& name, const std::string& content) const;
    std::string ReadText(const std::string& name) const;

    // Runs the program and expects one line on standard error that begins with the file, where one is to blame,
    // and tells the cause, exit status 1, and no file left behind.
    void Refuses(const std::vector<std::string>& words, const std::string& file, const std::string& cause,
                 const RunLimits& limits = {}) const;
    // Runs the program and expects that it ends well and says nothing on standard error.
    std::string Succeeds(const std::vector<std::string>& arguments) const;

  private:
    bool IsWriting(pid_t child) const;

    std::filesystem::path folder_;
};
