#include "platform/Lock.h"

#include <windows.h>

#include <new>

namespace KRV::Thread {

static_assert(sizeof(CRITICAL_SECTION) == 40 && alignof(CRITICAL_SECTION) == 8);

static CRITICAL_SECTION* Section(std::byte* bytes) {
    return std::launder(reinterpret_cast<CRITICAL_SECTION*>(bytes));
}

CKRVLock::CKRVLock() {
    InitializeCriticalSectionAndSpinCount(new (section_) CRITICAL_SECTION, kLockSpinCount);
}
CKRVLock::~CKRVLock() {
    DeleteCriticalSection(Section(section_));
}
void CKRVLock::lock() {
    EnterCriticalSection(Section(section_));
}
void CKRVLock::unlock() {
    LeaveCriticalSection(Section(section_));
}

}  // namespace KRV::Thread
