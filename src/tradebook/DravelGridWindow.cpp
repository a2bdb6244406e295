#include <windows.h>

#include "tradebook/DravelGrid.h"

using namespace Dravel;

namespace {

struct MenuEntry {
    std::uint16_t command;  // 0: a line
    const wchar_t* text;
    bool needsSelection = false;
};
constexpr MenuEntry kMenu[] = {
    {command::Import, L"&Import Trades...\tCtrl+I"},
    {command::Save, L"&Save\tCtrl+S"},
    {0, nullptr},
    {command::Copy, L"&Copy\tCtrl+C", true},
    {command::CopyHtml, L"Copy As &HTML\tCtrl+Shift+C"},
    {command::ClearSelection, L"C&lear Selection", true},
    {0, nullptr},
    {command::FilterBar, nullptr},
};

}  // namespace

void CDravelGrid::OnContextMenu(int x, int y, const GridHit&) {
    const HMENU menu = CreatePopupMenu();
    if (!menu) return;
    for (const MenuEntry& entry : kMenu) {
        const UINT grey = entry.needsSelection && Selection().Empty() ? MF_GRAYED : 0u;
        const wchar_t* text = entry.command == command::FilterBar ? FilterMenuText() : entry.text;
        AppendMenuW(menu, text ? MF_STRING | grey : MF_SEPARATOR, entry.command, text);
    }
    const HWND window = static_cast<HWND>(Window());
    const auto chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, x, y, 0, window, nullptr);
    DestroyMenu(menu);
    if (chosen) PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(chosen), 0);
}
