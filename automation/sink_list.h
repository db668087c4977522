// The sinks of an object. While they are told something, any of them may be taken away, and others may come.
#pragma once

#include "automation/array.h"

namespace zkr::automation {

template <typename Sink> class SinkList {
  public:
    // The cookie of the new sink, 1 and more; 0 where memory is short.
    uint32_t Add(Sink sink) {
        if (count_ == places_.Count() && !places_.Resize(count_ == 0 ? 4 : 2 * count_)) return 0;
        places_[count_++] = {sink, ++lastCookie_};
        return lastCookie_;
    }
    // False for a cookie that is none; removed gets the sink.
    bool Remove(uint32_t cookie, Sink* removed = nullptr) {
        for (int32_t index = 0; index < count_; ++index) {
            if (places_[index].Cookie != cookie || cookie == 0) continue;
            if (removed != nullptr) *removed = places_[index].Value;
            places_[index].Cookie = 0;
            if (firing_ == 0) Close();
            return true;
        }
        return false;
    }
    int32_t Count() const { return count_; }
    // Passes each sink and its cookie to a function, as far as they are there now and still are when their turn comes.
    template <typename Call> void ForEach(Call call) {
        ++firing_;
        const int32_t count = count_;
        for (int32_t index = 0; index < count; ++index)
            if (places_[index].Cookie != 0) call(places_[index].Value, places_[index].Cookie);
        if (--firing_ == 0) Close();
    }

  private:
    struct Place {
        Sink Value;
        uint32_t Cookie; // 0 for a sink that is gone
    };

    void Close() {
        int32_t kept = 0;
        for (int32_t index = 0; index < count_; ++index)
            if (places_[index].Cookie != 0) places_[kept++] = places_[index];
        count_ = kept;
    }

    Values<Place> places_;
    int32_t count_ = 0;
    int32_t firing_ = 0;
    uint32_t lastCookie_ = 0;
};

} // namespace zkr::automation
