// The notices that were shown, so that one which left the screen unread can still be read.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "platform/Clock.h"

namespace Dravel {

// User-interface thread. Lives as long as the bar.
class NoticeList {
 public:
    struct Notice {
        std::string time;  // local, "dd/MM/yyyy HH:mm:ss"
        std::string text;
    };
    static constexpr std::size_t kMost = 1000;  // an older one makes room

    explicit NoticeList(const IClock& clock) : clock_(clock) {}

    void Add(std::string_view text);
    const std::deque<Notice>& All() const { return notices_; }  // the oldest first
    // Called after each notice; empty: nobody listens.
    void SetListener(std::function<void()> listener) { listener_ = std::move(listener); }

 private:
    const IClock& clock_;
    std::deque<Notice> notices_;
    std::function<void()> listener_;
};

}  // namespace Dravel
