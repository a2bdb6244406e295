// The library that the toolkit's windows belong to: its handle and the window classes registered under it.
#pragma once

#include "support/Log.h"

namespace Dravel {

// The library's HINSTANCE. Set once, before the first window; UI thread.
void SetModule(void* instance);
void* Module();

// Where a failure that must not leave a window procedure is told; may be null.
void SetFailureLog(ILog* log);
// Never throws.
void ReportFailure(const char* where, const char* what) noexcept;

// Registers a window class for the module, once a run. The system keeps a class beyond the library that
// registered it, with a procedure that is then no longer there; one left behind by an earlier load is
// replaced. Null style bits: none. `procedure` is a WNDPROC, `cursor` an IDC_ number. False when the class
// can't be had.
bool RegisterWindowClass(const wchar_t* name, void* procedure, std::uint32_t style, std::uint32_t cursor);

// Unregisters every class whose windows are gone and gives back the activation context. Call before
// FreeLibrary (it is allowed in DllMain's detach: it waits for nothing); windows can be made again
// afterwards.
void ReleaseModule() noexcept;

}  // namespace Dravel
