// What the domain asks of the terminal. Implemented by `plugin` over the terminal's callbacks, by tests over
// a fake.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>

#include "host/HostTypes.h"

class CTagMessageWriter;

namespace Dravel {

// All calls on the user-interface thread. A callback that the terminal does not export answers nothing.
class IHost {
 public:
    virtual ~IHost() = default;
    // `kind` is one of master::*, at most 6 texts. The answer is all zero when there is none; it stays valid
    // until the next request.
    virtual MasterAnswer Ask(std::uint32_t kind, std::span<const char* const> texts) = 0;
    MasterAnswer Ask(std::uint32_t kind, std::initializer_list<const char*> texts) {
        return Ask(kind, std::span(texts.begin(), texts.size()));
    }
    // Whether there is a security master to ask at all: who remembers answers need not remember that there
    // are none.
    virtual bool HasSecurityMaster() const = 0;
    // Finishes the frame and hands it over; the terminal copies at once.
    virtual void Send(CTagMessageWriter& frame) = 0;
    // Whether Send reaches anybody: a caller may save itself the building of a frame.
    virtual bool Listens() const = 0;
    // Tells the terminal that a window of the plug-in takes or gives up the keyboard, or is hidden. What the
    // flag means depends on the window: the bar says 0 for focused and 1 for hidden or closed, the grid 1 for
    // taken and 0 for given up.
    virtual void Focus(void* window, int flag) = 0;
    // Address of the plug-in's message entry, as frames carry it.
    virtual std::uint64_t MessageEntry() const = 0;
};

}  // namespace Dravel
