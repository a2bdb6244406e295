// The menu of the main frame, built from one table.
#pragma once

#include <windows.h>

namespace Dravel::DevHost {

HMENU MakeFrameMenu();
// Greys what needs a plug-in, ticks the switches.
void UpdateFrameMenu(HMENU menu, bool loaded, bool follow, bool contracts);

}  // namespace Dravel::DevHost
