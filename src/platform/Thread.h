// A thread of ours. Not the run-time's own: that one keeps a handle for each library that ever made one,
// beyond the library's end.
#pragma once

#include <functional>
#include <memory>

namespace KRV::Thread {

// Started and joined on one thread. Must be joined before it is destroyed.
class CKRVThread {
 public:
    CKRVThread();
    ~CKRVThread();
    CKRVThread(const CKRVThread&) = delete;
    CKRVThread& operator=(const CKRVThread&) = delete;

    // Runs `work`, which must not throw, under our own floating point state. False: the system has no thread
    // left.
    bool Start(std::function<void()> work);
    bool Runs() const;
    void Join();

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace KRV::Thread
