// A manual-reset event: set until somebody resets it.
#pragma once

#include <cstdint>
#include <memory>

namespace KRV::Thread {

enum class WaitResult : std::uint8_t { Signalled, TimedOut, Failed };

// Any thread may call any operation. When the system has no event left, Valid() is false and Wait answers
// Failed.
class CKRVEvent {
 public:
    CKRVEvent();
    ~CKRVEvent();
    CKRVEvent(const CKRVEvent&) = delete;
    CKRVEvent& operator=(const CKRVEvent&) = delete;

    bool Valid() const;
    void Set();
    void Reset();
    WaitResult Wait(std::uint32_t milliseconds);

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// The system's number of the calling thread's last failure, for the log.
std::uint32_t LastSystemError();

}  // namespace KRV::Thread
