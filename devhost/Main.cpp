// The development host: VELTSHost.exe [--script FILE] [--out FOLDER] [--plugin DLL] [--master CSV] [--clients
// CSV]
#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include <string>
#include <string_view>

#include "ScriptRunner.h"
#include "Terminal.h"

using namespace Dravel::DevHost;

namespace {

constexpr int kBadCommandLine = 2;

struct Switch {
    const wchar_t* name;
    std::filesystem::path Options::*path;
};
constexpr Switch kSwitches[] = {{L"--script", &Options::script},
                                {L"--out", &Options::out},
                                {L"--plugin", &Options::plugin},
                                {L"--master", &Options::master},
                                {L"--clients", &Options::clients}};

// Paths count from the folder that the program was started in, which the terminal leaves for its own.
bool ReadCommandLine(Options& options) {
    int count = 0;
    wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
    bool good = words && count % 2 == 1;
    for (int i = 1; good && i + 1 < count; i += 2) {
        bool known = false;
        for (const Switch& option : kSwitches) {
            if (std::wstring_view(words[i]) != option.name) continue;
            options.*option.path = std::filesystem::absolute(words[i + 1]);
            known = true;
        }
        good = known;
    }
    LocalFree(words);
    return good;
}

void RunMessages(const Terminal& terminal) {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
        if (terminal.crash) terminal.crash();
    }
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
    Options options;
    if (!ReadCommandLine(options)) return kBadCommandLine;
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES};
    InitCommonControlsEx(&controls);
    Terminal terminal(options);
    if (!terminal.CreateFrame()) return 1;
    if (options.script.empty()) {
        // As a terminal in daily use: the plug-in is loaded and the book stands open.
        std::string error;
        if (!terminal.LoadPlugin(error) || !terminal.OpenBook()) {
            MessageBoxA(nullptr, error.c_str(), "VELTS Terminal", MB_ICONWARNING);
        }
        RunMessages(terminal);
        return 0;
    }
    terminal.endsWithFrame = false;
    ScriptRunner runner(terminal, options.script, options.out);
    RunMessages(terminal);
    return runner.ExitCode();
}
