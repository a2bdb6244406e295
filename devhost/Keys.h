// Keys and mouse as the system sends them.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace Dravel::DevHost {

// "ctrl+shift+c", "down", "f2", "alt+enter". False when a name is not known.
bool SendKeys(std::string_view chord);
void TypeText(const std::wstring& text);

enum class Click { Left, Right, Double };
// At a point of the screen, with the keys of a chord held ("ctrl", "shift", empty).
void SendClick(POINT at, Click click, std::string_view held = {});
void SendDrag(POINT from, POINT to);

}  // namespace Dravel::DevHost
