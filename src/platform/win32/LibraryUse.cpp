// How the last reference goes without an instruction of the library running after it.
//
// The user-interface thread cannot free the library that it is to return through, and another thread that
// frees it must know that the first one has returned. What tells it is a message that it sends to a window of
// the user-interface thread. The system delivers a message of another thread only inside a call that takes
// messages or waits for them. The library makes no such call between the end of the outermost LibraryUse,
// which starts the waiting, and its return to the system or the terminal. So whoever took the message had
// left the library, or had entered it anew, and then the count of ends or the mark of use differs and the
// waiting starts over.
//
// The window is of a class whose procedure is the system's own, so neither it nor its class needs the
// library. The thread is one of the system's pool, which frees the library itself after the library's
// callback returned.
#include "platform/LibraryUse.h"

#include <windows.h>

#include <utility>

extern "C" const IMAGE_TLS_DIRECTORY _tls_used;

namespace Dravel {
namespace {

constexpr wchar_t kClass[] = L"KRVPLeaveSign";

// Guards what the thread of the pool shares with the user interface.
SRWLOCK g_lock = SRWLOCK_INIT;
bool g_used = false;       // a LibraryUse lives
bool g_waiting = false;    // a callback of the pool waits, or is about to
unsigned g_ends = 0;       // how often the last use has ended
HMODULE g_held = nullptr;  // the library's reference to itself

struct Locked {
    Locked() { AcquireSRWLockExclusive(&g_lock); }
    ~Locked() { ReleaseSRWLockExclusive(&g_lock); }
};

HMODULE Hold() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&g_lock), &self);
    // A program's reference to itself counts nothing.
    return self == GetModuleHandleW(nullptr) ? nullptr : self;
}

// Of the program's instance: one class serves every load of the library.
HWND MakeSign() {
    const HINSTANCE program = GetModuleHandleW(nullptr);
    WNDCLASSW type{};
    type.lpfnWndProc = DefWindowProcW;
    type.hInstance = program;
    type.lpszClassName = kClass;
    RegisterClassW(&type);
    return CreateWindowExW(0, kClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, program, nullptr);
}

// Now that the thread took a message sent after end number `seen`: the reference that ends with the waiting.
// False: the thread has been in the library meanwhile, and the waiting starts over.
bool Ended(unsigned seen, HMODULE& freed) {
    const Locked locked;
    if (!g_used && g_ends != seen) return false;
    g_waiting = false;
    // Used anew: the end of that begins to wait again, and may be through before this callback has returned,
    // which needs a reference of its own until then.
    freed = g_used ? Hold() : std::exchange(g_held, nullptr);
    return true;
}

unsigned Ends() {
    const Locked locked;
    return g_ends;
}

void CALLBACK WaitAndFree(PTP_CALLBACK_INSTANCE instance, void* window) {
    const auto sign = static_cast<HWND>(window);
    CallbackMayRunLong(instance);
    HMODULE freed = nullptr;
    unsigned seen = 0;
    do {
        seen = Ends();
        // Fails at once when the thread has ended, which has left the library, too.
        SendMessageW(sign, WM_NULL, 0, 0);
    } while (!Ended(seen, freed));
    PostMessageW(sign, WM_CLOSE, 0, 0);  // the system's procedure destroys it
    if (freed) FreeLibraryWhenCallbackReturns(instance, freed);
}

}  // namespace

void LeaveThread(void* module) noexcept {
    const auto* callback = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
    while (callback && *callback)
        (*callback++)(module, DLL_THREAD_DETACH, nullptr);
}

void LibraryUse::Begin() noexcept {
    const Locked locked;
    g_used = true;
    if (!g_held) g_held = Hold();
}

void LibraryUse::End() noexcept {
    {
        const Locked locked;
        g_used = false;
        ++g_ends;
        if (!g_held || g_waiting) return;
        g_waiting = true;
    }
    // The thread that frees the library cannot do this for the one that used it.
    LeaveThread(g_held);
    // Making a window may call a hook of the terminal's, and that the library: nobody else begins to wait
    // then.
    const HWND sign = MakeSign();
    if (sign && TrySubmitThreadpoolCallback(WaitAndFree, sign, nullptr)) return;
    // Kept until the next end.
    if (sign) DestroyWindow(sign);
    const Locked locked;
    g_waiting = false;
}

}  // namespace Dravel
