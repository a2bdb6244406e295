#include "platform/Event.h"

#include <windows.h>

namespace KRV::Thread {

struct CKRVEvent::Impl {
    HANDLE handle = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ~Impl() {
        if (handle) CloseHandle(handle);
    }
};

CKRVEvent::CKRVEvent() : impl_(std::make_unique<Impl>()) {}
CKRVEvent::~CKRVEvent() = default;
bool CKRVEvent::Valid() const {
    return impl_->handle != nullptr;
}

void CKRVEvent::Set() {
    if (Valid()) SetEvent(impl_->handle);
}

void CKRVEvent::Reset() {
    if (Valid()) ResetEvent(impl_->handle);
}

WaitResult CKRVEvent::Wait(std::uint32_t milliseconds) {
    if (!Valid()) return WaitResult::Failed;
    switch (WaitForSingleObject(impl_->handle, milliseconds)) {
        case WAIT_OBJECT_0:
            return WaitResult::Signalled;
        case WAIT_TIMEOUT:
            return WaitResult::TimedOut;
        default:
            return WaitResult::Failed;
    }
}

std::uint32_t LastSystemError() {
    return GetLastError();
}

}  // namespace KRV::Thread
