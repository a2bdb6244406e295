// No part of what runs in a crash takes memory or a lock of the run-time: both may be what is broken.
#include "support/win32/CrashDump.h"

#include <windows.h>

#include <dbghelp.h>

#include <atomic>
#include <csignal>
#include <string>

#include "platform/LongPath.h"

namespace Dravel {

namespace {

constexpr ULONG kStackForFilter = 32 * 1024;  // kept free on the user-interface thread
constexpr DWORD kLongestDump = 20000;         // milliseconds that a crash waits for its dump
constexpr DWORD kTerminated = 0xE0445256;     // stands for an abort; the system leaves 0xE... to programs
constexpr std::size_t kFolderRoom = 32000;    // characters; the system's longest path less our file's name

using SignalHandler = void (*)(int);
using WriteDumpFunction = decltype(&MiniDumpWriteDump);

struct State {
    bool installed = false;
    wchar_t path[kFolderRoom + 64];  // the folder with its closing backslash; in a crash the file's name, too
    std::size_t folderLength = 0;
    WriteDumpFunction writeDump = nullptr;
    LPTOP_LEVEL_EXCEPTION_FILTER before = nullptr;
    SignalHandler abortBefore = SIG_DFL;
    HANDLE thread = nullptr, crashed = nullptr, ending = nullptr;  // the helper and what wakes it

    std::atomic<bool> taken = false;  // the first crash is the one that tells something
    EXCEPTION_POINTERS* exception = nullptr;
    DWORD culprit = 0;
};
State g_state;

// Every level of the folder.
void MakeFolder(wchar_t* path) {
    for (wchar_t* at = path + 3; *at; ++at) {
        if (*at != L'\\') continue;
        *at = 0;
        CreateDirectoryW(path, nullptr);
        *at = L'\\';
    }
}

void WriteDump() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    wsprintfW(g_state.path + g_state.folderLength, L"Dravel_%04d%02d%02d_%02d%02d.dmp", now.wYear, now.wMonth,
              now.wDay, now.wHour, now.wMinute);
    MakeFolder(g_state.path);
    const HANDLE file = CreateFileW(g_state.path, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    MINIDUMP_EXCEPTION_INFORMATION cause{g_state.culprit, g_state.exception, FALSE};
    const auto kind =
        static_cast<MINIDUMP_TYPE>(MiniDumpNormal | MiniDumpWithUnloadedModules | MiniDumpWithThreadInfo);
    const bool done = g_state.writeDump(GetCurrentProcess(), GetCurrentProcessId(), file, kind, &cause,
                                        nullptr, nullptr) != FALSE;
    CloseHandle(file);
    if (!done) DeleteFileW(g_state.path);
}

DWORD WINAPI DumpAtOnce(void*) {
    WriteDump();
    return 0;
}

DWORD WINAPI DumpWhenCrashed(void*) {
    const HANDLE either[] = {g_state.ending, g_state.crashed};
    if (WaitForMultipleObjects(2, either, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) WriteDump();
    return 0;
}

void LeaveDump(EXCEPTION_POINTERS* exception) {
    if (g_state.taken.exchange(true)) return;
    g_state.exception = exception;
    g_state.culprit = GetCurrentThreadId();
    HANDLE helper = g_state.thread;
    if (helper) {
        SetEvent(g_state.crashed);
    } else {
        helper = CreateThread(nullptr, 0, DumpAtOnce, nullptr, 0, nullptr);
    }
    WaitForSingleObject(helper, kLongestDump);
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
    LeaveDump(exception);
    return g_state.before ? g_state.before(exception) : EXCEPTION_CONTINUE_SEARCH;
}

// What std::terminate comes to. It passes the filter by: a program whose C++ run-time is not the system's own
// gets here with an exception that nobody caught.
void OnAbort(int signal) {
    CONTEXT context;
    RtlCaptureContext(&context);
    EXCEPTION_RECORD record{};
    record.ExceptionCode = kTerminated;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void*>(context.Rip);
    EXCEPTION_POINTERS exception{&record, &context};
    LeaveDump(&exception);
    if (g_state.abortBefore != SIG_DFL && g_state.abortBefore != SIG_IGN) g_state.abortBefore(signal);
}

WriteDumpFunction FindWriteDump() {
    const HMODULE library = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (!library) return nullptr;
    return reinterpret_cast<WriteDumpFunction>(
        reinterpret_cast<void*>(GetProcAddress(library, "MiniDumpWriteDump")));
}

}  // namespace

void InstallCrashDump(const std::filesystem::path& folder) {
    const std::wstring text = LongPathForm(std::filesystem::absolute(folder).wstring()) + L'\\';
    if (g_state.installed || text.size() > kFolderRoom) return;
    text.copy(g_state.path, text.size());
    g_state.folderLength = text.size();
    g_state.writeDump = FindWriteDump();
    if (!g_state.writeDump) return;
    ULONG room = kStackForFilter;
    SetThreadStackGuarantee(&room);
    g_state.before = SetUnhandledExceptionFilter(OnUnhandledException);
    g_state.abortBefore = std::signal(SIGABRT, OnAbort);
    if (g_state.abortBefore == SIG_ERR) g_state.abortBefore = SIG_DFL;
    g_state.installed = true;
}

void RemoveCrashDump() noexcept {
    if (!g_state.installed) return;
    const auto current = SetUnhandledExceptionFilter(g_state.before);
    if (current != OnUnhandledException) SetUnhandledExceptionFilter(current);
    const SignalHandler handler = std::signal(SIGABRT, g_state.abortBefore);
    if (handler != OnAbort && handler != SIG_ERR) std::signal(SIGABRT, handler);
    g_state.installed = false;
}

CrashDumpThread::CrashDumpThread() {
    if (!g_state.installed) return;
    g_state.crashed = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    g_state.ending = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (!g_state.crashed || !g_state.ending) return;
    g_state.thread = CreateThread(nullptr, 0, DumpWhenCrashed, nullptr, 0, nullptr);
}

CrashDumpThread::~CrashDumpThread() {
    if (g_state.thread) {
        SetEvent(g_state.ending);
        WaitForSingleObject(g_state.thread, INFINITE);
    }
    for (HANDLE* handle : {&g_state.thread, &g_state.crashed, &g_state.ending}) {
        if (*handle) CloseHandle(*handle);
        *handle = nullptr;
    }
}

}  // namespace Dravel
