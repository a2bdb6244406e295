// A minidump of the process when it dies of an exception that nobody handles.
#pragma once

#include <filesystem>

namespace Dravel {

// Writes `folder`\Dravel_yyyyMMdd_HHmm.dmp (local time) for the first unhandled exception of the process,
// whoever caused it, or for an abort (std::terminate ends in one) of a run-time that is shared with the
// program, then hands on to who watched before. What lies on the stacks goes into the dump, the book does
// not.
//
// Call on the user-interface thread, outside DllMain: loads dbghelp.dll from the system's folder. Again: does
// nothing.
void InstallCrashDump(const std::filesystem::path& folder);
// Puts back what was there before, as far as it is still this filter that is set. Waits for nothing.
void RemoveCrashDump() noexcept;

// The thread that writes the dump, since the one that crashed may have no stack left. It lives with this
// object; without one, a thread is made in the crash, which the system refuses while it loads a library.
class CrashDumpThread {
 public:
    CrashDumpThread();
    ~CrashDumpThread();  // ends it
    CrashDumpThread(const CrashDumpThread&) = delete;
    CrashDumpThread& operator=(const CrashDumpThread&) = delete;
};

}  // namespace Dravel
