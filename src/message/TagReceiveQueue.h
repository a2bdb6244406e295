// The locked byte queue through which host and plug-in hand frames to each other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "platform/Lock.h"

// Shared with the host by layout. The array comes from malloc. Any thread may call; each operation takes the
// lock. The room of bytes that were read is not used again: a queue serves one exchange.
class CTagReceiveQueue {
 public:
    CTagReceiveQueue(std::uint32_t capacity, bool growable);
    ~CTagReceiveQueue();
    CTagReceiveQueue(const CTagReceiveQueue&) = delete;
    CTagReceiveQueue& operator=(const CTagReceiveQueue&) = delete;

    // False, with nothing written, when there is nothing to append or the queue is full and may not grow; it
    // grows to exactly the needed size. `lock` false: the caller holds the lock.
    bool Append(const void* data, std::int32_t length, bool lock = true);
    std::uint32_t Count();
    // nullptr without an array; valid until the next Append.
    const std::uint8_t* Unread();
    // Writes the unread bytes and takes them as read. False, and they stay unread, when the stream has
    // failed.
    bool FlushTo(std::ostream& stream);
    // Steps over `bytes` unread bytes (all of them at most).
    void Consume(std::uint32_t bytes);

 private:
    // Both with the lock held.
    std::uint32_t UnreadCount() const { return read_ < write_ ? write_ - read_ : 0; }
    bool GrowTo(std::uint64_t needed);

    std::uint8_t* array_ = nullptr;
    std::uint32_t read_ = 0;
    std::uint32_t write_ = 0;
    std::uint32_t capacity_ = 0;
    std::uint8_t growable_ = 0;
    KRV::Thread::CKRVLock lock_;

    friend struct TagReceiveQueueLayout;
};

// The offsets that the host was built with.
struct TagReceiveQueueLayout {
    using Q = CTagReceiveQueue;
    static_assert(offsetof(Q, array_) == 0 && offsetof(Q, read_) == 8 && offsetof(Q, write_) == 12);
    static_assert(offsetof(Q, capacity_) == 16 && offsetof(Q, growable_) == 20 && offsetof(Q, lock_) == 24);
    static_assert(sizeof(Q) == 64);
};
