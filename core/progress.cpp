// Where progress meets the thread's settings.
#include "core/progress.h"

#include <algorithm>

namespace zkr {

StatusReceiver StatusReceiver::Status() {
    StatusReceiver receiver{};
    receiver.Callback = Z_GetStatusCallBack(&receiver.UserData);
    return receiver;
}

StatusReceiver StatusReceiver::Copy() {
    StatusReceiver receiver{};
    receiver.Callback = Z_GetCopyStatusCallBack(&receiver.UserData);
    return receiver;
}

ReturnCode ProgressStage::Begin(int32_t start, int32_t end, int32_t total) {
    receiver_ = StatusReceiver::Status();
    counter_ = PercentCounter(start, end, total);
    total_ = total;
    units_ = 0;
    const ReturnCode status = receiver_.Report(start);
    if (status == code::Success) Silence();
    return status;
}

ReturnCode ProgressStage::Report(int32_t innerPercent) {
    Restore();
    const auto units = static_cast<int32_t>(int64_t{innerPercent} * total_ / 100);
    const bool moved = counter_.Advance(std::max(units - units_, 0));
    units_ = std::max(units, units_);
    const ReturnCode status = moved ? receiver_.Report(counter_.Percent()) : code::Success;
    if (innerPercent < 100) Silence();
    return status;
}

void ProgressStage::Silence() {
    if (receiver_.Callback == nullptr) return;
    Z_SetStatusCallBack(nullptr, 0);
    silent_ = true;
}

void ProgressStage::Restore() {
    if (!silent_) return;
    Z_SetStatusCallBack(receiver_.Callback, receiver_.UserData);
    silent_ = false;
}

} // namespace zkr
