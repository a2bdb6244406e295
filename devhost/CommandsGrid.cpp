// Commands that work in the trade grid, or in the grid of the topmost dialog when that has one: its commands,
// keys, the mouse, and reading it through the clipboard.
#include <windows.h>
// Needs the types of the line above.
#include <shlobj.h>

#include <algorithm>
#include <charconv>
#include <fstream>

#include "Clipboard.h"
#include "Commands.h"
#include "Stage.h"
#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

struct GridCommand {
    std::string_view name;
    WORD id;
};
constexpr GridCommand kGridCommands[] = {
    {"add", 40001},        {"delete", 40002},          {"save", 40003},        {"import", 40004},
    {"export", 40005},     {"copy-html", 40006},       {"filter", 40007},      {"fields", 40008},
    {"properties", 40009}, {"clear-selection", 40010}, {"save-layout", 40011}, {"multi-sort", 40012},
    {"copy", 40013},       {"import-report", 40014},
};
constexpr WORD kCopy = 40013, kClearSelection = 40010;

HWND Grid() {
    if (const auto dialogs = Dialogs(); !dialogs.empty()) {
        for (HWND child : Descendants(dialogs.front()))
            if (ClassOf(child) == kGridClass) return child;
    }
    const HWND grid = FindGrid();
    if (!grid) Fail("the book is not open");
    return grid;
}

// Keys go where the focus is; a frame in the background would not get them.
void BringToFront(Stage& stage) {
    stage.OnUi([&stage] {
        const HWND front = GetForegroundWindow();
        DWORD process = 0;
        if (front) GetWindowThreadProcessId(front, &process);
        if (process != GetCurrentProcessId()) SetForegroundWindow(GetLastActivePopup(stage.Host().Frame()));
    });
}

void FocusGrid(Stage& stage, const Words&) {
    const HWND grid = Grid();
    stage.OnUi([grid] {
        SetForegroundWindow(GetAncestor(grid, GA_ROOT));
        SetFocus(grid);
    });
}

void SendCommand(Stage& stage, WORD id) {
    const HWND grid = Grid();
    stage.OnUi([grid, id] { SendMessageW(grid, WM_COMMAND, id, 0); });
}

void Command(Stage& stage, const Words& words) {
    WORD id = 0;
    for (const GridCommand& command : kGridCommands)
        if (words[0] == command.name) id = command.id;
    if (!id && !ParseNumber(words[0], id)) Fail("no such command of the grid");
    SendCommand(stage, id);
}

void Key(Stage& stage, const Words& words) {
    BringToFront(stage);
    for (const std::string& chord : words) {
        Input events = Chord(chord);
        if (events.empty()) Fail("unknown key in " + chord);
        stage.Send(std::move(events));
    }
}

void Type(Stage& stage, const Words& words) {
    BringToFront(stage);
    stage.Send(Typed(FromUtf8(words[0])));
}

POINT InGrid(const std::string& x, const std::string& y) {
    POINT at{};
    int left = 0, top = 0;
    if (!ParseNumber(x, left) || !ParseNumber(y, top)) Fail("X and Y are numbers");
    at = {left, top};
    ClientToScreen(Grid(), &at);
    return at;
}

void ClickCommand(Stage& stage, const Words& words) {
    const std::string how = words.size() > 2 ? words[2] : "left";
    const bool held = how == "ctrl" || how == "shift";
    if (how != "left" && how != "right" && how != "double" && !held)
        Fail("left, right, double, ctrl or shift");
    stage.Send(ClickAt(InGrid(words[0], words[1]),
                       how == "right"    ? Click::Right
                       : how == "double" ? Click::Double
                                         : Click::Left,
                       held ? how : ""));
}

void Drag(Stage& stage, const Words& words) {
    stage.Send(DragTo(InGrid(words[0], words[1]), InGrid(words[2], words[3])));
}

// The filter of a column or the in-place editor, by its number.
void SetGridText(Stage& stage, const Words& words) {
    int id = 0;
    if (!ParseNumber(words[0], id)) Fail("the control is a number");
    HWND edit = nullptr;
    stage.Until(
        [&] {
            for (HWND child : Descendants(Grid()))
                if (GetDlgCtrlID(child) == id) edit = child;
            return edit != nullptr;
        },
        "no such control in the grid");
    const std::wstring text = FromUtf8(words[1]);
    stage.OnUi([edit, text] { SetWindowTextW(edit, text.c_str()); });
}

