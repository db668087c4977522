// Progress of long work, reported through the library's status callbacks. StatusBar installs the callbacks,
// draws a bar where standard error is a terminal, and stops the work after an interrupt. RowProgress is for
// the row loops of the program itself; it reports by the same rule as the library's operations.
#pragma once

#include "zkr13n/frame.h"

#include <string>

namespace zkr::app {

class StatusBar {
  public:
    explicit StatusBar(std::string title);
    ~StatusBar();
    StatusBar(const StatusBar&) = delete;
    StatusBar& operator=(const StatusBar&) = delete;

    // Makes room for a line of output where the bar stands.
    static void Wipe();

    // From now on an interrupt makes the callback stop what runs, so that all is cleaned up on the way out.
    static void WatchInterrupts();

  private:
    static ReturnCode Z_CALL Report(int32_t percent, intptr_t userData);
    void Draw(int percent) const;

    std::string title_;
    bool onTerminal_;
    StatusCallback previous_ = nullptr;
    StatusCallback previousCopy_ = nullptr;
    intptr_t previousData_ = 0;
    intptr_t previousCopyData_ = 0;
};

class RowProgress {
  public:
    // `name` is what the message names when the callback stops the work.
    RowProgress(std::string name, int rows);
    void RowDone();

  private:
    void Report();

    std::string name_;
    intptr_t userData_ = 0; // before the callback, whose initialiser writes it
    StatusCallback callback_;
    int count_;
    int percent_ = 0;
    int error_ = 0;
};

} // namespace zkr::app
