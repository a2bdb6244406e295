// The writer: a thread that carries out write items, so that saving never holds up the user-interface thread.
#pragma once

#include <cstdint>
#include <deque>

#include "platform/Event.h"
#include "platform/Lock.h"
#include "platform/Thread.h"
#include "records/ADAStore.h"
#include "support/Log.h"

namespace KRV::Base {

inline constexpr std::uint32_t kWriterWakeUp = 5000;  // milliseconds

// Something that the writer's thread does again and again, beside the items.
class IWriterChore {
 public:
    // Milliseconds until it is due; 0: now.
    virtual std::uint32_t DueIn() noexcept = 0;
    virtual void RunDue() noexcept = 0;

 protected:
    ~IWriterChore() = default;
};

// Made and stopped on one thread, posted to from any. Items are carried out one after another in the order of
// posting, each once: on the thread, or, those left at the stop, on the thread that stops.
class CKRVADAWriteAsync {
 public:
    // Starts the thread; without an event or a thread it does not run, and says so in the log. `chore`, if
    // any, outlives the writer; it is carried out whenever it is due and no item is under way.
    explicit CKRVADAWriteAsync(Dravel::ILog& log, IWriterChore* chore = nullptr);
    ~CKRVADAWriteAsync();  // stops
    CKRVADAWriteAsync(const CKRVADAWriteAsync&) = delete;
    CKRVADAWriteAsync& operator=(const CKRVADAWriteAsync&) = delete;

    // Takes the item over. False, the item staying the caller's: the writer does not run.
    bool Post(IADAItem* item);
    // The chore is due earlier than it was. False: the writer does not run.
    bool Wake();
    // Returns once all that was posted is carried out and the thread is gone. Again: does nothing.
    void Stop();

 private:
    bool StartThread();
    void Work() noexcept;
    // Once the running flag is cleared nothing more is taken here: false.
    bool BeginRound();
    IADAItem* Take();
    std::uint32_t Pause() noexcept;

    Dravel::ILog& log_;
    IWriterChore* const chore_;
    Thread::CKRVLock lock_;  // guards the queue and both flags
    Thread::CKRVEvent event_;
    Thread::CKRVThread thread_;
    bool running_ = false;
    std::deque<IADAItem*> queue_;
    bool itemsRemain_ = false;
};

}  // namespace KRV::Base
