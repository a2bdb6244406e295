#include "platform/Event.h"

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace KRV::Thread {

struct CKRVEvent::Impl {
    std::mutex mutex;
    std::condition_variable changed;
    bool set = false;
};

CKRVEvent::CKRVEvent() : impl_(std::make_unique<Impl>()) {}
CKRVEvent::~CKRVEvent() = default;
bool CKRVEvent::Valid() const {
    return true;
}

void CKRVEvent::Set() {
    std::lock_guard guard(impl_->mutex);
    impl_->set = true;
    impl_->changed.notify_all();
}

void CKRVEvent::Reset() {
    std::lock_guard guard(impl_->mutex);
    impl_->set = false;
}

WaitResult CKRVEvent::Wait(std::uint32_t milliseconds) {
    std::unique_lock guard(impl_->mutex);
    // The system clock, because the thread sanitizer does not know the wait on the steady one.
    const auto until = std::chrono::system_clock::now() + std::chrono::milliseconds(milliseconds);
    return impl_->changed.wait_until(guard, until, [this] { return impl_->set; }) ? WaitResult::Signalled
                                                                                  : WaitResult::TimedOut;
}

std::uint32_t LastSystemError() {
    return static_cast<std::uint32_t>(errno);
}

}  // namespace KRV::Thread
