// Turns names of keys into input events.
#include "Keys.h"

#include "Text.h"

namespace Dravel::DevHost {
namespace {

struct KeyName {
    const char* name;
    WORD key;
};
constexpr KeyName kKeys[] = {
    {"CTRL", VK_CONTROL},  {"SHIFT", VK_SHIFT},   {"ALT", VK_MENU},    {"ENTER", VK_RETURN},
    {"ESC", VK_ESCAPE},    {"TAB", VK_TAB},       {"SPACE", VK_SPACE}, {"BACK", VK_BACK},
    {"DELETE", VK_DELETE}, {"INSERT", VK_INSERT}, {"HOME", VK_HOME},   {"END", VK_END},
    {"PAGEUP", VK_PRIOR},  {"PAGEDOWN", VK_NEXT}, {"UP", VK_UP},       {"DOWN", VK_DOWN},
    {"LEFT", VK_LEFT},     {"RIGHT", VK_RIGHT},   {"APPS", VK_APPS},
};
constexpr WORD kExtended[] = {VK_DELETE, VK_INSERT, VK_HOME, VK_END,   VK_PRIOR, VK_NEXT,
                              VK_UP,     VK_DOWN,   VK_LEFT, VK_RIGHT, VK_APPS};

WORD KeyOf(const std::string& name) {
    for (const KeyName& key : kKeys)
        if (name == key.name) return key.key;
    WORD number = 0;
    if (name.size() > 1 && name[0] == 'F' && ParseNumber(name.substr(1), number) && number <= 24)
        return static_cast<WORD>(VK_F1 + number - 1);
    const bool plain =
        name.size() == 1 && ((name[0] >= 'A' && name[0] <= 'Z') || (name[0] >= '0' && name[0] <= '9'));
    return plain ? static_cast<WORD>(name[0]) : 0;
}

INPUT KeyEvent(WORD key, bool up) {
    INPUT event{};
    event.type = INPUT_KEYBOARD;
    event.ki.wVk = key;
    event.ki.wScan = static_cast<WORD>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
    for (WORD extended : kExtended)
        if (key == extended) event.ki.dwFlags |= KEYEVENTF_EXTENDEDKEY;
    if (up) event.ki.dwFlags |= KEYEVENTF_KEYUP;
    return event;
}

INPUT MouseEvent(POINT at, DWORD flags) {
    INPUT event{};
    event.type = INPUT_MOUSE;
    const int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
    event.mi.dx = (at.x * 65536 + 32768) / width;
    event.mi.dy = (at.y * 65536 + 32768) / height;
    event.mi.dwFlags = flags | MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_MOVE;
    return event;
}

bool ParseChord(std::string_view chord, std::vector<WORD>& keys) {
    for (std::string rest = Upper(chord); !rest.empty();) {
        const auto plus = rest.find('+');
        keys.push_back(KeyOf(rest.substr(0, plus)));
        if (!keys.back()) return false;
        rest = plus == std::string::npos ? "" : rest.substr(plus + 1);
    }
    return true;
}

}  // namespace

Input Chord(std::string_view chord) {
    std::vector<WORD> keys;
    if (!ParseChord(chord, keys)) return {};
    Input events;
    for (WORD key : keys)
        events.push_back(KeyEvent(key, false));
    for (auto key = keys.rbegin(); key != keys.rend(); ++key)
        events.push_back(KeyEvent(*key, true));
    return events;
}

Input Typed(const std::wstring& text) {
    Input events;
    for (wchar_t c : text) {
        INPUT event{};
        event.type = INPUT_KEYBOARD;
        event.ki.wScan = static_cast<WORD>(c);
        event.ki.dwFlags = KEYEVENTF_UNICODE;
        events.push_back(event);
        event.ki.dwFlags |= KEYEVENTF_KEYUP;
        events.push_back(event);
    }
    return events;
}

Input ClickAt(POINT at, Click click, std::string_view held) {
    const bool right = click == Click::Right;
    std::vector<WORD> keys;
    ParseChord(held, keys);
    Input events{MouseEvent(at, 0)};
    for (WORD key : keys)
        events.push_back(KeyEvent(key, false));
    for (int i = 0; i < (click == Click::Double ? 2 : 1); ++i) {
        events.push_back(MouseEvent(at, right ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN));
        events.push_back(MouseEvent(at, right ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP));
    }
    for (WORD key : keys)
        events.push_back(KeyEvent(key, true));
    return events;
}

Input DragTo(POINT from, POINT to) {
    constexpr int kSteps = 8;
    Input events{MouseEvent(from, 0), MouseEvent(from, MOUSEEVENTF_LEFTDOWN)};
    for (int i = 1; i <= kSteps; ++i)
        events.push_back(
            MouseEvent({from.x + (to.x - from.x) * i / kSteps, from.y + (to.y - from.y) * i / kSteps}, 0));
    events.push_back(MouseEvent(to, MOUSEEVENTF_LEFTUP));
    return events;
}

}  // namespace Dravel::DevHost
