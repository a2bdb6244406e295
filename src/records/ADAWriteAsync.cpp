#include "records/ADAWriteAsync.h"

#include <chrono>
#include <mutex>
#include <string>
#include <thread>

namespace KRV::Base {

using Dravel::LogLevel;

namespace {
constexpr char kContext[] = "KRV::Base::CKRVADAWriteAsync::StartThread";
}

CKRVADAWriteAsync::CKRVADAWriteAsync(Dravel::ILog& log) : log_(log) {
    if (!event_.Valid()) {
        log_.Line(LogLevel::Error, kContext,
                  "CreateEvent failed:" + std::to_string(Thread::LastSystemError()));
        return;
    }
    running_ = true;
    if (!StartThread()) running_ = false;
}

CKRVADAWriteAsync::~CKRVADAWriteAsync() {
    Stop();
}

bool CKRVADAWriteAsync::StartThread() {
    if (thread_.Start([this] { Work(); })) return true;
    log_.Line(LogLevel::Error, kContext,
              "Faild to start thread:" + std::to_string(Thread::LastSystemError()));
    return false;
}

bool CKRVADAWriteAsync::Post(IADAItem* item) {
    const std::lock_guard guard(lock_);
    if (!running_) return false;
    queue_.push_back(item);
    itemsRemain_ = true;
    event_.Set();
    return true;
}

void CKRVADAWriteAsync::Stop() {
    {
        const std::lock_guard guard(lock_);
        running_ = false;
    }
    event_.Set();
    if (thread_.Runs()) thread_.Join();
    while (IADAItem* item = Take()) {
        CarryOut(*item);
    }
}

// The event is reset before anything is taken, under the lock that Post holds when it sets it: an item that
// comes later sets it again, so none waits for the time-out.
bool CKRVADAWriteAsync::BeginRound() {
    const std::lock_guard guard(lock_);
    if (running_) event_.Reset();
    return running_;
}

IADAItem* CKRVADAWriteAsync::Take() {
    const std::lock_guard guard(lock_);
    IADAItem* item = nullptr;
    if (itemsRemain_) {
        item = queue_.front();
        queue_.pop_front();
        itemsRemain_ = !queue_.empty();
    }
    return item;
}

void CKRVADAWriteAsync::Work() noexcept {
    bool waits = true;
    do {
        while (IADAItem* item = Take()) {
            CarryOut(*item);
        }
        if (waits && event_.Wait(kWriterWakeUp) == Thread::WaitResult::Failed) {
            log_.Line(LogLevel::Error, kContext,
                      "WaitForSingleObject failed: " + std::to_string(Thread::LastSystemError()));
            waits = false;
        }
        if (!waits) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    } while (BeginRound());
}

}  // namespace KRV::Base
