// The names of the terminal's kinds of grids, by their numeric codes.
#pragma once

#include <string_view>

namespace Dravel {

// The trade book's own code.
inline constexpr int kTradeBookGrid = 19;

// Empty for a code without a name. The spellings are keys that other programs know: they stay as they are.
std::string_view GridNameOf(int code);

}  // namespace Dravel
