// The names under which the plug-in shows itself.
#pragma once

#include <string_view>

namespace Dravel::product {

inline constexpr std::string_view kDisplayName = "Dravel";
inline constexpr std::u16string_view kWideDisplayName = u"Dravel";
inline constexpr std::string_view kCopyright = "Copyright (C) 2026 Dravel";
inline constexpr std::string_view kDescription = "VELT Dravel DLL.";
inline constexpr std::u16string_view kBarGroup = u"Trades";  // the terminal's menu that holds the bar

}  // namespace Dravel::product
