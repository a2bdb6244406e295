#include "platform/Lock.h"

#include <pthread.h>

#include <new>

namespace KRV::Thread {

static_assert(sizeof(pthread_mutex_t) <= 40 && alignof(pthread_mutex_t) <= 8);

static pthread_mutex_t* Section(std::byte* bytes) {
    return std::launder(reinterpret_cast<pthread_mutex_t*>(bytes));
}

CKRVLock::CKRVLock() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(new (section_) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}
CKRVLock::~CKRVLock() {
    pthread_mutex_destroy(Section(section_));
}
void CKRVLock::lock() {
    pthread_mutex_lock(Section(section_));
}
void CKRVLock::unlock() {
    pthread_mutex_unlock(Section(section_));
}

}  // namespace KRV::Thread
