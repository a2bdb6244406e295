#include "platform/Thread.h"

#include <windows.h>

#include <utility>

#include "platform/FloatingPoint.h"

namespace KRV::Thread {

struct CKRVThread::Impl {
    std::function<void()> work;
    HANDLE handle = nullptr;
};

static DWORD WINAPI Run(void* work) {
    const Dravel::FloatingPointScope ours;  // other libraries have heard of the thread before
    (*static_cast<std::function<void()>*>(work))();
    return 0;
}

CKRVThread::CKRVThread() : impl_(std::make_unique<Impl>()) {}
CKRVThread::~CKRVThread() = default;

bool CKRVThread::Start(std::function<void()> work) {
    impl_->work = std::move(work);
    impl_->handle = CreateThread(nullptr, 0, Run, &impl_->work, 0, nullptr);
    return Runs();
}

bool CKRVThread::Runs() const {
    return impl_->handle != nullptr;
}

void CKRVThread::Join() {
    WaitForSingleObject(impl_->handle, INFINITE);
    CloseHandle(std::exchange(impl_->handle, nullptr));
}

}  // namespace KRV::Thread
