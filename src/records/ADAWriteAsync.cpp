#include "records/ADAWriteAsync.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>

namespace KRV::Base {

using Dravel::LogLevel;

namespace {
constexpr char kContext[] = "KRV::Base::CKRVADAWriteAsync::StartThread";
}

CKRVADAWriteAsync::CKRVADAWriteAsync(Dravel::ILog& log, IWriterChore* chore) : log_(log), chore_(chore) {
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

bool CKRVADAWriteAsync::Wake() {
    const std::lock_guard guard(lock_);
    if (running_) event_.Set();
    return running_;
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

// How long the thread may rest, after the chore was seen to.
std::uint32_t CKRVADAWriteAsync::Pause() noexcept {
    if (!chore_) return kWriterWakeUp;
    if (chore_->DueIn() == 0) chore_->RunDue();
    return std::min(chore_->DueIn(), kWriterWakeUp);
}

void CKRVADAWriteAsync::Work() noexcept {
    bool waits = true;
    do {
        while (IADAItem* item = Take()) {
            CarryOut(*item);
            if (chore_ && chore_->DueIn() == 0) chore_->RunDue();
        }
        if (waits && event_.Wait(Pause()) == Thread::WaitResult::Failed) {
            log_.Line(LogLevel::Error, kContext,
                      "WaitForSingleObject failed: " + std::to_string(Thread::LastSystemError()));
            waits = false;
        }
        if (!waits) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    } while (BeginRound());
}

}  // namespace KRV::Base
