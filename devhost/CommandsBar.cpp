// Commands that move the plug-in's bar about, and read the line below its grid.
#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "Commands.h"
#include "Stage.h"
#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

HWND Bar() {
    const HWND bar = FindBar();
    if (!bar) Fail("the book is not open");
    return bar;
}

RECT OnScreen(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

// Left of its middle, away from the close button. Docked below, the splitter is above the caption. Each time
// elsewhere: two presses in one place are a double click.
POINT OnCaption() {
    static LONG turn = 0;
    const RECT place = OnScreen(Bar());
    return {place.left + 40 + 15 * (++turn % 5), place.top + 14};
}

POINT InFrame(Stage& stage, const std::string& x, const std::string& y) {
    int left = 0, top = 0;
    if (!ParseNumber(x, left) || !ParseNumber(y, top)) Fail("X and Y are numbers");
    POINT at{left, top};
    ClientToScreen(stage.Host().Frame(), &at);
    return at;
}

void DragCaption(Stage& stage, const Words& words) {
    stage.Send(DragTo(OnCaption(), InFrame(stage, words[0], words[1])));
}

void DoubleClickCaption(Stage& stage, const Words&) {
    stage.Send(ClickAt(OnCaption(), Click::Double));
}

void PressClose(Stage& stage, const Words&) {
    const RECT place = OnScreen(Bar());
    stage.Send(ClickAt({place.right - 12, OnCaption().y}, Click::Left));
}

// The splitter is the strip of the bar that faces the middle of the frame.
void DragSplitter(Stage& stage, const Words& words) {
    int by = 0;
    if (!ParseNumber(words[0], by)) Fail("BY is a number");
    const RECT bar = OnScreen(Bar()), frame = OnScreen(stage.Host().Frame());
    const LONG right = (bar.left + bar.right) / 2, down = (bar.top + bar.bottom) / 2;
    const bool below = down > (frame.top + frame.bottom) / 2 && bar.right - bar.left > frame.right / 2;
    const POINT from = below ? POINT{right, bar.top + 2} : POINT{bar.right - 3, down};
    stage.Send(DragTo(from, below ? POINT{from.x, from.y + by} : POINT{from.x + by, from.y}));
}

// Where the bar is, as one sees it: in a window of its own, or at an edge of the frame's room.
std::string WhereIsTheBar(Stage& stage) {
    const HWND bar = Bar(), frame = stage.Host().Frame();
    if (GetAncestor(bar, GA_ROOT) != frame) return "floating";
    const RECT place = OnScreen(bar);
    RECT room{};
    GetClientRect(frame, &room);
    MapWindowPoints(frame, nullptr, reinterpret_cast<POINT*>(&room), 2);
    const bool wide = place.right - place.left > place.bottom - place.top;
    if (wide) return place.top - room.top < room.bottom - place.bottom ? "top" : "bottom";
    return place.left - room.left < room.right - place.right ? "left" : "right";
}

void ExpectBar(Stage& stage, const Words& words) {
    std::string where;
    stage.Until([&] { return (where = WhereIsTheBar(stage)) == words[0]; }, "the bar is elsewhere");
}

HWND StatusLine() {
    for (const HWND child : Descendants(Bar()))
        if (ClassOf(child) == STATUSCLASSNAMEW) return child;
    Fail("the bar has no status line");
}

std::vector<std::wstring> StatusTexts(Stage& stage) {
    const HWND line = StatusLine();
    return stage.AskUi<std::vector<std::wstring>>([line] {
        std::vector<std::wstring> texts;
        const auto parts = SendMessageW(line, SB_GETPARTS, 0, 0);
        for (WPARAM part = 0; part < static_cast<WPARAM>(parts); ++part) {
            std::wstring text(LOWORD(SendMessageW(line, SB_GETTEXTLENGTHW, part, 0)), L'\0');
            SendMessageW(line, SB_GETTEXTW, part, reinterpret_cast<LPARAM>(text.data()));
            texts.push_back(text);
        }
        return texts;
    });
}

std::size_t StatusPart(Stage& stage, const std::string& pattern) {
    std::size_t part = 0;
    std::string said;
    const auto shown = [&] {
        const auto texts = StatusTexts(stage);
        const auto found = std::find_if(texts.begin(), texts.end(), [&](const std::wstring& text) {
            return Matches(FromUtf8(pattern), text);
        });
        part = static_cast<std::size_t>(found - texts.begin());
        said.clear();
        for (const std::wstring& text : texts)
            said += '"' + ToUtf8(text) + "\" ";
        return found != texts.end();
    };
    if (!stage.Holds(shown, stage.limit)) Fail("the status line says " + said);
    return part;
}

void ExpectStatus(Stage& stage, const Words& words) {
    StatusPart(stage, words[0]);
}

// What an import into an empty book says agrees: the status line, the book, the reports, and the lines saved.
void ExpectImported(Stage& stage, const Words& words) {
    const std::size_t part = StatusPart(stage, "* of " + words[0] + " imported, report");
    const std::string said = ToUtf8(StatusTexts(stage)[part]), count = said.substr(0, said.find(' '));
    StatusPart(stage, count + " trades");
    const auto number = [](std::string text) {
        std::erase(text, ',');
        std::size_t value = 0;
        if (!ParseNumber(text, value)) Fail("not a number: " + text);
        return value;
    };
    FindCommand("count-frames")->run(stage, {"TradeReport", NumberText(number(count))});
    std::ifstream saved(stage.File(words[1]), std::ios::binary);
    const std::istreambuf_iterator<char> bytes(saved), end;
    const auto lines = static_cast<std::size_t>(std::count(bytes, end, '\n'));
    if (lines != number(words[0]) - number(count) + 1) Fail("the file has " + NumberText(lines) + " lines");
}

void ClickStatus(Stage& stage, const Words& words) {
    const std::size_t part = StatusPart(stage, words[0]);
    const HWND line = StatusLine();
    RECT place{};
    stage.OnUi([&] { SendMessageW(line, SB_GETRECT, part, reinterpret_cast<LPARAM>(&place)); });
    POINT at{place.left + 10, (place.top + place.bottom) / 2};
    ClientToScreen(line, &at);
    stage.Send(ClickAt(at, Click::Left));
}

constexpr CommandEntry kCommands[] = {
    {"drag-caption", "X Y", 2, 2, DragCaption},
    {"double-click-caption", "", 0, 0, DoubleClickCaption},
    {"press-close", "", 0, 0, PressClose},
    {"drag-splitter", "BY", 1, 1, DragSplitter},
    {"expect-bar", "floating|left|top|right|bottom", 1, 1, ExpectBar},
    {"expect-status", "TEXT", 1, 1, ExpectStatus},
    {"click-status", "TEXT", 1, 1, ClickStatus},
    {"expect-imported", "LINES FILE", 2, 2, ExpectImported},
};

}  // namespace

std::span<const CommandEntry> BarCommands() {
    return kCommands;
}

}  // namespace Dravel::DevHost
