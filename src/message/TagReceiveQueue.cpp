// The byte queue: appending by the host or the plug-in, reading by the other.
#include "message/TagReceiveQueue.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <ostream>

CTagReceiveQueue::CTagReceiveQueue(std::uint32_t capacity, bool growable) : growable_(growable ? 1 : 0) {
    if (capacity == 0) return;
    array_ = static_cast<std::uint8_t*>(std::malloc(capacity));
    capacity_ = array_ != nullptr ? capacity : 0;
}

CTagReceiveQueue::~CTagReceiveQueue() {
    std::free(array_);
}

bool CTagReceiveQueue::Append(const void* data, std::int32_t length, bool lock) {
    if (data == nullptr || length < 1) return false;
    std::unique_lock guard(lock_, std::defer_lock);
    if (lock) guard.lock();
    const std::uint64_t needed = std::uint64_t{write_} + static_cast<std::uint32_t>(length);
    if (needed > capacity_ && !GrowTo(needed)) return false;
    std::memcpy(array_ + write_, data, static_cast<std::size_t>(length));
    write_ = static_cast<std::uint32_t>(needed);
    return true;
}

bool CTagReceiveQueue::GrowTo(std::uint64_t needed) {
    if (growable_ == 0 || needed > std::numeric_limits<std::uint32_t>::max()) return false;
    void* larger = std::realloc(array_, static_cast<std::size_t>(needed));
    if (larger == nullptr) return false;
    array_ = static_cast<std::uint8_t*>(larger);
    capacity_ = static_cast<std::uint32_t>(needed);
    return true;
}

std::uint32_t CTagReceiveQueue::Count() {
    std::lock_guard guard(lock_);
    return UnreadCount();
}

const std::uint8_t* CTagReceiveQueue::Unread() {
    std::lock_guard guard(lock_);
    return array_ != nullptr ? array_ + read_ : nullptr;
}

bool CTagReceiveQueue::FlushTo(std::ostream& stream) {
    std::lock_guard guard(lock_);
    const std::uint32_t count = UnreadCount();
    if (count != 0) stream.write(reinterpret_cast<const char*>(array_ + read_), count);
    if (!stream) return false;
    read_ = write_;
    return true;
}

void CTagReceiveQueue::Consume(std::uint32_t bytes) {
    std::lock_guard guard(lock_);
    read_ += std::min(bytes, UnreadCount());
}
