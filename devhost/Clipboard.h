// The clipboard as a script reads it.
#pragma once

#include <windows.h>

#include <string>

namespace Dravel::DevHost {

// The grid's own format: its rows as the records' texts.
UINT OwnClipboardFormat();
// The bytes under a format up to the end of their block, none when there is no such format. False while
// another program holds the clipboard.
bool ReadClipboard(UINT format, std::string& bytes);

}  // namespace Dravel::DevHost
