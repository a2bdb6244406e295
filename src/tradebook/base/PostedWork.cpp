#include "tradebook/base/PostedWork.h"

#include <mutex>
#include <utility>

namespace Dravel {

void PostedWork::Add(std::function<void()> work, const std::function<void()>& wake) {
    std::lock_guard guard(lock_);
    if (closed_) return;
    waiting_.push_back(std::move(work));
    wake();
}

std::function<void()> PostedWork::Next() {
    std::lock_guard guard(lock_);
    if (waiting_.empty()) return {};
    auto work = std::move(waiting_.front());
    waiting_.pop_front();
    return work;
}

void PostedWork::Run(void (*begin)(const std::function<void()>& work)) {
    while (const auto work = Next())
        begin(work);
}

void PostedWork::Close() {
    std::lock_guard guard(lock_);
    closed_ = true;
    waiting_.clear();
}

}  // namespace Dravel
