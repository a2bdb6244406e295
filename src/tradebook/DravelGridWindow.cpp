#include <windows.h>

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

void CDravelGrid::TakeKeyboard() {
    SetFocus(static_cast<HWND>(Window()));
}

void CDravelGrid::OnContextMenu(int x, int y, const GridHit&) {
    const HMENU menu = CreatePopupMenu();
    if (!menu) return;
    const std::wstring filter = std::wstring(FilterMenuText()) + L"\tCtrl+F";
    for (const MenuEntry& entry : kMenu) {
        const bool idle = (entry.needsSelection && Selection().Empty()) ||
                          (entry.command == command::ExportCsv && book_.RowCount() == 0) ||
                          (entry.command == command::ImportReport && entry_.ImportSummary().empty());
        const bool checked = entry.command == command::MultipleSort && MultipleSort();
        const UINT state = (idle ? MF_GRAYED : 0u) | (checked ? MF_CHECKED : 0u);
        const wchar_t* text = entry.command == command::FilterBar ? filter.c_str() : entry.text;
        AppendMenuW(menu, text ? MF_STRING | state : MF_SEPARATOR, entry.command, text);
    }
    const HWND window = static_cast<HWND>(Window());
    const auto chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, x, y, 0, window, nullptr);
    DestroyMenu(menu);
    if (chosen) PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(chosen), 0);
}
