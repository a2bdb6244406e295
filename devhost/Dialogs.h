// Dialogs and boxes as a script sees them: found by title and text, driven through their controls.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace Dravel::DevHost {

// Topmost visible dialog whose title matches; an empty pattern takes any.
HWND FindDialog(std::wstring_view title);
// The same, with a static text or a text of its own that matches as well.
HWND FindBox(std::wstring_view title, std::wstring_view text);
// Titles and texts of all dialogs that are up, for a message about what was met instead.
std::string DescribeDialogs();
// One line a control: identifier, class, state, text; rows of lists behind it.
std::string DescribeDialog(HWND dialog);

// A control by its number, or a button by its caption without "&" (also OK, Cancel, Yes, No, Retry, Abort,
// Ignore).
HWND FindControl(HWND dialog, std::string_view name);
// Presses as a click does, posted. Empty on success, else why not.
std::string PressButton(HWND dialog, std::string_view name);

std::vector<std::wstring> ListRows(HWND list);
// Chooses the row of a list box, combo box or list view whose text (or first cell) is `text`; tells the
// dialog.
bool SelectRow(HWND list, const std::wstring& text);

}  // namespace Dravel::DevHost
