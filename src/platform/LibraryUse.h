// Keeps the library in the process while its code runs, whoever frees it meanwhile.
#pragma once

namespace Dravel {

// One is the first local of every procedure and entry through which the world calls the library, and one
// lives with the bar. They nest; user-interface thread only. While one lives the library holds a reference to
// itself. The reference of the last one is given back only when the thread has returned from the library: its
// code may call what frees the library (the terminal's own menu does) and still return through its own
// instructions. A thread that takes no more messages keeps the library until the process ends. In a program
// there is nothing to hold.
class LibraryUse {
 public:
    LibraryUse() noexcept {
        if (uses_++ == 0) Begin();
    }
    ~LibraryUse() {
        if (--uses_ == 0) End();
    }
    LibraryUse(const LibraryUse&) = delete;
    LibraryUse& operator=(const LibraryUse&) = delete;

 private:
    static void Begin() noexcept;
    static void End() noexcept;

    static inline int uses_ = 0;
};

// The thread library that is linked in keeps two handles and some memory for every thread that it has met,
// until the thread ends. The host's thread goes on without this library, so it is told here that the calling
// one has ended; what it keeps for a thread that comes again it makes anew. `module` is the library's handle.
void LeaveThread(void* module) noexcept;

}  // namespace Dravel
