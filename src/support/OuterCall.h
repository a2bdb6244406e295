// What must outlive the calls that still use it. The terminal may end the bar, or its whole frame, while a
// box of ours is open or a request to it is under way; what the bar owned is on the stack then.
#pragma once

#include <memory>

#include "platform/LibraryUse.h"

namespace Dravel {

// One stands in every place where the world calls the library on the user-interface thread: exports and
// window procedures. They nest.
class OuterCall {
 public:
    OuterCall() noexcept;
    // That of the outermost deletes what was kept, in the order in which it came.
    ~OuterCall();
    OuterCall(const OuterCall&) = delete;
    OuterCall& operator=(const OuterCall&) = delete;

 private:
    LibraryUse use_;  // ends after what was kept has gone
};

// Keeps the object until the calls that are under way have ended; without one it is deleted at once.
// User-interface thread.
void KeepForCalls(std::shared_ptr<void> object);

}  // namespace Dravel
