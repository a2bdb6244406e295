#include <windows.h>
// Needs the types of the line above.
#include <shellapi.h>

#include "toolkit/ModalLoop.h"
#include "tradebook/DravelGrid.h"

using namespace Dravel;

namespace {

struct MenuEntry {
    std::uint16_t command;  // 0: a line
    const wchar_t* text;
    bool needsSelection = false;
};
// Only commands that do something now.
constexpr MenuEntry kMenu[] = {
    {command::AddTrade, L"&Add Trade\tInsert"},
    {command::DeleteTrades, L"&Delete Trade\tDelete", true},
    {0, nullptr},
    {command::Import, L"&Import Trades...\tCtrl+I"},
    {command::ImportReport, L"Import Re&port...\tCtrl+Shift+I"},
    {command::Save, L"&Save\tCtrl+S"},
    {command::ExportCsv, L"&Export CSV...\tCtrl+E"},
    {0, nullptr},
    {command::Copy, L"&Copy\tCtrl+C", true},
    {command::CopyHtml, L"Copy As &HTML\tCtrl+Shift+C"},
    {command::ClearSelection, L"C&lear Selection", true},
    {0, nullptr},
    {command::FilterBar, nullptr},
    {command::FieldChooser, L"&Field Chooser..."},
    {command::MultipleSort, L"&Multiple Sort"},
    {command::SaveLayout, L"Sa&ve Layout"},
    {command::Properties, L"P&roperties...\tAlt+Enter"},
};

}  // namespace

// Without a window the keyboard would be nobody's.
void CDravelGrid::TakeKeyboard() {
    if (Window()) SetFocus(static_cast<HWND>(Window()));
}

void CDravelGrid::AcceptFiles() {
    DragAcceptFiles(static_cast<HWND>(Window()), TRUE);
}

// The first of the files that were dropped is to be imported.
bool CDravelGrid::OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t,
                            std::intptr_t& result) {
    if (message != WM_DROPFILES) return false;
    const auto drop = reinterpret_cast<HDROP>(wparam);
    std::wstring path(DragQueryFileW(drop, 0, nullptr, 0) + std::size_t{1}, L'\0');
    path.resize(DragQueryFileW(drop, 0, path.data(), static_cast<UINT>(path.size())));
    DragFinish(drop);
    result = 0;
    // Beneath an open dialog nothing is taken. The file manager was in front until now.
    const HWND root = GetAncestor(static_cast<HWND>(Window()), GA_ROOT);
    if (path.empty() || !IsWindowEnabled(root)) return true;
    SetForegroundWindow(root);
    Import(path);
    return true;
}

void CDravelGrid::OnContextMenu(int x, int y, const GridHit&) {
    const HMENU menu = CreatePopupMenu();
    if (!menu) return;
    const std::wstring filter = std::wstring(FilterMenuText()) + L"\tCtrl+F";
    for (const MenuEntry& entry : kMenu) {
        const bool idle = !Meets(gate_, NeedOf(entry.command)) ||
                          (entry.needsSelection && Selection().Empty()) ||
                          (entry.command == command::ExportCsv && book_.RowCount() == 0) ||
                          (entry.command == command::ImportReport && entry_.ImportSummary().empty());
        const bool checked = entry.command == command::MultipleSort && MultipleSort();
        const UINT state = (idle ? MF_GRAYED : 0u) | (checked ? MF_CHECKED : 0u);
        const wchar_t* text = entry.command == command::FilterBar ? filter.c_str() : entry.text;
        AppendMenuW(menu, text ? MF_STRING | state : MF_SEPARATOR, entry.command, text);
    }
    const HWND window = static_cast<HWND>(Window());
    const auto chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, x, y, 0, window, nullptr);
    ModalLoop::Ended();
    DestroyMenu(menu);
    if (chosen) PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(chosen), 0);
}
