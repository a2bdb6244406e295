// The frame's menu as a table: title, command, whether a plug-in is needed.
#include "FrameMenu.h"

#include "FrameWindow.h"

namespace Dravel::DevHost {
namespace {

struct Line {
    const wchar_t* text;  // nullptr: a separator; without a command: the next menu of the bar
    UINT command;
    bool needsPlugin;
};

constexpr Line kLines[] = {
    {L"&File", 0, false},
    {L"&Load plug-in", kLoadPlugin, false},
    {L"&Unload plug-in", kUnloadPlugin, true},
    {nullptr, 0, false},
    {L"&Import test...", kImportTest, true},
    {nullptr, 0, false},
    {L"E&xit\tAlt+F4", kExit, false},
    {L"&Plug-in", 0, false},
    {L"&Open book", kOpenBook, true},
    {L"Open by &message (32042)", kOpenByMessage, true},
    {nullptr, 0, false},
    {L"&Ask to save (30024)", kAskToSave, true},
    {L"&Pending items (30020)", kPendingItems, true},
    {L"Selected &contract (32022)", kSelectedContract, true},
    {L"&Entry query (30025)", kEntryQuery, true},
    {nullptr, 0, false},
    {L"Send a &trade (32051)", kSendTrade, true},
    {L"Send ten t&rades", kSendTenTrades, true},
    {L"&View", 0, false},
    {L"&Follow messages", kFollowMessages, false},
    {L"Con&tracts", kShowContracts, false},
    {nullptr, 0, false},
    {L"&Clear messages", kClearMessages, false},
};

}  // namespace

HMENU MakeFrameMenu() {
    HMENU bar = CreateMenu(), menu = nullptr;
    for (const Line& line : kLines) {
        if (line.text && !line.command)
            AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu = CreatePopupMenu()), line.text);
        else
            AppendMenuW(menu, line.text ? MF_STRING : MF_SEPARATOR, line.command, line.text);
    }
    return bar;
}

void UpdateFrameMenu(HMENU menu, bool loaded, bool follow, bool contracts) {
    for (const Line& line : kLines)
        if (line.needsPlugin) EnableMenuItem(menu, line.command, loaded ? MF_ENABLED : MF_GRAYED);
    EnableMenuItem(menu, kLoadPlugin, loaded ? MF_GRAYED : MF_ENABLED);
    CheckMenuItem(menu, kFollowMessages, follow ? MF_CHECKED : MF_UNCHECKED);
    CheckMenuItem(menu, kShowContracts, contracts ? MF_CHECKED : MF_UNCHECKED);
}

}  // namespace Dravel::DevHost
