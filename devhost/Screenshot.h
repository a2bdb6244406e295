// A picture of the screen or of a window, as it is seen, in a PNG file.
#pragma once

#include <windows.h>

#include <filesystem>

namespace Dravel::DevHost {

// The part of the screen that the window covers; nullptr: the whole screen. False when it cannot be taken or
// written.
bool SaveScreenshot(HWND window, const std::filesystem::path& file);

}  // namespace Dravel::DevHost
