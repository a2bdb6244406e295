// The critical section that guards everything which two threads touch.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KRV::Thread {

// Times that a thread spins before it sleeps on a held lock.
inline constexpr std::uint32_t kLockSpinCount = 262144;

// A lock that its owner may take again. Holds the system's own critical section in place (40 bytes: it is
// part of structures that host and plug-in share), so it is never copied or moved.
class CKRVLock {
 public:
    CKRVLock();
    ~CKRVLock();
    CKRVLock(const CKRVLock&) = delete;
    CKRVLock& operator=(const CKRVLock&) = delete;

    void lock();
    void unlock();

 private:
    alignas(8) std::byte section_[40];
};
static_assert(sizeof(CKRVLock) == 40 && alignof(CKRVLock) == 8);

}  // namespace KRV::Thread
