// Which windows of ours hold the user at the moment.
#pragma once

#include "platform/FloatingPoint.h"
#include "toolkit/ActivationContext.h"

namespace Dravel {

// Stands round each call that returns only when the user has answered: dialogs, boxes, the system's dialogs.
// Their windows are made of the current controls. User-interface thread; they nest.
class ModalLoop {
 public:
    ModalLoop() noexcept { ++open_; }
    ~ModalLoop() { --open_; }
    ModalLoop(const ModalLoop&) = delete;
    ModalLoop& operator=(const ModalLoop&) = delete;

    static bool Runs() { return open_ > 0; }

 private:
    static inline int open_ = 0;
    FloatingPointScope whateverItLeaves_;  // the terminal's windows live meanwhile
    ActivationScope controls_;
};

}  // namespace Dravel
