// The system's library of common dialogs, loaded only while one is open: a linked one costs the host's start,
// and with it the printer's library, each time the plug-in is loaded.
#pragma once

#include <windows.h>
// They need the types of the line above.
#include <cderr.h>
#include <commdlg.h>

namespace Dravel {

class CommonDialogs {
 public:
    CommonDialogs() : library_(LoadLibraryExW(L"comdlg32.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {}
    ~CommonDialogs() {
        if (library_) FreeLibrary(library_);
    }
    CommonDialogs(const CommonDialogs&) = delete;
    CommonDialogs& operator=(const CommonDialogs&) = delete;

    bool OpenFileName(OPENFILENAMEW& request) const { return Call<BOOL>("GetOpenFileNameW", &request) != 0; }
    bool SaveFileName(OPENFILENAMEW& request) const { return Call<BOOL>("GetSaveFileNameW", &request) != 0; }
    bool ChooseFont(CHOOSEFONTW& request) const { return Call<BOOL>("ChooseFontW", &request) != 0; }
    bool ChooseColor(CHOOSECOLORW& request) const { return Call<BOOL>("ChooseColorW", &request) != 0; }
    DWORD LastError() const { return Call<DWORD>("CommDlgExtendedError"); }

 private:
    // 0, as for a dialog that the user cancelled, when the system has no such function.
    template <typename Result, typename... Arguments>
    Result Call(const char* name, Arguments... arguments) const {
        const FARPROC found = library_ ? GetProcAddress(library_, name) : nullptr;
        const auto function = reinterpret_cast<Result(WINAPI*)(Arguments...)>(reinterpret_cast<void*>(found));
        return function ? function(arguments...) : Result{};
    }

    HMODULE library_;
};

}  // namespace Dravel
