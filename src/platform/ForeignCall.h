// Calls of functions that belong to another program: what goes wrong in them stays there.
#pragma once

#include <cstdint>

namespace Dravel {

// How many calls from outside into the library are on the stack of the user-interface thread.
inline int callsFromOutside = 0;

// How such a call ended.
struct ForeignEnd {
    bool returned = true;
    std::uint32_t code = 0;  // of the system's exception that ended it; 0 where the system has none
};

namespace foreign {
using Call = void (*)(const void* work);
ForeignEnd Run(Call call, const void* work) noexcept;
}  // namespace foreign

// Runs `work`, which calls a function of another program and does nothing else: it must own nothing that
// would have to be destroyed. An exception of any language ends it, and so does a fault (an access to memory
// that is not there, a division by zero, an illegal instruction), and the stack is unwound to here. Not
// caught, because nobody could go on behind it: the stack's overflow, what a debugger waits for, and whatever
// goes wrong in this library, called again from there. User-interface thread.
template <class Work>
ForeignEnd CallForeign(const Work& work) noexcept {
    return foreign::Run([](const void* given) { (*static_cast<const Work*>(given))(); }, &work);
}

}  // namespace Dravel
