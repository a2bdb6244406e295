// The terminal's main frame: menu, the desk in the middle (contracts above, messages below) and a status
// line. A bar of the plug-in docks here and takes its room from the desk.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <cstdint>
#include <string>

namespace Dravel::DevHost {

class Terminal;

// Commands of the menu; plug-in commands of the grid lie at 40001 and above.
enum Command : UINT {
    kLoadPlugin = 101,
    kUnloadPlugin,
    kImportTest,
    kExit,
    kOpenBook = 201,
    kOpenByMessage,
    kAskToSave,
    kPendingItems,
    kSelectedContract,
    kEntryQuery,
    kSendTrade,
    kSendTenTrades,
    kFollowMessages = 301,
    kShowContracts,
    kClearMessages,
};

// Bound to its window at creation, unbound when the window goes; the object lives on in the terminal.
class FrameWindow {
 public:
    explicit FrameWindow(Terminal& terminal) : terminal_(terminal) {}
    HWND Create();
    // Puts the plug-in's name, its bars and what can be done now into title, menu and status line.
    void ShowPlugin();

 private:
    static LRESULT CALLBACK FrameProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK DeskProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT HandleDesk(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void CreateChildren(HWND window);
    void PluginLogged(WPARAM level);
    void KeepFocus(bool leaving);
    void LayFrame();
    void LayDesk();
    void Do(UINT command);
    void Send(std::uint16_t code);
    void Import();
    void Complain(const std::string& error);
    void Refresh();
    LRESULT Notify(const NMHDR* header);
    void FillContract(LVITEMW& item);
    void FillMessage(LVITEMW& item);
    void ShowDetails(int index);

    Terminal& terminal_;
    const UINT logMessage_ = RegisterWindowMessageW(L"KRV_MSG_LOG");
    HWND window_ = nullptr, desk_ = nullptr, contracts_ = nullptr, messages_ = nullptr, details_ = nullptr;
    HWND status_ = nullptr;
    HWND lastFocus_ = nullptr;
    HFONT font_ = nullptr;
    std::wstring cell_;  // text of the cell drawn last, the list borrows it
    std::size_t shown_ = 0;
    bool follow_ = true, showContracts_ = true;
};

}  // namespace Dravel::DevHost
