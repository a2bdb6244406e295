// Work that waits for the user-interface thread.
#pragma once

#include <deque>
#include <functional>

#include "platform/Lock.h"

namespace Dravel {

// Begun in the order in which it came, whatever the work itself does: a piece that opens a box runs the
// thread's messages until the box is answered, and what waits behind it is begun there, before anything that
// comes later.
class PostedWork {
 public:
    // Any thread. `wake` runs while the work cannot be taken away; it is to have Run called, and may not call
    // back here. Does nothing after Close.
    void Add(std::function<void()> work, const std::function<void()>& wake);
    // User-interface thread: hands everything that waits to `begin`, one after another.
    void Run(void (*begin)(const std::function<void()>& work));
    // What has not begun is dropped.
    void Close();

 private:
    std::function<void()> Next();

    KRV::Thread::CKRVLock lock_;  // guards the rest
    std::deque<std::function<void()>> waiting_;
    bool closed_ = false;
};

}  // namespace Dravel
