// Commands for the grid's header, its filter bar and its menus, by column: where a column stands is read off
// its filter field, whose control identifier is 2000 + the column's number. And what the clipboard holds.
#include <algorithm>

#include "Clipboard.h"
#include "Commands.h"
#include "Stage.h"
#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

constexpr int kFilterID = 2000, kMaxColumns = 100;
constexpr int kAboveField = 12;  // pixels from the field's top to a point well within the header
constexpr wchar_t kMenuClass[] = L"#32768";

HWND Grid() {
    const HWND grid = FindGrid();
    if (!grid) Fail("the book is not open");
    return grid;
}

// Null when the column has no field in view.
HWND Field(int column) {
    for (HWND child : Descendants(Grid()))
        if (GetDlgCtrlID(child) == kFilterID + column && IsWindowVisible(child)) return child;
    return nullptr;
}

int ColumnOf(const std::string& word) {
    int column = 0;
    if (!ParseNumber(word, column) || column < 0) Fail("COLUMN is a number");
    return column;
}

// Fields hide while the columns move.
RECT FieldRect(Stage& stage, const std::string& word) {
    const int column = ColumnOf(word);
    HWND field = nullptr;
    stage.Until([&] { return (field = Field(column)) != nullptr; }, "the column has no filter field in view");
    RECT at{};
    GetWindowRect(field, &at);
    return at;
}

POINT InHeader(const RECT& field) {
    return {(field.left + field.right) / 2, field.top - kAboveField};
}

void ClickHeader(Stage& stage, const Words& words) {
    const std::string how = words.size() > 1 ? words[1] : "left";
    const RECT field = FieldRect(stage, words[0]);
    if (how == "ctrl" || how == "shift") {
        stage.Send(ClickAt(InHeader(field), Click::Left, how));
    } else if (how == "left" || how == "right") {
        stage.Send(ClickAt(InHeader(field), how == "right" ? Click::Right : Click::Left));
    } else if (how == "divider") {
        stage.Send(ClickAt({field.right, field.top - kAboveField}, Click::Double));
    } else {
        Fail("left, right, ctrl, shift or divider");
    }
}

void DragHeader(Stage& stage, const Words& words) {
    const RECT from = FieldRect(stage, words[0]), to = FieldRect(stage, words[1]);
    const bool after = words.size() > 2 && words[2] == "after";
    const LONG quarter = (to.right - to.left) / 4;
    stage.Send(
        DragTo(InHeader(from), {after ? to.right - quarter : to.left + quarter, to.top - kAboveField}));
}

void DragDivider(Stage& stage, const Words& words) {
    int by = 0;
    if (!ParseNumber(words[1], by)) Fail("PIXELS is a number");
    const RECT field = FieldRect(stage, words[0]);
    stage.Send(DragTo({field.right, field.top - kAboveField}, {field.right + by, field.top - kAboveField}));
}

void ClickFilter(Stage& stage, const Words& words) {
    const RECT field = FieldRect(stage, words[0]);
    stage.Send(ClickAt({(field.left + field.right) / 2, (field.top + field.bottom) / 2}, Click::Left));
}

void ExpectFilter(Stage& stage, const Words& words) {
    const int column = ColumnOf(words[0]);
    const std::wstring pattern = FromUtf8(words[1]);
    std::wstring shown;
    stage.Until(
        [&] {
            const HWND field = Field(column);
            shown = field ? ControlText(field) : L"(no field)";
            return field && Matches(pattern, shown);
        },
        "the filter field shows another text");
}

void ExpectFilterFocus(Stage& stage, const Words& words) {
    const int column = ColumnOf(words[0]);
    stage.Until(
        [&] {
            return stage.AskUi<bool>(
                [column] { return GetFocus() != nullptr && GetFocus() == Field(column); });
        },
        "another window has the keyboard");
}

// The columns with a field in view, from the left.
std::string ColumnsInView() {
    std::vector<std::pair<LONG, int>> found;
    for (HWND child : Descendants(Grid())) {
        const int column = GetDlgCtrlID(child) - kFilterID;
        RECT at{};
        if (column < 0 || column >= kMaxColumns || !IsWindowVisible(child) || !GetWindowRect(child, &at))
            continue;
        found.emplace_back(at.left, column);
    }
    std::sort(found.begin(), found.end());
    std::string text;
    for (const auto& [left, column] : found)
        text += (text.empty() ? "" : ",") + NumberText(column);
    return text;
}

void ExpectColumns(Stage& stage, const Words& words) {
    std::string found;
    const auto matches = [&] { return Matches(FromUtf8(words[0]), FromUtf8(found = ColumnsInView())); };
    if (!stage.Holds(matches, stage.limit)) Fail("the columns are " + found);
}

void ExpectWidth(Stage& stage, const Words& words) {
    int least = 0, most = 0;
    if (!ParseNumber(words[1], least) || !ParseNumber(words.back(), most)) Fail("widths are numbers");
    LONG width = 0;
    const auto fits = [&] {
        const RECT field = FieldRect(stage, words[0]);
        width = field.right - field.left + 1;  // the line beside it belongs to the column
        return width >= least && width <= most;
    };
    if (!stage.Holds(fits, stage.limit)) Fail("the column is " + NumberText(width) + " pixels wide");
}

// Menus are windows whose text is in the menu that they show.
HMENU OpenMenu(HWND& window) {
    for (HWND top : TopWindows()) {
        if (ClassOf(top) != kMenuClass || !IsWindowVisible(top)) continue;
        DWORD_PTR menu = 0;
        constexpr UINT kGetMenu = 0x01E1;  // MN_GETHMENU
        if (!SendMessageTimeoutW(top, kGetMenu, 0, 0, SMTO_ABORTIFHUNG, 1000, &menu) || !menu) continue;
        window = top;
        return reinterpret_cast<HMENU>(menu);
    }
    return nullptr;
}

