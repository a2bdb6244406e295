#include "platform/Thread.h"

#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/FloatingPoint.h"

namespace KRV::Thread {

struct CKRVThread::Impl {
    std::thread thread;
};

CKRVThread::CKRVThread() : impl_(std::make_unique<Impl>()) {}
CKRVThread::~CKRVThread() = default;

bool CKRVThread::Start(std::function<void()> work) try {
    impl_->thread = std::thread([work = std::move(work)] {
        const Dravel::FloatingPointScope ours;  // a thread begins with the state of the one that made it
        work();
    });
    return true;
} catch (const std::system_error& error) {
    errno = error.code().value();
    return false;
}

bool CKRVThread::Runs() const {
    return impl_->thread.joinable();
}

void CKRVThread::Join() {
    impl_->thread.join();
}

}  // namespace KRV::Thread
