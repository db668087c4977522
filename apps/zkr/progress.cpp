// The bar is one line that is redrawn in place and wiped at the end, so that nothing of it stays between
// results.
#include "progress.h"

#include "failure.h"

#include <csignal>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace zkr::app {

namespace {

constexpr int BarCells = 30;
constexpr ReturnCode AbortedByUser = -29;

volatile std::sig_atomic_t interrupted = 0;

void OnInterrupt(int) {
    interrupted = 1;
}

} // namespace

void StatusBar::WatchInterrupts() {
    // Not restarted: a pipe that gives nothing is not waited for any longer.
    struct sigaction stop = {}, before = {};
    stop.sa_handler = OnInterrupt;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // What was ignored for this program, as nohup does, stays so.
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &stop, nullptr);
    }
}

StatusBar::StatusBar(std::string title) : title_(std::move(title)), onTerminal_(isatty(STDERR_FILENO) != 0) {
    Z_GetStatusCallBack(&previousData_);
    Z_GetCopyStatusCallBack(&previousCopyData_);
    previous_ = Z_SetStatusCallBack(Report, reinterpret_cast<intptr_t>(this));
    previousCopy_ = Z_SetCopyStatusCallBack(Report, reinterpret_cast<intptr_t>(this));
}

StatusBar::~StatusBar() {
    Z_SetStatusCallBack(previous_, previousData_);
    Z_SetCopyStatusCallBack(previousCopy_, previousCopyData_);
    Wipe();
}

void StatusBar::Wipe() {
    if (isatty(STDERR_FILENO) != 0) std::fputs("\r\033[K", stderr);
}

ReturnCode Z_CALL StatusBar::Report(int32_t percent, intptr_t userData) {
    const auto* bar = reinterpret_cast<const StatusBar*>(userData);
    if (bar->onTerminal_) bar->Draw(percent);
    return interrupted != 0 ? AbortedByUser : Z_SUCCESS;
}

void StatusBar::Draw(int percent) const {
    const int filled = percent * BarCells / 100;
    const std::string bar = std::string(static_cast<size_t>(filled), '#') +
                            std::string(static_cast<size_t>(BarCells - filled), '.');
    std::fprintf(stderr, "\r\033[K%s [%s] %3d %%", title_.c_str(), bar.c_str(), percent);
}

RowProgress::RowProgress(std::string name, int rows)
    : name_(std::move(name)), callback_(Z_GetStatusCallBack(&userData_)), count_(rows) {
    Report();
}

void RowProgress::Report() {
    if (callback_ == nullptr) return;
    const ReturnCode result = callback_(percent_, userData_);
    if (result != Z_SUCCESS) throw Failure(name_, MessageOf(result));
}

void RowProgress::RowDone() {
    const int step = 100 / count_;
    percent_ += step;
    error_ += 100 % count_;
    const bool carry = error_ >= count_;
    if (carry) {
        error_ -= count_;
        ++percent_;
    }
    if (carry || step != 0) Report();
}

} // namespace zkr::app