std::wstring CaptionOf(HMENU menu, int item) {
    wchar_t text[256] = L"";
    GetMenuStringW(menu, static_cast<UINT>(item), text, 256, MF_BYPOSITION);
    std::wstring caption(text);
    std::erase(caption, L'&');
    return caption.substr(0, caption.find(L'\t'));
}

struct MenuItem {
    HWND window = nullptr;
    HMENU menu = nullptr;
    int index = -1;
    UINT state = 0;
};

MenuItem WaitForItem(Stage& stage, const std::string& text) {
    const std::wstring wanted = FromUtf8(text);
    MenuItem item;
    stage.Until(
        [&] {
            item.menu = OpenMenu(item.window);
            for (int i = 0; item.menu && i < GetMenuItemCount(item.menu); ++i)
                if (Matches(wanted, CaptionOf(item.menu, i))) item.index = i;
            return item.index >= 0;
        },
        "no menu with this entry");
    item.state = GetMenuState(item.menu, static_cast<UINT>(item.index), MF_BYPOSITION);
    return item;
}

void ChooseMenu(Stage& stage, const Words& words) {
    const MenuItem item = WaitForItem(stage, words[0]);
    if (item.state & (MF_GRAYED | MF_DISABLED)) Fail("the entry is greyed");
    RECT at{};
    GetMenuItemRect(nullptr, item.menu, static_cast<UINT>(item.index), &at);
    stage.Send(ClickAt({(at.left + at.right) / 2, (at.top + at.bottom) / 2}, Click::Left));
    stage.Until([&] { return !IsWindow(item.window) || !IsWindowVisible(item.window); }, "the menu stays");
    stage.InputTaken();
}

void ExpectMenu(Stage& stage, const Words& words) {
    const MenuItem item = WaitForItem(stage, words[0]);
    const UINT grey = MF_GRAYED | MF_DISABLED;
    const std::pair<const char*, bool> states[] = {{"enabled", (item.state & grey) == 0},
                                                   {"greyed", (item.state & grey) != 0},
                                                   {"checked", (item.state & MF_CHECKED) != 0},
                                                   {"unchecked", (item.state & MF_CHECKED) == 0}};
    for (const auto& [name, holds] : states)
        if (words[1] == name && !holds) Fail(std::string("the entry is not ") + name);
}

UINT ClipboardFormat(const std::string& name) {
    if (name == "text") return CF_UNICODETEXT;
    if (name == "html") return RegisterClipboardFormatW(L"HTML Format");
    if (name == "own") return OwnClipboardFormat();
    Fail("text, html or own");
}

bool ReadClipboardText(UINT format, std::wstring& text) {
    std::string bytes;
    if (!ReadClipboard(format, bytes)) return false;
    if (format == CF_UNICODETEXT) {
        const auto* wide = reinterpret_cast<const wchar_t*>(bytes.data());
        text.assign(wide, wcsnlen(wide, bytes.size() / sizeof(wchar_t)));
    } else {
        bytes.resize(strnlen(bytes.data(), bytes.size()));
        text = format == ClipboardFormat("html") ? FromUtf8(bytes) : Wide(bytes);
    }
    return true;
}

void ExpectClipboard(Stage& stage, const Words& words) {
    const UINT format = ClipboardFormat(words[0]);
    const std::wstring pattern = FromUtf8(words[1]);
    std::wstring found;
    const auto matches = [&] { return ReadClipboardText(format, found) && Matches(pattern, found); };
    if (!stage.Holds(matches, stage.limit))
        Fail("the clipboard holds \"" + ToUtf8(found).substr(0, 600) + '"');
}

void DumpClipboard(Stage& stage, const Words& words) {
    const UINT format = ClipboardFormat(words[0]);
    std::wstring text;
    stage.Until([&] { return ReadClipboardText(format, text); }, "the clipboard is held");
    std::ofstream(stage.File(words[1]), std::ios::binary) << ToUtf8(text);
}

// As another program that is busy with it: nobody else gets in until it is let go.
void HoldClipboard(Stage& stage, const Words&) {
    stage.Until([] { return OpenClipboard(nullptr) != 0; }, "the clipboard is held");
}

void ReleaseClipboard(Stage&, const Words&) {
    CloseClipboard();
}

constexpr CommandEntry kCommands[] = {
    {"click-header", "COLUMN [left|right|ctrl|shift|divider]", 1, 2, ClickHeader},
    {"drag-header", "COLUMN TO [before|after]", 2, 3, DragHeader},
    {"drag-divider", "COLUMN PIXELS", 2, 2, DragDivider},
    {"click-filter", "COLUMN", 1, 1, ClickFilter},
    {"expect-filter", "COLUMN TEXT", 2, 2, ExpectFilter},
    {"expect-filter-focus", "COLUMN", 1, 1, ExpectFilterFocus},
    {"expect-columns", "LIST", 1, 1, ExpectColumns},
    {"expect-width", "COLUMN LEAST [MOST]", 2, 3, ExpectWidth},
    {"choose", "TEXT", 1, 1, ChooseMenu},
    {"expect-menu", "TEXT enabled|greyed|checked|unchecked", 2, 2, ExpectMenu},
    {"expect-clipboard", "text|html|own TEXT", 2, 2, ExpectClipboard},
    {"dump-clipboard", "text|html|own FILE", 2, 2, DumpClipboard},
    {"hold-clipboard", "", 0, 0, HoldClipboard},
    {"release-clipboard", "", 0, 0, ReleaseClipboard},
};

}  // namespace

std::span<const CommandEntry> HeaderCommands() {
    return kCommands;
}

}  // namespace Dravel::DevHost
