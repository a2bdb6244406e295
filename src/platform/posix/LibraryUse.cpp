#include "platform/LibraryUse.h"

namespace Dravel {

// Nobody frees a program.
void LibraryUse::Begin() noexcept {}
void LibraryUse::End() noexcept {}

void LeaveThread(void*) noexcept {}

}  // namespace Dravel
