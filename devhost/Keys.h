// Keys and mouse as the system sends them: events for SendInput.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace Dravel::DevHost {

using Input = std::vector<INPUT>;

// "ctrl+shift+c", "down", "f2", "alt+enter". Empty when a name is not known.
Input Chord(std::string_view chord);
Input Typed(const std::wstring& text);

enum class Click { Left, Right, Double };
// At a point of the screen, with the keys of a chord held ("ctrl", "shift", empty).
Input ClickAt(POINT at, Click click, std::string_view held = {});
Input DragTo(POINT from, POINT to);

}  // namespace Dravel::DevHost
