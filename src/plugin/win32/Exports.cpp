#include "plugin/win32/Exports.h"

#include <windows.h>

#include "message/TagMessageReader.h"
#include "plugin/MessageDispatch.h"
#include "plugin/Registration.h"
#include "plugin/win32/Plugin.h"
#include "toolkit/Guarded.h"
#include "toolkit/Module.h"

namespace {

// One call of the host, which was built by another compiler: no exception may reach it. From the first on a
// crash leaves a dump.
template <typename Work>
void Entered(const char* entry, const Work& work) noexcept {
    Dravel::Guarded(entry, [&] {
        Dravel::Plugin::Instance().WatchForCrashes();
        work();
    });
}

std::uint64_t Address(auto* entry) {
    return reinterpret_cast<std::uintptr_t>(entry);
}

}  // namespace

void GetDllInfo(CTagReceiveQueue* output, std::uint8_t* flag) {
    if (!output || !flag) return;
    // It calls nobody who could free the library, and a host that only asks for this may never take a
    // message.
    Dravel::Shielded("GetDllInfo", false, [&] {
        Dravel::Plugin::Instance().WatchForCrashes();
        Dravel::AppendRegistration(*output, *flag,
                                   {Address(&DravelBar), Address(&OnMessage), Address(&OnPluginMessage)});
        return true;
    });
}

void DravelBar() {
    Entered("DravelBar", [] { Dravel::Plugin::Instance().ShowBar(); });
}

void OnMessage(CTagMessageReader* reader) {
    if (!reader) return;
    Entered("OnMessage", [&] { Dravel::DispatchBroadcast(*reader); });
}

void OnPluginMessage(CTagMessageReader* reader) {
    if (!reader) return;
    Entered("OnPluginMessage", [&] { Dravel::DispatchPluginMessage(*reader, Dravel::Plugin::Instance()); });
}

extern "C" const IMAGE_TLS_DIRECTORY _tls_used;

// The thread library that is linked in keeps handles for every thread that it has met, and gives them back
// when the thread ends. The host's thread goes on without us, so it is told here that for this library the
// thread has ended.
static void LeaveThread(HINSTANCE module) {
    const auto* callback = reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
    while (callback && *callback)
        (*callback++)(module, DLL_THREAD_DETACH, nullptr);
}

// Reads the working folder while it is still the host's own. Waits for nothing, at either end.
BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* reserved) {
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(module);
        Dravel::SetModule(module);
        return Dravel::Shielded("DllMain", FALSE, [] { return Dravel::Plugin::Make(), TRUE; });
    }
    if (reason == DLL_PROCESS_DETACH && !reserved) {
        Dravel::Plugin::Unmake();
        Dravel::ReleaseModule();
        LeaveThread(module);
    }
    return TRUE;
}
