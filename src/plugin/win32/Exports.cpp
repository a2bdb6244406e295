#include "plugin/win32/Exports.h"

#include <windows.h>

#include "message/TagMessageReader.h"
#include "platform/LibraryUse.h"
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

#ifdef __GLIBCXX__
namespace __gnu_cxx {
void __freeres();
}
#endif

// The C++ run-time that is linked in takes 72 KB at the start, for exceptions when memory has run out, and
// leaves them to the end of the process. The process goes on without this library.
static void GiveBackReserve() {
#ifdef __GLIBCXX__
    __gnu_cxx::__freeres();
#endif
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
        Dravel::LeaveThread(module);
        GiveBackReserve();
    }
    return TRUE;
}