// As a file manager drops it; the grid frees the block.
void DropFile(Stage& stage, const Words& words) {
    const std::wstring path =
        std::filesystem::path(stage.scriptFolder / FromUtf8(words[0])).make_preferred().native();
    const SIZE_T bytes = sizeof(DROPFILES) + (path.size() + 2) * sizeof(wchar_t);  // ends with two zeros
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
    auto* files = block ? static_cast<DROPFILES*>(GlobalLock(block)) : nullptr;
    if (!files) Fail("no memory");
    files->pFiles = sizeof(DROPFILES);
    files->fWide = TRUE;
    std::copy(path.begin(), path.end(), reinterpret_cast<wchar_t*>(files + 1));
    GlobalUnlock(block);
    const HWND grid = Grid();
    if (!(GetWindowLongPtrW(grid, GWL_EXSTYLE) & WS_EX_ACCEPTFILES)) Fail("the grid takes no files");
    stage.OnUi([grid, block] { PostMessageW(grid, WM_DROPFILES, reinterpret_cast<WPARAM>(block), 0); });
}

bool EmptyTheClipboard() {
    if (!OpenClipboard(nullptr)) return false;
    EmptyClipboard();
    return CloseClipboard() != 0;
}

// Reads the grid as a person would: everything selected and copied, nothing selected after it. An empty grid
// copies nothing.
void ReadGrid(Stage& stage) {
    stage.Until(EmptyTheClipboard, "the clipboard is held");
    FocusGrid(stage, {});
    Key(stage, {"ctrl+a"});
    SendCommand(stage, kCopy);
    stage.Until([&stage] { return ReadClipboard(OwnClipboardFormat(), stage.grid); },
                "the clipboard is held");
    stage.grid.resize(strnlen(stage.grid.data(), stage.grid.size()));
    SendCommand(stage, kClearSelection);
}

std::vector<std::string> GridLines(const Stage& stage) {
    std::vector<std::string> lines;
    for (std::string_view rest = stage.grid; !rest.empty();) {
        const auto end = rest.find('\n');
        lines.emplace_back(rest.substr(0, end));
        if (lines.back().ends_with('\r')) lines.back().pop_back();
        rest = end == rest.npos ? std::string_view() : rest.substr(end + 1);
    }
    return lines;
}

void DumpGrid(Stage& stage, const Words& words) {
    ReadGrid(stage);
    std::ofstream(stage.File(words[0]), std::ios::binary) << stage.grid;
}

void ExpectRows(Stage& stage, const Words& words) {
    std::size_t count = 0;
    if (!ParseNumber(words[0], count)) Fail("not a number");
    std::size_t found = 0;
    stage.Until(
        [&] {
            ReadGrid(stage);
            return (found = GridLines(stage).size()) == count;
        },
        "another number of rows than " + words[0]);
}

void ExpectCell(Stage& stage, const Words& words) {
    std::size_t row = 0, column = 0;
    if (!ParseNumber(words[0], row) || !ParseNumber(words[1], column)) Fail("ROW and COLUMN are numbers");
    ReadGrid(stage);
    const auto lines = GridLines(stage);
    if (row >= lines.size()) Fail("the grid has " + NumberText(lines.size()) + " rows");
    std::string_view rest = lines[row];
    for (std::size_t i = 0; i < column && !rest.empty(); ++i)
        rest = rest.find('\t') == rest.npos ? std::string_view() : rest.substr(rest.find('\t') + 1);
    const std::string cell(rest.substr(0, rest.find('\t')));
    if (!Matches(FromUtf8(words[2]), Wide(cell))) Fail("the cell says \"" + ToUtf8(Wide(cell)) + '"');
}

// The colour of a point of the grid, as six hexadecimal digits, red first.
void ExpectColour(Stage& stage, const Words& words) {
    const POINT at = InGrid(words[0], words[1]);
    char seen[8] = "";
    const auto same = [&] {
        const HDC screen = GetDC(nullptr);
        const COLORREF colour = GetPixel(screen, at.x, at.y);
        ReleaseDC(nullptr, screen);
        const std::uint32_t rgb = GetRValue(colour) << 16 | GetGValue(colour) << 8 | GetBValue(colour);
        *std::to_chars(seen, seen + 7, 0x1000000 | rgb, 16).ptr = 0;
        return words[2] == seen + 1;
    };
    if (!stage.Holds(same, stage.limit)) Fail(std::string("it is ") + (seen + 1));
}

constexpr CommandEntry kCommands[] = {
    {"command", "ID|NAME", 1, 1, Command},
    {"focus-grid", "", 0, 0, FocusGrid},
    {"key", "KEYS...", 1, 99, Key},
    {"type", "TEXT", 1, 1, Type},
    {"click", "X Y [left|right|double|ctrl|shift]", 2, 3, ClickCommand},
    {"drag", "X Y TOX TOY", 4, 4, Drag},
    {"set-grid-text", "CONTROL TEXT", 2, 2, SetGridText},
    {"drop-file", "FILE", 1, 1, DropFile},
    {"dump-grid", "FILE", 1, 1, DumpGrid},
    {"expect-rows", "COUNT", 1, 1, ExpectRows},
    {"expect-colour", "X Y RRGGBB", 3, 3, ExpectColour},
    {"expect-cell", "ROW COLUMN TEXT", 3, 3, ExpectCell},
};

}  // namespace

std::span<const CommandEntry> GridCommands() {
    return kCommands;
}

}  // namespace Dravel::DevHost
