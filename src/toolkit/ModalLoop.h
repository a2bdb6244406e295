// Which windows of ours hold the user at the moment.
#pragma once

#include <cstdint>

#include "platform/Clock.h"
#include "platform/FloatingPoint.h"
#include "toolkit/ActivationContext.h"

namespace Dravel {

// Stands round each call that returns only when the user has answered: dialogs, boxes, the system's dialogs.
// Their windows are made of the current controls. User-interface thread; they nest.
class ModalLoop {
 public:
    ModalLoop() noexcept { ++open_; }
    ~ModalLoop() {
        --open_;
        Ended();
    }
    ModalLoop(const ModalLoop&) = delete;
    ModalLoop& operator=(const ModalLoop&) = delete;

    static bool Runs() { return open_ > 0; }
    // A dialog, box or menu has gone. When the last one did, in ticks of the system's clock; 0: none yet.
    static void Ended() { endedAt_ = SystemClock().Ticks(); }
    static std::uint64_t EndedAt() { return endedAt_; }

 private:
    static inline int open_ = 0;
    static inline std::uint64_t endedAt_ = 0;
    FloatingPointScope whateverItLeaves_;  // the terminal's windows live meanwhile
    ActivationScope controls_;
};

}  // namespace Dravel
